#include "profile/display.h"

#include <gtest/gtest.h>

#include <memory>

#include "graphics/plotstate.h"
#include "graphics/strokes.h"
#include "platform/cairodevice.h"
#include "support/curve_builder.h"

namespace kntr::profile {
namespace {

using platform::Rgb;

class Picture : public kntr::testing::ProfileTest {
 protected:
  void SetUp() override {
    ProfileTest::SetUp();
    bool status = false;
    graphics::loadPlotFonts(status);
    ASSERT_FALSE(status);
    device = platform::CairoDevice::image(640, 480);
    graphics::GINIT(1);
    graphics::attachDevice(graphics::DeviceWindow, device.get());
    graphics::GMARG(0.1, 0.1, 0.1, 0.1);
    ProfileData& p = profile();
    p.PRBBOX = Array1<double, 4>{{0.0, 10.0, 0.0, 10.0}};
    p.BBOXOK = true;
    p.PRREFP = Array1<double, 2>{{-100.0, -100.0}};  // out of the picture
    IZACCY();
  }
  void TearDown() override {
    graphics::attachDevice(graphics::DeviceNoDrawing, nullptr);
    ProfileTest::TearDown();
  }
  static bool same(Rgb a, Rgb b) { return a.red == b.red && a.green == b.green && a.blue == b.blue; }
  // Centre of the pixels of `colour` within `half` pixels of (cx, cy);
  // false when there are none.
  bool centreOf(Rgb colour, double cx, double cy, int half, double& x, double& y) {
    double sx = 0.0, sy = 0.0;
    int n = 0;
    for (int py = int(cy) - half; py <= int(cy) + half; ++py)
      for (int px = int(cx) - half; px <= int(cx) + half; ++px)
        if (same(device->pixel(px, py), colour)) {
          sx += px;
          sy += py;
          ++n;
        }
    if (n == 0) return false;
    x = sx / n;
    y = sy / n;
    return true;
  }
  std::unique_ptr<platform::CairoDevice> device;
};

TEST_F(Picture, PointMarksStandWhereTheScalePutsThem) {
  profile().PRFTYP = PolylineProfile;
  kntr::testing::addCurve({{1.0, 1.0}, {9.0, 2.0}, {8.0, 9.0}, {2.0, 7.0}}, true,
                          Knuckle);
  profile().CURCRV = 1;
  profile().CURPNT = 3;
  profile().SHOWGR = false;
  bool status = false;
  graphics::GCLIPM("margin");
  DPKNTR(false, true, status);
  ASSERT_FALSE(status);
  const Rgb white = platform::paletteColour(1, PointColour, platform::PaletteMode::Screen);
  const Rgb red = platform::paletteColour(1, CurrentPointColour, platform::PaletteMode::Screen);
  for (int j = 1; j <= 4; ++j) {
    double px = 0.0, py = 0.0, x = 0.0, y = 0.0;
    graphics::worldToDevice(profile().PRPNTS(1, j)(1), profile().PRPNTS(1, j)(2), px, py);
    ASSERT_TRUE(centreOf(j == 3 ? red : white, px, py, 5, x, y)) << "point " << j;
    EXPECT_NEAR(x, px, 2.0) << "point " << j;
    EXPECT_NEAR(y, py, 2.0) << "point " << j;
  }
  // nothing lands outside the clip rectangle
  const graphics::Rectangle m = graphics::plotState().margin;
  double left, top, right, bottom;
  graphics::worldToDevice(m.xmin, m.ymax, left, top);
  graphics::worldToDevice(m.xmax, m.ymin, right, bottom);
  const Rgb black{};
  int outside = 0, inside = 0;
  for (int py = 0; py < 480; ++py)
    for (int px = 0; px < 640; ++px) {
      const bool in = px >= left - 1 && px <= right + 1 && py >= top - 1 && py <= bottom + 1;
      if (!same(device->pixel(px, py), black)) ++(in ? inside : outside);
    }
  EXPECT_GT(inside, 100);
  EXPECT_EQ(outside, 0);
}

TEST_F(Picture, EveryPointTypeHasItsLabel) {
  kntr::testing::addCurve({{1, 1}, {2, 2}, {3, 3}, {4, 4}, {5, 5}, {6, 6}, {7, 7}, {8, 8}, {9, 9}},
                          false);
  ProfileData& p = profile();
  const int types[9] = {Knuckle, Knuckle, ContinuousCurvature, LeadingTangent, TrailingTangent,
                        BothTangents, EqualTangents, LeadingSheer, TrailingSheer};
  for (int j = 1; j <= 9; ++j) p.PRPTYP(1, j) = types[j - 1];
  p.PRKWGT(1, 1) = 1.0;
  p.PRKWGT(1, 2) = 0.5;
  const char* labels[9] = {"K1", "k2", "3", "TL4", "TT5", "TB6", "TE7", "SL8", "ST9"};
  for (int j = 1; j <= 9; ++j) EXPECT_EQ(pointLabel(1, j), labels[j - 1]);
}

}  // namespace
}  // namespace kntr::profile
