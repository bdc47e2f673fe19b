// Loads that fail change nothing, and saves never lose the old file: every
// failing step of a save, the file size limit, permissions, links and
// read-only files.
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "framework/files.h"
#include "framework/projects.h"
#include "framework/state.h"
#include "platform/system.h"
#include "profile/block.h"
#include "profile/datafile.h"
#include "support/curve_builder.h"
#include "support/dialogue_fixture.h"
#include "support/scratch_directory.h"

namespace kntr::profile {
namespace {

namespace fw = framework;
using platform::FileStep;
constexpr auto npos = std::string::npos;

class SaveSafety : public kntr::testing::DialogueTest, public kntr::testing::ScratchDirectory {
 protected:
  void SetUp() override {
    DialogueTest::SetUp();
    resetProfileBlock();
    fw::ProgramState& p = fw::program();
    p.executionMode = fw::ModeAlone;
    p.SPNAME = "KNTR";
    p.SPVERS = "1998-0223";
    p.projectName = path("ship");
    p.projectDirectory = directory().string();
    p.projectBaseName = "ship";
    fileDisplayHooks() = {};
  }
  void TearDown() override {
    for (int s = 0; s < platform::FileStepCount; ++s)
      platform::failFileStep(static_cast<FileStep>(s), 0);
    DialogueTest::TearDown();
  }

  // One closed curve of `n` points on a circle-like zigzag, shifted.
  static void curve(double shift, int n = 3) {
    resetProfileBlock();
    kntr::testing::setBox(0, 100, 0, 100);
    std::vector<XY> points;
    for (int j = 0; j < n; ++j) points.push_back(XY{shift + 1 + j * 0.5, shift + 2 + (j % 7)});
    kntr::testing::addCurve(points, true);
  }
  // The records after the 12-line header (the header carries the time).
  static std::string records(const std::string& text) {
    std::size_t at = 0;
    for (int line = 0; line < fw::HeaderLines && at != npos; ++line) at = text.find('\n', at) + 1;
    return text.substr(at);
  }
  std::string kntrFile() { return path("ship.KNT"); }
  void store(const std::string& name, bool& status) {
    script("\n\n\n");
    PTKNTR(name, true, status);
  }
  bool noTemporaryLeft() {
    for (const std::string& name : listing())
      if (name.find(".part") != npos) return false;
    return true;
  }
};

TEST_F(SaveSafety, BrokenTemporaryOrBackupFileLeavesTheProfileAndTheNextSaveKeepsTheFile) {
  curve(0.0);
  bool status = true;
  store(kntrFile(), status);
  ASSERT_FALSE(status);
  const std::string saved = readFile(kntrFile());
  // A temporary and a backup file cut off in the middle of their points.
  curve(5.0, 40);
  store(path("KNTR.TMP"), status);
  const std::string temporary = readFile(path("KNTR.TMP"));
  writeFile(path("KNTR.TMP"), temporary.substr(0, temporary.size() - 100));
  writeFile(path("ship.KNB"), temporary.substr(0, temporary.size() - 20));

  // The profile as it stands after the project's file was read.
  curve(0.0);
  bool loaded = false;
  GTKNTR(kntrFile(), true, loaded, status);
  ASSERT_TRUE(loaded);
  profile().MODFLG = true;
  const ProfileData before = profile();
  for (const char* row : {"4\n", "5\n"}) {
    SCOPED_TRACE(row);
    script(std::string(row) + "yes\n" + "\n" + "11\n");
    FLKNTR(status);
    const std::string out = output();
    EXPECT_NE(out.find("Incorrect file format detected at line"), npos) << out;
    EXPECT_TRUE(profile() == before) << "a failed load changed the profile";
  }
  // The exit still warns, and a save writes the same records as before.
  EXPECT_TRUE(profile().MODFLG);
  script("2\n" + std::string("yes\n") + "\n\n" + "11\n");
  FLKNTR(status);
  EXPECT_EQ(records(readFile(kntrFile())), records(saved));

  // The reader the project's start-up uses: the same all-or-nothing load.
  const ProfileData stored = profile();
  writeFile(path("cut.KNT"), saved.substr(0, saved.size() - 30));
  script("\n");
  LDKNTF(path("cut.KNT"), true, true, loaded, status);
  EXPECT_TRUE(status);
  EXPECT_FALSE(loaded);
  EXPECT_TRUE(profile() == stored);
}

TEST_F(SaveSafety, EveryFailingStepOfASaveKeepsTheOldFileAndTellsTheUser) {
  curve(0.0, 60);
  bool status = true;
  store(kntrFile(), status);
  ASSERT_FALSE(status);
  const std::string before = readFile(kntrFile());
  curve(7.0, 60);
  const struct {
    FileStep step;
    int nth;
    const char* said;
  } cases[] = {
      {FileStep::Open, 1, "Attempt to open file ** "},
      {FileStep::Write, 1, "Attempt to write to file ** "},
      {FileStep::Write, 40, "Attempt to write to file ** "},
      {FileStep::Flush, 1, "Attempt to close file ** "},
      {FileStep::Sync, 1, "Attempt to close file ** "},
      {FileStep::Close, 1, "Attempt to close file ** "},
      {FileStep::Rename, 1, "Attempt to close file ** "},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(std::to_string(static_cast<int>(c.step)) + " at call " + std::to_string(c.nth));
    platform::failFileStep(c.step, c.nth);
    store(kntrFile(), status);
    platform::failFileStep(c.step, 0);
    EXPECT_TRUE(status);
    EXPECT_NE(output().find(std::string(c.said) + kntrFile() + " ** failed"), npos);
    EXPECT_EQ(readFile(kntrFile()), before);
    EXPECT_TRUE(noTemporaryLeft());
  }
  // With the seam disarmed the same save goes through.
  store(kntrFile(), status);
  EXPECT_FALSE(status);
  EXPECT_NE(readFile(kntrFile()), before);
}

TEST_F(SaveSafety, FileSizeLimitIsAWriteErrorNotTheEndOfTheProgram) {
  curve(0.0, 3);
  bool status = true;
  store(kntrFile(), status);
  const std::string before = readFile(kntrFile());
  curve(1.0, 100);
  platform::ignoreFileSizeSignal();
  rlimit old{};
  ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &old), 0);
  rlimit small = old;
  small.rlim_cur = 2048;
  ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &small), 0);
  store(kntrFile(), status);
  ::setrlimit(RLIMIT_FSIZE, &old);
  EXPECT_TRUE(status);
  // The buffered bytes meet the limit at the write or at the close.
  const std::string out = output();
  EXPECT_NE(out.find(kntrFile() + " ** failed\n(Out of free space)"), npos) << out;
  EXPECT_EQ(readFile(kntrFile()), before);
  EXPECT_TRUE(noTemporaryLeft());
}

