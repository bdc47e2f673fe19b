#include <gtest/gtest.h>

#include <string>

#include "framework/projects.h"
#include "framework/state.h"
#include "profile/block.h"
#include "profile/datafile.h"
#include "support/curve_builder.h"
#include "support/dialogue_fixture.h"
#include "support/scratch_directory.h"

namespace kntr::profile {
namespace {

namespace fw = framework;

// The keys that leave the file menu (its RETURN row).
const char* const leave = "11\n";
// The two pages shown after a load or a store: file information, outline.
const char* const twoPages = "\n\n";
constexpr auto npos = std::string::npos;

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
    fw::resetActiveFiles();
    DialogueTest::TearDown();
  }

  // A small profile: one closed curve of three points, the first a knuckle.
  static void triangle(double shift) {
    resetProfileBlock();
    kntr::testing::setBox(0, 10, 0, 10);
    kntr::testing::addCurve(
        {{shift + 1, shift + 2}, {shift + 2, shift + 4}, {shift + 3, shift + 6}}, true);
    profile().PRPTYP(1, 1) = Knuckle;
    profile().PRKWGT(1, 1) = 1.0;
  }
  std::string kntrFile() { return path("ship.KNT"); }
  void runMenu(const std::string& keys) {
    script(keys);
    bool status = true;
    FLKNTR(status);
    EXPECT_FALSE(status);
    EXPECT_FALSE(inputLeft()) << "keys left over";
  }
};

TEST_F(FileMenu, SaveOverAnExistingFile) {
  const struct {
    const char* answer;  // to the overwrite question
    const char* after;   // the pages shown after the store
    bool modified;       // MODFLG afterwards
    bool written;
  } cases[] = {
      {"no\n", "", true, false},         // refused: the data stay unsaved
      {"$\n", twoPages, false, false},   // cancelled: nothing written, yet the flag goes
      {"yes\n", twoPages, false, true},  // stored, with its pages
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.answer);
    triangle(0.0);
    bool status = true;
    PTKNTR(kntrFile(), true, status);
    ASSERT_FALSE(status);
    const std::string before = readFile(kntrFile());
    triangle(1.0);
    profile().MODFLG = true;
    runMenu(std::string("2\n") + c.answer + c.after + leave);
    EXPECT_EQ(profile().MODFLG, c.modified);
    EXPECT_EQ(readFile(kntrFile()) != before, c.written);
    const std::string out = output();
    EXPECT_NE(out.find("OK to overwrite the file \"" + kntrFile() + "\"? (yes/no)"), npos);
    EXPECT_EQ(out.find("Storing profile-data in \"" + kntrFile() + "\"") != npos, c.written);
    EXPECT_EQ(out.find("Profile outline") != npos, *c.after != '\0');
  }
}

TEST_F(FileMenu, RowsAndNothingToSave) {
  runMenu(std::string("2\n") + "\n" + "3\n" + "\n" + leave);
  const std::string out = output();
  EXPECT_EQ(occurrences(out, "No profile curves available to save!"), 2);
  EXPECT_TRUE(listing().empty());
  for (const char* row :
       {"FILE MANIPULATION", "1.  ... Load profile(s)", "6.  ... Reset", "11. ... RETURN"})
    EXPECT_NE(out.find(row), npos) << row;
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
  EXPECT_NE(output().find("OK to store profile data with no curves? (yes/no)"), npos);
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
  // A quiet store asks nothing.
  script("");
  PTKNTR(path("quiet.KNT"), true, status);
  EXPECT_TRUE(fw::fileExists(path("quiet.KNT")));
}

TEST_F(FileMenu, LoadOfAMissingTemporaryFileOnlyClearsTheFlag) {
  triangle(0.0);
  const ProfileData before = profile();
  profile().MODFLG = true;
  runMenu(std::string("4\n") + "yes\n" + "\n" + leave);
  const std::string out = output();
  EXPECT_NE(out.find("OK to load KNTR data without saving current data? (yes/no)"), npos);
  EXPECT_NE(out.find("\"" + path("KNTR.TMP") + "\" is non-existent!"), npos);
  EXPECT_TRUE(profile() == before);

  // The temporary file goes to the project's directory; with no curves there
  // is no question.
  bool status = true;
  STTEMP(status);
  resetProfileBlock();
  runMenu(std::string("4\n") + twoPages + leave);
  EXPECT_EQ(profile().NPRCRV, 1);
}

TEST_F(FileMenu, LoadAsksFirstAndResetsOnFailure) {
  // The module's store callback writes the project's file.
  IZKNTF();
  triangle(0.0);
  bool status = true;
  fw::callbacks().store(status);
  ASSERT_FALSE(status);
  triangle(2.0);
  profile().MODFLG = true;
  const ProfileData edited = profile();
  runMenu(std::string("1\n") + "no\n" + leave);
  EXPECT_TRUE(profile() == edited);

  static double box[4];
  fileDisplayHooks().setViewBox = [](double a, double b, double c, double d) {
    box[0] = a;
    box[1] = b;
    box[2] = c;
    box[3] = d;
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
  const std::string out = output();
  EXPECT_NE(out.find("Incorrect file format detected at line"), npos);
  EXPECT_NE(out.find("Loading of KNTR data failed - data structure initialized!"), npos);
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
  EXPECT_NE(output().find("Input name (full) for KNTR file (max 80 char)"), npos);

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
}

}  // namespace
}  // namespace kntr::profile
