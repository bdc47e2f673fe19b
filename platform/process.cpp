#include "platform/process.h"

#include <sys/wait.h>

#include <cerrno>
#include <cstdlib>
#include <string>

namespace kntr::platform {

int runCommand(std::string_view command) {
  const std::string line(command);
  errno = 0;
  const int result = std::system(line.c_str());
  if (result == -1) return errno != 0 ? errno : 1;
  if (WIFEXITED(result)) return WEXITSTATUS(result);
  if (WIFSIGNALED(result)) return 128 + WTERMSIG(result);
  return result;
}

}  // namespace kntr::platform
