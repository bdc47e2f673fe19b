#include "framework/tables.h"

#include <algorithm>
#include <string>

#include "framework/format.h"
#include "framework/printers.h"
#include "framework/state.h"
#include "framework/text.h"

namespace kntr::framework {

namespace {

// Lines that a screen page needs besides its block: SCROLL keeps four.
constexpr int ScreenReserve = 4;
// Lines of a later page's head on a printer: the head line and its gap.
constexpr int LaterHeadLines = 1 + BlockGapLines;

struct Table {
  bool active = false;
  bool printer = false;
  std::string head, foot;
  int rows = 0;       // rows the table was started with
  int firstRows = 0;  // rows on the first page
  int pageRows = 0;   // rows on each later page
  int lastPage = 1;
  int currentPage = 1;
  int nextRow = 1;   // next row of the current page to hand out
  std::string body;  // the rows of the current page given so far
};

Table& table() {
  static Table t;
  return t;
}

int firstRowOf(const Table& t, int page) {
  return page <= 1 ? 1 : t.firstRows + (page - 2) * t.pageRows + 1;
}

int lastRowOf(const Table& t, int page) {
  const int last = page <= 1 ? t.firstRows : t.firstRows + (page - 1) * t.pageRows;
  return std::min(last, t.rows);
}

bool printerTarget() {
  const int target = program().listingTarget;
  return (target == TargetSystemPrinter || target == TargetFilePrinter) && printerState().open;
}

}  // namespace

void IZTABL(std::string_view head, std::string_view foot, int rows, bool& status) {
  status = false;
  Table& t = table();
  t = Table{};
  t.head = std::string(fmt::trimmed(head));
  t.foot = std::string(fmt::trimmed(foot));
  t.rows = std::max(0, rows);
  const int frame = CNTLIN(t.head) + CNTLIN(t.foot);
  t.printer = printerTarget();
  if (t.printer) {
    const int page = printerPageLength();
    t.pageRows = page - LaterHeadLines - frame - BlockGapLines;
    if (t.pageRows < 1) {
      fail("Attempt to exceed number of lines on printer{nwl{gre(maximum is " + fmt::I(page, 4) +
             ")", status);
      return;
    }
    // The first page takes what is left of the printer's page.
    t.firstRows = printerLinesLeft() - frame - BlockGapLines;
    if (t.firstRows < 1) t.firstRows = t.pageRows;
  } else {
    const int lines = program().screenLines;
    t.pageRows = lines - ScreenReserve - frame;
    if (t.pageRows < 1) {
      fail("Attempt to exceed number of lines on screen{nwl{gre(maximum is " + fmt::I(lines, 4) +
             ")", status);
      return;
    }
    t.firstRows = t.pageRows;
    scrollRow() = 1;
  }
  t.lastPage = t.rows <= t.firstRows ? 1 : 1 + (t.rows - t.firstRows + t.pageRows - 1) / t.pageRows;
  t.active = true;
}

void GTTROW(int rows, int& row, bool& done) {
  Table& t = table();
  row = 0;
  done = true;
  if (!t.active) return;
  for (;;) {
    const int last = std::min(lastRowOf(t, t.currentPage), rows);
    if (t.nextRow <= last) {
      row = t.nextRow++;
      done = false;
      return;
    }
    // The page is complete: out it goes.
    const std::string block = t.head + t.body + "{nwl" + t.foot;
    t.body.clear();
    bool stop = false;
    SCROLL(block, t.lastPage, t.currentPage, stop);
    // A block the screen cannot hold is refused by SCROLL with a message;
    // the table ends there rather than offer it again.
    const bool refused = !t.printer && CNTLIN(block) + ScreenReserve > program().screenLines;
    if (stop || refused || printJobFailed() || (t.printer && !printerState().open)) {
      t.active = false;
      return;
    }
    t.currentPage = std::clamp(t.currentPage, 1, t.lastPage);
    t.nextRow = firstRowOf(t, t.currentPage);
  }
}

void PTTROW(std::string_view text) {
  Table& t = table();
  if (!t.active) return;
  t.body += "{nwl";
  t.body += fmt::trimmed(text);
}

}  // namespace kntr::framework
