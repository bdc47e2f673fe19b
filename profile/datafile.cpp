#include "profile/datafile.h"

#include <array>
#include <cctype>
#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <initializer_list>
#include <string>

#include "framework/files.h"
#include "framework/format.h"
#include "framework/input.h"
#include "framework/menus.h"
#include "framework/projects.h"
#include "framework/startup.h"
#include "framework/state.h"
#include "framework/text.h"
#include "profile/block.h"
#include "profile/exchange.h"
#include "profile/undo.h"
#include "profile/module.h"
#include "profile/printout.h"

namespace kntr::profile {

namespace fw = framework;

namespace {

// --- Free-form records -------------------------------------------------------

// Reads the items of free-form records. Each record starts on a new line and
// may run on over further lines; what a line holds beyond the record's items
// is dropped. Items are separated by blanks, tabs or one comma; two commas
// in a row, or a comma first, give a null item that leaves its variable as
// it was, "r*v" stands for r copies of v and "r*" for r null items, and a
// slash ends the record, leaving the items after it as they were.
class RecordReader {
 public:
  enum Kind { Value, Null, Failed };

  explicit RecordReader(fw::TextReader& file) : file_(file) {}

  void startRecord() {
    line_.clear();
    position_ = 0;
    haveLine_ = false;
    afterValue_ = false;
    repeat_ = 0;
    ended_ = false;
  }

  Kind next(std::string& item) {
    if (ended_) return Null;
    if (repeat_ > 0) {
      --repeat_;
      if (repeatNull_) return Null;
      item = repeatValue_;
      return Value;
    }
    for (;;) {
      if (!haveLine_ || position_ >= line_.size()) {
        if (file_.readLine(line_) != 0) return Failed;
        haveLine_ = true;
        position_ = 0;
        continue;
      }
      const char c = line_[position_];
      if (c == ' ' || c == '\t' || c == '\r') {
        ++position_;
        continue;
      }
      if (c == ',') {
        ++position_;
        if (afterValue_) {
          afterValue_ = false;
          continue;
        }
        return Null;
      }
      if (c == '/') {
        ended_ = true;
        return Null;
      }
      const std::size_t start = position_;
      while (position_ < line_.size() && !separator(line_[position_])) ++position_;
      item = line_.substr(start, position_ - start);
      afterValue_ = true;
      return repeated(item);
    }
  }

 private:
  static bool separator(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == ',' || c == '/';
  }

  // "r*v" or "r*": the first of r items, the rest held back.
  Kind repeated(std::string& item) {
    const std::size_t star = item.find('*');
    if (star == std::string::npos || star == 0 || star > 9) return Value;
    long count = 0;
    for (std::size_t i = 0; i < star; ++i) {
      if (!std::isdigit(static_cast<unsigned char>(item[i]))) return Value;
      count = count * 10 + (item[i] - '0');
    }
    if (count < 1) return Value;
    repeat_ = count - 1;
    repeatValue_ = item.substr(star + 1);
    repeatNull_ = repeatValue_.empty();
    if (repeatNull_) return Null;
    item = repeatValue_;
    return Value;
  }

