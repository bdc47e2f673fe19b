// Timing of the graphics window on an X display: an expose (the off-screen
// buffer copied to the window) and a full redraw (frame, panel, menu and the
// profile's picture, then the copy), at 1920 x 1080. Run it on a display of
// 2400 x 1350, where the window takes 80 per cent of each side, e.g.
//   xvfb-run -s "-screen 0 2400x1350x24" build/release/bench/window_bench
#include <benchmark/benchmark.h>

#include <array>
#include <cmath>
#include <string>

#include "graphics/dialogue.h"
#include "graphics/plotstate.h"
#include "platform/console.h"
#include "platform/window.h"
#include "profile/block.h"
#include "profile/display.h"
#include "profile/module.h"

namespace kntr::profile {
namespace {

constexpr double Pi = 3.141592653589793;

// Ten closed spline curves of 100 points in a 100 by 100 box.
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
    const double cx = c == 1 ? 50.0 : 30.0 + 20.0 * ((c - 2) % 3);
    const double cy = c == 1 ? 50.0 : 30.0 + 20.0 * ((c - 2) / 3);
    const double r = c == 1 ? 48.0 : 6.0;
    p.NPRPNT(c) = MaxCurvePoints;
    p.PRCLSD(c) = true;
    p.PRPARM(c) = ChordLength;
    for (int j = 1; j <= MaxCurvePoints; ++j) {
      const double a = 2.0 * Pi * (j - 1) / MaxCurvePoints;
      p.PRPNTS(c, j) = Array1<double, 2>{{cx + r * std::cos(a), cy + r * std::sin(a)}};
      p.PRPTYP(c, j) = ContinuousCurvature;
    }
  }
  p.CURCRV = 1;
  p.CURPNT = 1;
}

// The window open on the display, with the profile and a menu drawn.
bool openWindow(benchmark::State& state) {
  static bool open = false;
  if (!open) {
    buildProfile();
    bool failed = false;
    graphics::OPNWIN(DPKNTR, failed);
    if (failed || platform::windowHeadless()) {
      state.SkipWithError("no X display");
      return false;
    }
    const std::array<std::string, 3> items{"Display{noptions", "Graphic setup", "RETURN"};
    graphics::GITEMS("PROFILE MANIPULATION", items);
    DPKNTR(false, true, failed);
    graphics::flushPlot();
    open = true;
  }
  state.counters["width"] = graphics::plotState().widthUnits;
  state.counters["height"] = graphics::plotState().heightUnits;
  return true;
}

void BM_WindowExpose(benchmark::State& state) {
  if (!openWindow(state)) return;
  for (auto _ : state) {
    platform::cwPresent();
    platform::cwSync();
  }
}
BENCHMARK(BM_WindowExpose)->Unit(benchmark::kMillisecond);

void BM_WindowFullRedraw(benchmark::State& state) {
  if (!openWindow(state)) return;
  bool failed = false;
  for (auto _ : state) {
    graphics::GWSETP();
    DPKNTR(false, false, failed);
    graphics::flushPlot();
    platform::cwSync();
  }
  if (failed) state.SkipWithError("redraw failed");
}
BENCHMARK(BM_WindowFullRedraw)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace kntr::profile
