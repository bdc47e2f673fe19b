// Convex decomposition of whole regions: holes joined, reflex corners
// removed, and the structure checked as a whole.
#include <gtest/gtest.h>

#include <cmath>

#include "mesher/boundary.h"
#include "mesher/halfedge.h"
#include "mesher/holes.h"
#include "mesher/limits.h"
#include "mesher/reflex.h"
#include "support/mesh_checker.h"
#include "support/mesh_runner.h"
#include "support/mesh_shapes.h"

namespace kntr::mesher {
namespace {

using testing::MesherTest;
using testing::TestRegion;
namespace shapes = testing::shapes;

// Decompose and check; the problems found, if any, go to the test's output.
void expectSoundDecomposition(const TestRegion& region) {
  ASSERT_TRUE(testing::decomposeRegion(region));
  const auto problems = testing::checkDecomposition(meshData(), testing::regionArea(region),
                                                    testing::boundaryLength(region));
  EXPECT_TRUE(problems.empty()) << testing::joined(problems);
}

// The largest corner angle left anywhere.
double largestCorner(const MeshData& m) {
  double largest = 0.0;
  for (int h = 1; h <= m.NumHalfEdges; ++h) largest = std::max(largest, m.CornerAngle(h));
  return largest;
}

// The smallest angle between two edges at a corner where a new edge was
// added (corners of the input outline that were not split keep theirs).
double smallestNewCorner(const MeshData& m, int inputHalfEdges) {
  double smallest = 2 * Pi;
  for (int h = 1; h <= m.NumHalfEdges; ++h) {
    if (h > inputHalfEdges || m.HalfEdge(h).Twin != 0)
      smallest = std::min(smallest, m.CornerAngle(h));
  }
  return smallest;
}

TEST_F(MesherTest, ConvexRegionsGainNothing) {
  for (const auto& polygon : {shapes::rectangle(0, 0, 3, 1), shapes::circle(2, 2, 5, 40)}) {
    const TestRegion region{{polygon}};
    expectSoundDecomposition(region);
    const MeshData& m = meshData();
    EXPECT_EQ(m.NumPolygons, 1);
    EXPECT_EQ(m.NumHalfEdges, static_cast<int>(polygon.size()));
    EXPECT_EQ(m.NumVertices, static_cast<int>(polygon.size()));
  }
  EXPECT_EQ(output(), "");
}

TEST_F(MesherTest, LShapeSplitsAtItsReflexCorner) {
  const TestRegion region{{shapes::lShape(4, 4, 1)}};
  expectSoundDecomposition(region);
  const MeshData& m = meshData();
  EXPECT_GE(m.NumPolygons, 2);
  EXPECT_LE(m.NumPolygons, 3);
  // The edges leave at least the smaller separator angle everywhere new.
  EXPECT_GE(smallestNewCorner(m, 6), m.MinSeparatorAngle - 1e-12);
}

TEST_F(MesherTest, CombWithTwentyTeeth) {
  const TestRegion region{{shapes::comb(20)}};
  expectSoundDecomposition(region);
  // Every tooth ends up in a polygon of its own: at least one per tooth.
  EXPECT_GE(meshData().NumPolygons, 20);
  EXPECT_LE(largestCorner(meshData()), Pi + meshData().MeshTol);
}

TEST_F(MesherTest, SquareWithOneRoundHole) {
  const TestRegion region{{shapes::rectangle(-5, -5, 5, 5), shapes::circle(0, 0, 2, 24, 0.1)}};
  expectSoundDecomposition(region);
}

TEST_F(MesherTest, DiscWithThreeHoles) {
  const TestRegion region{{shapes::circle(0, 0, 10, 72), shapes::circle(-4, 2, 2, 20),
                           shapes::circle(4, 2, 2, 20), shapes::circle(0, -5, 2.5, 30)}};
  expectSoundDecomposition(region);
}

// Two holes whose tops stand at the same height: the second hole's level
// line runs through the first hole's top vertex, which its bridge has made
// part of the outer cycle.
TEST_F(MesherTest, HolesSideBySideAtTheSameHeight) {
  const TestRegion region{{shapes::rectangle(0, 0, 12, 8),
                           {{3, 2}, {4, 4}, {3, 5}, {2, 4}},
                           {{9, 2}, {10, 4}, {9, 5}, {8, 4}}}};
  expectSoundDecomposition(region);
  const TestRegion three{{shapes::rectangle(0, 0, 12, 8), shapes::rectangle(1, 2, 3, 5),
                          shapes::rectangle(5, 2, 7, 5), shapes::rectangle(9, 2, 11, 5)}};
  expectSoundDecomposition(three);
}

// The boundary has vertices at the level of the hole's top on both sides;
// they are found inside the level band and bound the part above.
TEST_F(MesherTest, HoleTopLevelWithBoundaryVertices) {
  const TestRegion region{
      {{{0, 0}, {10, 0}, {10, 5}, {10, 10}, {0, 10}, {0, 5}}, {{5, 3}, {6, 4}, {5, 5}, {4, 4}}}};
  expectSoundDecomposition(region);
  // A boundary with a corner at the level.
  const TestRegion notch{
      {{{0, 0}, {10, 0}, {10, 10}, {8, 5}, {6, 10}, {0, 10}}, {{3, 3}, {4, 4}, {3, 5}, {2, 4}}}};
  expectSoundDecomposition(notch);
}

TEST_F(MesherTest, HoleBridgeGoesUpFromTheTopVertex) {
  const TestRegion region{{shapes::rectangle(0, 0, 10, 10), shapes::rectangle(4, 4, 6, 6)}};
  MeshData& m = meshData();
  Array1<int, 2> sizes;
  m.Vertices = testing::testVertices();
  testing::layOut(region, m.Vertices, sizes);
  bool status = true;
  View1<int> holeList(m.IntAux.data(), 2);
  IZMCPR(m, 1, sizes, holeList, status);
  ASSERT_FALSE(status);
  // Top: highest y, then highest x, so (6, 6), vertex 7; bottom (4, 4), vertex 5.
  EXPECT_EQ(m.HalfEdge(holeList(1)).Vertex, 7);
  EXPECT_EQ(m.HalfEdge(holeList(2)).Vertex, 5);
  JNHBOB(m, holeList(1), View1<int>(m.IntAux).from(3), View1<double>(m.RealAux), status);
  ASSERT_FALSE(status);
  // One cycle now, through a doubled edge from (6, 6) to a point above it.
  const int bridge = holeList(1);
  const int up = m.HalfEdge(bridge).Twin;
  ASSERT_GT(up, 0);
  const XY from = m.Vertices(m.HalfEdge(bridge).Vertex);
  const XY to = m.Vertices(m.HalfEdge(up).Vertex);
  EXPECT_EQ(from, (XY{6, 6}));
  EXPECT_EQ(to.y, 10.0);
  int length = 0;
  int h = m.PolygonFirst(1);
  do {
    ++length;
    h = m.HalfEdge(h).Next;
  } while (h != m.PolygonFirst(1) && length <= m.NumHalfEdges);
  EXPECT_EQ(length, m.NumHalfEdges);
  const auto problems = testing::checkDecomposition(m, 96.0, 48.0, false);
  EXPECT_TRUE(problems.empty()) << testing::joined(problems);
}

// Two holes one above the other: the lower hole's bridge may end on the
// upper hole, whose edges belong to the outer cycle by then.
TEST_F(MesherTest, HolesAboveOneAnother) {
  const TestRegion region{{shapes::rectangle(0, 0, 10, 20), shapes::rectangle(3, 12, 7, 15),
                           shapes::rectangle(4, 3, 6, 6)}};
  expectSoundDecomposition(region);
}

TEST_F(MesherTest, VeryThinSliver) {
  // A long, thin, slightly bent strip.
  shapes::Polygon sliver;
  for (int i = 0; i <= 50; ++i) sliver.push_back({i * 2.0, 0.002 * std::sin(i * 0.3)});
  for (int i = 50; i >= 0; --i) sliver.push_back({i * 2.0, 0.01 + 0.002 * std::sin(i * 0.3)});
  expectSoundDecomposition(TestRegion{{sliver}});
  // A thin triangle with a notch.
  expectSoundDecomposition(TestRegion{{{{0, 0}, {100, 0}, {50, 0.001}, {0, 0.01}}}});
}

TEST_F(MesherTest, ShipSectionOfThreeHundredPoints) {
  const TestRegion region{{shapes::shipSection(300)}};
  ASSERT_EQ(region.polygons[0].size(), 300u);
  expectSoundDecomposition(region);
}

// A slit into the region leaves a corner of about 350 degrees at its tip.
// A single edge must leave the tip between 170 and 180 degrees from its
// first side; straight down to the vertex below it leaves right angles
// there, so one edge does.
TEST_F(MesherTest, ThreeHundredFiftyDegreeCorner) {
  const double half = 5.0 * Pi / 180.0;
  const double mouth = 5.0 * std::tan(half);
  const TestRegion region{
      {{{0, 0}, {5, 0}, {10, 0}, {10, 10}, {5 + mouth, 10}, {5, 5}, {5 - mouth, 10}, {0, 10}}}};
  ASSERT_TRUE(testing::decomposeRegion(region));
  const MeshData& m = meshData();
  const auto problems =
      testing::checkDecomposition(m, testing::regionArea(region), testing::boundaryLength(region));
  EXPECT_TRUE(problems.empty()) << testing::joined(problems);
  EXPECT_EQ(m.NumPolygons, 2);
  int inner = 0;
  for (int h = 1; h <= m.NumHalfEdges; ++h) {
    const int t = m.HalfEdge(h).Twin;
    if (t == 0) continue;
    ++inner;
    const XY a = m.Vertices(m.HalfEdge(h).Vertex);
    const XY b = m.Vertices(m.HalfEdge(t).Vertex);
    EXPECT_TRUE((a == XY{5, 5} && b == XY{5, 0}) || (b == XY{5, 5} && a == XY{5, 0}));
  }
  EXPECT_EQ(inner, 2);
}

// Without a target in that narrow cone, or with only a poor one, two edges
// into the outer cones do better. Here the tip looks down a deep V whose
// point (the one corner in the cone) leaves angles of a few degrees; two
// edges to the corners at the V's mouth leave 45 degrees or more.
TEST_F(MesherTest, DeepCornerOverANarrowVTakesTwoEdges) {
  const double half = 5.0 * Pi / 180.0;
  const double mouth = 5.0 * std::tan(half);
  const TestRegion region{
      {{{0, 0}, {5, -100}, {10, 0}, {10, 10}, {5 + mouth, 10}, {5, 5}, {5 - mouth, 10}, {0, 10}}}};
  expectSoundDecomposition(region);
  const MeshData& m = meshData();
  int atTip = 0;
  for (int h = 1; h <= m.NumHalfEdges; ++h) {
    if (m.Vertices(m.HalfEdge(h).Vertex) == XY{5, 5}) {
      ++atTip;
      EXPECT_GE(m.CornerAngle(h), 40.0 * Pi / 180.0 - 1e-12);
    }
  }
  EXPECT_EQ(atTip, 3);
  EXPECT_EQ(m.NumPolygons, 3);
}

// A flat bottom under the tip has no vertex in the narrow cone; the points
// put at even angles on it fall outside the cone too, and a pair of edges
// to two of them resolves the corner.
TEST_F(MesherTest, DeepCornerOverAFlatBottom) {
  const double half = 5.0 * Pi / 180.0;
  const double mouth = 5.0 * std::tan(half);
  const TestRegion region{
      {{{0, 0}, {10, 0}, {10, 10}, {5 + mouth, 10}, {5, 5}, {5 - mouth, 10}, {0, 10}}}};
  expectSoundDecomposition(region);
  const MeshData& m = meshData();
  for (int h = 1; h <= m.NumHalfEdges; ++h) {
    if (m.Vertices(m.HalfEdge(h).Vertex) == XY{5, 5}) {
      EXPECT_GE(m.CornerAngle(h), m.MinSeparatorAngle - 1e-12);
    }
  }
}

TEST_F(MesherTest, JnhbobReportsAHoleWithNothingAbove) {
  // The "hole" reaches above the exterior: no edge crosses its top level.
  const TestRegion region{{shapes::rectangle(0, 0, 10, 10), shapes::rectangle(4, 4, 6, 12)}};
  EXPECT_FALSE(testing::decomposeRegion(region));
  EXPECT_NE(output().find("(JNHBOB) Failed to locate subregion above top hole vertex!"),
            std::string::npos);
}

// A hole that touches the outer boundary from inside: its top vertex lies
// on the boundary, and the scan finds an inconsistency.
TEST_F(MesherTest, HoleTouchingTheBoundaryFailsWithAMessage) {
  const TestRegion region{{shapes::rectangle(0, 0, 10, 10), {{5, 6}, {6, 8}, {5, 10}, {4, 8}}}};
  EXPECT_FALSE(testing::decomposeRegion(region));
  const auto messages = testing::mesherMessages(output());
  ASSERT_FALSE(messages.empty());
  EXPECT_TRUE(messages[0].find("Internal error") != std::string::npos ||
              messages[0].find("(JNHBOB)") != std::string::npos)
      << messages[0];
}

// Tops sorted from the highest down (ties: the larger x first), bottoms from
// the lowest up (ties: the smaller x first).
TEST_F(MesherTest, IqhltbSortsTheHoleTopsAndBottoms) {
  const TestRegion region{
      {shapes::rectangle(0, 0, 30, 30),
       shapes::rectangle(2, 2, 4, 10),      // hole 1: top (4, 10), bottom (2, 2)
       shapes::rectangle(10, 5, 12, 20),    // hole 2: top (12, 20), bottom (10, 5)
       shapes::rectangle(20, 2, 22, 20)}};  // hole 3: top (22, 20), bottom (20, 2)
  MeshData& m = meshData();
  Array1<int, 4> sizes;
  m.Vertices = testing::testVertices();
  testing::layOut(region, m.Vertices, sizes);
  View1<int> holeList(m.IntAux.data(), 6);
  bool status = true;
  IZMCPR(m, 3, sizes, holeList, status);
  ASSERT_FALSE(status);
  const XY expected[] = {{22, 20}, {12, 20}, {4, 10}, {2, 2}, {20, 2}, {10, 5}};
  for (int i = 1; i <= 6; ++i) {
    EXPECT_EQ(m.Vertices(m.HalfEdge(holeList(i)).Vertex), expected[i - 1]) << i;
  }
  // Each hole is walked against its stored order, so the region is on the
  // left: the hole loops run clockwise.
  for (int k = 1; k <= 3; ++k) {
    const int first = m.PolygonFirst(1 + k);
    double twice = 0.0;
    int h = first;
    do {
      const XY a = m.Vertices(m.HalfEdge(h).Vertex);
      const XY b = m.Vertices(m.HalfEdge(m.HalfEdge(h).Next).Vertex);
      twice += a.x * b.y - b.x * a.y;
      EXPECT_NEAR(m.CornerAngle(h), 1.5 * Pi, 1e-15);  // the region wraps each corner
      h = m.HalfEdge(h).Next;
    } while (h != first);
    EXPECT_LT(twice, 0.0);
  }
}

TEST_F(MesherTest, RsrfvxChecksItsRoom) {
  const TestRegion region{{shapes::comb(10)}};
  MeshData& m = meshData();
  Array1<int, 1> sizes;
  m.Vertices = testing::testVertices();
  testing::layOut(region, m.Vertices, sizes);
  bool status = true;
  IZMCPR(m, 0, sizes, View1<int>(m.IntAux.data(), 0), status);
  ASSERT_FALSE(status);
  int reflex = 0;
  for (int h = 1; h <= m.NumHalfEdges && reflex == 0; ++h) {
    if (m.CornerAngle(h) > Pi + m.MeshTol) reflex = h;
  }
  ASSERT_GT(reflex, 0);
  // 37 other corners and 270 degrees: 9 + 37 = 46 places, so 83 integers
  // and 92 reals.
  int first = 0, second = 0;
  RSRFVX(m, reflex, View1<int>(m.IntAux.data(), 82), View1<double>(m.RealAux), first, second,
         status);
  EXPECT_TRUE(status);
  EXPECT_NE(output().find("(RSRFVX) Attempt to overflow integer auxiliary vector!"),
            std::string::npos);
  RSRFVX(m, reflex, View1<int>(m.IntAux), View1<double>(m.RealAux.data(), 91), first, second,
         status);
  EXPECT_TRUE(status);
  EXPECT_NE(output().find("(RSRFVX) Attempt to overflow double precision auxiliary vector!"),
            std::string::npos);
  RSRFVX(m, reflex, View1<int>(m.IntAux), View1<double>(m.RealAux), first, second, status);
  EXPECT_FALSE(status) << output();
  EXPECT_GT(first, 0);
}

TEST_F(MesherTest, JnhbobChecksTheRoomForItsPoints) {
  const TestRegion region{{shapes::rectangle(0, 0, 10, 10), shapes::rectangle(4, 4, 6, 6)}};
  MeshData& m = meshData();
  Array1<int, 2> sizes;
  testing::layOut(region, testing::testVertices(), sizes);
  m.Vertices = View1<XY>(testing::testVertices().data(), 10);  // 8 used, 3 wanted
  View1<int> holeList(m.IntAux.data(), 2);
  bool status = true;
  IZMCPR(m, 1, sizes, holeList, status);
  ASSERT_FALSE(status);
  JNHBOB(m, holeList(1), View1<int>(m.IntAux).from(3), View1<double>(m.RealAux), status);
  EXPECT_TRUE(status);
  EXPECT_NE(output().find("(JNHBOB) Max number of vertices exceeded!"), std::string::npos);
  m.Vertices = testing::testVertices();
  m.NumHalfEdges = MaxHalfEdges - 4;
  JNHBOB(m, holeList(1), View1<int>(m.IntAux).from(3), View1<double>(m.RealAux), status);
  EXPECT_TRUE(status);
  EXPECT_NE(output().find("(JNHBOB) Max number of polygon vertices exceeded!"), std::string::npos);
}

TEST_F(MesherTest, IzmcprRefusesTooManyBoundaryPoints) {
  MeshData& m = meshData();
  m.Vertices = testing::testVertices();
  Array1<int, 1> sizes;
  sizes(1) = MaxBoundaryVertices + 1;
  bool status = false;
  IZMCPR(m, 0, sizes, View1<int>(m.IntAux.data(), 0), status);
  EXPECT_TRUE(status);
  EXPECT_NE(output().find("(IZMCPR) Max number of polygon vertices exceeded!"), std::string::npos);
}

}  // namespace
}  // namespace kntr::mesher
