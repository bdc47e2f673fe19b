#include "framework/menus.h"

#include <algorithm>
#include <array>
#include <vector>

#include "framework/format.h"
#include "framework/input.h"
#include "framework/state.h"
#include "framework/text.h"

namespace kntr::framework {

namespace {

bool blank(std::string_view text) {
  return fmt::trimmed(text).find_first_not_of(' ') == std::string_view::npos;
}

std::string blanks(int count) {
  return std::string(static_cast<std::size_t>(std::max(0, count)), ' ');
}

std::string cut(std::string_view text, int width) {
  text = fmt::trimmed(text);
  return std::string(text.substr(0, static_cast<std::size_t>(std::max(0, width))));
}

int digitsOf(int number) {
  int digits = 1;
  for (int v = number; v >= 10; v /= 10) ++digits;
  return digits;
}

// "name/version", or "?" when there is neither.
std::string identity(std::string_view name, std::string_view version) {
  if (blank(name) && blank(version)) return "?";
  return std::string(fmt::trimmed(name)) + "/" + std::string(fmt::trimmed(version));
}

// The three-line header box: package, title, module.
std::string headerBox(std::string_view title, int columns) {
  const ProgramState& p = program();
  const int w = columns - MenuBoxWidth;
  const int outer = w / 3 - 1;              // the outer cells
  const int middle = w - 2 * (w / 3) + 13;  // the title's cell
  const std::string left = cut(identity(p.packageName, p.packageVersion), outer);
  const std::string right = cut(identity(p.SPNAME, p.SPVERS), outer);
  const std::string name = cut(blank(title) ? "?" : title, middle);
  const int length = static_cast<int>(name.size());
  const int leftPad = (middle - length) / 2 + 1;
  const int rightPad = middle - length - (middle - length) / 2 + 1;
  const std::string rule = "+" + std::string(static_cast<std::size_t>(columns - 3), '-') + "+";
  return "{cst{cya" + rule + "{nwl! {yel" + left +
         blanks(outer + 1 - static_cast<int>(left.size())) + "{cya!" + blanks(leftPad) + "{yel" +
         name + blanks(rightPad) + "{cya!" + blanks(outer + 1 - static_cast<int>(right.size())) +
         "{yel" + right + "{cya !{nwl" + rule;
}

// `count` blank lines in one text; a single one as a blank.
void gap(int count) {
  if (count <= 0) return;
  OUTSCN(count == 1 ? std::string(" ") : fmt::repeat("{nwl", count - 1));
}

// "k." and the blanks that line up the dots behind it.
std::string number(int k) {
  return fmt::I(k, digitsOf(k)) + "." + (k < 10 ? "  " : " ");
}

}  // namespace

void tickBackupClock() {
  ProgramState& p = program();
  if (p.backupCounter >= p.backupInterval) {
    // The counter goes back first, so that a backup which asks a question
    // does not start another.
    p.backupCounter = 0;
    if (callbacks().backup) {
      bool status = false;
      callbacks().backup(status);
    }
  } else {
    ++p.backupCounter;
  }
}

void PRHELP(std::string_view help) {
  if (blank(help)) {
    NOHELP();
    return;
  }
  PUTSCN("{csb" + std::string(fmt::trimmed(help)));
  WTRETN();
}

namespace {
bool& rowsOutdated() {
  static bool outdated = false;
  return outdated;
}
}  // namespace

void noteDataReplaced() { rowsOutdated() = true; }

void TXMENU(std::string_view title, std::span<const std::string> items, int deflt,
            std::string_view help, bool& abort, int& selection, bool& status) {
  status = false;
  abort = false;
  rowsOutdated() = false;
  const int columns = program().screenColumns;
  const int lines = program().screenLines;
  const int n = static_cast<int>(items.size());

  // Horizontal layout: margin and item text width.
  const int margin = columns / 4;
  const int width = columns - margin - 9;
  if (columns < MenuBoxWidth || width < MinimumMenuText || lines - MenuFrameLines < n) {
    fail("Screen is to small to display menu", status);
    return;
  }

  // Vertical balance: a default inside the list has a blank line on each
  // side, one at either end has one, and no default has none.
  const int g = (lines - MenuFrameLines - n) / 2;
  int top = g + 1;
  int bottom = lines - n - top - 7;
  if (deflt == 0) {
    top = g + 2;
    bottom = lines - n - (g + 1) - 6;
  } else if (deflt == 1 || deflt == n) {
    bottom = lines - n - (g + 1) - 6;
  }

  int numbered = 0;
  for (const std::string& item : items)
    if (!blank(item)) ++numbered;
  const bool returnRow = deflt == n + 1;
  const int highest = numbered + (returnRow ? 1 : 0);
  const std::string highestText = fmt::I(highest, digitsOf(highest));

  // Screen row (1-based) of each number; valid for this call only.
  std::vector<int> rowOf(static_cast<std::size_t>(highest) + 1, 0);

  for (;;) {
    OUTSCN(headerBox(title, columns));
    gap(top);
    int row = 3 + top;  // lines written so far
    int k = 0;
    for (int i = 1; i <= n; ++i) {
      const std::string& item = items[static_cast<std::size_t>(i - 1)];
      if (blank(item)) {
        OUTSCN("");
        ++row;
        continue;
      }
      ++k;
      const bool isDefault = i == deflt;
      if (isDefault && i != 1) {
        OUTSCN("");
        ++row;
      }
      OUTSCN(blanks(margin) + (isDefault ? "{gre" : "{cya") + number(k) + "... " +
             cut(item, width));
      ++row;
      rowOf[static_cast<std::size_t>(k)] = row;
      if (isDefault) {
        selection = k;
        if (i != n) {
          OUTSCN("");
          ++row;
        }
      }
    }
    if (returnRow) {
      ++k;
      OUTSCN("{nwl" + blanks(margin) + "{gre" + number(k) + "... RETURN");
      row += 2;
      rowOf[static_cast<std::size_t>(k)] = row;
      selection = k;
    }
    gap(bottom);
    OUTSCN("{yelSelect item number [1-" + highestText + "] ?");

    Answer answer;
    bool error = false;
    RDLINE(1, answer, error);
    if (answer.click) {
      for (int j = 1; j <= highest; ++j) {
        if (rowOf[static_cast<std::size_t>(j)] == answer.clickRow) {
          selection = j;
          return;
        }
      }
    }
    if (!answer.special && !error) tickBackupClock();
    if (answer.special && rowsOutdated()) {
      // The command replaced the data the rows describe: the caller builds
      // the menu anew.
      rowsOutdated() = false;
      selection = 0;
      return;
    }
    if (answer.click || answer.special || error) continue;
    if (answer.abort) {
      abort = true;
      return;
    }
    if (answer.help) {
      PRHELP(help);
      continue;
    }
    if (answer.deflt) {
      if (deflt == 0) {
        ERRSCN("No default value available");
        continue;
      }
      return;
    }
    std::array<int, 1> value{0};
    bool none = false;
    GTINTV(value, none, error);
    if (error) continue;
    if (value[0] >= 1 && value[0] <= highest) {
      selection = value[0];
      return;
    }
    ERRSCN("Input must be an integer number in [{yel1-" + highestText + "{red]");
  }
}

void ASKQST(std::string_view question, std::string_view deflt, std::string_view help, int expected,
            bool& abort, bool& status) {
  status = false;
  abort = false;
  if (blank(question)) {
    fail("No question text available", status);
    return;
  }
  const std::string text(fmt::trimmed(question));
  const bool hasDefault = !blank(deflt);
  const std::string defaultText =
      hasDefault ? "{gre(default " + std::string(fmt::trimmed(deflt)) + ")" : "{gre(no default)";
  for (;;) {
    PUTSCN("{csb{yel" + text);
    PUTSCN(defaultText);
    Answer answer;
    bool error = false;
    RDPROM(expected, answer, error);
    if (answer.help) {
      PRHELP(help);
      continue;
    }
    if (!error && answer.deflt && !hasDefault) {
      ERRSCN("No default values available");
      continue;
    }
    if (error || answer.special) continue;
    abort = answer.abort;
    break;
  }
  tickBackupClock();
}

namespace {

std::string moduleName() {
  return std::string(fmt::trimmed(program().SPNAME));
}

}  // namespace

void askYesNo(std::string_view question, bool deflt, std::string_view defaultText,
            std::string_view help, bool graphic, bool& answer, bool& cancelled) {
  cancelled = false;
  for (;;) {
    bool abort = false;
    bool status = false;
    if (graphic && graphicDialogues().GQUEST) {
      bool picked = false;
      graphicDialogues().GQUEST(question, defaultText, help, 1, picked, abort, status);
      if (picked) {
        ERRSCN("Only keyboard input is allowed!");
        continue;
      }
    } else {
      ASKQST(question, defaultText, help, 1, abort, status);
    }
    if (abort || status) {
      answer = false;
      cancelled = abort;
      return;
    }
    std::array<bool, 1> value{deflt};
    bool none = false;
    GTLOGV(value, none, status);
    if (status) continue;
    answer = value[0];
    return;
  }
}

namespace {

// The confirmations: preset no; abort means no.
void confirm(const std::string& question, std::string_view deflt, std::string_view help,
             bool graphic, bool& answer) {
  bool cancelled = false;
  askYesNo(question, false, deflt, help, graphic, answer, cancelled);
}

}  // namespace

void OKLOAD(bool graphic, bool& answer) {
  confirm("OK to load KNTR data without saving current data? (yes/no)", "no",
          "Loading KNTR data destroys current data!", graphic, answer);
}

void OKRSET(bool& answer) {
  confirm("OK to reset module ** {gre" + moduleName() + "{yel ** ? (yes/no)", "no", "", false,
          answer);
}

void OKEXIT(bool modified, bool& answer) {
  const std::string head = "OK to EXIT module ** {gre" + moduleName();
  confirm(modified ? head + "{yel ** WITHOUT storing modified data? (yes/no)"
                   : head + "{yel ** ? (yes/no)",
          "NO", "", false, answer);
}

std::string logicalStateText(bool on) {
  return on ? "ON/off" : "on/OFF";
}

GraphicDialogues& graphicDialogues() {
  static GraphicDialogues dialogues;
  return dialogues;
}

}  // namespace kntr::framework