  fw::TextReader& file_;
  std::string line_;
  std::size_t position_ = 0;
  bool haveLine_ = false;
  bool afterValue_ = false;
  long repeat_ = 0;
  bool repeatNull_ = false;
  std::string repeatValue_;
  bool ended_ = false;
};

bool integerItem(const std::string& item, int& value) {
  std::size_t i = 0;
  bool negative = false;
  if (i < item.size() && (item[i] == '+' || item[i] == '-')) negative = item[i++] == '-';
  if (i == item.size()) return false;
  long long v = 0;
  for (; i < item.size(); ++i) {
    if (!std::isdigit(static_cast<unsigned char>(item[i]))) return false;
    v = v * 10 + (item[i] - '0');
    if (v > 2147483648LL) return false;
  }
  if (negative) v = -v;
  if (v > 2147483647LL) return false;
  value = static_cast<int>(v);
  return true;
}

// A real: sign, digits with an optional point, and an optional exponent
// with E, D or Q (either case), or with its sign alone ("1.5-3").
bool realItem(const std::string& item, double& value) {
  std::string work;
  std::size_t i = 0;
  auto digits = [&] {
    std::size_t n = 0;
    while (i < item.size() && std::isdigit(static_cast<unsigned char>(item[i]))) {
      work.push_back(item[i++]);
      ++n;
    }
    return n;
  };
  if (i < item.size() && (item[i] == '+' || item[i] == '-')) work.push_back(item[i++]);
  std::size_t mantissa = digits();
  if (i < item.size() && item[i] == '.') {
    work.push_back(item[i++]);
    mantissa += digits();
  }
  if (mantissa == 0) return false;
  if (i < item.size()) {
    const char e = static_cast<char>(std::toupper(static_cast<unsigned char>(item[i])));
    if (e == 'E' || e == 'D' || e == 'Q')
      ++i;
    else if (item[i] != '+' && item[i] != '-')
      return false;
    work.push_back('e');
    if (i < item.size() && (item[i] == '+' || item[i] == '-')) work.push_back(item[i++]);
    if (digits() == 0) return false;
  }
  if (i != item.size()) return false;
  errno = 0;
  const double v = std::strtod(work.c_str(), nullptr);
  if (!std::isfinite(v)) return false;
  value = v;
  return true;
}

// A logical: an optional point, then T or F in either case; what follows
// does not count (".TRUE.", "t", "False").
bool logicalItem(const std::string& item, bool& value) {
  std::size_t i = item.size() > 1 && item[0] == '.' ? 1 : 0;
  if (i >= item.size()) return false;
  const char c = static_cast<char>(std::toupper(static_cast<unsigned char>(item[i])));
  if (c != 'T' && c != 'F') return false;
  value = c == 'T';
  return true;
}

// How strictly files are read, and what the last strict refusal said.
struct ReadChecks {
  bool strict = false;
  std::string problem;
  std::string outOfRange;  // the item that was beyond AbsurdMagnitude
};

ReadChecks& readChecks() {
  static ReadChecks checks;
  return checks;
}

// A message without its formatting tokens (a brace and three letters).
std::string plainText(const std::string& text) {
  std::string plain;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '{' && i + 3 < text.size() && std::isalpha(static_cast<unsigned char>(text[i + 1]))) {
      i += 3;
      continue;
    }
    plain.push_back(text[i]);
  }
  return plain;
}

// One variable of a record.
struct Field {
  int* integer = nullptr;
  double* real = nullptr;
  bool* logical = nullptr;
  Field(int& v) : integer(&v) {}
  Field(double& v) : real(&v) {}
  Field(bool& v) : logical(&v) {}
};

// Reads one record into its fields; false when the file ends or an item
// does not convert.
bool readRecord(RecordReader& in, std::initializer_list<Field> fields) {
  in.startRecord();
  std::string item;
  for (const Field& f : fields) {
    const RecordReader::Kind kind = in.next(item);
    if (kind == RecordReader::Failed) return false;
    if (kind == RecordReader::Null) continue;
    const bool good = f.integer ? integerItem(item, *f.integer)
                      : f.real  ? realItem(item, *f.real)
                                : logicalItem(item, *f.logical);
    if (!good) return false;
    if (f.real && readChecks().strict && std::fabs(*f.real) > AbsurdMagnitude) {
      readChecks().outOfRange = item;
      return false;
    }
  }
  return true;
}

std::string real(double value) {
  return fmt::exact(value);
}

// --- Questions ---------------------------------------------------------------

bool interactive() {
  const int mode = fw::program().executionMode;
  return mode == fw::ModeAlone || mode == fw::ModeSystem;
}

// The file information and the outline, after a load or a store.
void printLoaded() {
  if (!interactive()) return;
  fw::PRFILI();
  bool st = false;
  PROUTL(st);
}

void copyBoxToView() {
  const ProfileData& p = profile();
  if (fileDisplayHooks().setViewBox)
    fileDisplayHooks().setViewBox(p.PRBBOX(1), p.PRBBOX(2), p.PRBBOX(3), p.PRBBOX(4));
}

