// Triangle generation: edge points, the inset, rows, strips, and whole
// convex polygons checked as meshes, chosen and random.
#include "mesher/triangles.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <set>
#include <vector>

#include "mesher/strip.h"
#include "support/mesh_fixture.h"

namespace kntr::testing {
namespace {

using mesher::Pi;
using mesher::Triangle;
using mesher::View0;

class TrianglesTest : public MeshTest {
 protected:
  // The triangle stage alone, with the sizes set by the test.
  void triangulate(bool& status) {
    mesher::TRMSCP(m(), triangles(), numTriangles_, View1<int>(m().IntAux),
                   View1<double>(m().RealAux), status);
  }

  // The inset of the closed polygon (x, y)(0..n) by d on every edge.
  int inset(std::vector<double> x, std::vector<double> y, double d, std::vector<double>& sx,
            std::vector<double>& sy, bool& status) {
    const int n = static_cast<int>(x.size()) - 1;
    std::vector<double> offsets(static_cast<std::size_t>(n), d);
    std::vector<int> edges(x.size() + 4);
    sx.assign(x.size() + 4, 0.0);
    sy.assign(x.size() + 4, 0.0);
    int count = 0;
    mesher::SHRNCP(n, View0<const double>(x.data(), n + 1), View0<const double>(y.data(), n + 1),
                   View0<const double>(offsets.data(), n), count, View0<double>(sx.data(), n + 4),
                   View0<double>(sy.data(), n + 4), View0<int>(edges.data(), n + 4), status);
    return count;
  }
};

TEST_F(TrianglesTest, SharedEdgeIsCutAtTheGeometricMeanOfBothSizes) {
  // Two 8 x 8 squares side by side, sizes 1 and 4: the shared edge takes
  // size 2, so 4 segments and 3 points, seen by both squares.
  polygon({{0, 0}, {8, 0}, {16, 0}, {16, 8}, {8, 8}, {0, 8}});
  split(2, 5);
  ASSERT_EQ(m().NumPolygons, 2);
  const int left = m().HalfEdge(m().PolygonFirst(1)).Vertex == 2 ? 1 : 2;
  m().PolygonSize(left) = 1.0;
  m().PolygonSize(3 - left) = 4.0;
  bool status = false;
  mesher::MKCPBM(m(), status);
  ASSERT_FALSE(status);
  // The shared edge is half-edge 2 (from (8, 0)) and its twin.
  const int shared = 2, twin = m().HalfEdge(shared).Twin;
  ASSERT_GT(twin, 0);
  EXPECT_EQ(m().EdgePointCount(shared), 3);
  EXPECT_EQ(m().EdgePointCount(twin), -3);
  EXPECT_EQ(m().EdgePointStart(shared), m().EdgePointStart(twin));
  for (int k = 0; k < 3; ++k) {
    const XY p = m().Vertices(m().EdgePointStart(shared) + k);
    EXPECT_NEAR(p.x, 8.0, 1e-15);
    EXPECT_NEAR(p.y, 2.0 * (k + 1), 1e-12) << "point " << k;
  }
  // Outer edges: 8 of size 1 gives 7 points, 8 of size 4 gives 1.
  EXPECT_EQ(m().EdgePointCount(1), 7);  // (0, 0) -> (8, 0), left square
  EXPECT_EQ(m().EdgePointCount(3), 1);  // (16, 0) -> (16, 8), right square

  // Both squares' triangles use exactly those points on the shared edge:
  // all five are used, and the checker finds any inner edge that one side
  // uses and the other not.
  m().NumVertices = 6;  // the points are made again
  triangulate(status);
  ASSERT_FALSE(status) << output();
  EXPECT_TRUE(meshIsProper());
  std::set<int> onShared;
  for (int t = 1; t <= numTriangles_; ++t)
    for (int j = 1; j <= 3; ++j)
      if (std::fabs(m().Vertices(triangles()(t)(j)).x - 8.0) < 1e-12)
        onShared.insert(triangles()(t)(j));
  EXPECT_EQ(onShared.size(), 5u);  // two corners and three points

  // One segment grows to two when the rest is above 1/3; two grow to three
  // above 2/5.
  for (const auto& [length, points] :
       std::vector<std::pair<double, int>>{{1.30, 0}, {1.34, 1}, {2.39, 1}, {2.41, 2}, {0.5, 0}}) {
    polygon({{0, 0}, {length, 0}, {length, length}, {0, length}});
    m().PolygonSize(1) = 1.0;
    mesher::MKCPBM(m(), status);
    ASSERT_FALSE(status);
    EXPECT_EQ(m().EdgePointCount(1), points) << "length " << length;
  }
}

TEST_F(TrianglesTest, ThinPolygonsFallToTheZip) {
  // 30 x 1 with about 20 triangles: the inset of h / sqrt(2) leaves
  // nothing, and a strip over the boundary points has two fewer triangles
  // than points.
  polygon({{0, 0}, {30, 0}, {30, 1}, {0, 1}});
  bool status = false;
  meshAll(20, status);
  ASSERT_FALSE(status) << output();
  ASSERT_EQ(m().NumPolygons, 1);
  EXPECT_GT(m().PolygonSize(1) / std::sqrt(2.0), 0.5);
  EXPECT_TRUE(meshIsProper());
  for (int v = 1; v <= m().NumVertices; ++v) {
    const XY p = m().Vertices(v);
    EXPECT_TRUE(std::fabs(p.y) < 1e-9 || std::fabs(p.y - 1) < 1e-9 || std::fabs(p.x) < 1e-9 ||
                std::fabs(p.x - 30) < 1e-9)
        << "vertex " << v << " off the boundary";
  }
  EXPECT_EQ(numTriangles_, m().NumVertices - 2);
}

TEST_F(TrianglesTest, ConvexPolygonsMeshProperlyNearTheDesiredCount) {
  const double r3 = std::sqrt(3.0);
  struct Shape {
    const char* name;
    std::vector<XY> points;
    std::vector<std::pair<int, int>> splits;
  };
  const Shape shapes[] = {
      {"square split in two", {{0, 0}, {10, 0}, {10, 10}, {0, 10}}, {{1, 3}}},
      {"regular hexagon", {{2, 0}, {1, r3}, {-1, r3}, {-2, 0}, {-1, -r3}, {1, -r3}}, {}},
      {"long thin rectangle", {{0, 0}, {40, 0}, {40, 1}, {0, 1}}, {}},
      {"triangle", {{0, 0}, {10, 0}, {3, 6}}, {}},
      {"pentagon in three", {{0, 0}, {6, -1}, {9, 3}, {5, 8}, {-1, 5}}, {{1, 3}, {1, 4}}},
  };
  for (const Shape& shape : shapes) {
    for (const int desired : {10, 100, 1000, 5000}) {
      polygon(shape.points);
      for (const auto& [a, b] : shape.splits) split(a, b);
      bool status = false;
      meshAll(desired, status);
      ASSERT_FALSE(status) << shape.name << " " << desired << output();
      EXPECT_TRUE(meshIsProper()) << shape.name << " " << desired;
      if (desired >= 100) {
        EXPECT_NEAR(numTriangles_, desired, 0.25 * desired) << shape.name;
      }
    }
  }
}

TEST_F(TrianglesTest, InsetKeepsTheDistanceFromEveryEdge) {
  std::vector<double> sx, sy;
  bool status = false;
  // An equilateral triangle of inradius 1 shrinks by 1.25 to nothing.
  const double side = 2.0 * std::sqrt(3.0);
  EXPECT_EQ(inset({0, side, side / 2, 0}, {0, 0, 3.0, 0}, 1.25, sx, sy, status), 0);
  EXPECT_FALSE(status);

  // Random convex polygons: every corner of the inset lies at the offset
  // from the nearest edge line and inside all others.
  const unsigned seed = 7;
  std::mt19937 rng(seed);
  std::uniform_real_distribution<double> unit(0.0, 1.0);
  for (int trial = 0; trial < 200; ++trial) {
    const int n = 3 + static_cast<int>(unit(rng) * 10);
    std::vector<double> angles, x, y;
    for (int k = 0; k < n; ++k) angles.push_back(unit(rng) * 2.0 * Pi);
    std::sort(angles.begin(), angles.end());
    for (const double a : angles) {
      x.push_back(5.0 * std::cos(a));
      y.push_back(3.0 * std::sin(a));
    }
    x.push_back(x[0]);
    y.push_back(y[0]);
    const double d = 0.1 + unit(rng);
    const int count = inset(x, y, d, sx, sy, status);
    output();
    if (status) continue;  // two corners on top of each other: parallel edges
    for (std::size_t k = 0; k < static_cast<std::size_t>(count); ++k) {
      double nearest = 1e300;
      for (std::size_t e = 0; e < static_cast<std::size_t>(n); ++e) {
        const double dx = x[e + 1] - x[e], dy = y[e + 1] - y[e];
        const double left = (dx * (sy[k] - y[e]) - dy * (sx[k] - x[e])) / std::hypot(dx, dy);
        EXPECT_GT(left, d - 1e-9) << "seed " << seed << " trial " << trial;
        nearest = std::min(nearest, left);
      }
      EXPECT_NEAR(nearest, d, 1e-9) << "seed " << seed << " trial " << trial;
    }
  }

  // A flat corner kept as a corner makes two consecutive parallel edges.
  EXPECT_EQ(inset({0, 1, 2, 2, 0, 0}, {0, 0, 0, 1, 1, 0}, 0.1, sx, sy, status), 0);
  expectFailure(status, "(SHRNCP) Encountered parallel edges when intersecting !");
}

// The rows of a rhombus with its diameter upright, at spacing h, stand
// centred in its height: the first half the rest below the top. (The rows'
// triangles are checked with every mesh.)
TEST_F(TrianglesTest, RowsStandCentredInTheHeight) {
  for (const double h : {0.3, 0.7, 1.0, 1.9}) {
    double x[5] = {0, -2, 0, 2.5, 0}, y[5] = {5, 0.5, -5, 1, 5};
    int numVertices = 0, numTriangles = 0, walkLength = 0;
    std::vector<int> walk(200);
    bool status = false;
    mesher::TRQUCP(4, View0<const double>(x, 5), View0<const double>(y, 5), h, 2, 1.0, 0.0,
                   numVertices, vertices(), numTriangles, triangles(), View0<int>(walk.data(), 200),
                   walkLength, status);
    ASSERT_FALSE(status) << output();
    EXPECT_EQ(vertices()(1).y, 5.0 - (10.0 - static_cast<int>(10.0 / h) * h) / 2.0) << "h " << h;
  }
}

// A wrong diagonal rule can keep the strip swaps going round for ever; here
// it fails at once.
TEST(DiagonalTest, CircumcircleRuleDecides) {
  // A square: both diagonals are as good.
  EXPECT_EQ(mesher::IQDGCV({0, 0}, {1, 0}, {1, 1}, {0, 1}), 0);
  // A rhombus flat along p2-p4: the angles at p1 and p3 are wide, so the
  // other diagonal p1-p3 is better.
  EXPECT_EQ(mesher::IQDGCV({0, -1}, {3, 0}, {0, 1}, {-3, 0}), 1);
  // The same rhombus named from p2: the diagonal p2-p4 is the short one.
  EXPECT_EQ(mesher::IQDGCV({3, 0}, {0, 1}, {-3, 0}, {0, -1}), -1);
  // One acute and one obtuse angle: the sine of their sum decides.
  EXPECT_EQ(mesher::IQDGCV({0, 0}, {4, 0}, {5, 2}, {0, 3}), -1);
}

TEST_F(TrianglesTest, RunningOutOfRoomIsReported) {
  polygon({{0, 0}, {10, 0}, {10, 10}, {0, 10}});
  m().PolygonSize(1) = 1.0;
  bool status = false;
  Array1<Triangle, 20> few;
  mesher::TRMSCP(m(), View1<Triangle>(few), numTriangles_, View1<int>(m().IntAux),
                 View1<double>(m().RealAux), status);
  expectFailure(status, "(TRQUCP) Max number of triangles exceeded!");
  polygon({{0, 0}, {10, 0}, {10, 10}, {0, 10}});
  m().PolygonSize(1) = 1.0;
  m().Vertices = View1<XY>(vertices().data(), 20);
  mesher::MKCPBM(m(), status);
  expectFailure(status, "(MKCPBM) Max allowed number of vertices exceeded!");
}

// Random convex decompositions through the density and triangle stages: a
// convex polygon on a turned ellipse, with flat points put into some edges
// as the decomposition leaves them, cut by up to two random diagonals. Each
// meshes properly or fails with one of these stages' messages.
TEST_F(TrianglesTest, RandomConvexDecompositionsMeshOrFailCleanly) {
  const unsigned seed = 4711;
  std::mt19937 rng(seed);
  std::uniform_real_distribution<double> unit(0.0, 1.0);
  int meshed = 0, refused = 0;
  for (int trial = 0; trial < 3000; ++trial) {
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
      if (corners.empty() ||
          std::hypot(p.x - corners.back().x, p.y - corners.back().y) >= 0.02 * scale)
        corners.push_back(p);
    }
    const int desired = 1 + static_cast<int>(std::pow(10.0, 3.3 * unit(rng)));
    if (corners.size() < 3) continue;
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
    // Too degenerate to stand for a decomposition: a corner below half a degree.
    bool degenerate = false;
    for (int h = 1; h <= m().NumHalfEdges; ++h)
      degenerate = degenerate || m().CornerAngle(h) > Pi + 1e-12 || m().CornerAngle(h) < 0.01;
    if (degenerate) continue;
    bool status = false;
    meshAll(desired, status);
    const std::string said = output();
    if (status) {
      const std::string message = firstMesherMessage(said);
      bool known = false;
      for (const char* text :
           {"(SDCPMV) Could not locate separator within given angular tolerance!",
            "(SHRNCP) Encountered parallel edges when intersecting !",
            "(MRGTRI) Internal error - illegal triangle formed!"})
        known = known || message.rfind(text, 0) == 0;
      EXPECT_TRUE(known) << "seed " << seed << " trial " << trial << ": " << said;
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
