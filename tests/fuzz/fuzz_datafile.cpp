// Fuzz target: the profile data file reader, header included.
//
// Each input is written to a scratch file and read with GTKNTR. The reader
// must never crash or hang. When it accepts a file, the block is saved and
// read back, and the second read must give the same data.
#include <unistd.h>

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "framework/state.h"
#include "platform/console.h"
#include "profile/block.h"
#include "profile/datafile.h"

namespace {

using kntr::profile::ProfileData;

bool same(double a, double b) {
  return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b);
}

// The fields the data file holds.
bool sameFileData(const ProfileData& a, const ProfileData& b) {
  if (a.PRFTYP != b.PRFTYP || !same(a.SPLACC, b.SPLACC) || a.NPRCRV != b.NPRCRV) return false;
  for (int k = 1; k <= 4; ++k)
    if (!same(a.PRBBOX(k), b.PRBBOX(k))) return false;
  for (int k = 1; k <= 2; ++k)
    if (!same(a.PRREFP(k), b.PRREFP(k))) return false;
  for (int c = 1; c <= a.NPRCRV; ++c) {
    if (a.NPRPNT(c) != b.NPRPNT(c) || a.PRCLSD(c) != b.PRCLSD(c) || a.PRPARM(c) != b.PRPARM(c))
      return false;
    for (int j = 1; j <= a.NPRPNT(c); ++j) {
      if (a.PRPTYP(c, j) != b.PRPTYP(c, j) || !same(a.PRKWGT(c, j), b.PRKWGT(c, j))) return false;
      for (int k = 1; k <= 2; ++k)
        if (!same(a.PRPNTS(c, j)(k), b.PRPNTS(c, j)(k))) return false;
    }
  }
  return true;
}

struct Scratch {
  std::string input, copy;
  Scratch() {
    const std::string base = "/tmp/kntr-fuzz-" + std::to_string(::getpid());
    input = base + ".KNT";
    copy = base + "-copy.KNT";
    kntr::platform::testconsole::attach("");
    kntr::framework::resetProgramState();
    kntr::framework::program().executionMode = kntr::framework::ModeBatch;
    kntr::framework::program().SPNAME = "KNTR";
    kntr::framework::program().SPVERS = "1998-0223";
  }
  ~Scratch() {
    std::remove(input.c_str());
    std::remove(copy.c_str());
  }
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static Scratch scratch;
  std::FILE* f = std::fopen(scratch.input.c_str(), "wb");
  if (!f) return 0;
  if (size > 0) std::fwrite(data, 1, size, f);
  std::fclose(f);

  kntr::profile::resetProfileBlock();
  bool loaded = false, status = false;
  kntr::profile::GTKNTR(scratch.input, false, loaded, status);
  if (loaded && !status) {
    const ProfileData first = kntr::profile::profile();
    kntr::profile::PTKNTR(scratch.copy, true, status);
    if (status) std::abort();
    kntr::profile::resetProfileBlock();
    kntr::profile::GTKNTR(scratch.copy, false, loaded, status);
    if (status || !loaded || !sameFileData(first, kntr::profile::profile())) std::abort();
  }
  kntr::platform::testconsole::takeOutput();
  return 0;
}
