// Density decomposition: local sizes, the density integral, splits and the
// grading between neighbours.
#include "mesher/density.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "support/mesh_fixture.h"

namespace kntr::testing {
namespace {

using mesher::DensityLists;
using mesher::Pi;

class DensityTest : public MeshTest {
 protected:
  // The lists as SDCPET lays them out, filled by MKCPGM.
  DensityLists lists() {
    mesher::MeshData& d = m();
    DensityLists l;
    l.EdgeStart = View1<int>(d.IntAux.data(), d.NumPolygons + 1);
    l.EdgeVertex = View1<int>(d.IntAux.data() + d.NumPolygons + 1, d.NumHalfEdges);
    l.Sources = View1<int>(d.IntAux.data() + d.NumPolygons + 1 + d.NumHalfEdges, 1000);
    l.EdgeSize2 = View1<double>(d.RealAux.data(), d.NumHalfEdges);
    l.PolygonWidth2 = View1<double>(d.RealAux.data() + d.NumHalfEdges, d.NumPolygons);
    l.VertexSize2 = View1<double>(d.RealAux.data() + d.NumHalfEdges + d.NumPolygons, d.NumVertices);
    bool status = false;
    mesher::MKCPGM(d, l, View1<double>(d.RealAux).from(10000), status);
    EXPECT_FALSE(status);
    return l;
  }

  void density(int desired, bool& status) {
    mesher::SDCPET(m(), mesher::DSFUNC, desired, View1<int>(m().IntAux), View1<double>(m().RealAux),
                   status);
  }

  // The corners of polygon p, walked through the structure.
  std::vector<XY> corners(int p) {
    std::vector<XY> found;
    int h = m().PolygonFirst(p);
    do {
      found.push_back(m().Vertices(m().HalfEdge(h).Vertex));
      h = m().HalfEdge(h).Next;
    } while (h != m().PolygonFirst(p));
    return found;
  }
  bool hasVertex(int p, double x, double y) {
    const std::vector<XY> c = corners(p);
    return std::find(c.begin(), c.end(), XY{x, y}) != c.end();
  }

  // The fan triangles round `centre` to the points centre + (x(i), y(i)),
  // i = 0..n (closed), with their mean densities by IQDNST.
  std::vector<double> fanMeans(const DensityLists& l, double limit, mesher::DensityFunction f,
                               XY centre, std::vector<double> x, std::vector<double> y,
                               double& integral, double& mean, double& spread) {
    const int n = static_cast<int>(x.size()) - 1;
    std::vector<double> means(x.size());
    mesher::SeparatorPoints points;
    points.n = n;
    points.centre = centre;
    points.x = mesher::View0<double>(x.data(), n + 1);
    points.y = mesher::View0<double>(y.data(), n + 1);
    points.means = mesher::View0<double>(means.data(), n);
    mesher::IQDNST(m(), l, limit, f, points, integral, mean, spread);
    return means;
  }

