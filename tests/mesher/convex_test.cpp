// Area, width and diameter of polygons against closed forms and brute force.
#include "mesher/convex.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <vector>

#include "mesher/limits.h"
#include "support/mesh_fixture.h"

namespace kntr::mesher {
namespace {

using testing::MesherTest;

struct Coordinates {
  std::vector<double> x, y;
  int n() const { return static_cast<int>(x.size()); }
  View1<const double> xs() const { return View1<const double>(x.data(), n()); }
  View1<const double> ys() const { return View1<const double>(y.data(), n()); }
};

// Points at the given angles on an ellipse of half axes ax, ay, turned by
// `turn` and moved by (dx, dy).
Coordinates onEllipse(const std::vector<double>& angles, double ax, double ay, double turn,
                      double dx = 0.0, double dy = 0.0) {
  Coordinates c;
  for (const double t : angles) {
    const double px = ax * std::cos(t), py = ay * std::sin(t);
    c.x.push_back(px * std::cos(turn) - py * std::sin(turn) + dx);
    c.y.push_back(px * std::sin(turn) + py * std::cos(turn) + dy);
  }
  return c;
}

Coordinates regular(int n, double radius, double phase) {
  std::vector<double> angles;
  for (int k = 0; k < n; ++k) angles.push_back(phase + 2.0 * Pi * k / n);
  return onEllipse(angles, radius, radius, 0.0);
}

TEST(PolygonArea, ShoelaceMatchesClosedForms) {
  // A rectangle 3 x 2, counterclockwise and clockwise.
  const Coordinates rect{{1, 4, 4, 1}, {1, 1, 3, 3}};
  EXPECT_DOUBLE_EQ(IQCPAR(4, rect.xs(), rect.ys()), 6.0);
  const Coordinates reversed{{1, 1, 4, 4}, {1, 3, 3, 1}};
  EXPECT_DOUBLE_EQ(IQCPAR(4, reversed.xs(), reversed.ys()), -6.0);
  // A regular 12-gon of radius 2: (n / 2) r^2 sin(2 pi / n).
  const Coordinates dodecagon = regular(12, 2.0, 0.3);
  EXPECT_NEAR(IQCPAR(12, dodecagon.xs(), dodecagon.ys()), 6.0 * 4.0 * std::sin(Pi / 6.0), 1e-12);
  // Fewer than three points enclose nothing.
  EXPECT_EQ(IQCPAR(2, rect.xs(), rect.ys()), 0.0);
  // The unit square's corners scattered through a vertex array.
  const std::vector<XY> vertices = {{9, 9}, {1, 0}, {0, 0}, {7, 7}, {1, 1}, {0, 1}};
  const std::vector<int> list = {3, 2, 5, 6};
  EXPECT_DOUBLE_EQ(IQPLAR(4, View1<const int>(list.data(), 4), View1<const XY>(vertices.data(), 6)),
                   1.0);
}

// Squared width and diameter by brute force over all edges and vertices of
// a convex polygon.
double bruteWidth2(const Coordinates& c) {
  double best = 1e300;
  for (int e = 0; e < c.n(); ++e) {
    const int f = (e + 1) % c.n();
    const double dx = c.x[f] - c.x[e], dy = c.y[f] - c.y[e];
    double far = 0.0;
    for (int v = 0; v < c.n(); ++v)
      far = std::max(
          far, std::fabs(dx * (c.y[v] - c.y[e]) - dy * (c.x[v] - c.x[e])) / std::hypot(dx, dy));
    best = std::min(best, far * far);
  }
  return best;
}

double distance2(const Coordinates& c, int i, int j) {  // 1-based
  return std::pow(c.x[i - 1] - c.x[j - 1], 2) + std::pow(c.y[i - 1] - c.y[j - 1], 2);
}

double bruteDiameter2(const Coordinates& c) {
  double best = 0.0;
  for (int i = 1; i <= c.n(); ++i)
    for (int j = 1; j <= c.n(); ++j) best = std::max(best, distance2(c, i, j));
  return best;
}

TEST_F(MesherTest, WidthAndDiameterOfKnownShapes) {
  bool status = false;
  int a = 0, b = 0;
  double width2 = 0.0, diameter2 = 0.0;
  struct Case {
    Coordinates c;
    double width2, diameter2;
  };
  // A 5 x 2 rectangle; an equilateral triangle of side 2, whose width is its
  // height; a regular hexagon of radius 1.
  for (const Case& k : {Case{{{0, 5, 5, 0}, {0, 0, 2, 2}}, 4.0, 29.0},
                        Case{{{0, 2, 1}, {0, 0, std::sqrt(3.0)}}, 3.0, 4.0},
                        Case{regular(6, 1.0, 0.0), 3.0, 4.0}}) {
    IDSQCP(k.c.n(), k.c.xs(), k.c.ys(), a, b, width2, status);
    ASSERT_FALSE(status);
    EXPECT_NEAR(width2, k.width2, 1e-12);
    DSQCPG(k.c.n(), k.c.xs(), k.c.ys(), a, b, diameter2, status);
    ASSERT_FALSE(status);
    EXPECT_NEAR(diameter2, k.diameter2, 1e-12);
    EXPECT_LT(a, b);
    EXPECT_NEAR(distance2(k.c, a, b), k.diameter2, 1e-12);
  }
  EXPECT_EQ(b - a, 3);  // the hexagon's opposite corners

  // Fewer than three points keep the start values.
  const Coordinates segment{{0, 3}, {0, 4}};
  double value = -1.0;
  DSQCPG(2, segment.xs(), segment.ys(), a, b, value, status);
  EXPECT_FALSE(status);
  EXPECT_EQ(value, 0.0);
  IDSQCP(2, segment.xs(), segment.ys(), a, b, value, status);
  EXPECT_FALSE(status);
  EXPECT_EQ(value, std::numeric_limits<double>::max());
}

TEST_F(MesherTest, WidthAndDiameterOfRandomConvexPolygons) {
  const unsigned seed = 20240611;
  std::mt19937 rng(seed);
  std::uniform_real_distribution<double> unit(0.0, 1.0);
  for (int trial = 0; trial < 300; ++trial) {
    // Points on an ellipse at random angles are in convex position.
    const int n = 3 + static_cast<int>(unit(rng) * 30);
    std::vector<double> angles;
    for (int k = 0; k < n; ++k) angles.push_back(unit(rng) * 2.0 * Pi);
    std::sort(angles.begin(), angles.end());
    const double ax = 0.5 + 10.0 * unit(rng), ay = 0.5 + 10.0 * unit(rng);
    const Coordinates c = onEllipse(angles, ax, ay, unit(rng) * 2.0 * Pi, 5.0, -2.0);
    bool status = false;
    int a = 0, b = 0;
    double width2 = 0.0, diameter2 = 0.0;
    IDSQCP(n, c.xs(), c.ys(), a, b, width2, status);
    ASSERT_FALSE(status) << "seed " << seed << " trial " << trial;
    DSQCPG(n, c.xs(), c.ys(), a, b, diameter2, status);
    ASSERT_FALSE(status) << "seed " << seed << " trial " << trial;
    const double expectedDiameter = bruteDiameter2(c);
    EXPECT_NEAR(width2, bruteWidth2(c), 1e-9 * expectedDiameter) << "seed " << seed << " " << trial;
    EXPECT_NEAR(diameter2, expectedDiameter, 1e-9 * expectedDiameter)
        << "seed " << seed << " trial " << trial;
  }
}

}  // namespace
}  // namespace kntr::mesher
