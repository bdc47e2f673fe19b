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
#include "reference_profile.h"
#include "profile/module.h"
#include "profile/pointedit.h"

namespace kntr::profile {
namespace {

// The benchmarks' profile of ten curves.
void buildProfile() {
  bench::buildTenCurveProfile();
  profile().CURPNT = 25;
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
