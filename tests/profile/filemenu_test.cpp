#include <gtest/gtest.h>

#include <string>

#include "framework/projects.h"
#include "framework/state.h"
#include "profile/block.h"
#include "profile/datafile.h"
#include "support/dialogue_fixture.h"
#include "support/scratch_directory.h"

namespace kntr::profile {
namespace {

namespace fw = framework;

// The keys that leave the file menu (its RETURN row).
const char* const leave = "7\n";
// The two pages shown after a load or a store: file information, outline.
const char* const twoPages = "\n\n";

class FileMenu : public kntr::testing::DialogueTest, public kntr::testing::ScratchDirectory {
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
    fileDisplayHooks() = {};
    DialogueTest::TearDown();
  }

  // A small profile: one closed curve of three points.
  static void triangle(double shift) {
    ProfileData& p = profile();
    p.PRBBOX(2) = 10.0;
    p.PRBBOX(4) = 10.0;
    p.BBOXOK = true;
    IZACCY();
    p.NPRCRV = 1;
    p.NPRPNT(1) = 3;
    p.PRCLSD(1) = true;
    p.PRPARM(1) = ChordLength;
    for (int j = 1; j <= 3; ++j) {
      p.PRPTYP(1, j) = j == 1 ? Knuckle : ContinuousCurvature;
      p.PRPNTS(1, j)(1) = shift + j;
      p.PRPNTS(1, j)(2) = shift + 2.0 * j;
    }
    p.PRKWGT(1, 1) = 1.0;
  }
  std::string kntrFile() { return path("ship.KNT"); }
  void storeQuietly(const std::string& name) {
    bool status = true;
    PTKNTR(name, true, status);
    ASSERT_FALSE(status);
  }
  void runMenu(const std::string& keys) {
    script(keys);
    bool status = true;
    FLKNTR(status);
    EXPECT_FALSE(status);
    EXPECT_FALSE(inputLeft()) << "keys left over";
  }
};

TEST_F(FileMenu, OverwriteAnsweredNoKeepsTheModifiedFlagAndTheFile) {
  triangle(0.0);
  storeQuietly(kntrFile());
  const std::string before = readFile(kntrFile());
  triangle(1.0);
  profile().MODFLG = true;
  runMenu(std::string("2\n") + "no\n" + leave);
  EXPECT_TRUE(profile().MODFLG);
  EXPECT_EQ(readFile(kntrFile()), before);
  EXPECT_NE(output().find("OK to overwrite the file \"" + kntrFile() + "\"? (yes/no)"),
            std::string::npos);
}

TEST_F(FileMenu, OverwriteCancelledClearsTheModifiedFlagAndWritesNothing) {
  triangle(0.0);
  storeQuietly(kntrFile());
  const std::string before = readFile(kntrFile());
  triangle(1.0);
  profile().MODFLG = true;
  runMenu(std::string("2\n") + "$\n" + twoPages + leave);
  EXPECT_FALSE(profile().MODFLG);
  EXPECT_EQ(readFile(kntrFile()), before);
}

TEST_F(FileMenu, OverwriteAnsweredYesStoresAndShowsTheOutline) {
  triangle(0.0);
  storeQuietly(kntrFile());
  triangle(1.0);
  const ProfileData saved = profile();
  profile().MODFLG = true;
  runMenu(std::string("2\n") + "yes\n" + twoPages + leave);
  EXPECT_FALSE(profile().MODFLG);
  const std::string said = output();
  EXPECT_NE(said.find("Storing profile-data in \"" + kntrFile() + "\""), std::string::npos);
  EXPECT_NE(said.find("Last date modified"), std::string::npos);
  EXPECT_NE(said.find("Profile outline"), std::string::npos);
  resetProfileBlock();
  bool loaded = false, status = true;
  GTKNTR(kntrFile(), true, loaded, status);
  ASSERT_TRUE(loaded);
  EXPECT_EQ(profile().PRPNTS(1, 2)(1), saved.PRPNTS(1, 2)(1));
}

TEST_F(FileMenu, NothingToSave) {
  runMenu(std::string("2\n") + "\n" + "3\n" + "\n" + leave);
  EXPECT_EQ(occurrences(output(), "No profile curves available to save!"), 2);
  EXPECT_TRUE(listing().empty());
}

TEST_F(FileMenu, EmptyProfileIsStoredAfterTheQuestionAndReloadsWithItsBox) {
  ProfileData& p = profile();
  p.PRBBOX(2) = 3.0;
  p.PRBBOX(4) = 2.0;
  const std::string name = path("empty.KNT");
  bool status = true;
  for (const char* answer : {"no\n", "$\n"}) {
    script(answer);
    PTKNTR(name, false, status);
    EXPECT_FALSE(status);
    EXPECT_FALSE(fw::fileExists(name));
  }
  EXPECT_NE(output().find("OK to store profile data with no curves? (yes/no)"), std::string::npos);
  script("yes\n");
  PTKNTR(name, false, status);
  EXPECT_FALSE(status);
  ASSERT_TRUE(fw::fileExists(name));
  resetProfileBlock();
  bool loaded = false;
  GTKNTR(name, false, loaded, status);
  EXPECT_TRUE(loaded);
  EXPECT_TRUE(p.BBOXOK);
  EXPECT_EQ(p.NPRCRV, 0);
  EXPECT_EQ(p.PRBBOX(2), 3.0);
}

TEST_F(FileMenu, BackupFileBringsBackTheSessionStart) {
  // What the session start does once it has loaded the project's file.
  triangle(0.0);
  std::string backup;
  bool status = true;
  fw::IQISFN("BCKP", backup, status);
  ASSERT_FALSE(status);
  EXPECT_EQ(backup, path("ship.KNB"));
  storeQuietly(backup);
  ProfileData atStart = profile();

  // Work of the session.
  triangle(5.0);
  profile().NPRPNT(1) = 2;
  profile().PRCLSD(1) = false;
  profile().MODFLG = true;

  runMenu(std::string("5\n") + "yes\n" + twoPages + leave);
  EXPECT_NE(output().find("OK to load KNTR data without saving current data? (yes/no)"),
            std::string::npos);
  atStart.CURCRV = 1;
  EXPECT_TRUE(profile() == atStart);
  EXPECT_FALSE(profile().MODFLG);
}

TEST_F(FileMenu, LoadOfAMissingTemporaryFileOnlyClearsTheFlag) {
  triangle(0.0);
  const ProfileData before = profile();
  profile().MODFLG = true;
  runMenu(std::string("4\n") + "yes\n" + "\n" + leave);
  EXPECT_NE(output().find("\"" + path("KNTR.TMP") + "\" is non-existent!"), std::string::npos);
  EXPECT_FALSE(profile().MODFLG);
  profile().MODFLG = false;
  EXPECT_TRUE(profile() == before);

  // With no curves there is no question.
  resetProfileBlock();
  triangle(0.0);
  bool status = true;
  STTEMP(status);
  resetProfileBlock();
  runMenu(std::string("4\n") + twoPages + leave);
  EXPECT_EQ(profile().NPRCRV, 1);
}

TEST_F(FileMenu, LoadAsksFirstAndResetsOnFailure) {
  triangle(0.0);
  storeQuietly(kntrFile());
  triangle(2.0);
  profile().MODFLG = true;
  const ProfileData edited = profile();
  runMenu(std::string("1\n") + "no\n" + leave);
  EXPECT_TRUE(profile() == edited);

  double box[4] = {0, 0, 0, 0};
  static double* seen = box;
  seen = box;
  fileDisplayHooks().setViewBox = [](double a, double b, double c, double d) {
    seen[0] = a;
    seen[1] = b;
    seen[2] = c;
    seen[3] = d;
  };
  runMenu(std::string("1\n") + "yes\n" + twoPages + leave);
  EXPECT_EQ(profile().PRPNTS(1, 1)(1), 1.0);
  EXPECT_FALSE(profile().MODFLG);
  EXPECT_EQ(box[1], 10.0);
  EXPECT_EQ(box[3], 10.0);

  // A broken file: its message, then the reset and the failure message.
  const std::string whole = readFile(kntrFile());
  writeFile(kntrFile(), whole.substr(0, whole.size() - 10));
  runMenu(std::string("1\n") + "yes\n" + "\n" + "\n" + leave);
  const std::string said = output();
  EXPECT_NE(said.find("Incorrect file format detected at line"), std::string::npos);
  EXPECT_NE(said.find("Loading of KNTR data failed - data structure initialized!"),
            std::string::npos);
  EXPECT_EQ(profile().NPRCRV, 0);
  EXPECT_FALSE(profile().BBOXOK);
}

TEST_F(FileMenu, SaveAsAsksForAName) {
  triangle(0.0);
  profile().MODFLG = true;
  const std::string other = path("other.KNT");
  // A quoted empty name is no name: the question comes again.
  runMenu(std::string("3\n") + "\"\"\n" + other + "\n" + twoPages + leave);
  EXPECT_TRUE(fw::fileExists(other));
  EXPECT_FALSE(profile().MODFLG);
  EXPECT_NE(output().find("Input name (full) for KNTR file (max 80 char)"), std::string::npos);

  // RETURN takes the project's file; abort leaves the whole menu.
  runMenu(std::string("3\n") + "\n" + twoPages + "3\n" + "$\n");
  EXPECT_TRUE(fw::fileExists(kntrFile()));
}

TEST_F(FileMenu, ResetAfterTheQuestion) {
  triangle(0.0);
  runMenu(std::string("6\n") + "no\n" + leave);
  EXPECT_EQ(profile().NPRCRV, 1);
  runMenu(std::string("6\n") + "yes\n" + leave);
  EXPECT_EQ(profile().NPRCRV, 0);
  EXPECT_FALSE(profile().BBOXOK);
  EXPECT_NE(output().find("OK to reset module ** KNTR ** ? (yes/no)"), std::string::npos);
}

TEST_F(FileMenu, RowsShowWhatCanBeSaved) {
  runMenu("$\n");
  std::string said = output();
  EXPECT_NE(said.find("FILE MANIPULATION"), std::string::npos);
  EXPECT_NE(said.find("1.  ... Load profile(s)"), std::string::npos);
  EXPECT_NE(said.find("7.  ... RETURN"), std::string::npos);
  EXPECT_NE(said.find("6.  ... Reset"), std::string::npos);
}

TEST_F(FileMenu, CallbacksStoreAndLoadTheProjectsFile) {
  IZKNTF();
  triangle(0.0);
  bool status = true;
  fw::callbacks().store(status);
  EXPECT_FALSE(status);
  EXPECT_TRUE(fw::fileExists(kntrFile()));
  triangle(3.0);
  script("yes\n");
  fw::callbacks().load(status);
  EXPECT_FALSE(status);
  EXPECT_EQ(profile().PRPNTS(1, 1)(1), 1.0);
  fw::resetActiveFiles();
}

}  // namespace
}  // namespace kntr::profile
