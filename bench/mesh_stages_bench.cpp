// Speed of the density and triangle stages alone, on the square reference
// profile of data/bench, read by the module's own data file reader: the
// convex polygon is meshed for 1000, 5000 and 10000 triangles, and the count
// made and the mean quality are reported.
#include <benchmark/benchmark.h>

#include <string>

#include "mesher/density.h"
#include "mesher/halfedge.h"
#include "mesher/quality.h"
#include "mesher/structure.h"
#include "mesher/triangles.h"
#include "profile/block.h"
#include "reference_profile.h"

namespace {

using kntr::XY;
namespace mesher = kntr::mesher;
namespace profile = kntr::profile;

using kntr::bench::loadProfile;
using kntr::bench::Result;
using kntr::bench::result;

// The density and triangle stages on the square profile, whose one curve is
// a convex polygon with points along its sides: the structure is laid out
// as the region set-up does for a region without holes.
void BM_ConvexStages(benchmark::State& state) {
  if (!loadProfile("square.kntr")) {
    state.SkipWithError("the profile could not be read");
    return;
  }
  const profile::ProfileData& p = profile::profile();
  const int n = p.NPRPNT(1);
  const int desired = static_cast<int>(state.range(0));
  Result& r = result();
  mesher::MeshData& m = mesher::meshData();
  int made = 0;
  for (auto _ : state) {
    m.Vertices = kntr::View1<XY>(r.vertices);
    for (int i = 1; i <= n; ++i) m.Vertices(i) = XY{p.PRPNTS(1, i)(1), p.PRPNTS(1, i)(2)};
    m.NumVertices = n;
    m.NumHalfEdges = n;
    m.NumPolygons = 1;
    m.PolygonFirst(1) = 1;
    for (int i = 1; i <= n; ++i) {
      m.HalfEdge(i) = mesher::HalfEdgeRow{i, 1, i == n ? 1 : i + 1, 0};
      const XY& a = m.Vertices(i == 1 ? n : i - 1);
      const XY& b = m.Vertices(i);
      const XY& c = m.Vertices(i == n ? 1 : i + 1);
      m.CornerAngle(i) = mesher::IQANGL(a.x, a.y, b.x, b.y, c.x, c.y);
    }
    bool status = false;
    mesher::SDCPET(m, mesher::DSFUNC, desired, kntr::View1<int>(m.IntAux),
                   kntr::View1<double>(m.RealAux), status);
    mesher::TRMSCP(m, kntr::View1<mesher::Triangle>(r.triangles), made, kntr::View1<int>(m.IntAux),
                   kntr::View1<double>(m.RealAux), status);
    if (status) state.SkipWithError("the mesher failed");
    benchmark::DoNotOptimize(r.triangles.data());
    kntr::platform::testconsole::takeOutput();
  }
  double minimum = 0.0, maximum = 0.0, mean = 0.0, deviation = 0.0;
  bool status = false;
  mesher::IQTRST(made, kntr::View1<const XY>(r.vertices),
                 kntr::View1<const mesher::Triangle>(r.triangles), minimum, maximum, mean,
                 deviation, kntr::View1<double>(r.quality), status);
  state.counters["triangles"] = made;
  state.counters["quality"] = mean;
}
BENCHMARK(BM_ConvexStages)->Arg(1000)->Arg(5000)->Arg(10000)->Unit(benchmark::kMillisecond);

}  // namespace
