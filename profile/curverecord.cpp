#include "profile/curverecord.h"

#include <algorithm>

#include "profile/block.h"

namespace kntr::profile {

void loadCurveRecord(int curve, spline::SplineRecord& rec, CurveBox& box) {
  const ProfileData& p = profile();
  const int n = p.NPRPNT(curve);
  const bool spline = p.PRFTYP == SplineProfile;
  rec.NOFFS = n;
  rec.CLOSED = p.PRCLSD(curve);
  box = CurveBox{};
  for (int j = 1; j <= n; ++j) {
    const double x = p.PRPNTS(curve, j)(1);
    const double y = p.PRPNTS(curve, j)(2);
    rec.OFFPNT(j) = spline::Triple{{x, y, 0.0}};
    if (j == 1) {
      box = CurveBox{x, x, y, y};
    } else {
      box.xmin = std::min(box.xmin, x);
      box.xmax = std::max(box.xmax, x);
      box.ymin = std::min(box.ymin, y);
      box.ymax = std::max(box.ymax, y);
    }
    if (!spline) {
      rec.PNTTYP(j) = Knuckle;
      rec.KNKWGT(j) = 1.0;
      continue;
    }
    const int type = p.PRPTYP(curve, j);
    rec.PNTTYP(j) = type;
    rec.KNKWGT(j) = p.PRKWGT(curve, j);
    const auto& direction = p.PRTANV(curve, j);  // leading x, y, trailing x, y
    const auto& length = p.PRTANL(curve, j);     // leading, trailing
    spline::Sextuple& t = rec.TANVEC(j);
    const bool leadingSide =
        type == LeadingTangent || type == BothTangents || type == EqualTangents;
    const bool trailingSide = type == TrailingTangent || type == BothTangents;
    if (leadingSide) {
      t(1) = direction(1) * length(1);
      t(2) = direction(2) * length(1);
      t(3) = 0.0;
    }
    if (trailingSide) {
      t(4) = direction(3) * length(2);
      t(5) = direction(4) * length(2);
      t(6) = 0.0;
    }
    if (type == EqualTangents) {
      t(4) = direction(1) * length(2);
      t(5) = direction(2) * length(2);
      t(6) = 0.0;
    }
    rec.TANLEN(j) = spline::Vec<2>{{length(1), length(2)}};
  }
}

}  // namespace kntr::profile
