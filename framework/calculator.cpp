#include "framework/calculator.h"

#include <array>
#include <climits>
#include <cmath>
#include <cstdint>
#include <numbers>
#include <string>

#include "framework/format.h"
#include "framework/input.h"
#include "framework/menus.h"
#include "framework/onebased.h"
#include "framework/text.h"
#include "platform/console.h"

// The evaluator is a bottom-up parser in spirit: every token that the parser
// consumes is pushed on the value stack (EXPUSH), and every completed rule
// hands its right side to the semantic action of that rule (EXSEMA), which
// pops it and pushes the result. No tree is built. The descent below only
// decides the order of shifts and reductions; all values live on the stack.
//
//   EXTOKN  scanner: the next token of an expression
//   EXPUSH  push a shifted token on the value stack
//   EXSEMA  semantic action of one rule
//
// Grammar, lowest precedence first:
//   expr     -> expr "or" andexpr | andexpr
//   andexpr  -> andexpr "and" notexpr | notexpr
//   notexpr  -> "not" notexpr | relation
//   relation -> simple relop simple | simple
//   simple   -> sign term | term | simple addop term
//   term     -> term mulop rounded | term ("div"|"mod") rounded | rounded
//   rounded  -> ("round"|"int") rounded | power
//   power    -> primary "**" power | primary
//   primary  -> name | name "(" expr ")" | "(" expr ")" | number | "true" | "false"
//   number   -> digits | mantissa | mantissa "e" [sign] digits
//   mantissa -> digits "." digits | "." digits

