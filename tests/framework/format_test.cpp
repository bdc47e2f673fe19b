#include "framework/format.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <random>

namespace kntr::fmt {
namespace {

TEST(FixedFormats, IntegerFieldsRightAlignAndOverflowToStars) {
  EXPECT_EQ(I(7, 4), "   7");
  EXPECT_EQ(I(-12, 4), " -12");
  EXPECT_EQ(I(100000, 6), "100000");
  EXPECT_EQ(I(1000000, 6), "******");
}

TEST(FixedFormats, FixedPointKeepsTheFieldWidth) {
  EXPECT_EQ(F(1.5, 10, 3), "     1.500");
  EXPECT_EQ(F(-0.25, 7, 4), "-0.2500");
  EXPECT_EQ(F(0.0, 4, 1), " 0.0");
  EXPECT_EQ(F(0.85, 7, 4), " 0.8500");
  EXPECT_EQ(F(-0.0001, 6, 2), "  0.00");
  EXPECT_EQ(F(12345.0, 4, 1), "****");
}

TEST(FixedFormats, ExponentFormsFollowTheScaleFactor) {
  EXPECT_EQ(E(1.5, 10, 3), " 0.150E+01");
  EXPECT_EQ(E(-0.00123, 10, 3), "-0.123E-02");
  EXPECT_EQ(E(0.0, 10, 3), " 0.000E+00");
  EXPECT_EQ(PE(1.5, 10, 3), " 1.500E+00");
  EXPECT_EQ(PE(0.0, 10, 3), " 0.000E+00");
  EXPECT_EQ(PE(-123.456, 10, 3), "-1.235E+02");
  EXPECT_EQ(PE(9.9996, 10, 3), " 1.000E+01");
  EXPECT_EQ(PE(1.0, 13, 6), " 1.000000E+00");
  EXPECT_EQ(PE(1e-120, 10, 3), " 1.000-120");
}

TEST(FixedFormats, ExactTextReadsBackTheSameDouble) {
  std::mt19937_64 random(12345);
  std::uniform_real_distribution<double> mantissa(-1.0, 1.0);
  std::uniform_int_distribution<int> exponent(-300, 300);
  for (int i = 0; i < 2000; ++i) {
    const double value = std::ldexp(mantissa(random), exponent(random));
    const std::string text = exact(value);
    EXPECT_EQ(std::strtod(text.c_str(), nullptr), value) << text;
  }
  EXPECT_EQ(exact(3.0), "3.0");
  EXPECT_EQ(exact(0.1), "0.1");
}

TEST(FixedFormats, TrimmingIgnoresBlanksAndNuls) {
  EXPECT_EQ(trimmedLength(std::string("ab  \0\0", 6)), 2);
  EXPECT_EQ(trimmedLength("    "), 0);
  EXPECT_EQ(pad("abc", 5), "abc  ");
  EXPECT_EQ(pad("abcdef", 3), "abc");
  EXPECT_EQ(padLeft("abcdef", 3), "def");
}

}  // namespace
}  // namespace kntr::fmt
