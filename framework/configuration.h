// Command line, configuration files and terminal definitions.
//
// A module learns how to run at a site from three sources, read in this order
// at start-up: its command line, one or more configuration files, and the
// terminal definition. A configuration file is a flat list of keyword lines
// ("define-printer=lp1", "printer-lines=72", "# a comment"); most keywords
// describe the printers and plotters of the site, which the printing and
// plotting code later read through the small reader API at the end of this
// header.
//
// Messages of this piece go to standard output as plain lines: most of them
// appear before the console is fully set up.
//
//   GTPGOP  scan the command line into the option values
//   CFSETP  set the defaults, find the configuration files and read them
//   RDCONF  read one configuration file into the site tables
//   IZTERM  set up the terminal table and the screen size
//   RDTERM  read one terminal definition file
//   IZCONF  make "#CONFIG" reach CFSETP
#pragma once

#include <string>
#include <string_view>

#include "framework/onebased.h"

namespace kntr::framework {

// Table capacities.
inline constexpr int MaxPrinters = 24;
inline constexpr int MaxFilePrinters = 24;
inline constexpr int MaxPlotters = 24;
inline constexpr int MaxFilePlotters = 24;
inline constexpr int MaxConfigurationFiles = 3;
inline constexpr int MaxTerminalTokens = 50;

// Field widths: longer values are cut to these.
inline constexpr int OptionPathWidth = 1024;
inline constexpr int OptionTerminalWidth = 64;
inline constexpr int DirectoryWidth = 256;
inline constexpr int SpoolDirectoryWidth = 1024;
inline constexpr int DeviceFieldWidth = 48;  // names, interfaces, models, printer commands
inline constexpr int PlotterCommandWidth = 256;
inline constexpr int HeadingNameWidth = 80;
inline constexpr int GraphicsNameWidth = 16;
inline constexpr int DefaultProjectWidth = 260;
inline constexpr int DefaultIdentificationWidth = 64;
inline constexpr int ConfigurationLineWidth = 256;
inline constexpr int TerminalNameWidth = 64;
inline constexpr int TerminalStringWidth = 40;

// Values a new table entry starts with.
inline constexpr int DefaultPrinterLines = 66;
inline constexpr int DefaultMaximumPaperSize = 4;

// Display types.
inline constexpr int DisplayMonochrome = 1;
inline constexpr int DisplayStandardColour = 2;
inline constexpr int DisplayExtendedColour = 3;

// Token kinds of the terminal table: 1 toggles on and off, 2 belongs to a
// group of which one is on at a time.
inline constexpr int TokenToggle = 1;
inline constexpr int TokenGroup = 2;

// ---------------------------------------------------------------------------
// Command-line options, filled by GTPGOP.

struct CommandLineOptions {
  std::string configuration;  // "-configuration": a file in place of the site's
  bool configurationGiven = false;
  std::string terminal;  // "-terminal": a terminal type in place of TERM
  bool terminalGiven = false;
  std::string file;  // "-file": a file name for the module
  // The length kept with "-file" is that of the terminal name, as it always
  // has been: read `file` itself, never this.
  int fileLength = 0;
  bool fileGiven = false;
  int columns = 0;  // "-columns"
  bool columnsGiven = false;
  int lines = 0;  // "-lines"
  bool linesGiven = false;
};

// The one instance, and its reset (start-up and tests).
CommandLineOptions& commandLine();
void resetCommandLine();

// ---------------------------------------------------------------------------
// Site tables, filled by CFSETP and RDCONF.

struct PrinterEntry {
  std::string name;
  std::string interface;
  std::string command;
  int linesPerPage = DefaultPrinterLines;
};

struct PlotterEntry {
  std::string name;
  std::string interface;
  std::string model;
  std::string command;
  int maximumPaperSize = DefaultMaximumPaperSize;  // paper code, 0 A0 .. 4 A4
  double xSize = 0.0, ySize = 0.0;                 // mm
  double xOffset = 0.0, yOffset = 0.0;             // mm
  double lineThickness = 0.0;
};

// A printer table: entries 1..count, the default named by the configuration
// (0 when none was named), and the entry that detail keywords act on (the
// one most recently defined; 0 when none).
template <int N>
struct PrinterTable {
  Array1<PrinterEntry, N> entry;
  int count = 0;
  int defaultIndex = 0;
  int current = 0;
};

template <int N>
struct PlotterTable {
  Array1<PlotterEntry, N> entry;
  int count = 0;
  int defaultIndex = 0;
  int current = 0;
};

struct Configuration {
  // Directory pairs: primary and secondary.
  std::string primaryDataDirectory, secondaryDataDirectory;
  std::string primaryFontDirectory, secondaryFontDirectory;
  std::string primaryPrinterDirectory, secondaryPrinterDirectory;
  std::string primaryModuleDirectory, secondaryModuleDirectory;
  std::string primaryTerminalDirectory, secondaryTerminalDirectory;
  std::string spoolDirectory;

