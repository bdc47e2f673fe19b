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
    case EDQUOT: return IoOutOfSpace;
    case ENOENT:
    case EACCES:
    case EISDIR:
    case ENOTDIR:
    case EROFS: return IoOpenFailed;
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
  name_ = std::string(name);
  if (name_.empty() || directoryExists(name_)) return IoOpenFailed;
  temporary_ = name_ + ".part" + std::to_string(platform::processNumber());
  file_ = std::fopen(temporary_.c_str(), "w");
  if (!file_) {
    temporary_.clear();
    return statusOfErrno(errno);
  }
  unit_ = unit;
  status_ = 0;
  connect(unit_, true);
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
  if (std::fwrite(text.data(), 1, text.size(), file_) != text.size()) status_ = statusOfErrno(errno);
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
  if (std::fflush(file_) != 0 && status == 0) status = statusOfErrno(errno);
  if (status == 0 && !platform::syncFile(file_) && errno != EINVAL) status = statusOfErrno(errno);
  if (std::fclose(file_) != 0 && status == 0) status = statusOfErrno(errno);
  file_ = nullptr;
  connect(unit_, false);
  if (status == 0 && std::rename(temporary_.c_str(), name_.c_str()) != 0)
    status = statusOfErrno(errno);
  if (status != 0) std::remove(temporary_.c_str());
  temporary_.clear();
  return status;
}

void AtomicWriter::abandon() {
  if (file_) {
    std::fclose(file_);
    file_ = nullptr;
    connect(unit_, false);
  }
  if (!temporary_.empty()) {
    std::remove(temporary_.c_str());
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

int AppendWriter::close() {
  int status = 0;
  if (file_) {
    if (std::fclose(file_) != 0) status = IoFileSystem;
    file_ = nullptr;
    connect(unit_, false);
  }
  return status;
}

void simulateWriteFailureAfter(long long bytes) { failureBudget() = bytes; }

}  // namespace kntr::framework
