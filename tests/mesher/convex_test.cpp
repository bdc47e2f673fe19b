// Area, width and diameter of random convex polygons against closed forms
// and brute force.
#include "mesher/convex.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
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

// Points on a turned, moved ellipse at sorted random angles are in convex
// position; the area they enclose is the sum of the fan triangles from the
// centre, (ax ay / 2) sin of each angle step.
TEST_F(MesherTest, AreaWidthAndDiameterOfRandomConvexPolygons) {
  const unsigned seed = 20240611;
  std::mt19937 rng(seed);
  std::uniform_real_distribution<double> unit(0.0, 1.0);
  for (int trial = 0; trial < 300; ++trial) {
    const int n = 3 + static_cast<int>(unit(rng) * 30);
    std::vector<double> angles;
    for (int k = 0; k < n; ++k) angles.push_back(unit(rng) * 2.0 * Pi);
    std::sort(angles.begin(), angles.end());
    const double ax = 0.5 + 10.0 * unit(rng), ay = 0.5 + 10.0 * unit(rng);
    const double turn = unit(rng) * 2.0 * Pi;
    Coordinates c, reversed;
    double area = 0.0;
    for (int k = 0; k < n; ++k) {
      const double t = angles[static_cast<std::size_t>(k)];
      const double px = ax * std::cos(t), py = ay * std::sin(t);
      c.x.push_back(px * std::cos(turn) - py * std::sin(turn) + 5.0);
      c.y.push_back(px * std::sin(turn) + py * std::cos(turn) - 2.0);
      area += 0.5 * ax * ay * std::sin(angles[static_cast<std::size_t>((k + 1) % n)] - t);
    }
    reversed.x.assign(c.x.rbegin(), c.x.rend());
    reversed.y.assign(c.y.rbegin(), c.y.rend());
    EXPECT_NEAR(IQCPAR(n, c.xs(), c.ys()), area, 1e-9 * ax * ay) << "seed " << seed << " " << trial;
    EXPECT_NEAR(IQCPAR(n, reversed.xs(), reversed.ys()), -area, 1e-9 * ax * ay)
        << "seed " << seed << " trial " << trial;

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
    // The diameter's ends, in order.
    EXPECT_LT(a, b) << "seed " << seed << " trial " << trial;
    EXPECT_NEAR(distance2(c, a, b), expectedDiameter, 1e-9 * expectedDiameter)
        << "seed " << seed << " trial " << trial;
  }
  // Fewer than three points enclose nothing.
  const Coordinates segment{{0, 3}, {0, 4}};
  EXPECT_EQ(IQCPAR(2, segment.xs(), segment.ys()), 0.0);
}

}  // namespace
}  // namespace kntr::mesher
