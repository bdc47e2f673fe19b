// The log, the banner and the small environment routines of start-up.
#include <cstdlib>
#include <string>

#include "framework/files.h"
#include "framework/format.h"
#include "framework/projects.h"
#include "framework/startup.h"
#include "framework/state.h"
#include "framework/text.h"
#include "platform/console.h"
#include "platform/system.h"

namespace kntr::framework {

namespace {

AppendWriter& logFile() {
  static AppendWriter file;
  return file;
}

// Start-up warnings go straight to standard output, then wait for a line.
void warnAndWait(const std::string& text) {
  platform::writeStandardOutput(text + "\n To continue press <R>\n");
  std::string line;
  platform::WinConF::getString(line);
}

// "host <name> <verb> module KNTR version 1998-0223 on DD-Mon-YYYY at HH:MM:SS"
std::string logLine(const char* verb) {
  const ProgramState& p = program();
  std::string date, time;
  GTDATE(date);
  GTTIME(time);
  return "host " + std::string(fmt::trimmed(p.hostName)) + " " + verb + " module " +
         std::string(fmt::trimmed(p.SPNAME)) + " version " + std::string(fmt::trimmed(p.SPVERS)) +
         " on " + date + " at " + time;
}

// The logo: 14 lines of 59 columns.
const char* const logo[14] = {
    "+---------------------------------------------------------+",
    "|                                                         |",
    "|      #####   ###   ####   #   #  #####  #   #           |",
    "|        #    #   #  #   #  #   #    #    #  #            |",
    "|        #    #   #  #   #  #   #    #    # #             |",
    "|        #    #####  ####   #   #    #    ##              |",
    "|        #    #   #  # #     # #     #    # #             |",
    "|        #    #   #  #  #    # #     #    #  #            |",
    "|        #    #   #  #   #    #    #####  #   #           |",
    "|                                                         |",
    "|      ~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~      |",
    "|          profiles  -  splines  -  interior meshes       |",
    "|                                                         |",
    "+---------------------------------------------------------+"};

// n empty lines as one text: one blank for a single line.
std::string gapText(int n) {
  if (n <= 0) return {};
  if (n == 1) return " ";
  return fmt::repeat("{nwl", n - 1);
}

}  // namespace

void IZPGRM(bool& status) {
  status = false;
  ProgramState& p = program();
  p.executionMode = ModeAlone;
  p.printLevel = 1;
  GTHOST(p.hostName);
  GTOPSY(p.operatingSystem);
  p.packageName = "Tarvik";
  p.packageVersion = "2016A";
  if (IQSLEN(p.SPNAME) == 0) {
    platform::writeStandardOutput(
        " (IZPGRM) Variable SPNAME must be initialized prior to calling subroutine PGINIT\n");
    status = true;
    return;
  }
  if (IQSLEN(p.SPVERS) == 0) {
    platform::writeStandardOutput(
        " (IZPGRM) Variable SPVERS must be initialized prior to calling subroutine PGINIT\n");
    status = true;
    return;
  }
  p.pathSeparator = '/';
  p.extensionSeparator = '.';
  p.projectName.clear();
  p.projectDirectory.clear();
  p.projectBaseName.clear();
  p.projectIdentification.clear();
  p.company.clear();
  p.user.clear();
  p.workFileName.clear();
  p.projectGroup = "PJCT";
  p.attributeGroup = "ATTB";
  p.temporaryGroup = "TEMP";
  p.floatFormat = 1;
  p.floatFormats = {"F10.3", "1PE10.3", "E10.3"};
  p.weightUnit = 2;
  p.weightFactors = {1.0, 0.001};
  p.weightUnitText = "kg";
}

void OPLGFL(bool& status) {
  status = false;
  ProgramState& p = program();
  p.logOpen = false;
  std::string home;
  GTENVV("HOME", home);
  if (fmt::trimmedLength(home) == 0) {
    warnAndWait(" (OPLGFL) unable to get home drive defined by environment variable >HOME<");
    return;
  }
  std::string directory = std::string(fmt::trimmed(home));
  if (directory.back() != p.pathSeparator) directory += p.pathSeparator;
  directory += "T-cnfg";
  if (!directoryExists(directory)) return;  // no log directory: no log, and no error
  const std::string name = directory + p.pathSeparator + "Tarvik.log";
  int unit = 0;
  IQFUNT(unit, status);
  if (status) return;
  int io = logFile().open(unit, name);
  if (io == 0) {
    p.logOpen = true;
    p.logUnit = unit;
    io = logFile().writeLine(logLine("entering"));
    const ProgramState& q = program();
    logFile().noteForFatalSignals("host " + std::string(fmt::trimmed(q.hostName)) + " module " +
                                  std::string(fmt::trimmed(q.SPNAME)) + " version " +
                                  std::string(fmt::trimmed(q.SPVERS)) + " terminated by signal ");
  }
  if (io > 0) {
    warnAndWait(" (OPLGFL) I/O problems\n (I/O status is " + fmt::I(io, 4) + ")");
    logFile().close();
    p.logOpen = false;
  }
}

void CLLGFL(bool& status) {
  status = false;
  ProgramState& p = program();
  int io = 0;
  if (p.logOpen) {
    double cpu = 0.0;
    GTCPUT(cpu);
    io = logFile().writeLine("CPU usage: " + fmt::PE(cpu, 10, 3) + " [sec]");
    if (io == 0) io = logFile().writeLine(logLine("exiting"));
  }
  const int closed = logFile().close();
  if (io == 0) io = closed;
  p.logOpen = false;
  if (io > 0) {
    platform::writeStandardOutput("(CLLGFL) I/O problems\n(I/O status is " + fmt::I(io, 4) + ")\n");
    status = true;
  }
}

void logEntry(int level, std::string_view kind, std::string_view text) {
  const ProgramState& p = program();
  if (!p.logOpen || p.logLevel < level) return;
  // The text without its tokens (a brace and three letters; "{{" is a brace).
  std::string plain;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '{' && i + 1 < text.size() && text[i + 1] == '{') {
      plain.push_back('{');
      ++i;
    } else if (text[i] == '{' && i + 3 < text.size() + 1) {
      const bool newLine = text.substr(i + 1, 3) == "nwl" || text.substr(i + 1, 3) == "NWL";
      if (newLine && !plain.empty() && plain.back() != ' ') plain.push_back(' ');
      i += 3;
    } else {
      plain.push_back(text[i]);
    }
  }
  logFile().writeLine(std::string(kind) + ": " + fmt::stripped(plain));
}

