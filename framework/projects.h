// Projects, file names, file headers and active files.
//
// All data of a design job belong to a project: a name, a small key=value
// project file, and data files that share the project's name and differ by
// extension, one per module. Every data file starts with a 12-line header.
//
//   IQISFN  full name of a file of the current project, by module or kind
//   GTDATE  today as DD-Mon-YYYY
//   GTTIME  the time now as HH:MM:SS
//   PTFLHD  write the 12-line file header
//   GTFLHD  read the 12-line file header
//
// (More routines of this family are declared as they are built.)
#pragma once

#include <string>
#include <string_view>

#include "framework/files.h"

namespace kntr::framework {

// IQISFN: the full file name for a module identifier ("KNTR") or a special
// kind ("PJCT", "PJTP", "BCKP", "ATTB", "TEMP").
void IQISFN(std::string_view kind, std::string& name, bool& status);

// GTDATE: today, "DD-Mon-YYYY".
void GTDATE(std::string& date);
// GTTIME: the time now, "HH:MM:SS".
void GTTIME(std::string& time);

// PTFLHD: write the 12-line header with `version` as the file version.
void PTFLHD(AtomicWriter& file, int version, bool& status);

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

}  // namespace kntr::framework
