// Fuzz target: the offset table reader, and the section properties and
// drawings of what it accepts.
//
// Each input is written to a scratch file and read with GTOFFT, in a given
// box and in a box made from the points. The reader must never crash or
// hang; a refused table must leave the profile as it was, and an accepted
// one must keep the limits and the box.
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "framework/state.h"
#include "platform/console.h"
#include "profile/block.h"
#include "profile/exchange.h"
#include "profile/sectionprops.h"

namespace {

using kntr::profile::ProfileData;

struct Scratch {
  std::string input, drawing;
  Scratch() {
    const std::string base = "/tmp/kntr-fuzz-table-" + std::to_string(::getpid());
    input = base + ".csv";
    drawing = base + ".svg";
    kntr::platform::testconsole::attach("");
    kntr::framework::resetProgramState();
    kntr::framework::program().executionMode = kntr::framework::ModeBatch;
    kntr::framework::program().SPNAME = "KNTR";
    kntr::framework::program().SPVERS = "1998-0223";
  }
  ~Scratch() {
    std::remove(input.c_str());
    std::remove(drawing.c_str());
  }
};

// The limits and the box hold for everything the reader stored.
bool wellFormed(const ProfileData& p) {
  if (p.NPRCRV < 1 || p.NPRCRV > kntr::profile::MaxCurves) return false;
  for (int c = 1; c <= p.NPRCRV; ++c) {
    if (p.NPRPNT(c) < 1 || p.NPRPNT(c) > kntr::profile::MaxCurvePoints) return false;
    for (int j = 1; j <= p.NPRPNT(c); ++j) {
      const double x = p.PRPNTS(c, j)(1), y = p.PRPNTS(c, j)(2);
      if (!(x >= p.PRBBOX(1) && x <= p.PRBBOX(2) && y >= p.PRBBOX(3) && y <= p.PRBBOX(4)))
        return false;
    }
  }
  return true;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static Scratch scratch;
  std::FILE* f = std::fopen(scratch.input.c_str(), "wb");
  if (!f) return 0;
  if (size > 0) std::fwrite(data, 1, size, f);
  std::fclose(f);

  for (const bool fitBox : {false, true}) {
    kntr::profile::resetProfileBlock();
    const ProfileData before = kntr::profile::profile();
    kntr::Array1<double, 4> box = {-10.0, 10.0, -10.0, 10.0};
    bool status = false;
    kntr::profile::GTOFFT(scratch.input, fitBox, box, kntr::Array1<double, 2>{}, 1, status);
    if (status) {
      if (!(kntr::profile::profile() == before)) std::abort();
      continue;
    }
    if (!wellFormed(kntr::profile::profile())) std::abort();
    kntr::profile::SectionProperties props;
    kntr::profile::IQSECP(props, status);
    std::remove(scratch.drawing.c_str());
    kntr::profile::PTPSVG(scratch.drawing, status);
  }
  kntr::platform::testconsole::takeOutput();
  return 0;
}
