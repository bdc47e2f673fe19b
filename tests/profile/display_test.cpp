#include "profile/display.h"

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <vector>

#include "graphics/plotstate.h"
#include "graphics/strokes.h"
#include "platform/cairodevice.h"
#include "profile/polylines.h"
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

TEST_F(Picture, CombSpikesFollowTheCurvature) {
  // a circle through 16 points of continuous curvature, and a straight curve
  std::vector<XY> circle;
  for (int j = 0; j < 16; ++j) {
    const double a = 2.0 * 3.141592653589793 * j / 16.0;
    circle.push_back(XY{5.0 + 3.0 * std::cos(a), 5.0 + 3.0 * std::sin(a)});
  }
  kntr::testing::addCurve(circle, true);
  kntr::testing::addCurve({{1.0, 9.0}, {3.0, 9.5}, {5.0, 10.0}}, false);
  static Array1<XY, MaxPolylinePoints> bases, tips;
  int count = 0;
  bool status = false;
  combSpikes(1, 1.0, count, View1<XY>(bases), View1<XY>(tips), status);
  ASSERT_FALSE(status);
  ASSERT_GT(count, 16);
  double shortest = HUGE_VAL, longest = 0.0;
  for (int i = 1; i <= count; ++i) {
    const double length = std::hypot(tips(i).x - bases(i).x, tips(i).y - bases(i).y);
    shortest = std::min(shortest, length);
    longest = std::max(longest, length);
    // outward, away from the centre
    EXPECT_GT(std::hypot(tips(i).x - 5.0, tips(i).y - 5.0), 3.0 - 1e-9);
  }
  EXPECT_NEAR(longest, 1.0 / 3.0, 0.03 / 3.0);  // curvature of radius 3
  EXPECT_LT((longest - shortest) / longest, 0.03);
  combSpikes(2, 1.0, count, View1<XY>(bases), View1<XY>(tips), status);
  for (int i = 1; i <= count; ++i)
    EXPECT_LT(std::hypot(tips(i).x - bases(i).x, tips(i).y - bases(i).y), 1e-9);

  // the picture with the comb differs from the one without
  auto differs = [&] {
    auto other = platform::CairoDevice::image(640, 480);
    graphics::attachDevice(graphics::DeviceWindow, other.get());
    profile().SHOWCB = true;
    DPKNTR(false, true, status);
    graphics::attachDevice(graphics::DeviceWindow, device.get());
    profile().SHOWCB = false;
    DPKNTR(false, true, status);
    int changed = 0;
    for (int py = 0; py < 480; py += 2)
      for (int px = 0; px < 640; px += 2)
        changed += !same(device->pixel(px, py), other->pixel(px, py));
    return changed;
  };
  EXPECT_GT(differs(), 20);
}

}  // namespace
}  // namespace kntr::profile
