#include "framework/sysmenu.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <span>
#include <string>
#include <system_error>
#include <vector>

#include "framework/configuration.h"
#include "framework/files.h"
#include "framework/format.h"
#include "framework/input.h"
#include "framework/menus.h"
#include "framework/printers.h"
#include "framework/projects.h"
#include "framework/startup.h"
#include "framework/state.h"
#include "framework/system.h"
#include "framework/text.h"
#include "platform/system.h"

namespace kntr::framework {

namespace {

// --- Small pieces ---------------------------------------------------------------




// A file name quoted for the shell.
std::string shellQuoted(std::string_view name) {
  std::string quoted = "'";
  for (char c : name) quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
  return quoted + "'";
}

void notInThisVersion() {
  ERRSCN("Not implemented in this version{nwl{gre(version is " + fmt::stripped(program().SPVERS) +
         ")");
}

// A sub-menu with a RETURN row: the number chosen, 0 when the user leaves.
int subMenu(std::string_view title, std::span<const std::string> items, std::string_view help,
            bool& status) {
  int numbered = 0;
  for (const std::string& item : items)
    if (!fmt::stripped(item).empty()) ++numbered;
  bool abort = false;
  int selection = numbered + 1;
  TXMENU(title, items, static_cast<int>(items.size()) + 1, help, abort, selection, status);
  if (status || abort || selection < 1 || selection > numbered) return 0;
  return selection;
}

// A selection menu: one of `items`, with the current one as the default.
// The new index, or `current` when the user aborts.
int selectOne(std::string_view title, std::span<const std::string> items, int current,
              std::string_view help, bool& status) {
  const int n = static_cast<int>(items.size());
  bool abort = false;
  int selection = std::clamp(current, 1, n);
  TXMENU(title, items, selection, help, abort, selection, status);
  if (status || abort || selection < 1 || selection > n) return current;
  return selection;
}

// An option question answered by 1 or 2. False when the user aborts.
bool askOption(std::string_view question, std::string_view deflt, int& option) {
  for (;;) {
    bool abort = false, failed = false;
    ASKQST(question, deflt, "Answer 1 or 2, as the question lists them", 1, abort, failed);
    if (abort || failed) return false;
    std::array<int, 1> value{1};
    bool none = false;
    GTINTV(value, none, failed);
    if (failed) continue;
    if (value[0] != 1 && value[0] != 2) {
      ERRSCN("Input must be either 1 or 2");
      continue;
    }
    option = value[0];
    return true;
  }
}

// A file name, asked until one is given. False when the user aborts.
bool askName(std::string_view question, std::string_view deflt, std::string& name) {
  for (;;) {
    bool abort = false, failed = false;
    ASKQST(question, deflt, "The file's name, with its directory when it is not here", 1, abort,
           failed);
    if (abort || failed) return false;
    std::array<std::string, 1> value{std::string(deflt)};
    bool none = false;
    GTCHAR(value, MenuFileNameLength, none, failed);
    if (failed) continue;
    name = fmt::stripped(value[0]);
    if (!name.empty()) return true;
  }
}

// An existing file, asked for by `question`. False when the user aborts.
bool askExistingFile(std::string_view question, std::string& name) {
  for (;;) {
    if (!askName(question, "", name)) return false;
    if (fileExists(name)) return true;
    ERRSCN("File ** {gre" + literal(name) + "{red ** does not exist");
  }
}

// The name a file is renamed or copied to; an existing one only after the
// overwrite question. False when the user aborts.
bool askTarget(std::string_view question, std::string_view source, std::string& name) {
  for (;;) {
    if (!askName(question, "", name)) return false;
    if (name == source) {
      ERRSCN("Old and new file names must differ");
      continue;
    }
    if (directoryExists(name)) {
      ERRSCN("File ** {gre" + literal(name) + "{red ** is a directory");
      continue;
    }
    if (!fileExists(name)) return true;
    bool overwrite = false, cancelled = false;
    askYesNo("OK to overwrite file ** {gre" + literal(name) + "{yel ** ? (yes/no)", false, "no", "",
             false, overwrite, cancelled);
    if (overwrite) return true;
  }
}

// Runs a listing command on a clear screen, then waits.
void runListing(std::string_view command) {
  OUTSCN("{csb");
  bool failed = false;
  OPSYIF(command, failed);
  WTRETN();
}

// --- Project manipulation ------------------------------------------------------

void projectMenu(bool& status) {
  static const std::array<std::string, 3> items{"Project", "Company & user identification",
                                                "Printout level"};
  static const std::array<std::string, 3> levels{"Beginner", "Standard", "Advanced"};
  for (;;) {
    const int selection = subMenu("PROJECT MANIPULATION ", items, "", status);
    if (selection == 0) return;
    bool failed = false;
    ProgramState& p = program();
    switch (selection) {
      case 1:
        SLPROJ(failed);
        break;
      case 2:
        // The project file keeps the new identification at once.
        ASKIDN(failed);
        if (!failed) STPJCT(failed);
        break;
      default:
        p.printLevel = selectOne("PRINTOUT LEVEL ", levels, p.printLevel,
                                 "The amount of explanation the program gives", failed);
        break;
    }
  }
}

// --- Attributes ----------------------------------------------------------------

void temporaryFileInterval() {
  ProgramState& p = program();
  for (;;) {
    bool abort = false, failed = false;
    ASKQST("Input temporary file interval? (number of inputs)", std::to_string(p.backupInterval),
           "The temporary file is stored after this many inputs", 1, abort, failed);
    if (abort || failed) return;
    std::array<int, 1> value{p.backupInterval};
    bool none = false;
    GTINTV(value, none, failed);
    if (failed) continue;
    if (value[0] < 1) {
      ERRSCN("Temporary file interval must be positive");
      continue;
    }
    p.backupInterval = value[0];
    p.backupCounter = std::min(p.backupCounter, p.backupInterval);
    return;
  }
}

void attributesMenu(bool& status) {
  static const std::array<std::string, 3> items{"Select print formats", "Select weight units",
                                                "Modify temporary file interval"};
  static const std::array<std::string, 2> units{"kg", "ton"};
  for (;;) {
    const int selection = subMenu("PROGRAM ATTRIBUTES ", items, "", status);
    if (selection == 0) return;
    bool failed = false;
    ProgramState& p = program();
    switch (selection) {
      case 1:
        p.floatFormat = selectOne("FORMATS ", p.floatFormats, p.floatFormat,
                                  "The format of real numbers in printouts", failed);
        break;
      case 2: {
        const int unit =
            selectOne("WEIGHT UNITS ", units, p.weightUnit, "The unit of weights", failed);
        if (unit != p.weightUnit) {
          p.weightUnit = unit;
          p.weightUnitText = units[static_cast<std::size_t>(unit - 1)];
        }
        break;
      }
      default:
        temporaryFileInterval();
        break;
    }
  }
}

// --- File manipulation ---------------------------------------------------------

void listFiles() {
  int option = 1;
  if (!askOption("Input list option for current directory? (short list = 1, long list = 2)",
                 "1 (short list))", option))
    return;
  runListing(option == 1 ? "ls -a" : "ls -l");
}

void renameFile() {
  std::string from, to;
  if (!askExistingFile("Input name of file to rename? (max 80 characters)", from)) return;
  if (!askTarget("Input new name of file? (max 80 characters)", from, to)) return;
  std::error_code error;
  std::filesystem::rename(from, to, error);
  if (error) IOERRM('T', from, IoFileSystem);
}

void copyFile() {
  std::string from, to;
  if (!askExistingFile("Input name of file to copy? (max 80 characters)", from)) return;
  if (!askTarget("Input name of copy? (max 80 characters)", from, to)) return;
  std::error_code error;
  std::filesystem::copy_file(from, to, std::filesystem::copy_options::overwrite_existing, error);
  if (error) IOERRM('W', to, IoFileSystem);
}

void deleteFile() {
  std::string name;
  if (!askExistingFile("Input name of file to delete? (max 80 characters)", name)) return;
  bool remove = false, cancelled = false;
  askYesNo("OK to delete file ** {gre" + literal(name) + "{yel ** ? (yes/no)", false, "no", "",
           false, remove, cancelled);
  if (!remove) return;
  std::error_code error;
  std::filesystem::remove(name, error);
  if (error) IOERRM('T', name, IoFileSystem);
}

void fileMenu(bool& status) {
  static const std::array<std::string, 4> items{"List of files", "Rename file", "Copy file",
                                                "Delete file"};
  for (;;) {
    switch (subMenu("FILE MANIPULATION ", items, "", status)) {
      case 0:
        return;
      case 1:
        listFiles();
        break;
      case 2:
        renameFile();
        break;
      case 3:
        copyFile();
        break;
      default:
        deleteFile();
        break;
    }
  }
}

// --- Log level, processes, the shell -------------------------------------------

void logMenu(bool& status) {
  static const std::array<std::string, 3> items{
      "Log entering & exiting", "Log (1) + errors & warnings", "Log (1) + (2) + messages & inputs"};
  ProgramState& p = program();
  p.logLevel = selectOne("LOG LEVEL ", items, p.logLevel, "What the log file records", status);
}

void processList() {
  int option = 1;
  if (!askOption("Input process list option? (standard = 1, extended = 2)", "1 (standard))",
                 option))
    return;
  runListing(option == 1 ? "ps -u `whoami`" : "ps -lu `whoami`");
}

void operatingSystem() {
  std::string shell;
  GTENVV("SHELL", shell);
  shell = fmt::stripped(shell);
  if (shell.empty()) shell = "/bin/sh";
  PUTSCN("{csb{yelType {greexit{yel to return to {gre" + literal(fmt::stripped(program().SPNAME)));
  bool failed = false;
  OPSYIF(shell, failed);
}

void moduleLimits() {
  if (!callbacks().limits) {
    ERRSCN("No module limitations available");
    return;
  }
  bool failed = false;
  callbacks().limits(failed);
}

// --- Errors & mail -------------------------------------------------------------

bool mailProgramAvailable() {
  return runCommandQuietly("command -v mail >/dev/null 2>&1") == 0;
}

void mailFailed() {
  ERRSCN("Attempt to execute E-mail program failed");
}

void receiveMail() {
  if (!mailProgramAvailable()) {
    mailFailed();
    return;
  }
  OUTSCN("{csb");
  // "No mail" ends the program with a status of its own: no failure here.
  runCommandQuietly("mail");
  WTRETN();
}

void mailMenu(bool& status) {
  static const std::array<std::string, 3> items{
      "Send general error report", "Send error report for this module", "Receive mail"};
  for (;;) {
    bool failed = false;
    switch (subMenu("ERRORS & MAIL ", items, "", status)) {
      case 0:
        return;
      case 1:
        EMRPER(GeneralErrorReport, failed);
        break;
      case 2:
        EMRPER(ModuleErrorReport, failed);
        break;
      default:
        receiveMail();
        break;
    }
  }
}

// --- Print configuration -------------------------------------------------------

// A listing: sections of lines, each opened by its title line.
using Section = std::vector<std::string>;

constexpr int LabelWidth = 44;

// "Label ....... : value".
std::string entry(std::string_view label, std::string_view value) {
  std::string text = std::string(label) + " ";
  if (static_cast<int>(text.size()) < LabelWidth)
    text += std::string(static_cast<std::size_t>(LabelWidth) - text.size(), '.');
  return "{CYA" + literal(text) + " : {GRE" + literal(value);
}

std::string title(std::string_view text) {
  return "{YEL{UDL" + literal(text) + "{UDL";
}

std::string number(double value) {
  return fmt::stripped(fmt::F(value, 12, 2));
}

std::string orNone(std::string_view text) {
  const std::string value = fmt::stripped(text);
  return value.empty() ? "(none)" : value;
}

std::string yesNo(bool on) {
  return on ? "yes" : "no";
}

Section displaySection() {
  const Configuration& c = configuration();
  const ProgramState& p = program();
  static const char* types[] = {"monocrome", "standard-color", "extended-color"};
  const int type = std::clamp(c.displayType, DisplayMonochrome, DisplayExtendedColour);
  return {title("Display"),
          "",
          entry("Graphics window width (% of screen)", number(c.displayPercentHorizontal)),
          entry("Graphics window height (% of screen)", number(c.displayPercentVertical)),
          entry("Display type", types[type - 1]),
          entry("Standard graphics", orNone(c.standardGraphics)),
          entry("Extended graphics", orNone(c.extendedGraphics)),
          entry("Terminal type", orNone(terminal().name)),
          entry("Screen columns", fmt::stripped(fmt::I(p.screenColumns, 6))),
          entry("Screen lines", fmt::stripped(fmt::I(p.screenLines, 6)))};
}

std::string modelText(std::string_view interface, bool system) {
  const std::string model = fmt::stripped(interface);
  if (model.empty()) return system ? std::string(SystemPrinterModel) : "(plain characters)";
  return knownPrinterModel(model) ? model : model + " (plain characters)";
}

std::vector<Section> printerSections(bool detailed) {
  std::vector<Section> sections;
  for (DeviceTable table : {DeviceTable::System, DeviceTable::File}) {
    const bool system = table == DeviceTable::System;
    const int n = printerCount(table);
    const int chosen = defaultPrinter(table);
    const char* kind = system ? "Printer" : "File printer";
    if (!detailed || n == 0) {
      Section s{title(system ? "Printers" : "File printers"), ""};
      if (n == 0) s.push_back(system ? "{CYANo printers defined" : "{CYANo file printers defined");
      for (int i = 1; i <= n; ++i) {
        const PrinterEntry& e = printer(table, i);
        s.push_back("{CYA" + fmt::I(i, 2) + ". {GRE" + literal(fmt::pad(fmt::stripped(e.name), 24)) +
                    " {CYA" + literal(modelText(e.interface, system)) +
                    (i == chosen ? " {YEL(default)" : ""));
      }
      sections.push_back(s);
      continue;
    }
    for (int i = 1; i <= n; ++i) {
      const PrinterEntry& e = printer(table, i);
      Section s{title(std::string(kind) + " " + fmt::stripped(fmt::I(i, 2))), "",
                entry("Name", fmt::stripped(e.name)),
                entry("Interface", modelText(e.interface, system))};
      if (system) {
        std::string command = fmt::stripped(e.command);
        if (command.empty()) command = "lp -d " + fmt::stripped(e.name) + " (standard)";
        s.push_back(entry("Command", command));
      }
      s.push_back(entry("Lines per page", fmt::stripped(fmt::I(e.linesPerPage, 6))));
      s.push_back(entry("Default", yesNo(i == chosen)));
      sections.push_back(s);
    }
  }
  return sections;
}

std::string paperText(int code) {
  static const char* papers[] = {"A0", "A1", "A2", "A3", "A4"};
  return code >= 0 && code <= 4 ? papers[code] : fmt::stripped(fmt::I(code, 6));
}

std::vector<Section> plotterSections(bool detailed) {
  std::vector<Section> sections;
  for (DeviceTable table : {DeviceTable::System, DeviceTable::File}) {
    const bool system = table == DeviceTable::System;
    const int n = plotterCount(table);
    const int chosen = defaultPlotter(table);
    if (!detailed || n == 0) {
      Section s{title(system ? "Plotters" : "File plotters"), ""};
      if (n == 0) s.push_back(system ? "{CYANo plotters defined" : "{CYANo file plotters defined");
      for (int i = 1; i <= n; ++i) {
        const PlotterEntry& e = plotter(table, i);
        s.push_back("{CYA" + fmt::I(i, 2) + ". {GRE" + literal(fmt::pad(fmt::stripped(e.name), 24)) +
                    " {CYA" + literal(orNone(e.interface)) + " / " + literal(orNone(e.model)) +
                    (i == chosen ? " {YEL(default)" : ""));
      }
      sections.push_back(s);
      continue;
    }
    for (int i = 1; i <= n; ++i) {
      const PlotterEntry& e = plotter(table, i);
      Section s{
          title(std::string(system ? "Plotter " : "File plotter ") + fmt::stripped(fmt::I(i, 2))), "",
          entry("Name", fmt::stripped(e.name)), entry("Interface", orNone(e.interface)),
          entry("Model", orNone(e.model))};
      if (system) s.push_back(entry("Command", orNone(e.command)));
      s.push_back(entry("Maximum paper size", paperText(e.maximumPaperSize)));
      s.push_back(entry("Size X, Y [mm]", number(e.xSize) + ", " + number(e.ySize)));
      s.push_back(entry("Offset X, Y [mm]", number(e.xOffset) + ", " + number(e.yOffset)));
      s.push_back(entry("Default line thickness", number(e.lineThickness)));
      s.push_back(entry("Default", yesNo(i == chosen)));
      sections.push_back(s);
    }
  }
  return sections;
}

Section miscellaneousSection() {
  const Configuration& c = configuration();
  const ProgramState& p = program();
  static const char* nameTypes[] = {"unix-short", "unix-long", "dos"};
  const int nameType = std::clamp(p.fileNameType, NamesUnixShort, NamesDos);
  Section s{title("Miscellaneous"),
            "",
            entry("Primary data directory", orNone(c.primaryDataDirectory)),
            entry("Secondary data directory", orNone(c.secondaryDataDirectory)),
            entry("Primary font directory", orNone(c.primaryFontDirectory)),
            entry("Secondary font directory", orNone(c.secondaryFontDirectory)),
            entry("Primary printer directory", orNone(c.primaryPrinterDirectory)),
            entry("Secondary printer directory", orNone(c.secondaryPrinterDirectory)),
            entry("Primary module directory", orNone(c.primaryModuleDirectory)),
            entry("Secondary module directory", orNone(c.secondaryModuleDirectory)),
            entry("Primary terminal directory", orNone(c.primaryTerminalDirectory)),
            entry("Secondary terminal directory", orNone(c.secondaryTerminalDirectory)),
            entry("Spool directory", orNone(c.spoolDirectory)),
            entry("Printer heading name", orNone(c.printerHeadingName)),
            entry("Default project", orNone(c.defaultProject)),
            entry("Default company", orNone(c.defaultCompany)),
            entry("Default user", orNone(c.defaultUser)),
            entry("File name type", nameTypes[nameType - 1]),
            entry("Show time [sec]", fmt::stripped(fmt::I(p.showTime, 6)))};
  if (c.fileCount == 0) s.push_back(entry("Configuration file", "(none)"));
  for (int i = 1; i <= c.fileCount; ++i) s.push_back(entry("Configuration file", c.files(i)));
  return s;
}

// Packs sections into blocks of at most `lines` lines; a section too long
// for one block goes on under its title, marked as continued.
std::vector<std::string> packBlocks(const std::vector<Section>& sections, int lines) {
  std::vector<std::string> blocks;
  for (const Section& section : sections) {
    std::size_t next = 0;
    while (next < section.size()) {
      std::string block;
      int used = 0;
      if (next > 0) {
        block = section.front() + "{YEL (continued)";
        used = 1;
      }
      while (next < section.size() && used < lines) {
        if (used > 0) block += "{NWL";
        block += section[next++];
        ++used;
      }
      blocks.push_back(block);
    }
  }
  return blocks;
}

// Shows or prints the blocks of a listing, page by page.
void pageListing(const std::vector<Section>& sections) {
  const bool printing = printerState().open;
  const int lines =
      printing ? printerPageLength() - 1 - 2 * BlockGapLines : program().screenLines - 4;
  if (lines < 2) {
    ERRSCN(printing ? "Attempt to exceed number of lines on printer{nwl{gre(maximum is " +
                          fmt::I(printerPageLength(), 4) + ")"
                    : "Attempt to exceed number of lines on screen{nwl{gre(maximum is " +
                          fmt::I(program().screenLines, 4) + ")");
    return;
  }
  const std::vector<std::string> blocks = packBlocks(sections, lines);
  if (blocks.empty()) return;
  const int last = static_cast<int>(blocks.size());
  int current = 1;
  scrollRow() = 1;
  for (;;) {
    bool stop = false;
    SCROLL(blocks[static_cast<std::size_t>(current - 1)], last, current, stop);
    if (stop || printJobFailed() || (printing && !printerState().open)) return;
    current = std::clamp(current, 1, last);
  }
}

void printConfiguration(bool& status) {
  static const std::array<std::string, 12> rows{"Print display",
                                                "",
                                                "Print printer(s) (outline)",
                                                "Print printer(s) (detailed)",
                                                "",
                                                "Print plotter(s) (outline)",
                                                "Print plotter(s) (detailed)",
                                                "",
                                                "Print miscellaneous",
                                                "",
                                                "Print ALL (outline)",
                                                "Print ALL (detailed)"};
  for (;;) {
    const int selection = subMenu("PRINT CONFIGURATION ", rows, "", status);
    if (selection == 0) return;
    std::vector<Section> sections;
    auto add = [&](std::vector<Section> more) {
      for (Section& s : more) sections.push_back(std::move(s));
    };
    const bool all = selection >= 7;
    const bool detailed = selection == 3 || selection == 5 || selection == 8;
    if (selection == 1 || all) sections.push_back(displaySection());
    if (selection == 2 || selection == 3 || all) add(printerSections(detailed));
    if (selection == 4 || selection == 5 || all) add(plotterSections(detailed));
    if (selection == 6 || all) sections.push_back(miscellaneousSection());

    bool cancelled = false, failed = false;
    printerState().listingTitle = "Program configuration";
    SLPRNT(cancelled, failed);
    if (!cancelled && !failed) pageListing(sections);
    CLPRNT(!cancelled && !failed, failed);
  }
}

}  // namespace

void EMRPER(int kind, bool& status) {
  status = false;
  if (kind != GeneralErrorReport && kind != ModuleErrorReport) {
    fail("PROGRAM ERROR FROM SUBROUTINE ** EMRPER **", status);
    return;
  }
  if (!mailProgramAvailable()) {
    mailFailed();
    status = true;
    return;
  }
  std::string description;
  if (!askName("Input short description of the error? (in quotes, max 80 characters)", "",
               description))
    return;

  // The report goes into a file beside the print spool, then to the mail.
  const ProgramState& p = program();
  std::string date, time;
  GTDATE(date);
  GTTIME(time);
  const std::string module = fmt::stripped(p.SPNAME) + " " + fmt::stripped(p.SPVERS);
  const std::string subject =
      kind == GeneralErrorReport ? "Tarvik error report" : "Tarvik error report for " + module;
  std::string name = spoolFileName();
  name += ".mail";
  int unit = 0;
  IQFUNT(unit, status);
  if (status) return;
  AtomicWriter file;
  int io = file.open(unit, name);
  const std::string lines[] = {
      subject,
      "",
      "Package : " + fmt::stripped(p.packageName) + " " + fmt::stripped(p.packageVersion),
      "Module  : " + module,
      "System  : " + fmt::stripped(p.operatingSystem),
      "Project : " + fmt::stripped(p.projectName),
      "Company : " + fmt::stripped(p.company),
      "User    : " + fmt::stripped(p.user),
      "Date    : " + date + " at " + time,
      "",
      description,
  };
  for (const std::string& line : lines)
    if (io == 0) io = file.writeLine(line);
  if (io == 0) io = file.commit();
  if (io != 0) {
    IOERRM('W', name, io);
    status = true;
    return;
  }
  const int result = runCommandQuietly("mail -s " + shellQuoted(subject) + " " + ErrorReportAddress +
                                " < " + shellQuoted(name));
  std::error_code ignored;
  std::filesystem::remove(name, ignored);
  if (result != 0) {
    mailFailed();
    status = true;
  }
}

void SYMENU(bool& status) {
  status = false;
  static const std::array<std::string, 10> items{
      "Project manipulation", "Attributes",         "File manipulation",        "Log file",
      "User processes",       "Operating system",   "Print module limitations", "Test plot scaling",
      "Errors & mail",        "Print configuration"};
  for (;;) {
    bool failed = false;
    const int selection = subMenu("PROGRAM MANIPULATION ", items, "", failed);
    if (failed) {
      status = true;
      return;
    }
    if (selection == 0) return;
    // A sub-menu that does not fit the screen has said so; this menu goes on.
    switch (selection) {
      case 1:
        projectMenu(failed);
        break;
      case 2:
        attributesMenu(failed);
        break;
      case 3:
        fileMenu(failed);
        break;
      case 4:
        logMenu(failed);
        break;
      case 5:
        processList();
        break;
      case 6:
        operatingSystem();
        break;
      case 7:
        moduleLimits();
        break;
      case 8:
        if (services().testPlot)
          services().testPlot(failed);
        else
          notInThisVersion();
        break;
      case 9:
        mailMenu(failed);
        break;
      default:
        printConfiguration(failed);
        break;
    }
  }
}

}  // namespace kntr::framework
