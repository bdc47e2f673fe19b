#include "framework/text.h"

#include <cctype>
#include <cstdlib>
#include <utility>

#include "framework/format.h"
#include "framework/startup.h"
#include "framework/state.h"
#include "platform/console.h"

namespace kntr::framework {

namespace WinConF = platform::WinConF;

namespace {

bool significant(unsigned char c) { return c >= 32 && c <= 127; }

// The console's line buffer: text collects here until a colour or a line
// token sends it out in one write.
struct LineBuffer {
  std::string text;
  void flush() {
    if (!text.empty()) WinConF::putString(text);
    text.clear();
  }
  void flushLine() {
    text.push_back('\n');
    WinConF::putString(text);
    text.clear();
  }
  void append(std::string_view piece) {
    if (static_cast<int>(text.size() + piece.size()) > LineBufferLength) flush();
    text.append(piece);
  }
};

LineBuffer& lineBuffer() {
  static LineBuffer buffer;
  return buffer;
}

void colour(int number) {
  lineBuffer().flush();
  WinConF::setColor(number, 0);
}

// Acts on one console token; unknown tokens are dropped without a trace.
void consoleToken(const std::string& t) {
  LineBuffer& b = lineBuffer();
  if (t == "CSB") {
    WinConF::clearScreen();
    WinConF::setLowerLeft();
  } else if (t == "CST") {
    WinConF::clearScreen();
    WinConF::setUpperLeft();
  } else if (t == "BLU") {
    colour(2);
  } else if (t == "BLA") {
    colour(1);
  } else if (t == "GRE") {
    colour(3);
  } else if (t == "WHI") {
    colour(8);
  } else if (t == "YEL") {
    colour(7);
  } else if (t == "RED") {
    colour(5);
  } else if (t == "CYA") {
    colour(4);
  } else if (t == "MAG" || t == "NAY" || t == "NIY") {
    colour(6);
  } else if (t == "NWL") {
    b.flushLine();
  } else if (t == "NWM") {
    b.append("->");
  } else if (t == "CRS" || t == "LLC" || t == "LRC" || t == "ULC" || t == "URC" ||
             t == "TDN" || t == "TLF" || t == "TRG" || t == "TUP") {
    b.append("+");
  } else if (t == "HLN") {
    b.append("-");
  } else if (t == "VLN") {
    b.append("!");
  }
}

// n blank lines, as one text.
void blankLines(int n) {
  if (n <= 0) return;
  if (n == 1)
    OUTSCN(" ");
  else
    OUTSCN(fmt::repeat("{nwl", n - 1));
}

bool printerTarget() {
  int t = program().listingTarget;
  return (t == TargetSystemPrinter || t == TargetFilePrinter) && printerHooks().printText;
}

// Up to two blank lines after a printed block, as many as the page holds.
// A printed text ends with a line end of its own, so "{nwl" gives two.
void printerGap(PrinterHooks& printer) {
  const int left = printer.linesLeft ? printer.linesLeft() : 2;
  if (left >= 2)
    printer.printText("{nwl");
  else if (left == 1)
    printer.printText(" ");
}

int& rowCounter() {
  static int row = 1;
  return row;
}

}  // namespace

int NXTOKN(std::string_view text, int& position, bool& ended, std::string& item) {
  const int length = static_cast<int>(text.size());
  item.clear();
  if (ended) return ItemEnd;
  auto at = [&](int p) { return static_cast<unsigned char>(text[static_cast<std::size_t>(p - 1)]); };
  // Skip bytes that are not significant where a new item begins.
  while (position <= length && !significant(at(position))) ++position;
  if (position > length) return ItemEnd;
  if (at(position) == '{') {
    if (position + 1 <= length && at(position + 1) == '{') {
      position += 2;
      return ItemBrace;
    }
    if (position + 3 <= length) {
      for (int k = 1; k <= 3; ++k)
        item.push_back(static_cast<char>(std::toupper(at(position + k))));
      position += 4;
      return ItemToken;
    }
    // A brace with too few characters behind it matches no rule.
    platform::writeStandardOutput(" illegal token in position" + fmt::I(position, 12) + "\n");
    ended = true;
    return ItemEnd;
  }
  int start = position;
  while (position <= length && at(position) != '{') ++position;
  item.assign(text.substr(static_cast<std::size_t>(start - 1),
                          static_cast<std::size_t>(position - start)));
  return ItemText;
}

void OUTSCN(std::string_view text) {
  text = fmt::trimmed(text);
  LineBuffer& b = lineBuffer();
  int position = 1;
  bool ended = false;
  std::string item;
  for (;;) {
    int kind = NXTOKN(text, position, ended, item);
    if (kind == ItemEnd) break;
    if (kind == ItemToken)
      consoleToken(item);
    else if (kind == ItemBrace)
      b.append("{");
    else
      b.append(item);
  }
  b.flushLine();
}

void PUTSCN(std::string_view text) {
  const int length = fmt::trimmedLength(text);
  if (length > MaxShownText) {
    ERRSCN("csb{redMaximum number of characters exceeded in subroutine PUTSCN{nwl{gre(maximum is " +
           fmt::I(MaxShownText, 4) + ")");
    return;
  }
  std::string work = "{yel";
  work.append(text.substr(0, static_cast<std::size_t>(length)));
  OUTSCN(work);
}

void ERRSCN(std::string_view text) {
  logEntry(LogErrors, "error", text);
  if (program().outputDevice == DeviceGraphics && graphicsTextHooks().errorBox) {
    graphicsTextHooks().errorBox(text);
    return;
  }
  std::string work = "{bel{csb{red";
  work.append(fmt::trimmed(text));
  PUTSCN(work);
  WTRETN();
}

void fail(std::string_view text, bool& status) {
  ERRSCN(text);
  status = true;
}

void PRMESG(std::string_view text) {
  logEntry(LogMessagesAndInputs, "message", text);
  if (program().outputDevice == DeviceGraphics && graphicsTextHooks().messageBox) {
    graphicsTextHooks().messageBox(text);
    return;
  }
  std::string work = "{csb{gre";
  work.append(fmt::trimmed(text));
  PUTSCN(work);
  WTRETN();
}

void WTRETN() {
  ProgramState& p = program();
  if (p.outputDevice == DeviceGraphics && graphicsTextHooks().waitKey) {
    graphicsTextHooks().waitKey();
    return;
  }
  if (p.executionMode == ModeBatch) {
    OUTSCN("{nwl{nwl{nwl");
    return;
  }
  OUTSCN("{nwl{nwl{yelTo continue press {greRETURN");
  WinConF::setLowerLeft();
  int button = 0, column = 0, row = 0, length = 0;
  std::string line;
  do {
    WinConF::getStrMouse(button, column, row, length, line);
  } while (button != 0 && button != 2);
  WinConF::setLowerLeft();
  OUTSCN("{csb");
}

int CNTLIN(std::string_view text) {
  int count = 1;
  int position = 1;
  bool ended = false;
  std::string item;
  for (;;) {
    int kind = NXTOKN(text, position, ended, item);
    if (kind == ItemEnd) break;
    if (kind == ItemToken && item == "NWL") ++count;
  }
  return count;
}

void PRPAGE(std::string_view text) {
  const int n = CNTLIN(text);
  if (n == 0) return;
  if (printerTarget()) {
    PrinterHooks& printer = printerHooks();
    const int page = printer.pageLength ? printer.pageLength() : 66;
    if (n + 3 > page) {
      ERRSCN("Attempt to exceed number of lines on printer{nwl{gre(maximum is " + fmt::I(page, 4) +
             ")");
      return;
    }
    if (printer.linesLeft && n > printer.linesLeft() && printer.newPage) printer.newPage();
    printer.printText(text);
    printerGap(printer);
    return;
  }
  const int lines = program().screenLines;
  if (n + 3 > lines) {
    ERRSCN("Attempt to exceed number of lines on screen{nwl{gre(maximum is " + fmt::I(n, 4) + ")");
    return;
  }
  std::string work = "{cst{yel";
  work.append(text);
  OUTSCN(work);
  blankLines(lines - n - 4);
  WTRETN();
}

int& scrollRow() { return rowCounter(); }

void SCROLL(std::string_view text, int lastPage, int& currentPage, bool& status) {
  status = false;
  const int n = CNTLIN(text);
  int& row = rowCounter();
  if (printerTarget()) {
    PrinterHooks& printer = printerHooks();
    if (printer.linesLeft && n > printer.linesLeft() && printer.newPage) printer.newPage();
    printer.printText(text);
    ++currentPage;
    printerGap(printer);
    if (currentPage > lastPage) status = true;
    return;
  }
  const int lines = program().screenLines;
  if (n + 4 > lines) {
    ERRSCN("Attempt to exceed number of lines on screen");
    return;
  }
  const bool fits = (row == 1) ? (n + 3 <= lines) : (n + row + 5 <= lines);
  if (fits) {
    std::string work = (row == 1) ? "{cst{yel" : "{yel";
    work.append(text);
    OUTSCN(work);
    if (currentPage != lastPage) {
      OUTSCN("{nwl");
      ++currentPage;
      row += n + 2;
      return;
    }
    row += n;
  } else {
    currentPage = std::max(1, currentPage - 1);
  }
  // The paging question below a fill of blank lines to the screen's end.
  blankLines(lines - row - 1);
  int code = 0, value = 0;
  SCRINP(code, value);
  if (code == 0) {
    status = true;
    row = 1;
    return;
  }
  row = 1;
  switch (code) {
    case 1: currentPage = std::min(currentPage + 1, lastPage); break;
    case 2: currentPage = std::max(1, currentPage - lines / std::max(1, n)); break;
    case 3: currentPage = std::min(currentPage + value, lastPage); break;
    case 4: currentPage = std::max(currentPage - value, lastPage); break;
    case 5: currentPage = std::max(1, std::min(value, lastPage)); break;
    default: break;
  }
}

void SCRINP(int& code, int& value) {
  code = 0;
  value = 0;
  for (;;) {
    OUTSCN("{nwl{nwl{yelInput +, -, NNN, +NNN, -NNN or <R> to quit ?");
    WinConF::setLowerLeft();
    int button = 0, column = 0, row = 0, length = 0;
    std::string line;
    do {
      WinConF::getStrMouse(button, column, row, length, line);
    } while (button != 0 && button != 2);
    if (button == 2) line.clear();
    std::string_view answer = fmt::trimmed(line);
    while (!answer.empty() && answer.front() == ' ') answer.remove_prefix(1);
    if (answer.empty()) return;
    if (answer == "+") {
      code = 1;
      return;
    }
    if (answer == "-") {
      code = 2;
      return;
    }
    char sign = 0;
    if (answer.front() == '+' || answer.front() == '-') {
      sign = answer.front();
      answer.remove_prefix(1);
    }
    bool digits = !answer.empty() && answer.size() <= 9;
    for (char c : answer) digits = digits && std::isdigit(static_cast<unsigned char>(c));
    if (digits) {
      value = std::atoi(std::string(answer).c_str());
      code = sign == '+' ? 3 : (sign == '-' ? 4 : 5);
      return;
    }
    ERRSCN("Input must be either +, -, NNN, +NNN, -NNN or <R> to quit ?");
  }
}

std::string literal(std::string_view text) {
  std::string out;
  for (char c : text) {
    out.push_back(c);
    if (c == '{') out.push_back('{');
  }
  return out;
}

std::string ioStatusReason(int s) {
  const char* reason = nullptr;
  switch (s) {
    case 900: reason = "Error in format)"; break;
    case 901: reason = "Negative unit number specified)"; break;
    case 902: reason = "Formatted I/O attempted on unformatted file)"; break;
    case 903: reason = "Unformatted I/O attempted on formatted file)"; break;
    case 904: reason = "Direct I/O attempted on sequential file)"; break;
    case 905: reason = "Error in list-directed read of logical data)"; break;
    case 907: reason = "Error in list-directed I/O read of character data)"; break;
    case 908: reason = "Could not open file specified)"; break;
    case 909: reason = "Sequential I/O attempted on direct access file)"; break;
    case 910: reason = "Access past end of record attempted)"; break;
    case 912: reason = "Error in list I/O read of complex data)"; break;
    case 913: reason = "Out of free space)"; break;
    case 914: reason = "Access of unconnected unit attempted)"; break;
    case 915: reason = "Read unexpected character)"; break;
    case 916: reason = "Error in read of logical data)"; break;
    case 917: reason = "Open with named scratch file attempted)"; break;
    case 918: reason = "Open of existing file with STATUS='NEW' attempted)"; break;
    case 920: reason = "Open of file connected to different unit attempted)"; break;
    case 921: reason = "Unformatted open with BLANK specifier attempted)"; break;
    case 922: reason = "Read on illegal record attempted)"; break;
    case 923: reason = "Open with illegal FORM specifier attempted)"; break;
    case 924: reason = "Close of scratch file with STATUS='KEEP' attempted)"; break;
    case 925: reason = "Open with illegal STATUS specifier attempted)"; break;
    case 926: reason = "Close with illegal STATUS specifier attempted)"; break;
    case 927: reason = "Open with illegal ACCESS specifier attempted)"; break;
    case 929: reason = "Open of direct file with no RECL specifier attempted)"; break;
    case 930: reason = "Open with RECL less than 1 attempted)"; break;
    case 931: reason = "Open with illegal BLANK specifier attempted)"; break;
    case 933: reason = "Sequential end-of-file with no END= specifier)"; break;
    case 937: reason = "Illegal record number specified)"; break;
    case 942:
      reason = "Error in list-directed read - character data read for assignment to noncharacter data";
      break;
    case 944: reason = "Record too long in direct unformatted I/O"; break;
    case 945: reason = "Error in formatted I/O)"; break;
    case 950: reason = "Subscript, substring or parameter out of bounds at statement number nnn)"; break;
    case 951: reason = "Label out of bounds in assigned GOTO at statement number nnn)"; break;
    case 952: reason = "Zero increment in DO loop at statement number nnn)"; break;
    case 953: reason = "No repeatable format descriptor in format string)"; break;
    case 954: reason = "Illegal use of empty format)"; break;
    case 955: reason = "Open with no FILE= and STATUS='OLD' or 'NEW' attempted)"; break;
    case 956: reason = "File system error)"; break;
    case 957: reason = "Format descriptor incompatible with numeric item in I/O list)"; break;
    case 958: reason = "Format descriptor incompatible with character item in I/O list)"; break;
    case 959: reason = "Format descriptor incompatible with logical item in I/O list)"; break;
    case 960: reason = "Format error: Missing starting left parenthesis)"; break;
    case 961: reason = "Format error: Invalid format descriptor)"; break;
    case 962:
      reason = "Unexpected character found following a number in the{nwlformat string)";
      break;
    case 963: reason = "Format error: Trying to scale unscalable format  specifier)"; break;
    case 964: reason = "Format error: Parenthesis too deeply nested)"; break;
    case 965: reason = "Format error: Invalid tab specifier)"; break;
    case 966: reason = "Format error: Invalid blank specifier)"; break;
    case 967: reason = "Format error: Specifier expected but end of format found)"; break;
    case 968: reason = "Format error: Missing separator)"; break;
    case 969: reason = "Format error: Digit expected)"; break;
    case 970: reason = "Format error: Period expected in floating point format descriptor)"; break;
    case 971: reason = "Format error: Unbalanced parantheses)"; break;
    case 972: reason = "Format error: Invalid string in format)"; break;
    case 973: reason = "Record length different in subsequent OPEN)"; break;
    case 974: reason = "Record accessed past end of internal file record (variable))"; break;
    case 975: reason = "Illegal new file number requested in fset function)"; break;
    case 976: reason = "Unexpected character in \"NAMELIST\" read)"; break;
    case 977: reason = "Illegal subscript or substring in \"NAMELIST\" read)"; break;
    case 978: reason = "Too many values in \"NAMELIST\" read)"; break;
    case 979: reason = "Variable not in \"NAMELIST\" group)"; break;
    case 980: reason = "\"NAMELIST\" I/O attempted on unformatted file)"; break;
    case 981: reason = "Value out of range in numeric read)"; break;
    default: break;
  }
  if (reason) return std::string("{nwl{gre(") + reason;
  return "{nwl{gre(Unknown error message (I/O status is " + fmt::I(s, 3) + "))";
}

void IOERRM(char operation, std::string_view fileName, int ioStatus) {
  std::string name(fmt::trimmed(fileName));
  if (name.empty()) name = "UNKNOWN";
  const char* verb = nullptr;
  switch (operation) {
    case 'I': verb = "Attempt to inquire file ** {gre"; break;
    case 'O': verb = "Attempt to open file ** {gre"; break;
    case 'R': verb = "Attempt to read from file ** {gre"; break;
    case 'W': verb = "Attempt to write to file ** {gre"; break;
    case 'C': verb = "Attempt to close file ** {gre"; break;
    default: verb = "Attempt to treat file ** {gre"; break;
  }
  std::string text = verb + name + "{red ** failed" + ioStatusReason(ioStatus);
  if (text.size() > 512) text.resize(512);
  ERRSCN(text);
}

void IOINTL(char operation, int ioStatus) { IOERRM(operation, "INTERNAL", ioStatus); }

void NOHELP() { ERRSCN("No help available"); }

GraphicsTextHooks& graphicsTextHooks() {
  static GraphicsTextHooks hooks;
  return hooks;
}

PrinterHooks& printerHooks() {
  static PrinterHooks hooks;
  return hooks;
}

}  // namespace kntr::framework
