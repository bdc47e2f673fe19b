// Timing of one full redraw of the profile's picture into a 1920 x 1080
// image: grid, ten curves of 100 points with their marks and labels, and a
// mesh of about 10,000 triangles.
#include <benchmark/benchmark.h>

#include <cmath>
#include <memory>

#include "graphics/grid.h"
#include "graphics/plotstate.h"
#include "graphics/strokes.h"
#include "mesher/driver.h"
#include "platform/cairodevice.h"
#include "profile/block.h"
#include "profile/display.h"
#include "profile/module.h"
#include "reference_profile.h"

namespace kntr::profile {
namespace {

constexpr double Pi = 3.141592653589793;

// The benchmarks' profile of ten curves.
void buildProfile() {
  bench::buildTenCurveProfile();
  profile().MESHDN = 10000;
}

struct Picture {
  std::unique_ptr<platform::CairoDevice> device;
  Picture() {
    buildProfile();
    bool status = false;
    graphics::loadPlotFonts(status);
    device = platform::CairoDevice::image(1920, 1080);
    graphics::GINIT(1);
    graphics::attachDevice(graphics::DeviceWindow, device.get());
    graphics::GMARG(0.08, 0.08, 0.08, 0.08);
    SCKNTR(status);
  }
  ~Picture() { graphics::attachDevice(graphics::DeviceNoDrawing, nullptr); }
};

// The whole redraw as the display does it, the mesh made anew inside.
void BM_RedrawWithMeshing(benchmark::State& state) {
  Picture picture;
  profile().MESHON = true;
  bool status = false;
  for (auto _ : state) {
    DPKNTR(true, false, status);
    DPKNTR(false, false, status);
  }
  if (status) state.SkipWithError("redraw failed");
}
BENCHMARK(BM_RedrawWithMeshing)->Unit(benchmark::kMillisecond);

// The same picture with the mesh already made: drawing alone.
void BM_RedrawDrawingOnly(benchmark::State& state) {
  Picture picture;
  auto& r = bench::result();
  int nv = 0, nt = 0;
  bool status = false;
  mesher::IQPMSH(mesher::ResultVertices, mesher::ResultTriangles, View1<double>(r.quality), nv,
                 View1<XY>(r.vertices), nt, View1<mesher::Triangle>(r.triangles), status);
  profile().MESHON = false;
  for (auto _ : state) {
    DPKNTR(true, false, status);
    DPKNTR(false, false, status);
    drawMesh(View1<const XY>(r.vertices.data(), nv),
             View1<const mesher::Triangle>(r.triangles.data(), nt), MeshColour);
    graphics::flushPlot();
  }
  state.counters["triangles"] = nt;
  if (status) state.SkipWithError("redraw failed");
}
BENCHMARK(BM_RedrawDrawingOnly)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace kntr::profile
