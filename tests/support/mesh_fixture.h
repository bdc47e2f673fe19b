// Test support: decompositions built by hand for the mesher's later stages.
//
// A test lays out one counterclockwise polygon as the structure holds a
// region without holes, splits it into convex pieces with INSEDG, and runs
// the density and triangle stages on it, as the mesh driver would after the
// hole joining and the removal of reflex corners.
#pragma once

#include <memory>
#include <vector>

#include "mesher/density.h"
#include "mesher/halfedge.h"
#include "mesher/limits.h"
#include "mesher/structure.h"
#include "mesher/triangles.h"
#include "support/console_fixture.h"
#include "support/triangle_checker.h"

namespace kntr::testing {

class MeshTest : public ConsoleTest {
 protected:
  void SetUp() override {
    ConsoleTest::SetUp();
    vertices_ = std::make_unique<Array1<XY, mesher::ResultVertices>>();
    triangles_ = std::make_unique<Array1<mesher::Triangle, mesher::ResultTriangles>>();
    quality_ = std::make_unique<Array1<double, mesher::ResultTriangles>>();
  }

  mesher::MeshData& m() { return mesher::meshData(); }
  View1<XY> vertices() { return View1<XY>(*vertices_); }
  View1<mesher::Triangle> triangles() { return View1<mesher::Triangle>(*triangles_); }
  View1<double> quality() { return View1<double>(*quality_); }

  // The structure of one counterclockwise polygon: half-edge i starts at
  // vertex i and belongs to polygon 1; corner angles as the set-up of a
  // region gives them.
  void polygon(const std::vector<XY>& points) {
    mesher::MeshData& d = m();
    d = mesher::MeshData{};
    d.Vertices = vertices();
    const int n = static_cast<int>(points.size());
    for (int i = 1; i <= n; ++i) d.Vertices(i) = points[static_cast<std::size_t>(i - 1)];
    d.NumVertices = n;
    d.NumHalfEdges = n;
    d.NumPolygons = 1;
    d.PolygonFirst(1) = 1;
    d.PolygonRegion(1) = 1;
    for (int i = 1; i <= n; ++i) {
      d.HalfEdge(i) = mesher::HalfEdgeRow{i, 1, i == n ? 1 : i + 1, 0};
      const XY& a = d.Vertices(i == 1 ? n : i - 1);
      const XY& b = d.Vertices(i);
      const XY& c = d.Vertices(i == n ? 1 : i + 1);
      d.CornerAngle(i) = mesher::IQANGL(a.x, a.y, b.x, b.y, c.x, c.y);
    }
    region_.polygons = {points};
  }

  // Split a polygon by the edge between the start vertices of half-edges a, b.
  void split(int a, int b) {
    bool status = false;
    mesher::INSEDG(m(), a, b, status);
    ASSERT_FALSE(status);
  }

  // Density stage then triangles, with the whole auxiliary vectors.
  void meshAll(int desired, bool& status) {
    mesher::SDCPET(m(), mesher::DSFUNC, desired, View1<int>(m().IntAux), View1<double>(m().RealAux),
                   status);
    if (status) return;
    mesher::TRMSCP(m(), triangles(), numTriangles_, View1<int>(m().IntAux),
                   View1<double>(m().RealAux), status);
  }

  ::testing::AssertionResult meshIsProper() {
    return checkMesh(region_, View1<const XY>(vertices().data(), m().NumVertices), numTriangles_,
                     View1<const mesher::Triangle>(triangles().data(), numTriangles_));
  }

  Region region_;
  int numTriangles_ = 0;

 private:
  std::unique_ptr<Array1<XY, mesher::ResultVertices>> vertices_;
  std::unique_ptr<Array1<mesher::Triangle, mesher::ResultTriangles>> triangles_;
  std::unique_ptr<Array1<double, mesher::ResultTriangles>> quality_;
};

}  // namespace kntr::testing
