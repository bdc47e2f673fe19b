#include "graphics/grid.h"

#include <gtest/gtest.h>

#include <string>

#include "support/checks.h"
#include "support/console_fixture.h"

namespace kntr::graphics {
namespace {

using kntr::testing::Contains;

// The lattice takes the smallest step of the table that leaves at most 20
// lines on the longer side, with the major period of its row.
TEST(GridStep, TheTableFitsBoxesFromThousandthsToThousands) {
  struct Case {
    double w, h;
    double step;
    int period;
  };
  const Case cases[] = {
      {0.004, 0.004, 0.001, 10},  {0.01, 0.01, 0.001, 10},   {0.0191, 0.001, 0.001, 10},
      {0.02, 0.02, 0.0025, 4},    {0.045, 0.01, 0.0025, 4}, {0.05, 0.01, 0.005, 2},   {0.06, 0.03, 0.005, 2},
      {0.4, 0.1, 0.025, 4},       {1.0, 1.0, 0.1, 10},       {1.0, 3.0, 0.25, 4},
      {4.0, 4.0, 0.25, 4},        {40.0, 10.0, 2.5, 4},      {100.0, 100.0, 10.0, 10},
      {400.0, 1.0, 25.0, 4},      {4000.0, 4000.0, 250.0, 4}, {5000.0, 100.0, 500.0, 2}};
  for (const Case& c : cases) {
    double step = 0.0;
    int period = 0;
    ASSERT_TRUE(gridStep(c.w, c.h, step, period)) << c.w << " x " << c.h;
    EXPECT_DOUBLE_EQ(step, c.step) << c.w << " x " << c.h;
    EXPECT_EQ(period, c.period) << c.w << " x " << c.h;
  }
  double step = 0.0;
  int period = 0;
  EXPECT_FALSE(gridStep(20000.0, 1.0, step, period));  // too long for any row
}

class ShortNumbers : public kntr::testing::ConsoleTest {};

TEST_F(ShortNumbers, FixedAndIntegerTextsTakeTheirDigitsOnly) {
  std::string text;
  int used = 0;
  SPSFFM(3.14159, text, 16, used);
  EXPECT_EQ(text, "3.14");
  EXPECT_EQ(used, 4);
  SPSFFM(-1234.5, text, 20, used);
  EXPECT_EQ(text, "-1234.50");
  SPSIFM(-42, text, 3, used);
  EXPECT_EQ(text, "-42");
  EXPECT_EQ(used, 3);
  SPSIFM(7, text, 1, used);
  EXPECT_EQ(text, "7");

  type("\n\n");
  SPSFFM(1.0, text, 15, used);  // field too short
  EXPECT_TRUE(text.empty());
  EXPECT_EQ(used, 0);
  SPSIFM(12345, text, 4, used);  // more digits than the field
  EXPECT_TRUE(text.empty());
  EXPECT_TRUE(Contains(output(), {"(SPSFFM) cannot write float number to character string)",
                                  "(SPSIFM) cannot write integer number to character string)"}));
}

}  // namespace
}  // namespace kntr::graphics
