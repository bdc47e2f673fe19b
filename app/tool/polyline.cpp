// kntr-tool polyline FILE: the polylines of every curve, as the display and
// the mesher see them.
#include <cstdio>
#include <memory>

#include "app/tool/tool.h"
#include "profile/polylines.h"

namespace kntr::tool {

int polylineCommand(const Arguments& arguments) {
  if (arguments.size() != 1) return usage("polyline FILE");
  if (!loadProfile(arguments[0])) return 1;
  auto lines = std::make_unique<profile::ProfilePolylines>();
  bool status = false;
  profile::IQPPOL(profile::MaxCurves, profile::MaxPolylinePoints, *lines, status);
  if (status) return fail("");
  const profile::ProfileData& p = profile::profile();
  std::string out;
  for (int c = 1; c <= lines->curves; ++c) {
    const int n = lines->points(c);
    out += "curve " + std::to_string(c) + " " + std::to_string(n) + "\n";
    for (int i = 1; i <= n; ++i)
      out += fullPrecision(lines->xy(c, i).x) + " " + fullPrecision(lines->xy(c, i).y) + "\n";
    out += "index";
    for (int j = 1; j <= p.NPRPNT(c); ++j) out += " " + std::to_string(lines->index(c, j));
    out += "\n";
  }
  print(out);
  return 0;
}

}  // namespace kntr::tool
