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

#include "graphics/grid.h"
#include "graphics/strokes.h"
#include "support/recording_device.h"

namespace kntr::graphics {
namespace {

using kntr::testing::RecordingDevice;

// A device of 1001 x 1001 units on the unit square with no margins: one
// world unit is 1000 device units.
class OnDevice : public kntr::testing::ConsoleTest {
 protected:
  void SetUp() override {
    ConsoleTest::SetUp();
    resetPlotState();
    GINIT(1);
  }
  void TearDown() override {
    attachDevice(DeviceNoDrawing, nullptr);
    ConsoleTest::TearDown();
  }
  void attach(int code) {
    attachDevice(code, &device);
    GMARG(0.0, 0.0, 0.0, 0.0);
    G2SCAL(0.0, 1.0, 0.0, 1.0);
  }
  RecordingDevice device;
};

TEST_F(OnDevice, WindowRowsCountDownAndPageRowsUp) {
  attach(DeviceWindow);
  double x = 0.0, y = 0.0;
  worldToDevice(0.25, 0.1, x, y);
  EXPECT_EQ(x, 250.0);
  EXPECT_EQ(y, 900.0);
  deviceToWorld(x, y, x, y);
  EXPECT_NEAR(x, 0.25, 1e-12);
  EXPECT_NEAR(y, 0.1, 1e-12);
  worldToDevice(0.00049, 0.0, x, y);
  EXPECT_EQ(x, 0.0);  // rounded to a pixel
  attach(DevicePageFile);
  worldToDevice(0.25, 0.1, x, y);
  EXPECT_NEAR(y, 100.0, 1e-9);
  worldToDevice(0.00049, 0.0, x, y);
  EXPECT_NEAR(x, 0.49, 1e-9);  // not rounded
}

TEST_F(OnDevice, ClipModesCutLinesAtTheirRectangle) {
  attach(DevicePageFile);
  GMARG(0.1, 0.2, 0.3, 0.1);
  G2SCAL(0.0, 1.0, 0.0, 1.0);
  struct Mode {
    const char* name;
    Rectangle r;
  };
  const PlotState& s = plotState();
  for (const Mode& mode : {Mode{"scale", s.scale}, Mode{"margin", s.margin}, Mode{"plot", s.plot}}) {
    GCLIPM(mode.name);
    device.forget();
    // the line y = x far beyond the plot, and a line wholly outside
    GMOVE2(-10.0, -10.0);
    GDRAW2(10.0, 10.0);
    GMOVE2(s.plot.xmax + 1.0, s.plot.ymin);
    GDRAW2(s.plot.xmax + 2.0, s.plot.ymax);
    ASSERT_EQ(device.drawn.size(), 1u) << mode.name;
    const RecordingDevice::Line& line = device.drawn[0];
    double x0, y0, x1, y1;
    deviceToWorld(line.x0, line.y0, x0, y0);
    deviceToWorld(line.x1, line.y1, x1, y1);
    // the diagonal y = x enters and leaves the rectangle where it crosses it
    const double in = std::max(mode.r.xmin, mode.r.ymin), out = std::min(mode.r.xmax, mode.r.ymax);
    EXPECT_NEAR(x0, in, 1e-9) << mode.name;
    EXPECT_NEAR(y0, in, 1e-9) << mode.name;
    EXPECT_NEAR(x1, out, 1e-9) << mode.name;
    EXPECT_NEAR(y1, out, 1e-9) << mode.name;
  }
  // "off" reaches one world unit beyond the plot rectangle
  GCLIPM("off");
  device.forget();
  GMOVE2(s.plot.xmin - 0.5, 0.5);
  GDRAW2(s.plot.xmax + 3.0, 0.5);
  ASSERT_EQ(device.drawn.size(), 1u);
  double x1, y1;
  deviceToWorld(device.drawn[0].x1, device.drawn[0].y1, x1, y1);
  EXPECT_NEAR(x1, s.plot.xmax + 1.0, 1e-9);
}

TEST_F(OnDevice, NoDeviceMeansNoDrawingAndAFailedFlag) {
  attachDevice(DeviceNoDrawing, nullptr);
  GMOVE2(0.0, 0.0);
  GDRAW2(1.0, 1.0);
  EXPECT_TRUE(plotState().deviceFailed);
  double x = 1.0, y = 1.0;
  worldToDevice(0.5, 0.5, x, y);
  EXPECT_EQ(x, 0.0);  // every mapping gives 0 while the device has failed
  attach(DeviceWindow);
  EXPECT_FALSE(plotState().deviceFailed);
}

TEST_F(OnDevice, GridCrossesLieOnTheLatticeWithMajorsInTheirColour) {
  attach(DevicePageFile);
  bool failed = false;
  loadPlotFonts(failed);
  ASSERT_FALSE(failed);
  // 2 x 1.5 from 0.25: step 0.1, majors at whole units; no axis passes
  plotState().grid = Rectangle{0.25, 2.25, 0.25, 1.75};
  G2SCAL(0.0, 2.5, 0.0, 2.0);
  device.forget();
  GGRID2(failed);
  ASSERT_FALSE(failed);
  // crosses are drawn in colour 7 (minor) and 3 (major, at whole numbers)
  int minor = 0, major = 0;
  for (const auto& line : device.drawn) {
    minor += line.colour == 7;
    major += line.colour == 3;
  }
  EXPECT_GT(minor, 0);
  EXPECT_GT(major, 0);
  // the outline in colour 5 runs along the rectangle
  double x0, y0;
  int outline = 0;
  for (const auto& line : device.drawn) {
    if (line.colour != 5) continue;
    deviceToWorld(line.x0, line.y0, x0, y0);
    EXPECT_TRUE(std::abs(x0 - 0.25) < 1e-9 || std::abs(x0 - 2.25) < 1e-9) << x0;
    ++outline;
  }
  EXPECT_EQ(outline, 4);
  EXPECT_EQ(plotState().markerSize, 0.4);
}

}  // namespace
}  // namespace kntr::graphics
