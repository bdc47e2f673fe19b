// kntr-tool export and import: the profile as a drawing (DXF or SVG), and
// an offset table read into a new profile data file.
#include "profile/exchange.h"

#include <string>

#include "app/tool/tool.h"
#include "framework/files.h"
#include "platform/console.h"
#include "profile/block.h"
#include "profile/datafile.h"

namespace kntr::tool {

namespace {

const char* const exportUsage = "export FILE (--dxf|--svg) OUT";
const char* const importUsage =
    "import CSV [--box XMIN,XMAX,YMIN,YMAX] [--ref X,Y] [--polyline] -o OUT";

// Reals separated by commas, exactly `count` of them.
bool parseReals(const std::string& text, int count, double* values) {
  std::size_t start = 0;
  for (int k = 0; k < count; ++k) {
    const std::size_t comma = text.find(',', start);
    if ((comma == std::string::npos) != (k == count - 1)) return false;
    if (!parseReal(
            text.substr(start, comma == std::string::npos ? std::string::npos : comma - start),
            values[k]))
      return false;
    start = comma + 1;
  }
  return true;
}

}  // namespace

int exportCommand(const Arguments& arguments) {
  if (arguments.size() != 3 || (arguments[1] != "--dxf" && arguments[1] != "--svg"))
    return usage(exportUsage);
  if (!loadProfile(arguments[0])) return 1;
  if (profile::profile().NPRCRV == 0) return fail("No profile curves available!");
  const std::string& out = arguments[2];
  // The command line has said that an existing file is to be replaced.
  if (framework::fileExists(out)) platform::testconsole::feed("yes\n");
  bool status = false;
  if (arguments[1] == "--dxf")
    profile::PTPDXF(out, status);
  else
    profile::PTPSVG(out, status);
  return status ? fail("") : 0;
}

int importCommand(const Arguments& arguments) {
  if (arguments.empty()) return usage(importUsage);
  std::string out;
  bool fitBox = true, polyline = false;
  Array1<double, 4> box{};
  Array1<double, 2> ref{};
  for (std::size_t k = 1; k < arguments.size(); ++k) {
    const std::string& option = arguments[k];
    const bool hasValue = k + 1 < arguments.size();
    if (option == "--polyline") {
      polyline = true;
    } else if (option == "--box" && hasValue) {
      double v[4];
      if (!parseReals(arguments[++k], 4, v) || !(v[0] < v[1]) || !(v[2] < v[3]))
        return usage(importUsage);
      box = {v[0], v[1], v[2], v[3]};
      fitBox = false;
    } else if (option == "--ref" && hasValue) {
      double v[2];
      if (!parseReals(arguments[++k], 2, v)) return usage(importUsage);
      ref = {v[0], v[1]};
    } else if (option == "-o" && hasValue) {
      out = arguments[++k];
    } else {
      return usage(importUsage);
    }
  }
  if (out.empty()) return usage(importUsage);
  bool status = false;
  profile::GTOFFT(arguments[0], fitBox, box, ref,
                  polyline ? profile::PolylineProfile : profile::SplineProfile, status);
  if (status) return fail("");
  profile::PTKNTR(out, true, status);
  if (status) return fail("");
  const profile::ProfileData& p = profile::profile();
  std::string summary = "curves " + std::to_string(p.NPRCRV);
  for (int c = 1; c <= p.NPRCRV; ++c)
    summary += " " + std::to_string(p.NPRPNT(c)) + (p.PRCLSD(c) ? "c" : "o");
  print(summary + "\n");
  return 0;
}

}  // namespace kntr::tool
