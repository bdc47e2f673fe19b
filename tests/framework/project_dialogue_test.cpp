// Choosing or creating the project, and the identification questions.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "framework/projects.h"
#include "framework/state.h"
#include "support/checks.h"
#include "support/dialogue_fixture.h"
#include "support/scratch_directory.h"

namespace kntr::framework {
namespace {

using kntr::testing::Contains;

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
  // Writes the project file of "hull" with the user "bo".
  void writeHull() {
    program().projectName = path("hull");
    program().projectDirectory = directory().string();
    program().user = "bo";
    program().backupInterval = 40;
    bool status = true;
    STPJCT(status);
    ASSERT_FALSE(status);
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
  EXPECT_EQ(std::vector<std::string>(lines.begin() + 13, lines.begin() + 16),
            (std::vector<std::string>{"project-identification=", "company-identification=Yard",
                                      "user-identification=guest"}));
  const std::string said = output();
  EXPECT_TRUE(Contains(said, {"OK to create new project ** " + path("ship") + " ** ? (yes/no)",
                              "Input company identification? (max 64 characters)",
                              "Input user identification? (max 64 characters)"}));
}

TEST_F(ProjectDialogue, NoOrReturnGoesBackToTheNameAndAbortGivesUp) {
  select(path("a") + "\n" + "\n" + path("b") + "\n" + "no\n" + "$\n", true);
  EXPECT_EQ(occurrences(output(), "OK to create new project"), 2);
  // The project is still the one from before.
  EXPECT_EQ(program().projectName, "old");
  EXPECT_EQ(program().projectBaseName, "old");
  EXPECT_TRUE(listing().empty());

  // The special command runs the same selection.
  IZPROJ();
  ASSERT_EQ(services().selectProject, &SLPROJ);
  script("$\n");
  EXPECT_STATUS(true, services().selectProject(status));
}

TEST_F(ProjectDialogue, ExistingProjectIsLoadedAndIsTheNextDefault) {
  writeHull();
  resetProgramState();
  program().executionMode = ModeAlone;
  // A name without the extension names the same project.
  select(path("hull") + "\n");
  EXPECT_EQ(program().projectName, path("hull"));
  EXPECT_EQ(program().user, "bo");
  EXPECT_EQ(program().backupInterval, 40);
  EXPECT_EQ(output().find("OK to create"), std::string::npos);

  program().user = "changed";
  select("\n");
  EXPECT_TRUE(Contains(output(), "(default " + path("hull.PJC") + ")"));
  EXPECT_EQ(program().user, "bo");
}

TEST_F(ProjectDialogue, IdentificationCannotBeAborted) {
  program().company = "Yard";
  script("$\n\n\nanna\n");
  EXPECT_STATUS(false, ASKIDN(status));
  EXPECT_FALSE(inputLeft());
  EXPECT_TRUE(Contains(output(), "No abort possibility"));
  EXPECT_EQ(program().company, "Yard");
  EXPECT_EQ(program().user, "anna");
}

}  // namespace
}  // namespace kntr::framework
