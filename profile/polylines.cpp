#include "profile/polylines.h"

#include <algorithm>

#include "framework/text.h"
#include "profile/curverecord.h"
#include "spline/evaluate.h"
#include "spline/knots.h"
#include "spline/tangents.h"

namespace kntr::profile {

void IQPPOL(int maxCurves, int maxPerCurve, ProfilePolylines& result, bool& status) {
  status = false;
  const ProfileData& p = profile();
  const bool spline = p.PRFTYP == SplineProfile;
  const int curves = std::clamp(std::min(p.NPRCRV, maxCurves), 0, MaxCurves);
  const int limit = std::min(maxPerCurve, MaxPolylinePoints);
  result.curves = curves;

  static spline::SplineRecord rec;
  static Array1<spline::Triple, MaxPolylinePoints> raw;
  static Array1<int, MaxCurvePoints> rawIndex;
  static Array1<bool, MaxPolylinePoints> onCurve;
  static Array1<int, MaxPolylinePoints> kept;  // raw point -> kept point
  const spline::Triple origin{};
  const spline::Triple normal{{1.0, 0.0, 0.0}};

  for (int c = 1; c <= curves; ++c) {
    const int n = p.NPRPNT(c);
    result.points(c) = 0;
    if ((spline ? 10 * n : n) > limit) {
      framework::fail(
          "(IQPPOL) Number of defined profile curve points exceedes allocation limit!", status);
      return;
    }
    // A polyline, or a curve too short for a segment, is its own points.
    if (!spline || n < 2) {
      for (int j = 1; j <= n; ++j) {
        result.xy(c, j) = XY{p.PRPNTS(c, j)(1), p.PRPNTS(c, j)(2)};
        result.index(c, j) = j;
      }
      result.points(c) = n;
      continue;
    }

    CurveBox box;
    loadCurveRecord(c, rec, box);
    spline::MKIKV3(p.PRPARM(c), rec, status);
    if (status) return;
    int count = 0;
    spline::HCAIP3(limit, p.SPLACC, origin, normal, spline::SideNone, 10.0 * p.SPLACC, rec, count,
                   View1<spline::Triple>(raw.data(), limit), View1<int>(rawIndex),
                   View1<bool>(onCurve.data(), limit), status);
    if (status) return;

    // Keep the points on the curve; inner control points go.
    int points = 0;
    for (int k = 1; k <= count; ++k) {
      if (!onCurve(k)) continue;
      ++points;
      result.xy(c, points) = XY{raw(k)(1), raw(k)(2)};
      kept(k) = points;
    }
    result.points(c) = points;
    for (int j = 1; j <= n; ++j) result.index(c, j) = kept(rawIndex(j));
  }
}

}  // namespace kntr::profile