void readKntrActiveFile(std::string_view name, bool& loaded, bool& status) {
  LDKNTF(name, true, true, loaded, status);
}

}  // namespace

FileDisplayHooks& fileDisplayHooks() {
  static FileDisplayHooks hooks;
  return hooks;
}

// --- Store -------------------------------------------------------------------

void PTKNTR(std::string_view name, bool quiet, bool& status) {
  status = false;
  const ProfileData& p = profile();
  const std::string file(name);
  bool yes = false, cancelled = false;

  if (p.NPRCRV == 0 && !quiet) {
    fw::askYesNo("OK to store profile data with no curves? (yes/no)", false, "no",
                 "This would normally be an odd thing to do...", false, yes, cancelled);
    if (!yes) return;
  }

  int unit = 0;
  bool st = false;
  fw::IQFUNT(unit, st);
  if (st) {
    fw::fail("Could not obtain I/O unit!", status);
    return;
  }
  if (fw::fileExists(file) && !quiet) {
    fw::askYesNo("OK to overwrite the file \"{GRE" + file + "{YEL\"? (yes/no)", false, "no",
                 "This will leave the file with the latest modified data", false, yes, cancelled);
    if (cancelled) return;
    if (!yes) {
      status = true;
      return;
    }
  }

  // The questions may have run the periodic backup: name the file only now.
  fw::program().workFileName = file;
  fw::AtomicWriter out;
  int io = out.open(unit, file);
  if (io != 0) {
    fw::IOERRM('O', file, io);
    status = true;
    return;
  }
  fw::PRMODL("Storing profile-data in \"{GRE" + file + "{YEL\"");
  fw::PTFLHD(out, DataFileVersion, status);
  if (status) return;

  auto put = [&](const std::string& line) {
    if (io == 0) io = out.writeLine(line);
  };
  put(std::to_string(p.PRFTYP) + " " + real(p.SPLACC) + " " + std::to_string(p.NPRCRV));
  put(real(p.PRBBOX(1)) + " " + real(p.PRBBOX(2)) + " " + real(p.PRBBOX(3)) + " " +
      real(p.PRBBOX(4)));
  put(real(p.PRREFP(1)) + " " + real(p.PRREFP(2)));
  for (int c = 1; c <= p.NPRCRV && io == 0; ++c) {
    put(std::to_string(p.NPRPNT(c)) + (p.PRCLSD(c) ? " T " : " F ") + std::to_string(p.PRPARM(c)));
    for (int j = 1; j <= p.NPRPNT(c) && io == 0; ++j) {
      const int type = p.PRPTYP(c, j);
      put(std::to_string(j) + " " + std::to_string(type) + " " + real(p.PRPNTS(c, j)(1)) + " " +
          real(p.PRPNTS(c, j)(2)));
      const auto& v = p.PRTANV(c, j);
      const auto& l = p.PRTANL(c, j);
      switch (type) {
        case Knuckle:
          put(real(p.PRKWGT(c, j)));
          break;
        case LeadingTangent:
          put(real(v(1)) + " " + real(v(2)) + " " + real(l(1)));
          break;
        case TrailingTangent:
          put(real(v(3)) + " " + real(v(4)) + " " + real(l(2)));
          break;
        case BothTangents:
          put(real(v(1)) + " " + real(v(2)) + " " + real(l(1)) + " " + real(v(3)) + " " +
              real(v(4)) + " " + real(l(2)));
          break;
        case EqualTangents:
          put(real(v(1)) + " " + real(v(2)) + " " + real(l(1)) + " " + real(l(2)));
          break;
        default:
          break;
      }
    }
  }
  if (io != 0) {
    out.abandon();
    fw::IOERRM('W', file, io);
    status = true;
    return;
  }
  io = out.commit();
  if (io != 0) {
    fw::IOERRM('C', file, io);
    status = true;
  }
}

// --- Read --------------------------------------------------------------------

