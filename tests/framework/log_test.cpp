#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <regex>
#include <string>

#include "framework/startup.h"
#include "framework/state.h"
#include "support/console_fixture.h"

namespace kntr::framework {
namespace {

namespace fs = std::filesystem;

class LogFile : public kntr::testing::ConsoleTest {
 protected:
  void SetUp() override {
    ConsoleTest::SetUp();
    home_ = fs::temp_directory_path() / ("kntr-log-" + std::to_string(::testing::UnitTest::GetInstance()->random_seed()) + "-" + ::testing::UnitTest::GetInstance()->current_test_info()->name());
    fs::remove_all(home_);
    fs::create_directories(home_);
    const char* old = std::getenv("HOME");
    savedHome_ = old ? old : "";
    hadHome_ = old != nullptr;
    ::setenv("HOME", home_.c_str(), 1);
    program().SPNAME = "KNTR";
    program().SPVERS = "1998-0223";
  }
  void TearDown() override {
    if (hadHome_)
      ::setenv("HOME", savedHome_.c_str(), 1);
    else
      ::unsetenv("HOME");
    fs::remove_all(home_);
    ConsoleTest::TearDown();
  }
  std::string logText() {
    std::ifstream in(home_ / "T-cnfg" / "Tarvik.log");
    return std::string(std::istreambuf_iterator<char>(in), {});
  }
  fs::path home_;
  std::string savedHome_;
  bool hadHome_ = false;
};

TEST_F(LogFile, EnteringAndExitingLinesWhenTheDirectoryExists) {
  fs::create_directories(home_ / "T-cnfg");
  bool status = true;
  OPLGFL(status);
  EXPECT_FALSE(status);
  EXPECT_TRUE(program().logOpen);
  CLLGFL(status);
  EXPECT_FALSE(status);
  EXPECT_FALSE(program().logOpen);
  const std::regex pattern(
      "host  entering module KNTR version 1998-0223 on \\d\\d-[A-Z][a-z][a-z]-\\d{4} at "
      "\\d\\d:\\d\\d:\\d\\d\n"
      "CPU usage:  0\\.000E\\+00 \\[sec\\]\n"
      "host  exiting module KNTR version 1998-0223 on \\d\\d-[A-Z][a-z][a-z]-\\d{4} at "
      "\\d\\d:\\d\\d:\\d\\d\n");
  EXPECT_TRUE(std::regex_match(logText(), pattern)) << logText();

  // The log grows: a second session appends.
  OPLGFL(status);
  CLLGFL(status);
  const std::string twice = logText();
  EXPECT_EQ(std::count(twice.begin(), twice.end(), '\n'), 6);
}

TEST_F(LogFile, NoDirectoryMeansNoLogAndNoError) {
  bool status = true;
  OPLGFL(status);
  EXPECT_FALSE(status);
  EXPECT_FALSE(program().logOpen);
  EXPECT_FALSE(fs::exists(home_ / "T-cnfg"));
  CLLGFL(status);
  EXPECT_FALSE(status);
  EXPECT_EQ(output(), "");
}

TEST_F(LogFile, MissingHomeWarnsAndWaitsForALine) {
  ::unsetenv("HOME");
  type("\n");
  bool status = true;
  OPLGFL(status);
  EXPECT_FALSE(status);
  EXPECT_FALSE(program().logOpen);
  EXPECT_TRUE(platform::testconsole::inputExhausted());
  EXPECT_EQ(output(),
            " (OPLGFL) unable to get home drive defined by environment variable >HOME<\n"
            " To continue press <R>\n");
}

TEST_F(LogFile, IdentityMustBeSetBeforeStartUp) {
  program().SPNAME = "   ";
  bool status = false;
  IZPGRM(status);
  EXPECT_TRUE(status);
  EXPECT_NE(output().find(" (IZPGRM) Variable SPNAME must be initialized prior to calling subroutine PGINIT"),
            std::string::npos);
  program().SPNAME = "KNTR";
  program().SPVERS = "";
  IZPGRM(status);
  EXPECT_TRUE(status);
  EXPECT_NE(output().find("Variable SPVERS must be initialized"), std::string::npos);
  program().SPVERS = "1998-0223";
  IZPGRM(status);
  EXPECT_FALSE(status);
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
  int logoRow = -1;
  for (int r = 0; r < static_cast<int>(rows.size()); ++r)
    if (rows[r].find("+-----") != std::string::npos) {
      logoRow = r;
      break;
    }
  ASSERT_GE(logoRow, 0);
  EXPECT_EQ(rows[logoRow].find('+'), 10u);  // (80 - 59) / 2
  EXPECT_NE(rows[logoRow + 14].find("Brenholm AB"), std::string::npos);
}

}  // namespace
}  // namespace kntr::framework
