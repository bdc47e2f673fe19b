// Operating-system services other than the console: environment, files on
// disk, the executable's location, clocks, and running commands.
#pragma once

#include <cstdio>
#include <string>
#include <string_view>

namespace kntr::platform {

// Value of an environment variable; empty when unset.
std::string environmentVariable(std::string_view name);

// Name of the operating system ("Linux").
std::string operatingSystemName();

// Full path of the running program; empty when unknown.
std::string executablePath();

// Flush a written file to the disk; false on failure.
bool syncFile(std::FILE* file);

// A number that differs between processes running at the same time.
long processNumber();

// Sleep for whole seconds.
void sleepSeconds(int seconds);

// True when both standard input and output are terminals: a person is there.
bool interactiveConsole();

// Run a command line through the system's command processor; the exit code,
// or -1 when it could not run at all.
int runCommand(std::string_view command);

}  // namespace kntr::platform
