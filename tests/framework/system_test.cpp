#include "framework/system.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "support/checks.h"
#include "support/dialogue_fixture.h"

namespace kntr::framework {
namespace {

using kntr::testing::Contains;
using SystemCalls = kntr::testing::DialogueTest;

// Runs `commands`, with a RETURN for each error; gives what was shown,
// after "failed: " when the call failed.
std::string run(const std::string& commands) {
  platform::testconsole::feed("\n\n");
  bool status = true;
  OPSYIF(commands, status);
  return (status ? "failed: " : "") + platform::testconsole::takeOutput();
}

// The commands reach the system hook one by one in the system menu's tests.
TEST_F(SystemCalls, AFailingCommandIsToldAndTheNextStillRuns) {
  // The third command leaves a mark that the test can see.
  const std::string mark = std::string(KNTR_BINARY_DIR) + "/opsyif_mark";
  std::remove(mark.c_str());
  const std::string shown = run("true; exit 3 ;touch " + mark);
  EXPECT_EQ(occurrences(shown, "Attempt to call operating system failed"), 1);
  EXPECT_TRUE(Contains(
      shown, "failed: Attempt to call operating system failed\n** exit 3 **\n(error is    3)"));
  EXPECT_EQ(std::remove(mark.c_str()), 0) << "the command after the failure did not run";
  EXPECT_EQ(run("true;;true"), "");

  // A failed command shows its last 64 characters.
  const std::string command = "false #" + std::string(60, 'a') + std::string(10, 'b');
  EXPECT_TRUE(Contains(run(command), "** " + command.substr(command.size() - 64) + " **"));
  EXPECT_TRUE(Contains(run("   "), "failed: (OPSYIF) No operating system call specified"));
  EXPECT_TRUE(Contains(run(std::string(1300, 'x')),
                       "failed: Maximum length of operating system call exceeded\n"
                       "(maximum length is 1256 < 1300)"));
}

}  // namespace
}  // namespace kntr::framework