  PrinterTable<MaxPrinters> printers;
  PrinterTable<MaxFilePrinters> filePrinters;
  PlotterTable<MaxPlotters> plotters;
  PlotterTable<MaxFilePlotters> filePlotters;

  // The middle text of each printed page head.
  std::string printerHeadingName;

  // Graphics window size in per cent of the screen, display type, and the
  // names of the two graphics kinds.
  double displayPercentHorizontal = 80.0;
  double displayPercentVertical = 80.0;
  int displayType = DisplayStandardColour;
  std::string standardGraphics = "X11";
  std::string extendedGraphics = "X11";

  // Defaults of the identification questions.
  std::string defaultProject;
  std::string defaultCompany;
  std::string defaultUser;

  // Echo each configuration line while reading it.
  bool list = false;

  // The configuration files found, in the order they are read.
  Array1<std::string, MaxConfigurationFiles> files;
  int fileCount = 0;
};

// The one instance, and its reset to the defaults (CFSETP does this first).
// The reset also puts the file-name type and the show time of the program
// state back to their defaults, since the configuration sets them.
Configuration& configuration();
void resetConfiguration();

// ---------------------------------------------------------------------------
// Terminal table, filled by IZTERM and RDTERM.

struct TerminalToken {
  std::string name;  // three letters, upper case
  std::string on;    // sequence that switches it on (or does it)
  std::string off;   // sequence that switches it off
  int kind = TokenGroup;
};

struct TerminalTable {
  std::string name;  // terminal type in use
  Array1<TerminalToken, MaxTerminalTokens> token;
  int count = 0;
  int columns = 80;
  int lines = 24;
  // The size was fixed by an option, the environment or a definition file;
  // otherwise the console's own size stands in for the type's default.
  bool columnsFixed = false;
  bool linesFixed = false;
  char punctuation = ';';
  // Environment as read at set-up.
  std::string display;
  std::string windowManagerDirectory;
};

TerminalTable& terminal();
void resetTerminal();

// The token of the terminal table with this name, or null.
const TerminalToken* findTerminalToken(std::string_view name);

// ---------------------------------------------------------------------------
// Routines.

// GTPGOP: scan program().arguments (program name first) into commandLine().
//   Options take the next argument as their value; an option with no value
//   ends the scan; anything else is skipped.
//   status: set when "-columns" or "-lines" is not an integer.
void GTPGOP(bool& status);

// CFSETP: reset the site tables, find the site file and the user's own file
// (or the one named by TARVIKRC), and read them in that order.
//   status: set when the home directory is unknown or a file fails to read.
void CFSETP(bool& status);

// RDCONF: read one configuration file into the site tables; later keys
// override earlier ones.
//   status: set when the file is missing or unreadable, a number does not
//   convert, or a table overflows.
void RDCONF(std::string_view fileName, bool& status);

// IZTERM: choose the terminal type, build its token table (from a definition
// file or the built-in families), and set the screen size of program().
//   status: set when a size does not convert or a definition file fails.
void IZTERM(bool& status);

// The screen's size for the menus: what an option, the environment or a
// terminal definition file fixed, else the console's own size (which stands
// in for a built-in terminal's default). Run after IZTERM and whenever the
// terminal window changes its size.
void takeConsoleSize();

// RDTERM: read a terminal definition file ("columns", "lines",
// "punctuation-mark", "terminal-output") into the terminal table.
//   status: set when the file fails or a value does not convert.
void RDTERM(std::string_view fileName, bool& status);

// IZCONF: wire CFSETP to the "#CONFIG" special command.
void IZCONF();

// ---------------------------------------------------------------------------
// Reader API for the printing and plotting code.

// Which table: the system printers (or plotters), or the file ones.
enum class DeviceTable { System, File };

int printerCount(DeviceTable table);
// Entry i, 1..printerCount(table).
const PrinterEntry& printer(DeviceTable table, int i);
// The default: the one the configuration named, else the first, else 0.
int defaultPrinter(DeviceTable table);
// The index of the entry with this name, or 0.
int findPrinter(DeviceTable table, std::string_view name);

int plotterCount(DeviceTable table);
const PlotterEntry& plotter(DeviceTable table, int i);
int defaultPlotter(DeviceTable table);
int findPlotter(DeviceTable table, std::string_view name);

}  // namespace kntr::framework
