#include "framework/projects.h"

#include <array>
#include <cctype>
#include <cerrno>
#include <cstdlib>
#include <ctime>
#include <vector>

#include "framework/format.h"
#include "framework/input.h"
#include "framework/menus.h"
#include "framework/state.h"
#include "framework/text.h"

namespace kntr::framework {

namespace {

const char* const monthNames[12] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                    "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};

bool localNow(std::tm& now) {
  const std::time_t t = std::time(nullptr);
  if (t == static_cast<std::time_t>(-1)) return false;
  const std::tm* local = std::localtime(&t);
  if (!local) return false;
  now = *local;
  return true;
}

// Two digits with a leading zero.
std::string twoDigits(int v) {
  return std::string(v < 10 ? "0" : "") + std::to_string(v);
}

std::string trimmedCopy(std::string_view text) {
  return std::string(fmt::trimmed(text));
}

// --- Extension table ---------------------------------------------------------

// One module of the suite: its short text and backup extensions (file-name
// type 1) and its long ones (types 2 and 3). A blank backup extension means
// the module keeps no backup file of that form.
struct ExtensionRow {
  const char* identifier;
  const char* shortText;
  const char* shortBackup;
  const char* longText;
  const char* longBackup;
};

constexpr std::array<ExtensionRow, 12> extensionTable{{
    {"PJCT", "PJC", "", "PJCT", ""},
    {"KNTR", "KNT", "KNB", "KNTR", ""},
    {"TVEW", "TVW", "TVB", "TVEW", ""},
    {"LIST", "LST", "", "LIST", ""},
    {"HULL", "HUL", "HUB", "HULL", "HULL-BAK"},
    {"HYDR", "HYD", "HYB", "HYDR", ""},
    {"STAB", "STA", "SBA", "STAB", ""},
    {"TANK", "TNK", "TKB", "TANK", ""},
    {"WGHT", "WGT", "WGB", "WGHT", ""},
    {"ARRG", "ARR", "ABR", "ARRG", "ARRG-BAK"},
    {"PLAT", "PLT", "PLB", "PLAT", ""},
    {"SECT", "SEC", "SCB", "SECT", ""},
}};

// --- Active files ------------------------------------------------------------

struct ReaderEntry {
  std::string identifier;
  DataFileReader reader = nullptr;
};

struct ActiveFileTable {
  std::array<ActiveFile, MaxActiveFiles> entries;
  int count = 0;
  std::array<ReaderEntry, MaxFileReaders> readers;
  int readerCount = 0;
};

void installDefaultReaders(ActiveFileTable& t) {
  t.readerCount = 0;
  for (const ExtensionRow& row : extensionTable) {
    const std::string_view id = row.identifier;
    if (id == "PJCT" || id == "LIST" || id == "KNTR") continue;
    if (t.readerCount == MaxFileReaders) break;
    t.readers[static_cast<std::size_t>(t.readerCount++)] = {std::string(id), readHeaderOnly};
  }
}

ActiveFileTable& activeTable() {
  static ActiveFileTable table = [] {
    ActiveFileTable t;
    installDefaultReaders(t);
    return t;
  }();
  return table;
}

DataFileReader readerFor(std::string_view identifier) {
  const ActiveFileTable& t = activeTable();
  for (int i = 0; i < t.readerCount; ++i)
    if (t.readers[static_cast<std::size_t>(i)].identifier == identifier)
      return t.readers[static_cast<std::size_t>(i)].reader;
  return nullptr;
}

// --- Header lines ------------------------------------------------------------

// Label and value, and the closing star in the last column unless the value
// already reaches it.
std::string headerLine(std::string_view label, std::string_view value) {
  std::string line(label);
  line.append(fmt::trimmed(value));
  if (static_cast<int>(line.size()) < HeaderWidth) {
    line.resize(static_cast<std::size_t>(HeaderWidth - 1), ' ');
    line.push_back('*');
  }
  return line;
}

// `count` characters of `line` from column `first` (1-based), blank-padded.
std::string columns(const std::string& line, int first, int count) {
  std::string field;
  for (int c = first; c < first + count; ++c)
    field.push_back(c <= static_cast<int>(line.size()) ? line[static_cast<std::size_t>(c - 1)]
                                                       : ' ');
  return field;
}

// An integer field of fixed width; blanks count for nothing and an all-blank
// field is zero.
bool integerField(std::string_view field, int& value) {
  std::string digits;
  for (char c : field)
    if (c != ' ') digits.push_back(c);
  if (digits.empty()) {
    value = 0;
    return true;
  }
  std::size_t i = 0;
  bool negative = false;
  if (digits[0] == '+' || digits[0] == '-') {
    negative = digits[0] == '-';
    i = 1;
  }
  if (i == digits.size()) return false;
  long long v = 0;
  for (; i < digits.size(); ++i) {
    if (!std::isdigit(static_cast<unsigned char>(digits[i]))) return false;
    v = v * 10 + (digits[i] - '0');
    if (v > 2147483647LL) return false;
  }
  value = static_cast<int>(negative ? -v : v);
  return true;
}

// A free-form integer: optional sign and digits, blanks around.
bool integerText(std::string_view field, int& value) {
  const std::string text = fmt::stripped(field);
  if (text.empty()) return false;
  for (char c : text)
    if (c == ' ') return false;
  return integerField(text, value);
}

// A free-form real: an integer or a decimal number with an E or D exponent.
bool realText(std::string_view field, double& value) {
  const std::string text = fmt::stripped(field);
  if (text.empty() || text.size() > 64) return false;
  std::string work(text);
  for (char& c : work)
    if (c == 'd' || c == 'D') c = 'E';
  bool digit = false;
  for (std::size_t i = 0; i < work.size(); ++i) {
    const char c = work[i];
    if (std::isdigit(static_cast<unsigned char>(c)))
      digit = true;
    else if (c != '+' && c != '-' && c != '.' && c != 'E' && c != 'e')
      return false;
  }
  if (!digit) return false;
  char* end = nullptr;
  errno = 0;
  const double v = std::strtod(work.c_str(), &end);
  if (end != work.c_str() + work.size() || errno == ERANGE) return false;
  value = v;
  return true;
}

// One text answer; false when the question was aborted.
bool askText(const std::string& question, const std::string& deflt, std::string_view help,
             int maxLength, std::string& answer) {
  for (;;) {
    bool abort = false, st = false;
    ASKQST(question, deflt, help, 1, abort, st);
    if (abort || st) return false;
    std::array<std::string, 1> value{deflt};
    bool deflted = false;
    GTCHAR(value, maxLength, deflted, st);
    if (st) continue;
    answer = value[0];
    return true;
  }
}

// Writes `lines` to `file`; a failure is told by IOERRM (W with `name`).
bool writeLines(AtomicWriter& file, std::string_view name, std::span<const std::string> lines,
                bool& status) {
  for (const std::string& line : lines) {
    const int io = file.writeLine(line);
    if (io != 0) {
      IOERRM('W', name, io);
      status = true;
      return false;
    }
  }
  return true;
}

template <class File>
bool openFile(File& file, std::string_view name, bool& status) {
  status = false;
  int unit = 0;
  IQFUNT(unit, status);
  if (status) return false;
  if (const int io = file.open(unit, name); io != 0) {
    IOERRM('O', name, io);
    status = true;
    return false;
  }
  return true;
}

}  // namespace

// --- File names --------------------------------------------------------------

void IQFEXT(std::string_view identifier, std::string& extension, std::string& backup,
            bool& status) {
  status = false;
  extension.clear();
  backup.clear();
  const std::string_view id = fmt::trimmed(identifier);
  if (id.empty()) {
    fail("(IQISFN) Unable to return file extension for module without identification", status);
    return;
  }
  const bool shortForm = program().fileNameType == NamesUnixShort;
  for (const ExtensionRow& row : extensionTable) {
    if (id != row.identifier) continue;
    extension = shortForm ? row.shortText : row.longText;
    backup = shortForm ? row.shortBackup : row.longBackup;
    return;
  }
  fail("Unable to find file extensions for module with ** {gre" + std::string(id) +
         "{red ** as identification", status);
}

void IQISFN(std::string_view kind, int capacity, std::string& name, bool& status) {
  status = false;
  name.clear();
  const std::string_view id = fmt::trimmed(kind);
  if (id.empty()) {
    fail("(IQISFN) Unable to return file name for module without identification", status);
    return;
  }
  const ProgramState& p = program();
  const bool shortForm = p.fileNameType == NamesUnixShort;
  const std::string module = trimmedCopy(p.SPNAME);
  const std::string project = trimmedCopy(p.projectName);
  const std::string directory = trimmedCopy(p.projectDirectory);
  // Temporary and attribute files sit in the project's directory under the
  // module's name.
  const std::string groupBase =
      directory.empty() ? module : directory + std::string(1, p.pathSeparator) + module;

  std::string base, extension, backup;
  bool st = false;
  if (id == "PJTP") {
    base = "PJCT";
    extension = shortForm ? "TMP" : "TEMP";
  } else if (id == "BCKP") {
    base = project;
    if (shortForm) {
      std::string text;
      IQFEXT(module, text, extension, st);
      if (st) {
        status = true;
        return;
      }
    } else {
      extension = module + "-BCKP";
    }
  } else if (id == "ATTB") {
    base = groupBase;
    extension = shortForm ? "ATB" : "ATTB";
  } else if (id == "TEMP") {
    base = groupBase;
    extension = shortForm ? "TMP" : "TEMP";
  } else {
    base = project;
    IQFEXT(id, extension, backup, st);
    if (st) {
      status = true;
      return;
    }
  }

  const int needed = static_cast<int>(base.size() + extension.size()) + 3;
  if (needed > capacity) {
    fail(
        "(IQISFN) Unable to return file name for module due to space limitations{gre(max number "
        "of characters in file name is " +
        fmt::I(needed, 4) + " < " + fmt::I(capacity, 4) + ")", status);
    return;
  }
  name = base + std::string(1, p.extensionSeparator) + extension;
}

void IQISFN(std::string_view kind, std::string& name, bool& status) {
  IQISFN(kind, FileNameWidth, name, status);
}

void SPFLNM(std::string_view full, std::string& directory, std::string& base, bool& status) {
  status = false;
  directory.clear();
  base.clear();
  const std::string_view name = fmt::trimmed(full);
  if (name.empty()) {
    fail("(SPFLNM) Full file name length must be positive", status);
    return;
  }
  const std::size_t at = name.rfind(program().pathSeparator);
  if (at == std::string_view::npos) {
    base = name;
  } else if (at == 0) {
    base = name.substr(1);
  } else if (at == name.size() - 1) {
    directory = name.substr(0, at);
  } else {
    directory = name.substr(0, at);
    base = name.substr(at + 1);
  }
}

void TCFLNM(std::string_view name, int maxLength, std::string& truncated, bool& status) {
  status = false;
  truncated.clear();
  if (maxLength <= 0) {
    fail("(TCFLNM) File name truncation length must be positive", status);
    return;
  }
  const std::string_view text = fmt::trimmed(name);
  if (text.empty()) {
    fail("(TCFLNM) Unable to truncate zero length file name", status);
    return;
  }
  const std::size_t keep = static_cast<std::size_t>(maxLength);
  truncated =
      text.size() <= keep ? std::string(text) : std::string(text.substr(text.size() - keep));
}

// --- Project file ------------------------------------------------------------

void STPJCT(int version, bool& status) {
  status = false;
  ProgramState& p = program();
  std::string name;
  IQISFN("PJCT", name, status);
  if (status) return;
  p.workFileName = name;
  AtomicWriter file;
  if (!openOnFreeUnit(file, name, status)) return;
  PTFLHD(file, version, status);
  if (status) return;

  const char* const levels[3] = {"beginner", "standard", "advanced"};
  const int level = (p.printLevel >= 1 && p.printLevel <= 3) ? p.printLevel : 1;
  std::string view = "view-setup=" + fmt::I(p.viewSetupCode, 4);
  for (double v : p.viewSetup) view += "," + fmt::PE(v, 10, 3);
  const std::string lines[] = {
      std::string("print-level=") + levels[level - 1],
      "project-identification=" + trimmedCopy(p.projectIdentification),
      "company-identification=" + trimmedCopy(p.company),
      "user-identification=" + trimmedCopy(p.user),
      "backup-interval=" + fmt::I(p.backupInterval, 4),
      view,
      "float-format=" + fmt::I(p.floatFormat, 4),
      "weight-units=" + fmt::I(p.weightUnit, 4),
  };
  writeLinesAndCommit(file, name, lines, status);
}

bool openOnFreeUnit(TextReader& file, std::string_view name, bool& status) {
  return openFile(file, name, status);
}

bool openOnFreeUnit(AtomicWriter& file, std::string_view name, bool& status) {
  return openFile(file, name, status);
}

void writeLinesAndCommit(AtomicWriter& file, std::string_view name,
                         std::span<const std::string> lines, bool& status) {
  status = false;
  if (!writeLines(file, name, lines, status)) return;
  const int io = file.commit();
  if (io != 0) {
    IOERRM('C', name, io);
    status = true;
  }
}

void STPJCT(bool& status) {
  STPJCT(ProjectFileVersion, status);
}

void LDPJCT(bool& status) {
  status = false;
  ProgramState& p = program();
  std::string name;
  IQISFN("PJCT", name, status);
  if (status) return;
  p.workFileName = name;
  if (!fileExists(name)) {
    fail("Project file ** {gre" + name + "{red ** does not exist", status);
    return;
  }
  TextReader file;
  if (!openOnFreeUnit(file, name, status)) return;
  FileHeader header;
  GTFLHD(file, name, header, status);
  if (status) return;

  auto readFailure = [&](int code) {
    IOERRM('R', name, code);
    status = true;
  };
  std::string line;
  int io = 0;
  for (;;) {
    io = file.readLine(line);
    if (io == -1) break;
    if (io != 0) {
      readFailure(io);
      return;
    }
    const std::size_t equals = line.find('=');
    if (equals == std::string::npos) continue;
    const std::string_view key = std::string_view(line).substr(0, equals);
    const std::string_view value = fmt::trimmed(std::string_view(line).substr(equals + 1));
    auto has = [&](std::string_view word) { return key.find(word) != std::string_view::npos; };

    if (has("print-level")) {
      const std::string word = fmt::stripped(value);
      if (word == "beginner")
        p.printLevel = 1;
      else if (word == "standard")
        p.printLevel = 2;
      else if (word == "advanced")
        p.printLevel = 3;
    } else if (has("project-identification")) {
      p.projectIdentification = std::string(value.substr(0, IdentificationWidth));
    } else if (has("company-identification")) {
      p.company = std::string(value.substr(0, IdentificationWidth));
    } else if (has("user-identification")) {
      p.user = std::string(value.substr(0, IdentificationWidth));
    } else if (has("backup-interval")) {
      int interval = 0;
      if (!integerText(value, interval)) return readFailure(IoReadUnexpected);
      p.backupInterval = interval;
    } else if (has("view-setup")) {
      // One integer and three reals, separated by commas or blanks.
      std::vector<std::string> items;
      std::string item;
      for (char c : value) {
        if (c == ',' || c == ' ' || c == '\t') {
          if (!item.empty()) items.push_back(item);
          item.clear();
        } else {
          item.push_back(c);
        }
      }
      if (!item.empty()) items.push_back(item);
      int code = 0;
      std::array<double, 3> reals{};
      bool good = items.size() == 4 && integerText(items[0], code);
      for (std::size_t k = 0; good && k < 3; ++k) good = realText(items[k + 1], reals[k]);
      if (!good) return readFailure(IoReadUnexpected);
      // The view routine of the plot set-up takes these four numbers when it
      // is set up; until then they wait in the state.
      p.viewSetupCode = code;
      p.viewSetup = reals;
    } else if (has("float-format")) {
      int index = 0;
      if (!integerText(value, index)) return readFailure(IoReadUnexpected);
      if (index >= 1 && index <= static_cast<int>(p.floatFormats.size())) p.floatFormat = index;
    } else if (has("weight-units")) {
      int index = 0;
      if (!integerText(value, index)) return readFailure(IoReadUnexpected);
      if (index >= 1 && index <= static_cast<int>(p.weightFactors.size())) p.weightUnit = index;
    }
  }
  io = file.close();
  if (io != 0) {
    IOERRM('C', name, io);
    status = true;
  }
}

void ASKIDN(bool& status) {
  status = false;
  ProgramState& p = program();
  struct Question {
    const char* text;
    std::string* current;
    const std::string* fallback;
  };
  const Question questions[2] = {
      {"Input company identification? (max 64 characters)", &p.company, &p.defaultCompany},
      {"Input user identification? (max 64 characters)", &p.user, &p.defaultUser},
  };
  for (const Question& q : questions) {
    for (;;) {
      std::string deflt = trimmedCopy(*q.current);
      if (deflt.empty()) deflt = trimmedCopy(*q.fallback);
      bool abort = false, st = false;
      ASKQST(q.text, deflt, "This name is written in the head of every file and printout", 1,
             abort, st);
      if (st) {
        status = true;
        return;
      }
      if (abort) {
        NOABRT();
        continue;
      }
      std::array<std::string, 1> value{deflt};
      bool deflted = false;
      GTCHAR(value, IdentificationWidth, deflted, st);
      if (st) continue;
      *q.current = value[0];
      break;
    }
  }
}

void SLPROJ(bool& status) {
  status = false;
  ProgramState& p = program();
  const std::string oldName = p.projectName, oldDirectory = p.projectDirectory,
                    oldBase = p.projectBaseName;
  auto giveUp = [&] {
    p.projectName = oldName;
    p.projectDirectory = oldDirectory;
    p.projectBaseName = oldBase;
    status = true;
  };

  for (;;) {
    // The project file's name, offered from the current or the default project.
    std::string extension, backup;
    IQFEXT("PJCT", extension, backup, status);
    if (status) return giveUp();
    const std::string suffix = std::string(1, p.extensionSeparator) + extension;
    std::string project = trimmedCopy(p.projectName);
    if (project.empty()) project = trimmedCopy(p.defaultProject);
    const std::string deflt = project.empty() ? std::string() : project + suffix;
    std::string answer;
    if (!askText("Input name of project file? (max 256 characters)", deflt,
                 "Give the name of an existing project file, or of a new one to create it",
                 FileNameWidth, answer))
      return giveUp();
    std::string name = trimmedCopy(answer);
    if (name.empty()) continue;
    // The project is the file's name without its extension.
    if (name.size() > suffix.size() &&
        name.compare(name.size() - suffix.size(), suffix.size(), suffix) == 0)
      name.resize(name.size() - suffix.size());

    std::string directory, base;
    bool st = false;
    SPFLNM(name, directory, base, st);
    if (st) continue;
    p.projectName = name;
    p.projectDirectory = directory;
    p.projectBaseName = base;

    std::string fileName;
    IQISFN("PJCT", fileName, st);
    if (st) continue;
    if (fileExists(fileName)) {
      LDPJCT(status);
      return;
    }
    bool create = false, cancelled = false;
    askYesNo("OK to create new project ** {gre" + name + "{yel ** ? (yes/no)", false, "NO",
             "No project file of this name exists: yes creates it", false, create, cancelled);
    if (!create) continue;
    if (trimmedCopy(p.projectIdentification).empty())
      p.projectIdentification = p.defaultProjectIdentification;
    ASKIDN(status);
    if (status) return;
    STPJCT(status);
    return;
  }
}

void IZPROJ() {
  services().selectProject = SLPROJ;
}

// --- Dates and times ---------------------------------------------------------

void GTDATE(std::string& date) {
  std::tm now{};
  if (!localNow(now) || now.tm_mon < 0 || now.tm_mon > 11) {
    date = "01-Jan-1900";
    return;
  }
  date = twoDigits(now.tm_mday) + "-" + monthNames[now.tm_mon] + "-" +
         std::to_string(now.tm_year + 1900);
}

void GTTIME(std::string& time) {
  std::tm now{};
  if (!localNow(now)) {
    time = "00:00:00";
    return;
  }
  time = twoDigits(now.tm_hour) + ":" + twoDigits(now.tm_min) + ":" + twoDigits(now.tm_sec);
}

void DATE2I(std::string_view date, int& day, int& month, int& year, bool& status) {
  status = false;
  day = month = year = 0;
  if (static_cast<int>(date.size()) < DateWidth) {
    fail("(DATE2I) Legnth of date string must be at least 11 characters", status);
    return;
  }
  if (!integerField(date.substr(0, 2), day) || !integerField(date.substr(7, 4), year)) {
    IOINTL('R', IoReadUnexpected);
    status = true;
    return;
  }
  const std::string_view name = date.substr(3, 3);
  for (int m = 1; m <= 12; ++m)
    if (name == monthNames[m - 1]) month = m;
  if (month == 0) {
    fail("(DATE2I) Unknown month ** {gre" + std::string(name) + "{red ** in date", status);
  }
}

void CITD2S(int date, int capacity, std::string& text, bool& status) {
  status = false;
  text.clear();
  if (capacity < DateWidth) {
    fail("(CITD2S) Length of date string must be at least 11 characters", status);
    return;
  }
  const int year = date / 10000;
  const int month = (date - year * 10000) / 100;
  const int day = date - year * 10000 - month * 100;
  if (month < 1 || month > 12 || day < 0 || day > 99 || year < 0 || year > 9999) {
    IOINTL('W', IoValueOutOfRange);
    status = true;
    return;
  }
  std::string y = std::to_string(year);
  y.insert(0, 4 - y.size(), '0');
  text = twoDigits(day) + "-" + monthNames[month - 1] + "-" + y;
}

void CITD2S(int date, std::string& text, bool& status) {
  CITD2S(date, DateWidth, text, status);
}

void CITT2S(int time, int capacity, std::string& text, bool& status) {
  status = false;
  text.clear();
  if (capacity < TimeWidth) {
    fail("(CITT2S) Length of time string must be at least 8 characters", status);
    return;
  }
  const int hour = time / 10000;
  const int minute = (time - hour * 10000) / 100;
  const int second = time - hour * 10000 - minute * 100;
  if (time < 0 || hour > 99) {
    IOINTL('W', IoValueOutOfRange);
    status = true;
    return;
  }
  text = twoDigits(hour) + ":" + twoDigits(minute) + ":" + twoDigits(second);
}

void CITT2S(int time, std::string& text, bool& status) {
  CITT2S(time, TimeWidth, text, status);
}

// --- File header -------------------------------------------------------------

void PTFLHD(AtomicWriter& file, int version, bool& status) {
  status = false;
  ProgramState& p = program();
  std::string date, time;
  GTDATE(date);
  GTTIME(time);
  if (!file.isOpen()) {
    fail("(PTFLHD) read UNIT is not open{nwl{gre(unit is " + fmt::I(file.unit(), 4) + ")", status);
    return;
  }
  const std::string stars(static_cast<std::size_t>(HeaderWidth), '*');
  const std::string lines[HeaderLines] = {
      stars,
      headerLine("* PROGRAM: ", p.SPNAME),
      headerLine("* PROGRAM VERSION: ", p.SPVERS),
      headerLine("* PROJECT: ", p.projectName),
      headerLine("* IDENTIFICATION: ", p.projectIdentification),
      headerLine("* COMPANY: ", p.company),
      headerLine("* USER: ", p.user),
      headerLine("* FILE VERSION: ", fmt::I(version, 4)),
      headerLine("* COMMENTS:", ""),
      headerLine("* DATE: ", date),
      headerLine("* TIME: ", time),
      stars,
  };
  if (!writeLines(file, p.workFileName, lines, status)) return;
  p.lastFileDate = date;
  p.lastFileTime = time;
}

void GTFLHD(TextReader& file, std::string_view name, FileHeader& header, bool& status) {
  status = false;
  header = FileHeader{};
  if (!file.isOpen()) {
    fail("(GTFLHD) read UNIT is not open{nwl{gre(unit is " + fmt::I(file.unit(), 4) + ")", status);
    return;
  }
  std::array<std::string, HeaderLines> lines;
  for (std::string& line : lines) {
    const int io = file.readLine(line);
    if (io != 0) {
      IOERRM('R', name, io == -1 ? IoEndOfFile : io);
      status = true;
      return;
    }
  }
  int version = 0;
  if (!integerField(columns(lines[7], 17, 4), version)) {
    IOERRM('R', name, IoReadUnexpected);
    status = true;
    return;
  }
  auto orQuestion = [](const std::string& field) {
    const std::string text = trimmedCopy(field);
    return text.empty() ? std::string("?") : text;
  };
  header.program = orQuestion(columns(lines[1], 12, 20));
  header.programVersion = orQuestion(columns(lines[2], 12, 20));
  header.version = version;
  header.date = orQuestion(columns(lines[9], 9, DateWidth));
  header.time = orQuestion(columns(lines[10], 9, TimeWidth));
  program().lastFileDate = header.date;
  program().lastFileTime = header.time;
}

// --- Active files ------------------------------------------------------------

void setDataFileReader(std::string_view identifier, DataFileReader reader) {
  ActiveFileTable& t = activeTable();
  for (int i = 0; i < t.readerCount; ++i) {
    ReaderEntry& e = t.readers[static_cast<std::size_t>(i)];
    if (e.identifier == identifier) {
      e.reader = reader;
      return;
    }
  }
  if (t.readerCount < MaxFileReaders)
    t.readers[static_cast<std::size_t>(t.readerCount++)] = {std::string(identifier), reader};
}

void readHeaderOnly(std::string_view name, bool& loaded, bool& status) {
  status = false;
  loaded = false;
  if (!fileExists(name)) return;
  TextReader file;
  if (!openOnFreeUnit(file, name, status)) return;
  FileHeader header;
  GTFLHD(file, name, header, status);
  if (status) return;
  file.close();
  loaded = true;
}

void registerActiveFile(std::string_view identifier, std::string_view name, std::string_view date,
                        std::string_view time) {
  ActiveFileTable& t = activeTable();
  ActiveFile* entry = nullptr;
  for (int i = 0; i < t.count; ++i)
    if (t.entries[static_cast<std::size_t>(i)].identifier == identifier)
      entry = &t.entries[static_cast<std::size_t>(i)];
  if (!entry) {
    if (t.count == MaxActiveFiles) {
      ERRSCN("Unable to register more active files{nwl{gre(maximum is " +
             std::to_string(MaxActiveFiles) + ")");
      return;
    }
    entry = &t.entries[static_cast<std::size_t>(t.count++)];
    entry->identifier = std::string(identifier);
  }
  entry->name = std::string(name);
  entry->date = std::string(date);
  entry->time = std::string(time);
}

std::span<const ActiveFile> activeFiles() {
  const ActiveFileTable& t = activeTable();
  return std::span<const ActiveFile>(t.entries.data(), static_cast<std::size_t>(t.count));
}

void resetActiveFiles() {
  ActiveFileTable& t = activeTable();
  t = ActiveFileTable{};
  installDefaultReaders(t);
}

void ISDSFA(std::span<const std::string> identifiers, std::span<bool> loaded, bool& status) {
  status = false;
  const bool report = loaded.size() == identifiers.size();
  for (std::size_t i = 0; i < identifiers.size(); ++i) {
    if (report) loaded[i] = false;
    const std::string id = trimmedCopy(identifiers[i]);
    if (id.empty()) {
      ERRSCN("(ISDSFA) No module identity for entity " + fmt::I(static_cast<int>(i) + 1, 4) + "!");
      continue;
    }
    std::string name;
    bool st = false;
    IQISFN(id, name, st);
    if (st) continue;
    const DataFileReader reader = readerFor(id);
    if (!reader) {
      ERRSCN("Unable to load file for module with ** {gre" + id + "{red ** as identity");
      continue;
    }
    bool read = false;
    reader(name, read, st);
    if (st || !read) continue;
    if (report) loaded[i] = true;
    registerActiveFile(id, name, program().lastFileDate, program().lastFileTime);
  }
}

void ISDSFA(std::span<const std::string> identifiers, bool& status) {
  ISDSFA(identifiers, std::span<bool>(), status);
}

void IQACFL(std::string_view identifier, bool& found, std::string& name, std::string& date,
            std::string& time) {
  found = false;
  name.clear();
  date.clear();
  time.clear();
  const std::string_view id = fmt::trimmed(identifier);
  for (const ActiveFile& f : activeFiles()) {
    if (f.identifier != id) continue;
    found = true;
    name = f.name;
    date = f.date;
    time = f.time;
    return;
  }
}

void PRACFL(std::span<const std::string> identifiers, bool& status) {
  status = false;
  std::string text = "{yel{udlActive files{udl{nwl";
  auto entry = [&](const std::string& id, const std::string& name, const std::string& date,
                   const std::string& time) {
    std::string shortName;
    bool st = false;
    TCFLNM(name, 63, shortName, st);
    text += "{nwl{cya" + id + " file ... : {gre" + shortName + "{nwl{cyaLast saved on : {gre" +
            date + " at " + time;
  };
  if (identifiers.empty()) {
    for (const ActiveFile& f : activeFiles()) entry(f.identifier, f.name, f.date, f.time);
  } else {
    for (const std::string& wanted : identifiers) {
      bool found = false;
      std::string name, date, time;
      IQACFL(wanted, found, name, date, time);
      const std::string id = trimmedCopy(wanted);
      if (found)
        entry(id, name, date, time);
      else
        text += "{nwl{cya" + id + " file ... : {greNone";
    }
  }
  PRPAGE(text);
}

void PRFILI() {
  const ProgramState& p = program();
  const std::string dots = fmt::repeat(".", 32);
  const std::string date = trimmedCopy(p.lastFileDate).empty() ? " " : p.lastFileDate;
  const std::string time = trimmedCopy(p.lastFileTime).empty() ? " " : p.lastFileTime;
  PRPAGE("{yel{udlFile information{udl{cya{nwl{nwl{cyaLast date modified " + dots + " : {gre" +
         date + "{nwl{cyaLast modified time " + dots + " : {gre" + time);
}

}  // namespace kntr::framework
