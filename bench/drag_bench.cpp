// Timing of one step of a drag: one point of a curve of 100 points moved,
// the picture erased and drawn anew into a 1920 x 1080 image with the
// grid, ten curves of 100 points (every spline solved again) with their
// marks and labels, as the point editor does it at each pointer move.
#include <benchmark/benchmark.h>

#include <cmath>
#include <memory>

#include "graphics/grid.h"
#include "graphics/plotstate.h"
#include "graphics/strokes.h"
#include "platform/cairodevice.h"
#include "platform/console.h"
#include "profile/block.h"
#include "profile/module.h"
#include "profile/pointedit.h"

namespace kntr::profile {
namespace {

constexpr double Pi = 3.141592653589793;

// One outer curve and nine round holes, 100 points each, in a 100 by 100 box.
void buildProfile() {
  platform::testconsole::attach("");
  resetProfileBlock();
  ProfileData& p = profile();
  p.PRFTYP = SplineProfile;
  p.PRBBOX = Array1<double, 4>{{0.0, 100.0, 0.0, 100.0}};
  p.BBOXOK = true;
  p.PRREFP = Array1<double, 2>{{50.0, 50.0}};
  IZACCY();
  p.NPRCRV = MaxCurves;
  for (int c = 1; c <= MaxCurves; ++c) {
    const bool outer = c == 1;
    const double cx = outer ? 50.0 : 30.0 + 20.0 * ((c - 2) % 3);
    const double cy = outer ? 50.0 : 30.0 + 20.0 * ((c - 2) / 3);
    const double r = outer ? 48.0 : 6.0;
    p.NPRPNT(c) = MaxCurvePoints;
    p.PRCLSD(c) = true;
    p.PRPARM(c) = ChordLength;
    for (int j = 1; j <= MaxCurvePoints; ++j) {
      const double a = 2.0 * Pi * (j - 1) / MaxCurvePoints;
      p.PRPNTS(c, j) = Array1<double, 2>{{cx + r * std::cos(a), cy + r * std::sin(a)}};
      p.PRPTYP(c, j) = j % 10 == 0 ? Knuckle : ContinuousCurvature;
      p.PRKWGT(c, j) = j % 10 == 0 ? 1.0 : 0.0;
    }
  }
  p.CURCRV = 1;
  p.CURPNT = 25;
}

// The drag of point 25 of the outer curve (at the top) up and down by a
// little, one pointer move a step. range(0) turns the grid on (1) or off.
void BM_DragStep(benchmark::State& state) {
  buildProfile();
  profile().SHOWGR = state.range(0) != 0;
  bool status = false;
  graphics::loadPlotFonts(status);
  auto device = platform::CairoDevice::image(1920, 1080);
  graphics::GINIT(1);
  graphics::attachDevice(graphics::DeviceWindow, device.get());
  graphics::GMARG(0.08, 0.08, 0.08, 0.08);
  SCKNTR(status);
  const double x = profile().PRPNTS(1, 25)(1), y = profile().PRPNTS(1, 25)(2);
  int step = 0;
  for (auto _ : state) {
    const double lift = 0.5 * ((step++ % 8) - 4);
    dragPoint(1, 25, x, y + lift, status);
  }
  graphics::attachDevice(graphics::DeviceNoDrawing, nullptr);
  if (status) state.SkipWithError("drag step failed");
}
BENCHMARK(BM_DragStep)->Arg(1)->Arg(0)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace kntr::profile
