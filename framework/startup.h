// Start-up, shutdown and the log.
//
// A module sets its identity (SPNAME, SPVERS), supplies its callbacks and
// calls PGINIT; when its main menu ends it calls PGEXIT. The log is the
// per-user file $HOME/T-cnfg/Tarvik.log: a start line, and with each clean
// exit a CPU line and an exit line. A missing T-cnfg directory means no log.
//
//   PGINIT  bring the framework up, in its fixed order
//   PGEXIT  bring the framework down
//   IZPGRM  first initialisation of the state block
//   IZPGIO  file units, device defaults and the terminal set-up
//   OPLGFL  open the log and write the start line
//   CLLGFL  write the closing lines and close the log
//   LGNOTE  write one line of information to the log, when it is open
//   LDPJTP  read the hand-over file (execution mode, project)
//   STPJTP  write the hand-over file
//   PRBANR  show the banner for the configured time
//   PRMODL  show one status line
//   IQSLEN  length of a text without trailing blanks and NULs
//   GTENVV  read an environment variable
//   GTIPTH  the installation directory
//   GTOPSY  the operating system's name
//   GTHOST  the host name (blank: not identified)
//   GTCPUT  CPU seconds used (always 0.0)
//   WTDELY  hold the screen for some seconds
#pragma once

#include <string>
#include <string_view>

namespace kntr::framework {

// Environment variable that names the installation directory.
inline constexpr const char* InstallationVariable = "TARVIK_HOME";

void PGINIT(bool& status);
void PGEXIT(bool& status);
void IZPGRM(bool& status);
void IZPGIO(bool& status);
void OPLGFL(bool& status);
void CLLGFL(bool& status);
// The log levels of the system menu: 1 entering and exiting, 2 also errors
// and warnings, 3 also messages and inputs.
inline constexpr int LogErrors = 2;
inline constexpr int LogMessagesAndInputs = 3;
// One entry of the given level ("error: ...", "message: ...", "input: ..."),
// written when the log is open and its level reaches `level`. Formatting
// tokens are left out.
void logEntry(int level, std::string_view kind, std::string_view text);
// LGNOTE: a note in the log as it stands, when the log is open.
void LGNOTE(std::string_view text);
void LDPJTP(bool& status);
void STPJTP(int mode, bool& status);
void PRBANR(std::string_view first, std::string_view second);
void PRMODL(std::string_view text);
int IQSLEN(std::string_view text);
void GTENVV(std::string_view name, std::string& value);
void GTIPTH(std::string& path, bool& status);
void GTOPSY(std::string& name);
void GTHOST(std::string& name);
void GTCPUT(double& seconds);
void WTDELY(int mode, int seconds);

// The end of input: say so, close the log, end the process with status 1.
[[noreturn]] void terminateOnEndOfInput();

}  // namespace kntr::framework
