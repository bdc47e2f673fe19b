// Section properties of closed curves against the closed forms of a circle,
// a rectangle with an off-centre rectangular hole and a half ellipse, and
// their page in the printout.
#include "profile/sectionprops.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "profile/block.h"
#include "profile/printout.h"
#include "support/curve_builder.h"
#include "support/dialogue_fixture.h"

namespace kntr::profile {
namespace {

constexpr double pi = 3.141592653589793;
constexpr auto npos = std::string::npos;

class SectionProps : public kntr::testing::DialogueTest {
 protected:
  void SetUp() override {
    DialogueTest::SetUp();
    resetProfileBlock();
  }
  static void box(double minX, double maxX, double minY, double maxY) {
    ProfileData& p = profile();
    p.PRBBOX = {minX, maxX, minY, maxY};
    p.BBOXOK = true;
    // A fine spline accuracy, so that the polylines follow the splines closely.
    p.SPLACC = 1e-7 * std::max(maxX - minX, maxY - minY);
  }
  static SectionProperties compute() {
    SectionProperties props;
    bool status = true;
    IQSECP(props, status);
    EXPECT_FALSE(status);
    return props;
  }
  // Each property equal to its closed form within 1e-6 relative to `scale`
  // of its kind (a length, an area, a first or a second moment).
  static void expectProps(const SectionProperties& got, const SectionProperties& want,
                          double length) {
    const double area = length * length;
    EXPECT_NEAR(got.area, want.area, 1e-6 * std::fabs(want.area));
    EXPECT_NEAR(got.xc, want.xc, 1e-6 * length);
    EXPECT_NEAR(got.yc, want.yc, 1e-6 * length);
    EXPECT_NEAR(got.sx, want.sx, 1e-6 * std::max(std::fabs(want.sx), area * length));
    EXPECT_NEAR(got.sy, want.sy, 1e-6 * std::max(std::fabs(want.sy), area * length));
    const double second = std::max(std::fabs(want.ixx), std::fabs(want.iyy));
    EXPECT_NEAR(got.ixx, want.ixx, 1e-6 * std::fabs(want.ixx));
    EXPECT_NEAR(got.iyy, want.iyy, 1e-6 * std::fabs(want.iyy));
    EXPECT_NEAR(got.ixy, want.ixy, 1e-6 * second);
  }
};

TEST_F(SectionProps, CircleOfAHundredPoints) {
  // Radius 2 about (3, 1), the reference point at (-1, 4).
  const double r = 2.0, cx = 3.0, cy = 1.0;
  box(0.0, 6.0, -2.0, 4.0);
  profile().PRREFP = {-1.0, 4.0};
  std::vector<XY> points = kntr::testing::ellipse(100, r, r);
  for (XY& q : points) q = XY{q.x + cx, q.y + cy};
  kntr::testing::addCurve(points, true);
  const double area = pi * r * r;
  SectionProperties want;
  want.area = area;
  want.xc = cx;
  want.yc = cy;
  want.sx = area * (cy - 4.0);
  want.sy = area * (cx + 1.0);
  want.ixx = want.iyy = pi * std::pow(r, 4) / 4.0;
  want.ixy = 0.0;
  const SectionProperties got = compute();
  EXPECT_EQ(got.curves, 1);
  expectProps(got, want, r);

  // The same circle walked clockwise is the same region.
  std::vector<XY> reversed(points.rbegin(), points.rend());
  resetProfileBlock();
  box(0.0, 6.0, -2.0, 4.0);
  profile().PRREFP = {-1.0, 4.0};
  kntr::testing::addCurve(reversed, true);
  expectProps(compute(), want, r);
}

TEST_F(SectionProps, RectangleWithAnOffCentreRectangularHole) {
  // Outer 8 x 5 at the origin; hole 2 x 1 with its lower left corner at
  // (5, 3), walked clockwise; an open curve beside them counts for nothing.
  box(-1.0, 9.0, -1.0, 6.0);
  profile().PRFTYP = PolylineProfile;
  profile().PRREFP = {1.0, 2.0};
  kntr::testing::addCurve({{0, 0}, {8, 0}, {8, 5}, {0, 5}}, true, Knuckle);
  kntr::testing::addCurve({{5, 3}, {5, 4}, {7, 4}, {7, 3}}, true, Knuckle);
  kntr::testing::addCurve({{-1, -1}, {9, 6}}, false, Knuckle);

  const double a1 = 40.0, x1 = 4.0, y1 = 2.5, a2 = 2.0, x2 = 6.0, y2 = 3.5;
  SectionProperties want;
  want.area = a1 - a2;
  want.xc = (a1 * x1 - a2 * x2) / want.area;
  want.yc = (a1 * y1 - a2 * y2) / want.area;
  want.sx = a1 * (y1 - 2.0) - a2 * (y2 - 2.0);
  want.sy = a1 * (x1 - 1.0) - a2 * (x2 - 1.0);
  // Own moments, moved to the common centroid by the parallel axis rule.
  const double dx1 = x1 - want.xc, dy1 = y1 - want.yc, dx2 = x2 - want.xc, dy2 = y2 - want.yc;
  want.ixx = 8.0 * 125.0 / 12.0 + a1 * dy1 * dy1 - (2.0 * 1.0 / 12.0 + a2 * dy2 * dy2);
  want.iyy = 512.0 * 5.0 / 12.0 + a1 * dx1 * dx1 - (8.0 * 1.0 / 12.0 + a2 * dx2 * dx2);
  want.ixy = a1 * dx1 * dy1 - a2 * dx2 * dy2;
  ASSERT_GT(std::fabs(want.ixy), 1.0);
  const SectionProperties got = compute();
  EXPECT_EQ(got.curves, 2);
  expectProps(got, want, 5.0);
}

TEST_F(SectionProps, HalfEllipseOnItsFlatSide) {
  // Half axes 3 (X) and 2 (Y) about (1, 0): the arc through 61 points,
  // closed by collinear points along the X axis. At the two corners both
  // tangents are given: along the axis on the flat side, upright on the arc.
  const double a = 3.0, b = 2.0, x0 = 1.0;
  box(-3.0, 5.0, -1.0, 3.0);
  std::vector<XY> points;
  for (int i = 0; i <= 60; ++i) {
    const double t = pi * i / 60;
    points.push_back(XY{x0 + a * std::cos(t), b * std::sin(t)});
  }
  for (int i = 1; i <= 5; ++i) points.push_back(XY{x0 - a + 2.0 * a * i / 6.0, 0.0});
  const int c = kntr::testing::addCurve(points, true);
  ProfileData& p = profile();
  p.PRPTYP(c, 1) = BothTangents;
  p.PRTANV(c, 1) = {1.0, 0.0, 0.0, 1.0};
  p.PRPTYP(c, 61) = BothTangents;
  p.PRTANV(c, 61) = {0.0, -1.0, 1.0, 0.0};
  for (const int j : {1, 61}) p.PRTANL(c, j) = {1.0, 1.0};

  const double area = pi * a * b / 2.0, yc = 4.0 * b / (3.0 * pi);
  SectionProperties want;
  want.area = area;
  want.xc = x0;
  want.yc = yc;
  want.sx = area * yc;
  want.sy = area * x0;
  want.ixx = pi * a * b * b * b / 8.0 - area * yc * yc;
  want.iyy = pi * a * a * a * b / 8.0;
  want.ixy = 0.0;
  expectProps(compute(), want, b);
}

TEST_F(SectionProps, NoClosedCurveIsToldAndThePrintoutShowsThePage) {
  box(0.0, 10.0, 0.0, 10.0);
  profile().PRFTYP = PolylineProfile;
  kntr::testing::addCurve({{1, 1}, {5, 5}, {9, 1}}, false, Knuckle);
  SectionProperties props;
  bool status = false;
  script("\n");
  IQSECP(props, status);
  EXPECT_TRUE(status);
  EXPECT_NE(output().find("No closed profile curves available!"), npos);

  // The printout carries the page only when the setting is on.
  profile().PRCLSD(1) = true;
  script("\n\n\n\n");
  PRKNTR(status);
  EXPECT_EQ(output().find("Section properties"), npos);
  profile().SHOWSP = true;
  script("\n\n\n\n");
  PRKNTR(status);
  const std::string said = output();
  EXPECT_NE(said.find("Section properties"), npos);
  // A triangle of base 8 and height 4: area 16.
  EXPECT_NE(said.find("Area ............................................. :  1.60000E+01 [m2]"),
            npos)
      << said;
}

}  // namespace
}  // namespace kntr::profile
