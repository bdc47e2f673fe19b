// Mesh export: the finite element and viewer files of a small known mesh
// against files checked in, the overwrite question and failures.
#include "profile/meshexport.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "framework/files.h"
#include "framework/state.h"
#include "mesher/structure.h"
#include "support/dialogue_fixture.h"

namespace kntr::testing {
namespace {

namespace fs = std::filesystem;
using mesher::Triangle;

std::string readFile(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  std::stringstream text;
  text << file.rdbuf();
  return text.str();
}

std::vector<std::string> lines(const std::string& text) {
  std::vector<std::string> result;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) result.push_back(line);
  return result;
}

class MeshExportTest : public DialogueTest {
 protected:
  void SetUp() override {
    DialogueTest::SetUp();
    dir_ = fs::temp_directory_path() /
           ("kntr-export-" +
            std::string(::testing::UnitTest::GetInstance()->current_test_info()->name()));
    fs::remove_all(dir_);
    fs::create_directories(dir_);
    framework::simulateWriteFailureAfter(-1);
    // The small mesh: four vertices, two triangles.
    vertices_ = {{0, 0}, {2.5, 0}, {2.5, 1.25}, {-0.125, 100000.0}};
    triangles_.resize(2);
    const int corners[2][3] = {{1, 2, 3}, {1, 3, 4}};
    for (int t = 0; t < 2; ++t) {
      for (int j = 1; j <= 3; ++j) triangles_[static_cast<std::size_t>(t)](j) = corners[t][j - 1];
    }
    quality_ = {0.5, 0.875};
  }
  void TearDown() override {
    framework::simulateWriteFailureAfter(-1);
    fs::remove_all(dir_);
    DialogueTest::TearDown();
  }

  void writeFem(const std::string& name, bool& status) {
    profile::PTFEMM(4, View1<const XY>(vertices_.data(), 4), 2,
                    View1<const Triangle>(triangles_.data(), 2), name, status);
  }
  void writeViewer(const std::string& name, bool& status) {
    profile::PTTVEW(4, View1<const XY>(vertices_.data(), 4), 2,
                    View1<const Triangle>(triangles_.data(), 2),
                    View1<const double>(quality_.data(), 2), name, status);
  }
  static std::string golden(const std::string& file) {
    return readFile(fs::path(KNTR_SOURCE_DIR) / "tests/profile/golden" / file);
  }

  fs::path dir_;
  std::vector<XY> vertices_;
  std::vector<Triangle> triangles_;
  std::vector<double> quality_;
};

TEST_F(MeshExportTest, FiniteElementFileOfASmallMesh) {
  const std::string name = (dir_ / "small.fem").string();
  bool status = false;
  writeFem(name, status);
  ASSERT_FALSE(status) << output();
  EXPECT_EQ(readFile(name), golden("small_mesh.fem"));
  EXPECT_NE(output().find("Storing interior mesh in ** " + name + " **"), std::string::npos);
}

TEST_F(MeshExportTest, ViewerFileOfASmallMesh) {
  const std::string name = (dir_ / "small.tvew").string();
  bool status = false;
  writeViewer(name, status);
  ASSERT_FALSE(status) << output();
  const std::vector<std::string> written = lines(readFile(name));
  ASSERT_GT(written.size(), 12u);
  // The file header, with the data version of the viewer file.
  EXPECT_NE(written[7].find("FILE VERSION:    4"), std::string::npos) << written[7];
  std::string body;
  for (std::size_t k = 12; k < written.size(); ++k) body += written[k] + "\n";
  EXPECT_EQ(body, golden("small_mesh.tvew"));
}

TEST_F(MeshExportTest, SixDigitNumbersKeepTheirBlank) {
  // Vertex number 100000 fills the whole I6 field, with the blank behind.
  std::vector<XY> many(100000, XY{1.0, 2.0});
  std::vector<Triangle> one(1);
  one[0](1) = 100000;
  one[0](2) = 2;
  one[0](3) = 3;
  const std::string name = (dir_ / "large.fem").string();
  bool status = false;
  profile::PTFEMM(100000, View1<const XY>(many.data(), 100000), 1,
                  View1<const Triangle>(one.data(), 1), name, status);
  ASSERT_FALSE(status) << output();
  const std::vector<std::string> written = lines(readFile(name));
  ASSERT_EQ(written.size(), 100001u);
  EXPECT_EQ(written[99999], "nodal-point 100000  1.000E+00  2.000E+00  0.000E+00 ;");
  EXPECT_EQ(written[100000].substr(0, 39), "element      1 201100000      2      3 ");
}

TEST_F(MeshExportTest, ExistingFileIsOverwrittenOnlyWhenAllowed) {
  const std::string name = (dir_ / "old.fem").string();
  { std::ofstream(name) << "old contents\n"; }
  bool status = false;

  // "no" keeps the file and fails.
  script("no\n");
  writeFem(name, status);
  EXPECT_TRUE(status);
  EXPECT_EQ(readFile(name), "old contents\n");
  EXPECT_NE(output().find("OK to overwrite the file ** " + name + " ** ? (yes/no)"),
            std::string::npos);

  // A cancel keeps the file without a failure.
  script("$\n");
  writeFem(name, status);
  EXPECT_FALSE(status);
  EXPECT_EQ(readFile(name), "old contents\n");

  // An empty answer takes the default, no.
  script("\n");
  writeViewer(name, status);
  EXPECT_TRUE(status);
  EXPECT_EQ(readFile(name), "old contents\n");

  // "yes" writes it.
  script("yes\n");
  writeFem(name, status);
  EXPECT_FALSE(status);
  EXPECT_EQ(readFile(name), golden("small_mesh.fem"));
}

TEST_F(MeshExportTest, FailedWriteIsReportedAndLeavesTheOldFile) {
  const std::string name = (dir_ / "full.fem").string();
  { std::ofstream(name) << "old contents\n"; }
  framework::simulateWriteFailureAfter(100);
  script("yes\n\n");
  bool status = false;
  writeFem(name, status);
  EXPECT_TRUE(status);
  EXPECT_EQ(readFile(name), "old contents\n");
  EXPECT_NE(output().find("Attempt to write to file ** " + name + " ** failed"), std::string::npos);
}

TEST_F(MeshExportTest, FileInAMissingDirectoryCannotBeOpened) {
  const std::string name = (dir_ / "no" / "such" / "dir.fem").string();
  script("\n");
  bool status = false;
  writeFem(name, status);
  EXPECT_TRUE(status);
  EXPECT_FALSE(fs::exists(name));
  EXPECT_NE(output().find(name), std::string::npos);
}

}  // namespace
}  // namespace kntr::testing
