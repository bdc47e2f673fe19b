// Random convex decompositions through the density and triangle stages:
// each either meshes properly or fails with one of the mesher's messages.
#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <string>
#include <vector>

#include "support/mesh_fixture.h"

namespace kntr::testing {
namespace {

using mesher::Pi;

// Messages with which these stages may turn a polygon down.
bool knownFailure(const std::string& text) {
  for (const char* message : {"(SDCPMV) Could not locate separator within given angular tolerance!",
                              "(SHRNCP) Encountered parallel edges when intersecting !",
                              "(MRGTRI) Internal error - illegal triangle formed!"}) {
    if (text.find(message) != std::string::npos) return true;
  }
  return false;
}

class RobustnessTest : public MeshTest {
 protected:
  // A convex polygon: points on a turned ellipse at random angles, with
  // flat points put into some edges as the decomposition leaves them, cut
  // by up to two random diagonals. False when the draw is too degenerate
  // to stand for a decomposition (a corner below half a degree).
  bool draw(std::mt19937& rng, int& desired) {
    std::uniform_real_distribution<double> unit(0.0, 1.0);
    const int n = 3 + static_cast<int>(unit(rng) * 12);
    const double aspect = std::pow(10.0, -2.0 * unit(rng));
    const double turn = unit(rng) * 2.0 * Pi;
    const double scale = std::pow(10.0, 3.0 * unit(rng) - 1.0);
    std::vector<double> angles;
    for (int i = 0; i < n; ++i) angles.push_back(unit(rng) * 2.0 * Pi);
    std::sort(angles.begin(), angles.end());
    std::vector<XY> corners;
    for (const double a : angles) {
      const double x = std::cos(a) * scale, y = std::sin(a) * scale * aspect;
      const XY p{x * std::cos(turn) - y * std::sin(turn) + 3.0,
                 x * std::sin(turn) + y * std::cos(turn) - 1.0};
      if (!corners.empty() &&
          std::hypot(p.x - corners.back().x, p.y - corners.back().y) < 0.02 * scale) {
        continue;
      }
      corners.push_back(p);
    }
    desired = 1 + static_cast<int>(std::pow(10.0, 3.3 * unit(rng)));
    if (corners.size() < 3) return false;

    std::vector<XY> points;
    std::vector<int> flat;
    for (std::size_t i = 0; i < corners.size(); ++i) {
      points.push_back(corners[i]);
      if (unit(rng) < 0.3) {
        const XY& a = corners[i];
        const XY& b = corners[(i + 1) % corners.size()];
        const double t = 0.2 + 0.6 * unit(rng);
        points.push_back({a.x + t * (b.x - a.x), a.y + t * (b.y - a.y)});
        flat.push_back(static_cast<int>(points.size()));
      }
    }
    polygon(points);
    region_.polygons = {corners};
    for (const int f : flat) m().CornerAngle(f) = Pi;  // as a vertex put into an edge has
    const int cuts = static_cast<int>(unit(rng) * 3);
    for (int k = 0; k < cuts; ++k) {
      std::vector<int> cycle;
      int h = m().PolygonFirst(1);
      do {
        cycle.push_back(h);
        h = m().HalfEdge(h).Next;
      } while (h != m().PolygonFirst(1));
      if (cycle.size() < 4) break;
      const std::size_t i = static_cast<std::size_t>(unit(rng) * static_cast<double>(cycle.size()));
      const std::size_t j =
          (i + 2 + static_cast<std::size_t>(unit(rng) * (cycle.size() - 3))) % cycle.size();
      bool status = false;
      mesher::INSEDG(m(), cycle[i], cycle[j], status);
    }
    for (int h = 1; h <= m().NumHalfEdges; ++h) {
      if (m().CornerAngle(h) > Pi + 1e-12 || m().CornerAngle(h) < 0.01) return false;
    }
    return true;
  }
};

TEST_F(RobustnessTest, RandomConvexDecompositionsMeshOrFailCleanly) {
  const unsigned seed = 4711;
  std::mt19937 rng(seed);
  int meshed = 0, refused = 0;
  for (int trial = 0; trial < 3000; ++trial) {
    int desired = 0;
    if (!draw(rng, desired)) continue;
    type(std::string(5, '\n'));
    bool status = false;
    meshAll(desired, status);
    const std::string said = output();
    if (status) {
      EXPECT_TRUE(knownFailure(said)) << "seed " << seed << " trial " << trial << ": " << said;
      ++refused;
      continue;
    }
    EXPECT_TRUE(meshIsProper()) << "seed " << seed << " trial " << trial << " desired " << desired;
    EXPECT_EQ(said, "") << "seed " << seed << " trial " << trial;
    ++meshed;
  }
  EXPECT_GT(meshed, 20 * refused) << "seed " << seed;
}

}  // namespace
}  // namespace kntr::testing
