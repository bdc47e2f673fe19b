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

// Writing a file. Each step gives 0 or the system's error number, and each
// passes the fault seam below, so tests can make any one of them fail.
//   openForWriting  create (or empty) a file for writing
//   writeBytes      append bytes
//   flushFile       hand the buffered bytes to the system
//   syncFile        flush a written file to the disk
//   closeFile       close it (always closed, even on failure)
//   renameFile      put a file in place of another one
std::FILE* openForWriting(const std::string& name, int& error);
int writeBytes(std::FILE* file, std::string_view bytes);
int flushFile(std::FILE* file);
int syncFile(std::FILE* file);
int closeFile(std::FILE* file);
int renameFile(const std::string& from, const std::string& to);
// Remove a file; false when it could not be removed.
bool removeFile(const std::string& name);

// Where a save of `name` lands: the final target of a chain of symbolic
// links (relative links resolved against their directory), or `name`.
std::string writeTarget(const std::string& name);
// 0 when a new version of `name` may be written (no such file, or one that
// is writable), EACCES when the file is read-only.
int writableFile(const std::string& name);
// Gives `file` the permissions of the existing file `model`, and its owner
// and group where the system permits; 0 or an error number.
int copyFileMode(std::FILE* file, const std::string& model);

// The steps of writing a file that the fault seam can fail.
enum class FileStep { Open, Write, Flush, Sync, Close, Rename };
inline constexpr int FileStepCount = 6;
// Test seam: the `nth` call of `step` from now on fails with an I/O error
// (1 = the next one); 0 disarms it.
void failFileStep(FileStep step, int nth);

// The temporary file of a save in progress: removed by the fatal-signal
// handler if the process dies before it is put in place. Empty: none.
void noteTemporaryFile(const std::string& name);

// For the console's handler of fatal signals, async-signal-safe: removes the
// noted temporary file and writes the noted log line with the signal number.
void releaseOnFatalSignal(int signal);

// Writes that exceed the file size limit fail with an error instead of
// ending the process.
void ignoreFileSizeSignal();

// The log for the fatal-signal handler: the open file and the line it writes
// there (the signal number is appended). A null file: no log.
void noteFatalSignalLog(std::FILE* file, std::string_view line);

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
