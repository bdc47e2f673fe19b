// The robust mode of the mesher: exact predicates, random regions at every
// scale, smoothing that never turns a triangle over, the quality stage on the
// reference profiles, the quality search, and curves that cross.
#include "mesher/robust.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "mesher/driver.h"
#include "mesher/improve.h"
#include "mesher/limits.h"
#include "mesher/predicates.h"
#include "mesher/quality.h"
#include "profile/block.h"
#include "profile/datafile.h"
#include "profile/polylines.h"
#include "support/mesh_fixture.h"
#include "support/mesh_shapes.h"

namespace kntr::testing {
namespace {

using mesher::MaxHoles;

// Points on a fine grid: 1024 + i 2^-40, so that differences are exact and
// the true signs follow from integer arithmetic on i.
XY gridPoint(long i, long j) {
  return XY{1024.0 + std::ldexp(static_cast<double>(i), -40),
            1024.0 + std::ldexp(static_cast<double>(j), -40)};
}

TEST(Predicates, SignsAgreeWithIntegerArithmeticOnNearlyDegenerateInput) {
  std::mt19937 random(3);
  std::uniform_int_distribution<long> small(-1000, 1000);
  int orientZeros = 0, circleZeros = 0;
  for (int k = 0; k < 20000; ++k) {
    // Nearly collinear: c on the line through a and b, moved by a unit or none.
    const long ax = small(random), ay = small(random), dx = small(random), dy = small(random);
    const long t = small(random) % 7;
    const long cx = ax + t * dx + small(random) % 2, cy = ay + t * dy + small(random) % 2;
    const __int128 det = static_cast<__int128>(ax - cx) * (ay + dy - cy) -
                         static_cast<__int128>(ay - cy) * (ax + dx - cx);
    const int expected = det > 0 ? 1 : (det < 0 ? -1 : 0);
    orientZeros += expected == 0;
    ASSERT_EQ(mesher::IQORNT(gridPoint(ax, ay), gridPoint(ax + dx, ay + dy), gridPoint(cx, cy)),
              expected)
        << k;

    // Nearly cocircular: the corners of a rectangle, one moved by a unit or none.
    const long w = 1 + std::labs(small(random)), h = 1 + std::labs(small(random));
    const long ex = w + small(random) % 2, ey = h + small(random) % 2;
    const long px[4] = {0, w, ex, 0}, py[4] = {0, 0, ey, h};
    auto lift = [&](int q) {
      return static_cast<__int128>(px[q]) * px[q] + static_cast<__int128>(py[q]) * py[q];
    };
    // det of rows (x - x3, y - y3, lift - lift3) for the first three points.
    __int128 m[3][3];
    for (int q = 0; q < 3; ++q) {
      m[q][0] = px[q] - px[3];
      m[q][1] = py[q] - py[3];
      m[q][2] = static_cast<__int128>(px[q] - px[3]) * (px[q] - px[3]) +
                static_cast<__int128>(py[q] - py[3]) * (py[q] - py[3]);
    }
    (void)lift;
    const __int128 in = m[0][0] * (m[1][1] * m[2][2] - m[2][1] * m[1][2]) -
                        m[1][0] * (m[0][1] * m[2][2] - m[2][1] * m[0][2]) +
                        m[2][0] * (m[0][1] * m[1][2] - m[1][1] * m[0][2]);
    const int inside = in > 0 ? 1 : (in < 0 ? -1 : 0);
    circleZeros += inside == 0;
    ASSERT_EQ(mesher::IQINCR(gridPoint(px[0], py[0]), gridPoint(px[1], py[1]),
                             gridPoint(px[2], py[2]), gridPoint(px[3], py[3])),
              inside)
        << k;
  }
  // Both the exact zeros and the near misses were met.
  EXPECT_GT(orientZeros, 1000);
  EXPECT_GT(circleZeros, 1000);

  // Segments: crossing, touching at an end, overlapping on one line, apart.
  const XY o{0, 0}, a{2, 2}, b{2, 0}, c{0, 2}, d{1, 1}, e{3, 3}, f{4, 4};
  EXPECT_TRUE(mesher::IQSGTC(o, a, b, c));
  EXPECT_TRUE(mesher::IQSGTC(o, a, d, b));
  EXPECT_TRUE(mesher::IQSGTC(o, a, d, e));
  EXPECT_FALSE(mesher::IQSGTC(o, a, e, f));
  EXPECT_FALSE(mesher::IQSGTC(o, b, c, a));
}

class RobustTest : public MeshTest {
 protected:
  void SetUp() override {
    MeshTest::SetUp();
    profile::resetProfileBlock();
  }

