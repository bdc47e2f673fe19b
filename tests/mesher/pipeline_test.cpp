// The whole mesher: the region driver on random regions with holes and the
// profile driver on the reference profiles, checked as meshes.
#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "framework/state.h"
#include "mesher/driver.h"
#include "mesher/limits.h"
#include "profile/block.h"
#include "profile/datafile.h"
#include "profile/polylines.h"
#include "support/mesh_fixture.h"

namespace kntr::testing {
namespace {

using mesher::Pi;
using mesher::Triangle;

// The mesher's messages, any of which may end a run on a bad region.
const char* const mesherMessages[] = {
    "() error 7",
    "(DSQCPG) Internal error - could not establish outer diameter of convex polygon!",
    "(IDSQCP) Internal error - could not establish inner diameter of convex polygon!",
    "(INSEDG) Max number of polygon vertices exceeded!",
    "(INSEDG) Max number of polygons exceeded!",
    "(INSVTX) Max number of polygon vertices exceeded!",
    "(INSVTX) Max number of vertices exceeded!",
    "(IQPLDR) Found two consecutive coinciding points!",
    "(IQTRCE) Could not locate two triangles with specified edge!",
    "(ISFACE) Edge->vertex hash list overflowed by too many collisions!",
    "(ISFACE) Max number of edges exceeded!",
    "(ISFACE) Vertex->Face list overflowed!",
    "(JNHBOB) Failed to locate subregion above top hole vertex!",
    "(JNHBOB) Internal error - problems with angular tolerance!",
    "(MKCPBM) Max allowed number of vertices exceeded!",
    "(MKVONB) Encountered parallel edges when intersecting!",
    "(MRGTRI) Internal error - illegal triangle formed!",
    "(RSRFVX) Attempt to overflow double precision auxiliary vector!",
    "(RSRFVX) Attempt to overflow integer auxiliary vector!",
    "(SCVPG1) Internal error - index out of range when scanning!",
    "(SCVPG2) Internal error - index out of range when scanning!",
    "(SCVPG3) Internal error - index out of range when scanning!",
    "(SCVPG4) Internal error - index out of range when scanning!",
    "(SCVPGR) Internal error - attempt to underflow vertex stack!",
    "(SDCPMV) Could not locate separator within given angular tolerance!",
    "(SHRNCP) Encountered parallel edges when intersecting !",
    "(TRDLCP) Max number of mesh triangles exceeded!",
    "(TRQUCP) Attempt to overflow closed walk list!",
    "(TRQUCP) Max number of triangles exceeded!",
    "(TRQUCP) Max number of vertices exceeded!",
};

bool saysAMesherMessage(const std::string& text) {
  for (const char* message : mesherMessages) {
    if (text.find(message) != std::string::npos) return true;
  }
  return false;
}

class PipelineTest : public MeshTest {
 protected:
  // Lays the region's polygons out one after another, exterior first.
  void layOut(const Region& region, std::vector<int>& sizes) {
    int k = 0;
    sizes.clear();
    for (const auto& polygon : region.polygons) {
      for (const XY& p : polygon) vertices()(++k) = p;
      sizes.push_back(static_cast<int>(polygon.size()));
    }
  }

