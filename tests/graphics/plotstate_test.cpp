#include "graphics/plotstate.h"

#include <gtest/gtest.h>

#include <array>

#include "support/checks.h"
#include "support/console_fixture.h"

namespace kntr::graphics {
namespace {

class PlotScaling : public kntr::testing::ConsoleTest {
 protected:
  void SetUp() override {
    ConsoleTest::SetUp();
    resetPlotState();
  }
  double real(const char* name) {
    double value = 0.0;
    bool status = true;
    GINQRL(name, value, status);
    EXPECT_FALSE(status) << name;
    return value;
  }
  // Expects the plot window (x range, then y range) within rounding.
  static void expectPlot(std::array<double, 4> expected) {
    const auto& p = plotState().plot;
    const std::array<double, 4> got{p.xmin, p.xmax, p.ymin, p.ymax};
    for (int k = 0; k < 4; ++k) EXPECT_NEAR(got[k], expected[k], 1e-12) << k;
  }
};

TEST_F(PlotScaling, FreeAspectScalePutsTheMarginsAroundTheRange) {
  GMARG(0.1, 0.2, 0.25, 0.05);
  G2SCAL(0.0, 7.0, 0.0, 7.0);
  const PlotState& s = plotState();
  // The scale range fills the margin rectangle exactly.
  EXPECT_NEAR(s.margin.xmin, 0.0, 1e-12);
  EXPECT_NEAR(s.margin.xmax, 7.0, 1e-12);
  EXPECT_NEAR(s.margin.ymin, 0.0, 1e-12);
  EXPECT_NEAR(s.margin.ymax, 7.0, 1e-12);
  expectPlot({-1.0, 9.0, -2.5, 7.5});
  EXPECT_EQ(real("xmgmax"), s.margin.xmax);

  // A zero height becomes a square around the level.
  GMARG(0.0, 0.0, 0.0, 0.0);
  G2SCAL(2.0, 6.0, 1.0, 1.0);
  EXPECT_EQ(real("yaxmin"), -1.0);
  EXPECT_EQ(real("yaxmax"), 3.0);
}

TEST_F(PlotScaling, EqualUnitsPadTheShortAxisEvenly) {
  GMARG(0.0, 0.0, 0.0, 0.0);
  plotState().asprto = 1.0;
  G2SCLT(0.0, 10.0, 0.0, 2.0);  // very wide on a square surface
  expectPlot({0.0, 10.0, -4.0, 6.0});
  G2SCLT(0.0, 2.0, 0.0, 10.0);  // very tall
  expectPlot({-4.0, 6.0, 0.0, 10.0});
}

TEST_F(PlotScaling, RefusedCallsLeaveTheStateAlone) {
  G2SCAL(0.0, 1.0, 0.0, 1.0);
  const double before = plotState().plot.xmax;
  type("\n\n\n\n\n\n\n");
  G2SCAL(1.0, 1.0, 2.0, 2.0);
  G2SCAL(2.0, 1.0, 0.0, 1.0);
  G2SCLT(0.0, 1.0, 3.0, 1.0);
  EXPECT_EQ(plotState().plot.xmax, before);
  // Margins must stay below one in each pair.
  GMARG(0.0, 0.0, 0.5, 0.5);
  EXPECT_EQ(plotState().mgntop, 0.2);
  GMARG(0.0, 0.0, 0.49, 0.5);
  EXPECT_EQ(plotState().mgntop, 0.5);
  GMARG(0.0, 1.0, 0.0, 0.0);
  const std::string shown = output();
  for (const char* message :
       {"PLOT ERROR FROM SUBROUTINE ** G2SCAL **\n(xmax, xmin, ymax, ymin must be distinct)",
        "PLOT ERROR FROM SUBROUTINE G2SCAL **\n(xmax must be greater than xmin)",
        "PLOT ERROR FROM SUBROUTINE ** G2SCLT **\n(ymax must be greater than ymin)",
        "(mtop+mbot must be <= 1)", "(mrigth must be in [0,1])"})
    EXPECT_NE(shown.find(message), std::string::npos) << message;
}

}  // namespace
}  // namespace kntr::graphics