void LGNOTE(std::string_view text) {
  if (program().logOpen) logFile().writeLine(std::string(text));
}

void PRBANR(std::string_view first, std::string_view second) {
  // The two texts travel with the call; the console banner shows the logo.
  (void)first;
  (void)second;
  const ProgramState& p = program();
  const int lines = p.screenLines;
  const int columns = p.screenColumns;
  const int top = (lines - 22) / 2 - 1;
  const std::string margin(static_cast<std::size_t>(std::max(0, (columns - 59) / 2)), ' ');
  std::string text = "{cst" + gapText(top);
  text += "{gre";
  for (const char* row : logo) text += "{nwl" + margin + row;
  text += "{nwl{whi" + margin + "Brenholm AB";
  const std::string bottom = gapText(lines - top - 22 - 1);
  if (!bottom.empty()) text += "{nwl" + bottom;
  OUTSCN(text);
  WTDELY(p.executionMode, p.showTime);
}

void PRMODL(std::string_view text) {
  std::string line = program().executionMode == ModeBatch ? "{yel" : "{csb{yel";
  line.append(text);
  PUTSCN(line);
}

int IQSLEN(std::string_view text) { return fmt::trimmedLength(text); }

void GTENVV(std::string_view name, std::string& value) {
  value.clear();
  if (fmt::trimmedLength(name) == 0) return;
  value = platform::environmentVariable(fmt::trimmed(name));
}

void GTIPTH(std::string& path, bool& status) {
  status = false;
  // The installation directory is named by TARVIK_HOME; without it, the
  // directory above the program's own, when it holds "config".
  GTENVV(InstallationVariable, path);
  if (!path.empty()) return;
  std::string executable = platform::executablePath();
  const auto slash = executable.rfind('/');
  if (slash == std::string::npos) return;
  std::string parent = executable.substr(0, slash);
  const auto up = parent.rfind('/');
  if (up == std::string::npos) return;
  parent = parent.substr(0, up);
  if (directoryExists(parent + "/config")) path = parent;
}

void GTOPSY(std::string& name) { name = platform::operatingSystemName(); }

void GTHOST(std::string& name) { name.clear(); }

void GTCPUT(double& seconds) { seconds = 0.0; }

void WTDELY(int mode, int seconds) {
  if (mode != ModeAlone && mode != ModeSystem) return;
  // A banner holds the screen for a person; a scripted run goes on at once.
  if (!platform::interactiveConsole()) return;
  platform::sleepSeconds(seconds);
}

void terminateOnEndOfInput() {
  OUTSCN("{nwl{redTerminating program due to EOF on input");
  bool status = false;
  CLLGFL(status);
  platform::WinConF::terminate();
  std::exit(1);
}

}  // namespace kntr::framework
