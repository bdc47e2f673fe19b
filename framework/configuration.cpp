#include "framework/configuration.h"

#include <charconv>
#include <cmath>
#include <cstdlib>
#include <string>

#include "framework/files.h"
#include "framework/format.h"
#include "framework/projects.h"
#include "framework/startup.h"
#include "framework/state.h"
#include "framework/text.h"
#include "platform/console.h"

namespace kntr::framework {

namespace {

// Where the site's configuration files live. KNTR_SITE_CONFIG_DIR, when set,
// takes the place of /usr/local/etc, so that tests and trial installations
// need not write there.
constexpr const char* SiteDirectory = "/usr/local/etc";
constexpr const char* SiteDirectoryVariable = "KNTR_SITE_CONFIG_DIR";

// Terminal type when neither "-terminal" nor TERM names one.
constexpr const char* DeviceDefaultTerminal = "xterm";

// Extension of terminal definition files.
constexpr const char* TerminalExtension = ".TERM";

constexpr char Escape = '\x1b';

// --- small text helpers -------------------------------------------------------



// A value stored in a field of `width` characters.
std::string cut(std::string_view text, int width) {
  return std::string(text.substr(0, static_cast<std::size_t>(width)));
}

// An environment variable, blank when unset.
std::string environment(const char* name) {
  std::string value;
  GTENVV(name, value);
  return fmt::stripped(value);
}

// One line to standard output.
void say(std::string_view text) {
  std::string line(text);
  line.push_back('\n');
  platform::writeStandardOutput(line);
}

// The pause after a start-up message: one line of input, whatever it says.
void waitForLine() {
  std::string line;
  platform::WinConF::getString(line);
}

std::string statusLine(int ioStatus) {
  return "(I/O status is " + fmt::I(ioStatus, 4) + ")";
}

// Integer in the manner of a run-time I format as wide as the text: an
// optional sign and digits. 0 or an I/O status.
int convertInteger(std::string_view text, int& value) {
  const std::string t = fmt::stripped(text);
  if (t.empty()) return IoReadUnexpected;
  std::size_t start = (t[0] == '+') ? 1 : 0;
  if (start == t.size()) return IoReadUnexpected;
  long long v = 0;
  const char* first = t.data() + start;
  const char* last = t.data() + t.size();
  auto [end, error] = std::from_chars(first, last, v);
  if (error == std::errc::result_out_of_range) return IoValueOutOfRange;
  if (error != std::errc() || end != last) return IoReadUnexpected;
  if (v < -2147483647LL - 1 || v > 2147483647LL) return IoValueOutOfRange;
  value = static_cast<int>(v);
  return 0;
}

// Real in the manner of a run-time F format with no decimals: sign, digits
// with an optional point, an optional exponent with E or D. 0 or an I/O
// status.
int convertReal(std::string_view text, double& value) {
  std::string t = fmt::stripped(text);
  std::size_t i = 0;
  if (i < t.size() && (t[i] == '+' || t[i] == '-')) ++i;
  int digits = 0;
  while (i < t.size() && t[i] >= '0' && t[i] <= '9') ++i, ++digits;
  if (i < t.size() && t[i] == '.') {
    ++i;
    while (i < t.size() && t[i] >= '0' && t[i] <= '9') ++i, ++digits;
  }
  if (digits == 0) return IoReadUnexpected;
  if (i < t.size() && (t[i] == 'e' || t[i] == 'E' || t[i] == 'd' || t[i] == 'D')) {
    t[i] = 'E';
    ++i;
    if (i < t.size() && (t[i] == '+' || t[i] == '-')) ++i;
    int exponentDigits = 0;
    while (i < t.size() && t[i] >= '0' && t[i] <= '9') ++i, ++exponentDigits;
    if (exponentDigits == 0) return IoReadUnexpected;
  }
  if (i != t.size()) return IoReadUnexpected;
  const double v = std::strtod(t.c_str(), nullptr);
  if (!std::isfinite(v)) return IoValueOutOfRange;
  value = v;
  return 0;
}

// A configuration or terminal line without its comment, and the value
// behind its first "=". False when nothing is left of the line.
bool splitLine(std::string& line, std::string& value) {
  const std::size_t hash = line.find('#');
  if (hash != std::string::npos) line.resize(hash);
  if (fmt::trimmedLength(line) == 0) return false;
  const std::size_t equals = line.find('=');
  value = (equals == std::string::npos) ? std::string() : fmt::stripped(line.substr(equals + 1));
  return true;
}

// --- configuration keywords -----------------------------------------------------

enum class Key {
  PrimaryData,
  SecondaryData,
  PrimaryFont,
  SecondaryFont,
  PrimaryPrinter,
  SecondaryPrinter,
  PrimaryModule,
  SecondaryModule,
  PrimaryTerminal,
  SecondaryTerminal,
  Spool,
  PrinterCommand,
  PrinterInterface,
  PrinterHeadingName,
  PrinterLines,
  DefinePrinter,
  DeletePrinter,
  DefaultPrinter,
  DeleteAllPrinters,
  FilePrinterInterface,
  FilePrinterLines,
  DefineFilePrinter,
  DeleteFilePrinter,
  DefaultFilePrinter,
  DeleteAllFilePrinters,
  DefaultPlotter,
  PlotterPaper,
  PlotterCommand,
  PlotterInterface,
  PlotterModel,
  DefinePlotter,
  PlotterXSize,
  PlotterYSize,
  PlotterXOffset,
  PlotterYOffset,
  PlotterThickness,
  DeleteAllPlotters,
  DefaultFilePlotter,
  FilePlotterPaper,
  FilePlotterInterface,
  FilePlotterModel,
  DefineFilePlotter,
  FilePlotterXSize,
  FilePlotterYSize,
  FilePlotterXOffset,
  FilePlotterYOffset,
  FilePlotterThickness,
  DisplayHorizontal,
  DisplayVertical,
  DisplayType,
  DisplayStandardGraphics,
  DisplayExtendedGraphics,
  DefaultProject,
  DefaultCompany,
  DefaultUser,
  FileNameType,
  List,
  ShowTime
};

struct Keyword {
  const char* word;
  Key key;
};

// In the order of testing: the first keyword found anywhere in the line wins.
constexpr Keyword Keywords[] = {
    {"primary-data-directory", Key::PrimaryData},
    {"secondary-data-directory", Key::SecondaryData},
    {"primary-font-directory", Key::PrimaryFont},
    {"secondary-font-directory", Key::SecondaryFont},
    {"primary-printer-directory", Key::PrimaryPrinter},
    {"secondary-printer-directory", Key::SecondaryPrinter},
    {"primary-module-directory", Key::PrimaryModule},
    {"secondary-module-directory", Key::SecondaryModule},
    {"primary-terminal-directory", Key::PrimaryTerminal},
    {"secondary-terminal-directory", Key::SecondaryTerminal},
    {"spool-directory", Key::Spool},
    {"printer-command", Key::PrinterCommand},
    {"printer-interface", Key::PrinterInterface},
    {"printer-heading-name", Key::PrinterHeadingName},
    {"printer-lines", Key::PrinterLines},
    {"define-printer", Key::DefinePrinter},
    {"delete-printer", Key::DeletePrinter},
    {"default-printer", Key::DefaultPrinter},
    {"delete-all-printers", Key::DeleteAllPrinters},
    {"file-prt-interface", Key::FilePrinterInterface},
    {"file-prt-lines", Key::FilePrinterLines},
    {"define-file-prt", Key::DefineFilePrinter},
    {"delete-file-prt", Key::DeleteFilePrinter},
    {"default-file-prt", Key::DefaultFilePrinter},
    {"delete-all-file-prt", Key::DeleteAllFilePrinters},
    {"default-plotter", Key::DefaultPlotter},
    {"plotter-maximum-paper-size", Key::PlotterPaper},
    {"plotter-command", Key::PlotterCommand},
    {"plotter-interface", Key::PlotterInterface},
    {"plotter-model", Key::PlotterModel},
    {"define-plotter", Key::DefinePlotter},
    {"plotter-x-size", Key::PlotterXSize},
    {"plotter-y-size", Key::PlotterYSize},
    {"plotter-x-offset", Key::PlotterXOffset},
    {"plotter-y-offset", Key::PlotterYOffset},
    {"plotter-default-line-thickness", Key::PlotterThickness},
    {"delete-all-plotters", Key::DeleteAllPlotters},
    {"default-file-plt", Key::DefaultFilePlotter},
    {"file-plt-maximum-paper-size", Key::FilePlotterPaper},
    {"file-plt-interface", Key::FilePlotterInterface},
    {"file-plt-model", Key::FilePlotterModel},
    {"define-file-plt", Key::DefineFilePlotter},
    {"file-plt-x-size", Key::FilePlotterXSize},
    {"file-plt-y-size", Key::FilePlotterYSize},
    {"file-plt-x-offset", Key::FilePlotterXOffset},
    {"file-plt-y-offset", Key::FilePlotterYOffset},
    {"file-plt-default-line-thickness", Key::FilePlotterThickness},
    {"display-percent-horisontal", Key::DisplayHorizontal},
    {"display-percent-vertical", Key::DisplayVertical},
    {"display-type", Key::DisplayType},
    {"display-standard-graphics", Key::DisplayStandardGraphics},
    {"display-extended-graphics", Key::DisplayExtendedGraphics},
    {"default-project", Key::DefaultProject},
    {"default-company", Key::DefaultCompany},
    {"default-user", Key::DefaultUser},
    {"file-name-type", Key::FileNameType},
    {"list", Key::List},
    {"show-time", Key::ShowTime},
};

// --- table operations -------------------------------------------------------------

template <class Table>
int findByName(const Table& table, std::string_view name) {
  for (int i = 1; i <= table.count; ++i)
    if (table.entry(i).name == name) return i;
  return 0;
}

// Starts a new entry, also when one of that name exists already (the
// details that follow go to the new one). False when the table is full.
template <class Table, class Entry>
bool defineEntry(Table& table, std::string_view value) {
  const std::string name = cut(value, DeviceFieldWidth);
  if (name.empty()) return true;
  if (table.count >= table.entry.size()) return false;
  ++table.count;
  table.entry(table.count) = Entry{};
  table.entry(table.count).name = name;
  table.current = table.count;
  return true;
}

template <class Table, class Entry>
void deleteEntry(Table& table, std::string_view value) {
  const int k = findByName(table, cut(value, DeviceFieldWidth));
  if (k == 0) return;
  for (int i = k; i < table.count; ++i) table.entry(i) = table.entry(i + 1);
  table.entry(table.count) = Entry{};
  --table.count;
  for (int* index : {&table.defaultIndex, &table.current}) {
    if (*index == k)
      *index = 0;
    else if (*index > k)
      --*index;
  }
}

template <class Table, class Entry>
void deleteAll(Table& table) {
  for (int i = 1; i <= table.count; ++i) table.entry(i) = Entry{};
  table.count = 0;
  table.defaultIndex = 0;
  table.current = 0;
}

template <class Table>
void setDefault(Table& table, std::string_view value) {
  if (const int k = findByName(table, cut(value, DeviceFieldWidth)); k > 0) table.defaultIndex = k;
}

// --- one configuration line -------------------------------------------------------

void conversionFailed(int ioStatus, bool& status) {
  say("Attempt to read from internal file failed");
  say(statusLine(ioStatus));
  status = true;
}

// Acts on one line that is left after the comment cut; `value` is what stands
// behind its "=".
void interpretLine(const std::string& line, const std::string& value, bool& status) {
  const Keyword* hit = nullptr;
  for (const Keyword& k : Keywords) {
    if (line.find(k.word) != std::string::npos) {
      hit = &k;
      break;
    }
  }
  if (!hit) return;

  Configuration& c = configuration();
  PrinterEntry* printerEntry =
      c.printers.current > 0 ? &c.printers.entry(c.printers.current) : nullptr;
  PrinterEntry* filePrinterEntry =
      c.filePrinters.current > 0 ? &c.filePrinters.entry(c.filePrinters.current) : nullptr;
  PlotterEntry* plotterEntry =
      c.plotters.current > 0 ? &c.plotters.entry(c.plotters.current) : nullptr;
  PlotterEntry* filePlotterEntry =
      c.filePlotters.current > 0 ? &c.filePlotters.entry(c.filePlotters.current) : nullptr;

  auto integer = [&](int* target) {
    int v = 0;
    if (const int io = convertInteger(value, v); io != 0) return conversionFailed(io, status);
    if (target) *target = v;
  };
  auto real = [&](double* target) {
    double v = 0.0;
    if (const int io = convertReal(value, v); io != 0) return conversionFailed(io, status);
    if (target) *target = v;
  };
  auto text = [&](std::string* target, int width) {
    if (target) *target = cut(value, width);
  };
  auto field = [](auto* entry, auto member) { return entry ? &(entry->*member) : nullptr; };

  switch (hit->key) {
    case Key::PrimaryData:
      return text(&c.primaryDataDirectory, DirectoryWidth);
    case Key::SecondaryData:
      return text(&c.secondaryDataDirectory, DirectoryWidth);
    case Key::PrimaryFont:
      return text(&c.primaryFontDirectory, DirectoryWidth);
    case Key::SecondaryFont:
      return text(&c.secondaryFontDirectory, DirectoryWidth);
    case Key::PrimaryPrinter:
      return text(&c.primaryPrinterDirectory, DirectoryWidth);
    case Key::SecondaryPrinter:
      return text(&c.secondaryPrinterDirectory, DirectoryWidth);
    case Key::PrimaryModule:
      return text(&c.primaryModuleDirectory, DirectoryWidth);
    case Key::SecondaryModule:
      return text(&c.secondaryModuleDirectory, DirectoryWidth);
    case Key::PrimaryTerminal:
      return text(&c.primaryTerminalDirectory, DirectoryWidth);
    case Key::SecondaryTerminal:
      return text(&c.secondaryTerminalDirectory, DirectoryWidth);
    case Key::Spool:
      return text(&c.spoolDirectory, SpoolDirectoryWidth);

    case Key::PrinterCommand:
      return text(field(printerEntry, &PrinterEntry::command), DeviceFieldWidth);
    case Key::PrinterInterface:
      return text(field(printerEntry, &PrinterEntry::interface), DeviceFieldWidth);
    case Key::PrinterHeadingName:
      return text(&c.printerHeadingName, HeadingNameWidth);
    case Key::PrinterLines:
      return integer(field(printerEntry, &PrinterEntry::linesPerPage));
    case Key::DefinePrinter:
      if (!defineEntry<decltype(c.printers), PrinterEntry>(c.printers, value)) {
        say("Maximum number of printer definition exceeded");
        say("(maximum is " + std::to_string(MaxPrinters) + ")");
        status = true;
      }
      return;
    case Key::DeletePrinter:
      return deleteEntry<decltype(c.printers), PrinterEntry>(c.printers, value);
    case Key::DefaultPrinter:
      return setDefault(c.printers, value);
    case Key::DeleteAllPrinters:
      return deleteAll<decltype(c.printers), PrinterEntry>(c.printers);

    case Key::FilePrinterInterface:
      return text(field(filePrinterEntry, &PrinterEntry::interface), DeviceFieldWidth);
    case Key::FilePrinterLines:
      return integer(field(filePrinterEntry, &PrinterEntry::linesPerPage));
    case Key::DefineFilePrinter:
      if (!defineEntry<decltype(c.filePrinters), PrinterEntry>(c.filePrinters, value)) {
        say("Maximum number of file printer definition exceeded (maximum is " +
            std::to_string(MaxFilePrinters) + ")");
        status = true;
      }
      return;
    case Key::DeleteFilePrinter:
      return deleteEntry<decltype(c.filePrinters), PrinterEntry>(c.filePrinters, value);
    case Key::DefaultFilePrinter:
      return setDefault(c.filePrinters, value);
    case Key::DeleteAllFilePrinters:
      return deleteAll<decltype(c.filePrinters), PrinterEntry>(c.filePrinters);

    case Key::DefaultPlotter:
      return setDefault(c.plotters, value);
    case Key::PlotterPaper:
      return integer(field(plotterEntry, &PlotterEntry::maximumPaperSize));
    case Key::PlotterCommand:
      return text(field(plotterEntry, &PlotterEntry::command), PlotterCommandWidth);
    case Key::PlotterInterface:
      return text(field(plotterEntry, &PlotterEntry::interface), DeviceFieldWidth);
    case Key::PlotterModel:
      return text(field(plotterEntry, &PlotterEntry::model), DeviceFieldWidth);
    case Key::DefinePlotter:
      if (!defineEntry<decltype(c.plotters), PlotterEntry>(c.plotters, value)) {
        say("Maximum number of plotter definition exceeded");
        say("(maximum is " + std::to_string(MaxPlotters) + ")");
        status = true;
      }
      return;
    case Key::PlotterXSize:
      return real(field(plotterEntry, &PlotterEntry::xSize));
    case Key::PlotterYSize:
      return real(field(plotterEntry, &PlotterEntry::ySize));
    case Key::PlotterXOffset:
      return real(field(plotterEntry, &PlotterEntry::xOffset));
    case Key::PlotterYOffset:
      return real(field(plotterEntry, &PlotterEntry::yOffset));
    case Key::PlotterThickness:
      return real(field(plotterEntry, &PlotterEntry::lineThickness));
    case Key::DeleteAllPlotters:
      return deleteAll<decltype(c.plotters), PlotterEntry>(c.plotters);

    case Key::DefaultFilePlotter:
      return setDefault(c.filePlotters, value);
    case Key::FilePlotterPaper:
      return integer(field(filePlotterEntry, &PlotterEntry::maximumPaperSize));
    case Key::FilePlotterInterface:
      return text(field(filePlotterEntry, &PlotterEntry::interface), DeviceFieldWidth);
    case Key::FilePlotterModel:
      return text(field(filePlotterEntry, &PlotterEntry::model), DeviceFieldWidth);
    case Key::DefineFilePlotter:
      if (!defineEntry<decltype(c.filePlotters), PlotterEntry>(c.filePlotters, value)) {
        say("Maximum number of file plotter definitions exceeded");
        say("(maximum is " + std::to_string(MaxFilePlotters) + ")");
        status = true;
      }
      return;
    case Key::FilePlotterXSize:
      return real(field(filePlotterEntry, &PlotterEntry::xSize));
    case Key::FilePlotterYSize:
      return real(field(filePlotterEntry, &PlotterEntry::ySize));
    case Key::FilePlotterXOffset:
      return real(field(filePlotterEntry, &PlotterEntry::xOffset));
    case Key::FilePlotterYOffset:
      return real(field(filePlotterEntry, &PlotterEntry::yOffset));
    case Key::FilePlotterThickness:
      return real(field(filePlotterEntry, &PlotterEntry::lineThickness));

    case Key::DisplayHorizontal:
      return real(&c.displayPercentHorizontal);
    case Key::DisplayVertical:
      return real(&c.displayPercentVertical);
    case Key::DisplayType:
      if (value == "standard-color")
        c.displayType = DisplayStandardColour;
      else if (value == "extended-color")
        c.displayType = DisplayExtendedColour;
      else
        c.displayType = DisplayMonochrome;
      return;
    case Key::DisplayStandardGraphics:
      return text(&c.standardGraphics, GraphicsNameWidth);
    case Key::DisplayExtendedGraphics:
      return text(&c.extendedGraphics, GraphicsNameWidth);

    case Key::DefaultProject:
      text(&c.defaultProject, DefaultProjectWidth);
      program().defaultProject = c.defaultProject;
      return;
    case Key::DefaultCompany:
      text(&c.defaultCompany, DefaultIdentificationWidth);
      program().defaultCompany = c.defaultCompany;
      return;
    case Key::DefaultUser:
      text(&c.defaultUser, DefaultIdentificationWidth);
      program().defaultUser = c.defaultUser;
      return;
    case Key::FileNameType:
      if (value == "unix-short")
        program().fileNameType = 1;
      else if (value == "unix-long")
        program().fileNameType = 2;
      else if (value == "dos")
        program().fileNameType = 3;
      return;
    case Key::List:
      if (value == "on")
        c.list = true;
      else if (value == "off")
        c.list = false;
      return;
    case Key::ShowTime:
      return integer(&program().showTime);
  }
}

// A failed file operation on a configuration file, in three lines.
void configurationFileFailed(const char* what, const std::string& name, int ioStatus,
                             bool& status) {
  say(what);
  say("** " + name + " **");
  say(statusLine(ioStatus));
  status = true;
}

void registerFile(const std::string& name) {
  Configuration& c = configuration();
  if (c.fileCount >= MaxConfigurationFiles) return;
  ++c.fileCount;
  c.files(c.fileCount) = cut(name, OptionPathWidth);
}

// --- terminals -------------------------------------------------------------------

void addToken(TerminalTable& t, std::string_view name, std::string on, std::string off = {},
              int kind = TokenGroup) {
  if (t.count >= MaxTerminalTokens) return;
  ++t.count;
  TerminalToken& token = t.token(t.count);
  token.name = std::string(name);
  token.on = cut(on, TerminalStringWidth);
  token.off = cut(off, TerminalStringWidth);
  token.kind = kind;
}

std::string esc(std::string_view rest) {
  return std::string(1, Escape) + std::string(rest);
}

void addBoxTokens(TerminalTable& t) {
  for (const char* corner : {"ULC", "URC", "LLC", "LRC"}) addToken(t, corner, "+");
  addToken(t, "HLN", "-");
  addToken(t, "VLN", "!");
  for (const char* cross : {"CRS", "TDN", "TRG", "TUP", "TLF"}) addToken(t, cross, "+");
}

// The colour tokens in the order of the token list, on eight colour slots.
constexpr const char* ColourTokens[] = {"BCK", "WHI", "RED", "YEL", "GRE", "CYA", "BLU", "MAG"};

enum class Family { Hp, HpWorkstation, HpTerm, Vt, Xterm, Unknown };

// Family and size of a built-in terminal type.
Family builtInFamily(std::string_view name, int& columns, int& lines) {
  columns = 80;
  lines = 24;
  for (const char* n : {"70092", "hp2397", "hp2622", "hp2623", "hp2627"})
    if (name == n) return Family::Hp;
  if (name == "70092-w") {
    columns = 132;
    return Family::Hp;
  }
  for (const char* n : {"hp98550", "hp98704", "hp98735"}) {
    if (name == n) {
      columns = 128;
      lines = 49;
      return Family::HpWorkstation;
    }
  }
  if (name == "hpterm") return Family::HpTerm;
  if (name == "hpterm-36")
    lines = 36;
  else if (name == "hpterm-46")
    lines = 46;
  else if (name == "hpterm-50")
    lines = 50;
  if (lines != 24) return Family::HpTerm;
  for (const char* n : {"vt52", "vt100", "vt125", "vt132"})
    if (name == n) return Family::Vt;
  for (const char* n : {"xterm", "vt220", "dtterm", "ntterm", "xntterm", "wterm"})
    if (name == n) return Family::Xterm;
  // the terminal emulators of today all speak the xterm sequences
  for (const char* prefix : {"xterm-", "screen", "tmux", "rxvt", "linux", "konsole", "gnome", "vte",
                             "alacritty", "kitty", "foot"})
    if (name.starts_with(prefix)) return Family::Xterm;
  return Family::Unknown;
}

// Fills the table for a built-in terminal type; false for an unknown one.
bool builtInTerminal(TerminalTable& t) {
  int columns = 80, lines = 24;
  const Family family = builtInFamily(t.name, columns, lines);
  if (family == Family::Unknown) return false;
  t.columns = columns;
  t.lines = lines;
  const bool hp =
      family == Family::Hp || family == Family::HpWorkstation || family == Family::HpTerm;
  if (hp) {
    const std::string home = esc("&a0y0C") + esc("J");
    const std::string bottom = family == Family::HpWorkstation
                                   ? esc("&a+49R")
                                   : esc("&a" + std::to_string(lines - 1) + "y0C");
    addToken(t, "CST", home);
    addToken(t, "CSB", home + bottom);
  } else {
    addToken(t, "CST", esc("[2J") + esc("[1;1H"));
    addToken(t, "CSB",
             family == Family::Vt ? esc("[2J") + esc("[1;1f")
                                  : esc("[2J") + esc("[" + std::to_string(lines) + ";1H"));
  }
  addToken(t, "NWL", "\n");
  addToken(t, "BEL", "\a");
  if (hp) {
    const std::string off = esc("&d@");
    addToken(t, "HGL", esc("&dsD"), off, TokenToggle);
    addToken(t, "BLK", esc("&dA"), off, TokenToggle);
    addToken(t, "INV", esc("&dB"), off, TokenToggle);
    addToken(t, "UDL", esc("&dD"), off, TokenToggle);
  } else {
    const std::string off = esc("[0m");
    addToken(t, "HGL", esc("[1m"), off, TokenToggle);
    addToken(t, "BLD", esc("[1m"), off, TokenToggle);
    addToken(t, "BLK", esc("[5m"), off, TokenToggle);
    addToken(t, "INV", esc("[7m"), off, TokenToggle);
    addToken(t, "UDL", esc("[4m"), off, TokenToggle);
  }
  if (family == Family::HpTerm) {
    for (int i = 0; i < 8; ++i) addToken(t, ColourTokens[i], esc("&v" + std::to_string(i) + "S"));
  } else if (family == Family::Xterm) {
    constexpr int Ansi[] = {30, 37, 31, 33, 32, 36, 34, 35};
    for (int i = 0; i < 8; ++i)
      addToken(t, ColourTokens[i], esc("[" + std::to_string(Ansi[i]) + "m"));
  }
  addBoxTokens(t);
  addToken(t, "NWM", " ->");
  return true;
}

// The table of a terminal nobody knows: the first four tokens, in VT form.
void minimalTerminal(TerminalTable& t) {
  t.columns = 80;
  t.lines = 24;
  addToken(t, "CST", esc("[2J") + esc("[1;1H"));
  addToken(t, "CSB", esc("[2J") + esc("[24;1H"));
  addToken(t, "NWL", "\n");
  addToken(t, "BEL", "\a");
}

// A sequence of a definition file as bytes: "\E", "\e" and "^[" stand for
// the escape character, "\\" for a backslash; anything else as it stands.
std::string sequence(std::string_view text) {
  std::string out;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    const char next = i + 1 < text.size() ? text[i + 1] : '\0';
    if (c == '\\' && (next == 'E' || next == 'e')) {
      out.push_back(Escape);
      ++i;
    } else if (c == '\\' && next == '\\') {
      out.push_back('\\');
      ++i;
    } else if (c == '^' && next == '[') {
      out.push_back(Escape);
      ++i;
    } else {
      out.push_back(c);
    }
  }
  return out;
}

// One "terminal-output" value: name, mark, on-text, mark, off-text.
void terminalOutput(const std::string& value, bool& status) {
  TerminalTable& t = terminal();
  const std::size_t firstMark = value.find(t.punctuation);
  std::string name = fmt::upper(fmt::stripped(value.substr(0, firstMark)));
  std::string on, off;
  if (firstMark != std::string::npos) {
    const std::string rest = value.substr(firstMark + 1);
    const std::size_t secondMark = rest.find(t.punctuation);
    on = rest.substr(0, secondMark);
    if (secondMark != std::string::npos) off = rest.substr(secondMark + 1);
  }
  if (name.size() != 3) {
    IOINTL('R', IoReadUnexpected);
    status = true;
    return;
  }
  for (int i = 1; i <= t.count; ++i) {
    if (t.token(i).name == name) {
      t.token(i).on = cut(sequence(on), TerminalStringWidth);
      t.token(i).off = cut(sequence(off), TerminalStringWidth);
      return;
    }
  }
  if (t.count >= MaxTerminalTokens) {
    fail("Maximum number of terminal tokens exceeded{nwl{gre(maximum is " +
           std::to_string(MaxTerminalTokens) + ")", status);
    return;
  }
  addToken(t, name, sequence(on), sequence(off), off.empty() ? TokenGroup : TokenToggle);
}

}  // namespace

