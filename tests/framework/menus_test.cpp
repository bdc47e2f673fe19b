// Text menus, questions and confirmations; the module's main menu is
// compared with screens checked in under tests/framework/golden/.
#include "framework/menus.h"

#include <gtest/gtest.h>

#include <array>
#include <fstream>
#include <string>
#include <vector>

#include "framework/input.h"
#include "framework/state.h"
#include "support/checks.h"
#include "support/dialogue_fixture.h"

namespace kntr::framework {
namespace {

using kntr::testing::Contains;

class Menus : public kntr::testing::DialogueTest {
 protected:
  struct Result {
    bool abort = false;
    bool status = false;
    int selection = 0;
  };

  Result menu(const std::vector<std::string>& items, int deflt, const std::string& help = "",
              int selection = 0) {
    Result r;
    r.selection = selection;
    TXMENU("TEST MENU", items, deflt, help, r.abort, r.selection, r.status);
    return r;
  }
  // Asks a question of one field; true when it was aborted.
  bool question(const std::string& text, const std::string& deflt, const std::string& help = "") {
    bool abort = false, status = false;
    ASKQST(text, deflt, help, 1, abort, status);
    return abort;
  }

  // The 1-based screen row that shows `text`, or 0.
  int rowShowing(const std::string& text) {
    const std::vector<std::string> rows = screen();
    for (std::size_t i = 0; i < rows.size(); ++i)
      if (rows[i].find(text) != std::string::npos) return static_cast<int>(i) + 1;
    return 0;
  }
  std::string row(int number) { return screen()[static_cast<std::size_t>(number - 1)]; }

