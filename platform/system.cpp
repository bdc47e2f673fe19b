#include "platform/system.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/utsname.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>

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

namespace {

// The fault seam: per step, how many calls are left before the one that
// fails (0: none armed).
std::array<int, FileStepCount>& armedSteps() {
  static std::array<int, FileStepCount> steps{};
  return steps;
}

bool injectedFailure(FileStep step) {
  int& left = armedSteps()[static_cast<std::size_t>(step)];
  if (left <= 0) return false;
  return --left == 0;
}

// What the fatal-signal handler needs, kept in plain buffers so that it
// reads them without allocating.
struct FatalSignalState {
  char temporary[4096] = {};
  int logDescriptor = -1;
  char logLine[512] = {};
  std::size_t logLength = 0;
};

FatalSignalState& fatal() {
  static FatalSignalState state;
  return state;
}

void copyText(char* to, std::size_t capacity, std::string_view text, std::size_t& length) {
  length = std::min(text.size(), capacity - 1);
  std::memcpy(to, text.data(), length);
  to[length] = '\0';
}

}  // namespace

std::FILE* openForWriting(const std::string& name, int& error) {
  error = 0;
  if (injectedFailure(FileStep::Open)) {
    error = EIO;
    return nullptr;
  }
  std::FILE* file = std::fopen(name.c_str(), "w");
  if (!file) error = errno;
  return file;
}

int writeBytes(std::FILE* file, std::string_view bytes) {
  if (injectedFailure(FileStep::Write)) return EIO;
  errno = 0;
  if (std::fwrite(bytes.data(), 1, bytes.size(), file) != bytes.size()) return errno ? errno : EIO;
  return 0;
}

int flushFile(std::FILE* file) {
  if (injectedFailure(FileStep::Flush)) return EIO;
  return std::fflush(file) == 0 ? 0 : (errno ? errno : EIO);
}

int syncFile(std::FILE* file) {
  if (injectedFailure(FileStep::Sync)) return EIO;
  if (::fsync(::fileno(file)) == 0) return 0;
  // Files that cannot be synchronised (pipes, some special files) are fine.
  return errno == EINVAL ? 0 : errno;
}

int closeFile(std::FILE* file) {
  if (injectedFailure(FileStep::Close)) {
    std::fclose(file);
    return EIO;
  }
  return std::fclose(file) == 0 ? 0 : (errno ? errno : EIO);
}

int renameFile(const std::string& from, const std::string& to) {
  if (injectedFailure(FileStep::Rename)) return EIO;
  return std::rename(from.c_str(), to.c_str()) == 0 ? 0 : errno;
}

bool removeFile(const std::string& name) { return ::unlink(name.c_str()) == 0; }

std::string writeTarget(const std::string& name) {
  std::string target = name;
  // A bounded number of hops: a loop of links ends as the last name tried.
  for (int hop = 0; hop < 40; ++hop) {
    struct stat info {};
    if (::lstat(target.c_str(), &info) != 0 || !S_ISLNK(info.st_mode)) return target;
    char buffer[4096];
    const ssize_t n = ::readlink(target.c_str(), buffer, sizeof buffer - 1);
    if (n <= 0) return target;
    std::string link(buffer, static_cast<std::size_t>(n));
    if (link.front() != '/') {
      const auto slash = target.rfind('/');
      if (slash != std::string::npos) link = target.substr(0, slash + 1) + link;
    }
    target = link;
  }
  return target;
}

int writableFile(const std::string& name) {
  struct stat info {};
  if (::stat(name.c_str(), &info) != 0) return 0;  // a new file
  // Write permission by the mode bits, so that a read-only file is refused
  // even to a user whom the system would let write it.
  if ((info.st_mode & (S_IWUSR | S_IWGRP | S_IWOTH)) == 0) return EACCES;
  if (::access(name.c_str(), W_OK) != 0) return errno;
  return 0;
}

int copyFileMode(std::FILE* file, const std::string& model) {
  struct stat info {};
  if (::stat(model.c_str(), &info) != 0) return 0;  // nothing to copy
  const int descriptor = ::fileno(file);
  // Owner and group first: a change of owner may clear set-id bits.
  if (::fchown(descriptor, info.st_uid, info.st_gid) != 0 &&
      ::fchown(descriptor, static_cast<uid_t>(-1), info.st_gid) != 0) {
    // Not permitted: the file keeps the writer as owner.
  }
  if (::fchmod(descriptor, info.st_mode & 07777) != 0) return errno;
  return 0;
}

void failFileStep(FileStep step, int nth) {
  armedSteps()[static_cast<std::size_t>(step)] = nth < 0 ? 0 : nth;
}

void noteTemporaryFile(const std::string& name) {
  std::size_t length = 0;
  copyText(fatal().temporary, sizeof fatal().temporary, name, length);
}

void noteFatalSignalLog(std::FILE* file, std::string_view line) {
  FatalSignalState& f = fatal();
  f.logDescriptor = file ? ::fileno(file) : -1;
  copyText(f.logLine, sizeof f.logLine - 8, line, f.logLength);
}

void releaseOnFatalSignal(int signal) {
  FatalSignalState& f = fatal();
  if (f.temporary[0] != '\0') ::unlink(f.temporary);
  if (f.logDescriptor >= 0 && f.logLength > 0) {
    // The line, the signal number in digits, and a line end.
    char digits[8];
    int n = 0;
    unsigned value = signal > 0 ? static_cast<unsigned>(signal) : 0u;
    do {
      digits[n++] = static_cast<char>('0' + value % 10);
      value /= 10;
    } while (value > 0 && n < 6);
    char tail[9];
    int t = 0;
    while (n > 0) tail[t++] = digits[--n];
    tail[t++] = '\n';
    ssize_t ignored = ::write(f.logDescriptor, f.logLine, f.logLength);
    ignored = ::write(f.logDescriptor, tail, static_cast<std::size_t>(t));
    (void)ignored;
  }
}

void ignoreFileSizeSignal() { std::signal(SIGXFSZ, SIG_IGN); }

long processNumber() { return static_cast<long>(::getpid()); }

void sleepSeconds(int seconds) {
  if (seconds > 0) ::sleep(static_cast<unsigned>(seconds));
}

bool interactiveConsole() {
  return consoleIsTerminal() && ::isatty(STDIN_FILENO) == 1;
}

int runCommand(std::string_view command) {
  lendTerminal(true);
  // Input that is not a terminal is a script: the command gets none of it,
  // so that a shell does not read the rest of the script as its own.
  std::string line(command);
  if (::isatty(STDIN_FILENO) != 1) line = "( " + line + " ) </dev/null";
  const int result = std::system(line.c_str());
  lendTerminal(false);
  if (result == -1) return -1;
  if (WIFEXITED(result)) return WEXITSTATUS(result);
  return -1;
}

}  // namespace kntr::platform
