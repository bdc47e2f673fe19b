// Menus, questions and confirmations of the text family.
//
//   TXMENU  full-screen numbered menu; returns the selection
//   ASKQST  put a question with its default and read one answer line
//   PRHELP  show a help text and wait
//   OKLOAD  "OK to load ... without saving current data?"
//   OKRSET  "OK to reset module ** KNTR ** ?"
//   OKEXIT  "OK to EXIT module ** KNTR ** ?"
//
// A menu is a list of fixed-length rows. A blank row is a spacer and takes no
// number. The default row is highlighted; a default of n + 1 adds a RETURN row.
// Every answer that is not a special command or an error ticks the backup
// clock, and at the configured interval the module's backup runs first.
//
// The graphic family (GITEMS, GQUEST) works in the graphics window and comes
// with it: the window installs its routines in graphicDialogues(). Until then
// a question meant for the window is put on the console.
#pragma once

#include <span>
#include <string>
#include <string_view>

namespace kntr::framework {

// Narrowest screen a menu's header box fits on.
inline constexpr int MenuBoxWidth = 22;
// Narrowest item text a menu can show.
inline constexpr int MinimumMenuText = 6;
// Lines of a menu screen besides the rows: header box, gaps, prompt.
inline constexpr int MenuFrameLines = 9;

// TXMENU: show `items` under `title` and read a selection. `deflt` is 0 (no
// default), 1..n (that row, counting blank rows), or n + 1 (a RETURN row).
// `selection` is the number chosen, counting only the rows that are not
// blank. `abort` is set by "$". status is set when the screen is too small
// for the menu; the selection is then unchanged.
void TXMENU(std::string_view title, std::span<const std::string> items, int deflt,
            std::string_view help, bool& abort, int& selection, bool& status);

// After a special command that replaced the module's data (#LOAD, #RESET,
// #PROJECT) TXMENU returns with selection 0 instead of showing its rows
// again, so that the caller leaves or rebuilds an outdated menu.
void noteDataReplaced();

// ASKQST: ask `question`, showing `deflt` as the default ("(no default)"
// when blank), and read one line of `expected` fields. Help and special
// commands are handled inside; the values are fetched afterwards with the
// GT routines. status is set only for a blank question.
void ASKQST(std::string_view question, std::string_view deflt, std::string_view help, int expected,
            bool& abort, bool& status);

// PRHELP: show a help text on a clear screen and wait for RETURN; a blank
// text gets "No help available".
void PRHELP(std::string_view help);

// OKLOAD: the load confirmation; `graphic` asks in the graphics window.
void OKLOAD(bool graphic, bool& answer);
// OKRSET: the reset confirmation.
void OKRSET(bool& answer);
// OKEXIT: the exit confirmation; the question depends on `modified`.
void OKEXIT(bool modified, bool& answer);

// A yes/no question: `answer` is preset to `deflt` (shown as `defaultText`),
// asked again on a word that is not yes or no. `cancelled` is set by "$"
// (the answer is then false). `graphic` asks in the graphics window, where
// only keyboard input counts.
void askYesNo(std::string_view question, bool deflt, std::string_view defaultText,
            std::string_view help, bool graphic, bool& answer, bool& cancelled);

// Ticks the backup clock after an answer, running the module's backup when
// the counter has reached the interval.
void tickBackupClock();

// The state text of a toggle row: "ON/off" or "on/OFF".
std::string logicalStateText(bool on);

// The graphic family, installed by the graphics window.
struct GraphicDialogues {
  // GITEMS: draw the graphic menu `heading` with its items.
  void (*GITEMS)(std::string_view heading, std::span<const std::string> items) = nullptr;
  // GQUEST: as ASKQST, in the graphics window; `picked` is set when the
  // answer was a pick or a position instead of keyboard input.
  void (*GQUEST)(std::string_view question, std::string_view deflt, std::string_view help,
                 int expected, bool& picked, bool& abort, bool& status) = nullptr;
};
GraphicDialogues& graphicDialogues();

}  // namespace kntr::framework
