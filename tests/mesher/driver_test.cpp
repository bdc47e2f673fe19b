// The region driver and the profile driver, end to end: messages, result
// layout, and meshes checked as a whole. They need the density, triangle and
// quality stages linked in; tests/CMakeLists.txt leaves them out until then.
#include "mesher/driver.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "framework/format.h"
#include "mesher/limits.h"
#include "profile/block.h"
#include "support/mesh_checker.h"
#include "support/mesh_runner.h"
#include "support/mesh_shapes.h"

namespace kntr::mesher {
namespace {

using testing::TestRegion;
namespace shapes = testing::shapes;

class DriverTest : public testing::MesherTest {
 protected:
  void SetUp() override {
    MesherTest::SetUp();
    profile::resetProfileBlock();
    vertices_ = std::make_unique<Array1<XY, ResultVertices>>();
    triangles_ = std::make_unique<Array1<Triangle, ResultTriangles>>();
    quality_ = std::make_unique<Array1<double, ResultTriangles>>();
  }

  View1<XY> vertices() { return View1<XY>(*vertices_); }
  View1<Triangle> triangles() { return View1<Triangle>(*triangles_); }

  // Mesh a region through TRNSM2 with `desired` triangles.
  bool meshRegion(const TestRegion& region, int& count, bool smooth = false) {
    Array1<int, MaxHoles + 5> sizes;
    const int holes = testing::layOut(region, vertices(), sizes);
    numVertices = -1;
    bool status = true;
    TRNSM2(holes, sizes, smooth, numVertices, vertices(), count, triangles(), status);
    return !status;
  }

  std::vector<std::string> problems(const TestRegion& region, int count) {
    return testing::checkTriangles(numVertices, vertices(), count, triangles(),
                                   testing::regionArea(region), testing::boundaryLength(region));
  }

  // A polyline profile with the given closed (or open) curves.
  void profileOf(const std::vector<std::pair<shapes::Polygon, bool>>& curves) {
    profile::ProfileData& p = profile::profile();
    p.PRFTYP = profile::PolylineProfile;
    p.PRBBOX = Array1<double, 4>{{-20, 20, -20, 20}};
    p.BBOXOK = true;
    profile::IZACCY();
    p.NPRCRV = static_cast<int>(curves.size());
    for (int c = 1; c <= p.NPRCRV; ++c) {
      const auto& [points, closed] = curves[static_cast<std::size_t>(c - 1)];
      p.NPRPNT(c) = static_cast<int>(points.size());
      p.PRCLSD(c) = closed;
      p.PRPARM(c) = profile::ChordLength;
      for (int j = 1; j <= p.NPRPNT(c); ++j) {
        const XY q = points[static_cast<std::size_t>(j - 1)];
        p.PRPNTS(c, j) = Array1<double, 2>{{q.x, q.y}};
        p.PRPTYP(c, j) = profile::Knuckle;
      }
    }
  }

  bool meshProfile() {
    bool status = true;
    IQPMSH(ResultVertices, ResultTriangles, View1<double>(*quality_), numVertices, vertices(),
           numTriangles, triangles(), status);
    return !status;
  }

  int numVertices = 0;
  int numTriangles = 0;

