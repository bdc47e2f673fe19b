// Mesh files for other tools: the boundary loops of a mesh with a hole, the
// Gmsh groups built on them, the Nastran deck of a small mesh against its
// hand-checked copy, and the new rows of the export menu. Independent
// readers check the files in tests/scripts/session_exchange_readers.sh.
#include "profile/meshformats.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "framework/files.h"
#include "profile/block.h"
#include "profile/datafile.h"
#include "profile/meshexport.h"
#include "support/dialogue_fixture.h"
#include "support/scratch_directory.h"

namespace kntr::profile {
namespace {

using mesher::Triangle;
constexpr auto npos = std::string::npos;

class MeshFormats : public kntr::testing::DialogueTest, public kntr::testing::ScratchDirectory {
 protected:
  void SetUp() override {
    DialogueTest::SetUp();
    resetProfileBlock();
  }
  static std::string golden(const std::string& file) {
    return readFile(std::string(KNTR_SOURCE_DIR) + "/tests/profile/golden/" + file);
  }

  // A square of side 3 with a square hole of side 1 in its middle: outer
  // corners 1..4, hole corners 5..8, eight triangles. One triangle is
  // given clockwise, as a mesh may hold it.
  const std::vector<XY> ring = {{0, 0}, {3, 0}, {3, 3}, {0, 3}, {1, 1}, {2, 1}, {2, 2}, {1, 2}};
  const std::vector<Triangle> ringTriangles = {
      Triangle{{1, 2, 6}}, Triangle{{1, 5, 6}}, Triangle{{2, 3, 7}}, Triangle{{2, 7, 6}},
      Triangle{{3, 4, 8}}, Triangle{{3, 8, 7}}, Triangle{{4, 1, 5}}, Triangle{{4, 5, 8}}};
  View1<const XY> ringVertices() const { return View1<const XY>(ring.data(), 8); }
  View1<const Triangle> ringView() const { return View1<const Triangle>(ringTriangles.data(), 8); }
};

TEST_F(MeshFormats, BoundaryLoopsRunWithTheMeshOnTheirLeft) {
  const std::vector<MeshBoundary> loops = IQMBND(8, ringVertices(), 8, ringView());
  ASSERT_EQ(loops.size(), 2u);
  EXPECT_TRUE(loops[0].outer);
  EXPECT_EQ(loops[0].vertices, (std::vector<int>{1, 2, 3, 4}));
  // The hole is walked clockwise, from its lowest edge (5-6).
  EXPECT_FALSE(loops[1].outer);
  EXPECT_EQ(loops[1].vertices, (std::vector<int>{6, 5, 8, 7}));

  // A mesh without a hole has one loop; a lone triangle given clockwise
  // still has an outer boundary.
  const std::vector<Triangle> one = {Triangle{{1, 3, 2}}};
  const std::vector<MeshBoundary> single =
      IQMBND(3, ringVertices(), 1, View1<const Triangle>(one.data(), 1));
  ASSERT_EQ(single.size(), 1u);
  EXPECT_TRUE(single[0].outer);
  EXPECT_EQ(single[0].vertices, (std::vector<int>{1, 2, 3}));
}

TEST_F(MeshFormats, GmshFileNamesTheBoundariesAndTheSurface) {
  const std::string name = path("ring.msh");
  bool status = true;
  PTGMSH(8, ringVertices(), 8, ringView(), name, status);
  ASSERT_FALSE(status) << output();
  const std::string text = readFile(name);
  for (const char* part :
       {"$MeshFormat\n4.1 0 8\n$EndMeshFormat\n",
        "$PhysicalNames\n3\n1 1 \"outer boundary\"\n1 2 \"hole 1\"\n2 3 \"surface\"\n",
        // Two closed curves in their groups, and the surface they bound.
        "$Entities\n0 2 1 0\n1 0.0 0.0 0 3.0 3.0 0 1 1 0\n2 1.0 1.0 0 2.0 2.0 0 1 2 0\n"
        "1 0.0 0.0 0 3.0 3.0 0 1 3 2 1 2\n$EndEntities\n",
        "$Nodes\n1 8 1 8\n2 1 0 8\n1\n2\n",
        // Four lines per loop, then the triangles numbered on from them.
        "$Elements\n3 16 1 16\n1 1 1 4\n1 1 2\n2 2 3\n3 3 4\n4 4 1\n1 2 1 4\n5 6 5\n6 5 8\n",
        "2 1 2 8\n9 1 2 6\n10 1 5 6\n", "16 4 5 8\n$EndElements\n"})
    EXPECT_NE(text.find(part), npos) << part;
}

TEST_F(MeshFormats, NastranDeckOfASmallMeshEqualsItsCheckedCopy) {
  const std::vector<XY> vertices = {{0, 0}, {2.5, 0}, {2.5, 1.25}, {-0.125, 100000.0}};
  const std::vector<Triangle> triangles = {Triangle{{1, 2, 3}}, Triangle{{1, 3, 4}}};
  const std::string name = path("small.bdf");
  bool status = true;
  PTNSTR(4, View1<const XY>(vertices.data(), 4), 2, View1<const Triangle>(triangles.data(), 2),
         name, status);
  ASSERT_FALSE(status) << output();
  EXPECT_EQ(readFile(name), golden("small_mesh.bdf"));
  EXPECT_NE(output().find("Storing interior mesh in ** " + name + " **"), npos);
}

TEST_F(MeshFormats, ExportMenuOffersTheNewFormats) {
  bool loaded = false, status = false;
  GTKNTR(std::string(KNTR_SOURCE_DIR) + "/data/bench/square-hole.kntr", true, loaded, status);
  ASSERT_TRUE(loaded);
  profile().MESHDN = 200;
  const struct {
    const char* row;
    const char* file;
    const char* start;  // how the file begins
  } formats[] = {{"3", "m.msh", "$MeshFormat\n4.1 0 8\n"},
                 {"4", "m.vtk", "# vtk DataFile Version 3.0\n"},
                 {"5", "m.vtu", "<?xml version=\"1.0\"?>\n<VTKFile type=\"UnstructuredGrid\""},
                 {"6", "m.bdf", "$ KNTR interior mesh: "}};
  std::string said;
  for (const auto& f : formats) {
    script(std::string(f.row) + "\n" + path(f.file) + "\n");
    XPMESH(status);
    EXPECT_FALSE(status);
    EXPECT_FALSE(inputLeft());
    EXPECT_EQ(readFile(path(f.file)).rfind(f.start, 0), 0u) << f.file;
    said += output();
  }
  for (const char* row : {"3.  ... Gmsh MSH 4.1", "4.  ... VTK legacy (.vtk)",
                          "5.  ... VTK XML (.vtu)", "6.  ... Nastran bulk deck", "7.  ... CANCEL",
                          "Input name (full) for Gmsh file (max 80 char)",
                          "Input name (full) for Nastran file (max 80 char)"})
    EXPECT_NE(said.find(row), npos) << row;
}

}  // namespace
}  // namespace kntr::profile
