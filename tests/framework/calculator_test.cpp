#include "framework/calculator.h"

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <numbers>
#include <string>

#include "framework/format.h"
#include "framework/input.h"
#include "support/dialogue_fixture.h"

namespace kntr::framework {
namespace {

using Calculator = kntr::testing::DialogueTest;

// Every message waits for RETURN; give each case enough of them.
constexpr const char* enoughReturns = "\n\n\n\n";

struct IntegerCase {
  const char* text;
  int value;
};

TEST_F(Calculator, IntegerAnswers) {
  const IntegerCase cases[] = {
      {"2*(3+4)", 14},
      {"-2**2", -4},  // the sign belongs to the whole term: -(2**2)
      {"-2*3+10", 4},
      {"10div3", 10},  // div and mod yield their left operand
      {"10 div 3", 10},
      {"7mod2", 7},
      {"int3.7", 3},
      {"round3.7", 4},
      {"round2.5", 3},
      {"round(-2.5)", -3},
      {"int(-3.7)", -3},
      {"2**3", 8},
      {"2**3**2", 512},  // power groups to the right
      {"2**(-1)", 0},    // integer power: 1/2 truncated
      {"(-1)**(-3)", -1},
      {"1**(-5)", 1},
      {"3**0", 1},
      {"007", 7},
      {"int(DV*2.0)", 42},  // DV is the integer default as a real
      {"round sqrt(16)", 4},
      {"2147483647+1", INT_MIN},  // integer arithmetic wraps
      {"65536*65536", 0},
      {"2**31", INT_MIN},
      {"-2147483648", INT_MIN},
      {"int1e20", INT_MAX},  // a real beyond the integer range saturates
  };
  for (const IntegerCase& c : cases) {
    SCOPED_TRACE(c.text);
    script(enoughReturns);
    int integer = 21;
    double real = 0.0;
    bool logical = false;
    bool status = true;
    EVALEX(c.text, ValueInteger, integer, real, logical, status);
    EXPECT_FALSE(status);
    EXPECT_EQ(integer, c.value);
    EXPECT_EQ(output(), "");  // no message
  }
}

struct RealCase {
  const char* text;
  double value;
};

TEST_F(Calculator, RealAnswers) {
  const double pi = std::numbers::pi;
  const RealCase cases[] = {
      {"sqrt(2)/2", std::sqrt(2.0) / 2.0},
      {"DV+1", 3.5},  // the default is 2.5
      {"DV*2", 5.0},
      {"1.05", 1.05},  // the fraction keeps its leading zero
      {"3.007", 3.007},
      {".5", 0.5},
      {"1.5e-3", 0.0015},
      {"1.5E+3", 1500.0},
      {"2e3", 2000.0},
      {"7/2", 3.5},  // division is real, also between integers
      {"2**0.5", std::sqrt(2.0)},
      {"2.0**(-1)", 0.5},  // a real base takes a negative integer exponent
      {"dsin(90)", 1.0},
      {"dcos(60)", 0.5},
      {"dtan(45)", 1.0},
      {"sin(90)", std::sin(90.0)},
      {"cos(PI)", -1.0},
      {"tan(pi/4)", 1.0},
      {"PI", pi},
      {"1+2", 3.0},  // an integer result converts
      {"((((1))))", 1.0},
      {"5^2", 5.0},  // an illegal character ends the scan
      {"1 + 2", 3.0},
  };
  for (const RealCase& c : cases) {
    SCOPED_TRACE(c.text);
    script(enoughReturns);
    int integer = 0;
    double real = 2.5;
    bool logical = false;
    bool status = true;
    EVALEX(c.text, ValueReal, integer, real, logical, status);
    EXPECT_FALSE(status);
    EXPECT_NEAR(real, c.value, 1e-14 * std::max(1.0, std::fabs(c.value)));
  }
}

TEST_F(Calculator, ExactDecimalsComeOutAsTheNearestDouble) {
  for (const char* text : {"1.05", "0.1", "1.5e-3", "123.456", "2.5e2"}) {
    SCOPED_TRACE(text);
    int integer = 0;
    double real = 0.0;
    bool logical = false;
    bool status = true;
    EVALEX(text, ValueReal, integer, real, logical, status);
    EXPECT_FALSE(status);
    EXPECT_EQ(real, std::stod(text));
  }
}

struct LogicalCase {
  const char* text;
  bool value;
};

TEST_F(Calculator, LogicalAnswers) {
  const LogicalCase cases[] = {
      {"1=1", true},           {"1<1.5", true},       {"2>=3", false},
      {"2<=2", true},          {"1<>1", false},       {"true and false", false},
      {"true or false", true}, {"not(1>2)", true},    {"not true", false},
      {"1<2 and 2<3", true},   {"true=false", false}, {"true<>false", true},
      {"true>false", true},  // other relations leave the left operand
      {"false<true", false},   {"TRUE", true},
  };
  for (const LogicalCase& c : cases) {
    SCOPED_TRACE(c.text);
    script(enoughReturns);
    int integer = 0;
    double real = 0.0;
    bool logical = !c.value;
    bool status = true;
    EVALEX(c.text, ValueLogical, integer, real, logical, status);
    EXPECT_FALSE(status);
    EXPECT_EQ(logical, c.value);
    EXPECT_EQ(output(), "");
  }
}

struct RefusedCase {
  const char* text;
  int wanted;
  const char* message;  // "" for a refusal without a word
};

TEST_F(Calculator, ErrorsAndTheirMessages) {
  const RefusedCase cases[] = {
      {"7/2", ValueInteger, ""},  // the quotient is real
      {"2**0.5", ValueInteger, ""},
      {"DV+1", ValueInteger, ""},  // DV is real
      {"1=1", ValueInteger, ""},
      {"1", ValueLogical, ""},
      {"2+", ValueReal, ""},  // syntax errors say nothing
      {"(1", ValueReal, ""},
      {"5.", ValueReal, ""},
      {"1e", ValueReal, ""},
      {"", ValueReal, ""},
      {"2*-3", ValueInteger, ""},
      {"1/0", ValueReal, "ERROR: Divisor must not be 0"},
      {"1/0.0", ValueReal, "ERROR: Divisor must not be 0"},
      {"0**(-1)", ValueInteger, "ERROR: Divisor must not be 0"},
      {"1+true", ValueReal, "right operand must bee INTEGER or REAL"},
      {"true+1", ValueReal, "left operand must bee INTEGER or REAL"},
      {"true*2", ValueReal, "left operand must bee INTEGER or REAL"},
      {"1<true", ValueLogical, "right operand must bee INTEGER or REAL"},
      {"true=1", ValueLogical, "right operand must be LOGICAL"},
      {"1=1", ValueReal, "TYPE FEJL"},
      {"true and1", ValueLogical, "right ilog operand required"},
      {"1 or true", ValueLogical, "left ilog operand required"},
      {"not 1", ValueLogical, "ilog operand required"},
      {"-true", ValueReal, "ERROR: operand must have INTEGER or REAL type"},
      {"int 3", ValueInteger, "Argument to 'INT' must be of REAL type"},
      {"round true", ValueInteger, "Argument to 'ROUND' must be of REAL type"},
      {"2.0**(-1.0)", ValueReal, "real pot in expop must >= 0"},
      {"2**(-0.5)", ValueReal, "real pot in expop must >= 0"},
      {"2**true", ValueReal, "Pot in expop must be INT or iflt"},
      {"true**2", ValueReal, "Number in expop must be INT or iflt"},
      {"X", ValueReal, "undefined constant"},
      {"DVXXXXXXX", ValueReal, "undefined constant"},
      {"foo(1)", ValueReal, "Function unknown"},
      {"sqrtxyz(4)", ValueReal, "Function unknown"},
      {"sqrt(true)", ValueReal, "INTEGER or REAL argument ekspected"},
      {"sqrt(-1)", ValueReal, "ERROR: Result is not a finite number"},
      {"1e999", ValueReal, "ERROR: Result is not a finite number"},
      {"1", 7, "FATAL type fejl i parser"},
  };
  for (const RefusedCase& c : cases) {
    SCOPED_TRACE(c.text);
    script(enoughReturns);
    int integer = 11;
    double real = 1.25;
    bool logical = true;
    bool status = false;
    EVALEX(c.text, c.wanted, integer, real, logical, status);
    EXPECT_TRUE(status);
    EXPECT_EQ(integer, 11);  // the defaults stand
    EXPECT_EQ(real, 1.25);
    EXPECT_TRUE(logical);
    const std::string shown = output();
    if (*c.message == '\0') {
      EXPECT_EQ(shown, "");
    } else {
      EXPECT_NE(shown.find(std::string(c.message) + "\n"), std::string::npos) << shown;
      EXPECT_EQ(occurrences(shown, "To continue press RETURN"), 1);
    }
  }
}

TEST_F(Calculator, TwoErrorsInOneFieldGiveTwoMessagesAndNoMore) {
  script(enoughReturns);
  int integer = 0;
  double real = 0.0;
  bool logical = false;
  bool status = false;
  EVALEX("(true+1)*(false-1)", ValueReal, integer, real, logical, status);
  EXPECT_TRUE(status);
  const std::string shown = output();
  EXPECT_EQ(occurrences(shown, "left operand must bee INTEGER or REAL"), 2);
  EXPECT_EQ(occurrences(shown, "To continue press RETURN"), 2);  // no follow-on errors
}

TEST_F(Calculator, IllegalCharacterIsReportedWithItsPosition) {
  int integer = 0;
  double real = 0.0;
  bool logical = false;
  bool status = true;
  EVALEX("12&4", ValueInteger, integer, real, logical, status);
  EXPECT_FALSE(status);
  EXPECT_EQ(integer, 12);
  EXPECT_EQ(output(), " illegal token in position           3\n");
}

TEST_F(Calculator, DeepNestingIsASyntaxErrorNotACrash) {
  const std::string deep = std::string(400, '(') + "1" + std::string(400, ')');
  int integer = 5;
  double real = 0.0;
  bool logical = false;
  bool status = false;
  EVALEX(deep, ValueInteger, integer, real, logical, status);
  EXPECT_TRUE(status);
  EXPECT_EQ(integer, 5);
  const std::string fits = std::string(60, '(') + "1" + std::string(60, ')');
  EVALEX(fits, ValueInteger, integer, real, logical, status);
  EXPECT_FALSE(status);
  EXPECT_EQ(integer, 1);
}

TEST_F(Calculator, DialogueShowsValuesUntilAnEmptyAnswer) {
  // An expression, RETURN after the result, a bad one with its error, done.
  script("2*(3+4)\n\n1/0\n\n\n");
  CALCUL();
  EXPECT_FALSE(inputLeft());
  const std::string shown = output();
  EXPECT_NE(shown.find("Input expression to be evaluated?\n(default done)\n"), std::string::npos);
  EXPECT_NE(shown.find(" 1.400000E+01\n"), std::string::npos);
  EXPECT_NE(shown.find("ERROR: Divisor must not be 0"), std::string::npos);
  EXPECT_EQ(occurrences(shown, "Input expression to be evaluated?"), 3);
}

TEST_F(Calculator, DialogueEndsOnAbort) {
  script("$\n");
  CALCUL();
  EXPECT_FALSE(inputLeft());
}

TEST_F(Calculator, FieldsOfANumericQuestionAreExpressions) {
  script("2*(3+4),sqrt(2)/2\n");
  Answer answer;
  bool status = true;
  RDPROM(2, answer, status);
  ASSERT_FALSE(status);
  int first[1] = {0};
  double second[1] = {0.0};
  bool deflt = true;
  GTINTV(std::span<int>(first, 1), deflt, status);
  EXPECT_FALSE(status);
  EXPECT_EQ(first[0], 14);
  GTREAL(std::span<double>(second, 1), deflt, status);
  EXPECT_FALSE(status);
  EXPECT_NEAR(second[0], std::sqrt(0.5), 1e-15);
}

}  // namespace
}  // namespace kntr::framework
