#include "framework/input.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <string>
#include <vector>

#include "framework/projects.h"
#include "framework/system.h"
#include "support/dialogue_fixture.h"

namespace kntr::framework {
namespace {

using InputLine = kntr::testing::DialogueTest;

// What a line gives when its fields are fetched as texts preset to "-".
struct LineCase {
  const char* line;
  int expected;
  bool status;
  bool deflt;                       // the answer's default flag
  std::vector<std::string> fields;  // fetched texts; empty when status
  const char* message;              // a message that must be shown, or ""
};

TEST_F(InputLine, FieldsSeparatorsAndDefaults) {
  const LineCase cases[] = {
      {"1,2,", 3, false, false, {"1", "2", "-"}, ""},
      {",5", 2, false, false, {"-", "5"}, ""},
      {"1 2 3", 3, false, false, {"1", "2", "3"}, ""},
      {"1,2,3", 3, false, false, {"1", "2", "3"}, ""},
      {"1,,3", 3, false, false, {"1", "-", "3"}, ""},
      {",,", 3, false, true, {"-", "-", "-"}, ""},
      {",", 2, false, true, {"-", "-"}, ""},
      {"", 2, false, true, {"-", "-"}, ""},
      {"      ", 2, false, true, {"-", "-"}, ""},  // blanks only: trimmed away
      {"'it''s'", 1, false, false, {"it's"}, ""},
      {"\"a\"\"b\"", 1, false, false, {"a\"b"}, ""},
      {"a\"b\"", 1, false, false, {"a\"b\""}, ""},  // quotes inside a word are plain
      {"'',x", 2, false, false, {"", "x"}, ""},
      {"1,?", 2, false, false, {"1", "?"}, ""},  // "?" among fields is a word
      {"a$b #c", 2, false, false, {"a$b", "#c"}, ""},
      {"1,'ab", 2, false, false, {"1", "-"}, "illegal token in position"},
      {"1 , 2", 2, true, false, {}, ""},  // a blank must lead to a field
      {"1, 2", 2, true, false, {}, ""},
      {" 1", 1, true, false, {}, ""},
      {"'a'b", 1, true, false, {}, ""},
      {"$5", 1, true, false, {}, ""},
      {"?x", 1, true, false, {}, ""},
      {"1,2,3,4", 3, true, false, {}, "Wrong number of arguments"},
      {"1 2", 1, true, false, {}, "Wrong number of arguments"},
      {"1,", 1, true, false, {}, "Wrong number of arguments"},
      {"5", 0, true, false, {}, "Wrong number of arguments"},
  };
  for (const LineCase& c : cases) {
    SCOPED_TRACE(std::string("line [") + c.line + "]");
    script(std::string(c.line) + "\n\n\n");
    Answer answer;
    bool status = !c.status;
    RDPROM(c.expected, answer, status);
    EXPECT_EQ(status, c.status);
    EXPECT_EQ(answer.deflt, c.deflt);
    EXPECT_FALSE(answer.help || answer.abort || answer.special || answer.click);
    const std::string shown = output();
    if (*c.message)
      EXPECT_NE(shown.find(c.message), std::string::npos) << shown;
    else
      EXPECT_EQ(shown, "");
    if (c.status) continue;
    std::vector<std::string> texts(static_cast<std::size_t>(c.expected), "-");
    bool deflt = false;
    GTCHAR(texts, 20, deflt, status);
    EXPECT_FALSE(status);
    EXPECT_EQ(texts, c.fields);
  }
}

TEST_F(InputLine, HelpAbortAndClicks) {
  script("?\n$\n\x1b[<0;12;7M\x1b[<1;3;3M");
  Answer answer;
  bool status = true;
  RDLINE(1, answer, status);
  EXPECT_FALSE(status);
  EXPECT_TRUE(answer.help);
  RDLINE(1, answer, status);
  EXPECT_TRUE(answer.abort);
  EXPECT_FALSE(answer.help);
  RDLINE(1, answer, status);  // left button: a click at column 12, row 7
  EXPECT_TRUE(answer.click);
  EXPECT_EQ(answer.clickColumn, 12);
  EXPECT_EQ(answer.clickRow, 7);
  EXPECT_FALSE(answer.deflt);
  RDLINE(1, answer, status);  // middle button: the default answer
  EXPECT_FALSE(answer.click);
  EXPECT_TRUE(answer.deflt);
  EXPECT_FALSE(inputLeft());
}

TEST_F(InputLine, QuestionsReadPastClicks) {
  script(
      "\x1b[<0;12;7M"
      "42\n");
  Answer answer;
  bool status = true;
  RDPROM(1, answer, status);
  EXPECT_FALSE(answer.click);
  int value[1] = {0};
  bool deflt = true;
  GTINTV(value, deflt, status);
  EXPECT_FALSE(deflt);
  EXPECT_EQ(value[0], 42);
}

TEST_F(InputLine, LinesAreCutAt80Characters) {
  script(std::string(100, 'a') + "\n");
  Answer answer;
  bool status = true;
  RDPROM(1, answer, status);
  EXPECT_EQ(currentInputLine(), std::string(80, 'a'));
  std::string text[1];
  bool deflt = true;
  GTCHAR(text, 200, deflt, status);
  EXPECT_EQ(text[0], std::string(80, 'a'));
}

TEST_F(InputLine, FetchersConvertByTypeAndKeepDefaults) {
  script("3*4,,2.5e1,\n");
  Answer answer;
  bool status = true;
  RDPROM(4, answer, status);
  ASSERT_FALSE(status);
  std::array<double, 4> values{-1.0, -2.0, -3.0, -4.0};
  bool deflt = true;
  GTREAL(values, deflt, status);
  EXPECT_FALSE(status);
  EXPECT_FALSE(deflt);
  EXPECT_EQ(values, (std::array<double, 4>{12.0, -2.0, 25.0, -4.0}));
  // After a full read every further field is a default.
  int more[1] = {9};
  GTINTV(more, deflt, status);
  EXPECT_TRUE(deflt);
  EXPECT_EQ(more[0], 9);
}

TEST_F(InputLine, AFailingFieldStopsTheFetch) {
  script("1,abc,3\n\n");
  Answer answer;
  bool status = true;
  RDPROM(3, answer, status);
  std::array<int, 3> values{0, 0, 0};
  bool deflt = true;
  GTINTV(values, deflt, status);
  EXPECT_TRUE(status);
  EXPECT_EQ(values, (std::array<int, 3>{1, 0, 0}));
  EXPECT_NE(output().find("undefined constant"), std::string::npos);
}

TEST_F(InputLine, QuotedNumbersAreRefusedWithTheirPositions) {
  script("1,'22'\n");
  Answer answer;
  bool status = true;
  RDPROM(2, answer, status);
  std::array<int, 2> values{0, 0};
  bool deflt = true;
  GTINTV(values, deflt, status);
  EXPECT_TRUE(status);
  EXPECT_EQ(values[0], 1);
  EXPECT_EQ(output(), " Quoted expression not expted            3 -           6\n");
}

TEST_F(InputLine, TextsLongerThanTheFieldAreRefused) {
  script("abcd\n\n");
  Answer answer;
  bool status = true;
  RDPROM(1, answer, status);
  std::string text[1] = {"keep"};
  bool deflt = true;
  GTCHAR(text, 3, deflt, status);
  EXPECT_TRUE(status);
  EXPECT_EQ(text[0], "keep");
  EXPECT_NE(output().find("Maximum number of characters exceeded"), std::string::npos);
}

TEST_F(InputLine, YesNoWords) {
  struct Word {
    const char* text;
    int result;
  };
  const Word words[] = {{"y", 1},    {"ye", 1},   {"YES", 1},   {"t", 1},    {"Tru", 1},
                        {"true", 1}, {"1", 1},    {"n", 2},     {"No", 2},   {"f", 2},
                        {"fa", 2},   {"FALS", 2}, {"false", 2}, {"0", 2},    {"yess", 0},
                        {"yeah", 0}, {"", 0},     {"2", 0},     {"nope", 0}, {"truee", 0}};
  for (const Word& w : words) {
    SCOPED_TRACE(w.text);
    script("\n");
    bool status = false;
    EXPECT_EQ(CVYESN(w.text, status), w.result);
    EXPECT_EQ(status, w.result == 0);
    const std::string shown = output();
    if (w.result == 0)
      EXPECT_NE(shown.find("Input must be yes/no, true/false, 1/0"), std::string::npos);
    else
      EXPECT_EQ(shown, "");
  }
}

TEST_F(InputLine, LogicalFieldsGoThroughTheYesNoScanner) {
  script("ye,n,\n");
  Answer answer;
  bool status = true;
  RDPROM(3, answer, status);
  bool values[3] = {false, true, true};
  bool deflt = true;
  GTLOGV(values, deflt, status);
  EXPECT_FALSE(status);
  EXPECT_TRUE(values[0]);
  EXPECT_FALSE(values[1]);
  EXPECT_TRUE(values[2]);
}

TEST_F(InputLine, NoAbortPossibility) {
  script("\n");
  NOABRT();
  EXPECT_NE(output().find("No abort possibility"), std::string::npos);
}

TEST_F(InputLine, LineScannerTokens) {
  const std::string line = "#a, 'x''y' \"z\"?";
  int position = 1, first = 0, last = 0;
  std::string text;
  EXPECT_EQ(LNTOKN(line, position, true, first, last, text), LineSpecial);
  EXPECT_EQ(LNTOKN(line, position, false, first, last, text), LineWord);
  EXPECT_EQ(text, "a");
  EXPECT_EQ(LNTOKN(line, position, false, first, last, text), LineComma);
  EXPECT_EQ(LNTOKN(line, position, false, first, last, text), LineBlank);
  EXPECT_EQ(LNTOKN(line, position, false, first, last, text), LineSingleQuoted);
  EXPECT_EQ(text, "x'y");
  EXPECT_EQ(first, 5);
  EXPECT_EQ(last, 10);
  EXPECT_EQ(LNTOKN(line, position, false, first, last, text), LineBlank);
  EXPECT_EQ(LNTOKN(line, position, false, first, last, text), LineDoubleQuoted);
  EXPECT_EQ(text, "z");
  EXPECT_EQ(LNTOKN(line, position, false, first, last, text), LineWord);  // "?" inside the line
  EXPECT_EQ(text, "?");
  EXPECT_EQ(LNTOKN(line, position, false, first, last, text), LineEnd);
}

using SpecialCommands = kntr::testing::DialogueTest;

TEST_F(SpecialCommands, AreNoAnswerAndTheWordIsUpperCased) {
  script("#date\n\n");
  Answer answer;
  bool status = true;
  RDPROM(1, answer, status);
  EXPECT_FALSE(status);
  EXPECT_TRUE(answer.special);
  EXPECT_FALSE(answer.deflt);
  std::string today;
  GTDATE(today);
  EXPECT_NE(output().find("Date: " + today + "\n"), std::string::npos);
  EXPECT_FALSE(inputLeft());
}

TEST_F(SpecialCommands, TimeShowsTheClock) {
  script("#Time\n\n");
  Answer answer;
  bool status = true;
  RDLINE(1, answer, status);
  EXPECT_TRUE(answer.special);
  const std::string shown = output();
  const std::size_t at = shown.find("Time: ");
  ASSERT_NE(at, std::string::npos);
  const std::string clock = shown.substr(at + 6, 8);
  EXPECT_EQ(clock[2], ':');
  EXPECT_EQ(clock[5], ':');
}

TEST_F(SpecialCommands, UnknownWordsAndAHashAlone) {
  script("#\n\n#fly\n\n");
  Answer answer;
  bool status = true;
  RDPROM(1, answer, status);
  EXPECT_TRUE(answer.special);
  const std::string shown = output();
  EXPECT_NE(shown.find("Unknown special command: \n\nUse #? to see information about special "
                       "commands\n"),
            std::string::npos);
  RDPROM(1, answer, status);
  EXPECT_NE(output().find("Unknown special command: FLY\n"), std::string::npos);
}

TEST_F(SpecialCommands, TheListWithAndWithoutDisabledCommands) {
  script("#?\n\n");
  Answer answer;
  bool status = true;
  RDPROM(1, answer, status);
  EXPECT_NE(output().find("Available functions\n\nDATE\nTIME\nCALCULATOR\nKILL\nSYSTEM\nCONFIG\n"
                          "LOAD\nSAVE\nRESET\nPROJECT\n"),
            std::string::npos);
  program().specialDisabled = true;
  script("#?\n\n");
  RDPROM(1, answer, status);
  EXPECT_NE(output().find("CONFIG\n(*) LOAD\n(*) SAVE\n(*) RESET\n (*) PROJECT\n"
                          "(*) =  Disabled at the moment\n"),
            std::string::npos);
}

int loads = 0;
int projects = 0;
void countLoad(bool& status) {
  status = false;
  ++loads;
}
void countProject(bool& status) {
  status = false;
  ++projects;
}

TEST_F(SpecialCommands, DataCommandsReachTheModuleUnlessDisabled) {
  loads = 0;
  projects = 0;
  callbacks().load = &countLoad;
  services().selectProject = &countProject;
  script("#load\n#project\n");
  Answer answer;
  bool status = true;
  RDPROM(1, answer, status);
  RDPROM(1, answer, status);
  EXPECT_EQ(loads, 1);
  EXPECT_EQ(projects, 1);
  EXPECT_EQ(output(), "");

  program().specialDisabled = true;
  script("#LOAD\n\n#PROJECT\n\n");
  RDPROM(1, answer, status);
  EXPECT_NE(output().find("LOAD is disabled at the moment"), std::string::npos);
  RDPROM(1, answer, status);
  EXPECT_NE(output().find("PROJECT is disabled at the moment"), std::string::npos);
  EXPECT_EQ(loads, 1);
  EXPECT_EQ(projects, 1);
}

TEST_F(SpecialCommands, MissingServicesSaySo) {
  script("#save\n\n#config\n\n#reset\n\n");
  Answer answer;
  bool status = true;
  RDPROM(1, answer, status);
  EXPECT_NE(output().find("SAVE is not available at the moment"), std::string::npos);
  RDPROM(1, answer, status);
  EXPECT_NE(output().find("CONFIG is not available at the moment"), std::string::npos);
  RDPROM(1, answer, status);
  EXPECT_NE(output().find("RESET is not available at the moment"), std::string::npos);
}

int endCode = 0;
bool logClosed = false;
std::string commandRun;
void recordEnd(int code) {
  endCode = code;
}
void recordLogClose(bool& status) {
  status = false;
  logClosed = true;
}
int recordCommand(std::string_view command) {
  commandRun = std::string(command);
  return 0;
}

TEST_F(SpecialCommands, KillClosesTheLogAndEndsTheProcess) {
  endCode = 0;
  logClosed = false;
  systemHooks().endProcess = &recordEnd;
  services().closeLog = &recordLogClose;
  script("#kill\n");
  Answer answer;
  bool status = true;
  RDPROM(1, answer, status);
  EXPECT_NE(output().find("Module killed\n"), std::string::npos);
  EXPECT_TRUE(logClosed);
  EXPECT_NE(endCode, 0);
}

TEST_F(SpecialCommands, SystemRunsTheUsersShell) {
  systemHooks().runCommand = &recordCommand;
  const char* saved = std::getenv("SHELL");
  const std::string keep = saved ? saved : "";
  ::setenv("SHELL", "/bin/zsh", 1);
  script("#system\n");
  Answer answer;
  bool status = true;
  RDPROM(1, answer, status);
  EXPECT_EQ(commandRun, "/bin/zsh");
  ::unsetenv("SHELL");
  script("#system\n");
  RDPROM(1, answer, status);
  EXPECT_EQ(commandRun, "/bin/sh");
  if (saved) ::setenv("SHELL", keep.c_str(), 1);
}

TEST_F(SpecialCommands, CalculatorInsideAQuestionLeavesTheQuestionToBeAskedAgain) {
  // The outer answer is given up; its line is no longer the current one.
  script("#calculator\n1+1\n\n\n");
  Answer answer;
  bool status = true;
  RDPROM(2, answer, status);
  EXPECT_TRUE(answer.special);
  EXPECT_FALSE(status);
  EXPECT_NE(output().find(" 2.000000E+00"), std::string::npos);
  EXPECT_FALSE(inputLeft());
}

}  // namespace
}  // namespace kntr::framework
