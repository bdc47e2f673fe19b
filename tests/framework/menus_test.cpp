#include "framework/menus.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "framework/input.h"
#include "framework/state.h"
#include "support/dialogue_fixture.h"

namespace kntr::framework {
namespace {

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

  // The 1-based screen row that shows `text`, or 0.
  int rowShowing(const std::string& text) {
    const std::vector<std::string> rows = screen();
    for (std::size_t i = 0; i < rows.size(); ++i)
      if (rows[i].find(text) != std::string::npos) return static_cast<int>(i) + 1;
    return 0;
  }

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
  const Result r = menu(numberedItems(9), 10);
  EXPECT_EQ(r.selection, 10);  // RETURN is the default
  const std::vector<std::string> rows = screen();
  EXPECT_EQ(rows[22], "Select item number [1-10] ?");
  const int first = rowShowing("1.  ... Item 1");
  const int nine = rowShowing("9.  ... Item 9");
  const int back = rowShowing("10. ... RETURN");
  ASSERT_GT(first, 0);
  EXPECT_EQ(nine, first + 8);
  EXPECT_EQ(back, nine + 2);  // set off by an empty line
  // The dots of every row line up: one blank behind two digits.
  EXPECT_EQ(rows[static_cast<std::size_t>(back - 1)].find("..."),
            rows[static_cast<std::size_t>(first - 1)].find("..."));
  EXPECT_EQ(rows[static_cast<std::size_t>(back - 1)].find("10."), 20u);
}

TEST_F(Menus, BlankItemsTakeNoNumber) {
  type("2\n");
  const Result r = menu({"Alpha", "", "Beta"}, 0);
  EXPECT_EQ(r.selection, 2);
  EXPECT_GT(rowShowing("2.  ... Beta"), rowShowing("1.  ... Alpha") + 1);
  EXPECT_EQ(rowShowing("3."), 0);
  EXPECT_GT(rowShowing("Select item number [1-2] ?"), 0);
}

TEST_F(Menus, WrongNumbersRedrawAfterTheError) {
  type("0\n\n4\n\n3\n");
  const Result r = menu({"A", "B", "C"}, 0);
  EXPECT_EQ(r.selection, 3);
  const std::string shown = output();
  EXPECT_EQ(occurrences(shown, "Input must be an integer number in [1-3]"), 2);
  EXPECT_EQ(occurrences(shown, "TEST MENU"), 3);
  EXPECT_FALSE(inputLeft());
}

TEST_F(Menus, MalformedAndSpecialAnswersRedrawWithoutTicking) {
  type("1 , 2\n#date\n\n2\n");
  const Result r = menu({"A", "B"}, 0);
  EXPECT_EQ(r.selection, 2);
  EXPECT_EQ(occurrences(output(), "TEST MENU"), 3);
  EXPECT_EQ(program().backupCounter, 1);  // only the valid answer counted
}

TEST_F(Menus, ClickOnARowSelectsItAndAClickElsewhereRedraws) {
  // Find where the rows stand by drawing once.
  type("\n");
  menu({"A", "", "B", "C"}, 1);
  const int rowB = rowShowing("2.  ... B");
  ASSERT_GT(rowB, 0);
  output();

  script(click(40, rowB));
  Result r = menu({"A", "", "B", "C"}, 1);
  EXPECT_EQ(r.selection, 2);
  EXPECT_FALSE(inputLeft());
  EXPECT_EQ(occurrences(output(), "TEST MENU"), 1);

  // The header box and an empty row are misses; then RETURN takes the default.
  script(click(40, 2) + click(5, rowB - 1) + "\n");
  r = menu({"A", "", "B", "C"}, 1);
  EXPECT_EQ(r.selection, 1);
  EXPECT_EQ(occurrences(output(), "TEST MENU"), 3);
}

TEST_F(Menus, EmptyAnswerTakesTheDefaultOrSaysThereIsNone) {
  type("\n\n3\n");
  Result r = menu({"A", "B", "C"}, 0);
  EXPECT_EQ(r.selection, 3);
  EXPECT_NE(output().find("No default value available\n"), std::string::npos);

  script("\n");
  r = menu({"A", "B", "C"}, 2);
  EXPECT_EQ(r.selection, 2);
  // A default inside the list stands between empty lines.
  const int row = rowShowing("2.  ... B");
  EXPECT_EQ(screen()[static_cast<std::size_t>(row - 2)], "");
  EXPECT_EQ(screen()[static_cast<std::size_t>(row)], "");
}

TEST_F(Menus, HelpAndAbort) {
  type("?\n\n?\n\n$\n");
  Result r = menu({"A"}, 0, "", 7);
  EXPECT_TRUE(r.abort);
  EXPECT_EQ(r.selection, 7);
  EXPECT_NE(output().find("No help available"), std::string::npos);

  script("?\n\n1\n");
  r = menu({"A"}, 0, "Pick one of the rows.");
  EXPECT_EQ(r.selection, 1);
  EXPECT_NE(output().find("Pick one of the rows.\n"), std::string::npos);
}

TEST_F(Menus, NarrowScreenRefusesTheMenu) {
  resize(21, 24);
  type("\n");
  Result r = menu({"A"}, 1, "", 5);
  EXPECT_TRUE(r.status);
  EXPECT_EQ(r.selection, 5);
  EXPECT_NE(output().find("Screen is to small to display menu"), std::string::npos);

  resize(22, 24);
  type("1\n");
  r = menu({"A"}, 1);
  EXPECT_FALSE(r.status);
  EXPECT_EQ(r.selection, 1);
}

TEST_F(Menus, AFullScreenOfItemsHasATopGapOfOne) {
  // L - 9 items fit, with one empty line under the header box.
  type("\n");
  Result r = menu(numberedItems(15), 15);
  EXPECT_FALSE(r.status);
  const std::vector<std::string> rows = screen();
  EXPECT_EQ(rows[3], "");
  EXPECT_EQ(rows[4], "                    1.  ... Item 1");
  EXPECT_EQ(rows[22], "Select item number [1-15] ?");

  type("\n");
  r = menu(numberedItems(16), 16);
  EXPECT_TRUE(r.status);
}

TEST_F(Menus, LongItemsAreCutToTheTextWidth) {
  type("1\n");
  menu({std::string(100, 'x')}, 0);
  // 80 columns: margin 20, text width 51.
  EXPECT_GT(rowShowing("... " + std::string(51, 'x')), 0);
  EXPECT_EQ(rowShowing(std::string(52, 'x')), 0);
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
  r.selection = 0;
  watchedSelection = &r.selection;
  type("2\n");
  TXMENU("TEST MENU", std::vector<std::string>{"A", "B"}, 1, "", r.abort, r.selection, r.status);
  watchedSelection = nullptr;
  EXPECT_EQ(backups, 1);
  EXPECT_EQ(selectionAtBackup, 1);  // still the preset default
  EXPECT_EQ(r.selection, 2);
  EXPECT_EQ(program().backupCounter, 0);
}

TEST_F(Menus, QuestionsTickTheSameClock) {
  backups = 0;
  callbacks().backup = &countBackup;
  program().backupInterval = 2;
  bool abort = false, status = false;
  type("1\n#?\n\n1\n1\n");
  for (int i = 1; i <= 3; ++i) ASKQST("Value?", "0", "", 1, abort, status);
  EXPECT_EQ(backups, 1);
  EXPECT_EQ(program().backupCounter, 0);
}

class Questions : public Menus {};

TEST_F(Questions, QuestionAndDefaultLines) {
  type("5\n");
  bool abort = true, status = true;
  ASKQST("Input number of points?", "10", "", 1, abort, status);
  EXPECT_FALSE(abort);
  EXPECT_FALSE(status);
  const std::vector<std::string> rows = screen();
  EXPECT_EQ(rows[21], "Input number of points?");
  EXPECT_EQ(rows[22], "(default 10)");
  int value[1] = {10};
  bool deflt = true;
  GTINTV(value, deflt, status);
  EXPECT_EQ(value[0], 5);
}

TEST_F(Questions, NoDefaultSaysSoAndAsksAgain) {
  type("\n\n7\n");
  bool abort = false, status = false;
  ASKQST("Input number?", "", "", 1, abort, status);
  const std::string shown = output();
  EXPECT_NE(shown.find("(no default)\n"), std::string::npos);
  EXPECT_NE(shown.find("No default values available\n"), std::string::npos);
  EXPECT_EQ(occurrences(shown, "Input number?"), 2);
  EXPECT_FALSE(inputLeft());
}

TEST_F(Questions, HelpAbortAndABlankQuestion) {
  type("?\n\n$\n");
  bool abort = false, status = false;
  ASKQST("Input number?", "1", "Any whole number.", 1, abort, status);
  EXPECT_TRUE(abort);
  EXPECT_NE(output().find("Any whole number.\n"), std::string::npos);

  type("\n");
  ASKQST("   ", "1", "", 1, abort, status);
  EXPECT_TRUE(status);
  EXPECT_NE(output().find("No question text available"), std::string::npos);
}

TEST_F(Questions, ExitConfirmation) {
  SCOPED_TRACE("RETURN alone means no");
  program().SPNAME = "KNTR";
  type("\n");
  bool answer = true;
  OKEXIT(false, answer);
  EXPECT_FALSE(answer);
  std::string shown = output();
  EXPECT_NE(shown.find("OK to EXIT module ** KNTR ** ? (yes/no)\n(default NO)\n"),
            std::string::npos);

  type("maybe\n\nyes\n");
  OKEXIT(true, answer);
  EXPECT_TRUE(answer);
  shown = output();
  EXPECT_NE(shown.find("OK to EXIT module ** KNTR ** WITHOUT storing modified data? (yes/no)\n"),
            std::string::npos);
  EXPECT_NE(shown.find("Input must be yes/no, true/false, 1/0"), std::string::npos);

  type("$\n");
  OKEXIT(false, answer);
  EXPECT_FALSE(answer);
}

TEST_F(Questions, LoadAndResetConfirmations) {
  program().SPNAME = "KNTR";
  type("?\n\ny\n");
  bool answer = false;
  OKLOAD(false, answer);
  EXPECT_TRUE(answer);
  std::string shown = output();
  EXPECT_NE(shown.find("OK to load KNTR data without saving current data? (yes/no)\n(default no)"),
            std::string::npos);
  EXPECT_NE(shown.find("Loading KNTR data destroys current data!\n"), std::string::npos);

  type("?\n\nn\n");
  OKRSET(answer);
  EXPECT_FALSE(answer);
  shown = output();
  EXPECT_NE(shown.find("OK to reset module ** KNTR ** ? (yes/no)\n(default no)"),
            std::string::npos);
  EXPECT_NE(shown.find("No help available"), std::string::npos);
}

int questionsAsked = 0;
void pickThenType(std::string_view, std::string_view, std::string_view, int expected, bool& picked,
                  bool& abort, bool& status) {
  ++questionsAsked;
  picked = questionsAsked == 1;
  abort = false;
  status = false;
  if (!picked) {
    Answer answer;
    RDPROM(expected, answer, status);
  }
}

TEST_F(Questions, GraphicLoadConfirmationTakesOnlyKeys) {
  questionsAsked = 0;
  graphicDialogues().GQUEST = &pickThenType;
  type("\nyes\n");  // RETURN after the error, then the typed answer
  bool answer = false;
  OKLOAD(true, answer);
  EXPECT_TRUE(answer);
  EXPECT_EQ(questionsAsked, 2);
  EXPECT_NE(output().find("Only keyboard input is allowed!"), std::string::npos);
}

TEST_F(Questions, GraphicConfirmationFallsBackToTheConsole) {
  type("y\n");
  bool answer = false;
  OKLOAD(true, answer);
  EXPECT_TRUE(answer);
}

TEST(ToggleRows, StateTexts) {
  EXPECT_EQ(logicalStateText(true), "ON/off");
  EXPECT_EQ(logicalStateText(false), "on/OFF");
}

}  // namespace
}  // namespace kntr::framework
