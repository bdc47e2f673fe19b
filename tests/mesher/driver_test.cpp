// The whole mesher: the region drivers on chosen and random regions, and
// the profile driver on profiles built here and on the reference profiles,
// checked as meshes.
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
#include "profile/datafile.h"
#include "profile/polylines.h"
#include "support/mesh_fixture.h"
#include "support/mesh_shapes.h"

namespace kntr::testing {
namespace {

using mesher::MaxHoles;

class DriverTest : public MeshTest {
 protected:
  void SetUp() override {
    MeshTest::SetUp();
    profile::resetProfileBlock();
  }

  // The region meshed by TRNSM2 (or TRASM2 with a required quality) into
  // the fixture's arrays.
  void meshRegion(const TestRegion& region, int desired, bool smooth, bool& status,
                  double quality = 0.0) {
    Array1<int, MaxHoles + 5> sizes;
    const int holes = layOut(region, vertices(), sizes);
    region_ = region;
    numTriangles_ = desired;
    int numVertices = -1;
    if (quality > 0.0) {
      double achieved = 0.0;
      mesher::TRASM2(mesher::MaxAutoIterations, quality, holes, sizes, smooth, numVertices,
                     vertices(), numTriangles_, triangles(), iterations_, achieved, status);
    } else {
      mesher::TRNSM2(holes, sizes, smooth, numVertices, vertices(), numTriangles_, triangles(),
                     status);
    }
    m().NumVertices = numVertices;
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

  // A reference profile of data/bench loaded into the profile block, and
  // region_ made of its closed curves as the polylines give them, each
  // turned counterclockwise.
  void loadProfile(const std::string& name) {
    profile::resetProfileBlock();
    bool loaded = false, status = false;
    profile::GTKNTR(std::string(KNTR_SOURCE_DIR) + "/data/bench/" + name, true, loaded, status);
    ASSERT_TRUE(loaded && !status) << name;
    auto lines = std::make_unique<profile::ProfilePolylines>();
    profile::IQPPOL(profile::MaxCurves, profile::MaxPolylinePoints, *lines, status);
    ASSERT_FALSE(status);
    region_.polygons.clear();
    for (int c = 1; c <= lines->curves; ++c) {
      shapes::Polygon points;
      for (int i = 1; i <= lines->points(c); ++i) points.push_back(lines->xy(c, i));
      if (points.size() > 1 && points.front() == points.back()) points.pop_back();
      region_.polygons.push_back(signedArea(points) < 0 ? shapes::reversed(points) : points);
    }
  }

  void meshProfile(bool& status) {
    int numVertices = 0;
    mesher::IQPMSH(mesher::ResultVertices, mesher::ResultTriangles, quality(), numVertices,
                   vertices(), numTriangles_, triangles(), status);
    m().NumVertices = numVertices;
  }

  int iterations_ = 0;
};

TEST_F(DriverTest, Trnsm2RefusesBadInputBeforeBuildingAnything) {
  TestRegion many{{shapes::rectangle(0, 0, 100, 10)}};
  for (int k = 0; k < MaxHoles + 1; ++k)
    many.polygons.push_back(shapes::rectangle(1 + 8 * k, 4, 5 + 8 * k, 6));
  m().NumHalfEdges = 12345;
  bool status = false;
  meshRegion(many, 100, false, status);
  expectFailure(status, "(TRNSM2) Max number of interior meshing holes exceeded!");
  EXPECT_EQ(m().NumHalfEdges, 12345);

  const TestRegion square{{shapes::rectangle(0, 0, 10, 10)}};
  meshRegion(square, 0, false, status);
  expectFailure(status, "(TRNSM2) Desired number of triangles must be positive!");
  meshRegion({{shapes::reversed(square.polygons[0])}}, 100, false, status);
  expectFailure(status,
                "(TRNSM2) Encountered exterior boundary polygon with clockwise orientation!\n(All "
                "boundary polygons must be counterclockwise oriented)");
  meshRegion({{square.polygons[0], shapes::reversed(shapes::rectangle(4, 4, 6, 6))}}, 100, false,
             status);
  expectFailure(status,
                "(TRNSM2) Encountered interior boundary polygon with clockwise orientation!");
  // More triangles asked for than there is room: a warning, and on with it.
  meshRegion(square, mesher::ResultTriangles + 1, false, status);
  expectShown("(TRNSM2) Desired number of triangles exceedes allocated!");
}

TEST_F(DriverTest, SmoothingKeepsTheMeshUpToTheTopologyLimit) {
  // Smoothing moves no boundary point, a hole's included.
  std::mt19937 random(5);
  region_ = {
      {shapes::randomStar(random, 0, 0, 7, 9, 30), shapes::randomStar(random, 1, 1, 1.5, 2.5, 12)}};
  bool status = false;
  meshRegion(region_, 2000, true, status);
  ASSERT_FALSE(status) << output();
  EXPECT_TRUE(meshIsProper());

  // A square meshed for 10000 triangles gets a few more: fine without
  // smoothing, too many for the smoothing tables.
  const TestRegion square{{shapes::rectangle(0, 0, 10, 10)}};
  meshRegion(square, 10000, false, status);
  ASSERT_FALSE(status) << output();
  EXPECT_GT(numTriangles_, 10000);
  EXPECT_TRUE(meshIsProper());
  meshRegion(square, 10000, true, status);
  expectFailure(status,
                "(SMLPT2) Max number of mesh triangles exceedes allocated number of topology "
                "faces!");
}

TEST_F(DriverTest, Trasm2SearchesTheCountForTheQuality) {
  bool status = true;
  meshRegion({{shapes::lShape(10, 10, 4)}}, 0, false, status, 0.85);
  ASSERT_FALSE(status) << output();
  EXPECT_GE(iterations_, 1);
  EXPECT_LE(iterations_, mesher::MaxAutoIterations);
  EXPECT_GT(numTriangles_, 0);
  EXPECT_TRUE(meshIsProper());
  // Every pass that goes on shows its notice.
  const std::string text = output();
  for (int i = 1; i < iterations_; ++i)
    EXPECT_NE(text.find("Iteration " + fmt::I(i, 2) + "/15, quality = "), std::string::npos)
        << text;
  EXPECT_EQ(
      text.find("Iteration " + fmt::I(iterations_, 2) + "/15"),
      iterations_ == mesher::MaxAutoIterations ? text.find("Iteration 15/15") : std::string::npos);
}

// A circle in a ring in a square: the square with the ring as its hole, and
// the circle as a region of its own.
TEST_F(DriverTest, IqpmshMeshesNestedCurvesAsTwoRegions) {
  region_ = {{shapes::circle(0, 0, 2, 24), shapes::circle(0, 0, 5, 40),
              shapes::rectangle(-10, -10, 10, 10)}};
  profileOf(
      {{region_.polygons[0], true}, {region_.polygons[1], true}, {region_.polygons[2], true}});
  profile::profile().MESHDN = 500;
  bool status = true;
  meshProfile(status);
  ASSERT_FALSE(status) << output();
  expectShown("Generating interior mesh...");
  // The first region's boundary points lead the vertex list: the square's.
  EXPECT_EQ(vertices()(1), (XY{-10, -10}));
  EXPECT_TRUE(meshIsProper());
  EXPECT_GT(mesher::lastMeshStatistics().mean, 0.5);
  EXPECT_LE(mesher::lastMeshStatistics().maximum, 1.0 + 1e-12);
}

TEST_F(DriverTest, IqpmshSkipsTurnsAndReadsCurves) {
  // Open and self-crossing curves are left out without a word.
  profileOf({{{{0, 0}, {5, 0}, {5, 5}}, false}, {{{0, 0}, {4, 4}, {4, 0}, {0, 4}}, true}});
  bool status = true;
  meshProfile(status);
  ASSERT_FALSE(status);
  EXPECT_EQ(m().NumVertices, 0);
  EXPECT_EQ(numTriangles_, 0);
  EXPECT_EQ(output(), "");

  // A polygon stored clockwise is turned before the region is meshed.
  region_ = {{shapes::rectangle(0, 0, 10, 10)}};
  profileOf({{shapes::reversed(region_.polygons[0]), true}});
  profile::profile().MESHDN = 100;
  meshProfile(status);
  ASSERT_FALSE(status) << output();
  EXPECT_GT(numTriangles_, 0);
  EXPECT_TRUE(meshIsProper());

  // An open curve before a closed one: the region takes the closed curve's
  // size and its number among the usable curves (1), and with it the points
  // of curve 1, the open one.
  region_ = {{{{0, 0}, {6, 0}, {6, 3}, {0, 3}}}};
  profileOf({{region_.polygons[0], false}, {shapes::rectangle(-5, -5, 5, 5), true}});
  meshProfile(status);
  ASSERT_FALSE(status) << output();
  EXPECT_TRUE(meshIsProper());
}

TEST_F(DriverTest, ReferenceProfilesMeshNearTheRequestedCount) {
  for (const char* name : {"square.kntr", "square-hole.kntr", "spline-lens.kntr"}) {
    loadProfile(name);
    for (const int desired : {1000, 5000, 10000}) {
      profile::profile().MESHDN = desired;
      bool status = false;
      meshProfile(status);
      ASSERT_FALSE(status) << name << " " << desired << output();
      EXPECT_TRUE(meshIsProper()) << name << " " << desired;
      EXPECT_NEAR(numTriangles_, desired, 0.25 * desired) << name;
      EXPECT_GT(mesher::lastMeshStatistics().mean, 0.7) << name << " " << desired;
    }
    // The automatic density meets a mean quality of 0.85 within 1%, or warns.
    loadProfile(name);
    profile::profile().MESHAU = true;
    profile::profile().MESHQL = 0.85;
    output();
    bool status = false;
    meshProfile(status);
    const std::string said = output();
    ASSERT_FALSE(status) << name << said;
    EXPECT_TRUE(meshIsProper()) << name;
    const double mean = mesher::lastMeshStatistics().mean;
    const bool warned = said.find("Required mesh quality was not obtained!") != std::string::npos;
    EXPECT_TRUE(std::fabs(mean - 0.85) <= 0.01 * 0.85 || warned) << name << " mean " << mean;
    std::printf("[ quality  ] %-17s auto: %5d triangles, mean quality %.4f%s\n", name,
                numTriangles_, mean, warned ? " (warned)" : "");
  }
}

// Random regions with random holes through the whole region mesher: a
// proper mesh, or one of the mesher's messages. KNTR_SOAK=1 in the
// environment runs 3000 cases.
TEST_F(DriverTest, RandomRegionsMeshOrFailWithAMessage) {
  const int cases = std::getenv("KNTR_SOAK") ? 3000 : 200;
  int meshed = 0;
  for (int i = 0; i < cases; ++i) {
    const std::uint32_t seed = 70000u + static_cast<std::uint32_t>(i);
    std::mt19937 random(seed);
    const TestRegion region = shapes::randomRegion(random, 4, i % 3 == 1, i % 3 == 2);
    const int desired = std::uniform_int_distribution<int>(20, 4000)(random);
    bool status = false;
    meshRegion(region, desired, false, status);
    const std::string said = output();
    if (!status) {
      ++meshed;
      EXPECT_TRUE(meshIsProper()) << "seed " << seed << " desired " << desired;
      continue;
    }
    const std::string message = firstMesherMessage(said);
    EXPECT_TRUE(isMesherMessage(message)) << "seed " << seed << ": " << said;
    std::printf("  seed %u: %s\n", seed, message.c_str());
  }
  EXPECT_GE(meshed, cases * 9 / 10);
}

}  // namespace
}  // namespace kntr::testing
