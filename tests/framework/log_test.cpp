// The log file, the start-up checks of the module's identity and the banner.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <optional>
#include <string>

#include "framework/input.h"
#include "framework/startup.h"
#include "framework/text.h"
#include "framework/state.h"
#include "support/checks.h"
#include "support/scratch_directory.h"

namespace kntr::framework {
namespace {

using kntr::testing::Contains;

// Runs with HOME in a scratch directory.
class LogFile : public kntr::testing::ScratchTest {
 protected:
  void SetUp() override {
    ScratchTest::SetUp();
    const char* old = std::getenv("HOME");
    savedHome_ = old ? std::optional<std::string>(old) : std::nullopt;
    ::setenv("HOME", directory().c_str(), 1);
    program().SPNAME = "KNTR";
    program().SPVERS = "1998-0223";
  }
  void TearDown() override {
    savedHome_ ? ::setenv("HOME", savedHome_->c_str(), 1) : ::unsetenv("HOME");
    ScratchTest::TearDown();
  }
  // Opens and closes the log as a session does.
  void session() {
    EXPECT_STATUS(false, OPLGFL(status));
    const bool open = program().logOpen;
    EXPECT_STATUS(false, CLLGFL(status));
    EXPECT_FALSE(program().logOpen);
    EXPECT_EQ(open, std::filesystem::exists(path("T-cnfg")));
  }
  std::optional<std::string> savedHome_;
};

// The lines of one session, and the log without its directory, are checked
// by the scripted sessions session_exit_with_log and session_no_log_directory.
TEST_F(LogFile, ASecondSessionAppendsAndNoHomeWaitsForALine) {
  std::filesystem::create_directories(path("T-cnfg"));
  session();
  const std::string log = readFile(path("T-cnfg/Tarvik.log"));
  EXPECT_EQ(readLines(path("T-cnfg/Tarvik.log")).size(), 3u);
  session();
  EXPECT_EQ(readFile(path("T-cnfg/Tarvik.log")).substr(0, log.size()), log);
  EXPECT_EQ(readLines(path("T-cnfg/Tarvik.log")).size(), 6u);

  std::filesystem::remove_all(path("T-cnfg"));
  ::unsetenv("HOME");
  type("\n");
  session();
  EXPECT_TRUE(platform::testconsole::inputExhausted());
  EXPECT_EQ(output(),
            " (OPLGFL) unable to get home drive defined by environment variable >HOME<\n"
            " To continue press <R>\n");
}

// Level 1 logs only the session's lines; 2 adds the errors, 3 the messages
// and the lines typed, each without its formatting tokens.
TEST_F(LogFile, LevelsTwoAndThreeAddErrorsMessagesAndInputs) {
  std::filesystem::create_directories(path("T-cnfg"));
  program().executionMode = ModeBatch;  // errors wait for no RETURN
  for (int level : {1, 2, 3}) {
    SCOPED_TRACE(level);
    std::filesystem::remove(path("T-cnfg/Tarvik.log"));
    program().logLevel = level;
    EXPECT_STATUS(false, OPLGFL(status));
    ERRSCN("Max X-coordinate must be{nwl{grelarger than min!");
    PRMESG("{yelFairing used    3 iteration(s)");
    type("0, 10\n");
    Answer answer;
    EXPECT_STATUS(false, RDPROM(2, answer, status));
    EXPECT_STATUS(false, CLLGFL(status));
    const std::string log = readFile(path("T-cnfg/Tarvik.log"));
    EXPECT_EQ(Contains(log, "\nerror: Max X-coordinate must be larger than min!\n"), level >= 2);
    EXPECT_EQ(Contains(log, "\nmessage: Fairing used    3 iteration(s)\n"), level >= 3);
    EXPECT_EQ(Contains(log, "\ninput: 0, 10\n"), level >= 3);
  }
  program().logLevel = 1;
}

TEST_F(LogFile, IdentityMustBeSetBeforeStartUp) {
  program().SPNAME = "   ";
  EXPECT_STATUS(true, IZPGRM(status));
  EXPECT_TRUE(Contains(output(),
                       " (IZPGRM) Variable SPNAME must be initialized prior to calling "
                       "subroutine PGINIT"));
  program().SPNAME = "KNTR";
  program().SPVERS = "";
  EXPECT_STATUS(true, IZPGRM(status));
  EXPECT_TRUE(Contains(output(), "Variable SPVERS must be initialized"));
  program().SPVERS = "1998-0223";
  EXPECT_STATUS(false, IZPGRM(status));
  EXPECT_EQ(program().packageName, "Tarvik");
  EXPECT_EQ(program().packageVersion, "2016A");
  EXPECT_EQ(program().executionMode, ModeAlone);
}

TEST_F(LogFile, BannerIsCentredAndDoesNotHoldAScriptedRun) {
  program().screenColumns = 80;
  program().screenLines = 24;
  program().showTime = 30;  // would hold a person for half a minute
  PRBANR("Welcome to the design system", "Brenholm AB");
  const auto rows = screen();
  std::size_t logo = 0;
  while (logo < rows.size() && rows[logo].find("+-----") == std::string::npos) ++logo;
  ASSERT_LT(logo + 14, rows.size());
  EXPECT_EQ(rows[logo].find('+'), 10u);  // (80 - 59) / 2
  EXPECT_TRUE(Contains(rows[logo + 14], "Brenholm AB"));
}

}  // namespace
}  // namespace kntr::framework
