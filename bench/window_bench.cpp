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
#include "reference_profile.h"
#include "profile/display.h"
#include "profile/module.h"

namespace kntr::profile {
namespace {

// The benchmarks' profile of ten curves.
void buildProfile() { bench::buildTenCurveProfile(); }

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
