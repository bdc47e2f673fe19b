#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "framework/projects.h"
#include "framework/state.h"
#include "support/dialogue_fixture.h"
#include "support/scratch_directory.h"

namespace kntr::framework {
namespace {

class ProjectDialogue : public kntr::testing::DialogueTest, public kntr::testing::ScratchDirectory {
 protected:
  void SetUp() override {
    DialogueTest::SetUp();
    ProgramState& p = program();
    p.executionMode = ModeAlone;
    p.SPNAME = "KNTR";
    p.SPVERS = "1998-0223";
    p.projectName = "old";
    p.projectBaseName = "old";
  }
  void select(const std::string& keys, bool expectFailure = false) {
    script(keys);
    bool status = !expectFailure;
    SLPROJ(status);
    EXPECT_EQ(status, expectFailure);
    EXPECT_FALSE(inputLeft()) << "keys left over";
  }
};

TEST_F(ProjectDialogue, NewProjectAsksForIdentificationAndWritesTheFile) {
  program().defaultUser = "guest";
  const std::string file = path("ship.PJC");
  // RETURN for the user takes the configured default.
  select(file + "\n" + "yes\n" + "Yard\n" + "\n");
  EXPECT_EQ(program().projectName, path("ship"));
  EXPECT_EQ(program().projectDirectory, directory().string());
  EXPECT_EQ(program().projectBaseName, "ship");
  EXPECT_EQ(program().company, "Yard");
  EXPECT_EQ(program().user, "guest");
  const std::vector<std::string> lines = readLines(file);
  ASSERT_EQ(lines.size(), 20u);
  EXPECT_EQ(lines[13], "project-identification=");
  EXPECT_EQ(lines[14], "company-identification=Yard");
  EXPECT_EQ(lines[15], "user-identification=guest");
  const std::string said = output();
  EXPECT_NE(said.find("OK to create new project ** " + path("ship") + " ** ? (yes/no)"),
            std::string::npos);
  EXPECT_NE(said.find("Input company identification? (max 64 characters)"), std::string::npos);
  EXPECT_NE(said.find("Input user identification? (max 64 characters)"), std::string::npos);
}

TEST_F(ProjectDialogue, NoOrReturnGoesBackToTheNameAndAbortGivesUp) {
  select(path("a") + "\n" + "\n" + path("b") + "\n" + "no\n" + "$\n", true);
  EXPECT_EQ(occurrences(output(), "OK to create new project"), 2);
  // The project is still the one from before.
  EXPECT_EQ(program().projectName, "old");
  EXPECT_EQ(program().projectBaseName, "old");
  EXPECT_TRUE(listing().empty());
}

TEST_F(ProjectDialogue, ExistingProjectIsLoaded) {
  program().projectName = path("hull");
  program().projectDirectory = directory().string();
  program().user = "bo";
  program().backupInterval = 40;
  bool status = true;
  STPJCT(status);
  ASSERT_FALSE(status);
  resetProgramState();
  program().executionMode = ModeAlone;
  // A name without the extension names the same project.
  select(path("hull") + "\n");
  EXPECT_EQ(program().projectName, path("hull"));
  EXPECT_EQ(program().user, "bo");
  EXPECT_EQ(program().backupInterval, 40);
  EXPECT_EQ(output().find("OK to create"), std::string::npos);
}

TEST_F(ProjectDialogue, DefaultIsTheCurrentProjectFile) {
  program().projectName = path("hull");
  program().projectDirectory = directory().string();
  bool status = true;
  STPJCT(status);
  program().user = "changed";
  select("\n");
  EXPECT_NE(output().find("(default " + path("hull.PJC") + ")"), std::string::npos);
  EXPECT_EQ(program().user, "");
}

TEST_F(ProjectDialogue, IdentificationCannotBeAborted) {
  program().company = "Yard";
  script("$\n\n\nanna\n");
  bool status = true;
  ASKIDN(status);
  EXPECT_FALSE(status);
  EXPECT_FALSE(inputLeft());
  EXPECT_NE(output().find("No abort possibility"), std::string::npos);
  EXPECT_EQ(program().company, "Yard");
  EXPECT_EQ(program().user, "anna");
}

TEST_F(ProjectDialogue, SpecialCommandRunsTheSelection) {
  IZPROJ();
  ASSERT_EQ(services().selectProject, &SLPROJ);
  script("$\n");
  bool status = false;
  services().selectProject(status);
  EXPECT_TRUE(status);
}

}  // namespace
}  // namespace kntr::framework