void GTKNTR(std::string_view name, bool quiet, bool& loaded, bool& status) {
  status = false;
  loaded = false;
  ReadChecks& checks = readChecks();
  checks.problem.clear();
  const std::string file(name);
  // A refusal: on the error line, or kept as one plain line when the
  // caller reads strictly and reports for itself.
  auto refuse = [&](const std::string& text) {
    if (checks.strict) {
      checks.problem = plainText(text);
      status = true;
    } else {
      fw::fail(text, status);
    }
  };
  int unit = 0;
  bool st = false;
  fw::IQFUNT(unit, st);
  if (st) {
    fw::fail("Could not obtain I/O unit!", status);
    return;
  }
  fw::program().workFileName = file;
  if (!fw::fileExists(file)) {
    if (checks.strict) return refuse("\"" + file + "\" is non-existent!");
    if (!quiet) fw::ERRSCN("\"{GRE" + file + "{RED\" is non-existent!");
    return;
  }
  fw::TextReader in;
  const int io = in.open(unit, file);
  if (io != 0) {
    if (checks.strict) return refuse("\"" + file + "\" could not be opened");
    fw::IOERRM('O', file, io);
    status = true;
    return;
  }
  fw::PRMODL("Loading profile data from \"{GRE" + file + "{YEL\"");

  fw::FileHeader header;
  fw::GTFLHD(in, file, header, status);
  if (status) {
    if (checks.strict) refuse("The file header of \"" + file + "\" is incomplete or unreadable");
    return;
  }
  if (checks.strict && header.program != ModuleName)
    return refuse("\"" + file + "\" is not a KNTR file (its header names " + header.program + ")");
  if (header.version < DataFileVersion) {
    refuse("The version of \"{GRE" + file + "{RED\" is obsolete!");
    return;
  }
  if (header.version > DataFileVersion) {
    refuse("The version of \"{GRE" + file + "{RED\" is unsupported!");
    return;
  }

  // The counter follows the records read; a point counts for two lines,
  // with or without its extra record, and a curve record counts for none.
  int line = fw::HeaderLines;
  checks.outOfRange.clear();
  auto formatError = [&] {
    if (!checks.outOfRange.empty())
      refuse("Value " + checks.outOfRange + " out of range at line " + std::to_string(line + 1) +
             " read from " + file);
    else
      refuse("Incorrect file format detected at line " + fmt::I(line, 6) + " read from " + file);
  };
  auto strictError = [&](const std::string& what) {
    refuse(what + " at line " + std::to_string(line) + " read from " + file);
  };

  // The file is read into a copy of the block; only a complete file
  // replaces the profile, so a failed load leaves it as it was.
  static ProfileData scratch;
  scratch = profile();
  ProfileData& p = scratch;
  RecordReader records(in);
  int kind = p.PRFTYP, curves = p.NPRCRV;
  double accuracy = p.SPLACC;
  if (!readRecord(records, {kind, accuracy, curves})) return formatError();
  ++line;
  if (curves >= MaxCurves + 1) {
    refuse("Max number of profile curves exceeded!");
    return;
  }
  if (curves < 0) return formatError();
  if (checks.strict && kind != PolylineProfile && kind != SplineProfile)
    return strictError("Profile type " + std::to_string(kind) + " is neither 0 nor 1");
  p.PRFTYP = kind;
  p.SPLACC = accuracy;
  p.NPRCRV = curves;

  if (!readRecord(records, {p.PRBBOX(1), p.PRBBOX(2), p.PRBBOX(3), p.PRBBOX(4)}))
    return formatError();
  ++line;
  if (checks.strict && (p.PRBBOX(1) > p.PRBBOX(2) || p.PRBBOX(3) > p.PRBBOX(4)))
    return strictError("The bounding box is inverted (min above max)");
  if (!readRecord(records, {p.PRREFP(1), p.PRREFP(2)})) return formatError();
  ++line;

  for (int c = 1; c <= curves; ++c) {
    int points = p.NPRPNT(c), parameterization = p.PRPARM(c);
    bool closed = p.PRCLSD(c);
    if (!readRecord(records, {points, closed, parameterization})) return formatError();
    if (points > MaxCurvePoints) {
      refuse("Max number of profile curve points exceeded!");
      return;
    }
    if (points < 0) return formatError();
    if (checks.strict && (parameterization < Uniform || parameterization > Foley))
      return strictError("Curve " + std::to_string(c) + " has parameterization " +
                         std::to_string(parameterization) + ", not 1 to 5");
    if (checks.strict && closed && points < 2)
      return strictError("Curve " + std::to_string(c) + " is closed with fewer than 2 points");
    p.NPRPNT(c) = points;
    p.PRCLSD(c) = closed;
    p.PRPARM(c) = parameterization;

    for (int j = 1; j <= points; ++j) {
      int number = j, type = p.PRPTYP(c, j);
      Array1<double, 2>& xy = p.PRPNTS(c, j);
      if (!readRecord(records, {number, type, xy(1), xy(2)})) return formatError();
      if (type < 0 || type > TrailingSheer) return formatError();
      ++line;
      p.PRKWGT(c, j) = 0.0;
      ++line;
      if (type == 0) type = ContinuousCurvature;
      p.PRPTYP(c, j) = type;
      Array1<double, 4>& v = p.PRTANV(c, j);
      Array1<double, 2>& l = p.PRTANL(c, j);
      bool good = true;
      switch (type) {
        case Knuckle:
          good = readRecord(records, {p.PRKWGT(c, j)});
          break;
        case LeadingTangent:
          good = readRecord(records, {v(1), v(2), l(1)});
          break;
        case TrailingTangent:
          good = readRecord(records, {v(3), v(4), l(2)});
          break;
        case BothTangents:
          good = readRecord(records, {v(1), v(2), l(1), v(3), v(4), l(2)});
          break;
        case EqualTangents:
          good = readRecord(records, {v(1), v(2), l(1), l(2)});
          break;
        default:
          break;
      }
      if (!good) return formatError();
    }
  }
  if (checks.strict) {
    std::string rest;
    while (in.readLine(rest) == 0)
      if (fmt::trimmedLength(rest) > 0)
        return refuse("Data after the last record at line " + std::to_string(in.lineNumber()) +
                      " read from " + file);
  }

  p.BBOXOK = true;
  p.CURCRV = 1;
  profile() = scratch;
  loaded = true;
  CLUNDO();
  const int closing = in.close();
  if (closing != 0) {
    fw::IOERRM('C', file, closing);
    status = true;
  }
}

