// Meshing speed on the reference profiles in data/bench.
//
// The profiles are read by a small reader of the data file's records (the
// header, then the free-form records), enough for these polyline and spline
// profiles; the benchmark then meshes them for 1000, 5000 and 10000
// triangles and reports the count made and the mean quality.
#include <benchmark/benchmark.h>

#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "mesher/density.h"
#include "mesher/halfedge.h"
#include "mesher/quality.h"
#include "mesher/structure.h"
#include "mesher/triangles.h"

namespace {

using kntr::XY;
namespace mesher = kntr::mesher;

struct Curve {
  bool closed = false;
  std::vector<XY> points;
};

// The curves of a profile data file: 12 header lines, then the records.
std::vector<Curve> readProfile(const std::string& name) {
  std::ifstream file(std::string(KNTR_SOURCE_DIR) + "/data/bench/" + name);
  std::string line;
  for (int k = 0; k < 12; ++k) std::getline(file, line);
  int kind = 0, curves = 0;
  double accuracy = 0.0, box[4], reference[2];
  file >> kind >> accuracy >> curves >> box[0] >> box[1] >> box[2] >> box[3] >> reference[0] >>
      reference[1];
  std::vector<Curve> result;
  for (int c = 0; c < curves; ++c) {
    int count = 0, parameterization = 0;
    std::string closed;
    file >> count >> closed >> parameterization;
    Curve curve;
    curve.closed = closed == "T";
    for (int p = 0; p < count; ++p) {
      int number = 0, type = 0;
      XY xy;
      file >> number >> type >> xy.x >> xy.y;
      curve.points.push_back(xy);
      // Extra records of the point types: skip their values.
      const int extra = type == 1                ? 1
                        : type == 3 || type == 4 ? 3
                        : type == 5              ? 6
                        : type == 6              ? 4
                                                 : 0;
      for (int k = 0; k < extra; ++k) {
        double skip = 0.0;
        file >> skip;
      }
    }
    result.push_back(curve);
  }
  return result;
}

// The mesh arrays of one run.
struct Result {
  kntr::Array1<XY, mesher::ResultVertices> vertices;
  kntr::Array1<mesher::Triangle, mesher::ResultTriangles> triangles;
  kntr::Array1<double, mesher::ResultTriangles> quality;
};

Result& result() {
  static Result r;
  return r;
}

// The density and triangle stages on the square profile, whose one curve is
// a convex polygon with points along its sides: the structure is laid out
// as the region set-up does for a region without holes.
void BM_ConvexStages(benchmark::State& state) {
  const std::vector<Curve> curves = readProfile("square.kntr");
  const std::vector<XY>& points = curves.at(0).points;
  const int n = static_cast<int>(points.size());
  const int desired = static_cast<int>(state.range(0));
  Result& r = result();
  mesher::MeshData& m = mesher::meshData();
  int made = 0;
  for (auto _ : state) {
    m.Vertices = kntr::View1<XY>(r.vertices);
    for (int i = 1; i <= n; ++i) m.Vertices(i) = points[static_cast<std::size_t>(i - 1)];
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
