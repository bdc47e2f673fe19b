// PGINIT and PGEXIT: the order in which a module comes up and goes down.
#include "framework/startup.h"

#include <string>

#include "framework/configuration.h"
#include "framework/files.h"
#include "framework/format.h"
#include "framework/projects.h"
#include "framework/state.h"
#include "framework/text.h"
#include "graphics/plotstate.h"
#include "platform/console.h"
#include "platform/system.h"

namespace kntr::framework {

namespace WinConF = platform::WinConF;

namespace {

// The words of the execution modes in the hand-over file.
const char* modeWord(int mode) {
  switch (mode) {
    case ModeSystem: return "system";
    case ModeBatch: return "batch";
    default: return "alone";
  }
}


}  // namespace

void PGINIT(bool& status) {
  status = false;
  ProgramState& p = program();

  IZPGRM(status);
  if (status) return;
  resetCommandLine();
  // A save beyond the file size limit fails with a message instead of
  // killing the program.
  platform::ignoreFileSizeSignal();

  GTIPTH(p.installationPath, status);
  if (status) return;

  // The console, its title, and what happens when the input ends.
  WinConF::initialize();
  platform::setEndOfInputHandler([] { terminateOnEndOfInput(); });
  WinConF::setTitle(p.packageName);

  GTPGOP(status);
  if (status) return;

  // The console's size: the command line's values replace the current ones.
  int columns = 0, lines = 0;
  WinConF::getSize(columns, lines);
  if (commandLine().columnsGiven) columns = commandLine().columns;
  if (commandLine().linesGiven) lines = commandLine().lines;
  WinConF::setSize(columns, lines);

  OPLGFL(status);
  if (status) return;

  CFSETP(status);
  if (status) return;

  IZPGIO(status);
  if (status) return;

  LDPJTP(status);
  if (status) return;

  // Greeting by execution mode.
  if (p.executionMode == ModeBatch) {
    PRMODL("Module >" + std::string(fmt::trimmed(p.SPNAME)) + "< started");
  } else if (p.executionMode == ModeAlone && p.showTime > 0) {
    PRBANR("Welcome to the design system", "Brenholm AB");
  }

  // Graphics: the plot state with no window to draw in yet.
  graphics::resetPlotState();

  // Special commands that reach the layers above the scanner.
  IZCONF();
  services().closeLog = CLLGFL;
  IZPROJ();

  // The project: chosen by the user, or taken from the project file that
  // the hand-over file names. A module handed no project asks for one.
  if (p.executionMode == ModeAlone || fmt::trimmedLength(p.projectName) == 0) {
    SLPROJ(status);
    // Without a project the module cannot go on: the chooser's fatal error.
    if (status) ERRSCN("Tarvik fatal error{nwl{greGetOpenFileName -> Nothing usefull");
  } else {
    LDPJCT(status);
  }
}

void IZPGIO(bool& status) {
  status = false;
  ProgramState& p = program();
  p.inputUnit = 5;
  p.outputUnit = 6;
  p.outputDevice = DeviceConsole;
  IZTERM(status);
  if (status) return;
  takeConsoleSize();
  platform::setResizeHandler(takeConsoleSize);
  p.printSpoolName = "spool.prnt";
  p.plotSpoolName = "spool.plot";
  p.backupInterval = 25;
  p.backupCounter = 0;
}

void PGEXIT(bool& status) {
  status = false;
  ProgramState& p = program();
  STPJCT(status);
  if (status) return;
  STPJTP(p.executionMode, status);
  if (status) return;
  if (p.executionMode == ModeBatch) {
    PUTSCN("Module >" + std::string(fmt::trimmed(p.SPNAME)) + "< finished");
  } else if (p.executionMode == ModeAlone) {
    if (p.showTime > 0) PRBANR("Thank you for using the design system", "Brenhom AB");
    OUTSCN("{csb");
  }
  CLLGFL(status);
  if (status) return;
  WinConF::terminate();
}

void LDPJTP(bool& status) {
  status = false;
  ProgramState& p = program();
  std::string name;
  IQISFN("PJTP", name, status);
  if (status) return;
  if (!fileExists(name)) return;
  p.workFileName = name;
  TextReader file;
  if (!openOnFreeUnit(file, name, status)) return;
  std::string line;
  int io = 0;
  while ((io = file.readLine(line)) == 0) {
    if (line.size() > 268) line.resize(268);
    if (fmt::trimmedLength(line) == 0) continue;
    const std::size_t equals = line.find('=');
    const std::string value = equals == std::string::npos ? std::string() : fmt::stripped(line.substr(equals + 1));
    if (line.find("execution-mode") != std::string::npos) {
      if (value == "alone") p.executionMode = ModeAlone;
      else if (value == "system") p.executionMode = ModeSystem;
      else if (value == "batch") p.executionMode = ModeBatch;
    } else if (line.find("project") != std::string::npos) {
      p.projectName = value;
      p.defaultProject = value;
      bool failed = false;
      if (!value.empty()) SPFLNM(value, p.projectDirectory, p.projectBaseName, failed);
    }
  }
  if (io > 0) {
    IOERRM('R', name, io);
    file.close();
    status = true;
    return;
  }
  if (file.close() != 0) {
    IOERRM('C', name, IoFileSystem);
    status = true;
  }
}

void STPJTP(int mode, bool& status) {
  status = false;
  ProgramState& p = program();
  std::string name;
  IQISFN("PJTP", name, status);
  if (status) return;
  p.workFileName = name;
  AtomicWriter file;
  if (!openOnFreeUnit(file, name, status)) return;
  const std::string lines[] = {std::string("execution-mode=") + modeWord(mode),
                               "project=" + std::string(fmt::trimmed(p.projectName))};
  writeLinesAndCommit(file, name, lines, status);
}

}  // namespace kntr::framework