void setStrictReading(bool strict) { readChecks().strict = strict; }

const std::string& readProblem() { return readChecks().problem; }

void LDKNTF(std::string_view name, bool quiet, bool print, bool& loaded, bool& status) {
  GTKNTR(name, quiet, loaded, status);
  if (status || !loaded) return;
  if (print) printLoaded();
}

// --- Project files -----------------------------------------------------------

void LDKNTR(bool& status) {
  status = false;
  ProfileData& p = profile();
  if (p.NPRCRV > 0) {
    bool answer = false;
    fw::OKLOAD(!fw::program().terminalInput, answer);
    if (!answer) {
      status = true;
      return;
    }
  }
  // The file is read over a reset block, but a failed read puts the block
  // back as it was before, modification flag included.
  static ProfileData before;
  before = p;
  RSKNTR(status);
  if (status) return;
  std::string name;
  fw::IQISFN(ModuleName, name, status);
  if (status) {
    p = before;
    return;
  }
  bool loaded = false;
  GTKNTR(name, false, loaded, status);
  if (!status && loaded) {
    if (!fw::program().terminalInput && fileDisplayHooks().redraw) {
      bool st = false;
      fileDisplayHooks().redraw(st);
    }
    return;
  }
  p = before;
  fw::ERRSCN("Loading of KNTR data failed - current data kept!");
  if (!status) status = true;
}

void STKNTR(bool& status) {
  std::string name;
  fw::IQISFN(ModuleName, name, status);
  if (status) return;
  PTKNTR(name, false, status);
}

