#include "profile/polylines.h"

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <vector>

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
using Polylines = testing::ProfileTest;

constexpr double Pi = 3.141592653589793;

std::vector<XY> ellipse(int n, double a, double b, double cx = 0.0, double cy = 0.0) {
  std::vector<XY> v;
  for (int i = 0; i < n; ++i) {
    const double t = 2 * Pi * i / n;
    v.push_back(XY{cx + a * std::cos(t), cy + b * std::sin(t)});
  }
  return v;
}

double distanceXY(const XY& a, const spline::Triple& b) {
  return std::hypot(a.x - b(1), a.y - b(2));
}

TEST_F(Polylines, APolylineProfileIsItsOwnPoints) {
  profile().PRFTYP = PolylineProfile;
  setBox(-5, 5, -5, 5);
  addCurve({{0, 0}, {1, 0}, {1, 2}}, false, Knuckle);
  addCurve({{-1, -1}, {-2, -1}, {-2, -3}, {-1, -3}}, true, Knuckle);
  auto lines = std::make_unique<ProfilePolylines>();
  bool status = true;
  IQPPOL(MaxCurves, MaxPolylinePoints, *lines, status);
  ASSERT_FALSE(status);
  EXPECT_EQ(lines->curves, 2);
  EXPECT_EQ(lines->points(1), 3);
  EXPECT_EQ(lines->points(2), 4);  // the closed curve does not repeat its first point
  for (int c = 1; c <= 2; ++c)
    for (int j = 1; j <= profile().NPRPNT(c); ++j) {
      EXPECT_EQ(lines->index(c, j), j);
      EXPECT_EQ(lines->xy(c, j), (XY{profile().PRPNTS(c, j)(1), profile().PRPNTS(c, j)(2)}));
    }
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
  auto lines = std::make_unique<ProfilePolylines>();
  bool status = true;
  IQPPOL(MaxCurves, MaxPolylinePoints, *lines, status);
  ASSERT_FALSE(status);
  EXPECT_EQ(output(), "");

  auto rec = std::make_unique<spline::SplineRecord>();
  auto solved = std::make_unique<spline::HermiteCurve>();
  for (int c = 1; c <= 2; ++c) {
    const int n = profile().NPRPNT(c);
    const int count = lines->points(c);
    ASSERT_GT(count, n);
    // The index map points at the offset points.
    for (int j = 1; j <= n; ++j) {
      const XY& at = lines->xy(c, lines->index(c, j));
      EXPECT_NEAR(at.x, profile().PRPNTS(c, j)(1), 1e-12);
      EXPECT_NEAR(at.y, profile().PRPNTS(c, j)(2), 1e-12);
    }
    EXPECT_EQ(lines->index(c, 1), 1);
    // Every polyline point lies on the spline.
    CurveBox box;
    loadCurveRecord(c, *rec, box);
    bool failed = true;
    spline::MKIKV3(profile().PRPARM(c), *rec, failed);
    spline::HCTAN3(500, testing::P(0, 0), testing::P(1, 0), spline::SideNone, 0.0, *rec, *solved,
                   failed);
    ASSERT_FALSE(failed);
    const int segments = profile().PRCLSD(c) ? n : n - 1;
    for (int k = 1; k <= count; ++k) {
      double best = 1e300;
      for (int i = 1; i <= segments; ++i)
        for (int s = 0; s <= 400; ++s)
          best = std::min(
              best, distanceXY(lines->xy(c, k), testing::segmentPoint(*solved, i, s / 400.0)));
      EXPECT_LT(best, 0.01) << "curve " << c << " point " << k;
    }
  }
  // The closed curve ends short of its first point.
  EXPECT_GT(std::hypot(lines->xy(1, lines->points(1)).x - 6.0, lines->xy(1, lines->points(1)).y),
            0.01);
}

TEST_F(Polylines, CurvesTooShortForASegmentAreTheirPoints) {
  setBox(0, 1, 0, 1);
  addCurve({{0.5, 0.5}}, false);
  addCurve({}, false);
  auto lines = std::make_unique<ProfilePolylines>();
  bool status = true;
  IQPPOL(MaxCurves, MaxPolylinePoints, *lines, status);
  EXPECT_FALSE(status);
  EXPECT_EQ(lines->points(1), 1);
  EXPECT_EQ(lines->index(1, 1), 1);
  EXPECT_EQ(lines->points(2), 0);
  EXPECT_EQ(output(), "");
}

TEST_F(Polylines, TenTimesThePointsMustFitTheCallersArray) {
  setBox(-10, 10, -10, 10);
  addCurve(ellipse(30, 6, 3), true);
  auto lines = std::make_unique<ProfilePolylines>();
  bool status = false;
  type("\n");
  IQPPOL(MaxCurves, 299, *lines, status);
  EXPECT_TRUE(status);
  EXPECT_TRUE(shown(output(),
                    "(IQPPOL) Number of defined profile curve points exceedes allocation limit!"));
  IQPPOL(MaxCurves, 300, *lines, status);
  EXPECT_FALSE(status);
  // A polyline needs room for its points only.
  profile().PRFTYP = PolylineProfile;
  IQPPOL(MaxCurves, 30, *lines, status);
  EXPECT_FALSE(status);
  type("\n");
  IQPPOL(MaxCurves, 29, *lines, status);
  EXPECT_TRUE(status);
}

}  // namespace
}  // namespace kntr::profile
