#include "framework/system.h"

#include <algorithm>
#include <cstdlib>
#include <string>

#include "framework/format.h"
#include "framework/text.h"
#include "platform/system.h"

namespace kntr::framework {

namespace {



}  // namespace

SystemHooks& systemHooks() {
  static SystemHooks hooks;
  return hooks;
}

void endProcess(int code) {
  if (systemHooks().endProcess) {
    systemHooks().endProcess(code);
    return;
  }
  std::exit(code);
}

int runCommandQuietly(std::string_view command) {
  if (systemHooks().runCommand) return systemHooks().runCommand(command);
  return platform::runCommand(command);
}

void OPSYIF(std::string_view commands, bool& status) {
  status = false;
  const std::string_view list = fmt::trimmed(commands);
  if (list.find_first_not_of(' ') == std::string_view::npos) {
    fail("(OPSYIF) No operating system call specified", status);
    return;
  }
  const int length = static_cast<int>(list.size());
  if (length >= MaxSystemCallLength) {
    fail("Maximum length of operating system call exceeded{nwl{gre(maximum length is " +
           fmt::I(MaxSystemCallLength, 4) + " < " + fmt::I(length, 4) + ")", status);
    return;
  }
  // Each command in turn; a failure is told and the next one still runs.
  std::size_t start = 0;
  while (start <= list.size()) {
    std::size_t end = list.find(';', start);
    if (end == std::string_view::npos) end = list.size();
    std::string_view command = fmt::trimmed(list.substr(start, end - start));
    command.remove_prefix(std::min(command.size(), command.find_first_not_of(' ')));
    if (!command.empty()) {
      const int error = runCommandQuietly(command);
      if (error != 0) {
        std::string_view shown = command;
        if (shown.size() > static_cast<std::size_t>(ShownCommandLength))
          shown = shown.substr(shown.size() - ShownCommandLength);
        fail("Attempt to call operating system failed{nwl** {gre" + literal(shown) +
               "{red **{nwl{gre(error is " + fmt::I(error, 4) + ")", status);
      }
    }
    start = end + 1;
  }
}

}  // namespace kntr::framework
