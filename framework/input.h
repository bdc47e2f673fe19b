// The input line language.
//
// Every answer the user types goes through one small language: several
// fields on a line separated by commas or blanks, a field left empty for its
// default, "?" for help, "$" to abort, "#" for a special command, and every
// numeric field an arithmetic expression. A line is read once (RDLINE for a
// menu, RDPROM for a question); its fields are then fetched one at a time by
// the GT routines, which leave the caller's preset value where a field is
// empty.
//
//   RDLINE  read one menu answer: a line, or a mouse click on a row
//   RDPROM  read one answer to a question; clicks are no answer
//   RDLNPR  check the form of a line and act on help, abort, special
//   LNTOKN  scanner of the line language
//   DOSPEC  run a special command ("#DATE", "#CALCULATOR", ...)
//   GTITEM  fetch the next field of the line, converted by type
//   GTINTV  fetch integers
//   GTREAL  fetch reals
//   GTCHAR  fetch texts
//   GTLOGV  fetch logical values
//   CVYESN  convert a yes/no word
//   NOABRT  "No abort possibility"
//   RDGIVN  take a line read elsewhere (the graphics window) as the answer
//
// In graphic mode a line may also be a graphic event: "#pick", "#pixel",
// "#move", "#item", "#button", "#picture", "#underlay", "#undo", "#redo".
// The graphic dialogue takes those as answers before they reach the line
// language; anywhere else they answer "Only available in graphic mode".
//
// A line is good until the next read: between a read and the GT routines
// nothing else may read, since the position in the line is shared. A special
// command may run a whole dialogue of its own inside a read; the answer is
// then no answer, and the caller asks again.
#pragma once

#include <span>
#include <string>
#include <string_view>

namespace kntr::framework {

// Length of an input line; a longer line is cut.
inline constexpr int InputLineLength = 80;

// Value types of the item fetcher.
inline constexpr int TypeInteger = 2;
inline constexpr int TypeReal = 3;
inline constexpr int TypeText = 4;
inline constexpr int TypeLogical = 5;

// Tokens of the line language, as LNTOKN returns them.
inline constexpr int LineEnd = 0;
inline constexpr int LineComma = 1;
inline constexpr int LineBlank = 2;
inline constexpr int LineAbort = 3;         // "$" opening the line
inline constexpr int LineSpecial = 4;       // "#" opening the line
inline constexpr int LineHelp = 5;          // "?" opening the line
inline constexpr int LineDoubleQuoted = 6;  // "..." with "" for a quote inside
inline constexpr int LineSingleQuoted = 7;  // '...' with '' for a quote inside
inline constexpr int LineWord = 8;          // printable run without blank or comma

// What kind of answer a line was.
struct Answer {
  bool click = false;  // a mouse click, at clickRow and clickColumn (one-based)
  int clickRow = 0;
  int clickColumn = 0;
  bool abort = false;    // "$"
  bool help = false;     // "?"
  bool special = false;  // a "#" command was run: ask again
  bool deflt = false;    // empty answer: take the default
};

// RDLINE: read one answer for a text menu, expecting `expected` fields.
// status is set when the line is malformed or has the wrong field count.
void RDLINE(int expected, Answer& answer, bool& status);

// RDPROM: the same for a question; a click is no answer and is read past.
void RDPROM(int expected, Answer& answer, bool& status);

// RDLNPR: parse `line` against the expected field count; runs a special
// command when the line is one. `disabled` blocks the data-changing commands.
// A malformed line sets status without a word; a wrong field count says
// "Wrong number of arguments".
void RDLNPR(std::string_view line, int expected, bool disabled, Answer& answer, bool& status);

// LNTOKN: the next token of `line` from `position` (1-based, moved past the
// token). `lineStart` says that the token opens the line: only there are
// "?", "$" and "#" tokens of their own; elsewhere they belong to words.
// `first` and `last` give the token's extent; `text` the field's value, with
// the quotes of a quoted string taken off. An unterminated quote is reported
// on standard output and ends the line there.
int LNTOKN(std::string_view line, int& position, bool lineStart, int& first, int& last,
           std::string& text);

// DOSPEC: run the special command `word` (the text after "#", any case).
// `disabled` refuses LOAD, SAVE, RESET and PROJECT.
void DOSPEC(std::string_view word, bool disabled);

// GTITEM: take the next field of the line read last and convert it as `type`
// (TypeInteger into `integer`, TypeReal into `real`, TypeText into `text`
// of at most `maxLength` characters, TypeLogical into `logical`).
// `converted` stays false for an empty field or a finished line, and the
// outputs keep what they held: the caller's defaults. status is set when
// the field does not convert.
void GTITEM(int type, int maxLength, int& integer, double& real, std::string& text, bool& logical,
            bool& converted, bool& status);

// GTINTV, GTREAL, GTCHAR, GTLOGV: fetch values.size() values from the line
// read last. `deflt` comes back true when no value was converted. A field
// left empty keeps the value the caller preset. They stop at the first
// field that fails.
void GTINTV(std::span<int> values, bool& deflt, bool& status);
void GTREAL(std::span<double> values, bool& deflt, bool& status);
void GTCHAR(std::span<std::string> texts, int maxLength, bool& deflt, bool& status);
void GTLOGV(std::span<bool> values, bool& deflt, bool& status);

// CVYESN: 1 for a yes word, 2 for a no word, 0 (status set, error shown)
// otherwise.
int CVYESN(std::string_view word, bool& status);

// NOABRT: tell the user that this question cannot be aborted.
void NOABRT();

// RDGIVN: as RDPROM, for a line that was read elsewhere: checks its form,
// acts on help, abort and special commands, and keeps it for the GT routines.
void RDGIVN(std::string_view line, int expected, Answer& answer, bool& status);

// graphicEventWord: true for the words of the graphic event lines (any case).
bool graphicEventWord(std::string_view word);

// The line most recently read, as typed (tests and the log).
const std::string& currentInputLine();

}  // namespace kntr::framework
