#include "framework/input.h"

#include <array>
#include <cstdlib>

#include "framework/calculator.h"
#include "framework/format.h"
#include "framework/menus.h"
#include "framework/projects.h"
#include "framework/startup.h"
#include "framework/state.h"
#include "framework/system.h"
#include "framework/text.h"
#include "platform/console.h"

// Besides the routines of input.h:
//   ITTOKN  scanner of one item: the line language without "?", "$", "#"

namespace kntr::framework {

namespace WinConF = platform::WinConF;

namespace {

// Where the item fetcher stands in the line.
enum Marker : char {
  MarkerStart = 6,     // start of the line
  MarkerFinished = 7,  // no more fields
  MarkerComma = 8,     // the last field ended at a comma
  MarkerBlank = 9,     // the last field ended at a blank
};

// Item tokens, as ITTOKN returns them.
enum ItemToken : int {
  ItEnd = 0,
  ItComma = 1,
  ItBlank = 2,
  ItDoubleQuoted = 3,
  ItSingleQuoted = 4,
  ItWord = 5,
};

// The line shared between a read and the GT routines.
struct InputState {
  std::string line;
  int position = 1;  // next character, 1-based
  char marker = MarkerFinished;
  bool start = false;
};

InputState& input() {
  static InputState state;
  return state;
}

bool significant(unsigned char c) {
  return c >= 32 && c <= 127;
}

void illegalToken(int position) {
  platform::writeStandardOutput(" illegal token in position" + fmt::I(position, 12) + "\n");
}

// The scanner that LNTOKN and ITTOKN share. `report` says whether an
// unterminated quote is told; the item scanner walks a line that has been
// checked (and told about) already.
int scan(std::string_view line, int& position, bool lineStart, bool report, int& first, int& last,
         std::string& text) {
  const int length = static_cast<int>(line.size());
  auto at = [&](int p) {
    return static_cast<unsigned char>(line[static_cast<std::size_t>(p - 1)]);
  };
  text.clear();
  while (position <= length && !significant(at(position))) ++position;
  first = position;
  last = position;
  if (position > length) return LineEnd;
  const unsigned char c = at(position);
  if (c == ',') {
    ++position;
    return LineComma;
  }
  if (c == ' ') {
    while (position <= length && at(position) == ' ') ++position;
    last = position - 1;
    return LineBlank;
  }
  if (lineStart && (c == '$' || c == '#' || c == '?')) {
    ++position;
    return c == '$' ? LineAbort : (c == '#' ? LineSpecial : LineHelp);
  }
  if (c == '"' || c == '\'') {
    // A doubled quote inside stands for one.
    int p = position + 1;
    for (;;) {
      if (p > length) {
        if (report) illegalToken(first);
        text.clear();
        position = length + 1;
        first = last = position;
        return LineEnd;
      }
      if (at(p) == c) {
        if (p + 1 <= length && at(p + 1) == c) {
          text.push_back(static_cast<char>(c));
          p += 2;
          continue;
        }
        break;
      }
      text.push_back(static_cast<char>(at(p)));
      ++p;
    }
    last = p;
    position = p + 1;
    return c == '"' ? LineDoubleQuoted : LineSingleQuoted;
  }
  while (position <= length && significant(at(position)) && at(position) != ' ' &&
         at(position) != ',') {
    text.push_back(static_cast<char>(at(position)));
    ++position;
  }
  last = position - 1;
  return LineWord;
}

// ITTOKN: the next item token of `line` from `position`.
int ITTOKN(std::string_view line, int& position, int& first, int& last, std::string& text) {
  switch (scan(line, position, false, false, first, last, text)) {
    case LineComma:
      return ItComma;
    case LineBlank:
      return ItBlank;
    case LineDoubleQuoted:
      return ItDoubleQuoted;
    case LineSingleQuoted:
      return ItSingleQuoted;
    case LineWord:
      return ItWord;
    default:
      return ItEnd;
  }
}

bool isField(int token) {
  return token == LineWord || token == LineDoubleQuoted || token == LineSingleQuoted;
}

// Puts a newly read line in place for the GT routines.
void takeLine(std::string line) {
  logEntry(LogMessagesAndInputs, "input", line);
  InputState& s = input();
  s.line = std::move(line);
  s.position = 1;
  s.start = true;
  s.marker = MarkerStart;
}


// Runs a module callback or a framework service reached by special command.
void runService(const char* word, bool blockable, bool disabled, void (*service)(bool&)) {
  if (blockable && disabled) {
    ERRSCN(std::string(word) + " is disabled at the moment");
    return;
  }
  if (!service) {
    ERRSCN(std::string(word) + " is not available at the moment");
    return;
  }
  bool status = false;
  service(status);
}

// The list that "#?" shows.
std::string specialCommandList(bool disabled) {
  std::string text =
      "{csb{yel{udlAvailable functions{udl{nwl{nwl{cyaDATE{nwlTIME{nwlCALCULATOR"
      "{nwlKILL{nwlSYSTEM{nwlCONFIG";
  if (!disabled) {
    text += "{nwlLOAD{nwlSAVE{nwlRESET{nwlPROJECT";
  } else {
    text +=
        "{nwl(*) LOAD{nwl(*) SAVE{nwl(*) RESET"
        "{nwl (*) PROJECT"
        "{nwl(*) =  Disabled at the moment";
  }
  // The graphic event lines, answers in graphic mode.
  text +=
      "{nwl{nwl{yelIn graphic mode{cya{nwlPICK x, y{nwlPIXEL px, py{nwlMOVE x, y"
      "{nwlITEM n{nwlBUTTON name{nwlPICTURE file{nwlUNDERLAY{nwlUNDO{nwlREDO";
  return text;
}

void readClickOrLine(int& button, int& column, int& row, std::string& line) {
  int length = 0;
  WinConF::setLowerLeft();
  WinConF::getStrMouse(button, column, row, length, line);
  WinConF::setLowerLeft();
  if (static_cast<int>(line.size()) > InputLineLength) line.resize(InputLineLength);
}

}  // namespace

int LNTOKN(std::string_view line, int& position, bool lineStart, int& first, int& last,
           std::string& text) {
  return scan(line, position, lineStart, true, first, last, text);
}

void RDLNPR(std::string_view line, int expected, bool disabled, Answer& answer, bool& status) {
  status = false;
  answer = Answer{};
  // A special command may read lines of its own: work on a copy.
  const std::string copy(fmt::trimmed(line));
  int position = 1;
  int first = 0, last = 0;
  std::string text;
  int token = LNTOKN(copy, position, true, first, last, text);
  auto next = [&] { return LNTOKN(copy, position, false, first, last, text); };
  auto malformed = [&] {
    answer = Answer{};
    status = true;
  };

  switch (token) {
    case LineEnd:
      // Nothing: the default answer, every field at its default.
      answer.deflt = true;
      return;
    case LineHelp:
    case LineAbort:
      if (next() != LineEnd) return malformed();
      (token == LineHelp ? answer.help : answer.abort) = true;
      return;
    case LineSpecial: {
      // The word is the rest of the line, from the token after "#".
      next();
      const std::string_view word =
          first <= static_cast<int>(copy.size())
              ? std::string_view(copy).substr(static_cast<std::size_t>(first - 1))
              : std::string_view();
      DOSPEC(word, disabled);
      answer.special = true;
      return;
    }
    default:
      break;
  }

  // A list of fields: after a field comes a blank and a field, a comma, or
  // the end; after a comma comes a comma, a field, or the end. The count c
  // grows with each comma and with each field behind a blank.
  int count = 0;
  bool afterComma = false;
  if (isField(token)) {
    count = 1;
  } else if (token == LineComma) {
    count = 1;
    answer.deflt = true;  // the first field is left empty
    afterComma = true;
  } else {
    return malformed();
  }
  // Blanks next to a comma belong to the comma: "0, 10" and "0 ,10" are two
  // fields like "0,10".
  for (;;) {
    token = next();
    const bool blankBefore = token == LineBlank;
    if (blankBefore) token = next();
    if (!afterComma) {
      if (token == LineEnd) break;
      if (token == LineComma) {
        afterComma = true;
      } else if (blankBefore && isField(token)) {
        ++count;
        answer.deflt = false;
      } else {
        return malformed();
      }
    } else {
      if (token == LineEnd) {
        // A trailing comma: one more empty field, and the rest take their
        // defaults.
        ++count;
        if (count < expected) count = expected;
        break;
      }
      if (token == LineComma) {
        ++count;
      } else if (isField(token)) {
        ++count;
        answer.deflt = false;
        afterComma = false;
      } else {
        return malformed();
      }
    }
  }
  if (count != expected) {
    ERRSCN("Wrong number of arguments");
    answer = Answer{};
    status = true;
  }
}

void RDLINE(int expected, Answer& answer, bool& status) {
  status = false;
  answer = Answer{};
  int button = 0, column = 0, row = 0;
  std::string line;
  readClickOrLine(button, column, row, line);
  if (button == 0) {
    RDLNPR(line, expected, program().specialDisabled, answer, status);
  } else if (button == 2) {
    answer.deflt = true;
    line.clear();
  } else {
    answer.click = true;
    answer.clickRow = row;
    answer.clickColumn = column;
    line.clear();
  }
  takeLine(std::move(line));
}

void RDPROM(int expected, Answer& answer, bool& status) {
  status = false;
  answer = Answer{};
  int button = 0, column = 0, row = 0;
  std::string line;
  do {
    readClickOrLine(button, column, row, line);
  } while (button != 0 && button != 2);
  if (button == 0) {
    RDLNPR(line, expected, program().specialDisabled, answer, status);
  } else {
    answer.deflt = true;
    line.clear();
  }
  takeLine(std::move(line));
}

void RDGIVN(std::string_view line, int expected, Answer& answer, bool& status) {
  std::string text(line);
  if (static_cast<int>(text.size()) > InputLineLength) text.resize(InputLineLength);
  RDLNPR(text, expected, program().specialDisabled, answer, status);
  takeLine(std::move(text));
}

bool graphicEventWord(std::string_view word) {
  static constexpr std::array<std::string_view, 9> words{
      "PICK", "PIXEL", "MOVE", "ITEM", "BUTTON", "PICTURE", "UNDERLAY", "UNDO", "REDO"};
  const std::string w = fmt::upper(fmt::trimmed(word));
  for (std::string_view candidate : words)
    if (w == candidate) return true;
  return false;
}

void DOSPEC(std::string_view word, bool disabled) {
  const std::string command = fmt::upper(fmt::trimmed(word));
  bool status = false;
  if (command == "?") {
    PUTSCN(specialCommandList(disabled));
    WTRETN();
  } else if (command == "DATE") {
    std::string date;
    GTDATE(date);
    PUTSCN("{csb{yelDate: " + date);
    WTRETN();
  } else if (command == "TIME") {
    std::string time;
    GTTIME(time);
    PUTSCN("{csb{yelTime: " + time);
    WTRETN();
  } else if (command == "CALCULATOR") {
    CALCUL();
  } else if (command == "LOAD") {
    runService("LOAD", true, disabled, callbacks().load);
    noteDataReplaced();
  } else if (command == "SAVE") {
    runService("SAVE", true, disabled, callbacks().store);
  } else if (command == "RESET") {
    runService("RESET", true, disabled, callbacks().reset);
    noteDataReplaced();
  } else if (command == "PROJECT") {
    runService("PROJECT", true, disabled, services().selectProject);
    noteDataReplaced();
  } else if (command == "CONFIG") {
    runService("CONFIG", false, disabled, services().readConfiguration);
  } else if (command == "KILL") {
    // Out at once, from inside whatever dialogue was running; only the log
    // is closed.
    PUTSCN("{csb{yelModule killed");
    if (services().closeLog) services().closeLog(status);
    endProcess(1);
  } else if (command == "SYSTEM") {
    PUTSCN("{csb");
    const char* shell = std::getenv("SHELL");
    OPSYIF((shell && *shell) ? shell : "/bin/sh", status);
  } else if (graphicEventWord(command.substr(0, command.find(' ')))) {
    ERRSCN("Only available in graphic mode");
  } else {
    ERRSCN("Unknown special command: " + literal(command) +
           "{nwl{nwl{greUse #? to see information about special commands");
  }
}

void GTITEM(int type, int maxLength, int& integer, double& real, std::string& text, bool& logical,
            bool& converted, bool& status) {
  status = false;
  converted = false;
  InputState& s = input();
  s.start = false;
  if (s.marker == MarkerFinished) return;
  int first = 0, last = 0;
  std::string value;
  int token = ITTOKN(s.line, s.position, first, last, value);
  while (token == ItBlank) token = ITTOKN(s.line, s.position, first, last, value);
  if (token == ItEnd) {
    // Past the end, or behind a trailing comma: an empty field.
    s.marker = MarkerFinished;
    return;
  }
  if (token == ItComma) {
    // Between two commas, or a comma opening the line: an empty field.
    s.marker = MarkerComma;
    return;
  }
  // A field: note how it ends, for the next call.
  {
    const int behind = s.position;
    int f = 0, l = 0;
    std::string ignored;
    const int after = ITTOKN(s.line, s.position, f, l, ignored);
    if (after == ItComma) {
      s.marker = MarkerComma;
    } else if (after == ItBlank) {
      // A comma behind the blanks ends the field as a comma would.
      const int blanks = s.position;
      if (ITTOKN(s.line, s.position, f, l, ignored) == ItComma) {
        s.marker = MarkerComma;
      } else {
        s.position = blanks;
        s.marker = MarkerBlank;
      }
    } else if (after == ItEnd) {
      s.marker = MarkerFinished;
    } else {
      s.position = behind;  // a field right behind a field
      s.marker = MarkerBlank;
    }
  }

  const bool quoted = token == ItDoubleQuoted || token == ItSingleQuoted;
  if (type == TypeText) {
    if (static_cast<int>(value.size()) > maxLength) {
      fail("Maximum number of characters exceeded", status);
      return;
    }
    text = value;
    converted = true;
    return;
  }
  if (quoted) {
    platform::writeStandardOutput(" Quoted expression not expted " + fmt::I(first, 12) + " -" +
                                  fmt::I(last, 12) + "\n");
    status = true;
    return;
  }
  if (type == TypeLogical) {
    const int yesNo = CVYESN(value, status);
    if (status) return;
    logical = yesNo == 1;
    converted = true;
    return;
  }
  const int wanted = type == TypeInteger ? ValueInteger : (type == TypeReal ? ValueReal : type);
  EVALEX(value, wanted, integer, real, logical, status);
  if (!status) converted = true;
}

void GTINTV(std::span<int> values, bool& deflt, bool& status) {
  status = false;
  deflt = true;
  for (int& v : values) {
    double real = v;
    std::string text;
    bool logical = false;
    bool converted = false;
    GTITEM(TypeInteger, 0, v, real, text, logical, converted, status);
    if (status) return;
    if (converted) deflt = false;
  }
}

void GTREAL(std::span<double> values, bool& deflt, bool& status) {
  status = false;
  deflt = true;
  for (double& v : values) {
    int integer = 0;
    std::string text;
    bool logical = false;
    bool converted = false;
    GTITEM(TypeReal, 0, integer, v, text, logical, converted, status);
    if (status) return;
    if (converted) deflt = false;
  }
}

void GTCHAR(std::span<std::string> texts, int maxLength, bool& deflt, bool& status) {
  status = false;
  deflt = true;
  for (std::string& t : texts) {
    int integer = 0;
    double real = 0.0;
    bool logical = false;
    bool converted = false;
    GTITEM(TypeText, maxLength, integer, real, t, logical, converted, status);
    if (status) return;
    if (converted) deflt = false;
  }
}

void GTLOGV(std::span<bool> values, bool& deflt, bool& status) {
  status = false;
  deflt = true;
  for (bool& v : values) {
    int integer = 0;
    double real = 0.0;
    std::string text;
    bool logical = v;
    bool converted = false;
    GTITEM(TypeLogical, 0, integer, real, text, logical, converted, status);
    if (status) return;
    if (converted) {
      v = logical;
      deflt = false;
    }
  }
}

int CVYESN(std::string_view word, bool& status) {
  status = false;
  static constexpr std::array<std::string_view, 8> yes{"Y",  "YE",  "YES",  "T",
                                                       "TR", "TRU", "TRUE", "1"};
  static constexpr std::array<std::string_view, 8> no{"N",   "NO",   "F",     "FA",
                                                      "FAL", "FALS", "FALSE", "0"};
  const std::string w = fmt::upper(word);
  for (std::string_view y : yes)
    if (w == y) return 1;
  for (std::string_view n : no)
    if (w == n) return 2;
  fail("Input must be yes/no, true/false, 1/0", status);
  return 0;
}

void NOABRT() {
  ERRSCN("No abort possibility");
}

const std::string& currentInputLine() {
  return input().line;
}

}  // namespace kntr::framework
