// Mesh export: the finite element and viewer files of a small known mesh
// against the golden copies, the overwrite question and failures, and the
// export menu on a meshed profile.
#include "profile/meshexport.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "framework/files.h"
#include "mesher/structure.h"
#include "profile/block.h"
#include "profile/datafile.h"
#include "support/dialogue_fixture.h"
#include "support/scratch_directory.h"

namespace kntr::profile {
namespace {

using mesher::Triangle;
constexpr auto npos = std::string::npos;

class MeshExport : public kntr::testing::DialogueTest, public kntr::testing::ScratchDirectory {
 protected:
  void SetUp() override {
    DialogueTest::SetUp();
    resetProfileBlock();
  }
  void TearDown() override {
    framework::simulateWriteFailureAfter(-1);
    DialogueTest::TearDown();
  }

  // Writes the small mesh (four vertices, two triangles and their qualities)
  // to a finite element or a viewer file, expecting a failure or not; the
  // status starts the other way.
  void write(bool viewer, const std::string& name, bool failure) {
    bool status = !failure;
    const View1<const XY> v(vertices.data(), 4);
    const View1<const Triangle> t(triangles.data(), 2);
    if (viewer)
      PTTVEW(4, v, 2, t, View1<const double>(quality.data(), 2), name, status);
    else
      PTFEMM(4, v, 2, t, name, status);
    EXPECT_EQ(status, failure) << output();
  }
  void loadSquare() {
    bool loaded = false, status = false;
    GTKNTR(std::string(KNTR_SOURCE_DIR) + "/data/bench/square.kntr", true, loaded, status);
    ASSERT_TRUE(loaded);
    profile().MESHDN = 200;
    output();
  }
  // Runs the export on `keys`, expecting a failure or not; the status
  // starts the other way.
  void exportMenu(const std::string& keys, bool failure = false) {
    script(keys);
    bool status = !failure;
    XPMESH(status);
    EXPECT_EQ(status, failure) << keys;
    EXPECT_FALSE(inputLeft()) << "keys left over";
  }
  static std::string golden(const std::string& file) {
    return readFile(std::string(KNTR_SOURCE_DIR) + "/tests/profile/golden/" + file);
  }