namespace kntr::framework {

namespace {

// Scanner tokens.
enum TokenCode : int {
  TkEnd = 0,
  TkOr = 1,
  TkAnd = 2,
  TkNot = 3,
  TkRelational = 4,      // 1 ">", 2 "<", 3 "=", 4 ">=", 5 "<=", 6 "<>"
  TkAdditive = 5,        // 1 "+", 2 "-"
  TkMultiplicative = 6,  // 1 "*", 2 "/"
  TkDivMod = 7,          // 1 "div", 2 "mod"
  TkRoundInt = 8,        // 1 "round", 2 "int"
  TkPower = 9,
  TkName = 10,
  TkOpen = 11,
  TkClose = 12,
  TkTruth = 13,  // 1 true, 0 false
  TkDigits = 14,
  TkPoint = 15,
  TkExponent = 16,
};

// Relational sub-codes.
enum : int { RelGreater = 1, RelLess, RelEqual, RelGreaterEqual, RelLessEqual, RelDiffer };

// Rules, numbered as their semantic actions.
enum Rule : int {
  RuleAccept = 1,
  RuleOr = 2,
  RuleAnd = 3,
  RuleNot = 4,
  RuleRelation = 5,
  RuleSign = 6,
  RuleAdd = 7,
  RuleMultiply = 8,
  RuleDivMod = 9,
  RuleRound = 10,
  RulePower = 11,
  RuleConstant = 12,
  RuleFunction = 13,
  RuleParentheses = 14,
  RuleDigitsReal = 15,
  RuleFraction = 16,
  RuleDecimal = 17,
  RuleSignedExponent = 18,
  RuleExponent = 19,
  RuleNumber = 20,
};

// Length of the right side of each rule.
constexpr std::array<int, 21> ruleLength{0, 1, 3, 3, 2, 3, 2, 3, 3, 3, 2,
                                         3, 1, 4, 3, 1, 2, 3, 4, 3, 1};

using Name = std::array<char, ExpressionNameLength + 1>;

struct Token {
  int code = TkEnd;
  int sub = 0;  // operator sub-code, or 1/0 for true/false
  int first = 0;
  int last = 0;
  Name name{};  // upper case, cut to six characters
  // Digits: the value as a wrapped integer and as a real, the number of
  // leading zeros and of the digits behind them.
  int integer = 0;
  double real = 0.0;
  int digitCount = 0;
  int leadingZeros = 0;
  bool overflow = false;  // the digits are beyond the integer range
};

// One level of the value stack.
struct Level {
  int type = 0;     // ValueLogical, ValueInteger, ValueReal; 0 for a bare token
  int integer = 0;  // integer value, or the token's sub-code
  double real = 0.0;
  bool logical = false;
  Name name{};
  int digitCount = 0;
  int leadingZeros = 0;
  int first = 0;
  int last = 0;
  bool failed = false;  // an error has been reported for this value already
  bool overflow = false;  // integer arithmetic left the integer range on the way
};

struct ValueStack {
  Array1<Level, ExpressionStackDepth> levels;
  int top = 0;
};

// What the semantic actions read and write beyond the stack.
struct Evaluation {
  int wanted = ValueReal;
  double defaultValue = 0.0;  // "DV"
  int* integerResult = nullptr;
  double* realResult = nullptr;
  bool* logicalResult = nullptr;
  std::string_view text;  // the expression, for the messages
};

bool isLetter(unsigned char c) {
  return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}
bool isDigit(unsigned char c) {
  return c >= '0' && c <= '9';
}

int wrapped(std::int64_t v) {
  return static_cast<int>(static_cast<std::uint32_t>(static_cast<std::uint64_t>(v)));
}

bool beyondInteger(std::int64_t v) { return v > INT_MAX || v < INT_MIN; }

// A real as an integer: truncated, saturated at the integer range, NaN as 0.
int saturated(double v) {
  if (std::isnan(v)) return 0;
  if (v >= static_cast<double>(INT_MAX)) return INT_MAX;
  if (v <= static_cast<double>(INT_MIN)) return INT_MIN;
  return static_cast<int>(v);
}

// 10 to the power n, exact for |n| <= 22.
double powerOfTen(int n) {
  static constexpr std::array<double, 23> exact{1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                                1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                                1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
  if (n >= 0 && n <= 22) return exact[static_cast<std::size_t>(n)];
  return std::pow(10.0, n);
}

// mantissa * 10^exponent, dividing for small negative exponents so that
// 1.5e-3 comes out as the double nearest to 0.0015.
double scaled(double mantissa, double exponent) {
  if (exponent > 1000.0) exponent = 1000.0;
  if (exponent < -1000.0) exponent = -1000.0;
  const int e = static_cast<int>(exponent);
  if (e < 0 && e >= -22) return mantissa / powerOfTen(-e);
  if (e >= 0 && e <= 22) return mantissa * powerOfTen(e);
  return mantissa * std::pow(10.0, e);
}

// Integer power with wrap-around (`overflow` tells when it wrapped); a
// negative exponent gives the integer quotient 1 / base^|e|.
int integerPower(int base, int exponent, bool& divideByZero, bool& overflow) {
  divideByZero = false;
  overflow = false;
  if (exponent < 0) {
    if (base == 0) {
      divideByZero = true;
      return 0;
    }
    if (base == 1) return 1;
    if (base == -1) return (exponent % 2 == 0) ? 1 : -1;
    return 0;
  }
  std::uint32_t result = 1;
  std::uint32_t factor = static_cast<std::uint32_t>(base);
  std::int64_t exact = 1;
  for (int e = 0; e < exponent && !overflow && base != 0 && base != 1; ++e) {
    exact *= base;
    overflow = beyondInteger(exact);
  }
  for (unsigned e = static_cast<unsigned>(exponent); e != 0; e >>= 1) {
    if (e & 1u) result *= factor;
    factor *= factor;
  }
  return static_cast<int>(result);
}

bool numeric(const Level& v) {
  return v.type == ValueInteger || v.type == ValueReal;
}
double asReal(const Level& v) {
  return v.type == ValueInteger ? v.integer : v.real;
}

bool sameName(const Name& name, const char* text) {
  return std::string_view(name.data()) == text;
}

// Set when the scan met a character that fits no token: the text is then
// refused as a whole, so no part of it is taken as the answer.
bool illegalSeen = false;

void illegalToken(int position) {
  platform::writeStandardOutput(" illegal token in position" + fmt::I(position, 12) + "\n");
  illegalSeen = true;
}

// EXTOKN: the next token of `text` from `position` (1-based, moved past
// it). Blanks and bytes that are not printable are skipped where a token
// begins. A character that fits no token is reported on standard output and
// ends the scan.
int EXTOKN(std::string_view text, int& position, Token& token) {
  const int length = static_cast<int>(text.size());
  auto at = [&](int p) {
    return static_cast<unsigned char>(text[static_cast<std::size_t>(p - 1)]);
  };
  token = Token{};
  while (position <= length && (at(position) <= 32 || at(position) > 127)) ++position;
  token.first = position;
  if (position > length) {
    token.last = position;
    return token.code = TkEnd;
  }
  const unsigned char c = at(position);
  int next = position + 1;
  if (isLetter(c)) {
    // A run of letters is a keyword when it spells one; otherwise a name,
    // which goes on over letters and digits. So `int3.7` and `7mod2` split.
    int end = position;
    while (end <= length && isLetter(at(end))) ++end;
    const std::string word = fmt::upper(text.substr(static_cast<std::size_t>(position - 1),
                                                    static_cast<std::size_t>(end - position)));
    struct Keyword {
      const char* word;
      int code;
      int sub;
    };
    static constexpr std::array<Keyword, 10> keywords{{{"OR", TkOr, 0},
                                                       {"AND", TkAnd, 0},
                                                       {"NOT", TkNot, 0},
                                                       {"DIV", TkDivMod, 1},
                                                       {"MOD", TkDivMod, 2},
                                                       {"ROUND", TkRoundInt, 1},
                                                       {"INT", TkRoundInt, 2},
                                                       {"TRUE", TkTruth, 1},
                                                       {"FALSE", TkTruth, 0},
                                                       {"E", TkExponent, 0}}};
    for (const Keyword& k : keywords) {
      if (word == k.word) {
        token.code = k.code;
        token.sub = k.sub;
        position = end;
        token.last = end - 1;
        return token.code;
      }
    }
    while (end <= length && (isLetter(at(end)) || isDigit(at(end)))) ++end;
    for (int p = position, k = 0; p < end && k < ExpressionNameLength; ++p, ++k) {
      const unsigned char ch = at(p);
      token.name[static_cast<std::size_t>(k)] =
          static_cast<char>(ch >= 'a' && ch <= 'z' ? ch - 'a' + 'A' : ch);
    }
    token.code = TkName;
    next = end;
  } else if (isDigit(c)) {
    int end = position;
    std::uint32_t integer = 0;
    double real = 0.0;
    bool significant = false;
    while (end <= length && isDigit(at(end))) {
      const int d = at(end) - '0';
      if (d != 0) significant = true;
      if (significant)
        ++token.digitCount;
      else
        ++token.leadingZeros;
      integer = integer * 10u + static_cast<std::uint32_t>(d);
      real = real * 10.0 + d;
      if (real > static_cast<double>(INT_MAX)) token.overflow = true;
      ++end;
    }
    token.integer = static_cast<int>(integer);
    token.real = real;
    token.code = TkDigits;
    next = end;
  } else {
    const unsigned char after = position + 1 <= length ? at(position + 1) : 0;
    switch (c) {
      case '.':
        token.code = TkPoint;
        break;
      case '(':
        token.code = TkOpen;
        break;
      case ')':
        token.code = TkClose;
        break;
      case '+':
        token = {.code = TkAdditive, .sub = 1};
        break;
      case '-':
        token = {.code = TkAdditive, .sub = 2};
        break;
      case '/':
        token = {.code = TkMultiplicative, .sub = 2};
        break;
      case '*':
        if (after == '*') {
          token.code = TkPower;
          next = position + 2;
        } else {
          token = {.code = TkMultiplicative, .sub = 1};
        }
        break;
      case '=':
        token = {.code = TkRelational, .sub = RelEqual};
        break;
      case '>':
        if (after == '=') {
          token = {.code = TkRelational, .sub = RelGreaterEqual};
          next = position + 2;
        } else {
          token = {.code = TkRelational, .sub = RelGreater};
        }
        break;
      case '<':
        if (after == '=') {
          token = {.code = TkRelational, .sub = RelLessEqual};
          next = position + 2;
        } else if (after == '>') {
          token = {.code = TkRelational, .sub = RelDiffer};
          next = position + 2;
        } else {
          token = {.code = TkRelational, .sub = RelLess};
        }
        break;
      default:
        illegalToken(position);
        position = length + 1;
        token.first = token.last = position;
        return token.code = TkEnd;
    }
    token.first = position;
  }
  token.last = next - 1;
  position = next;
  return token.code;
}

// EXPUSH: push a shifted token. Digits carry their value as an integer;
// "true" and "false" their logical value; operators their sub-code.
// `overflow` is set when the stack is full.
void EXPUSH(const Token& token, ValueStack& stack, bool& overflow) {
  overflow = false;
  if (stack.top >= ExpressionStackDepth) {
    overflow = true;
    return;
  }
  Level& v = stack.levels(++stack.top);
  v = Level{};
  v.first = token.first;
  v.last = token.last;
  switch (token.code) {
    case TkDigits:
      v.type = ValueInteger;
      v.integer = token.integer;
      v.real = token.real;
      v.digitCount = token.digitCount;
      v.leadingZeros = token.leadingZeros;
      v.overflow = token.overflow;
      break;
    case TkTruth:
      v.type = ValueLogical;
      v.logical = token.sub == 1;
      break;
    case TkName:
      v.name = token.name;
      break;
    default:
      v.integer = token.sub;
      break;
  }
}

// EXSEMA: the semantic action of `rule` on the top of the stack. The right
// side is popped and the result pushed (the accepted result is delivered
// instead). Errors are shown, set status, and mark the result as failed so
// that the rules above it stay silent; the parse goes on.
void EXSEMA(int rule, ValueStack& stack, const Evaluation& e, bool& status) {
  const int length = ruleLength[static_cast<std::size_t>(rule)];
  const int base = stack.top - length;
  auto at = [&](int i) -> Level& { return stack.levels(base + i); };
  Level result = at(1);
  result.first = at(1).first;
  result.last = at(length).last;
  auto fail = [&](std::string_view message) {
    ERRSCN(message);
    status = true;
    result.failed = true;
  };
  bool overflow = false;
  for (int i = 1; i <= length; ++i) overflow = overflow || at(i).overflow;

  switch (rule) {
    case RuleAccept: {
      const Level& v = at(1);
      stack.top = base;
      if (v.failed) return;
      const std::string shown = " ** {gre" + literal(e.text) + "{red **";
      if (v.overflow && numeric(v)) {
        ERRSCN("Integer out of range" + shown);
        status = true;
      } else if (e.wanted == ValueInteger) {
        if (v.type == ValueInteger) {
          *e.integerResult = v.integer;
        } else {
          ERRSCN((v.type == ValueReal ? "Integer value expected" : "Numeric value expected") +
                 shown);
          status = true;
        }
      } else if (e.wanted == ValueReal) {
        if (!numeric(v)) {
          ERRSCN("TYPE FEJL");
          status = true;
        } else if (!std::isfinite(asReal(v))) {
          ERRSCN("ERROR: Result is not a finite number");
          status = true;
        } else {
          *e.realResult = asReal(v);
        }
      } else if (e.wanted == ValueLogical) {
        if (v.type == ValueLogical) {
          *e.logicalResult = v.logical;
        } else {
          ERRSCN("Logical value expected" + shown);
          status = true;
        }
      } else {
        ERRSCN("FATAL type fejl i parser");
        status = true;
      }
      return;
    }

    case RuleOr:
    case RuleAnd: {
      const Level& l = at(1);
      const Level& r = at(3);
      if (l.failed || r.failed) {
        result.failed = true;
      } else if (l.type != ValueLogical) {
        fail("left ilog operand required");
      } else if (r.type != ValueLogical) {
        fail("right ilog operand required");
      } else {
        result.logical = rule == RuleOr ? (l.logical || r.logical) : (l.logical && r.logical);
      }
      break;
    }

    case RuleNot: {
      const Level& v = at(2);
      result = v;
      result.first = at(1).first;
      if (v.failed) break;
      if (v.type != ValueLogical)
        fail("ilog operand required");
      else
        result.logical = !v.logical;
      break;
    }

    case RuleRelation: {
      const Level& l = at(1);
      const int op = at(2).integer;
      const Level& r = at(3);
      if (l.failed || r.failed) {
        result.failed = true;
      } else if (l.type == ValueLogical) {
        // Logical operands: "=" and "<>" compare, the others leave the left
        // operand as it stands.
        if (r.type != ValueLogical)
          fail("right operand must be LOGICAL");
        else if (op == RelEqual)
          result.logical = l.logical == r.logical;
        else if (op == RelDiffer)
          result.logical = l.logical != r.logical;
      } else if (!numeric(r)) {
        fail("right operand must bee INTEGER or REAL");
      } else if (!numeric(l)) {
        fail("left operand must bee INTEGER or REAL");
      } else {
        bool truth = false;
        if (l.type == ValueInteger && r.type == ValueInteger) {
          const int a = l.integer, b = r.integer;
          truth = op == RelGreater        ? a > b
                  : op == RelLess         ? a < b
                  : op == RelEqual        ? a == b
                  : op == RelGreaterEqual ? a >= b
                  : op == RelLessEqual    ? a <= b
                                          : a != b;
        } else {
          const double a = asReal(l), b = asReal(r);
          truth = op == RelGreater        ? a > b
                  : op == RelLess         ? a < b
                  : op == RelEqual        ? a == b
                  : op == RelGreaterEqual ? a >= b
                  : op == RelLessEqual    ? a <= b
                                          : a != b;
        }
        result.type = ValueLogical;
        result.logical = truth;
      }
      break;
    }

    case RuleSign: {
      const bool minus = at(1).integer == 2;
      const Level& v = at(2);
      result = v;
      result.first = at(1).first;
      if (v.failed) break;
      if (!numeric(v)) {
        fail("ERROR: operand must have INTEGER or REAL type");
      } else if (minus) {
        if (v.type == ValueInteger) {
          result.integer = wrapped(-static_cast<std::int64_t>(v.integer));
          // The digits 2147483648 overflow alone but fit behind a minus.
          if (v.overflow && v.integer == INT_MIN && v.real == -static_cast<double>(INT_MIN))
            overflow = false;
          else
            overflow = overflow || beyondInteger(-static_cast<std::int64_t>(v.integer));
        }
        else
          result.real = -v.real;
      }
      break;
    }

    case RuleAdd:
    case RuleMultiply: {
      const Level& l = at(1);
      const int op = at(2).integer;
      const Level& r = at(3);
      if (l.failed || r.failed) {
        result.failed = true;
      } else if (!numeric(r)) {
        fail("right operand must bee INTEGER or REAL");
      } else if (!numeric(l)) {
        fail("left operand must bee INTEGER or REAL");
      } else if (rule == RuleMultiply && op == 2) {
        // Division is real, also between integers: 7/2 is 3.5.
        if (asReal(r) == 0.0) {
          fail("ERROR: Divisor must not be 0");
        } else {
          result.type = ValueReal;
          result.real = asReal(l) / asReal(r);
        }
      } else if (l.type == ValueInteger && r.type == ValueInteger) {
        const std::int64_t a = l.integer, b = r.integer;
        const std::int64_t exact = rule == RuleMultiply ? a * b : (op == 1 ? a + b : a - b);
        result.integer = wrapped(exact);
        overflow = overflow || beyondInteger(exact);
      } else {
        const double a = asReal(l), b = asReal(r);
        result.type = ValueReal;
        result.real = rule == RuleMultiply ? a * b : (op == 1 ? a + b : a - b);
      }
      break;
    }

    case RuleDivMod:
      // "div" and "mod" are accepted and yield their left operand.
      break;

    case RuleRound: {
      const bool round = at(1).integer == 1;
      const Level& v = at(2);
      result = v;
      result.first = at(1).first;
      if (v.failed) break;
      if (v.type != ValueReal) {
        fail(round ? "Argument to 'ROUND' must be of REAL type"
                   : "Argument to 'INT' must be of REAL type");
      } else {
        result.type = ValueInteger;
        result.integer = saturated(round ? std::round(v.real) : std::trunc(v.real));
      }
      break;
    }

    case RulePower: {
      const Level& b = at(1);
      const Level& x = at(3);
      if (b.failed || x.failed) {
        result.failed = true;
      } else if (!numeric(b)) {
        fail("Number in expop must be INT or iflt");
      } else if (!numeric(x)) {
        fail("Pot in expop must be INT or iflt");
      } else if (x.type == ValueReal && x.real < 0.0) {
        fail("real pot in expop must >= 0");
      } else if (b.type == ValueInteger && x.type == ValueInteger) {
        bool divideByZero = false, wrappedAround = false;
        result.integer = integerPower(b.integer, x.integer, divideByZero, wrappedAround);
        overflow = overflow || wrappedAround;
        if (divideByZero) fail("ERROR: Divisor must not be 0");
      } else {
        result.type = ValueReal;
        result.real = std::pow(asReal(b), asReal(x));
      }
      break;
    }

    case RuleConstant: {
      const Level& v = at(1);
      result.type = ValueReal;
      if (sameName(v.name, "PI"))
        result.real = std::numbers::pi;
      else if (sameName(v.name, "DV"))
        result.real = e.defaultValue;
      else
        fail("undefined constant");
      break;
    }

    case RuleFunction: {
      const Level& f = at(1);
      const Level& a = at(3);
      result.type = ValueReal;
      double (*function)(double) = nullptr;
      bool degrees = false;
      if (sameName(f.name, "SQRT")) {
        function = [](double x) { return std::sqrt(x); };
      } else if (sameName(f.name, "SIN") || sameName(f.name, "DSIN")) {
        function = [](double x) { return std::sin(x); };
        degrees = f.name[0] == 'D';
      } else if (sameName(f.name, "COS") || sameName(f.name, "DCOS")) {
        function = [](double x) { return std::cos(x); };
        degrees = f.name[0] == 'D';
      } else if (sameName(f.name, "TAN") || sameName(f.name, "DTAN")) {
        function = [](double x) { return std::tan(x); };
        degrees = f.name[0] == 'D';
      }
      if (!function) {
        fail("Function unknown");
      } else if (a.failed) {
        result.failed = true;
      } else if (!numeric(a)) {
        fail("INTEGER or REAL argument ekspected");
      } else {
        const double x = asReal(a);
        result.real = function(degrees ? std::numbers::pi * x / 180.0 : x);
      }
      break;
    }

    case RuleParentheses:
      result = at(2);
      result.first = at(1).first;
      result.last = at(3).last;
      break;

    case RuleDigitsReal:
      result.type = ValueReal;
      result.real = at(1).real;
      break;

    case RuleFraction: {
      const Level& d = at(2);
      result.type = ValueReal;
      result.real = d.real / powerOfTen(d.digitCount + d.leadingZeros);
      break;
    }

    case RuleDecimal: {
      const Level& d = at(3);
      result.type = ValueReal;
      result.real = at(1).real + d.real / powerOfTen(d.digitCount + d.leadingZeros);
      break;
    }

    case RuleSignedExponent: {
      const double exponent = at(3).integer == 2 ? -at(4).real : at(4).real;
      result.type = ValueReal;
      result.real = scaled(at(1).real, exponent);
      break;
    }

    case RuleExponent:
      result.type = ValueReal;
      result.real = scaled(at(1).real, at(3).real);
      break;

    case RuleNumber:
      // A number without an exponent: the mantissa stands.
      break;

    default:
      platform::writeStandardOutput(" Fatal typefejl i scanner\n");
      status = true;
      result.failed = true;
      break;
  }
  // Digits read as a real are no integer that overflowed.
  const bool realNumber = rule == RuleDigitsReal || rule == RuleFraction || rule == RuleDecimal ||
                          rule == RuleSignedExponent || rule == RuleExponent;
  result.overflow = !realNumber && overflow;
  // The right side had at least one level, so the result always has room.
  stack.top = base;
  stack.levels(++stack.top) = result;
}

// The order of shifts and reductions over one text.
class Parser {
 public:
  Parser(std::string_view text, ValueStack& stack, const Evaluation& evaluation, bool& status)
      : text_(text), stack_(stack), evaluation_(evaluation), status_(status) {}

  // False on a syntax error or a stack overflow.
  bool run() {
    stack_.top = 0;
    advance();
    if (!expression()) return false;
    if (look_.code != TkEnd) return false;
    reduce(RuleAccept);
    return true;
  }

 private:
  void advance() { EXTOKN(text_, position_, look_); }
  bool shift() {
    bool overflow = false;
    EXPUSH(look_, stack_, overflow);
    if (overflow) return false;
    advance();
    return true;
  }
  bool expect(int code) { return look_.code == code && shift(); }
  void reduce(int rule) { EXSEMA(rule, stack_, evaluation_, status_); }

  bool expression() {
    if (!andExpression()) return false;
    while (look_.code == TkOr) {
      if (!shift() || !andExpression()) return false;
      reduce(RuleOr);
    }
    return true;
  }
  bool andExpression() {
    if (!notExpression()) return false;
    while (look_.code == TkAnd) {
      if (!shift() || !notExpression()) return false;
      reduce(RuleAnd);
    }
    return true;
  }
  bool notExpression() {
    if (look_.code == TkNot) {
      if (!shift() || !notExpression()) return false;
      reduce(RuleNot);
      return true;
    }
    return relation();
  }
  bool relation() {
    if (!simple()) return false;
    if (look_.code == TkRelational) {
      if (!shift() || !simple()) return false;
      reduce(RuleRelation);
    }
    return true;
  }
  bool simple() {
    if (look_.code == TkAdditive) {
      if (!shift() || !term()) return false;
      reduce(RuleSign);
    } else if (!term()) {
      return false;
    }
    while (look_.code == TkAdditive) {
      if (!shift() || !term()) return false;
      reduce(RuleAdd);
    }
    return true;
  }
  bool term() {
    if (!rounded()) return false;
    while (look_.code == TkMultiplicative || look_.code == TkDivMod) {
      const int rule = look_.code == TkMultiplicative ? RuleMultiply : RuleDivMod;
      if (!shift() || !rounded()) return false;
      reduce(rule);
    }
    return true;
  }
  bool rounded() {
    if (look_.code == TkRoundInt) {
      if (!shift() || !rounded()) return false;
      reduce(RuleRound);
      return true;
    }
    return power();
  }
  bool power() {
    if (!primary()) return false;
    if (look_.code == TkPower) {
      if (!shift() || !power()) return false;
      reduce(RulePower);
    }
    return true;
  }
  bool primary() {
    switch (look_.code) {
      case TkName:
        if (!shift()) return false;
        if (look_.code == TkOpen) {
          if (!shift() || !expression() || !expect(TkClose)) return false;
          reduce(RuleFunction);
        } else {
          reduce(RuleConstant);
        }
        return true;
      case TkOpen:
        if (!shift() || !expression() || !expect(TkClose)) return false;
        reduce(RuleParentheses);
        return true;
      case TkTruth:
        return shift();
      case TkDigits:
      case TkPoint:
        return number();
      default:
        return false;
    }
  }
  bool number() {
    if (look_.code == TkPoint) {
      if (!shift() || !expect(TkDigits)) return false;
      reduce(RuleFraction);
    } else {
      if (!shift()) return false;
      if (look_.code == TkPoint) {
        if (!shift() || !expect(TkDigits)) return false;
        reduce(RuleDecimal);
      } else if (look_.code == TkExponent) {
        reduce(RuleDigitsReal);
      } else {
        return true;  // plain digits: an integer
      }
    }
    if (look_.code != TkExponent) {
      reduce(RuleNumber);
      return true;
    }
    if (!shift()) return false;
    if (look_.code == TkAdditive) {
      if (!shift() || !expect(TkDigits)) return false;
      reduce(RuleSignedExponent);
    } else {
      if (!expect(TkDigits)) return false;
      reduce(RuleExponent);
    }
    return true;
  }

  std::string_view text_;
  ValueStack& stack_;
  const Evaluation& evaluation_;
  bool& status_;
  int position_ = 1;
  Token look_;
};

ValueStack& valueStack() {
  static ValueStack stack;
  return stack;
}

}  // namespace

void EVALEX(std::string_view text, int wanted, int& integerResult, double& realResult,
            bool& logicalResult, bool& status) {
  status = false;
  Evaluation evaluation;
  evaluation.wanted = wanted;
  evaluation.defaultValue = wanted == ValueInteger ? integerResult : realResult;
  // The results are written only when the whole text has been accepted.
  int integer = integerResult;
  double real = realResult;
  bool logical = logicalResult;
  evaluation.integerResult = &integer;
  evaluation.realResult = &real;
  evaluation.logicalResult = &logical;
  evaluation.text = text;
  illegalSeen = false;
  Parser parser(text, valueStack(), evaluation, status);
  if (!parser.run()) {
    // A syntax error: told, unless an error on the way was told already.
    if (!status) ERRSCN("Syntax error in expression ** {gre" + literal(text) + "{red **");
    status = true;
  }
  // an illegal character has been told where the scan stopped
  if (illegalSeen) status = true;
  if (status) return;
  if (wanted == ValueInteger) integerResult = integer;
  if (wanted == ValueReal) realResult = real;
  if (wanted == ValueLogical) logicalResult = logical;
}

void CALCUL() {
  for (;;) {
    bool abort = false;
    bool status = false;
    ASKQST("Input expression to be evaluated?", "done", "", 1, abort, status);
    if (abort || status) return;
    std::array<double, 1> value{0.0};
    bool deflt = false;
    GTREAL(value, deflt, status);
    if (status) continue;
    if (deflt) return;
    PUTSCN("{csb{gre" + fmt::PE(value[0], 13, 6));
    WTRETN();
  }
}

}  // namespace kntr::framework
