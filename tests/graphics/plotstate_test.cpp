#include "graphics/plotstate.h"

#include <gtest/gtest.h>

#include <array>

#include "support/checks.h"
#include "support/console_fixture.h"

namespace kntr::graphics {
namespace {

using kntr::testing::Contains;

class PlotScaling : public kntr::testing::ConsoleTest {
 protected:
  void SetUp() override {
    ConsoleTest::SetUp();
    resetPlotState();
    plotState().asprto = 1.0;  // a square surface
  }
  double real(const char* name) {
    double value = 0.0;
    EXPECT_STATUS(false, GINQRL(name, value, status));
    return value;
  }
  // Expects a rectangle (x range, then y range) within rounding.
  static void expect(const Rectangle& r, std::array<double, 4> expected) {
    const std::array<double, 4> got{r.xmin, r.xmax, r.ymin, r.ymax};
    for (int k = 0; k < 4; ++k) EXPECT_NEAR(got[k], expected[k], 1e-12) << k;
  }
};

TEST_F(PlotScaling, MarginsStandAroundTheRange) {
  // Margins that leave a square inside the square surface: no padding.
  GMARG(0.1, 0.2, 0.25, 0.05);
  G2SCLT(0.0, 7.0, 0.0, 7.0);
  expect(plotState().margin, {0.0, 7.0, 0.0, 7.0});
  expect(plotState().plot, {-1.0, 9.0, -2.5, 7.5});
  EXPECT_EQ(real("xmgmax"), plotState().margin.xmax);
}

TEST_F(PlotScaling, EqualUnitsPadTheShortAxisEvenly) {
  GMARG(0.0, 0.0, 0.0, 0.0);
  G2SCLT(0.0, 10.0, 0.0, 2.0);  // very wide on a square surface
  expect(plotState().plot, {0.0, 10.0, -4.0, 6.0});
  G2SCLT(0.0, 2.0, 0.0, 10.0);  // very tall
  expect(plotState().plot, {-4.0, 6.0, 0.0, 10.0});
  G2SCLT(2.0, 6.0, 1.0, 1.0);  // no height: a square around the level
  EXPECT_EQ(real("yaxmin"), -1.0);
  EXPECT_EQ(real("yaxmax"), 3.0);
}

TEST_F(PlotScaling, RefusedCallsLeaveTheStateAlone) {
  G2SCLT(0.0, 1.0, 0.0, 1.0);
  const double before = plotState().plot.xmax;
  type("\n\n\n");
  G2SCLT(1.0, 1.0, 2.0, 2.0);
  G2SCLT(2.0, 1.0, 0.0, 1.0);
  G2SCLT(0.0, 1.0, 3.0, 1.0);
  EXPECT_EQ(plotState().plot.xmax, before);
  const std::string head = "PLOT ERROR FROM SUBROUTINE ** G2SCLT **\n";
  EXPECT_TRUE(Contains(output(), {head + "(xmax, xmin, ymax and ymin must be destinct)",
                                  head + "(xmax must be greater than xmin)",
                                  head + "(ymax must be greater than ymin)"}));
}

}  // namespace
}  // namespace kntr::graphics