  const std::vector<XY> vertices = {{0, 0}, {2.5, 0}, {2.5, 1.25}, {-0.125, 100000.0}};
  const std::vector<Triangle> triangles = {Triangle{{1, 2, 3}}, Triangle{{1, 3, 4}}};
  const std::vector<double> quality = {0.5, 0.875};
};

TEST_F(MeshExport, FilesOfASmallMeshEqualTheGoldenCopies) {
  const std::string fem = path("small.fem"), viewer = path("small.tvew");
  write(false, fem, false);
  EXPECT_EQ(readFile(fem), golden("small_mesh.fem"));
  EXPECT_NE(output().find("Storing interior mesh in ** " + fem + " **"), npos);

  write(true, viewer, false);
  const std::vector<std::string> written = readLines(viewer);
  ASSERT_GT(written.size(), 12u);
  // Behind the file header, with the data version of the viewer file.
  EXPECT_NE(written[7].find("FILE VERSION:    4"), npos) << written[7];
  std::string body;
  for (std::size_t k = 12; k < written.size(); ++k) body += written[k] + "\n";
  EXPECT_EQ(body, golden("small_mesh.tvew"));
}

TEST_F(MeshExport, SixDigitNumbersKeepTheirBlank) {
  // Vertex number 100000 fills the whole I6 field, with the blank behind.
  const std::vector<XY> many(100000, XY{1.0, 2.0});
  const std::vector<Triangle> one = {Triangle{{100000, 2, 3}}};
  const std::string name = path("large.fem");
  bool status = false;
  PTFEMM(100000, View1<const XY>(many.data(), 100000), 1, View1<const Triangle>(one.data(), 1),
         name, status);
  ASSERT_FALSE(status) << output();
  const std::vector<std::string> written = readLines(name);
  ASSERT_EQ(written.size(), 100001u);
  EXPECT_EQ(written[99999], "nodal-point 100000  1.000E+00  2.000E+00  0.000E+00 ;");
  EXPECT_EQ(written[100000].substr(0, 39), "element      1 201100000      2      3 ");
}

TEST_F(MeshExport, ExistingFileIsOverwrittenOnlyWhenAllowed) {
  const std::string name = path("old.fem");
  writeFile(name, "old contents\n");
  const struct {
    const char* answer;
    bool viewer;   // which writer
    bool failure;  // the status it returns
  } cases[] = {
      {"no\n", false, true},  // refused: a failure
      {"$\n", false, false},  // cancelled: no failure
      {"\n", true, true},     // the default is no
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.answer);
    script(c.answer);
    write(c.viewer, name, c.failure);
    EXPECT_EQ(readFile(name), "old contents\n");
    EXPECT_NE(output().find("OK to overwrite the file ** " + name + " ** ? (yes/no)"), npos);
  }
  script("yes\n");
  write(false, name, false);
  EXPECT_EQ(readFile(name), golden("small_mesh.fem"));
}

TEST_F(MeshExport, FailuresAreReportedAndLeaveTheOldFile) {
  const std::string name = path("full.fem");
  writeFile(name, "old contents\n");
  framework::simulateWriteFailureAfter(100);
  script("yes\n\n");
  write(false, name, true);
  EXPECT_EQ(readFile(name), "old contents\n");
  EXPECT_NE(output().find("Attempt to write to file ** " + name + " ** failed"), npos);

  framework::simulateWriteFailureAfter(-1);
  const std::string nowhere = path("no/such/dir.fem");
  script("\n");
  write(false, nowhere, true);
  EXPECT_FALSE(framework::fileExists(nowhere));
  EXPECT_NE(output().find(nowhere), npos);
}

TEST_F(MeshExport, MenuIsNotShownWithoutAMesh) {
  exportMenu("\n", true);
  const std::string said = output();
  EXPECT_NE(said.find("Could not establish interior mesh for profile!"), npos);
  EXPECT_EQ(said.find("EXPORT FORMAT SELECTION"), npos);
}

TEST_F(MeshExport, MenuWritesTheProfilesMeshInTheChosenFormat) {
  loadSquare();
  const std::string fem = path("square.fem");
  // A blank name is no name: the question comes again.
  exportMenu("1\n\n\n" + fem + "\n");
  std::string said = output();
  EXPECT_NE(said.find("Generating interior mesh..."), npos);
  EXPECT_NE(said.find("EXPORT FORMAT SELECTION"), npos);
  EXPECT_NE(said.find("1.  ... Orvik FEM-MESH"), npos);
  EXPECT_NE(said.find("2.  ... TVEW (Viewer format)"), npos);
  EXPECT_NE(said.find("7.  ... CANCEL"), npos);
  EXPECT_EQ(occurrences(said, "Input name (full) for mesh file (max 80 char)"), 2);
  std::vector<std::string> written = readLines(fem);
  ASSERT_FALSE(written.empty());
  // The square's 40 boundary points come first, in the curve's order.
  EXPECT_EQ(written[0], "nodal-point      1  0.000E+00  0.000E+00  0.000E+00 ;");
  EXPECT_EQ(written[1], "nodal-point      2  1.000E+00  0.000E+00  0.000E+00 ;");
  int nodes = 0, elements = 0;
  for (const std::string& line : written) {
    nodes += line.rfind("nodal-point ", 0) == 0;
    elements += line.rfind("element ", 0) == 0;
  }
  EXPECT_EQ(nodes + elements, static_cast<int>(written.size()));
  EXPECT_NEAR(elements, 200, 50);

  const std::string viewer = path("square.tvew");
  exportMenu("2\n" + viewer + "\n");
  EXPECT_NE(output().find("Input name (full) for TVEW file (max 80 char)"), npos);
  written = readLines(viewer);
  ASSERT_GT(written.size(), 30u);
  EXPECT_EQ(written[12], " *** Field section ***");
}

TEST_F(MeshExport, MenuCancelledWritesNothing) {
  loadSquare();
  for (const std::string keys : {"7\n", "$\n", "1\n$\n"}) {
    exportMenu(keys);
    EXPECT_TRUE(listing().empty()) << keys;
    output();
  }
}

TEST_F(MeshExport, CrossingCurvesAreNamedBeforeTheMenu) {
  bool loaded = false, status = false;
  GTKNTR(std::string(KNTR_SOURCE_DIR) + "/data/bench/square-hole.kntr", true, loaded, status);
  ASSERT_TRUE(loaded);
  profile().MESHDN = 200;
  // The hole moved across the square's right side.
  for (int j = 1; j <= profile().NPRPNT(2); ++j) profile().PRPNTS(2, j)(1) += 5.0;
  output();
  exportMenu("\n7\n");  // RETURN under the warning, then CANCEL
  const std::string said = output();
  const std::size_t warned = said.find("(IQCVCR) Curves 1 and 2 cross, overlap or touch each other!");
  EXPECT_NE(warned, npos) << said;
  EXPECT_LT(warned, said.find("EXPORT FORMAT SELECTION"));
}

}  // namespace
}  // namespace kntr::profile
