#include "framework/format.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <random>

namespace kntr::fmt {
namespace {

TEST(FixedFormats, FieldsRightAlignRoundAndOverflowToStars) {
  const std::pair<std::string, std::string> cases[] = {
      {I(7, 4), "   7"},
      {I(-12, 4), " -12"},
      {I(100000, 6), "100000"},
      {I(1000000, 6), "******"},
      {F(1.5, 10, 3), "     1.500"},
      {F(-0.25, 7, 4), "-0.2500"},
      {F(0.0, 4, 1), " 0.0"},
      {F(0.85, 7, 4), " 0.8500"},
      {F(-0.0001, 6, 2), "  0.00"},
      {F(12345.0, 4, 1), "****"},
      {E(1.5, 10, 3), " 0.150E+01"},
      {E(-0.00123, 10, 3), "-0.123E-02"},
      {E(0.0, 10, 3), " 0.000E+00"},
      {PE(1.5, 10, 3), " 1.500E+00"},
      {PE(0.0, 10, 3), " 0.000E+00"},
      {PE(-123.456, 10, 3), "-1.235E+02"},
      {PE(9.9996, 10, 3), " 1.000E+01"},
      {PE(1.0, 13, 6), " 1.000000E+00"},
      {PE(1e-120, 10, 3), " 1.000-120"},
      {pad("abc", 5), "abc  "},
      {pad("abcdef", 3), "abc"},
      {padLeft("abcdef", 3), "def"},
      {exact(3.0), "3.0"},
      {exact(0.1), "0.1"},
  };
  for (const auto& [shown, expected] : cases) EXPECT_EQ(shown, expected);
  EXPECT_EQ(trimmedLength(std::string("ab  \0\0", 6)), 2);
  EXPECT_EQ(trimmedLength("    "), 0);
}

TEST(FixedFormats, ExactTextReadsBackTheSameDouble) {
  std::mt19937_64 random(12345);
  std::uniform_real_distribution<double> mantissa(-1.0, 1.0);
  std::uniform_int_distribution<int> exponent(-300, 300);
  for (int i = 0; i < 2000; ++i) {
    const double value = std::ldexp(mantissa(random), exponent(random));
    const std::string text = exact(value);
    EXPECT_EQ(std::strtod(text.c_str(), nullptr), value) << text << " (seed 12345)";
  }
}

}  // namespace
}  // namespace kntr::fmt
