// Meshing speed on the reference profiles in data/bench, read by the
// module's own data file reader: the profiles are meshed for 1000, 5000 and
// 10000 triangles, by the plain pipeline (mode 0), the robust mode (1) and
// the robust mode with the quality stage (2), and the count made, the mean
// quality and its 5th percentile are reported.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <string>
#include <vector>

#include "mesher/driver.h"
#include "mesher/structure.h"
#include "profile/block.h"
#include "reference_profile.h"

namespace {

using kntr::XY;
namespace mesher = kntr::mesher;
namespace profile = kntr::profile;

using kntr::bench::loadProfile;
using kntr::bench::Result;
using kntr::bench::result;

// The whole mesher on a reference profile: curves to polylines, regions,
// decomposition, density, triangles and the quality of each triangle.
void meshProfile(benchmark::State& state, const char* name) {
  if (!loadProfile(name)) {
    state.SkipWithError("the profile could not be read");
    return;
  }
  profile::ProfileData& p = profile::profile();
  p.MESHDN = static_cast<int>(state.range(0));
  p.MESHRB = state.range(1) >= 1;
  p.MESHIM = state.range(1) >= 2;
  Result& r = result();
  int numVertices = 0, numTriangles = 0;
  for (auto _ : state) {
    bool status = false;
    mesher::IQPMSH(mesher::ResultVertices, mesher::ResultTriangles, kntr::View1<double>(r.quality),
                   numVertices, kntr::View1<XY>(r.vertices), numTriangles,
                   kntr::View1<mesher::Triangle>(r.triangles), status);
    if (status) state.SkipWithError("the mesher failed");
    benchmark::DoNotOptimize(r.triangles.data());
    kntr::platform::testconsole::takeOutput();
  }
  state.counters["triangles"] = numTriangles;
  state.counters["quality"] = mesher::lastMeshStatistics().mean;
  std::vector<double> sorted(r.quality.data(), r.quality.data() + numTriangles);
  std::sort(sorted.begin(), sorted.end());
  state.counters["q5"] = sorted.empty() ? 0.0 : sorted[sorted.size() / 20];
}

void BM_IQPMSH_Square(benchmark::State& state) {
  meshProfile(state, "square.kntr");
}
void BM_IQPMSH_SquareHole(benchmark::State& state) {
  meshProfile(state, "square-hole.kntr");
}
void BM_IQPMSH_SplineLens(benchmark::State& state) {
  meshProfile(state, "spline-lens.kntr");
}
BENCHMARK(BM_IQPMSH_Square)
    ->ArgsProduct({{1000, 5000, 10000}, {0, 1, 2}})
    ->Unit(benchmark::kMillisecond);
BENCHMARK(BM_IQPMSH_SquareHole)
    ->ArgsProduct({{1000, 5000, 10000}, {0, 1, 2}})
    ->Unit(benchmark::kMillisecond);
BENCHMARK(BM_IQPMSH_SplineLens)
    ->ArgsProduct({{1000, 5000, 10000}, {0, 1, 2}})
    ->Unit(benchmark::kMillisecond);

}  // namespace
