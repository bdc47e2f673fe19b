// Operating system commands.
//
//   runCommand  run one command line through the system's command processor
#pragma once

#include <string_view>

namespace kntr::platform {

// runCommand: run `command` with /bin/sh and wait for it. Returns 0 when it
// ran and ended well, otherwise an error number: the errno of a failed start,
// the command's exit status, or 128 plus the signal that ended it.
int runCommand(std::string_view command);

}  // namespace kntr::platform
