// Meshing speed on the reference profiles in data/bench, read by the
// module's own data file reader: the profiles are meshed for 1000, 5000 and
// 10000 triangles, and the count made and the mean quality are reported.
#include <benchmark/benchmark.h>

#include <string>

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
  profile::profile().MESHDN = static_cast<int>(state.range(0));
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
BENCHMARK(BM_IQPMSH_Square)->Arg(1000)->Arg(5000)->Arg(10000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_IQPMSH_SquareHole)->Arg(1000)->Arg(5000)->Arg(10000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_IQPMSH_SplineLens)->Arg(1000)->Arg(5000)->Arg(10000)->Unit(benchmark::kMillisecond);

}  // namespace
