// Triangle quality and Laplace smoothing.
#include "mesher/quality.h"

#include <gtest/gtest.h>

#include <cmath>
#include <map>
#include <set>
#include <vector>

#include "support/mesh_fixture.h"

namespace kntr::testing {
namespace {

using mesher::Triangle;

class QualityTest : public MeshTest {
 protected:
  // Loads points and triangles into the fixture's arrays.
  void load(const std::vector<XY>& points, const std::vector<std::array<int, 3>>& tris) {
    for (std::size_t i = 0; i < points.size(); ++i) vertices()(static_cast<int>(i) + 1) = points[i];
    for (std::size_t t = 0; t < tris.size(); ++t) {
      for (int j = 1; j <= 3; ++j) triangles()(static_cast<int>(t) + 1)(j) = tris[t][j - 1];
    }
    numTriangles_ = static_cast<int>(tris.size());
  }

  View1<const Triangle> meshTriangles() {
    return View1<const Triangle>(triangles().data(), numTriangles_);
  }
};

TEST_F(QualityTest, QualityOfHandComputedTriangles) {
  const double r3 = std::sqrt(3.0);
  // Equilateral 1; right isosceles 8 (s-a)(s-b)(s-c) / (abc) with sides
  // 1, 1, sqrt 2, which is 2 sqrt 2 - 2; sides 3, 4, 5 give
  // 8 * 3 * 2 * 1 / 60 = 0.8.
  load({{0, 0}, {1, 0}, {0.5, r3 / 2}, {0, 1}, {3, 0}, {0, 4}}, {{1, 2, 3}, {1, 2, 4}, {1, 5, 6}});
  double minimum = 0.0, maximum = 0.0, mean = 0.0, deviation = 0.0;
  bool status = false;
  mesher::IQTRST(3, vertices(), meshTriangles(), minimum, maximum, mean, deviation, quality(),
                 status);
  ASSERT_FALSE(status);
  const double q[3] = {1.0, 2.0 * std::sqrt(2.0) - 2.0, 0.8};
  for (int t = 1; t <= 3; ++t) EXPECT_NEAR(quality()(t), q[t - 1], 1e-14) << "triangle " << t;
  EXPECT_NEAR(minimum, q[2], 1e-14);
  EXPECT_NEAR(maximum, 1.0, 1e-14);
  const double m3 = (q[0] + q[1] + q[2]) / 3.0;
  EXPECT_NEAR(mean, m3, 1e-14);
  const double sample =
      std::sqrt((std::pow(q[0] - m3, 2) + std::pow(q[1] - m3, 2) + std::pow(q[2] - m3, 2)) / 2.0);
  EXPECT_NEAR(deviation, sample, 1e-14);

  // Orientation does not matter to the quality.
  triangles()(1)(2) = 3;
  triangles()(1)(3) = 2;
  mesher::IQTRST(1, vertices(), meshTriangles(), minimum, maximum, mean, deviation, quality(),
                 status);
  EXPECT_NEAR(quality()(1), 1.0, 1e-14);
  EXPECT_EQ(deviation, 0.0);  // one triangle

  // No triangles change nothing.
  minimum = -1.0, maximum = -2.0, mean = -3.0, deviation = -4.0;
  quality()(1) = 42.0;
  mesher::IQTRST(0, vertices(), meshTriangles(), minimum, maximum, mean, deviation, quality(),
                 status);
  EXPECT_FALSE(status);
  EXPECT_EQ(minimum, -1.0);
  EXPECT_EQ(maximum, -2.0);
  EXPECT_EQ(mean, -3.0);
  EXPECT_EQ(deviation, -4.0);
  EXPECT_EQ(quality()(1), 42.0);
}

TEST_F(QualityTest, SmoothedMeshKeepsItsBoundaryAndSettles) {
  polygon({{0, 0}, {10, 0}, {12, 7}, {4, 11}, {-2, 6}});
  bool status = false;
  meshAll(800, status);
  ASSERT_FALSE(status) << output();
  std::vector<XY> before(vertices().data(), vertices().data() + m().NumVertices);
  const double tolerance = static_cast<double>(0.001f);
  // The move limit of the mesher stops the sweeps early on this mesh.
  int moves = 0;
  mesher::SMLPT2(numTriangles_, View1<const Triangle>(triangles().data(), numTriangles_), tolerance,
                 5000, vertices(), moves, status);
  ASSERT_FALSE(status) << output();
  EXPECT_EQ(moves, 5000);
  // Without a limit they go on to the end.
  mesher::SMLPT2(numTriangles_, View1<const Triangle>(triangles().data(), numTriangles_), tolerance,
                 1000000, vertices(), moves, status);
  ASSERT_FALSE(status) << output();
  EXPECT_GT(moves, 0);
  EXPECT_LT(moves, 1000000);
  EXPECT_TRUE(meshIsProper());

  // Neighbours from the triangles, independently of the smoothing tables.
  std::map<int, std::set<int>> neighbours;
  std::map<std::pair<int, int>, int> edgeUses;
  for (int t = 1; t <= numTriangles_; ++t) {
    for (int j = 1; j <= 3; ++j) {
      const int a = triangles()(t)(j), b = triangles()(t)(j % 3 + 1);
      neighbours[a].insert(b);
      neighbours[b].insert(a);
      ++edgeUses[{std::min(a, b), std::max(a, b)}];
    }
  }
  std::set<int> boundary;
  for (const auto& [edge, uses] : edgeUses) {
    if (uses == 1) {
      boundary.insert(edge.first);
      boundary.insert(edge.second);
    }
  }
  int interior = 0;
  for (const auto& [v, around] : neighbours) {
    const XY p = vertices()(v);
    if (boundary.count(v) > 0) {
      EXPECT_EQ(p, before[static_cast<std::size_t>(v - 1)]) << "boundary vertex " << v;
      continue;
    }
    ++interior;
    // After the last sweep no vertex is farther than the tolerance from
    // the mean of its neighbours, give or take the moves of the neighbours
    // later in that sweep.
    double x = 0.0, y = 0.0;
    for (const int w : around) {
      x += vertices()(w).x;
      y += vertices()(w).y;
    }
    x /= static_cast<double>(around.size());
    y /= static_cast<double>(around.size());
    EXPECT_LT(std::hypot(x - p.x, y - p.y), 2.0 * tolerance) << "vertex " << v;
  }
  EXPECT_GT(interior, 100);
}

TEST_F(QualityTest, ListedVertexWithoutNeighboursIsAnError) {
  const int list[1] = {1};
  const bool free[1] = {true};
  const int counts[1] = {0};
  const int neighbours[25] = {};
  int moves = 0;
  bool status = false;
  mesher::SMMSH2(1, View1<const int>(list, 1), View1<const bool>(free, 1), 25,
                 View1<const int>(counts, 1), View1<const int>(neighbours, 25), 0.001, 10,
                 vertices(), moves, status);
  expectFailure(status, "(SMMSH2) Found internal point with no neighbours!");

  // Nothing free: nothing to do, and no complaint.
  const bool fixed[1] = {false};
  mesher::SMMSH2(1, View1<const int>(list, 1), View1<const bool>(fixed, 1), 25,
                 View1<const int>(counts, 1), View1<const int>(neighbours, 25), 0.001, 10,
                 vertices(), moves, status);
  EXPECT_FALSE(status);
  EXPECT_EQ(moves, 0);
}

}  // namespace
}  // namespace kntr::testing