TEST_F(SaveSafety, SaveKeepsTheModeWritesThroughALinkAndRefusesAReadOnlyFile) {
  curve(0.0);
  bool status = true;
  store(kntrFile(), status);
  ASSERT_EQ(::chmod(kntrFile().c_str(), 0600), 0);
  curve(1.0);
  store(kntrFile(), status);
  ASSERT_FALSE(status);
  struct stat info {};
  ASSERT_EQ(::stat(kntrFile().c_str(), &info), 0);
  EXPECT_EQ(info.st_mode & 07777, 0600u);

  // A relative link in another directory: the target is replaced, the link
  // stays a link.
  std::filesystem::create_directories(path("sub"));
  ASSERT_EQ(::symlink("../ship.KNT", path("sub/link.KNT").c_str()), 0);
  curve(2.0);
  store(path("sub/link.KNT"), status);
  ASSERT_FALSE(status) << output();
  EXPECT_TRUE(std::filesystem::is_symlink(path("sub/link.KNT")));
  bool loaded = false;
  resetProfileBlock();
  GTKNTR(kntrFile(), true, loaded, status);
  EXPECT_EQ(profile().PRPNTS(1, 1)(1), 3.0);

  // A read-only file is refused at the open and stays as it was.
  ASSERT_EQ(::chmod(kntrFile().c_str(), 0444), 0);
  const std::string before = readFile(kntrFile());
  curve(3.0);
  store(kntrFile(), status);
  EXPECT_TRUE(status);
  EXPECT_NE(output().find("Attempt to open file ** " + kntrFile() +
                          " ** failed\n(Could not open file specified)"),
            npos);
  EXPECT_EQ(readFile(kntrFile()), before);
  EXPECT_TRUE(noTemporaryLeft());
}

}  // namespace
}  // namespace kntr::profile