// --- state blocks --------------------------------------------------------------

CommandLineOptions& commandLine() {
  static CommandLineOptions options;
  return options;
}

void resetCommandLine() {
  commandLine() = CommandLineOptions{};
}

Configuration& configuration() {
  static Configuration state;
  return state;
}

void resetConfiguration() {
  configuration() = Configuration{};
  program().fileNameType = 1;
  program().showTime = 2;
  // The identification defaults come from the files alone.
  program().defaultProject.clear();
  program().defaultCompany.clear();
  program().defaultUser.clear();
}

TerminalTable& terminal() {
  static TerminalTable table;
  return table;
}

void resetTerminal() {
  terminal() = TerminalTable{};
}

const TerminalToken* findTerminalToken(std::string_view name) {
  const TerminalTable& t = terminal();
  for (int i = 1; i <= t.count; ++i)
    if (t.token(i).name == name) return &t.token(i);
  return nullptr;
}

// --- routines ---------------------------------------------------------------------

void GTPGOP(bool& status) {
  status = false;
  CommandLineOptions& o = commandLine();
  const std::vector<std::string>& arguments = program().arguments;
  const int n = static_cast<int>(arguments.size());
  // Element 0 is the program's own name.
  int i = 1;
  while (i < n) {
    const std::string& option = arguments[static_cast<std::size_t>(i)];
    const bool columns = option == "-columns" || option == "-colu";
    const bool lines = option == "-lines" || option == "-line";
    const bool configurationFile = option == "-configuration" || option == "-conf";
    const bool terminalName = option == "-terminal" || option == "-term";
    const bool file = option == "-file";
    if (!(columns || lines || configurationFile || terminalName || file)) {
      // Other words are skipped; one that looks like an option is named.
      if (option.size() > 1 && option[0] == '-')
        say(" (GTPGOP) Unknown option ** " + option + " ** ignored");
      ++i;
      continue;
    }
    // an option without its value ends the scan
    if (i + 1 >= n) return;
    const std::string& value = arguments[static_cast<std::size_t>(i + 1)];
    if (columns || lines) {
      int number = 0;
      if (const int io = convertInteger(value, number); io != 0) {
        say(" (GTPGOP) I/O problems");
        say(" " + statusLine(io));
        status = true;
        return;
      }
      (columns ? o.columns : o.lines) = number;
      (columns ? o.columnsGiven : o.linesGiven) = true;
    } else if (configurationFile) {
      o.configuration = cut(value, OptionPathWidth);
      o.configurationGiven = true;
    } else if (terminalName) {
      o.terminal = cut(value, OptionTerminalWidth);
      o.terminalGiven = true;
    } else {
      o.file = cut(value, OptionPathWidth);
      o.fileLength = fmt::trimmedLength(o.terminal);
      o.fileGiven = true;
    }
    i += 2;
  }
}

