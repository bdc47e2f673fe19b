// Area, width and diameter of polygons against closed forms and brute force.
#include "mesher/convex.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <vector>

#include "mesher/limits.h"
#include "support/console_fixture.h"

namespace kntr::testing {
namespace {

using mesher::DSQCPG;
using mesher::IDSQCP;
using mesher::IQCPAR;
using mesher::IQPLAR;

struct Coordinates {
  std::vector<double> x, y;
  int n() const { return static_cast<int>(x.size()); }
  View1<const double> xs() const { return View1<const double>(x.data(), n()); }
  View1<const double> ys() const { return View1<const double>(y.data(), n()); }
};

Coordinates regular(int n, double radius, double phase) {
  Coordinates c;
  for (int k = 0; k < n; ++k) {
    c.x.push_back(radius * std::cos(phase + 2.0 * mesher::Pi * k / n));
    c.y.push_back(radius * std::sin(phase + 2.0 * mesher::Pi * k / n));
  }
  return c;
}

TEST(PolygonArea, ShoelaceMatchesClosedForms) {
  // A rectangle 3 x 2, counterclockwise and clockwise.
  Coordinates rect{{1, 4, 4, 1}, {1, 1, 3, 3}};
  EXPECT_DOUBLE_EQ(IQCPAR(4, rect.xs(), rect.ys()), 6.0);
  Coordinates reversed{{1, 1, 4, 4}, {1, 3, 3, 1}};
  EXPECT_DOUBLE_EQ(IQCPAR(4, reversed.xs(), reversed.ys()), -6.0);
  // A regular 12-gon of radius 2: (n / 2) r^2 sin(2 pi / n).
  const Coordinates dodecagon = regular(12, 2.0, 0.3);
  EXPECT_NEAR(IQCPAR(12, dodecagon.xs(), dodecagon.ys()), 6.0 * 4.0 * std::sin(mesher::Pi / 6.0),
              1e-12);
  // Fewer than three points enclose nothing.
  EXPECT_EQ(IQCPAR(2, rect.xs(), rect.ys()), 0.0);
}

TEST(PolygonArea, IndexListSelectsTheVertices) {
  // The unit square's corners scattered through a vertex array.
  const std::vector<XY> vertices = {{9, 9}, {1, 0}, {0, 0}, {7, 7}, {1, 1}, {0, 1}};
  const std::vector<int> list = {3, 2, 5, 6};
  EXPECT_DOUBLE_EQ(IQPLAR(4, View1<const int>(list.data(), 4), View1<const XY>(vertices.data(), 6)),
                   1.0);
}

// Brute force over all edges and vertices of a convex polygon.
double bruteWidth2(const Coordinates& c) {
  double best = 1e300;
  const int n = c.n();
  for (int e = 0; e < n; ++e) {
    const int f = (e + 1) % n;
    const double dx = c.x[f] - c.x[e], dy = c.y[f] - c.y[e];
    double far = 0.0;
    for (int v = 0; v < n; ++v) {
      const double h =
          std::fabs(dx * (c.y[v] - c.y[e]) - dy * (c.x[v] - c.x[e])) / std::hypot(dx, dy);
      far = std::max(far, h);
    }
    best = std::min(best, far * far);
  }
  return best;
}

double bruteDiameter2(const Coordinates& c) {
  double best = 0.0;
  for (int i = 0; i < c.n(); ++i) {
    for (int j = 0; j < c.n(); ++j) {
      best = std::max(best, std::pow(c.x[i] - c.x[j], 2) + std::pow(c.y[i] - c.y[j], 2));
    }
  }
  return best;
}

class ConvexScanTest : public ConsoleTest {};

TEST_F(ConvexScanTest, WidthAndDiameterOfKnownShapes) {
  bool status = false;
  int a = 0, b = 0;
  double value = 0.0;
  // Rectangle 5 x 2: width 2, diameter the diagonal.
  Coordinates rect{{0, 5, 5, 0}, {0, 0, 2, 2}};
  IDSQCP(4, rect.xs(), rect.ys(), a, b, value, status);
  ASSERT_FALSE(status);
  EXPECT_NEAR(value, 4.0, 1e-12);
  DSQCPG(4, rect.xs(), rect.ys(), a, b, value, status);
  ASSERT_FALSE(status);
  EXPECT_NEAR(value, 29.0, 1e-12);
  EXPECT_LT(a, b);
  EXPECT_NEAR(
      std::pow(rect.x[b - 1] - rect.x[a - 1], 2) + std::pow(rect.y[b - 1] - rect.y[a - 1], 2), 29.0,
      1e-12);
  // Equilateral triangle of side 2: width is its height, diameter a side.
  Coordinates tri{{0, 2, 1}, {0, 0, std::sqrt(3.0)}};
  IDSQCP(3, tri.xs(), tri.ys(), a, b, value, status);
  EXPECT_NEAR(value, 3.0, 1e-12);
  DSQCPG(3, tri.xs(), tri.ys(), a, b, value, status);
  EXPECT_NEAR(value, 4.0, 1e-12);
  // A regular hexagon of radius 1: width sqrt(3), diameter 2.
  const Coordinates hexagon = regular(6, 1.0, 0.0);
  IDSQCP(6, hexagon.xs(), hexagon.ys(), a, b, value, status);
  EXPECT_NEAR(value, 3.0, 1e-12);
  DSQCPG(6, hexagon.xs(), hexagon.ys(), a, b, value, status);
  EXPECT_NEAR(value, 4.0, 1e-12);
  EXPECT_EQ(b - a, 3);  // opposite corners
}

TEST_F(ConvexScanTest, RandomConvexPolygonsAgreeWithBruteForce) {
  const unsigned seed = 20240611;
  std::mt19937 rng(seed);
  std::uniform_real_distribution<double> unit(0.0, 1.0);
  for (int trial = 0; trial < 300; ++trial) {
    // Points on an ellipse at random angles are in convex position.
    const int n = 3 + static_cast<int>(unit(rng) * 30);
    std::vector<double> angles;
    for (int k = 0; k < n; ++k) angles.push_back(unit(rng) * 2.0 * mesher::Pi);
    std::sort(angles.begin(), angles.end());
    const double ax = 0.5 + 10.0 * unit(rng), ay = 0.5 + 10.0 * unit(rng);
    const double turn = unit(rng) * 2.0 * mesher::Pi;
    Coordinates c;
    for (const double t : angles) {
      const double px = ax * std::cos(t), py = ay * std::sin(t);
      c.x.push_back(px * std::cos(turn) - py * std::sin(turn) + 5.0);
      c.y.push_back(px * std::sin(turn) + py * std::cos(turn) - 2.0);
    }
    bool status = false;
    int a = 0, b = 0;
    double width2 = 0.0, diameter2 = 0.0;
    IDSQCP(n, c.xs(), c.ys(), a, b, width2, status);
    ASSERT_FALSE(status) << "seed " << seed << " trial " << trial;
    DSQCPG(n, c.xs(), c.ys(), a, b, diameter2, status);
    ASSERT_FALSE(status) << "seed " << seed << " trial " << trial;
    const double expectedWidth = bruteWidth2(c), expectedDiameter = bruteDiameter2(c);
    EXPECT_NEAR(width2, expectedWidth, 1e-9 * expectedDiameter)
        << "seed " << seed << " trial " << trial;
    EXPECT_NEAR(diameter2, expectedDiameter, 1e-9 * expectedDiameter)
        << "seed " << seed << " trial " << trial;
  }
}

TEST_F(ConvexScanTest, FewerThanThreePointsKeepTheStartValues) {
  Coordinates segment{{0, 3}, {0, 4}};
  bool status = false;
  int a = 0, b = 0;
  double value = -1.0;
  DSQCPG(2, segment.xs(), segment.ys(), a, b, value, status);
  EXPECT_FALSE(status);
  EXPECT_EQ(value, 0.0);
  IDSQCP(2, segment.xs(), segment.ys(), a, b, value, status);
  EXPECT_FALSE(status);
  EXPECT_EQ(value, std::numeric_limits<double>::max());
}

}  // namespace
}  // namespace kntr::testing
