// Profile curves as polylines (IQPPOL), the midpoints of their segments
// (MKPSMP) and the segment under a picked position (IQPCSG).
#include "profile/polylines.h"

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <vector>

#include "graphics/plotstate.h"
#include "profile/curvepick.h"
#include "support/curve_builder.h"
#include "support/spline_helpers.h"

namespace kntr::profile {
namespace {

using testing::addCurve;
using testing::ellipse;
using testing::segmentPoint;
using testing::setBox;

class Polylines : public testing::ProfileTest {
 protected:
  // IQPPOL with room for `perCurve` points a curve, expected to fail or
  // not; the status starts the other way.
  void run(bool failure, int perCurve = MaxPolylinePoints) {
    bool status = !failure;
    IQPPOL(MaxCurves, perCurve, *lines, status);
    EXPECT_EQ(status, failure) << perCurve;
  }
  std::unique_ptr<ProfilePolylines> lines = std::make_unique<ProfilePolylines>();
};

TEST_F(Polylines, APolylineProfileAndCurvesTooShortForASegmentAreTheirOwnPoints) {
  profile().PRFTYP = PolylineProfile;
  setBox(-5, 5, -5, 5);
  addCurve({{0, 0}, {1, 0}, {1, 2}}, false, Knuckle);
  addCurve({{-1, -1}, {-2, -1}, {-2, -3}, {-1, -3}}, true, Knuckle);
  run(false);
  EXPECT_EQ(lines->curves, 2);
  EXPECT_EQ(lines->points(1), 3);
  EXPECT_EQ(lines->points(2), 4);  // the closed curve does not repeat its first point
  for (int c = 1; c <= 2; ++c) {
    for (int j = 1; j <= profile().NPRPNT(c); ++j) {
      EXPECT_EQ(lines->index(c, j), j);
      EXPECT_EQ(lines->xy(c, j), (XY{profile().PRPNTS(c, j)(1), profile().PRPNTS(c, j)(2)}));
    }
  }
  // Spline curves of one point or none.
  resetProfileBlock();
  setBox(0, 1, 0, 1);
  addCurve({{0.5, 0.5}}, false);
  addCurve({}, false);
  run(false);
  EXPECT_EQ(lines->points(1), 1);
  EXPECT_EQ(lines->xy(1, 1), (XY{0.5, 0.5}));
  EXPECT_EQ(lines->index(1, 1), 1);
  EXPECT_EQ(lines->points(2), 0);
  EXPECT_EQ(output(), "");
}

TEST_F(Polylines, ASplineProfileFollowsItsCurvesThroughItsPoints) {
  setBox(-10, 10, -10, 10);
  addCurve(ellipse(9, 6, 3), true);
  const int open = addCurve({{-8, 5}, {-4, 8}, {0, 6}, {3, 9}, {7, 7}}, false);
  profile().PRPTYP(open, 3) = Knuckle;
  profile().PRKWGT(open, 3) = 0.4;
  profile().PRPTYP(open, 4) = EqualTangents;
  profile().PRTANV(open, 4) = Array1<double, 4>{{1, 0, 0, 0}};
  profile().PRTANL(open, 4) = Array1<double, 2>{{1.0, 2.0}};
  run(false);
  EXPECT_EQ(output(), "");

  for (int c = 1; c <= 2; ++c) {
    const int n = profile().NPRPNT(c);
    const int count = lines->points(c);
    ASSERT_GT(count, n);
    // The index map points at the offset points.
    EXPECT_EQ(lines->index(c, 1), 1);
    for (int j = 1; j <= n; ++j) {
      const XY& at = lines->xy(c, lines->index(c, j));
      EXPECT_NEAR(at.x, profile().PRPNTS(c, j)(1), 1e-12);
      EXPECT_NEAR(at.y, profile().PRPNTS(c, j)(2), 1e-12);
    }
    // Every polyline point lies on the spline.
    const auto solved = testing::solvedCurve(c);
    const int segments = profile().PRCLSD(c) ? n : n - 1;
    for (int k = 1; k <= count; ++k) {
      double best = 1e300;
      for (int i = 1; i <= segments; ++i) {
        for (int s = 0; s <= 400; ++s) {
          const spline::Triple q = segmentPoint(*solved, i, s / 400.0);
          best = std::min(best, std::hypot(lines->xy(c, k).x - q(1), lines->xy(c, k).y - q(2)));
        }
      }
      EXPECT_LT(best, 0.01) << "curve " << c << " point " << k;
    }
  }
  // The closed curve ends short of its first point.
  const XY& last = lines->xy(1, lines->points(1));
  EXPECT_GT(std::hypot(last.x - 6.0, last.y), 0.01);
}

TEST_F(Polylines, TenTimesThePointsMustFitTheCallersArray) {
  setBox(-10, 10, -10, 10);
  addCurve(ellipse(30, 6, 3), true);
  type("\n");
  run(true, 299);
  EXPECT_TRUE(testing::shown(
      output(), "(IQPPOL) Number of defined profile curve points exceedes allocation limit!"));
  run(false, 300);
  // A polyline needs room for its points only.
  profile().PRFTYP = PolylineProfile;
  run(false, 30);
  type("\n");
  run(true, 29);
}

using CurvePick = testing::ProfileTest;

// A square box of half side `half` about the origin, shown whole.
void showBox(double half) {
  setBox(-half, half, -half, half);
  graphics::G2SCAL(-half, half, -half, half);
}

// The midpoints MKPSMP gives for curve c.
std::vector<XY> midpoints(int c, bool& failed) {
  Array1<XY, MaxCurvePoints> mid;
  int count = 0;
  MKPSMP(c, count, View1<XY>(mid), failed);
  return std::vector<XY>(mid.data(), mid.data() + count);
}

struct Pick {
  int curve = 0, segment = 0, verdict = -1;
  double x = 0.0, y = 0.0;
};

Pick pick(double x, double y) {
  Pick r;
  bool failed = true;
  IQPCSG(x, y, r.curve, r.segment, r.x, r.y, r.verdict, failed);
  EXPECT_FALSE(failed);
  return r;
}

TEST_F(CurvePick, MidpointsOfPolylineChords) {
  profile().PRFTYP = PolylineProfile;
  addCurve({{0, 0}, {4, 0}, {0, 2}}, true, Knuckle);
  bool failed = true;
  EXPECT_EQ(midpoints(1, failed), (std::vector<XY>{{2, 0}, {2, 1}, {0, 1}}));
  EXPECT_FALSE(failed);
  profile().PRCLSD(1) = false;
  EXPECT_EQ(midpoints(1, failed).size(), 2u);
}

TEST_F(CurvePick, MidpointsOfSplineSegmentsAreAtHalfParameter) {
  setBox(-10, 10, -10, 10);
  addCurve({{-8, 0}, {-3, 4}, {1, 2}, {5, 6}, {8, 1}}, false);
  addCurve(ellipse(100, 9, 9), true);
  bool failed = true;
  const std::vector<XY> mid = midpoints(1, failed);
  ASSERT_FALSE(failed);
  ASSERT_EQ(mid.size(), 4u);
  const auto solved = testing::solvedCurve(1);
  for (int i = 1; i <= 4; ++i) {
    const spline::Triple half = segmentPoint(*solved, i, 0.5);
    EXPECT_NEAR(mid[i - 1].x, half(1), 1e-12);
    EXPECT_NEAR(mid[i - 1].y, half(2), 1e-12);
  }
  // The midpoint polyline holds 100 points: a closed curve of 49 points
  // (49 segments, 99 points) fits, the last segment closing it; one of 100
  // points does not.
  addCurve(ellipse(49, 9, 9), true);
  const std::vector<XY> round = midpoints(3, failed);
  EXPECT_FALSE(failed);
  ASSERT_EQ(round.size(), 49u);
  EXPECT_NEAR(std::hypot(round[48].x, round[48].y), 9.0, 1e-2);
  EXPECT_LT(round[48].y, 0.0);
  EXPECT_EQ(output(), "");
  type("\n");
  midpoints(2, failed);
  EXPECT_TRUE(failed);
  EXPECT_TRUE(testing::shown(output(), "(HCPIP3) Max allowed number of interpolation points exceeded!"));

  type("\n");
  midpoints(4, failed);
  EXPECT_TRUE(failed);
  EXPECT_TRUE(testing::shown(output(), "(MKPSMP) Illegal profile curve index!"));
}

TEST_F(CurvePick, PicksNearOnAndFarFromASpline) {
  showBox(6);
  addCurve(ellipse(8, 5, 5), true);
  const auto solved = testing::solvedCurve(1);
  // Near segment 1: the foot lies on it, and no point of it is clearly nearer.
  const double x = 5.15 * std::cos(0.3), y = 5.15 * std::sin(0.3);
  Pick near = pick(x, y);
  EXPECT_EQ(near.verdict, PickFound);
  EXPECT_EQ(near.curve, 1);
  EXPECT_EQ(near.segment, 1);
  double onCurve = 1e300, nearest = 1e300;
  for (int s = 0; s <= 20000; ++s) {
    const spline::Triple q = segmentPoint(*solved, 1, s / 20000.0);
    onCurve = std::min(onCurve, std::hypot(q(1) - near.x, q(2) - near.y));
    nearest = std::min(nearest, std::hypot(q(1) - x, q(2) - y));
  }
  EXPECT_LT(onCurve, 1e-3);
  EXPECT_LT(std::hypot(near.x - x, near.y - y) - nearest, 0.012);

  // On point 3, shared by segments 2 and 3: not ambiguous.
  const Pick on = pick(profile().PRPNTS(1, 3)(1), profile().PRPNTS(1, 3)(2));
  EXPECT_EQ(on.verdict, PickFound);
  EXPECT_EQ(on.segment, 2);
  EXPECT_LT(std::hypot(on.x - profile().PRPNTS(1, 3)(1), on.y - profile().PRPNTS(1, 3)(2)), 0.012);

  EXPECT_EQ(pick(5.9, 5.9).verdict, PickNothingNear);
  EXPECT_EQ(output(), "");
}

TEST_F(CurvePick, PicksOnPolylines) {
  profile().PRFTYP = PolylineProfile;
  showBox(5);  // a pick radius of 0.3
  addCurve({{-2, -4}, {2, -4}}, false, Knuckle);
  addCurve({{-2, -3.8}, {2, -3.8}}, false, Knuckle);
  addCurve({{0, 0}, {3, 0}, {3, 3}, {0, 3}}, true, Knuckle);
  std::vector<XY> dense;
  for (int i = 0; i < 30; ++i) dense.push_back(XY{-4.5 + 0.01 * i, 4 + 0.01 * (i % 2)});
  addCurve(dense, false, Knuckle);

  // Between two curves at similar distances: ambiguous. Five times nearer to
  // one of them settles it; the foot is on the line.
  EXPECT_EQ(pick(0.5, -3.9).verdict, PickAmbiguous);
  const Pick line = pick(0.5, -3.98);
  EXPECT_EQ(line.verdict, PickFound);
  EXPECT_EQ(line.curve, 1);
  EXPECT_EQ(line.segment, 1);
  EXPECT_NEAR(line.x, 0.5, 0.01);
  EXPECT_NEAR(line.y, -4.0, 1e-12);

  // The closing chord is the last segment. Halving stops once both halves
  // are within the tolerance of each other: about sqrt(2 d tol) along it.
  const Pick chord = pick(-0.1, 1.2);
  EXPECT_EQ(chord.verdict, PickFound);
  EXPECT_EQ(chord.curve, 3);
  EXPECT_EQ(chord.segment, 4);
  EXPECT_NEAR(chord.x, 0.0, 1e-12);
  EXPECT_NEAR(chord.y, 1.2, std::sqrt(2 * 0.1 * 0.01));

  // More than 20 candidates: ambiguous, naming the first.
  const Pick crowd = pick(-4.35, 4.05);
  EXPECT_EQ(crowd.verdict, PickAmbiguous);
  EXPECT_EQ(crowd.curve, 4);
  EXPECT_EQ(crowd.segment, 1);
}

}  // namespace
}  // namespace kntr::profile
