// Calls to the operating system.
//
//   OPSYIF  run a list of operating system commands separated by ";"
//
// The system menu is in framework/sysmenu.h, the printers in
// framework/printers.h.
#pragma once

#include <string_view>

namespace kntr::framework {

// Longest command list that OPSYIF takes: a list must be shorter.
inline constexpr int MaxSystemCallLength = 1256;
// How much of a failed command its message shows: the last characters.
inline constexpr int ShownCommandLength = 64;

// OPSYIF: run the commands of `commands` (separated by ";") one after the
// other. A command that fails is reported and the next still runs; status is
// set when the list is blank or too long, or any command failed.
void OPSYIF(std::string_view commands, bool& status);

// The process's ways out to the operating system. The defaults run a command
// through the platform and end the process with std::exit; tests and fuzz
// targets put stand-ins here. endProcess is expected not to return; if a
// stand-in does, the caller carries on as if the command had finished.
struct SystemHooks {
  // 0 when the command ran well, its exit code, or -1 when it could not run.
  int (*runCommand)(std::string_view command) = nullptr;
  void (*endProcess)(int code) = nullptr;
};
SystemHooks& systemHooks();

// Runs one command through the hook above, with no word on failure; its
// exit code, or -1 when it could not run.
int runCommandQuietly(std::string_view command);

// Ends the process with `code` through the hook above.
void endProcess(int code);

}  // namespace kntr::framework