  static std::string click(int column, int row) {
    return "\x1b[<0;" + std::to_string(column) + ";" + std::to_string(row) + "M";
  }
};

std::vector<std::string> numberedItems(int n) {
  std::vector<std::string> items;
  for (int i = 1; i <= n; ++i) items.push_back("Item " + std::to_string(i));
  return items;
}

TEST_F(Menus, NineItemsAndAReturnRowPromptWithTwoDigits) {
  type("\n");
  EXPECT_EQ(menu(numberedItems(9), 10).selection, 10);  // RETURN is the default
  EXPECT_EQ(row(23), "Select item number [1-10] ?");
  const int first = rowShowing("1.  ... Item 1");
  const int nine = rowShowing("9.  ... Item 9");
  const int back = rowShowing("10. ... RETURN");
  ASSERT_GT(first, 0);
  EXPECT_EQ(nine, first + 8);
  EXPECT_EQ(back, nine + 2);  // set off by an empty line
  // The dots of every row line up: one blank behind two digits.
  EXPECT_EQ(row(back).find("..."), row(first).find("..."));
  EXPECT_EQ(row(back).find("10."), 20u);
}

TEST_F(Menus, BlankItemsTakeNoNumberAndLongItemsAreCut) {
  type("2\n");
  EXPECT_EQ(menu({"Alpha", "", "Beta"}, 0).selection, 2);
  EXPECT_GT(rowShowing("2.  ... Beta"), rowShowing("1.  ... Alpha") + 1);
  EXPECT_EQ(rowShowing("3."), 0);
  EXPECT_GT(rowShowing("Select item number [1-2] ?"), 0);

  type("1\n");
  menu({std::string(100, 'x')}, 0);
  // 80 columns: margin 20, text width 51.
  EXPECT_GT(rowShowing("... " + std::string(51, 'x')), 0);
  EXPECT_EQ(rowShowing(std::string(52, 'x')), 0);
}

TEST_F(Menus, WrongMalformedAndSpecialAnswersRedraw) {
  type("0\n\n4\n\n3\n");
  EXPECT_EQ(menu({"A", "B", "C"}, 0).selection, 3);
  std::string shown = output();
  EXPECT_EQ(occurrences(shown, "Input must be an integer number in [1-3]"), 2);
  EXPECT_EQ(occurrences(shown, "TEST MENU"), 3);
  EXPECT_FALSE(inputLeft());

  program().backupCounter = 0;
  type("'a'b\n#date\n\n2\n");
  EXPECT_EQ(menu({"A", "B"}, 0).selection, 2);
  EXPECT_EQ(occurrences(output(), "TEST MENU"), 3);
  EXPECT_EQ(program().backupCounter, 1);  // only the valid answer counted
}

// "#reset" acts at once; the menu's rows describe the data that went, so
// the menu returns with no selection for its caller to build it anew.
TEST_F(Menus, ResetByASpecialCommandReturnsForNewRows) {
  static bool reset = false;
  reset = false;
  callbacks().reset = [](bool& status) {
    status = false;
    reset = true;
  };
  type("#reset\n");
  const Result r = menu({"A", "B"}, 0);
  EXPECT_TRUE(reset);
  EXPECT_EQ(r.selection, 0);
  EXPECT_FALSE(r.abort || r.status);
  EXPECT_EQ(occurrences(output(), "TEST MENU"), 1);
  // Other special commands redraw the same rows.
  type("#date\n\n2\n");
  EXPECT_EQ(menu({"A", "B"}, 0).selection, 2);
  EXPECT_EQ(occurrences(output(), "TEST MENU"), 2);
}

TEST_F(Menus, ClickOnARowSelectsItAndAClickElsewhereRedraws) {
  // Find where the rows stand by drawing once.
  type("\n");
  menu({"A", "", "B", "C"}, 1);
  const int rowB = rowShowing("2.  ... B");
  ASSERT_GT(rowB, 0);
  output();

  script(click(40, rowB));
  EXPECT_EQ(menu({"A", "", "B", "C"}, 1).selection, 2);
  EXPECT_FALSE(inputLeft());
  EXPECT_EQ(occurrences(output(), "TEST MENU"), 1);

  // The header box and an empty row are misses; then RETURN takes the default.
  script(click(40, 2) + click(5, rowB - 1) + "\n");
  EXPECT_EQ(menu({"A", "", "B", "C"}, 1).selection, 1);
  EXPECT_EQ(occurrences(output(), "TEST MENU"), 3);
}

TEST_F(Menus, EmptyAnswerHelpAndAbort) {
  type("\n\n3\n");
  EXPECT_EQ(menu({"A", "B", "C"}, 0).selection, 3);
  EXPECT_TRUE(Contains(output(), "No default value available\n"));

  script("\n");
  EXPECT_EQ(menu({"A", "B", "C"}, 2).selection, 2);
  // A default inside the list stands between empty lines.
  const int at = rowShowing("2.  ... B");
  EXPECT_EQ(row(at - 1), "");
  EXPECT_EQ(row(at + 1), "");

  script("?\n\n?\n\n$\n");
  Result r = menu({"A"}, 0, "", 7);
  EXPECT_TRUE(r.abort);
  EXPECT_EQ(r.selection, 7);
  EXPECT_TRUE(Contains(output(), "No help available"));
  script("?\n\n1\n");
  EXPECT_EQ(menu({"A"}, 0, "Pick one of the rows.").selection, 1);
  EXPECT_TRUE(Contains(output(), "Pick one of the rows.\n"));
}

TEST_F(Menus, TheScreenMustHoldTheMenu) {
  resize(21, 24);
  type("\n");
  Result r = menu({"A"}, 1, "", 5);
  EXPECT_TRUE(r.status);
  EXPECT_EQ(r.selection, 5);
  EXPECT_TRUE(Contains(output(), "Screen is to small to display menu"));
  resize(22, 24);
  type("1\n");
  r = menu({"A"}, 1);
  EXPECT_FALSE(r.status);
  EXPECT_EQ(r.selection, 1);

  // L - 9 items fit, with one empty line under the header box.
  resize(80, 24);
  type("\n");
  EXPECT_FALSE(menu(numberedItems(15), 15).status);
  EXPECT_EQ(row(4), "");
  EXPECT_EQ(row(5), "                    1.  ... Item 1");
  EXPECT_EQ(row(23), "Select item number [1-15] ?");
  type("\n");
  EXPECT_TRUE(menu(numberedItems(16), 16).status);
}

int backups = 0;
int* watchedSelection = nullptr;
int selectionAtBackup = 0;
void countBackup(bool& status) {
  status = false;
  ++backups;
  if (watchedSelection) selectionAtBackup = *watchedSelection;
}

TEST_F(Menus, TheAnswerAfterTheIntervalRunsTheBackupFirst) {
  backups = 0;
  callbacks().backup = &countBackup;
  program().backupInterval = 3;
  type("2\n2\n2\n");
  for (int i = 1; i <= 3; ++i) menu({"A", "B"}, 1);
  EXPECT_EQ(backups, 0);
  EXPECT_EQ(program().backupCounter, 3);

  // The fourth answer: the backup runs before the selection is taken.
  Result r;
  watchedSelection = &r.selection;
  type("2\n");
  TXMENU("TEST MENU", std::vector<std::string>{"A", "B"}, 1, "", r.abort, r.selection, r.status);
  watchedSelection = nullptr;
  EXPECT_EQ(backups, 1);
  EXPECT_EQ(selectionAtBackup, 1);  // still the preset default
  EXPECT_EQ(r.selection, 2);
  EXPECT_EQ(program().backupCounter, 0);

  // Questions tick the same clock.
  program().backupInterval = 2;
  type("1\n#?\n\n1\n1\n");
  for (int i = 1; i <= 3; ++i) question("Value?", "0");
  EXPECT_EQ(backups, 2);
  EXPECT_EQ(program().backupCounter, 0);
}

// --- questions --------------------------------------------------------------------

using Questions = Menus;

TEST_F(Questions, QuestionDefaultHelpAndAbort) {
  type("5\n");
  EXPECT_FALSE(question("Input number of points?", "10"));
  EXPECT_EQ(row(22), "Input number of points?");
  EXPECT_EQ(row(23), "(default 10)");
  int value[1] = {10};
  bool deflt = true, status = true;
  GTINTV(value, deflt, status);
  EXPECT_EQ(value[0], 5);

  type("\n\n7\n");
  question("Input number?", "");
  std::string shown = output();
  EXPECT_TRUE(Contains(shown, {"(no default)\n", "No default values available\n"}));
  EXPECT_EQ(occurrences(shown, "Input number?"), 2);
  EXPECT_FALSE(inputLeft());

  type("?\n\n$\n");
  EXPECT_TRUE(question("Input number?", "1", "Any whole number."));
  EXPECT_TRUE(Contains(output(), "Any whole number.\n"));
  type("\n");
  bool abort = false;
  ASKQST("   ", "1", "", 1, abort, status);
  EXPECT_TRUE(status);
  EXPECT_TRUE(Contains(output(), "No question text available"));
}

TEST_F(Questions, ExitConfirmation) {
  program().SPNAME = "KNTR";
  type("\n");  // RETURN alone means no
  bool answer = true;
  OKEXIT(false, answer);
  EXPECT_FALSE(answer);
  EXPECT_TRUE(Contains(output(), "OK to EXIT module ** KNTR ** ? (yes/no)\n(default NO)\n"));

  type("maybe\n\nyes\n");
  OKEXIT(true, answer);
  EXPECT_TRUE(answer);
  const std::string shown = output();
  EXPECT_TRUE(
      Contains(shown, "OK to EXIT module ** KNTR ** WITHOUT storing modified data? (yes/no)\n"));
  EXPECT_TRUE(Contains(shown, "Input must be yes/no, true/false, 1/0"));

  type("$\n");
  OKEXIT(false, answer);
  EXPECT_FALSE(answer);
}

// The answers' effects are shown by the file menu's tests.
TEST_F(Questions, LoadAndResetConfirmations) {
  program().SPNAME = "KNTR";
  // Without a graphics window the graphic confirmation is asked on the console.
  type("?\n\ny\n?\n\nn\n");
  bool loaded = false, reset = true;
  OKLOAD(true, loaded);
  OKRSET(reset);
  EXPECT_TRUE(loaded);
  EXPECT_FALSE(reset);
  EXPECT_TRUE(Contains(
      output(), {"OK to load KNTR data without saving current data? (yes/no)\n(default no)",
                 "Loading KNTR data destroys current data!\n",
                 "OK to reset module ** KNTR ** ? (yes/no)\n(default no)", "No help available"}));
}

// --- the main menu ----------------------------------------------------------------

// The main menu with a bounding box given and no curves yet.
const std::array<std::string, 12> mainMenuRows{"Modify bounding box",
                                               "Key-in profile",
                                               "Digitize profile",
                                               "Manipulate profile",
                                               "",
                                               "( Print profile )",
                                               "( Plot profile )",
                                               "",
                                               "Setup{NWM",
                                               "File{NWM",
                                               "",
                                               "EXIT"};

class MainMenu : public Menus, public ::testing::WithParamInterface<std::array<int, 2>> {};

TEST_P(MainMenu, MatchesTheGoldenScreen) {
  const auto [columns, lines] = GetParam();
  const std::string name =
      "main_menu_" + std::to_string(columns) + "x" + std::to_string(lines) + ".txt";
  resize(columns, lines);
  ProgramState& p = program();
  p.SPNAME = "KNTR";
  p.SPVERS = "1998-0223";
  p.packageName = "Tarvik";
  p.packageVersion = "2016A";
  type("\n");
  bool abort = true, status = true;
  int selection = 0;
  TXMENU("MANIPULATE KNTR DATA", mainMenuRows, 12, " ", abort, selection, status);
  EXPECT_FALSE(abort);
  EXPECT_FALSE(status);
  EXPECT_EQ(selection, 9);  // RETURN takes the default: EXIT, the ninth numbered row
  std::ifstream file(std::string(KNTR_SOURCE_DIR) + "/tests/framework/golden/" + name);
  std::vector<std::string> expected;
  for (std::string line; std::getline(file, line);) expected.push_back(line);
  ASSERT_EQ(expected.size(), static_cast<std::size_t>(lines)) << "golden file " << name;
  EXPECT_EQ(screen(), expected);
}

INSTANTIATE_TEST_SUITE_P(Sizes, MainMenu,
                         ::testing::Values(std::array<int, 2>{80, 24},
                                           std::array<int, 2>{132, 50}));

}  // namespace
}  // namespace kntr::framework