void CFSETP(bool& status) {
  status = false;
  resetConfiguration();
  const ProgramState& p = program();
  std::string site = environment(SiteDirectoryVariable);
  if (site.empty()) site = SiteDirectory;

  // the site's file: the one named on the command line, the installation's,
  // or the general one
  std::string first;
  if (commandLine().configurationGiven)
    first = fmt::stripped(commandLine().configuration);
  else if (fmt::trimmedLength(p.installationPath) > 0)
    first = fmt::stripped(p.installationPath) + "/config/Tarvik.ini";
  else
    first = site + "/Tarvik-" + p.packageVersion + ".rc";
  if (fileExists(first)) {
    registerFile(first);
  } else if (const std::string general = site + "/Tarvik.rc"; fileExists(general)) {
    registerFile(general);
  }

  // then the file that TARVIKRC names, or else the user's own
  if (const std::string named = environment("TARVIKRC"); !named.empty()) {
    if (fileExists(named)) {
      registerFile(named);
    } else {
      const std::size_t keep = 73;
      say(" Configuration file");
      say(" ** " + (named.size() > keep ? named.substr(named.size() - keep) : named) + " **");
      say(" defined by environment variable");
      say(" ** TARVIKRC ** does not exist");
    }
  } else {
    const std::string home = environment("HOME");
    if (home.empty()) {
      say(" (CFSETP) Unable to get home drive defined by environment variable >HOME<");
      say(" To continue press <R>");
      waitForLine();
      status = true;
      return;
    }
    const std::string own =
        home + (home.back() == '/' ? "" : "/") + "T-cnfg/Tarvik-" + p.packageVersion + ".ini";
    if (fileExists(own)) registerFile(own);
  }

  Configuration& c = configuration();
  if (c.fileCount == 0) {
    say(" No configuration files available");
    say(" using minimum configuration");
    return;
  }
  for (int i = 1; i <= c.fileCount; ++i) {
    const std::string name = c.files(i);
    RDCONF(name, status);
    if (status) return;
  }
}