void STTEMP(bool& status) {
  std::string name;
  fw::IQISFN("TEMP", name, status);
  if (status) return;
  PTKNTR(name, true, status);
}

// --- The file menu -----------------------------------------------------------

void FLKNTR(bool& status) {
  status = false;
  ProfileData& p = profile();

  for (;;) {
    const bool none = p.NPRCRV == 0;
    const std::array<std::string, 14> rows = {
        "Load profile(s)",
        "",
        none ? "{NAYSave profile(s)" : "Save profile(s)",
        none ? "{NAYSave profile(s) as" : "Save profile(s) as",
        "",
        "Load temporary file",
        "Load backup file",
        "",
        "Reset",
        "",
        none ? "{NAYExport profile as DXF" : "Export profile as DXF",
        none ? "{NAYExport profile as SVG" : "Export profile as SVG",
        "Import offset table",
        "Section properties in printout " + fw::logicalStateText(p.SHOWSP),
    };
    bool abort = false, st = false;
    int selection = 0;
    fw::TXMENU("FILE MANIPULATION", rows, static_cast<int>(rows.size()) + 1, "", abort, selection,
               st);
    if (abort || st || selection < 1 || selection > 10) return;

    switch (selection) {
      case 1: {
        LDKNTR(st);
        if (st) break;
        copyBoxToView();
        printLoaded();
        p.MODFLG = false;
        break;
      }
      case 2: {
        if (p.NPRCRV == 0) {
          fw::ERRSCN("No profile curves available to save!");
          break;
        }
        STKNTR(st);
        if (st) break;
        printLoaded();
        p.MODFLG = false;
        break;
      }
      case 3: {
        if (p.NPRCRV == 0) {
          fw::ERRSCN("No profile curves available to save!");
          break;
        }
        // The project's file name is offered as the default.
        std::string current;
        fw::IQISFN(ModuleName, current, st);
        if (st) current.clear();
        std::string name;
        bool cancelled = false;
        for (;;) {
          bool abortName = false, failed = false;
          fw::ASKQST("Input name (full) for KNTR file (max 80 char)", current,
                     "The profile data are stored in this file", 1, abortName, failed);
          if (abortName || failed) {
            cancelled = true;
            break;
          }
          std::array<std::string, 1> value{current};
          bool deflted = false;
          fw::GTCHAR(value, SaveAsNameLength, deflted, failed);
          if (failed) continue;
          name = std::string(fmt::trimmed(value[0]));
          if (!name.empty()) break;
        }
        if (cancelled) return;
        PTKNTR(name, false, st);
        if (st) break;
        printLoaded();
        p.MODFLG = false;
        break;
      }
      case 4:
      case 5: {
        if (p.NPRCRV >= 1) {
          bool answer = false;
          fw::OKLOAD(!fw::program().terminalInput, answer);
          if (!answer) break;
        }
        std::string name;
        fw::IQISFN(selection == 4 ? "TEMP" : "BCKP", name, st);
        if (st) break;
        // A missing or broken file changes nothing, the flag included.
        bool loaded = false;
        GTKNTR(name, false, loaded, st);
        if (st || !loaded) break;
        printLoaded();
        p.MODFLG = false;
        break;
      }
      case 6: {
        bool answer = false;
        fw::OKRSET(answer);
        if (answer) RSKNTR(st);
        break;
      }
      case 7:
      case 8:
        XPPROF(selection == 7 ? DxfDrawing : SvgDrawing, st);
        break;
      case 9: {
        bool imported = false;
        INOFFT(imported, st);
        if (!imported) break;
        copyBoxToView();
        if (interactive()) PROUTL(st);
        break;
      }
      case 10:
        p.SHOWSP = !p.SHOWSP;
        break;
      default:
        break;
    }
  }
}

void IZKNTF() {
  fw::ModuleCallbacks& c = fw::callbacks();
  c.load = LDKNTR;
  c.store = STKNTR;
  c.backup = STTEMP;
  fw::setDataFileReader(ModuleName, readKntrActiveFile);
}

}  // namespace kntr::profile
