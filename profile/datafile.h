// The profile data file and the file menu.
//
// The data file ("KNTR"), the temporary file ("TEMP") and the backup file
// ("BCKP") share one format: the 12-line file header with data version 3,
// then free-form records:
//   PRFTYP SPLACC NPRCRV
//   min X, max X, min Y, max Y of the bounding box
//   reference point X Y
// and per curve a record "NPRPNT PRCLSD PRPARM", followed per point by
// "number type X Y" and, for the types that carry extra data, one more
// record: the knuckle weight (1), a tangent and its length (3, 4), both
// tangents and lengths (5), or one direction and both lengths (6).
//
//   PTKNTR  store the profile block in a data file
//   GTKNTR  read a data file into the profile block
//   LDKNTF  read a data file, then show its date and the profile outline
//   LDKNTR  load the project's profile file, with confirmation and recovery
//   STKNTR  store the profile under the project's file name
//   STTEMP  store the profile quietly in the temporary file
//   FLKNTR  the file menu
//   IZKNTF  hand the file routines to the framework (callbacks, file reader)
#pragma once

#include <string>
#include <string_view>

namespace kntr::profile {

// The data version this module writes and reads.
inline constexpr int DataFileVersion = 3;
// Largest magnitude a strict reading takes for a real value.
inline constexpr double AbsurdMagnitude = 1.0e12;
// Longest file name the "Save as" question takes.
inline constexpr int SaveAsNameLength = 80;

// PTKNTR: store the block in `name`. Quiet skips every confirmation. A
// declined empty save or a cancelled overwrite question returns with no
// failure and nothing written; a refused overwrite sets the status.
void PTKNTR(std::string_view name, bool quiet, bool& status);

// GTKNTR: read `name` into the block. A missing file is no failure (quiet
// suppresses its message); `loaded` comes true only when the whole file was
// read.
void GTKNTR(std::string_view name, bool quiet, bool& loaded, bool& status);

// Strict reading (for batch tools): GTKNTR also refuses a profile type
// other than 0 or 1, a parameterization outside 1 to 5, an inverted box, a
// closed curve of fewer than 2 points, another program's header, data after
// the last record and values beyond AbsurdMagnitude, and instead of showing
// its refusals it keeps them as one plain line for readProblem.
void setStrictReading(bool strict);
const std::string& readProblem();

// LDKNTF: GTKNTR, then, when `print` is true and the module runs
// interactively, the file information and the profile outline.
void LDKNTF(std::string_view name, bool quiet, bool print, bool& loaded, bool& status);

// LDKNTR: load the project's profile file after a confirmation; a failed
// load leaves the block reset.
void LDKNTR(bool& status);

// STKNTR: store under the project's file name, with the usual questions.
void STKNTR(bool& status);

// STTEMP: store in the temporary file, without questions.
void STTEMP(bool& status);

// FLKNTR: the menu "FILE MANIPULATION".
void FLKNTR(bool& status);

// What the file routines ask of the display, installed by the display code:
// the view's plot limits set from the bounding box, and the repaint of the
// picture (erase, then draw) after a load in graphic mode. A null member is
// skipped.
struct FileDisplayHooks {
  void (*setViewBox)(double xmin, double xmax, double ymin, double ymax) = nullptr;
  void (*redraw)(bool& status) = nullptr;
};
FileDisplayHooks& fileDisplayHooks();

// IZKNTF: install LDKNTR, STKNTR and STTEMP as the module's load, store and
// backup callbacks, and LDKNTF as the reader of "KNTR" active files.
void IZKNTF();

}  // namespace kntr::profile
