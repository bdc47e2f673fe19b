// Printers: where a listing goes, and the printer line engine.
//
// A listing goes to the screen, to a system printer or to a file printer.
// SLPRNT asks which and opens a print job; while the job is open the paging
// routines of the text family (PRPAGE, SCROLL) hand their texts to PRLINE
// instead of the console, and PRPHED heads every page. CLPRNT completes the
// job.
//
// A system printer is a print queue. Its job is spooled to a file
// (program().printSpoolName, in the configured spool directory or else in
// the current one) and handed to the queue by the printer's command, "lp -d"
// and the printer's name when the configuration gives none. A file printer
// writes the listing into a file that the user names. Either file is written
// under a temporary name and put in place only when the job is complete.
//
// The printer's interface field in the configuration names its model, which
// decides the set-up sequence sent first and how the formatting tokens turn
// into printer text: the PCL models ("DeskJet+", "LaserJet-II",
// "LaserJet-III", "HP2934", "LaserJet-HP92286J") get escape sequences and
// line-drawing characters; "PostScript", "WIN32PRINTER" (what a system
// printer uses when no interface is given) and a printer with no model or an
// unknown one get plain characters: corners and crossings "+", lines "-" and
// "!".
//
//   SLPRNT  ask for the output target of a listing and open the print job
//   OPPRNT  open a print job on a printer target, without a dialogue
//   IZPRMD  load the set-up and the token table of a printer model
//   PRLINE  write a formatted text to the printer, translating its tokens
//   PRPHED  fill the page and write the head of the next one
//   CLPRNT  complete the print job: close the file, spool it to the queue
#pragma once

#include <string>
#include <string_view>

#include "framework/onebased.h"

namespace kntr::framework {

// Capacities of the printer line state.
inline constexpr int PrinterLineLength = 8192;
inline constexpr int MaxPrinterTokens = 40;
inline constexpr int PrinterTokenTextWidth = 40;

// The page head: a box of this width, with identification values cut to
// their last characters.
inline constexpr int PageHeadWidth = 79;
inline constexpr int PageHeadValueWidth = 64;
// Blank lines that follow a page head or a printed block, at most.
inline constexpr int BlockGapLines = 2;
// Lines per page when the configuration gives none that can be used.
inline constexpr int DefaultPageLines = 66;

// Token kinds of a printer table: a toggle writes its on-text and off-text
// in turn; a group member writes its on-text and clears the on mark of the
// other members; any other kind always writes its on-text.
inline constexpr int TokenAlways = 0;
inline constexpr int TokenToggles = 1;
inline constexpr int TokenGroupMember = 2;

// Model names of the built-in printer tables.
inline constexpr const char* PlainPrinterModel = "";
inline constexpr const char* SystemPrinterModel = "WIN32PRINTER";

struct PrinterToken {
  std::string name;  // three letters, upper case
  std::string on;    // text written when the token switches on (or acts)
  std::string off;   // text written when a toggle switches off
  int kind = TokenAlways;
  bool mark = false;  // the token is on
};

// The printer line state of the open job.
struct PrinterState {
  bool open = false;    // a print job is open
  bool failed = false;  // the job broke off; it has been reported
  int target = 0;       // TargetSystemPrinter or TargetFilePrinter
  std::string model;    // model name as configured
  std::string setup;    // sent before the first page
  std::string wrap;     // sent after the last page
  Array1<PrinterToken, MaxPrinterTokens> token;
  int tokenCount = 0;
  std::string line;    // the line being built
  int linesUsed = 0;   // lines written on the current page
  int pageNumber = 0;  // pages begun; 0 before the first head
  int linesPerPage = DefaultPageLines;
  std::string headingName;   // middle text of the first page's box
  std::string listingTitle;  // optional title under the box
  std::string date, time;    // taken at the first page, kept for the job
  std::string fileName;      // the print file, or the spool file
  std::string command;       // the queue's command (system printers)
};

// The one instance, and its reset (tests): the job is abandoned.
PrinterState& printerState();
void resetPrinting();

// SLPRNT: ask where the next listing goes, and open a print job for a
// printer. The question offers what the configuration has: screen, system
// printers, file printers, cancel. `abort` is set when the user cancels.
//   status: set when the job cannot be opened; the target stays the screen.
void SLPRNT(bool& abort, bool& status);

// OPPRNT: open a print job on `target` (TargetSystemPrinter or
// TargetFilePrinter), writing `fileName` with the model's tables. `command`
// is the queue's command of a system printer. The set-up and the first
// page's head are written at once, and the listing target becomes `target`.
//   status: set when the file cannot be opened.
void OPPRNT(int target, std::string_view fileName, std::string_view model, int linesPerPage,
            std::string_view command, bool& status);

// IZPRMD: the set-up, wrap-up and token table of `model` into the printer
// state. An unknown or blank model gets plain characters.
void IZPRMD(std::string_view model);

// True for the names of the built-in models.
bool knownPrinterModel(std::string_view model);

// PRLINE: write a formatted text to the printer. Tokens of the printer's
// table write their texts, "{nwl" ends a line, "{{" writes a brace, and other
// tokens vanish. Like OUTSCN the text ends with a line end, so a text of n
// lines adds n to the lines used.
void PRLINE(std::string_view text);

// PRPHED: fill the current page with blank lines, count a new page and write
// its head: the boxed head on the first page, one line on later pages.
void PRPHED();

// CLPRNT: complete the print job. With `keep`, send the wrap-up, put the file
// in place and, for a system printer, hand it to the queue; without, throw
// the job away. The listing target returns to the screen.
//   status: set when the job failed earlier, or the close or the queue fails.
void CLPRNT(bool keep, bool& status);

// Lines left on the printer's page, and the page length.
int printerLinesLeft();
int printerPageLength();

// True when a print job broke off since it was opened; the failure has been
// reported, and the listing should stop.
bool printJobFailed();

// The spool file of a system printer: the spool name in the configured spool
// directory, or in the current directory when none is configured.
std::string spoolFileName();

// The command that hands `fileName` to the queue of system printer `entry`
// (1-based index into the configuration's printer table).
std::string spoolCommand(int entry, std::string_view fileName);

}  // namespace kntr::framework
