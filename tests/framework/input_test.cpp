#include "framework/input.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <string>
#include <vector>

#include "framework/projects.h"
#include "framework/system.h"
#include "support/checks.h"
#include "support/dialogue_fixture.h"

namespace kntr::framework {
namespace {

using kntr::testing::Contains;

class InputLine : public kntr::testing::DialogueTest {
 protected:
  // Types `keys` and reads one answer of `expected` fields; true when the
  // line was refused.
  bool ask(const std::string& keys, int expected = 1) {
    script(keys);
    bool status = true;
    RDPROM(expected, answer, status);
    return status;
  }
  Answer answer;
};

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
      {"1 , 2", 2, false, false, {"1", "2"}, ""},  // blanks next to a comma belong to it
      {"0, 10", 2, false, false, {"0", "10"}, ""},
      {"1 ,,3", 3, false, false, {"1", "-", "3"}, ""},
      {"1, ,3", 3, false, false, {"1", "-", "3"}, ""},
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
    EXPECT_EQ(ask(std::string(c.line) + "\n\n\n", c.expected), c.status);
    EXPECT_EQ(answer.deflt, c.deflt);
    EXPECT_FALSE(answer.help || answer.abort || answer.special || answer.click);
    const std::string shown = output();
    if (*c.message)
      EXPECT_TRUE(Contains(shown, c.message));
    else
      EXPECT_EQ(shown, "");
    if (c.status) continue;
    std::vector<std::string> texts(static_cast<std::size_t>(c.expected), "-");
    bool deflt = false, status = true;
    GTCHAR(texts, 20, deflt, status);
    EXPECT_FALSE(status);
    EXPECT_EQ(texts, c.fields);
  }
}

// Help, abort and clicks on rows are read through the menu tests.
TEST_F(InputLine, MiddleButtonDefaultsAQuestionReadsPastAClickAndLinesAreCut) {
  script("\x1b[<1;3;3M");
  bool status = true;
  RDLINE(1, answer, status);  // middle button: the default answer
  EXPECT_FALSE(answer.click);
  EXPECT_TRUE(answer.deflt);

  // A question reads past a click.
  ask("\x1b[<0;12;7M42\n");
  EXPECT_FALSE(answer.click);
  int value[1] = {0};
  bool deflt = true;
  GTINTV(value, deflt, status);
  EXPECT_FALSE(deflt);
  EXPECT_EQ(value[0], 42);

  // Lines are cut at 80 characters.
  ask(std::string(100, 'a') + "\n");
  EXPECT_EQ(currentInputLine(), std::string(80, 'a'));
  std::string text[1];
  GTCHAR(text, 200, deflt, status);
  EXPECT_EQ(text[0], std::string(80, 'a'));
}

TEST_F(InputLine, FetchersConvertByTypeKeepDefaultsAndStopAtABadField) {
  ASSERT_FALSE(ask("3*4,,2.5e1,\n", 4));
  std::array<double, 4> reals{-1.0, -2.0, -3.0, -4.0};
  bool deflt = true, status = true;
  GTREAL(reals, deflt, status);
  EXPECT_FALSE(status);
  EXPECT_FALSE(deflt);
  EXPECT_EQ(reals, (std::array<double, 4>{12.0, -2.0, 25.0, -4.0}));
  int more[1] = {9};  // after a full read every further field is a default
  GTINTV(more, deflt, status);
  EXPECT_TRUE(deflt);
  EXPECT_EQ(more[0], 9);

  ask("ye,n,\n", 3);
  bool logicals[3] = {false, true, true};
  GTLOGV(logicals, deflt, status);
  EXPECT_FALSE(status);
  EXPECT_EQ(std::vector<bool>(logicals, logicals + 3), (std::vector<bool>{true, false, true}));

  ask("1,abc,3\n\n", 3);
  std::array<int, 3> integers{0, 0, 0};
  GTINTV(integers, deflt, status);
  EXPECT_TRUE(status);
  EXPECT_EQ(integers, (std::array<int, 3>{1, 0, 0}));
  EXPECT_TRUE(Contains(output(), "undefined constant"));

  ask("1,'22'\n", 2);
  std::array<int, 2> quoted{0, 0};
  GTINTV(quoted, deflt, status);
  EXPECT_TRUE(status);
  EXPECT_EQ(quoted[0], 1);
  EXPECT_EQ(output(), " Quoted expression not expted            3 -           6\n");

  ask("abcd\n\n");
  std::string text[1] = {"keep"};
  GTCHAR(text, 3, deflt, status);
  EXPECT_TRUE(status);
  EXPECT_EQ(text[0], "keep");
  EXPECT_TRUE(Contains(output(), "Maximum number of characters exceeded"));
}