 private:
  std::unique_ptr<Array1<XY, ResultVertices>> vertices_;
  std::unique_ptr<Array1<Triangle, ResultTriangles>> triangles_;
  std::unique_ptr<Array1<double, ResultTriangles>> quality_;
};

TEST_F(DriverTest, Trnsm2MeshesASquare) {
  const TestRegion region{{shapes::rectangle(0, 0, 10, 10)}};
  int count = 200;
  ASSERT_TRUE(meshRegion(region, count));
  EXPECT_GT(count, 100);
  EXPECT_LT(count, 400);
  // The boundary points come first, as given.
  for (int i = 1; i <= 4; ++i)
    EXPECT_EQ(vertices()(i), region.polygons[0][static_cast<std::size_t>(i - 1)]);
  const auto found = problems(region, count);
  EXPECT_TRUE(found.empty()) << testing::joined(found);
  EXPECT_EQ(output(), "");
}

TEST_F(DriverTest, Trnsm2MeshesADiscWithThreeHolesAndAShipSection) {
  const TestRegion disc{{shapes::circle(0, 0, 10, 72), shapes::circle(-4, 2, 2, 20),
                         shapes::circle(4, 2, 2, 20), shapes::circle(0, -5, 2.5, 30)}};
  int count = 1000;
  ASSERT_TRUE(meshRegion(disc, count)) << output();
  auto found = problems(disc, count);
  EXPECT_TRUE(found.empty()) << testing::joined(found);

  const TestRegion ship{{shapes::shipSection(300)}};
  count = 2000;
  ASSERT_TRUE(meshRegion(ship, count)) << output();
  found = problems(ship, count);
  EXPECT_TRUE(found.empty()) << testing::joined(found);
}

TEST_F(DriverTest, Trnsm2RefusesMoreThanTenHolesBeforeBuildingAnything) {
  TestRegion region{{shapes::rectangle(0, 0, 100, 10)}};
  for (int k = 0; k < MaxHoles + 1; ++k)
    region.polygons.push_back(shapes::rectangle(1 + 8 * k, 4, 5 + 8 * k, 6));
  meshData().NumHalfEdges = 12345;
  int count = 100;
  EXPECT_FALSE(meshRegion(region, count));
  EXPECT_NE(output().find("(TRNSM2) Max number of interior meshing holes exceeded!"),
            std::string::npos);
  EXPECT_EQ(meshData().NumHalfEdges, 12345);
}

TEST_F(DriverTest, Trnsm2ChecksTheCountAndTheDirections) {
  const TestRegion square{{shapes::rectangle(0, 0, 10, 10)}};
  int count = 0;
  EXPECT_FALSE(meshRegion(square, count));
  EXPECT_NE(output().find("(TRNSM2) Desired number of triangles must be positive!"),
            std::string::npos);

  const TestRegion clockwise{{shapes::reversed(shapes::rectangle(0, 0, 10, 10))}};
  count = 100;
  EXPECT_FALSE(meshRegion(clockwise, count));
  EXPECT_NE(output().find("(TRNSM2) Encountered exterior boundary polygon with clockwise "
                          "orientation!\n(All boundary polygons must be counterclockwise "
                          "oriented)"),
            std::string::npos);

  const TestRegion hole{
      {shapes::rectangle(0, 0, 10, 10), shapes::reversed(shapes::rectangle(4, 4, 6, 6))}};
  EXPECT_FALSE(meshRegion(hole, count));
  EXPECT_NE(output().find("(TRNSM2) Encountered interior boundary polygon with clockwise "
                          "orientation!"),
            std::string::npos);
}

// More triangles asked for than there is room: a warning, and on with it.
TEST_F(DriverTest, Trnsm2WarnsAboutACountAboveTheRoom) {
  const TestRegion square{{shapes::rectangle(0, 0, 10, 10)}};
  int count = ResultTriangles + 1;
  Array1<int, 1> sizes;
  testing::layOut(square, vertices(), sizes);
  bool status = true;
  TRNSM2(0, sizes, false, numVertices, vertices(), count,
         View1<Triangle>(triangles().data(), ResultTriangles), status);
  EXPECT_NE(output().find("(TRNSM2) Desired number of triangles exceedes allocated!"),
            std::string::npos);
}

TEST_F(DriverTest, Trnsm2SmoothsOnRequest) {
  const TestRegion region{{shapes::lShape(10, 10, 4)}};
  int count = 300;
  ASSERT_TRUE(meshRegion(region, count, true)) << output();
  const auto found = problems(region, count);
  EXPECT_TRUE(found.empty()) << testing::joined(found);
}

TEST_F(DriverTest, Trasm2SearchesTheCountForTheQuality) {
  const TestRegion region{{shapes::lShape(10, 10, 4)}};
  Array1<int, 1> sizes;
  testing::layOut(region, vertices(), sizes);
  int count = 0, iterations = 0;
  double achieved = 0.0;
  bool status = true;
  TRASM2(MaxAutoIterations, 0.85, 0, sizes, false, numVertices, vertices(), count, triangles(),
         iterations, achieved, status);
  ASSERT_FALSE(status) << output();
  EXPECT_GE(iterations, 1);
  EXPECT_LE(iterations, MaxAutoIterations);
  EXPECT_GT(count, 0);
  const auto found = problems(region, count);
  EXPECT_TRUE(found.empty()) << testing::joined(found);
  // Every pass that goes on shows its notice.
  const std::string text = output();
  for (int i = 1; i < iterations; ++i) {
    EXPECT_NE(text.find("Iteration " + fmt::I(i, 2) + "/15, quality = "), std::string::npos)
        << text;
  }
  EXPECT_EQ(text.find("Iteration " + fmt::I(iterations, 2) + "/15"),
            iterations == MaxAutoIterations ? text.find("Iteration 15/15") : std::string::npos);
}

// A circle in a ring in a square: the square with the ring as its hole, and
// the circle as a region of its own.
TEST_F(DriverTest, IqpmshMeshesNestedCurvesAsTwoRegions) {
  profileOf({{shapes::circle(0, 0, 2, 24), true},
             {shapes::circle(0, 0, 5, 40), true},
             {shapes::rectangle(-10, -10, 10, 10), true}});
  profile::profile().MESHDN = 500;
  ASSERT_TRUE(meshProfile()) << output();
  EXPECT_NE(output().find("Generating interior mesh..."), std::string::npos);
  // The first region's boundary points lead the vertex list: the square's.
  EXPECT_EQ(vertices()(1), (XY{-10, -10}));
  const TestRegion both{{shapes::rectangle(-10, -10, 10, 10), shapes::circle(0, 0, 5, 40)}};
  const double area =
      testing::regionArea(both) + std::fabs(testing::signedArea(shapes::circle(0, 0, 2, 24)));
  double sum = 0.0;
  for (int t = 1; t <= numTriangles; ++t) {
    const XY a = vertices()(triangles()(t)(1)), b = vertices()(triangles()(t)(2)),
             c = vertices()(triangles()(t)(3));
    const double twice = (b.x - a.x) * (c.y - a.y) - (c.x - a.x) * (b.y - a.y);
    EXPECT_GT(twice, 0.0) << t;
    sum += 0.5 * twice;
  }
  EXPECT_NEAR(sum, area, 1e-9 * area);
  EXPECT_GT(lastMeshStatistics().mean, 0.5);
  EXPECT_LE(lastMeshStatistics().maximum, 1.0 + 1e-12);
}

TEST_F(DriverTest, IqpmshIgnoresOpenAndSelfCrossingCurves) {
  profileOf({{{{0, 0}, {5, 0}, {5, 5}}, false}, {{{0, 0}, {4, 4}, {4, 0}, {0, 4}}, true}});
  ASSERT_TRUE(meshProfile());
  EXPECT_EQ(numVertices, 0);
  EXPECT_EQ(numTriangles, 0);
  EXPECT_EQ(output(), "");
}

// A polygon stored clockwise is turned before the region is meshed.
TEST_F(DriverTest, IqpmshTurnsClockwiseCurves) {
  profileOf({{shapes::reversed(shapes::rectangle(0, 0, 10, 10)), true}});
  profile::profile().MESHDN = 100;
  ASSERT_TRUE(meshProfile()) << output();
  EXPECT_GT(numTriangles, 0);
  // Read backward: the last point comes first.
  EXPECT_EQ(vertices()(1), (XY{0, 0}));
  EXPECT_EQ(vertices()(2), (XY{10, 0}));
}

// An open curve before a closed one: the region takes the closed curve's
// size and its number among the usable curves (1), and with it the points
// of curve 1, the open one.
TEST_F(DriverTest, IqpmshReadsPointsByTheUsableCurvesNumber) {
  const shapes::Polygon open = {{0, 0}, {6, 0}, {6, 3}, {0, 3}};
  profileOf({{open, false}, {shapes::rectangle(-5, -5, 5, 5), true}});
  profile::profile().MESHDN = 100;
  ASSERT_TRUE(meshProfile()) << output();
  double sum = 0.0;
  for (int t = 1; t <= numTriangles; ++t) {
    const XY a = vertices()(triangles()(t)(1)), b = vertices()(triangles()(t)(2)),
             c = vertices()(triangles()(t)(3));
    sum += 0.5 * ((b.x - a.x) * (c.y - a.y) - (c.x - a.x) * (b.y - a.y));
  }
  EXPECT_NEAR(sum, 18.0, 1e-9);
}

// Random regions through the whole region mesher: a proper mesh, or one of
// the mesher's messages.
TEST_F(DriverTest, RandomRegionsMeshOrFailWithAMessage) {
  const int cases = std::getenv("KNTR_SOAK") ? 3000 : 60;
  int meshed = 0;
  for (int i = 0; i < cases; ++i) {
    const std::uint32_t seed = 70000u + static_cast<std::uint32_t>(i);
    std::mt19937 random(seed);
    const TestRegion region = shapes::randomRegion(random, 4, i % 3 == 1, i % 3 == 2);
    int count = std::uniform_int_distribution<int>(20, 3000)(random);
    const bool ok = meshRegion(region, count);
    const std::string text = output();
    if (ok) {
      ++meshed;
      const auto found = problems(region, count);
      EXPECT_TRUE(found.empty()) << "seed " << seed << ":\n" << testing::joined(found);
    } else {
      const auto messages = testing::mesherMessages(text);
      EXPECT_FALSE(messages.empty()) << "seed " << seed << ": failed without a message";
      if (!messages.empty()) std::printf("  seed %u: %s\n", seed, messages.front().c_str());
    }
  }
  std::printf("  %d of %d random regions meshed\n", meshed, cases);
  EXPECT_GE(meshed, cases * 9 / 10);
}

}  // namespace
}  // namespace kntr::mesher