  void meshRegion(const TestRegion& region, int desired, const mesher::RobustSettings& settings,
                  bool& status) {
    Array1<int, MaxHoles + 5> sizes;
    const int holes = layOut(region, vertices(), sizes);
    region_ = region;
    numTriangles_ = desired;
    int numVertices = 0;
    mesher::TRRBM2(holes, sizes, settings, numVertices, vertices(), numTriangles_, triangles(),
                   status);
    m().NumVertices = numVertices;
  }
};

// The region scaled about the origin.
TestRegion scaled(const TestRegion& region, double factor) {
  TestRegion out = region;
  for (auto& polygon : out.polygons)
    for (XY& p : polygon) p = XY{p.x * factor, p.y * factor};
  return out;
}

// Random regions (boxes of side about 20 from the generator) at sides 0.001,
// 1 and 1000, and of mixed scale: a hole 1000 times smaller than its region.
// Every region must mesh properly, with each combination of smoothing and
// quality stage. KNTR_SOAK=N in the environment runs N regions per scale.
TEST_F(RobustTest, RandomRegionsMeshProperlyAtEveryScale) {
  const char* soak = std::getenv("KNTR_SOAK");
  const int cases = soak ? std::max(1, std::atoi(soak)) : 40;
  const double sides[4] = {0.001, 1.0, 1000.0, 1.0};
  for (int s = 0; s < 4; ++s) {
    const bool mixed = s == 3;
    int meshed = 0, failed = 0, improper = 0;
    for (int i = 0; i < cases; ++i) {
      const std::uint32_t seed = 90000u + static_cast<std::uint32_t>(i);
      std::mt19937 random(seed);
      TestRegion region;
      if (mixed) {
        for (;;) {
          region = shapes::randomRegion(random, 0, false);
          region.polygons.push_back(shapes::randomStar(random, 0.0, 0.0, 0.01, 0.02, 9));
          if (shapes::isSimpleRegion(region) && insidePolygon(XY{0, 0}, region.polygons[0]))
            break;
        }
      } else {
        region = shapes::randomRegion(random, 4, i % 3 == 1, i % 3 == 2);
      }
      region = scaled(region, sides[s] / 20.0);
      const int desired = std::uniform_int_distribution<int>(20, 5000)(random);
      const mesher::RobustSettings settings{i % 2 == 1, i % 4 >= 2};
      bool status = false;
      meshRegion(region, desired, settings, status);
      const std::string said = output();
      if (status) {
        ++failed;
        ADD_FAILURE() << "side " << sides[s] << " seed " << seed << ": " << said;
        continue;
      }
      const auto proper = meshIsProper();
      if (!proper) {
        ++improper;
        ADD_FAILURE() << "side " << sides[s] << " seed " << seed << " desired " << desired << " "
                      << proper.message();
        continue;
      }
      ++meshed;
    }
    std::printf("[ robust   ] side %g%s: %d meshed, %d failed, %d improper of %d\n", sides[s],
                mixed ? " with a hole 1000 times smaller" : "", meshed, failed, improper, cases);
  }
}

TEST_F(RobustTest, SameRegionAtAnyScaleMeshesAlike) {
  std::mt19937 random(17);
  const TestRegion region = shapes::randomRegion(random, 3, false);
  bool status = false;
  meshRegion(region, 1500, {false, true}, status);
  ASSERT_FALSE(status) << output();
  const int count = numTriangles_;
  const std::vector<XY> reference(vertices().data(), vertices().data() + m().NumVertices);
  auto meanQuality = [&] {
    double minimum = 0, maximum = 0, q = 0, deviation = 0;
    bool failed = false;
    mesher::IQTRST(numTriangles_, View1<const XY>(vertices().data(), m().NumVertices),
                   View1<const mesher::Triangle>(triangles().data(), numTriangles_), minimum,
                   maximum, q, deviation, quality(), failed);
    return q;
  };
  const double referenceMean = meanQuality();
  // Scaled by powers of two the scaled copy is exact, and so is the mesh.
  for (const double factor : {std::ldexp(1.0, -30), std::ldexp(1.0, 30)}) {
    meshRegion(scaled(region, factor), 1500, {false, true}, status);
    ASSERT_FALSE(status) << output();
    ASSERT_EQ(numTriangles_, count) << factor;
    ASSERT_EQ(m().NumVertices, static_cast<int>(reference.size()));
    for (int i = 1; i <= m().NumVertices; ++i) {
      const XY p = reference[static_cast<std::size_t>(i - 1)];
      ASSERT_TRUE(vertices()(i).x == p.x * factor && vertices()(i).y == p.y * factor) << i;
    }
  }
  // Scaled by other factors the copy differs in its last bits: the mesh is
  // alike in count and quality.
  for (const double factor : {1e-6, 1e6}) {
    meshRegion(scaled(region, factor), 1500, {false, true}, status);
    ASSERT_FALSE(status) << output();
    EXPECT_NEAR(numTriangles_, count, 0.02 * count) << factor;
    EXPECT_NEAR(meanQuality(), referenceMean, 0.01) << factor;
    EXPECT_TRUE(meshIsProper());
  }
}

TEST_F(RobustTest, TrianglesTurnedOverLoseTheirFreeVertex) {
  // A square fanned around a vertex that lies outside it: two triangles
  // turn over. The free vertex goes onto a corner, the boundary stays.
  m() = mesher::MeshData{};
  const XY points[5] = {{0, 0}, {1, 0}, {1, 1}, {0, 1}, {1.2, 0.5}};
  for (int i = 1; i <= 5; ++i) vertices()(i) = points[i - 1];
  const int fan[4][3] = {{1, 2, 5}, {2, 3, 5}, {3, 4, 5}, {4, 1, 5}};
  for (int t = 1; t <= 4; ++t)
    triangles()(t) = mesher::Triangle{{fan[t - 1][0], fan[t - 1][1], fan[t - 1][2]}};
  const int sizes[1] = {4};
  const View1<const int> polySizes(sizes, 1);
  int numVertices = 5, numTriangles = 4;
  EXPECT_FALSE(mesher::IQMSVL(0, polySizes, numVertices, vertices(), numTriangles, triangles()));
  mesher::RMINVT(4, numVertices, vertices(), numTriangles, triangles());
  EXPECT_EQ(numVertices, 4);
  EXPECT_EQ(numTriangles, 2);
  EXPECT_TRUE(mesher::IQMSVL(0, polySizes, numVertices, vertices(), numTriangles, triangles()));
  for (int i = 1; i <= 4; ++i) EXPECT_TRUE(vertices()(i) == points[i - 1]) << i;

  // With the inner vertex counted as boundary nothing may move: the mesh
  // stays as it was, and not proper.
  for (int i = 1; i <= 5; ++i) vertices()(i) = points[i - 1];
  for (int t = 1; t <= 4; ++t)
    triangles()(t) = mesher::Triangle{{fan[t - 1][0], fan[t - 1][1], fan[t - 1][2]}};
  numVertices = 5;
  numTriangles = 4;
  mesher::RMINVT(5, numVertices, vertices(), numTriangles, triangles());
  EXPECT_EQ(numTriangles, 4);
  EXPECT_FALSE(mesher::IQMSVL(0, polySizes, numVertices, vertices(), numTriangles, triangles()));
}

// A mesh of w x h unit squares, each cut into two triangles, with every
// fifth interior vertex moved off the grid so that smoothing has work; and
// one more triangle hung below the lower edge when `extra`.
int gridMesh(int w, int h, bool extra, View1<XY> vertices, View1<mesher::Triangle> triangles,
             int& numVertices) {
  numVertices = 0;
  for (int j = 0; j <= h; ++j) {
    for (int i = 0; i <= w; ++i) {
      const bool inside = i > 0 && i < w && j > 0 && j < h;
      const double shift = inside && (7 * i + 3 * j) % 5 == 0 ? 0.3 : 0.0;
      vertices(++numVertices) = XY{i + shift, static_cast<double>(j)};
    }
  }
  auto at = [&](int i, int j) { return j * (w + 1) + i + 1; };
  int n = 0;
  for (int j = 0; j < h; ++j) {
    for (int i = 0; i < w; ++i) {
      triangles(++n) = mesher::Triangle{{at(i, j), at(i + 1, j), at(i + 1, j + 1)}};
      triangles(++n) = mesher::Triangle{{at(i, j), at(i + 1, j + 1), at(i, j + 1)}};
    }
  }
  if (extra) {
    vertices(++numVertices) = XY{0.5, -0.5};
    triangles(++n) = mesher::Triangle{{numVertices, at(1, 0), at(0, 0)}};
  }
  return n;
}

TEST_F(RobustTest, SafeSmoothingWorksUpToTheLimitAndKeepsEveryTriangleTurnedRight) {
  // A comb's deep gaps have reflex corners where plain smoothing may fold
  // triangles; the safe smoothing keeps all turned right and the boundary put.
  const TestRegion comb{{shapes::comb(6)}};
  for (const int desired : {200, 3000}) {
    bool status = false;
    meshRegion(comb, desired, {}, status);
    ASSERT_FALSE(status) << output();
    const std::vector<XY> before(vertices().data(), vertices().data() + m().NumVertices);
    int moves = 0;
    mesher::SMSAF2(numTriangles_, triangles(), View1<XY>(vertices().data(), m().NumVertices), moves,
                   status);
    ASSERT_FALSE(status) << output();
    EXPECT_GT(moves, 0);
    EXPECT_TRUE(meshIsProper());
    for (std::size_t i = 0; i < comb.polygons[0].size(); ++i)
      EXPECT_TRUE(vertices()(static_cast<int>(i + 1)) == before[i]) << i;
  }

  // 10000 triangles are smoothed, 10001 refused with the limit's message.
  int numVertices = 0;
  int n = gridMesh(100, 50, false, vertices(), triangles(), numVertices);
  ASSERT_EQ(n, 10000);
  int moves = 0;
  bool status = false;
  mesher::SMSAF2(n, triangles(), View1<XY>(vertices().data(), numVertices), moves, status);
  EXPECT_FALSE(status) << output();
  EXPECT_GT(moves, 0);
  region_ = TestRegion{{shapes::rectangle(0, 0, 100, 50)}};
  m().NumVertices = numVertices;
  numTriangles_ = n;
  EXPECT_TRUE(meshIsProper());
  n = gridMesh(100, 50, true, vertices(), triangles(), numVertices);
  ASSERT_EQ(n, 10001);
  mesher::SMSAF2(n, triangles(), View1<XY>(vertices().data(), numVertices), moves, status);
  expectFailure(status,
                "(SMSAF2) Max number of mesh triangles exceedes allocated number of topology "
                "faces!");
}

// A reference profile of data/bench in the profile block.
void loadBench(const std::string& name) {
  profile::resetProfileBlock();
  bool loaded = false, status = false;
  profile::GTKNTR(std::string(KNTR_SOURCE_DIR) + "/data/bench/" + name, true, loaded, status);
  ASSERT_TRUE(loaded && !status) << name;
}

TEST_F(RobustTest, QualityStageMeetsItsTargetsOnTheReferenceProfiles) {
  for (const char* name : {"square.kntr", "square-hole.kntr", "spline-lens.kntr"}) {
    for (const int desired : {1000, 5000, 10000}) {
      loadBench(name);
      profile::ProfileData& p = profile::profile();
      p.MESHRB = p.MESHIM = true;
      p.MESHDN = desired;
      int numVertices = 0;
      bool status = false;
      mesher::IQPMSH(mesher::ResultVertices, mesher::ResultTriangles, quality(), numVertices,
                     vertices(), numTriangles_, triangles(), status);
      ASSERT_FALSE(status) << name << output();
      std::vector<double> q(quality().data(), quality().data() + numTriangles_);
      std::sort(q.begin(), q.end());
      const double fifth = q[q.size() / 20];
      const double mean = mesher::lastMeshStatistics().mean;
      std::printf("[ quality  ] %-17s %5d: %5d triangles, mean %.4f, 5th percentile %.4f\n", name,
                  desired, numTriangles_, mean, fifth);
      EXPECT_GE(mean, 0.95) << name << " " << desired;
      EXPECT_GE(fifth, 0.85) << name << " " << desired;
      EXPECT_NEAR(numTriangles_, desired, 0.25 * desired) << name;
    }
  }
}

TEST_F(RobustTest, QualitySearchKeepsTheBestMeshAndWarnsWhenOutOfReach) {
  loadBench("square-hole.kntr");
  profile::ProfileData& p = profile::profile();
  p.MESHRB = true;
  p.MESHAU = true;
  p.MESHDN = 400;
  auto run = [&](double required) {
    p.MESHQL = required;
    int numVertices = 0;
    bool status = false;
    output();
    mesher::IQPMSH(mesher::ResultVertices, mesher::ResultTriangles, quality(), numVertices,
                   vertices(), numTriangles_, triangles(), status);
    EXPECT_FALSE(status) << output();
    return output();
  };
  // Within reach: met within 1%, no warning.
  std::string said = run(0.9);
  EXPECT_EQ(said.find("Required mesh quality was not obtained!"), std::string::npos) << said;
  EXPECT_GE(mesher::lastMeshStatistics().mean, 0.99 * 0.9);
  // Out of reach: the warning, and the best mesh found, which is at least as
  // good as the first one made for the asked count.
  said = run(0.999);
  EXPECT_NE(said.find("Required mesh quality was not obtained!"), std::string::npos) << said;
  const double best = mesher::lastMeshStatistics().mean;
  p.MESHAU = false;
  run(0.999);
  EXPECT_GE(best, mesher::lastMeshStatistics().mean);
}

// A polyline profile of closed curves.
void profileOf(const std::vector<shapes::Polygon>& curves) {
  profile::ProfileData& p = profile::profile();
  p.PRFTYP = profile::PolylineProfile;
  p.PRBBOX = Array1<double, 4>{{-20, 20, -20, 20}};
  p.BBOXOK = true;
  profile::IZACCY();
  p.NPRCRV = static_cast<int>(curves.size());
  for (int c = 1; c <= p.NPRCRV; ++c) {
    const auto& points = curves[static_cast<std::size_t>(c - 1)];
    p.NPRPNT(c) = static_cast<int>(points.size());
    p.PRCLSD(c) = true;
    p.PRPARM(c) = profile::ChordLength;
    for (int j = 1; j <= p.NPRPNT(c); ++j) {
      const XY q = points[static_cast<std::size_t>(j - 1)];
      p.PRPNTS(c, j) = Array1<double, 2>{{q.x, q.y}};
      p.PRPTYP(c, j) = profile::Knuckle;
    }
  }
}

TEST_F(RobustTest, CurvesThatCrossOverlapOrTouchAreNamed) {
  const shapes::Polygon outer = shapes::rectangle(-10, -10, 10, 10);
  struct Case {
    std::vector<shapes::Polygon> curves;
    int first, second;
  };
  const Case cases[] = {
      {{outer, shapes::rectangle(-2, -2, 2, 2)}, 0, 0},             // a hole, clear
      {{outer, shapes::rectangle(5, 5, 15, 15)}, 1, 2},             // crossing
      {{outer, shapes::rectangle(-2, -2, 2, 2), shapes::rectangle(2, -1, 4, 1)}, 2, 3},  // touch
      {{outer, shapes::rectangle(0, 0, 10, 5)}, 1, 2},              // overlapping sides
      {{outer, shapes::rectangle(-2, -2, 2, 2), shapes::rectangle(-2, -2, 2, 2)}, 2, 3},  // same
      {{outer, shapes::circle(0, 0, 3, 12), shapes::rectangle(3, -1, 5, 1)}, 2, 3},  // corner on side
  };
  for (const Case& c : cases) {
    profile::resetProfileBlock();
    profileOf(c.curves);
    int first = -1, second = -1;
    bool status = false;
    mesher::IQCVCR(first, second, status);
    ASSERT_FALSE(status);
    EXPECT_EQ(first, c.first);
    EXPECT_EQ(second, c.second);
  }
  EXPECT_EQ(mesher::crossingCurvesMessage(2, 3),
            "(IQCVCR) Curves 2 and 3 cross, overlap or touch each other!");
}

}  // namespace
}  // namespace kntr::testing