TEST_F(InputLine, YesNoWords) {
  const struct {
    const char* text;
    int result;
  } words[] = {{"y", 1},    {"ye", 1},   {"YES", 1}, {"t", 1},  {"Tru", 1},  {"true", 1},  {"1", 1},
               {"n", 2},    {"No", 2},   {"f", 2},   {"fa", 2}, {"FALS", 2}, {"false", 2}, {"0", 2},
               {"yess", 0}, {"yeah", 0}, {"", 0},    {"2", 0},  {"nope", 0}, {"truee", 0}};
  for (const auto& w : words) {
    SCOPED_TRACE(w.text);
    script("\n");
    bool status = false;
    EXPECT_EQ(CVYESN(w.text, status), w.result);
    EXPECT_EQ(status, w.result == 0);
    const std::string shown = output();
    if (w.result == 0)
      EXPECT_TRUE(Contains(shown, "Input must be yes/no, true/false, 1/0"));
    else
      EXPECT_EQ(shown, "");
  }
}

// --- special commands -------------------------------------------------------------

using SpecialCommands = InputLine;

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

TEST_F(SpecialCommands, AreNoAnswerAndTheWordIsUpperCased) {
  loads = projects = 0;
  callbacks().load = &countLoad;
  services().selectProject = &countProject;
  std::string today;
  GTDATE(today);
  const struct {
    const char* keys;
    bool disabled;  // the data-changing commands are disabled
    std::string shown;
  } cases[] = {
      {"#date", false, "Date: " + today + "\n"},
      {"#", false,
       "Unknown special command: \n\nUse #? to see information about special commands\n"},
      {"#fly", false, "Unknown special command: FLY\n"},
      {"#?", false,
       "Available functions\n\nDATE\nTIME\nCALCULATOR\nKILL\nSYSTEM\nCONFIG\nLOAD\nSAVE\nRESET\n"
       "PROJECT\n"},
      {"#?", true,
       "CONFIG\n(*) LOAD\n(*) SAVE\n(*) RESET\n (*) PROJECT\n(*) =  Disabled at the moment\n"},
      {"#LOAD", true, "LOAD is disabled at the moment"},
      {"#PROJECT", true, "PROJECT is disabled at the moment"},
      {"#save", false, "SAVE is not available at the moment"},
      {"#config", false, "CONFIG is not available at the moment"},
      {"#reset", false, "RESET is not available at the moment"},
      {"#calculator", false, "Input expression to be evaluated?"},  // RETURN: done
      {"#load", false, ""},
      {"#project", false, ""},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.keys);
    program().specialDisabled = c.disabled;
    EXPECT_FALSE(ask(std::string(c.keys) + "\n" + (c.shown.empty() ? "" : "\n")));
    EXPECT_TRUE(answer.special);
    EXPECT_FALSE(answer.deflt);
    EXPECT_FALSE(inputLeft());
    if (c.shown.empty()) {
      EXPECT_EQ(output(), "");
    } else {
      EXPECT_TRUE(Contains(output(), c.shown));
    }
  }
  EXPECT_EQ(loads, 1);  // only the enabled ones reached the module
  EXPECT_EQ(projects, 1);
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

TEST_F(SpecialCommands, KillClosesTheLogAndEndsTheProcessAndSystemRunsTheShell) {
  endCode = 0;
  logClosed = false;
  systemHooks().endProcess = &recordEnd;
  services().closeLog = &recordLogClose;
  ask("#kill\n");
  EXPECT_TRUE(Contains(output(), "Module killed\n"));
  EXPECT_TRUE(logClosed);
  EXPECT_NE(endCode, 0);

  systemHooks().runCommand = &recordCommand;
  const char* saved = std::getenv("SHELL");
  const std::string keep = saved ? saved : "";
  ::setenv("SHELL", "/bin/zsh", 1);
  ask("#system\n");
  EXPECT_EQ(commandRun, "/bin/zsh");
  ::unsetenv("SHELL");
  ask("#system\n");
  EXPECT_EQ(commandRun, "/bin/sh");
  if (saved) ::setenv("SHELL", keep.c_str(), 1);
}

}  // namespace
}  // namespace kntr::framework
