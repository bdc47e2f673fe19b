#include "framework/calculator.h"

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <numbers>
#include <string>

#include "support/checks.h"
#include "support/dialogue_fixture.h"

namespace kntr::framework {
namespace {

using kntr::testing::Contains;

class Calculator : public kntr::testing::DialogueTest {
 protected:
  // Evaluates `text` for `wanted` with the results preset to the defaults
  // below; every message waits for RETURN, so each call gets enough of them.
  // `failing` presets the status to what a failure leaves, so that both
  // ways are seen to be set.
  bool eval(std::string_view text, int wanted, bool failing = false, bool presetLogical = true) {
    script("\n\n\n\n");
    integer = 11;
    real = 2.5;
    logical = presetLogical;
    bool status = !failing;
    EVALEX(text, wanted, integer, real, logical, status);
    return status;
  }
  int integer = 0;
  double real = 0.0;
  bool logical = false;
};

TEST_F(Calculator, IntegerAnswers) {
  // The sign belongs to the whole term: -(2**2). div and mod yield their left
  // operand. Power groups to the right; an integer power of an integer is
  // truncated. DV is the integer default (11) as a real. A real beyond the
  // integer range saturates; the lowest integer may be typed.
  const struct {
    const char* text;
    int value;
  } cases[] = {
      {"2*(3+4)", 14},      {"-2**2", -4},         {"-2*3+10", 4},
      {"10div3", 10},       {"10 div 3", 10},      {"7mod2", 7},
      {"int3.7", 3},        {"round3.7", 4},       {"round2.5", 3},
      {"round(-2.5)", -3},  {"int(-3.7)", -3},     {"2**3", 8},
      {"2**3**2", 512},     {"2**(-1)", 0},        {"(-1)**(-3)", -1},
      {"1**(-5)", 1},       {"3**0", 1},           {"007", 7},
      {"int(DV*2.0)", 22},  {"round sqrt(16)", 4}, {"-2147483648", INT_MIN},
      {"int1e20", INT_MAX}, {"-2147483647-1", INT_MIN},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text);
    EXPECT_FALSE(eval(c.text, ValueInteger));
    EXPECT_EQ(integer, c.value);
    EXPECT_EQ(output(), "");
  }
  // An illegal character ends the scan with a word, and the whole answer is
  // refused: no part of it is taken.
  for (const char* text : {"12&4", "2^10"}) {
    SCOPED_TRACE(text);
    EXPECT_TRUE(eval(text, ValueInteger));
    EXPECT_EQ(integer, 11);
    EXPECT_NE(output().find(" illegal token in position"), std::string::npos);
  }
}

TEST_F(Calculator, RealAnswers) {
  // The default DV is 2.5. Decimals come out as the nearest double (as the C
  // library reads them), the fraction keeping its leading zeros. Division is
  // real, also between integers; a real base takes a negative integer
  // exponent; an integer result converts; an illegal character ends the scan.
  const double exact = 0;
  const struct {
    std::string text;
    double value;
    double tolerance;
  } cases[] = {
      {"sqrt(2)/2", std::sqrt(2.0) / 2.0, 1e-15},
      {"DV+1", 3.5, exact},
      {"1.05", std::stod("1.05"), exact},
      {"3.007", 3.007, exact},
      {".5", 0.5, exact},
      {"1.5e-3", std::stod("1.5e-3"), exact},
      {"1.5E+3", 1500.0, exact},
      {"2e3", 2000.0, exact},
      {"7/2", 3.5, exact},
      {"2**0.5", std::sqrt(2.0), 1e-14},
      {"2.0**(-1)", 0.5, exact},
      {"dsin(90)", 1.0, 1e-14},
      {"dcos(60)", 0.5, 1e-14},
      {"dtan(45)", 1.0, 1e-14},
      {"sin(90)", std::sin(90.0), 1e-14},
      {"cos(PI)", -1.0, 1e-14},
      {"tan(pi/4)", 1.0, 1e-14},
      {"PI", std::numbers::pi, 1e-14},
      {"1 + 2", 3.0, exact},
      {std::string(60, '(') + "1" + std::string(60, ')'), 1.0, exact},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text);
    EXPECT_FALSE(eval(c.text, ValueReal));
    if (c.tolerance == exact)
      EXPECT_EQ(real, c.value);
    else
      EXPECT_NEAR(real, c.value, c.tolerance);
  }
}

TEST_F(Calculator, LogicalAnswers) {
  // Relations other than = and <> between logicals leave the left operand.
  const struct {
    const char* text;
    bool value;
  } cases[] = {
      {"1=1", true},           {"1<1.5", true},       {"2>=3", false},
      {"2<=2", true},          {"1<>1", false},       {"true and false", false},
      {"true or false", true}, {"not(1>2)", true},    {"not true", false},
      {"1<2 and 2<3", true},   {"true=false", false}, {"true<>false", true},
      {"true>false", true},    {"false<true", false}, {"TRUE", true},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text);
    EXPECT_FALSE(eval(c.text, ValueLogical, false, !c.value));
    EXPECT_EQ(logical, c.value);
    EXPECT_EQ(output(), "");
  }
}

