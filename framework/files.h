// File units and text files.
//
// Files are reached through numbered units, as in the rest of the suite: a
// routine obtains a free unit (IQFUNT), opens a file on it, and closes it.
// Readers read whole lines and count them. Writers of data files never touch
// the old file until the new one is complete: they write a temporary file in
// the same directory and rename it over the old one after a successful close,
// so a failed or interrupted save leaves the old file whole.
//
// Failures are given as the I/O status numbers that IOERRM knows.
//
//   IQFUNT  find a free file unit
#pragma once

#include <cstdio>
#include <string>
#include <string_view>

namespace kntr::framework {

inline constexpr int FirstUnit = 19;
inline constexpr int LastUnit = 99;

// IQFUNT: the first unit from 19 to 99 that no file is connected to. With none
// free: "No free units available" and the status is set.
void IQFUNT(int& unit, bool& status);

// True while a file is connected to `unit`.
bool unitConnected(int unit);

bool fileExists(std::string_view name);
bool directoryExists(std::string_view name);

// A text file read line by line on a unit.
class TextReader {
 public:
  TextReader() = default;
  ~TextReader();
  TextReader(const TextReader&) = delete;
  TextReader& operator=(const TextReader&) = delete;

  // Opens an existing file; 0 or an I/O status.
  int open(int unit, std::string_view name);
  // Reads the next line without its line end: 0, -1 at end of file, or an
  // I/O status.
  int readLine(std::string& line);
  // Lines read so far.
  int lineNumber() const { return lineNumber_; }
  bool isOpen() const { return file_ != nullptr; }
  // The unit the file is connected to (0 before the first open).
  int unit() const { return unit_; }
  int close();

 private:
  std::FILE* file_ = nullptr;
  int unit_ = 0;
  int lineNumber_ = 0;
};

// A text file written on a unit and put in place only when complete. The new
// version replaces the target of a symbolic link, keeps the old file's
// permissions, owner and group, and a read-only file is refused at the open.
class AtomicWriter {
 public:
  AtomicWriter() = default;
  ~AtomicWriter();  // an unfinished file is abandoned
  AtomicWriter(const AtomicWriter&) = delete;
  AtomicWriter& operator=(const AtomicWriter&) = delete;

  // Starts a new version of `name`; 0 or an I/O status.
  int open(int unit, std::string_view name);
  // Appends text; 0 or an I/O status. After a failure further writes fail.
  int write(std::string_view text);
  // Appends text and a line end.
  int writeLine(std::string_view text);
  // Closes and puts the new version in place; 0 or an I/O status. On failure
  // the old file stands as it was.
  int commit();
  // Throws the new version away.
  void abandon();
  bool isOpen() const { return file_ != nullptr; }
  // The unit the file is connected to (0 before the first open).
  int unit() const { return unit_; }

 private:
  std::FILE* file_ = nullptr;
  int unit_ = 0;
  int status_ = 0;
  std::string name_;
  std::string temporary_;
};

// A text file opened for appending (the log).
class AppendWriter {
 public:
  AppendWriter() = default;
  ~AppendWriter();
  AppendWriter(const AppendWriter&) = delete;
  AppendWriter& operator=(const AppendWriter&) = delete;
  int open(int unit, std::string_view name);
  int writeLine(std::string_view text);
  // The line a fatal signal writes to this file before the process dies.
  void noteForFatalSignals(std::string_view line);
  int close();
  bool isOpen() const { return file_ != nullptr; }

 private:
  std::FILE* file_ = nullptr;
  int unit_ = 0;
};

// Test hook: make every AtomicWriter fail once it has written more than
// `bytes` bytes (negative: never). Simulates a full disk.
void simulateWriteFailureAfter(long long bytes);

}  // namespace kntr::framework