void RDCONF(std::string_view fileName, bool& status) {
  status = false;
  const std::string name(fileName);
  program().workFileName = name;
  if (!fileExists(name)) {
    say("Configuration file ** " + name + " ** does not exist");
    status = true;
    return;
  }
  int unit = 0;
  IQFUNT(unit, status);
  if (status) return;
  TextReader reader;
  if (const int io = reader.open(unit, name); io != 0)
    return configurationFileFailed("Attempt to open configuration file failed", name, io, status);

  std::string line, value;
  for (;;) {
    const int io = reader.readLine(line);
    if (io < 0) break;
    if (io > 0)
      return configurationFileFailed("Attempt to read from configuration file failed", name, io,
                                     status);
    if (static_cast<int>(line.size()) > ConfigurationLineWidth) line.resize(ConfigurationLineWidth);
    if (configuration().list) {
      const std::string number = fmt::I(reader.lineNumber(), 4) + ":";
      say(fmt::trimmedLength(line) == 0 ? number : number + line);
    }
    if (!splitLine(line, value)) continue;
    interpretLine(line, value, status);
    if (status) return;
  }
  if (const int io = reader.close(); io != 0)
    configurationFileFailed("Attempt to close configuration file failed", name, io, status);
}

void IZTERM(bool& status) {
  status = false;
  resetTerminal();
  TerminalTable& t = terminal();
  const CommandLineOptions& o = commandLine();
  const std::string term = environment("TERM");
  t.display = environment("DISPLAY");
  t.windowManagerDirectory = environment("WMDIR");
  const std::string columnsVariable = environment("COLUMNS");
  const std::string linesVariable = environment("LINES");

  if (o.terminalGiven && fmt::trimmedLength(o.terminal) > 0)
    t.name = fmt::stripped(o.terminal);
  else if (!term.empty())
    t.name = cut(term, TerminalNameWidth);
  else
    t.name = DeviceDefaultTerminal;

  // the size asked for: options first, then the environment; a size below 1
  // is no size
  int columns = 0, lines = 0;
  if (o.columnsGiven) {
    columns = o.columns;
  } else if (!columnsVariable.empty()) {
    if (const int io = convertInteger(columnsVariable, columns); io != 0) {
      IOINTL('R', io);
      status = true;
      return;
    }
  }
  if (o.linesGiven) {
    lines = o.lines;
  } else if (!linesVariable.empty()) {
    if (const int io = convertInteger(linesVariable, lines); io != 0) {
      IOINTL('R', io);
      status = true;
      return;
    }
  }

  // the definition file, else the built-in table
  const Configuration& c = configuration();
  bool defined = false;
  for (const std::string* directory :
       {&c.primaryTerminalDirectory, &c.secondaryTerminalDirectory}) {
    const std::string d = fmt::stripped(*directory);
    if (d.empty()) continue;
    const std::string file = d + "/" + t.name + TerminalExtension;
    if (!fileExists(file)) continue;
    RDTERM(file, status);
    if (status) return;
    defined = true;
    break;
  }
  if (!defined && !builtInTerminal(t)) {
    minimalTerminal(t);
    ERRSCN("Undefined terminal type ** {gre" + t.name + "{red **");
  }

  if (columns > 0) t.columns = columns;
  if (lines > 0) t.lines = lines;
  t.columnsFixed = t.columnsFixed || columns > 0;
  t.linesFixed = t.linesFixed || lines > 0;
  program().screenColumns = t.columns;
  program().screenLines = t.lines;
}

