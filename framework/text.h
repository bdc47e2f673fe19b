// Terminal text with formatting tokens.
//
// Everything the system says is one text language: plain characters with
// three-letter tokens behind a left brace ({nwl new line, {gre green, {csb
// clear screen, ...), written in either case; "{{" is a literal brace. The
// routines here scan such texts, show them on the console in colour, report
// errors and failed file operations in a fixed manner, and page long output.
//
//   NXTOKN  next item of a formatted text
//   OUTSCN  show a formatted text on the console
//   PUTSCN  show a text in yellow unless it says otherwise (the normal way)
//   ERRSCN  show an error in red and wait for RETURN
//   PRMESG  show a message in green and wait for RETURN
//   WTRETN  the "To continue press RETURN" pause
//   CNTLIN  count the lines of a text
//   PRPAGE  show a whole-screen listing, or print it
//   SCROLL  one block of a paged listing
//   SCRINP  the paging question
//   IOERRM  report a failed file operation
//   IOINTL  report a failed conversion in a text buffer
//   NOHELP  "No help available"
#pragma once

#include <string>
#include <string_view>

namespace kntr::framework {

// Limits of the text routines.
inline constexpr int LineBufferLength = 8192;
inline constexpr int MaxShownText = 4092;

// Kinds returned by NXTOKN.
inline constexpr int ItemEnd = 0;
inline constexpr int ItemToken = 1;
inline constexpr int ItemBrace = 2;
inline constexpr int ItemText = 3;

// NXTOKN: next item of a formatted text, from `position` (1-based, moved on).
// A token comes back upper-cased in `item`, a run of text as it stands.
// `ended` is set when the scan meets an illegal token and gives up.
int NXTOKN(std::string_view text, int& position, bool& ended, std::string& item);

// OUTSCN: show a formatted text on the console, ending with one line feed.
void OUTSCN(std::string_view text);

// PUTSCN: show a text of at most 4092 characters, in yellow unless it says
// otherwise.
void PUTSCN(std::string_view text);

// ERRSCN: show an error (bell, clear, red) and wait for RETURN.
void ERRSCN(std::string_view text);

// How a routine fails: the error is shown (ERRSCN), then `status` is set.
void fail(std::string_view text, bool& status);

// PRMESG: show a message (clear, green) and wait for RETURN.
void PRMESG(std::string_view text);

// WTRETN: wait for RETURN, or go on at once in batch mode.
void WTRETN();

// CNTLIN: number of lines of a text: 1 plus the number of new-line tokens.
int CNTLIN(std::string_view text);

// PRPAGE: show a whole-screen listing and wait, or print it on the printer
// target.
void PRPAGE(std::string_view text);

// SCROLL: show one block of a paged listing. The caller passes blocks in
// turn and stops when status comes back set. `lastPage` and `currentPage`
// are the caller's.
void SCROLL(std::string_view text, int lastPage, int& currentPage, bool& status);

// SCRINP: ask the paging question; code 0 for RETURN, 1 "+", 2 "-",
// 3 "+NNN", 4 "-NNN", 5 "NNN", with the number in `value`.
void SCRINP(int& code, int& value);

// IOERRM: report a failed file operation. `operation` is I, O, R, W or C.
void IOERRM(char operation, std::string_view fileName, int ioStatus);

// IOINTL: report a failed conversion in a text buffer (operation W or R).
void IOINTL(char operation, int ioStatus);

// NOHELP: there is no help for this question.
void NOHELP();

// A value shown inside a formatted text: braces doubled, so that it shows
// as typed.
std::string literal(std::string_view text);

// Reason text of an I/O status number, as IOERRM appends it.
std::string ioStatusReason(int ioStatus);

// The row counter of the page scroller (1 means a fresh screen).
int& scrollRow();

// Where texts go while the graphics window has the input: its error box,
// message box and wait. Null members fall back to the console.
struct GraphicsTextHooks {
  void (*errorBox)(std::string_view text) = nullptr;
  void (*messageBox)(std::string_view text) = nullptr;
  void (*waitKey)() = nullptr;
};
GraphicsTextHooks& graphicsTextHooks();

// Printers receive listings through this hook while the listing target is a
// printer; PRPAGE and SCROLL use it.
struct PrinterHooks {
  // Lines left on the printer's page and the page length.
  int (*linesLeft)() = nullptr;
  int (*pageLength)() = nullptr;
  void (*newPage)() = nullptr;  // page head of a new page
  // One formatted text; like OUTSCN it ends with a line end, so a text
  // adds CNTLIN(text) lines.
  void (*printText)(std::string_view) = nullptr;
};
PrinterHooks& printerHooks();

// I/O status numbers used by this system for its own failures.
inline constexpr int IoOpenFailed = 908;
inline constexpr int IoReadUnexpected = 915;
inline constexpr int IoEndOfFile = 933;
inline constexpr int IoFileSystem = 956;
inline constexpr int IoOutOfSpace = 913;
inline constexpr int IoValueOutOfRange = 981;
inline constexpr int IoCharacterForNumber = 942;

}  // namespace kntr::framework
