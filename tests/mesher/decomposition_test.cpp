// Convex decomposition of whole regions: holes joined, reflex corners
// removed, and the structure checked as a whole; on shapes chosen by hand
// and on random regions.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <string>

#include "mesher/boundary.h"
#include "mesher/halfedge.h"
#include "mesher/holes.h"
#include "mesher/limits.h"
#include "mesher/reflex.h"
#include "support/mesh_fixture.h"
#include "support/mesh_shapes.h"

namespace kntr::mesher {
namespace {

using testing::MesherTest;
using testing::TestRegion;
namespace shapes = testing::shapes;

// Lay a region out and build its structure, holes listed in holeList.
void build(MeshData& m, const TestRegion& region, View1<int> holeList) {
  Array1<int, MaxHoles + 1> sizes;
  m.Vertices = testing::testVertices();
  const int holes = testing::layOut(region, m.Vertices, sizes);
  bool status = true;
  IZMCPR(m, holes, sizes, holeList, status);
  ASSERT_FALSE(status);
}

TEST_F(MesherTest, RegionsDecomposeIntoSoundConvexPolygons) {
  // A long, thin, slightly bent strip.
  shapes::Polygon sliver;
  for (int i = 0; i <= 50; ++i) sliver.push_back({i * 2.0, 0.002 * std::sin(i * 0.3)});
  for (int i = 50; i >= 0; --i) sliver.push_back({i * 2.0, 0.01 + 0.002 * std::sin(i * 0.3)});
  // A corner of about 350 degrees at the tip (5, 5) of a slit from the top,
  // over different bottoms.
  const double mouth = 5.0 * std::tan(5.0 * Pi / 180.0);
  auto slit = [&](shapes::Polygon bottom) {
    bottom.insert(bottom.end(),
                  {{10, 0}, {10, 10}, {5 + mouth, 10}, {5, 5}, {5 - mouth, 10}, {0, 10}});
    return TestRegion{{bottom}};
  };
  struct Case {
    const char* name;
    TestRegion region;
    int fewest = 1, most = MaxSubPolygons;  // polygons
  };
  const Case cases[] = {
      {"rectangle", {{shapes::rectangle(0, 0, 3, 1)}}, 1, 1},
      {"circle", {{shapes::circle(2, 2, 5, 40)}}, 1, 1},
      {"L", {{shapes::lShape(4, 4, 1)}}, 2, 3},
      // Every tooth ends up in a polygon of its own.
      {"comb", {{shapes::comb(20)}}, 20},
      {"square with a round hole",
       {{shapes::rectangle(-5, -5, 5, 5), shapes::circle(0, 0, 2, 24, 0.1)}}},
      {"disc with three holes",
       {{shapes::circle(0, 0, 10, 72), shapes::circle(-4, 2, 2, 20), shapes::circle(4, 2, 2, 20),
         shapes::circle(0, -5, 2.5, 30)}}},
      // Holes whose tops stand at the same height: the second hole's level
      // line runs through the first hole's top vertex, which its bridge has
      // made part of the outer cycle.
      {"holes side by side",
       {{shapes::rectangle(0, 0, 12, 8),
         {{3, 2}, {4, 4}, {3, 5}, {2, 4}},
         {{9, 2}, {10, 4}, {9, 5}, {8, 4}}}}},
      {"three holes side by side",
       {{shapes::rectangle(0, 0, 12, 8), shapes::rectangle(1, 2, 3, 5),
         shapes::rectangle(5, 2, 7, 5), shapes::rectangle(9, 2, 11, 5)}}},
      // Boundary vertices level with the hole's top on both sides are found
      // inside the level band and bound the part above; or a corner there.
      {"hole top level with boundary vertices",
       {{{{0, 0}, {10, 0}, {10, 5}, {10, 10}, {0, 10}, {0, 5}}, {{5, 3}, {6, 4}, {5, 5}, {4, 4}}}}},
      {"hole top level with a boundary corner",
       {{{{0, 0}, {10, 0}, {10, 10}, {8, 5}, {6, 10}, {0, 10}}, {{3, 3}, {4, 4}, {3, 5}, {2, 4}}}}},
      // The lower hole's bridge may end on the upper hole, whose edges
      // belong to the outer cycle by then.
      {"holes above one another",
       {{shapes::rectangle(0, 0, 10, 20), shapes::rectangle(3, 12, 7, 15),
         shapes::rectangle(4, 3, 6, 6)}}},
      {"thin sliver", {{sliver}}},
      {"thin notched triangle", {{{{0, 0}, {100, 0}, {50, 0.001}, {0, 0.01}}}}},
      {"ship section", {{shapes::shipSection(300)}}},
      // Straight down to the vertex below: one edge.
      {"slit over a vertex", slit({{0, 0}, {5, 0}}), 2, 2},
      // Over a deep V, whose point leaves angles of a few degrees: two edges
      // to the corners at the V's mouth.
      {"slit over a deep V", slit({{0, 0}, {5, -100}}), 3, 3},
      // No vertex in the narrow cone: edges to points put on the bottom.
      {"slit over a flat bottom", slit({{0, 0}})},
  };
  ASSERT_EQ(shapes::shipSection(300).size(), 300u);
  for (const Case& c : cases) {
    ASSERT_TRUE(testing::decomposeRegion(c.region)) << c.name << output();
    const MeshData& m = meshData();
    EXPECT_TRUE(testing::checkDecomposition(m, c.region)) << c.name;
    EXPECT_GE(m.NumPolygons, c.fewest) << c.name;
    EXPECT_LE(m.NumPolygons, c.most) << c.name;
    const int size = static_cast<int>(c.region.polygons[0].size());
    if (c.most == 1) {  // convex: nothing gained
      EXPECT_EQ(m.NumHalfEdges, size) << c.name;
      EXPECT_EQ(m.NumVertices, size) << c.name;
    }
    // The edges leave at least the smaller separator angle everywhere new
    // in a region without holes (corners of the input outline that were not
    // split keep theirs).
    for (int h = 1; h <= m.NumHalfEdges && c.region.polygons.size() == 1; ++h) {
      if (h > size || m.HalfEdge(h).Twin != 0) {
        EXPECT_GE(m.CornerAngle(h), m.MinSeparatorAngle - 1e-12) << c.name << " half-edge " << h;
      }
    }
  }
  EXPECT_EQ(output(), "");
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
  View1<int> holeList(m.IntAux.data(), 6);
  build(m, region, holeList);
  const XY expected[] = {{22, 20}, {12, 20}, {4, 10}, {2, 2}, {20, 2}, {10, 5}};
  for (int i = 1; i <= 6; ++i)
    EXPECT_EQ(m.Vertices(m.HalfEdge(holeList(i)).Vertex), expected[i - 1]) << i;
}

TEST_F(MesherTest, BadHolesAndFullStorageAreReported) {
  // The "hole" reaches above the exterior: no edge crosses its top level.
  EXPECT_FALSE(testing::decomposeRegion(
      {{shapes::rectangle(0, 0, 10, 10), shapes::rectangle(4, 4, 6, 12)}}));
  expectShown("(JNHBOB) Failed to locate subregion above top hole vertex!");
  // A hole whose top vertex lies on the boundary: the scan finds an
  // inconsistency.
  EXPECT_FALSE(testing::decomposeRegion(
      {{shapes::rectangle(0, 0, 10, 10), {{5, 6}, {6, 8}, {5, 10}, {4, 8}}}}));
  const std::string message = testing::firstMesherMessage(output());
  EXPECT_TRUE(message.find("Internal error") != std::string::npos ||
              message.find("(JNHBOB)") != std::string::npos)
      << message;

  MeshData& m = meshData();
  m.Vertices = testing::testVertices();
  bool status = false;
  Array1<int, 1> sizes;
  sizes(1) = MaxBoundaryVertices + 1;
  IZMCPR(m, 0, sizes, View1<int>(m.IntAux.data(), 0), status);
  expectFailure(status, "(IZMCPR) Max number of polygon vertices exceeded!");

  // Room for 8 vertices and 2 more where the bridge wants 3.
  const TestRegion holed{{shapes::rectangle(0, 0, 10, 10), shapes::rectangle(4, 4, 6, 6)}};
  View1<int> holeList(m.IntAux.data(), 2);
  build(m, holed, holeList);
  m.Vertices = View1<XY>(testing::testVertices().data(), 10);
  JNHBOB(m, holeList(1), View1<int>(m.IntAux).from(3), View1<double>(m.RealAux), status);
  expectFailure(status, "(JNHBOB) Max number of vertices exceeded!");
  m.Vertices = testing::testVertices();
  m.NumHalfEdges = MaxHalfEdges - 4;
  JNHBOB(m, holeList(1), View1<int>(m.IntAux).from(3), View1<double>(m.RealAux), status);
  expectFailure(status, "(JNHBOB) Max number of polygon vertices exceeded!");

  // A reflex corner of a comb: 37 other corners and 270 degrees give 9 + 37
  // = 46 places, so 83 integers and 92 reals.
  build(m, {{shapes::comb(10)}}, View1<int>(m.IntAux.data(), 0));
  int reflex = 0;
  for (int h = 1; h <= m.NumHalfEdges && reflex == 0; ++h)
    if (m.CornerAngle(h) > Pi + m.MeshTol) reflex = h;
  ASSERT_GT(reflex, 0);
  int first = 0, second = 0;
  RSRFVX(m, reflex, View1<int>(m.IntAux.data(), 82), View1<double>(m.RealAux), first, second,
         status);
  expectFailure(status, "(RSRFVX) Attempt to overflow integer auxiliary vector!");
  RSRFVX(m, reflex, View1<int>(m.IntAux), View1<double>(m.RealAux.data(), 91), first, second,
         status);
  expectFailure(status, "(RSRFVX) Attempt to overflow double precision auxiliary vector!");
  RSRFVX(m, reflex, View1<int>(m.IntAux), View1<double>(m.RealAux), first, second, status);
  EXPECT_FALSE(status) << output();
  EXPECT_GT(first, 0);
}

// Random regions with random holes: each either decomposes into a sound
// structure or fails with one of the decomposition's messages. Every case
// has its own seed, printed when it fails. KNTR_SOAK=1 in the environment
// runs 20000 cases of each kind instead of a few hundred.
class RandomRegions : public MesherTest {
 protected:
  // The number of regions that decomposed.
  int run(std::uint32_t baseSeed, int cases, bool grid, bool tangled) {
    if (std::getenv("KNTR_SOAK")) cases = 20000;
    int decomposed = 0;
    for (int i = 0; i < cases; ++i) {
      const std::uint32_t seed = baseSeed + static_cast<std::uint32_t>(i);
      std::mt19937 random(seed);
      const TestRegion region = shapes::randomRegion(random, MaxHoles, grid, tangled);
      const bool ok = testing::decomposeRegion(region);
      const std::string said = output();
      if (ok) {
        ++decomposed;
        EXPECT_TRUE(testing::checkDecomposition(meshData(), region))
            << "seed " << seed << (grid ? " (grid)" : "");
        EXPECT_EQ(said, "") << "seed " << seed;
        continue;
      }
      const std::string message = testing::firstMesherMessage(said);
      EXPECT_TRUE(testing::isDecompositionMessage(message)) << "seed " << seed << ": " << said;
      std::printf("  seed %u%s: %s\n", seed, grid ? " (grid)" : "", message.c_str());
    }
    return decomposed;
  }
};

TEST_F(RandomRegions, DecomposeOrFailWithAMessage) {
  // Regions in general position with holes kept clear of everything are
  // proper input: all of them must go through.
  const int plain = std::getenv("KNTR_SOAK") ? 20000 : 300;
  EXPECT_EQ(run(1000u, plain, false, false), plain);
  // On a coarse grid many points stand level with one another and edges
  // run along common lines; ragged exteriors have deep pockets.
  const int grid = std::getenv("KNTR_SOAK") ? 20000 : 200;
  EXPECT_GE(run(5000u, grid, true, false), grid * 95 / 100);
  const int ragged = std::getenv("KNTR_SOAK") ? 20000 : 150;
  EXPECT_GE(run(9000u, ragged, false, true) + run(13000u, ragged, true, true),
            2 * ragged * 95 / 100);
}

}  // namespace
}  // namespace kntr::mesher
