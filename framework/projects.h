// Projects, file names, file headers and active files.
//
// All data of a design job belong to a project: a name, a small key=value
// project file, and data files that share the project's name and differ by
// extension, one per module. Every data file starts with a 12-line header.
//
//   IQISFN  full name of a file of the current project, by module or kind
//   IQFEXT  a module's text and backup file extensions
//   SPFLNM  split a file name into directory and base name
//   TCFLNM  shorten a file name for a listing, keeping its end
//   LDPJCT  read the project file
//   STPJCT  write the project file
//   SLPROJ  choose an existing project or create a new one
//   ASKIDN  ask for company and user identification
//   IZPROJ  hand the project selection to the framework's special commands
//   PTFLHD  write the 12-line file header
//   GTFLHD  read the 12-line file header
//   ISDSFA  load the data files of some modules and register them as active
//   IQACFL  look up an active file
//   PRACFL  list the active files
//   PRFILI  show the date and time of the last file header read or written
//   GTDATE  today as DD-Mon-YYYY
//   GTTIME  the time now as HH:MM:SS
//   DATE2I  split a DD-Mon-YYYY date into day, month and year
//   CITD2S  integer date YYYYMMDD as DD-Mon-YYYY
//   CITT2S  integer time HHMMSS as HH:MM:SS
//
// Helpers of the active-file table (readers per module, registration) are
// listed with their declarations below.
#pragma once

#include <span>
#include <string>
#include <string_view>

#include "framework/files.h"

namespace kntr::framework {

// Room for a file name built here, as the callers' buffers have it.
inline constexpr int FileNameWidth = 256;
// Width of a data file header line; the closing star stands in the last column.
inline constexpr int HeaderWidth = 80;
inline constexpr int HeaderLines = 12;
// Widths of date and time texts.
inline constexpr int DateWidth = 11;
inline constexpr int TimeWidth = 8;
// Active files kept at most.
inline constexpr int MaxActiveFiles = 24;
// Readers of data files that the active-file table knows at most.
inline constexpr int MaxFileReaders = 32;
// Version of the project file this framework writes.
inline constexpr int ProjectFileVersion = 1;

// File-name types of program().fileNameType.
inline constexpr int NamesUnixShort = 1;
inline constexpr int NamesUnixLong = 2;
inline constexpr int NamesDos = 3;

// IQISFN: the full file name for a module identifier ("KNTR") or a special
// kind ("PJCT", "PJTP", "BCKP", "ATTB", "TEMP"), for a caller whose buffer
// holds `capacity` characters.
void IQISFN(std::string_view kind, int capacity, std::string& name, bool& status);
void IQISFN(std::string_view kind, std::string& name, bool& status);

// IQFEXT: the text file extension and the backup extension (blank when the
// module has none) of a module, for the current file-name type.
void IQFEXT(std::string_view identifier, std::string& extension, std::string& backup, bool& status);

// SPFLNM: directory and base name of a full file name, split at the last
// path separator.
void SPFLNM(std::string_view full, std::string& directory, std::string& base, bool& status);

// TCFLNM: `name` cut to its last `maxLength` characters.
void TCFLNM(std::string_view name, int maxLength, std::string& truncated, bool& status);

// LDPJCT: read the project file of the current project into the state.
void LDPJCT(bool& status);

// STPJCT: write the project file of the current project, replacing it.
void STPJCT(int version, bool& status);
void STPJCT(bool& status);

// SLPROJ: ask for a project file; load it, or create the project.
void SLPROJ(bool& status);

// ASKIDN: ask for the company and the user identification.
void ASKIDN(bool& status);

// IZPROJ: make "#PROJECT" run SLPROJ (start-up calls this once).
void IZPROJ();

// GTDATE: today, "DD-Mon-YYYY".
void GTDATE(std::string& date);
// GTTIME: the time now, "HH:MM:SS".
void GTTIME(std::string& time);

// PTFLHD: write the 12-line header with `version` as the file version. I/O
// failures are reported under the work file name.
void PTFLHD(AtomicWriter& file, int version, bool& status);

// Opens `file` on a free unit (IQFUNT); a failure to open is told by IOERRM
// (O with `name`), and either failure sets the status.
bool openOnFreeUnit(TextReader& file, std::string_view name, bool& status);
bool openOnFreeUnit(AtomicWriter& file, std::string_view name, bool& status);

// Writes `lines` to the open `file` and puts the new version in place; a
// failure is told by IOERRM (W or C with `name`) and sets the status.
void writeLinesAndCommit(AtomicWriter& file, std::string_view name,
                         std::span<const std::string> lines, bool& status);

// What GTFLHD takes from a header.
struct FileHeader {
  std::string program;         // module identifier of the writer
  std::string programVersion;  // as read from its fixed columns
  int version = 0;             // file version
  std::string date;
  std::string time;
};

// GTFLHD: read the 12-line header of `file` (named `name` for messages).
void GTFLHD(TextReader& file, std::string_view name, FileHeader& header, bool& status);

// A reader of one module's data file, as the active-file table calls it:
// `loaded` comes back true when the file was there and could be read; the
// date and time of its header are then the state's last file date and time.
using DataFileReader = void (*)(std::string_view name, bool& loaded, bool& status);

// Install the reader of a module's data files (replacing an earlier one).
// Readers of the suite's other modules read just the header; a module
// installs its own reader at start-up.
void setDataFileReader(std::string_view identifier, DataFileReader reader);

// The header-only reader used for the suite's other modules.
void readHeaderOnly(std::string_view name, bool& loaded, bool& status);

// An entry of the active-file table.
struct ActiveFile {
  std::string identifier;
  std::string name;
  std::string date;
  std::string time;
};

// Enter or update a file in the active-file table. A new entry beyond the
// table's size is refused with a message and changes nothing.
void registerActiveFile(std::string_view identifier, std::string_view name, std::string_view date,
                        std::string_view time);

// Entries of the active-file table, in the order they came.
std::span<const ActiveFile> activeFiles();

// Empty the table and restore the default readers (tests).
void resetActiveFiles();

// ISDSFA: for each identifier, load the current project's file of that
// module through its reader and register it. `loaded`, when it is as long as
// `identifiers`, tells per identifier whether its file was read.
void ISDSFA(std::span<const std::string> identifiers, std::span<bool> loaded, bool& status);
void ISDSFA(std::span<const std::string> identifiers, bool& status);

// IQACFL: the active file of a module, if there is one.
void IQACFL(std::string_view identifier, bool& found, std::string& name, std::string& date,
            std::string& time);

// PRACFL: list the active files of the given modules, or all of them when
// the list is empty.
void PRACFL(std::span<const std::string> identifiers, bool& status);

// PRFILI: show the date and time of the last file header.
void PRFILI();

// DATE2I: day, month (1-12) and year of a "DD-Mon-YYYY" text.
void DATE2I(std::string_view date, int& day, int& month, int& year, bool& status);

// CITD2S: a YYYYMMDD date as "DD-Mon-YYYY", for a buffer of `capacity`
// characters.
void CITD2S(int date, int capacity, std::string& text, bool& status);
void CITD2S(int date, std::string& text, bool& status);

// CITT2S: an HHMMSS time as "HH:MM:SS", for a buffer of `capacity`
// characters.
void CITT2S(int time, int capacity, std::string& text, bool& status);
void CITT2S(int time, std::string& text, bool& status);

}  // namespace kntr::framework