TEST_F(Calculator, ErrorsAndTheirMessages) {
  // A quotient, a real power, DV and a relation are no integers; syntax
  // errors, too deep a nesting and integer overflow are told with the text;
  // each error says one message and leads to no follow-on errors.
  const std::string operand = "left operand must bee INTEGER or REAL";
  const std::string power = "real pot in expop must >= 0";
  const std::string zero = "ERROR: Divisor must not be 0";
  const std::string finite = "ERROR: Result is not a finite number";
  const struct {
    std::string text;
    int wanted;
    std::string message;  // "" for a refusal without a word
    int count;            // times the message is shown
  } cases[] = {
      {"7/2", ValueInteger, "Integer value expected ** 7/2 **", 1},
      {"2.5", ValueInteger, "Integer value expected ** 2.5 **", 1},
      {"2**0.5", ValueInteger, "Integer value expected ** 2**0.5 **", 1},
      {"DV+1", ValueInteger, "Integer value expected ** DV+1 **", 1},
      {"1=1", ValueInteger, "Numeric value expected ** 1=1 **", 1},
      {"1<2", ValueInteger, "Numeric value expected ** 1<2 **", 1},
      {"1", ValueLogical, "Logical value expected ** 1 **", 1},
      {"2+", ValueReal, "Syntax error in expression ** 2+ **", 1},
      {"1+", ValueInteger, "Syntax error in expression ** 1+ **", 1},
      {"(1", ValueReal, "Syntax error in expression ** (1 **", 1},
      {"5.", ValueReal, "Syntax error in expression ** 5. **", 1},
      {"1e", ValueReal, "Syntax error in expression ** 1e **", 1},
      {"2*-3", ValueInteger, "Syntax error in expression ** 2*-3 **", 1},
      {"2147483647+1", ValueInteger, "Integer out of range ** 2147483647+1 **", 1},
      {"65536*65536", ValueInteger, "Integer out of range ** 65536*65536 **", 1},
      {"2**31", ValueInteger, "Integer out of range ** 2**31 **", 1},
      {"99999999999", ValueInteger, "Integer out of range ** 99999999999 **", 1},
      {"3000000000*1.0", ValueReal, "Integer out of range ** 3000000000*1.0 **", 1},
      {"1/0", ValueReal, zero, 1},
      {"1/0.0", ValueReal, zero, 1},
      {"0**(-1)", ValueInteger, zero, 1},
      {"1+true", ValueReal, "right operand must bee INTEGER or REAL", 1},
      {"true+1", ValueReal, operand, 1},
      {"true*2", ValueReal, operand, 1},
      {"(true+1)*(false-1)", ValueReal, operand, 2},
      {"1<true", ValueLogical, "right operand must bee INTEGER or REAL", 1},
      {"true=1", ValueLogical, "right operand must be LOGICAL", 1},
      {"1=1", ValueReal, "TYPE FEJL", 1},
      {"true and1", ValueLogical, "right ilog operand required", 1},
      {"1 or true", ValueLogical, "left ilog operand required", 1},
      {"not 1", ValueLogical, "ilog operand required", 1},
      {"-true", ValueReal, "ERROR: operand must have INTEGER or REAL type", 1},
      {"int 3", ValueInteger, "Argument to 'INT' must be of REAL type", 1},
      {"round true", ValueInteger, "Argument to 'ROUND' must be of REAL type", 1},
      {"2.0**(-1.0)", ValueReal, power, 1},
      {"2**(-0.5)", ValueReal, power, 1},
      {"2**true", ValueReal, "Pot in expop must be INT or iflt", 1},
      {"true**2", ValueReal, "Number in expop must be INT or iflt", 1},
      {"X", ValueReal, "undefined constant", 1},
      {"DVXXXXXXX", ValueReal, "undefined constant", 1},
      {"foo(1)", ValueReal, "Function unknown", 1},
      {"sqrtxyz(4)", ValueReal, "Function unknown", 1},
      {"sqrt(true)", ValueReal, "INTEGER or REAL argument ekspected", 1},
      {"sqrt(-1)", ValueReal, finite, 1},
      {"1e999", ValueReal, finite, 1},
      {"1", 7, "FATAL type fejl i parser", 1},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text);
    EXPECT_TRUE(eval(c.text, c.wanted, true));
    EXPECT_EQ(integer, 11);  // the defaults stand
    EXPECT_EQ(real, 2.5);
    EXPECT_TRUE(logical);
    const std::string shown = output();
    EXPECT_EQ(occurrences(shown, "To continue press RETURN"), c.count) << shown;
    if (c.count > 0) {
      EXPECT_EQ(occurrences(shown, c.message + "\n"), c.count);
    } else {
      EXPECT_EQ(shown, "");
    }
  }
}

TEST_F(Calculator, TooDeepANestingIsASyntaxError) {
  const std::string deep = std::string(400, '(') + "1" + std::string(400, ')');
  EXPECT_TRUE(eval(deep, ValueInteger, true));
  EXPECT_EQ(integer, 11);
  EXPECT_TRUE(Contains(output(), "Syntax error in expression ** (((("));
}

TEST_F(Calculator, DialogueShowsValuesUntilAnEmptyAnswerOrAnAbort) {
  // An expression, RETURN after the result, a bad one with its error, done.
  script("2*(3+4)\n\n1/0\n\n\n");
  CALCUL();
  EXPECT_FALSE(inputLeft());
  const std::string shown = output();
  EXPECT_TRUE(Contains(shown, {"Input expression to be evaluated?\n(default done)\n",
                               " 1.400000E+01\n", "ERROR: Divisor must not be 0"}));
  EXPECT_EQ(occurrences(shown, "Input expression to be evaluated?"), 3);
  script("$\n");
  CALCUL();
  EXPECT_FALSE(inputLeft());
}

}  // namespace
}  // namespace kntr::framework