  void shortEdgePolygon() { polygon({{0, 0}, {10, 0}, {10, 10}, {0.3, 10}, {0, 9.7}}); }
};

TEST_F(DensityTest, ShortEdgeSplitsThePolygonTowardsFinerSizes) {
  shortEdgePolygon();
  bool status = false;
  density(1000, status);
  ASSERT_FALSE(status) << output();
  ASSERT_GT(m().NumPolygons, 1);
  // Sound convex pieces that fill the polygon, each with its area.
  EXPECT_TRUE(checkDecomposition(m(), region_));
  for (int p = 1; p <= m().NumPolygons; ++p) {
    EXPECT_GT(m().PolygonDensity(p), 0.0) << "polygon " << p << " is still marked";
    EXPECT_NEAR(m().PolygonArea(p), testing::signedArea(corners(p)), 1e-9) << "polygon " << p;
  }
  // Triangles are smaller at the short edge than at the far corner.
  int nearPolygon = 0, farPolygon = 0;
  for (int p = 1; p <= m().NumPolygons; ++p) {
    if (hasVertex(p, 0.0, 9.7)) nearPolygon = p;
    if (hasVertex(p, 10.0, 0.0)) farPolygon = p;
  }
  ASSERT_GT(nearPolygon, 0);
  ASSERT_GT(farPolygon, 0);
  EXPECT_LT(m().PolygonSize(nearPolygon), 0.5 * m().PolygonSize(farPolygon));
  // The sizes are such that the desired count fills the region.
  double expected = 0.0;
  for (int p = 1; p <= m().NumPolygons; ++p) {
    expected += m().PolygonArea(p) / (0.5 * m().PolygonSize(p) * m().PolygonSize(p));
  }
  EXPECT_NEAR(expected, 1000.0, 1e-6);

  // The whole density integrates to 1, so a desired count of 10 leaves
  // exactly 10 triangles to the single polygon, however uneven; 11 split it.
  shortEdgePolygon();
  density(10, status);
  ASSERT_FALSE(status);
  EXPECT_EQ(m().NumPolygons, 1);
  shortEdgePolygon();
  density(11, status);
  ASSERT_FALSE(status);
  EXPECT_GT(m().NumPolygons, 1);

  // The system's own density function is even: nothing to split.
  shortEdgePolygon();
  m().UseDensityFunction = true;
  density(1000, status);
  ASSERT_FALSE(status);
  EXPECT_EQ(m().NumPolygons, 1);
  EXPECT_NEAR(m().PolygonDensity(1), 1.0 / m().PolygonArea(1), 1e-15);
}

TEST_F(DensityTest, GradingLiftsNeighboursToAQuarter) {
  // Three 2 x 10 strips side by side: polygon 1 left, 2 middle, 3 right.
  polygon({{0, 0}, {2, 0}, {4, 0}, {6, 0}, {6, 10}, {4, 10}, {2, 10}, {0, 10}});
  split(2, 7);
  split(3, 6);
  ASSERT_EQ(m().NumPolygons, 3);
  ASSERT_TRUE(hasVertex(1, 0, 0));
  ASSERT_TRUE(hasVertex(3, 6, 10));
  for (int p = 1; p <= 3; ++p) m().PolygonArea(p) = 20.0;

  // A factor 16 drop from the left strip is cut to 4, and the right strip
  // follows the middle one up to a quarter of its new density.
  m().PolygonDensity(1) = 16.0;
  m().PolygonDensity(2) = 1.0;
  m().PolygonDensity(3) = 0.01;
  mesher::MKCPSZ(m(), 300, View1<int>(m().IntAux));
  EXPECT_DOUBLE_EQ(m().PolygonDensity(1), 16.0);
  EXPECT_DOUBLE_EQ(m().PolygonDensity(2), 4.0);
  EXPECT_DOUBLE_EQ(m().PolygonDensity(3), 1.0);
  // Densities within a factor 4 of each other stay as they are; the
  // strips that are not neighbours may differ by more.
  m().PolygonDensity(1) = 1.0;
  m().PolygonDensity(2) = 4.0;
  m().PolygonDensity(3) = 1.0;
  mesher::MKCPSZ(m(), 300, View1<int>(m().IntAux));
  EXPECT_DOUBLE_EQ(m().PolygonDensity(1), 1.0);
  EXPECT_DOUBLE_EQ(m().PolygonDensity(2), 4.0);
  EXPECT_DOUBLE_EQ(m().PolygonDensity(3), 1.0);
}

TEST_F(DensityTest, DensityIntegralMatchesClosedForms) {
  // Density 1 + x over the unit square, given as a user density function;
  // the three-point rule is exact for it and for its square.
  polygon({{0, 0}, {1, 0}, {1, 1}, {0, 1}});
  m().UseDensityFunction = true;
  double integral = 0.0, mean = 0.0, spread = 0.0;
  const std::vector<double> means = fanMeans(
      DensityLists{}, 0.0, [](double px, double) { return 1.0 + px; }, {0.5, 0.5},
      {-0.5, 0.5, 0.5, -0.5, -0.5}, {-0.5, -0.5, 0.5, 0.5, -0.5}, integral, mean, spread);
  EXPECT_NEAR(integral, 1.5, 1e-14);
  EXPECT_NEAR(mean, 1.5, 1e-14);
  EXPECT_NEAR(spread, std::sqrt(1.0 / 12.0), 1e-14);
  // The fan triangle along the right side is the densest: its mean is
  // 1 + the x of its centroid, (1 + 1 + 0.5) / 3.
  EXPECT_NEAR(means[1], 1.0 + 2.5 / 3.0, 1e-14);
}

// Squared distance from p to the segment a-b, by the clamped projection.
double segment2(double px, double py, double ax, double ay, double bx, double by) {
  const double dx = bx - ax, dy = by - ay;
  const double t = std::clamp(((px - ax) * dx + (py - ay) * dy) / (dx * dx + dy * dy), 0.0, 1.0);
  return std::pow(px - ax - t * dx, 2) + std::pow(py - ay - t * dy, 2);
}

TEST_F(DensityTest, DensityFollowsTheEdgeSources) {
  // Size at a point: the least over the sources of the larger of a quarter
  // of the squared distance to the edge and the edge's own size, and never
  // above the polygon's width. The sources are the edges shorter than the
  // width, the short one and the two that end at it, the last of them
  // wrapping round to the first vertex; the short edge's end vertices are
  // not, since neither is smaller than both of its edges.
  shortEdgePolygon();
  DensityLists l = lists();
  mesher::IQCPSP(1, l.PolygonWidth2(1), l);
  ASSERT_EQ(l.NumSources, 3);
  auto densityAt = [&](double px, double py) {
    double size2 = l.PolygonWidth2(1);
    size2 = std::min(size2, std::max(0.25 * segment2(px, py, 10, 10, 0.3, 10), 9.7 * 9.7));
    size2 = std::min(size2, std::max(0.25 * segment2(px, py, 0.3, 10, 0, 9.7), 0.18));
    size2 = std::min(size2, std::max(0.25 * segment2(px, py, 0, 9.7, 0, 0), 9.7 * 9.7));
    return 1.0 / size2;
  };
  // Fan triangles around the centre (1, 8): one near the short edge, one
  // far from it.
  const std::vector<double> x = {-1.0, 0.5, 8.0, -1.0}, y = {1.8, 1.9, -7.0, 1.8};
  double integral = 0.0, mean = 0.0, spread = 0.0;
  const std::vector<double> means =
      fanMeans(l, l.PolygonWidth2(1), nullptr, {1.0, 8.0}, x, y, integral, mean, spread);
  for (int i = 0; i < 3; ++i) {
    // The sample points lie between the fan triangle's centroid and its corners.
    const std::size_t k = static_cast<std::size_t>(i);
    const double ax = x[k] + 1.0, ay = y[k] + 8.0, bx = x[k + 1] + 1.0, by = y[k + 1] + 8.0;
    const double expected = (densityAt((4 * ax + bx + 1.0) / 6, (4 * ay + by + 8.0) / 6) +
                             densityAt((ax + 4 * bx + 1.0) / 6, (ay + 4 * by + 8.0) / 6) +
                             densityAt((ax + bx + 4 * 1.0) / 6, (ay + by + 4 * 8.0) / 6)) /
                            3.0;
    EXPECT_NEAR(means[k], expected, 1e-12 * expected) << "fan triangle " << i;
  }
  EXPECT_GT(means[0], 2.0 * means[1]);

  // A vertex is a source when its size is below both its edges', which a
  // neighbour's narrow width can cause: here by hand.
  l.VertexSize2(1) = 1.0;
  mesher::IQCPSP(1, l.PolygonWidth2(1), l);
  ASSERT_EQ(l.NumSources, 4);
  EXPECT_EQ(l.Sources(1), -1);
}

TEST_F(DensityTest, TooLittleRoomIsReported) {
  shortEdgePolygon();
  Array1<int, 5> smallInt;
  Array1<double, 5> smallReal;
  bool status = false;
  mesher::SDCPET(m(), mesher::DSFUNC, 100, View1<int>(smallInt), View1<double>(m().RealAux),
                 status);
  expectFailure(status, "(SDCPET) Attempt to overflow integer auxiliary vector!");
  mesher::SDCPET(m(), mesher::DSFUNC, 100, View1<int>(m().IntAux), View1<double>(smallReal),
                 status);
  expectFailure(status, "(SDCPET) Attempt to overflow double precision auxiliary vector!");
}

}  // namespace
}  // namespace kntr::testing
