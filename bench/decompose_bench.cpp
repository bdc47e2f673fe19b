// Timing of the convex decomposition of a region: holes joined and every
// reflex corner removed.
#include <benchmark/benchmark.h>

#include <cmath>
#include <vector>

#include "mesher/boundary.h"
#include "mesher/holes.h"
#include "mesher/reflex.h"
#include "mesher/structure.h"

namespace kntr::mesher {
namespace {

Array1<XY, 20000> store;

// Lay the polygons out and decompose; the number of polygons made.
int decompose(const std::vector<std::vector<XY>>& polygons) {
  MeshData& m = meshData();
  Array1<int, MaxHoles + 1> sizes;
  int put = 0;
  for (std::size_t k = 0; k < polygons.size(); ++k) {
    sizes(static_cast<int>(k) + 1) = static_cast<int>(polygons[k].size());
    for (const XY& p : polygons[k]) store(++put) = p;
  }
  const int holes = static_cast<int>(polygons.size()) - 1;
  m.Vertices = View1<XY>(store);
  bool failed = false;
  View1<int> holeList(m.IntAux.data(), 2 * holes);
  IZMCPR(m, holes, sizes, holeList, failed);
  JNHOLS(m, holes, holeList, View1<int>(m.IntAux).from(2 * holes + 1), View1<double>(m.RealAux),
         failed);
  RSRFAL(m, View1<int>(m.IntAux), View1<double>(m.RealAux), failed);
  return failed ? -1 : m.NumPolygons;
}

std::vector<XY> circle(double cx, double cy, double r, int n, double phase) {
  std::vector<XY> p;
  for (int i = 0; i < n; ++i) {
    const double a = phase + 2.0 * Pi * i / n;
    p.push_back({cx + r * std::cos(a), cy + r * std::sin(a)});
  }
  return p;
}

// A hull section of n points: hollow near the keel, full at the deck.
std::vector<XY> section(int n) {
  const int deck = n / 10, side = (n - deck) / 2;
  std::vector<XY> p;
  for (int i = 0; i < side; ++i) {
    const double t = static_cast<double>(i) / side;
    p.push_back({8.0 * (3 * t * t - 2 * t * t * t) + 0.05 * std::sin(5 * Pi * t), 10.0 * t});
  }
  for (int i = 0; i < deck; ++i) {
    const double s = -1.0 + 2.0 * i / deck;
    p.push_back({-8.0 * s, 10.0 + 0.3 * (1.0 - s * s)});
  }
  for (int i = side; i > 0; --i) {
    const double t = static_cast<double>(i) / side;
    p.push_back({-(8.0 * (3 * t * t - 2 * t * t * t) + 0.05 * std::sin(5 * Pi * t)), 10.0 * t});
  }
  return p;
}

void BM_ShipSection(benchmark::State& state) {
  const std::vector<std::vector<XY>> region{section(static_cast<int>(state.range(0)))};
  int polygons = 0;
  for (auto _ : state) benchmark::DoNotOptimize(polygons = decompose(region));
  state.counters["polygons"] = polygons;
}
BENCHMARK(BM_ShipSection)->Arg(300)->Arg(3000);

// A disc of 720 points with ten round holes of 72 points.
void BM_DiscWithTenHoles(benchmark::State& state) {
  std::vector<std::vector<XY>> region{circle(0, 0, 50, 720, 0.0)};
  for (int k = 0; k < 10; ++k) {
    const double a = 2.0 * Pi * k / 10;
    region.push_back(circle(30 * std::cos(a), 30 * std::sin(a), 5, 72, 0.1 * k));
  }
  int polygons = 0;
  for (auto _ : state) benchmark::DoNotOptimize(polygons = decompose(region));
  state.counters["polygons"] = polygons;
}
BENCHMARK(BM_DiscWithTenHoles);

}  // namespace
}  // namespace kntr::mesher