void takeConsoleSize() {
  ProgramState& p = program();
  const TerminalTable& t = terminal();
  int columns = 0, lines = 0;
  platform::WinConF::getSize(columns, lines);
  if (!t.columnsFixed && columns > 0) p.screenColumns = columns;
  if (!t.linesFixed && lines > 0) p.screenLines = lines;
}

void RDTERM(std::string_view fileName, bool& status) {
  status = false;
  const std::string name(fileName);
  program().workFileName = name;
  TerminalTable& t = terminal();
  if (!fileExists(name)) {
    IOERRM('I', name, IoOpenFailed);
    status = true;
    return;
  }
  TextReader reader;
  if (!openOnFreeUnit(reader, name, status)) return;
  std::string line, value;
  for (;;) {
    const int io = reader.readLine(line);
    if (io < 0) break;
    if (io > 0) {
      IOERRM('R', name, io);
      status = true;
      return;
    }
    if (static_cast<int>(line.size()) > ConfigurationLineWidth) line.resize(ConfigurationLineWidth);
    if (!splitLine(line, value)) continue;
    // the keyword stands before the "="; the sequences behind it may hold
    // anything
    const std::string key = line.substr(0, line.find('='));
    if (key.find("columns") != std::string::npos || key.find("lines") != std::string::npos) {
      int number = 0;
      if (const int bad = convertInteger(value, number); bad != 0) {
        IOINTL('R', bad);
        status = true;
        return;
      }
      if (number > 0) {
        const bool isColumns = key.find("columns") != std::string::npos;
        (isColumns ? t.columns : t.lines) = number;
        (isColumns ? t.columnsFixed : t.linesFixed) = true;
      }
    } else if (key.find("punctuation-mark") != std::string::npos) {
      t.punctuation = value.empty() ? ';' : value[0];
    } else if (key.find("terminal-output") != std::string::npos) {
      terminalOutput(value, status);
      if (status) return;
    }
  }
  if (const int io = reader.close(); io != 0) {
    IOERRM('C', name, io);
    status = true;
  }
}