  // The region meshed by the region driver.
  void meshRegion(const Region& region, int desired, bool smooth, bool& status) {
    std::vector<int> sizes;
    layOut(region, sizes);
    region_ = region;
    int numVertices = 0;
    numTriangles_ = desired;
    mesher::TRNSM2(static_cast<int>(sizes.size()) - 1,
                   View1<const int>(sizes.data(), static_cast<int>(sizes.size())), smooth,
                   numVertices, vertices(), numTriangles_, triangles(), status);
    m().NumVertices = numVertices;
  }
};

// A star-shaped polygon round `centre`: corners at sorted random angles and
// radii between `inner` and `outer`, counterclockwise.
std::vector<XY> star(std::mt19937& rng, XY centre, int n, double inner, double outer) {
  std::uniform_real_distribution<double> unit(0.0, 1.0);
  std::vector<double> angles;
  for (int k = 0; k < n; ++k) angles.push_back(2.0 * Pi * (k + 0.1 + 0.8 * unit(rng)) / n);
  std::vector<XY> points;
  for (const double a : angles) {
    const double r = inner + (outer - inner) * unit(rng);
    points.push_back({centre.x + r * std::cos(a), centre.y + r * std::sin(a)});
  }
  return points;
}

TEST_F(PipelineTest, RandomRegionsWithHolesMeshOrFailWithAMessage) {
  const unsigned seed = 2718;
  std::mt19937 rng(seed);
  std::uniform_real_distribution<double> unit(0.0, 1.0);
  int meshed = 0;
  for (int trial = 0; trial < 300; ++trial) {
    Region region;
    region.polygons.push_back(star(rng, {0, 0}, 5 + static_cast<int>(unit(rng) * 40), 6.0, 10.0));
    const int holes = static_cast<int>(unit(rng) * 4);
    std::vector<XY> centres;
    for (int h = 0; h < holes; ++h) {
      const double a = unit(rng) * 2.0 * Pi, r = unit(rng) * 3.0;
      const XY c{r * std::cos(a), r * std::sin(a)};
      bool apart = true;
      for (const XY& o : centres) apart = apart && std::hypot(c.x - o.x, c.y - o.y) > 3.2;
      if (!apart) continue;
      centres.push_back(c);
      region.polygons.push_back(star(rng, c, 3 + static_cast<int>(unit(rng) * 12), 0.5, 1.5));
    }
    const int desired = 20 + static_cast<int>(unit(rng) * 4000);
    type(std::string(10, '\n'));
    bool status = false;
    meshRegion(region, desired, false, status);
    const std::string said = output();
    if (status) {
      EXPECT_TRUE(saysAMesherMessage(said))
          << "seed " << seed << " trial " << trial << ": " << said;
      continue;
    }
    ++meshed;
    EXPECT_TRUE(meshIsProper()) << "seed " << seed << " trial " << trial << " desired " << desired;
  }
  EXPECT_GT(meshed, 250) << "seed " << seed;
}

TEST_F(PipelineTest, TooManyTrianglesForSmoothing) {
  // A square meshed for 10000 triangles gets a few more: fine without
  // smoothing, too many for the smoothing tables.
  const Region square{{{{0, 0}, {10, 0}, {10, 10}, {0, 10}}}};
  bool status = false;
  meshRegion(square, 10000, false, status);
  ASSERT_FALSE(status) << output();
  EXPECT_GT(numTriangles_, 10000);
  EXPECT_TRUE(meshIsProper());

  type("\n");
  meshRegion(square, 10000, true, status);
  EXPECT_TRUE(status);
  EXPECT_NE(output().find("(SMLPT2) Max number of mesh triangles exceedes allocated number of "
                          "topology faces!"),
            std::string::npos);
}

TEST_F(PipelineTest, SmoothedRegionWithAHoleStaysProper) {
  std::mt19937 rng(5);
  Region region;
  region.polygons.push_back(star(rng, {0, 0}, 30, 7.0, 9.0));
  region.polygons.push_back(star(rng, {1, 1}, 12, 1.5, 2.5));
  bool status = false;
  meshRegion(region, 2000, true, status);
  ASSERT_FALSE(status) << output();
  EXPECT_TRUE(meshIsProper());
}

// Loads a reference profile of data/bench into the profile block.
void loadProfile(const std::string& name) {
  profile::resetProfileBlock();
  bool loaded = false, status = false;
  profile::GTKNTR(std::string(KNTR_SOURCE_DIR) + "/data/bench/" + name, true, loaded, status);
  ASSERT_TRUE(loaded && !status) << name;
}

class ProfileMeshTest : public PipelineTest {
 protected:
  // The region of the profile's closed curves as the polylines give them,
  // each turned counterclockwise; the first is the exterior.
  Region profileRegion() {
    auto lines = std::make_unique<profile::ProfilePolylines>();
    bool status = false;
    profile::IQPPOL(profile::MaxCurves, profile::MaxPolylinePoints, *lines, status);
    EXPECT_FALSE(status);
    Region region;
    for (int c = 1; c <= lines->curves; ++c) {
      std::vector<XY> points;
      for (int i = 1; i <= lines->points(c); ++i) points.push_back(lines->xy(c, i));
      if (points.size() > 1 && points.front() == points.back()) points.pop_back();
      double area = 0.0;
      for (std::size_t i = 0; i < points.size(); ++i) {
        const XY& a = points[i];
        const XY& b = points[(i + 1) % points.size()];
        area += a.x * b.y - b.x * a.y;
      }
      if (area < 0.0) std::reverse(points.begin(), points.end());
      region.polygons.push_back(points);
    }
    return region;
  }

  void meshProfile(bool& status) {
    int numVertices = 0;
    mesher::IQPMSH(mesher::ResultVertices, mesher::ResultTriangles, quality(), numVertices,
                   vertices(), numTriangles_, triangles(), status);
    m().NumVertices = numVertices;
  }
};

TEST_F(ProfileMeshTest, ReferenceProfilesMeshNearTheRequestedCount) {
  for (const char* name : {"square.kntr", "square-hole.kntr", "spline-lens.kntr"}) {
    loadProfile(name);
    region_ = profileRegion();
    for (const int desired : {1000, 5000, 10000}) {
      profile::profile().MESHDN = desired;
      bool status = false;
      meshProfile(status);
      ASSERT_FALSE(status) << name << " " << desired << output();
      EXPECT_TRUE(meshIsProper()) << name << " " << desired;
      EXPECT_NEAR(numTriangles_, desired, 0.25 * desired) << name;
      const double mean = mesher::lastMeshStatistics().mean;
      EXPECT_GT(mean, 0.7) << name << " " << desired;
      std::printf("[ quality  ] %-17s %5d requested, %5d made, mean quality %.4f\n", name, desired,
                  numTriangles_, mean);
      output();
    }
  }
}

TEST_F(ProfileMeshTest, AutomaticDensityMeetsTheQualityOrWarns) {
  for (const char* name : {"square.kntr", "square-hole.kntr", "spline-lens.kntr"}) {
    loadProfile(name);
    region_ = profileRegion();
    profile::profile().MESHAU = true;
    profile::profile().MESHQL = 0.85;
    type(std::string(40, '\n'));
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

}  // namespace
}  // namespace kntr::testing
