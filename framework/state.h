// The framework's state block: one instance per process.
//
// Identity of the running module, run state (execution mode, output device,
// screen size, log), the backup clock, and the project with its
// identification. Texts are plain strings; where the width of a field shows
// to the user (log lines, file headers) the writer applies it.
#pragma once

#include <array>
#include <string>
#include <vector>

namespace kntr::framework {

// Widths of the text fields, as they limit what is stored or shown.
inline constexpr int ModuleNameWidth = 20;
inline constexpr int PathWidth = 1024;
inline constexpr int ProjectWidth = 260;
inline constexpr int IdentificationWidth = 64;

// Execution modes.
inline constexpr int ModeAlone = 1;
inline constexpr int ModeSystem = 2;
inline constexpr int ModeBatch = 3;

// Output devices of the text routines.
inline constexpr int DeviceConsole = 1;
inline constexpr int DeviceGraphics = 3;

// Output targets of listings.
inline constexpr int TargetScreen = 1;
inline constexpr int TargetSystemPrinter = 2;
inline constexpr int TargetFilePrinter = 3;

struct ProgramState {
  // The command line, program name first.
  std::vector<std::string> arguments;

  // Identity.
  std::string SPNAME;             // module identifier, set by the module
  std::string SPVERS;             // module version, set by the module
  std::string packageName;        // "Tarvik"
  std::string packageVersion;     // "2016A"
  std::string hostName;           // blank: host identification is not done
  std::string operatingSystem;    // operating system name
  std::string installationPath;   // installation directory, blank if unknown

  // Run state.
  int executionMode = ModeAlone;
  int printLevel = 1;             // 1 beginner, 2 standard, 3 advanced
  char pathSeparator = '/';
  char extensionSeparator = '.';
  int showTime = 2;               // seconds the banner stands; <= 0: no banner
  int outputDevice = DeviceConsole;
  int listingTarget = TargetScreen;
  int screenColumns = 80;
  int screenLines = 24;
  int logLevel = 1;               // 1 enter/exit, 2 + errors, 3 + messages and inputs
  bool logOpen = false;
  int logUnit = 0;
  int inputUnit = 5;
  int outputUnit = 6;
  bool terminalInput = true;      // terminal mode, as opposed to graphic menu mode
  bool cancelled = false;         // the last menu was cancelled
  bool specialDisabled = false;   // #LOAD, #SAVE, #RESET, #PROJECT blocked

  // Backup clock: every (interval + 1)-th answer runs the module's backup.
  int backupInterval = 25;
  int backupCounter = 0;

  // Scratch for the name of a file about to be opened; the I/O error report
  // reads it.
  std::string workFileName;

  // Project.
  std::string projectName;        // may hold a directory
  std::string projectDirectory;
  std::string projectBaseName;
  std::string projectIdentification, defaultProjectIdentification;
  std::string company, defaultCompany;
  std::string user, defaultUser;
  std::string defaultProject;
  std::string projectGroup = "PJCT";
  std::string attributeGroup = "ATTB";
  std::string temporaryGroup = "TEMP";

  // View set-up kept in the project file: one integer and three reals.
  int viewSetupCode = 0;
  std::array<double, 3> viewSetup{0.0, 0.0, 0.0};

  // Number formats and weight units.
  int floatFormat = 1;            // index into floatFormats
  std::array<std::string, 3> floatFormats{"F10.3", "1PE10.3", "E10.3"};
  int weightUnit = 2;
  std::array<double, 2> weightFactors{1.0, 0.001};
  std::string weightUnitText = "kg";

  // Date and time of the last file header written or read.
  std::string lastFileDate;
  std::string lastFileTime;

  // File-name type: 1 "unix-short", 2 "unix-long", 3 "dos".
  int fileNameType = 1;

  // Spool file names.
  std::string printSpoolName = "spool.prnt";
  std::string plotSpoolName = "spool.plot";
};

// The one instance.
ProgramState& program();

// Back to the state before start-up (tests).
void resetProgramState();

// The routines a module supplies, called by name from the framework: reset
// (#RESET), load (#LOAD), store (#SAVE), the periodic backup, and the page
// of the module's limits that the system menu prints.
struct ModuleCallbacks {
  void (*reset)(bool& status) = nullptr;
  void (*load)(bool& status) = nullptr;
  void (*store)(bool& status) = nullptr;
  void (*backup)(bool& status) = nullptr;
  void (*limits)(bool& status) = nullptr;
};
ModuleCallbacks& callbacks();

// Framework services that the input language reaches by special command
// ("#PROJECT", "#CONFIG", "#KILL"), wired at start-up so that the scanner
// does not depend on the layers above it. A null member is not available.
struct FrameworkServices {
  void (*selectProject)(bool& status) = nullptr;      // choose or create a project
  void (*readConfiguration)(bool& status) = nullptr;  // read all configuration files again
  void (*closeLog)(bool& status) = nullptr;           // write the closing lines, close the log
  void (*testPlot)(bool& status) = nullptr;           // plot a frame of known size
};
FrameworkServices& services();

}  // namespace kntr::framework
