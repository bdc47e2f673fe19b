#include "profile/curvepick.h"

#include <algorithm>
#include <cmath>

#include "framework/text.h"
#include "graphics/plotstate.h"
#include "profile/curverecord.h"
#include "profile/polylines.h"
#include "spline/evaluate.h"
#include "spline/knots.h"
#include "spline/tangents.h"

namespace kntr::profile {

namespace {

using spline::Bezier;
using spline::Triple;

// Most candidates IQPCSG weighs before it calls the pick ambiguous.
constexpr int MaxCandidates = 20;
// Pick radius as a share of the larger side of the visible rectangle.
constexpr double PickShare = 0.03;
// A second candidate this many times farther than the best is no rival.
constexpr double RivalRatio = 5.0;
// Most halvings in the search for the point on the curve.
constexpr int MaxHalvings = 20;

const Triple planeOrigin{};
const Triple planeNormal{{1.0, 0.0, 0.0}};

Triple atXY(double x, double y) {
  return Triple{{x, y, 0.0}};
}

double distance(const Triple& a, const Triple& b) {
  const double dx = b(1) - a(1), dy = b(2) - a(2), dz = b(3) - a(3);
  return std::sqrt(dx * dx + dy * dy + dz * dz);
}

// Smallest distance from p to the three legs of a polygon.
double legDistance(const Triple& p, const Bezier& polygon) {
  double best = 0.0;
  bool failed = false;
  Triple foot;
  for (int k = 1; k <= 3; ++k) {
    spline::IQNPLS(p, polygon(k), polygon(k + 1), foot, failed);
    const double d = distance(p, foot);
    if (k == 1 || d < best) best = d;
  }
  return best;
}

}  // namespace

// Most curve points the midpoint polyline may hold: three per segment,
// ends shared, so a curve of up to 50 segments.
constexpr int MidpointPolylineLimit = 100;

void MKPSMP(int curve, int& count, View1<XY> midpoints, bool& failed) {
  failed = false;
  count = 0;
  const ProfileData& p = profile();
  if (curve < 1 || curve > p.NPRCRV) {
    framework::fail("(MKPSMP) Illegal profile curve index!", failed);
    return;
  }
  const int n = p.NPRPNT(curve);
  if (p.PRFTYP != SplineProfile) {
    auto middle = [&](int i, int j) {
      return XY{0.5 * (p.PRPNTS(curve, i)(1) + p.PRPNTS(curve, j)(1)),
                0.5 * (p.PRPNTS(curve, i)(2) + p.PRPNTS(curve, j)(2))};
    };
    for (int j = 1; j <= n - 1; ++j) midpoints(++count) = middle(j, j + 1);
    if (p.PRCLSD(curve) && n >= 1) midpoints(++count) = middle(n, 1);
    return;
  }
  if (n < 2) return;

  static spline::SplineRecord rec;
  CurveBox box;
  loadCurveRecord(curve, rec, box);
  spline::MKIKV3(p.PRPARM(curve), rec, failed);
  if (failed) return;
  const double tolerance = box.largerSide() / 1000.0;
  // Three points per segment: parameters 0, 1/2 and 1, ends shared.
  static Array1<Triple, 2 * MaxCurvePoints> points;
  static Array1<int, MaxCurvePoints> index;
  int total = 0;
  spline::HCPIP3(MidpointPolylineLimit, 3, planeOrigin, planeNormal, spline::SideNone, tolerance, rec,
                 total, View1<Triple>(points), View1<int>(index), failed);
  if (failed) return;
  for (int k = 2; k <= total; k += 2) midpoints(++count) = XY{points(k)(1), points(k)(2)};
}

void IQPCSG(double x, double y, int& curve, int& segment, double& px, double& py, int& verdict,
            bool& failed) {
  failed = false;
  curve = 0;
  segment = 0;
  px = x;
  py = y;
  verdict = PickNothingNear;
  const ProfileData& p = profile();

  // The visible rectangle and the pick radius.
  double xmin = 0.0, xmax = 0.0, ymin = 0.0, ymax = 0.0;
  graphics::GINQRL("xmgmin", xmin, failed);
  if (!failed) graphics::GINQRL("xmgmax", xmax, failed);
  if (!failed) graphics::GINQRL("ymgmin", ymin, failed);
  if (!failed) graphics::GINQRL("ymgmax", ymax, failed);
  if (failed) return;
  const double radius = PickShare * std::max(xmax - xmin, ymax - ymin);

  static ProfilePolylines lines;
  IQPPOL(MaxCurves, MaxPolylinePoints, lines, failed);
  if (failed) return;

  // Candidates: chords within the radius, with their curve and segment.
  static Array1<double, MaxCandidates> candidateDistance;
  static Array1<int, MaxCandidates> candidateCurve, candidateSegment, order;
  int candidates = 0;
  const Triple pick = atXY(x, y);
  for (int c = 1; c <= lines.curves; ++c) {
    const int n = p.NPRPNT(c);
    const int count = lines.points(c);
    if (n < 2 || count < 2) continue;
    const bool closed = p.PRCLSD(c);
    const int chords = closed ? count : count - 1;
    for (int j = 1; j <= chords; ++j) {
      const XY& a = lines.xy(c, j);
      const XY& b = lines.xy(c, j < count ? j + 1 : 1);
      if (!spline::BOXOVL(std::min(a.x, b.x), std::max(a.x, b.x), std::min(a.y, b.y),
                          std::max(a.y, b.y), xmin, xmax, ymin, ymax))
        continue;
      Triple foot;
      spline::IQNPLS(pick, atXY(a.x, a.y), atXY(b.x, b.y), foot, failed);
      const double d = distance(pick, foot);
      if (d > radius) continue;

      // The offset segment that holds this chord.
      int k = 0;
      if (j == count) {
        k = n;
      } else {
        for (int s = 1; s <= n - 1 && k == 0; ++s)
          if (lines.index(c, s) <= j && j < lines.index(c, s + 1)) k = s;
        if (k == 0) {
          if (!closed) return;
          k = n;
        }
      }
      if (candidates == MaxCandidates) {
        curve = candidateCurve(1);
        segment = candidateSegment(1);
        verdict = PickAmbiguous;
        return;
      }
      ++candidates;
      candidateDistance(candidates) = d;
      candidateCurve(candidates) = c;
      candidateSegment(candidates) = k;
    }
  }
  if (candidates == 0) return;

  // The nearest segment, and whether another one competes with it.
  spline::IXSRTD(candidates, View1<const double>(candidateDistance.data(), candidates),
                 View1<int>(order.data(), candidates), failed);
  int remaining = candidates;
  while (remaining >= 2 && candidateCurve(order(1)) == candidateCurve(order(2)) &&
         candidateSegment(order(1)) == candidateSegment(order(2))) {
    for (int s = 2; s < remaining; ++s) order(s) = order(s + 1);
    --remaining;
  }
  const int best = order(1);
  curve = candidateCurve(best);
  segment = candidateSegment(best);
  verdict = PickFound;
  if (remaining >= 2 && candidateDistance(best) != 0.0 &&
      candidateDistance(order(2)) / candidateDistance(best) < RivalRatio) {
    verdict = PickAmbiguous;
    return;
  }

  // The point on the cubic: halve the segment's Bezier polygon towards
  // the position.
  static spline::SplineRecord rec;
  static spline::HermiteCurve solved;
  CurveBox box;
  loadCurveRecord(curve, rec, box);
  const double tolerance = box.largerSide() / 1000.0;
  spline::MKIKV3(p.PRPARM(curve), rec, failed);
  if (failed) return;
  spline::HCTAN3(MaxCurvePoints, planeOrigin, planeNormal, spline::SideNone, tolerance, rec, solved,
                 failed);
  if (failed) return;
  const int n = solved.m;
  const int next = segment < n ? segment + 1 : 1;
  Bezier polygon, left, right;
  bool flat = false, splitFailed = false;
  spline::HCBEZ3(solved.points(segment), solved.points(next),
                 spline::trailing(solved.tangents(segment)), spline::leading(solved.tangents(next)),
                 tolerance, polygon, flat, splitFailed);
  if (splitFailed) {
    verdict = PickNothingNear;
    return;
  }
  double previous = 0.0;
  for (int iteration = 1;; ++iteration) {
    spline::HCSPL3(polygon, 0.5, left, right, splitFailed);
    if (splitFailed) {
      verdict = PickNothingNear;
      return;
    }
    const double dLeft = legDistance(pick, left);
    const double dRight = legDistance(pick, right);
    const double d = std::min(dLeft, dRight);
    if (iteration >= 2 && std::fabs(d - previous) < tolerance &&
        std::fabs(dLeft - dRight) < tolerance)
      break;
    if (iteration > MaxHalvings) break;
    polygon = dLeft >= dRight ? right : left;
    previous = d;
  }
  spline::HCSPL3(polygon, 0.5, left, right, splitFailed);
  if (splitFailed) {
    verdict = PickNothingNear;
    return;
  }
  px = left(4)(1);
  py = left(4)(2);
}

}  // namespace kntr::profile
