#include "profile/curvepick.h"

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <vector>

#include "graphics/plotstate.h"
#include "profile/curverecord.h"
#include "spline/knots.h"
#include "spline/tangents.h"
#include "support/curve_builder.h"
#include "support/spline_helpers.h"

namespace kntr::profile {
namespace {

using testing::addCurve;
using testing::setBox;
using testing::shown;
using CurvePick = testing::ProfileTest;

constexpr double Pi = 3.141592653589793;

std::vector<XY> circle(int n, double r) {
  std::vector<XY> v;
  for (int i = 0; i < n; ++i)
    v.push_back(XY{r * std::cos(2 * Pi * i / n), r * std::sin(2 * Pi * i / n)});
  return v;
}

// The box, the accuracy and a view showing exactly the box.
void showBox(double xmin, double xmax, double ymin, double ymax) {
  setBox(xmin, xmax, ymin, ymax);
  graphics::G2SCAL(xmin, xmax, ymin, ymax);
}

// The solved spline of curve c, for independent evaluation.
std::unique_ptr<spline::HermiteCurve> solvedCurve(int c) {
  auto rec = std::make_unique<spline::SplineRecord>();
  auto solved = std::make_unique<spline::HermiteCurve>();
  CurveBox box;
  loadCurveRecord(c, *rec, box);
  bool failed = true;
  spline::MKIKV3(profile().PRPARM(c), *rec, failed);
  spline::HCTAN3(500, testing::P(0, 0), testing::P(1, 0), spline::SideNone, 0.0, *rec, *solved,
                 failed);
  EXPECT_FALSE(failed);
  return solved;
}

TEST_F(CurvePick, MidpointsOfAClosedPolylineTriangle) {
  profile().PRFTYP = PolylineProfile;
  addCurve({{0, 0}, {4, 0}, {0, 2}}, true, Knuckle);
  Array1<XY, MaxCurvePoints> mid;
  int count = 0;
  bool failed = true;
  MKPSMP(1, count, View1<XY>(mid), failed);
  ASSERT_FALSE(failed);
  ASSERT_EQ(count, 3);
  EXPECT_EQ(mid(1), (XY{2, 0}));
  EXPECT_EQ(mid(2), (XY{2, 1}));
  EXPECT_EQ(mid(3), (XY{0, 1}));
  profile().PRCLSD(1) = false;
  MKPSMP(1, count, View1<XY>(mid), failed);
  EXPECT_EQ(count, 2);
}

TEST_F(CurvePick, MidpointsOfSplineSegmentsAreAtHalfParameter) {
  setBox(-10, 10, -10, 10);
  addCurve({{-8, 0}, {-3, 4}, {1, 2}, {5, 6}, {8, 1}}, false);
  const int closed = addCurve(circle(100, 9), true);
  Array1<XY, MaxCurvePoints> mid;
  int count = 0;
  bool failed = true;
  MKPSMP(1, count, View1<XY>(mid), failed);
  ASSERT_FALSE(failed);
  ASSERT_EQ(count, 4);
  auto solved = solvedCurve(1);
  for (int i = 1; i <= 4; ++i) {
    const spline::Triple half = testing::segmentPoint(*solved, i, 0.5);
    EXPECT_NEAR(mid(i).x, half(1), 1e-12);
    EXPECT_NEAR(mid(i).y, half(2), 1e-12);
  }
  // A closed curve of 100 points has 100 segments.
  MKPSMP(closed, count, View1<XY>(mid), failed);
  EXPECT_FALSE(failed);
  EXPECT_EQ(count, 100);
  EXPECT_NEAR(std::hypot(mid(100).x, mid(100).y), 9.0, 1e-3);
  EXPECT_EQ(output(), "");

  type("\n");
  MKPSMP(3, count, View1<XY>(mid), failed);
  EXPECT_TRUE(failed);
  EXPECT_TRUE(shown(output(), "(MKPSMP) Illegal profile curve index!"));
}

TEST_F(CurvePick, APickNearASplineFindsCurveSegmentAndFoot) {
  showBox(-6, 6, -6, 6);
  addCurve(circle(8, 5), true);
  auto solved = solvedCurve(1);
  const double x = 5.15 * std::cos(0.3), y = 5.15 * std::sin(0.3);
  int curve = 0, segment = 0, verdict = -1;
  double px = 0, py = 0;
  bool failed = true;
  IQPCSG(x, y, curve, segment, px, py, verdict, failed);
  ASSERT_FALSE(failed);
  EXPECT_EQ(verdict, PickFound);
  EXPECT_EQ(curve, 1);
  EXPECT_EQ(segment, 1);
  // The foot lies on the segment, and no point of it is clearly nearer.
  double onCurve = 1e300, nearest = 1e300;
  for (int s = 0; s <= 20000; ++s) {
    const spline::Triple q = testing::segmentPoint(*solved, 1, s / 20000.0);
    onCurve = std::min(onCurve, std::hypot(q(1) - px, q(2) - py));
    nearest = std::min(nearest, std::hypot(q(1) - x, q(2) - y));
  }
  EXPECT_LT(onCurve, 1e-3);
  EXPECT_LT(std::hypot(px - x, py - y) - nearest, 0.012);

  // Far from everything.
  IQPCSG(5.9, 5.9, curve, segment, px, py, verdict, failed);
  EXPECT_FALSE(failed);
  EXPECT_EQ(verdict, PickNothingNear);
  EXPECT_EQ(output(), "");
}

TEST_F(CurvePick, APickOnAPointSharedByTwoSegmentsIsNotAmbiguous) {
  showBox(-6, 6, -6, 6);
  addCurve(circle(8, 5), true);
  const double x = profile().PRPNTS(1, 3)(1), y = profile().PRPNTS(1, 3)(2);
  int curve = 0, segment = 0, verdict = -1;
  double px = 0, py = 0;
  bool failed = true;
  IQPCSG(x, y, curve, segment, px, py, verdict, failed);
  ASSERT_FALSE(failed);
  EXPECT_EQ(verdict, PickFound);
  EXPECT_EQ(segment, 2);
  EXPECT_LT(std::hypot(px - x, py - y), 0.012);
}

TEST_F(CurvePick, TwoCurvesAtSimilarDistancesAreAmbiguous) {
  profile().PRFTYP = PolylineProfile;
  showBox(-5, 5, -5, 5);
  addCurve({{-2, 0}, {2, 0}}, false, Knuckle);
  addCurve({{-2, 0.2}, {2, 0.2}}, false, Knuckle);
  int curve = 0, segment = 0, verdict = -1;
  double px = 0, py = 0;
  bool failed = true;
  IQPCSG(0.5, 0.1, curve, segment, px, py, verdict, failed);
  ASSERT_FALSE(failed);
  EXPECT_EQ(verdict, PickAmbiguous);
  // Five times nearer to one of them settles it; the foot is on the line.
  IQPCSG(0.5, 0.02, curve, segment, px, py, verdict, failed);
  EXPECT_EQ(verdict, PickFound);
  EXPECT_EQ(curve, 1);
  EXPECT_EQ(segment, 1);
  EXPECT_NEAR(px, 0.5, 0.01);
  EXPECT_NEAR(py, 0.0, 1e-12);
}

TEST_F(CurvePick, TheClosingChordIsTheLastSegment) {
  profile().PRFTYP = PolylineProfile;
  showBox(-5, 5, -5, 5);
  addCurve({{0, 0}, {3, 0}, {3, 3}, {0, 3}}, true, Knuckle);
  int curve = 0, segment = 0, verdict = -1;
  double px = 0, py = 0;
  bool failed = true;
  IQPCSG(-0.1, 1.2, curve, segment, px, py, verdict, failed);
  ASSERT_FALSE(failed);
  EXPECT_EQ(verdict, PickFound);
  EXPECT_EQ(segment, 4);
  EXPECT_NEAR(px, 0.0, 1e-12);
  // Halving stops once both halves are within the tolerance of each other:
  // about sqrt(2 d tol) along a straight chord.
  EXPECT_NEAR(py, 1.2, std::sqrt(2 * 0.1 * 0.01));
}

TEST_F(CurvePick, TooManyCandidatesAreAmbiguous) {
  profile().PRFTYP = PolylineProfile;
  showBox(-5, 5, -5, 5);
  std::vector<XY> dense;
  for (int i = 0; i < 30; ++i) dense.push_back(XY{0.01 * i, 0.01 * (i % 2)});
  addCurve(dense, false, Knuckle);
  int curve = 0, segment = 0, verdict = -1;
  double px = 0, py = 0;
  bool failed = true;
  IQPCSG(0.15, 0.05, curve, segment, px, py, verdict, failed);
  ASSERT_FALSE(failed);
  EXPECT_EQ(verdict, PickAmbiguous);
  EXPECT_EQ(curve, 1);
  EXPECT_EQ(segment, 1);
}

}  // namespace
}  // namespace kntr::profile
