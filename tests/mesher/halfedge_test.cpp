// Plane geometry helpers, and the room the two half-edge edits need (what they
// do is checked with every decomposition).
#include "mesher/halfedge.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "support/mesh_fixture.h"
#include "support/mesh_shapes.h"

namespace kntr::mesher {
namespace {

using testing::MesherTest;

TEST(Iqangl, MeasuresCounterclockwiseFromTheSecondRayToTheFirst) {
  // From the ray to c counterclockwise to the ray to a, against the polar
  // angles; the same ray twice is 0, not a full turn.
  EXPECT_EQ(IQANGL(2, 0, 0, 0, 1, 0), 0.0);
  std::mt19937 random(7);
  std::uniform_real_distribution<double> angle(0.0, 2 * Pi);
  for (int i = 0; i < 200; ++i) {
    const double pa = angle(random), pc = angle(random);
    const double got = IQANGL(3 + 2 * std::cos(pa), -1 + 2 * std::sin(pa), 3, -1,
                              3 + 5 * std::cos(pc), -1 + 5 * std::sin(pc));
    const double want = std::fmod(pa - pc + 4 * Pi, 2 * Pi);
    EXPECT_NEAR(std::fmod(got - want + 5 * Pi, 2 * Pi) - Pi, 0.0, 1e-12) << pa << " " << pc;
    EXPECT_GE(got, 0.0);
    EXPECT_LT(got, 2 * Pi);
  }
}

TEST(Iqside, TellsRightLeftAndOnWithAToleranceLinearInTheLengths) {
  struct Case {
    double x, y, bx, dv;
    int side;
  };
  // The line runs from (0, 0) to (bx, 0). The value is the cross product
  // (length times distance); the band is MeshTol times the largest
  // component, so its width does not grow with the line's length. dv moves
  // the line to the left: a point on the old line is then right.
  for (const Case& c :
       {Case{0.5, -1, 1, 0, 1}, Case{0.5, 1, 1, 0, -1}, Case{7, 0, 1, 0, 0},
        Case{0.5, 0.5e-12, 1, 0, 0}, Case{0.5, 2e-12, 1, 0, -1}, Case{500, 0.5e-12, 1000, 0, 0},
        Case{500, 2e-12, 1000, 0, -1}, Case{0.5, 0, 1, 0.25, 1}, Case{0.5, 0.25, 1, 0.25, 0},
        Case{0.5, 0.5, 1, 0.25, -1}})
    EXPECT_EQ(IQSIDE(c.x, c.y, 0, 0, c.bx, 0, c.dv), c.side)
        << c.x << ", " << c.y << " dv " << c.dv;
}

TEST_F(MesherTest, InsvtxAndInsedgReportFullStorage) {
  MeshData& m = meshData();
  ASSERT_TRUE(testing::decomposeRegion({{testing::shapes::rectangle(0, 0, 2, 2)}}));
  const View1<XY> all = m.Vertices;
  m.Vertices = View1<XY>(all.data(), 4);  // no room for a fifth vertex
  int added = 0;
  bool status = false;
  INSVTX(m, 1.0, 0.0, 1, added, status);
  expectFailure(status, "(INSVTX) Max number of vertices exceeded!");
  m.Vertices = all;
  m.NumPolygons = MaxSubPolygons;
  INSEDG(m, 1, 3, status);
  expectFailure(status, "(INSEDG) Max number of polygons exceeded!");
  m.NumPolygons = 1;
  m.NumHalfEdges = MaxHalfEdges - 1;
  INSEDG(m, 1, 3, status);
  expectFailure(status, "(INSEDG) Max number of polygon vertices exceeded!");
  INSVTX(m, 1.0, 0.0, 1, added, status);
  expectFailure(status, "(INSVTX) Max number of polygon vertices exceeded!");
}

}  // namespace
}  // namespace kntr::mesher
