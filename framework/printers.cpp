#include "framework/printers.h"

#include <algorithm>
#include <array>
#include <span>
#include <string>
#include <vector>

#include "framework/configuration.h"
#include "framework/files.h"
#include "framework/format.h"
#include "framework/input.h"
#include "framework/menus.h"
#include "framework/projects.h"
#include "framework/state.h"
#include "framework/system.h"
#include "framework/text.h"

namespace kntr::framework {

namespace {

// The file of the open job.
AtomicWriter& jobFile() {
  static AtomicWriter file;
  return file;
}



// The last `count` characters of a text.
std::string lastCharacters(std::string_view text, int count) {
  const auto n = static_cast<std::size_t>(count);
  return std::string(text.size() > n ? text.substr(text.size() - n) : text);
}

std::string blanks(int count) {
  return std::string(static_cast<std::size_t>(std::max(0, count)), ' ');
}

// A text centred in `width` columns, cut to them.
std::string centred(std::string_view text, int width) {
  const std::string cut(text.substr(0, std::min(text.size(), static_cast<std::size_t>(width))));
  const int room = width - static_cast<int>(cut.size());
  return blanks(room / 2) + cut + blanks(room - room / 2);
}

// The job breaks off: the failure is told, the file thrown away, and
// listings go to the screen again.
void breakOff(char operation, int ioStatus) {
  PrinterState& s = printerState();
  IOERRM(operation, s.fileName, ioStatus);
  jobFile().abandon();
  s.open = false;
  s.failed = true;
  s.line.clear();
  program().listingTarget = TargetScreen;
}

// Sends the line being built without ending it (the buffer is full).
void sendPartialLine() {
  PrinterState& s = printerState();
  if (!s.open || s.line.empty()) return;
  const int io = jobFile().write(s.line);
  s.line.clear();
  if (io != 0) breakOff('W', io);
}

void append(std::string_view piece) {
  PrinterState& s = printerState();
  if (static_cast<int>(s.line.size() + piece.size()) > PrinterLineLength) sendPartialLine();
  s.line.append(piece);
}

int findToken(std::string_view name) {
  const PrinterState& s = printerState();
  for (int k = 1; k <= s.tokenCount; ++k)
    if (s.token(k).name == name) return k;
  return 0;
}

// Ends the line being built and counts it.
void endLine() {
  PrinterState& s = printerState();
  if (!s.open) return;
  const int newLine = findToken("NWL");
  if (newLine != 0) s.line.append(s.token(newLine).on);
  const int io = jobFile().writeLine(s.line);
  s.line.clear();
  if (io != 0) {
    breakOff('W', io);
    return;
  }
  ++s.linesUsed;
}

// Blank lines after a head or a block, as many as the page still holds.
void blockGap() {
  const int lines = std::min(BlockGapLines, printerLinesLeft());
  for (int k = 1; k <= lines; ++k) endLine();
}

void addToken(std::string_view name, std::string on, std::string off, int kind) {
  PrinterState& s = printerState();
  if (s.tokenCount >= MaxPrinterTokens) return;
  PrinterToken& t = s.token(++s.tokenCount);
  t.name = std::string(name);
  t.on = std::move(on);
  t.off = std::move(off);
  t.kind = kind;
  t.mark = false;
}

// The box-drawing keys with their line-drawing characters (PC-8 codes).
struct BoxKey {
  const char* name;
  unsigned char code;
  const char* plain;
};
constexpr std::array<BoxKey, 11> boxKeys{{{"ULC", 218, "+"},
                                          {"URC", 191, "+"},
                                          {"LLC", 192, "+"},
                                          {"LRC", 217, "+"},
                                          {"HLN", 196, "-"},
                                          {"VLN", 179, "!"},
                                          {"CRS", 197, "+"},
                                          {"TDN", 194, "+"},
                                          {"TRG", 195, "+"},
                                          {"TUP", 193, "+"},
                                          {"TLF", 180, "+"}}};

// The PCL models: their set-up, wrap-up and the escape texts of their
// underline, and whether box characters need a symbol set of their own.
struct PclModel {
  const char* name;
  const char* setup;      // escape sequences, "\x1b" before each
  const char* wrap;       // escape sequence sent after the last page, or ""
  const char* underline;  // on-text of UDL after the escape
  bool boxSymbolSet;      // box characters wrapped in a line-drawing set
};
constexpr std::array<PclModel, 5> pclModels{{
    {"DeskJet+", "\x1b(10U\x1b(s12H\x1b(s3T\x1b&a10L", "\x1b&a0L", "&dD", false},
    {"LaserJet-II", "\x1b(10U\x1b(s12H\x1b(s3T\x1b&a10L", "", "&dD", false},
    {"LaserJet-III", "\x1b(10u(s12H", "", "&d0D", false},
    {"HP2934", "\x1b(8U\x1b(s12H\x1b(s3T\x1b(s0Q\x1b&a10L", "\x1b&a0L", "&dD", false},
    {"LaserJet-HP92286J", "\x1b(0U", "", "&dD", true},
}};

const PclModel* findPclModel(std::string_view name) {
  for (const PclModel& m : pclModels)
    if (name == m.name) return &m;
  return nullptr;
}

}  // namespace

PrinterState& printerState() {
  static PrinterState state;
  return state;
}

void resetPrinting() {
  jobFile().abandon();
  printerState() = PrinterState{};
  if (program().listingTarget != TargetScreen) program().listingTarget = TargetScreen;
}

bool knownPrinterModel(std::string_view model) {
  model = fmt::trimmed(model);
  return findPclModel(model) != nullptr || model == "PostScript" || model == SystemPrinterModel;
}

void IZPRMD(std::string_view model) {
  PrinterState& s = printerState();
  const std::string name = fmt::stripped(model);
  s.model = name;
  s.tokenCount = 0;
  s.setup.clear();
  s.wrap.clear();
  const std::string esc = "\x1b";
  const PclModel* pcl = findPclModel(name);
  if (pcl == nullptr) {
    // Plain characters: styles write nothing, boxes are drawn with + - !.
    addToken("UDL", "", "", TokenToggles);
    addToken("HGL", "", "", TokenToggles);
    addToken("ITA", "", "", TokenToggles);
    addToken("STD", "", "", TokenGroupMember);
    for (const BoxKey& key : boxKeys) addToken(key.name, key.plain, "", TokenAlways);
    return;
  }
  s.setup = pcl->setup;
  // The last page is ejected after the wrap-up.
  s.wrap = std::string(pcl->wrap) + "\f";
  // Lines end with a carriage return before the line feed.
  addToken("NWL", "\r", "", TokenAlways);
  addToken("UDL", esc + pcl->underline, esc + "&d@", TokenToggles);
  addToken("HGL", esc + "(s3B", esc + "(s0B", TokenToggles);
  addToken("ITA", esc + "(s1S", esc + "(s0S", TokenToggles);
  addToken("STD", esc + "(s0B" + esc + "(s0S" + esc + "&d@", "", TokenGroupMember);
  for (const BoxKey& key : boxKeys) {
    const std::string character(1, static_cast<char>(key.code));
    addToken(key.name, pcl->boxSymbolSet ? esc + "(2Q" + character + esc + "(0U" : character, "",
             TokenAlways);
  }
}

int printerLinesLeft() {
  const PrinterState& s = printerState();
  return std::max(0, s.linesPerPage - s.linesUsed);
}

int printerPageLength() {
  return printerState().linesPerPage;
}

bool printJobFailed() {
  return printerState().failed;
}

void PRLINE(std::string_view text) {
  PrinterState& s = printerState();
  if (!s.open) return;
  text = fmt::trimmed(text);
  for (int k = 1; k <= s.tokenCount; ++k) s.token(k).mark = false;
  int position = 1;
  bool ended = false;
  std::string item;
  for (;;) {
    const int kind = NXTOKN(text, position, ended, item);
    if (kind == ItemEnd) break;
    if (kind == ItemBrace) {
      append("{");
    } else if (kind == ItemText) {
      append(item);
    } else if (item == "NWL") {
      endLine();
      if (!s.open) return;
    } else if (const int k = findToken(item); k != 0) {
      PrinterToken& t = s.token(k);
      if (t.kind == TokenToggles) {
        append(t.mark ? t.off : t.on);
        t.mark = !t.mark;
      } else if (t.kind == TokenGroupMember) {
        for (int other = 1; other <= s.tokenCount; ++other)
          if (s.token(other).kind == TokenGroupMember) s.token(other).mark = false;
        t.mark = true;
        append(t.on);
      } else {
        append(t.on);
      }
    }
    if (!s.open) return;
  }
  endLine();
}

void PRPHED() {
  PrinterState& s = printerState();
  if (!s.open) return;
  // End the page.
  if (s.pageNumber > 0)
    while (s.open && s.linesUsed < s.linesPerPage) endLine();
  if (!s.open) return;
  s.linesUsed = 0;
  ++s.pageNumber;

  const ProgramState& p = program();
  const std::string project = fmt::stripped(p.projectName);
  if (s.pageNumber == 1) {
    GTDATE(s.date);
    GTTIME(s.time);
    const int inner = PageHeadWidth - 2;
    const std::string rule = fmt::repeat("{hln", inner);
    const std::string divider = "{nwl{trg" + rule + "{tlf";
    auto boxLine = [&](std::string_view content) {
      return "{nwl{vln" + literal(fmt::pad(content, inner)) + "{vln";
    };

    // The title line: the heading name centred in runs of line characters.
    const std::string heading = fmt::stripped(s.headingName);
    std::string title = rule;
    if (!heading.empty()) {
      const std::string name = " " + heading.substr(0, static_cast<std::size_t>(inner - 2)) + " ";
      const int room = inner - static_cast<int>(name.size());
      title = fmt::repeat("{hln", room / 2) + literal(name) + fmt::repeat("{hln", room - room / 2);
    }

    const std::string package =
        " Package: " + fmt::stripped(p.packageName) + " - " + fmt::stripped(p.packageVersion);
    const std::string module =
        "Module: " + fmt::stripped(p.SPNAME) + " - " + fmt::stripped(p.SPVERS) + " ";
    const int gap = std::max(1, inner - static_cast<int>(package.size() + module.size()));

    std::string text = "{ulc" + rule + "{urc";
    text += "{nwl{vln" + title + "{vln";
    text += boxLine(package + blanks(gap) + module);
    text += divider;
    text += boxLine(" Project  : " + lastCharacters(project, PageHeadValueWidth));
    text += boxLine(" Company  : " + lastCharacters(fmt::stripped(p.company), PageHeadValueWidth));
    text += boxLine(" User     : " + lastCharacters(fmt::stripped(p.user), PageHeadValueWidth));
    text += boxLine(" Date     : " + fmt::pad(s.date, DateWidth) + blanks(39) +
                    "Time: " + fmt::pad(s.time, TimeWidth));
    const std::string listing = fmt::stripped(s.listingTitle);
    if (!listing.empty()) {
      text += divider;
      text += "{nwl{vln" + literal(centred(listing, inner)) + "{vln";
    }
    text += "{nwl{llc" + rule + "{lrc";
    PRLINE(text);
  } else {
    // Each value in a field of its width, cut on the right: the date's
    // first nine characters.
    const std::string date = s.date;
    PRLINE(literal("Module: " + fmt::pad(fmt::stripped(p.SPNAME), 4) +
                   "; pjc: " + fmt::pad(project, 15) + "; date: " + fmt::pad(date, 9) +
                   "; time: " + fmt::pad(s.time, 8) + "; page: " + fmt::I(s.pageNumber, 4)));
  }
  blockGap();
}

void OPPRNT(int target, std::string_view fileName, std::string_view model, int linesPerPage,
            std::string_view command, bool& status) {
  status = false;
  PrinterState& s = printerState();
  // A job left open is thrown away; the listing title carries over.
  jobFile().abandon();
  const std::string title = s.listingTitle;
  s = PrinterState{};
  s.listingTitle = title;
  program().listingTarget = TargetScreen;

  IZPRMD(model);
  s.target = target;
  s.fileName = std::string(fmt::trimmed(fileName));
  s.command = std::string(fmt::trimmed(command));
  s.linesPerPage = linesPerPage > 0 ? linesPerPage : DefaultPageLines;
  s.headingName = configuration().printerHeadingName;

  program().workFileName = s.fileName;
  if (!openOnFreeUnit(jobFile(), s.fileName, status)) return;
  s.open = true;
  s.line = s.setup;

  PrinterHooks& hooks = printerHooks();
  hooks.linesLeft = printerLinesLeft;
  hooks.pageLength = printerPageLength;
  hooks.newPage = PRPHED;
  hooks.printText = PRLINE;
  program().listingTarget = target;
  PRPHED();
  if (!s.open) status = true;
}

void CLPRNT(bool keep, bool& status) {
  status = false;
  PrinterState& s = printerState();
  program().listingTarget = TargetScreen;
  if (!s.open) {
    // A job that broke off was reported when it did.
    if (s.failed) status = true;
    s.failed = false;
    s.listingTitle.clear();
    return;
  }
  s.listingTitle.clear();
  if (!keep) {
    jobFile().abandon();
    s.open = false;
    return;
  }
  if (!s.line.empty() || !s.wrap.empty()) {
    const int io = jobFile().write(s.line + s.wrap);
    s.line.clear();
    if (io != 0) {
      breakOff('W', io);
      s.failed = false;
      status = true;
      return;
    }
  }
  s.open = false;
  const int io = jobFile().commit();
  if (io != 0) {
    IOERRM('C', s.fileName, io);
    status = true;
    return;
  }
  if (s.target == TargetSystemPrinter) OPSYIF(s.command, status);
}

std::string spoolFileName() {
  const std::string directory = fmt::stripped(configuration().spoolDirectory);
  const std::string name = fmt::stripped(program().printSpoolName);
  if (directory.empty()) return name;
  const char separator = program().pathSeparator;
  return directory.back() == separator ? directory + name : directory + separator + name;
}

std::string spoolCommand(int entry, std::string_view fileName) {
  const PrinterEntry& e = printer(DeviceTable::System, entry);
  std::string command = fmt::stripped(e.command);
  if (command.empty()) command = "lp -d " + fmt::stripped(e.name);
  // The file name goes to the shell quoted unless it is plainly safe.
  const std::string name(fmt::trimmed(fileName));
  const bool safe = !name.empty() && name.find_first_not_of(
                                         "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz"
                                         "0123456789._/-+") == std::string::npos;
  if (safe) return command + " " + name;
  std::string quoted = "'";
  for (char c : name) quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
  return command + " " + quoted + "'";
}

namespace {

enum class Choice { Screen, Printer, File, Cancel };

// The printer names of a table, as menu rows.
std::vector<std::string> printerRows(DeviceTable table) {
  std::vector<std::string> rows;
  for (int i = 1; i <= printerCount(table); ++i)
    rows.push_back(fmt::stripped(printer(table, i).name));
  return rows;
}

// Picks a printer of `table` from a menu: its index, 0 when the user aborts.
int pickPrinter(DeviceTable table, std::string_view title, bool& status) {
  const std::vector<std::string> rows = printerRows(table);
  bool abort = false;
  int selection = defaultPrinter(table);
  TXMENU(title, rows, defaultPrinter(table), "Select the printer to print on", abort, selection,
         status);
  if (status || abort) return 0;
  return selection >= 1 && selection <= static_cast<int>(rows.size()) ? selection : 0;
}

// The file printer's dialogue: the file's name, an overwrite question, the
// open. False when the user aborts the name question.
bool openFilePrinter(int entry, bool& status) {
  const PrinterEntry& e = printer(DeviceTable::File, entry);
  const std::string deflt = fmt::stripped(e.name);
  for (;;) {
    bool abort = false, failed = false;
    ASKQST("Input name of print file? (max 80 characters)", deflt,
           "The listing is written to this file", 1, abort, failed);
    if (abort) return false;
    if (failed) {
      status = true;
      return true;
    }
    std::array<std::string, 1> value{deflt};
    bool none = false;
    GTCHAR(value, InputLineLength, none, failed);
    if (failed) continue;
    const std::string name = fmt::stripped(value[0]);
    if (name.empty()) continue;
    if (fileExists(name)) {
      bool overwrite = false, cancelled = false;
      askYesNo("OK to overwrite file ** {gre" + literal(name) + "{yel ** ? (yes/no)", false, "no",
               "This will leave the file with the new listing only", false, overwrite, cancelled);
      if (!overwrite) continue;
    }
    OPPRNT(TargetFilePrinter, name, e.interface, e.linesPerPage, "", failed);
    if (!failed) return true;
  }
}

}  // namespace

void SLPRNT(bool& abort, bool& status) {
  abort = false;
  status = false;
  bool ignored = false;
  if (printerState().open) CLPRNT(false, ignored);
  printerState().failed = false;
  program().listingTarget = TargetScreen;

  const bool printers = printerCount(DeviceTable::System) > 0;
  const bool files = printerCount(DeviceTable::File) > 0;
  std::vector<Choice> choices{Choice::Screen};
  const char* question = nullptr;
  const char* refusal = nullptr;
  if (!printers && !files) {
    question = "Printer is? (screen = 1, cancel = 2)";
    refusal = "Input must be either 1, 2";
  } else if (!printers) {
    choices.push_back(Choice::File);
    question = "Printer is? (screen = 1, file = 2, cancel = 3)";
    refusal = "Input must be either 1, 2, 3";
  } else if (!files) {
    choices.push_back(Choice::Printer);
    question = "Printer is? (screen = 1, printer = 2, cancel = 3)";
    refusal = "Input must be either 1, 2, 3";
  } else {
    choices.push_back(Choice::Printer);
    choices.push_back(Choice::File);
    question = "Printer is? (screen = 1, printer = 2, file = 3, cancel = 4)";
    refusal = "Input must be either 1, 2, 3 or 4";
  }
  choices.push_back(Choice::Cancel);

  for (;;) {
    bool aborted = false, failed = false;
    ASKQST(question, "1 (screen)", "Select where the listing goes", 1, aborted, failed);
    if (aborted) {
      abort = true;
      return;
    }
    if (failed) {
      status = true;
      return;
    }
    std::array<int, 1> value{1};
    bool none = false;
    GTINTV(value, none, failed);
    if (failed) continue;
    if (value[0] < 1 || value[0] > static_cast<int>(choices.size())) {
      ERRSCN(refusal);
      continue;
    }
    switch (choices[static_cast<std::size_t>(value[0] - 1)]) {
      case Choice::Screen:
        return;
      case Choice::Cancel:
        abort = true;
        return;
      case Choice::Printer: {
        if (printerCount(DeviceTable::System) == 0) {
          ERRSCN("No printers available");
          continue;
        }
        const int entry = pickPrinter(DeviceTable::System, "PRINTERS", status);
        if (status) return;
        if (entry == 0) continue;
        const PrinterEntry& e = printer(DeviceTable::System, entry);
        const std::string model =
            fmt::stripped(e.interface).empty() ? std::string(SystemPrinterModel) : e.interface;
        const std::string spool = spoolFileName();
        OPPRNT(TargetSystemPrinter, spool, model, e.linesPerPage, spoolCommand(entry, spool),
               status);
        return;
      }
      case Choice::File: {
        if (printerCount(DeviceTable::File) == 0) {
          ERRSCN("No file printers available");
          continue;
        }
        const int entry = pickPrinter(DeviceTable::File, "FILE PRINTERS", status);
        if (status) return;
        if (entry == 0) continue;
        if (!openFilePrinter(entry, status)) continue;
        return;
      }
    }
  }
}

}  // namespace kntr::framework
