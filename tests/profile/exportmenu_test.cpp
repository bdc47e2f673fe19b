// The export menu: the profile meshed, the format chosen, the file named.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "profile/block.h"
#include "profile/datafile.h"
#include "profile/meshexport.h"
#include "support/dialogue_fixture.h"

namespace kntr::testing {
namespace {

namespace fs = std::filesystem;

std::vector<std::string> fileLines(const fs::path& path) {
  std::ifstream file(path);
  std::vector<std::string> result;
  for (std::string line; std::getline(file, line);) result.push_back(line);
  return result;
}

class ExportMenuTest : public DialogueTest {
 protected:
  void SetUp() override {
    DialogueTest::SetUp();
    dir_ = fs::temp_directory_path() /
           ("kntr-menu-" +
            std::string(::testing::UnitTest::GetInstance()->current_test_info()->name()));
    fs::remove_all(dir_);
    fs::create_directories(dir_);
  }
  void TearDown() override {
    fs::remove_all(dir_);
    DialogueTest::TearDown();
  }
  void loadSquare() {
    profile::resetProfileBlock();
    bool loaded = false, status = false;
    profile::GTKNTR(std::string(KNTR_SOURCE_DIR) + "/data/bench/square.kntr", true, loaded, status);
    ASSERT_TRUE(loaded);
    profile::profile().MESHDN = 200;
    output();
  }

  fs::path dir_;
};

TEST_F(ExportMenuTest, NoMeshEndsBeforeTheMenu) {
  profile::resetProfileBlock();
  script("\n");
  bool status = false;
  profile::XPMESH(status);
  EXPECT_TRUE(status);
  const std::string said = output();
  EXPECT_NE(said.find("Could not establish interior mesh for profile!"), std::string::npos);
  EXPECT_EQ(said.find("EXPORT FORMAT SELECTION"), std::string::npos);
}

TEST_F(ExportMenuTest, FiniteElementFileOfTheProfile) {
  loadSquare();
  const std::string name = (dir_ / "square.fem").string();
  script("1\n" + name + "\n");
  bool status = false;
  profile::XPMESH(status);
  ASSERT_FALSE(status) << output();
  const std::string said = output();
  EXPECT_NE(said.find("Generating interior mesh..."), std::string::npos);
  EXPECT_NE(said.find("EXPORT FORMAT SELECTION"), std::string::npos);
  EXPECT_NE(said.find("1.  ... Orvik FEM-MESH"), std::string::npos);
  EXPECT_NE(said.find("2.  ... TVEW (Viewer format)"), std::string::npos);
  EXPECT_NE(said.find("3.  ... CANCEL"), std::string::npos);
  EXPECT_NE(said.find("Input name (full) for mesh file (max 80 char)"), std::string::npos);
  const std::vector<std::string> written = fileLines(name);
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
}

TEST_F(ExportMenuTest, ViewerFileOfTheProfile) {
  loadSquare();
  const std::string name = (dir_ / "square.tvew").string();
  script("2\n" + name + "\n");
  bool status = false;
  profile::XPMESH(status);
  ASSERT_FALSE(status) << output();
  EXPECT_NE(output().find("Input name (full) for TVEW file (max 80 char)"), std::string::npos);
  const std::vector<std::string> written = fileLines(name);
  ASSERT_GT(written.size(), 30u);
  EXPECT_EQ(written[12], " *** Field section ***");
  // The first triangle's quality, three times, lies between 0 and 1.
  std::size_t polygons = 0;
  while (polygons < written.size() && written[polygons] != " *** Polygon section ***") ++polygons;
  ASSERT_LT(polygons + 8, written.size());
  EXPECT_EQ(written[polygons + 2], " 1 1 5 3 1");
  EXPECT_EQ(written[polygons + 5], written[polygons + 6]);
  EXPECT_EQ(written[polygons + 5], written[polygons + 7]);
  const double q = std::stod(written[polygons + 5]);
  EXPECT_GT(q, 0.0);
  EXPECT_LE(q, 1.0);
}

TEST_F(ExportMenuTest, CancelWritesNothing) {
  loadSquare();
  for (const std::string keys : {"3\n", "$\n", "1\n$\n"}) {
    script(keys);
    bool status = false;
    profile::XPMESH(status);
    EXPECT_FALSE(status) << keys;
    EXPECT_TRUE(fs::is_empty(dir_)) << keys;
    output();
  }
}

TEST_F(ExportMenuTest, BlankNameAsksAgain) {
  loadSquare();
  const std::string name = (dir_ / "again.fem").string();
  script("1\n\n\n" + name + "\n");
  bool status = false;
  profile::XPMESH(status);
  ASSERT_FALSE(status);
  EXPECT_EQ(occurrences(output(), "Input name (full) for mesh file (max 80 char)"), 2);
  EXPECT_TRUE(fs::exists(name));
}

}  // namespace
}  // namespace kntr::testing
