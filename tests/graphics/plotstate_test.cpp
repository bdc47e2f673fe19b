#include "graphics/plotstate.h"

#include <gtest/gtest.h>

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
  EXPECT_NEAR(s.plot.xmin, -1.0, 1e-12);
  EXPECT_NEAR(s.plot.xmax, 9.0, 1e-12);
  EXPECT_NEAR(s.plot.ymin, -2.5, 1e-12);
  EXPECT_NEAR(s.plot.ymax, 7.5, 1e-12);
  EXPECT_EQ(real("xmgmax"), s.margin.xmax);
}

TEST_F(PlotScaling, EqualUnitsPadTheShortAxisEvenly) {
  GMARG(0.0, 0.0, 0.0, 0.0);
  plotState().asprto = 1.0;
  G2SCLT(0.0, 10.0, 0.0, 2.0);  // very wide on a square surface
  const PlotState& s = plotState();
  EXPECT_NEAR(s.plot.xmin, 0.0, 1e-12);
  EXPECT_NEAR(s.plot.xmax, 10.0, 1e-12);
  EXPECT_NEAR(s.plot.ymin, -4.0, 1e-12);
  EXPECT_NEAR(s.plot.ymax, 6.0, 1e-12);
  G2SCLT(0.0, 2.0, 0.0, 10.0);  // very tall
  EXPECT_NEAR(s.plot.xmin, -4.0, 1e-12);
  EXPECT_NEAR(s.plot.xmax, 6.0, 1e-12);
  EXPECT_NEAR(s.plot.ymin, 0.0, 1e-12);
}

TEST_F(PlotScaling, ZeroHeightBecomesASquareAroundTheLevel) {
  GMARG(0.0, 0.0, 0.0, 0.0);
  G2SCAL(2.0, 6.0, 1.0, 1.0);
  EXPECT_EQ(real("yaxmin"), -1.0);
  EXPECT_EQ(real("yaxmax"), 3.0);
}

TEST_F(PlotScaling, RefusedCallsLeaveTheStateAlone) {
  G2SCAL(0.0, 1.0, 0.0, 1.0);
  const double before = plotState().plot.xmax;
  type("\n\n\n\n\n");
  G2SCAL(1.0, 1.0, 2.0, 2.0);
  G2SCAL(2.0, 1.0, 0.0, 1.0);
  G2SCLT(0.0, 1.0, 3.0, 1.0);
  EXPECT_EQ(plotState().plot.xmax, before);
  const std::string shown = output();
  EXPECT_NE(shown.find("PLOT ERROR FROM SUBROUTINE ** G2SCAL **\n(xmax, xmin, ymax, ymin must be distinct)"),
            std::string::npos);
  EXPECT_NE(shown.find("PLOT ERROR FROM SUBROUTINE G2SCAL **\n(xmax must be greater than xmin)"),
            std::string::npos);
  EXPECT_NE(shown.find("PLOT ERROR FROM SUBROUTINE ** G2SCLT **\n(ymax must be greater than ymin)"),
            std::string::npos);
}

TEST_F(PlotScaling, MarginsMustStayBelowOneInEachPair) {
  type("\n\n");
  GMARG(0.0, 0.0, 0.5, 0.5);
  EXPECT_NE(output().find("(mtop+mbot must be <= 1)"), std::string::npos);
  EXPECT_EQ(plotState().mgntop, 0.2);
  GMARG(0.0, 0.0, 0.49, 0.5);
  EXPECT_EQ(plotState().mgntop, 0.5);
  GMARG(0.0, 1.0, 0.0, 0.0);
  EXPECT_NE(output().find("(mrigth must be in [0,1])"), std::string::npos);
}

TEST_F(PlotScaling, AttributesByName) {
  bool status = true;
  GSETIN("lincol", 5, status);
  EXPECT_FALSE(status);
  int value = 0;
  GINQIN("lincol", value, status);
  EXPECT_EQ(value, 5);
  GCLIPM("margin");
  GINQIN("iclipx", value, status);
  EXPECT_EQ(value, ClipMargin);
  type("\n");
  GINQIN("nosuch", value, status);
  EXPECT_TRUE(status);
}

}  // namespace
}  // namespace kntr::graphics