void IZCONF() {
  services().readConfiguration = CFSETP;
}

// --- reader API --------------------------------------------------------------------

int printerCount(DeviceTable table) {
  const Configuration& c = configuration();
  return table == DeviceTable::System ? c.printers.count : c.filePrinters.count;
}

const PrinterEntry& printer(DeviceTable table, int i) {
  const Configuration& c = configuration();
  return table == DeviceTable::System ? c.printers.entry(i) : c.filePrinters.entry(i);
}

int defaultPrinter(DeviceTable table) {
  const Configuration& c = configuration();
  const int named =
      table == DeviceTable::System ? c.printers.defaultIndex : c.filePrinters.defaultIndex;
  if (named > 0) return named;
  return printerCount(table) > 0 ? 1 : 0;
}

int findPrinter(DeviceTable table, std::string_view name) {
  const Configuration& c = configuration();
  return table == DeviceTable::System ? findByName(c.printers, name)
                                      : findByName(c.filePrinters, name);
}

int plotterCount(DeviceTable table) {
  const Configuration& c = configuration();
  return table == DeviceTable::System ? c.plotters.count : c.filePlotters.count;
}

const PlotterEntry& plotter(DeviceTable table, int i) {
  const Configuration& c = configuration();
  return table == DeviceTable::System ? c.plotters.entry(i) : c.filePlotters.entry(i);
}

int defaultPlotter(DeviceTable table) {
  const Configuration& c = configuration();
  const int named =
      table == DeviceTable::System ? c.plotters.defaultIndex : c.filePlotters.defaultIndex;
  if (named > 0) return named;
  return plotterCount(table) > 0 ? 1 : 0;
}

int findPlotter(DeviceTable table, std::string_view name) {
  const Configuration& c = configuration();
  return table == DeviceTable::System ? findByName(c.plotters, name)
                                      : findByName(c.filePlotters, name);
}

}  // namespace kntr::framework
