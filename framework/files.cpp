#include "framework/files.h"

#include <array>
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <system_error>

#include "framework/text.h"
#include "platform/system.h"

namespace kntr::framework {

namespace {

std::array<bool, LastUnit + 1>& connected() {
  static std::array<bool, LastUnit + 1> table{};
  return table;
}

void connect(int unit, bool on) {
  if (unit >= 0 && unit <= LastUnit) connected()[static_cast<std::size_t>(unit)] = on;
}

long long& failureBudget() {
  static long long bytes = -1;
  return bytes;
}

int statusOfErrno(int error) {
  switch (error) {
    case ENOSPC:
    case EDQUOT:
    case EFBIG: return IoOutOfSpace;
    case ENOENT:
    case EACCES:
    case EISDIR:
    case ENOTDIR:
    case EROFS:
    case EPERM: return IoOpenFailed;
    default: return IoFileSystem;
  }
}

}  // namespace

void IQFUNT(int& unit, bool& status) {
  status = false;
  for (int u = FirstUnit; u <= LastUnit; ++u) {
    if (!connected()[static_cast<std::size_t>(u)]) {
      unit = u;
      return;
    }
  }
  fail("No free units available", status);
}

bool unitConnected(int unit) {
  return unit >= 0 && unit <= LastUnit && connected()[static_cast<std::size_t>(unit)];
}

bool fileExists(std::string_view name) {
  std::error_code error;
  return !name.empty() && std::filesystem::exists(std::filesystem::path(name), error) &&
         !std::filesystem::is_directory(std::filesystem::path(name), error);
}

bool directoryExists(std::string_view name) {
  std::error_code error;
  return !name.empty() && std::filesystem::is_directory(std::filesystem::path(name), error);
}

// --- TextReader --------------------------------------------------------------

TextReader::~TextReader() { close(); }

int TextReader::open(int unit, std::string_view name) {
  close();
  if (directoryExists(name)) return IoOpenFailed;
  file_ = std::fopen(std::string(name).c_str(), "r");
  if (!file_) return statusOfErrno(errno);
  unit_ = unit;
  lineNumber_ = 0;
  connect(unit_, true);
  return 0;
}

int TextReader::readLine(std::string& line) {
  line.clear();
  if (!file_) return 914;
  int c = 0;
  bool any = false;
  while ((c = std::fgetc(file_)) != EOF) {
    any = true;
    if (c == '\n') break;
    line.push_back(static_cast<char>(c));
  }
  if (c == EOF) {
    if (std::ferror(file_)) return IoFileSystem;
    if (!any) return -1;
  }
  if (!line.empty() && line.back() == '\r') line.pop_back();
  ++lineNumber_;
  return 0;
}

int TextReader::close() {
  int status = 0;
  if (file_) {
    if (std::fclose(file_) != 0) status = IoFileSystem;
    file_ = nullptr;
    connect(unit_, false);
  }
  return status;
}

// --- AtomicWriter ------------------------------------------------------------

AtomicWriter::~AtomicWriter() { abandon(); }

int AtomicWriter::open(int unit, std::string_view name) {
  abandon();
  if (name.empty() || directoryExists(name)) return IoOpenFailed;
  // A symbolic link is written through: the new version replaces its target
  // and the link stays. A read-only file is refused.
  name_ = platform::writeTarget(std::string(name));
  if (directoryExists(name_)) return IoOpenFailed;
  if (const int error = platform::writableFile(name_); error != 0) return statusOfErrno(error);
  temporary_ = name_ + ".part" + std::to_string(platform::processNumber());
  int error = 0;
  file_ = platform::openForWriting(temporary_, error);
  if (!file_) {
    temporary_.clear();
    return statusOfErrno(error);
  }
  platform::noteTemporaryFile(temporary_);
  unit_ = unit;
  status_ = 0;
  connect(unit_, true);
  // The new version keeps the permissions, owner and group of the old one.
  if (const int copied = platform::copyFileMode(file_, name_); copied != 0)
    status_ = statusOfErrno(copied);
  return 0;
}

int AtomicWriter::write(std::string_view text) {
  if (!file_) return 914;
  if (status_ != 0) return status_;
  long long& budget = failureBudget();
  if (budget >= 0) {
    if (static_cast<long long>(text.size()) > budget) {
      status_ = IoOutOfSpace;
      return status_;
    }
    budget -= static_cast<long long>(text.size());
  }
  if (const int error = platform::writeBytes(file_, text); error != 0)
    status_ = statusOfErrno(error);
  return status_;
}

int AtomicWriter::writeLine(std::string_view text) {
  int s = write(text);
  if (s == 0) s = write("\n");
  return s;
}

int AtomicWriter::commit() {
  if (!file_) return 914;
  int status = status_;
  int error = 0;
  if (status == 0 && (error = platform::flushFile(file_)) != 0) status = statusOfErrno(error);
  if (status == 0 && (error = platform::syncFile(file_)) != 0) status = statusOfErrno(error);
  if ((error = platform::closeFile(file_)) != 0 && status == 0) status = statusOfErrno(error);
  file_ = nullptr;
  connect(unit_, false);
  if (status == 0 && (error = platform::renameFile(temporary_, name_)) != 0)
    status = statusOfErrno(error);
  if (status != 0) platform::removeFile(temporary_);
  platform::noteTemporaryFile("");
  temporary_.clear();
  return status;
}

void AtomicWriter::abandon() {
  if (file_) {
    platform::closeFile(file_);
    file_ = nullptr;
    connect(unit_, false);
  }
  if (!temporary_.empty()) {
    platform::removeFile(temporary_);
    platform::noteTemporaryFile("");
    temporary_.clear();
  }
}

// --- AppendWriter ------------------------------------------------------------

AppendWriter::~AppendWriter() { close(); }

int AppendWriter::open(int unit, std::string_view name) {
  close();
  file_ = std::fopen(std::string(name).c_str(), "a");
  if (!file_) return statusOfErrno(errno);
  unit_ = unit;
  connect(unit_, true);
  return 0;
}

int AppendWriter::writeLine(std::string_view text) {
  if (!file_) return 914;
  if (std::fwrite(text.data(), 1, text.size(), file_) != text.size() ||
      std::fputc('\n', file_) == EOF || std::fflush(file_) != 0)
    return statusOfErrno(errno);
  return 0;
}

void AppendWriter::noteForFatalSignals(std::string_view line) {
  platform::noteFatalSignalLog(file_, line);
}

int AppendWriter::close() {
  int status = 0;
  if (file_) {
    platform::noteFatalSignalLog(nullptr, "");
    if (std::fclose(file_) != 0) status = IoFileSystem;
    file_ = nullptr;
    connect(unit_, false);
  }
  return status;
}

void simulateWriteFailureAfter(long long bytes) { failureBudget() = bytes; }

}  // namespace kntr::framework
