#include "platform/system.h"

#include <sys/utsname.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>

#include "platform/console.h"

namespace kntr::platform {

std::string environmentVariable(std::string_view name) {
  if (name.empty()) return {};
  const char* value = std::getenv(std::string(name).c_str());
  return value ? std::string(value) : std::string();
}

std::string operatingSystemName() {
  utsname info{};
  if (::uname(&info) != 0) return {};
  return info.sysname;
}

std::string executablePath() {
  char buffer[4096];
  ssize_t n = ::readlink("/proc/self/exe", buffer, sizeof buffer - 1);
  if (n <= 0) return {};
  buffer[n] = '\0';
  return buffer;
}

bool syncFile(std::FILE* file) { return ::fsync(::fileno(file)) == 0; }

long processNumber() { return static_cast<long>(::getpid()); }

void sleepSeconds(int seconds) {
  if (seconds > 0) ::sleep(static_cast<unsigned>(seconds));
}

bool interactiveConsole() {
  return consoleIsTerminal() && ::isatty(STDIN_FILENO) == 1;
}

int runCommand(std::string_view command) {
  lendTerminal(true);
  const int result = std::system(std::string(command).c_str());
  lendTerminal(false);
  if (result == -1) return -1;
  if (WIFEXITED(result)) return WEXITSTATUS(result);
  return -1;
}

}  // namespace kntr::platform
