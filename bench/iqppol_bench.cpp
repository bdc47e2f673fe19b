// Timing of the polylines of a full profile, and of one fairing run.
#include <benchmark/benchmark.h>

#include <cmath>
#include <memory>

#include "profile/block.h"
#include "profile/pointfairing.h"
#include "profile/polylines.h"

namespace kntr::profile {
namespace {

constexpr double Pi = 3.141592653589793;

// Ten closed curves of 100 points each in a 100 by 100 box, with every
// point type of the profile: knuckles, weighted knuckles, tangents,
// equal tangents, sheers, and continuous points between them.
void buildProfile() {
  resetProfileBlock();
  ProfileData& p = profile();
  p.PRFTYP = SplineProfile;
  p.PRBBOX = Array1<double, 4>{{0.0, 100.0, 0.0, 100.0}};
  p.BBOXOK = true;
  IZACCY();
  p.NPRCRV = MaxCurves;
  for (int c = 1; c <= MaxCurves; ++c) {
    const double cx = 10.0 + 20.0 * ((c - 1) % 5), cy = 25.0 + 50.0 * ((c - 1) / 5);
    p.NPRPNT(c) = MaxCurvePoints;
    p.PRCLSD(c) = true;
    const int codes[4] = {ChordLength, Centripetal, Foley, Uniform};
    p.PRPARM(c) = codes[(c - 1) % 4];
    for (int j = 1; j <= MaxCurvePoints; ++j) {
      const double a = 2.0 * Pi * (j - 1) / MaxCurvePoints;
      const double r = 8.0 + 1.2 * std::sin(5.0 * a + c);
      p.PRPNTS(c, j) = Array1<double, 2>{{cx + r * std::cos(a), cy + r * std::sin(a)}};
      int type = ContinuousCurvature;
      double weight = 0.0;
      switch (j % 10) {
        case 0:
          type = Knuckle;
          weight = 1.0;
          break;
        case 3:
          type = Knuckle;
          weight = 0.5;
          break;
        case 5:
          type = LeadingTangent;
          break;
        case 7:
          type = EqualTangents;
          break;
        default:
          break;
      }
      if (j % 25 == 12) type = LeadingSheer;
      if (j % 25 == 18) type = TrailingSheer;
      p.PRPTYP(c, j) = type;
      p.PRKWGT(c, j) = weight;
      p.PRTANV(c, j) = Array1<double, 4>{{-std::sin(a), std::cos(a), -std::sin(a), std::cos(a)}};
      p.PRTANL(c, j) = Array1<double, 2>{{1.0, 1.0}};
    }
  }
}

void BM_IQPPOL(benchmark::State& state) {
  buildProfile();
  auto lines = std::make_unique<ProfilePolylines>();
  bool status = false;
  long points = 0;
  for (auto _ : state) {
    IQPPOL(MaxCurves, MaxPolylinePoints, *lines, status);
    if (status) {
      state.SkipWithError("IQPPOL failed");
      return;
    }
    benchmark::DoNotOptimize(lines->points(MaxCurves));
  }
  for (int c = 1; c <= lines->curves; ++c) points += lines->points(c);
  state.counters["polyline_points"] = static_cast<double>(points);
}
BENCHMARK(BM_IQPPOL)->Unit(benchmark::kMicrosecond);

void BM_FairPoint(benchmark::State& state) {
  buildProfile();
  ProfileData& p = profile();
  // Push one continuous point of curve 1 outward.
  p.PRPNTS(1, 34)(1) += 1.5;
  FairSettings settings;
  settings.maxIterations = 10;
  auto outcome = std::make_unique<FairOutcome>();
  bool failed = false;
  for (auto _ : state) {
    fairCurvePoint(1, 34, settings, *outcome, failed);
    if (failed) {
      state.SkipWithError("fairing failed");
      return;
    }
    benchmark::DoNotOptimize(outcome->faired);
  }
  state.counters["iterations"] = outcome->iterations;
}
BENCHMARK(BM_FairPoint)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace kntr::profile
