#include "framework/system.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <vector>

#include "support/dialogue_fixture.h"

namespace kntr::framework {
namespace {

using SystemCalls = kntr::testing::DialogueTest;

TEST_F(SystemCalls, AFailingCommandIsToldAndTheNextStillRuns) {
  // The third command leaves a mark that the test can see.
  const std::string mark = std::string(KNTR_BINARY_DIR) + "/opsyif_mark";
  std::remove(mark.c_str());
  type("\n");
  bool status = false;
  OPSYIF("true; exit 3 ;touch " + mark, status);
  EXPECT_TRUE(status);
  const std::string shown = output();
  EXPECT_EQ(occurrences(shown, "Attempt to call operating system failed"), 1);
  EXPECT_NE(shown.find("Attempt to call operating system failed\n** exit 3 **\n(error is    3)"),
            std::string::npos)
      << shown;
  EXPECT_EQ(std::remove(mark.c_str()), 0) << "the command after the failure did not run";
}

TEST_F(SystemCalls, CommandsThatSucceedSayNothing) {
  bool status = true;
  OPSYIF("true;;true", status);
  EXPECT_FALSE(status);
  EXPECT_EQ(output(), "");
}

TEST_F(SystemCalls, AFailedCommandShowsItsLast64Characters) {
  const std::string command = "false #" + std::string(60, 'a') + std::string(10, 'b');
  type("\n");
  bool status = false;
  OPSYIF(command, status);
  EXPECT_TRUE(status);
  const std::string shown = output();
  EXPECT_NE(shown.find("** " + command.substr(command.size() - 64) + " **"), std::string::npos);
  EXPECT_EQ(shown.find("false #"), std::string::npos);
}

TEST_F(SystemCalls, BlankAndOverlongLists) {
  type("\n\n");
  bool status = false;
  OPSYIF("   ", status);
  EXPECT_TRUE(status);
  EXPECT_NE(output().find("(OPSYIF) No operating system call specified"), std::string::npos);

  status = false;
  OPSYIF(std::string(1300, 'x'), status);
  EXPECT_TRUE(status);
  EXPECT_NE(output().find("Maximum length of operating system call exceeded\n"
                          "(maximum length is 1256 < 1300)"),
            std::string::npos);
}

std::vector<std::string> ran;
int recordAndFailSecond(std::string_view command) {
  ran.emplace_back(command);
  return ran.size() == 2 ? 127 : 0;
}

TEST_F(SystemCalls, ThroughTheHookEachCommandInTurn) {
  ran.clear();
  systemHooks().runCommand = &recordAndFailSecond;
  type("\n");
  bool status = false;
  OPSYIF(" ls -a ; nothere;ps -u x ", status);
  EXPECT_TRUE(status);
  EXPECT_EQ(ran, (std::vector<std::string>{"ls -a", "nothere", "ps -u x"}));
  EXPECT_NE(output().find("** nothere **\n(error is  127)"), std::string::npos);
}

}  // namespace
}  // namespace kntr::framework
