// Test support for the mesher: a quiet console fixture, whole regions run
// through the decomposition, and decompositions built by hand for the later
// stages.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "framework/onebased.h"
#include "framework/state.h"
#include "mesher/density.h"
#include "mesher/halfedge.h"
#include "mesher/limits.h"
#include "mesher/structure.h"
#include "mesher/triangles.h"
#include "support/console_fixture.h"
#include "support/mesh_checker.h"

namespace kntr::testing {

// Room for a region's vertices, the points the mesher adds included.
inline constexpr int TestVertexRoom = 20000;

// The vertex storage that decomposeRegion hands to the mesher.
View1<XY> testVertices();

// Lay `region` out in testVertices(), build the half-edge structure in
// meshData() and decompose it into convex polygons as the region mesher
// does: holes joined first, then every reflex corner removed. False, with
// the mesher's message shown, when a stage fails.
bool decomposeRegion(const TestRegion& region);

// The first "(NAME) text" line of the console output, or "".
std::string firstMesherMessage(const std::string& output);

// Whether a message is one that the decomposition stages may end with; and
// one that any stage of the mesher may end with.
bool isDecompositionMessage(const std::string& message);
bool isMesherMessage(const std::string& message);

// A console test whose errors do not wait for RETURN, so that a failing
// mesher stage can be run without scripted input.
class MesherTest : public ConsoleTest {
 protected:
  void SetUp() override {
    ConsoleTest::SetUp();
    framework::program().executionMode = framework::ModeBatch;
  }
  // The console showed `message` since the last look.
  void expectShown(const std::string& message) {
    EXPECT_NE(output().find(message), std::string::npos) << message;
  }
  // The call just made failed and showed `message`.
  void expectFailure(bool status, const std::string& message) {
    EXPECT_TRUE(status) << message;
    expectShown(message);
  }
};

// Result arrays, and a decomposition built by hand: one counterclockwise
// polygon as the structure holds a region without holes, split into convex
// pieces with INSEDG, then run through the density and triangle stages as
// the mesh driver would.
class MeshTest : public MesherTest {
 protected:
  void SetUp() override {
    MesherTest::SetUp();
    vertices_ = std::make_unique<Array1<XY, mesher::ResultVertices>>();
    triangles_ = std::make_unique<Array1<mesher::Triangle, mesher::ResultTriangles>>();
    quality_ = std::make_unique<Array1<double, mesher::ResultTriangles>>();
  }

  mesher::MeshData& m() { return mesher::meshData(); }
  View1<XY> vertices() { return View1<XY>(*vertices_); }
  View1<mesher::Triangle> triangles() { return View1<mesher::Triangle>(*triangles_); }
  View1<double> quality() { return View1<double>(*quality_); }

  // The structure of one polygon: half-edge i starts at vertex i and
  // belongs to polygon 1; corner angles as the set-up of a region gives them.
  void polygon(const std::vector<XY>& points) {
    mesher::MeshData& d = m();
    d = mesher::MeshData{};
    d.Vertices = vertices();
    const int n = static_cast<int>(points.size());
    for (int i = 1; i <= n; ++i) d.Vertices(i) = points[static_cast<std::size_t>(i - 1)];
    d.NumVertices = d.NumHalfEdges = n;
    d.NumPolygons = d.PolygonFirst(1) = d.PolygonRegion(1) = 1;
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

  // The triangles made so far checked against region_.
  ::testing::AssertionResult meshIsProper() {
    return checkTriangles(region_, View1<const XY>(vertices().data(), m().NumVertices),
                          numTriangles_,
                          View1<const mesher::Triangle>(triangles().data(), numTriangles_));
  }

  TestRegion region_;
  int numTriangles_ = 0;

 private:
  std::unique_ptr<Array1<XY, mesher::ResultVertices>> vertices_;
  std::unique_ptr<Array1<mesher::Triangle, mesher::ResultTriangles>> triangles_;
  std::unique_ptr<Array1<double, mesher::ResultTriangles>> quality_;
};

}  // namespace kntr::testing
