#include "spline/fairing.h"

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <vector>

#include "spline/knots.h"
#include "spline/tangents.h"
#include "support/spline_helpers.h"

namespace kntr::spline {
namespace {

using testing::dist;
using testing::hermiteSecond;
using testing::makeRecord;
using testing::P;
using testing::shown;
using Fairing = testing::SplineTest;

const Triple Origin = P(0, 0);
const Triple XNormal = P(1, 0);
constexpr double Pi = 3.141592653589793;

// Integral over segment i of |p''|^2, by Simpson's rule on 200 panels.
double segmentIntegral(const HermiteCurve& c, int i) {
  const int next = i < c.m ? i + 1 : 1;
  const Triple p0 = c.points(i), p1 = c.points(next);
  const Triple t0 = trailing(c.tangents(i)), t1 = leading(c.tangents(next));
  const int panels = 200;
  double sum = 0.0;
  for (int j = 0; j <= panels; ++j) {
    const double t = static_cast<double>(j) / panels;
    const Triple d = hermiteSecond(p0, p1, t0, t1, t);
    const double w = (j == 0 || j == panels) ? 1.0 : (j % 2 ? 4.0 : 2.0);
    sum += w * testing::dot(d, d);
  }
  return sum / (3.0 * panels);
}

std::unique_ptr<SplineRecord> circle(int n, double radius, bool closed = true) {
  std::vector<Triple> points;
  for (int i = 0; i < n; ++i) {
    const double a = 2 * Pi * i / n;
    points.push_back(P(radius * std::cos(a), radius * std::sin(a)));
  }
  return makeRecord(points, closed);
}

struct FairRun {
  int iterations = -1;
  Triple faired{};
  std::vector<double> energies = std::vector<double>(100, -1.0);
  bool failed = false;
};

FairRun fair(SplineRecord& rec, int point, int maxIterations, bool local, double restraint,
             bool directional = false, const Triple& direction = Triple{}) {
  FairRun r;
  HCFOP3(point, maxIterations, local, restraint, 1e-6, directional, direction, false, Origin,
         XNormal, 1e-6, rec, r.iterations, r.faired, View1<double>(r.energies.data(), 100),
         r.failed);
  return r;
}

TEST_F(Fairing, EnergyIsTheIntegralOfTheSquaredSecondDerivative) {
  auto rec = circle(7, 3.0);
  rec->OFFPNT(3) = P(rec->OFFPNT(3)(1) * 1.2, rec->OFFPNT(3)(2), 0.4);
  testing::chordKnots(*rec);
  auto solved = std::make_unique<HermiteCurve>();
  bool failed = true;
  HCTAN3(500, Origin, XNormal, SideNone, 0.0, *rec, *solved, failed);
  ASSERT_FALSE(failed);

  FairRun local = fair(*rec, 3, 1, true, -1.0);
  ASSERT_FALSE(local.failed);
  EXPECT_NEAR(local.energies[0], segmentIntegral(*solved, 2) + segmentIntegral(*solved, 3),
              1e-9 * local.energies[0]);

  rec->OFFPNT(3) = solved->points(3);
  FairRun global = fair(*rec, 3, 1, false, -1.0);
  ASSERT_FALSE(global.failed);
  double whole = 0.0;
  for (int i = 1; i <= 7; ++i) whole += segmentIntegral(*solved, i);
  EXPECT_NEAR(global.energies[0], whole, 1e-9 * whole);
}

TEST_F(Fairing, ADisplacedPointMovesBackAndTheEnergyFalls) {
  for (bool local : {true, false}) {
    auto rec = circle(12, 5.0);
    rec->OFFPNT(4) = P(rec->OFFPNT(4)(1) * 1.2, rec->OFFPNT(4)(2) * 1.2);
    testing::chordKnots(*rec);
    const double before = std::hypot(rec->OFFPNT(4)(1), rec->OFFPNT(4)(2));
    FairRun r = fair(*rec, 4, 30, local, -1.0);
    ASSERT_FALSE(r.failed);
    ASSERT_GE(r.iterations, 3);
    for (int k = 1; k < r.iterations; ++k)
      EXPECT_LT(r.energies[static_cast<std::size_t>(k)],
                r.energies[static_cast<std::size_t>(k - 1)])
          << "iteration " << k + 1 << (local ? " local" : " global");
    const double after = std::hypot(r.faired(1), r.faired(2));
    EXPECT_LT(std::fabs(after - 5.0), 0.3 * std::fabs(before - 5.0));
    EXPECT_EQ(r.faired(3), 0.0);
  }
}

TEST_F(Fairing, DirectionalFairingMovesAlongTheDirectionOnly) {
  auto rec = circle(10, 4.0);
  rec->OFFPNT(3) = P(rec->OFFPNT(3)(1) + 0.7, rec->OFFPNT(3)(2) + 0.2);
  testing::chordKnots(*rec);
  const Triple start = rec->OFFPNT(3);
  FairRun r = fair(*rec, 3, 5, true, -1.0, true, P(1, 2));
  ASSERT_FALSE(r.failed);
  const double dx = r.faired(1) - start(1), dy = r.faired(2) - start(2);
  EXPECT_GT(std::hypot(dx, dy), 0.05);
  EXPECT_NEAR(dx * 2.0 - dy * 1.0, 0.0, 1e-12);
}

TEST_F(Fairing, RestraintScalesTheStepByItsDistance) {
  auto rec = circle(8, 1.0);
  rec->OFFPNT(2) = P(rec->OFFPNT(2)(1) * 1.5, rec->OFFPNT(2)(2) * 1.5);
  testing::chordKnots(*rec);
  const Triple start = rec->OFFPNT(2);
  FairRun probe = fair(*rec, 2, 1, true, -1.0);
  ASSERT_FALSE(probe.failed);
  EXPECT_EQ(probe.iterations, 1);
  // Scale the curve so that the free step is 2 long.
  const double scale = 2.0 / dist(probe.faired, start);
  for (int i = 1; i <= 8; ++i) {
    for (int k = 1; k <= 3; ++k) rec->OFFPNT(i)(k) *= scale;
    rec->INCKNT(i) *= scale;
  }
  rec->OFFPNT(2) = P(start(1) * scale, start(2) * scale);
  FairRun free = fair(*rec, 2, 1, true, -1.0);
  const double step = dist(free.faired, rec->OFFPNT(2));
  EXPECT_NEAR(step, 2.0, 1e-3);
  FairRun restrained = fair(*rec, 2, 1, true, 0.5);
  ASSERT_FALSE(restrained.failed);
  EXPECT_NEAR(dist(restrained.faired, rec->OFFPNT(2)), 0.5 * step, 1e-9);
  EXPECT_NEAR(dist(restrained.faired, rec->OFFPNT(2)), 1.0, 1e-3);
}

TEST_F(Fairing, ShortCurvesOpenEndsAndMinimaStay) {
  auto pair = makeRecord({P(0, 0), P(1, 1)});
  pair->INCKNT(1) = 1.0;
  FairRun r = fair(*pair, 2, 5, true, -1.0);
  EXPECT_FALSE(r.failed);
  EXPECT_EQ(r.iterations, 0);
  EXPECT_EQ(r.faired, P(1, 1));

  auto open = circle(6, 2.0, false);
  for (int end : {1, 6}) {
    FairRun e = fair(*open, end, 5, true, -1.0);
    EXPECT_FALSE(e.failed);
    EXPECT_EQ(e.iterations, 0);
    EXPECT_EQ(e.faired, open->OFFPNT(end));
  }
  EXPECT_EQ(output(), "");

  // Evenly spaced on a slanted line: the curve is the line, energy 0.
  auto line = makeRecord({P(-2, 0), P(-1, 0.5), P(0, 1), P(1, 1.5), P(2, 2)});
  FairRun still = fair(*line, 3, 10, true, -1.0);
  ASSERT_FALSE(still.failed);
  EXPECT_EQ(still.iterations, 1);
  EXPECT_NEAR(still.energies[0], 0.0, 1e-20);
  EXPECT_EQ(still.energies[1], -1.0);
  EXPECT_LT(dist(still.faired, P(0, 1)), 1e-6);
}

double shiftedSquare(double x) {
  return (x - 2.0) * (x - 2.0) + 1.0;
}
double farAway(double x) {
  return (x - 7.0) * (x - 7.0);
}

TEST_F(Fairing, OneDimensionalMinimaOfKnownFunctions) {
  struct Case {
    ScalarFunction f;
    double lower, upper, minimum;
  };
  const double tolerance = 1e-6;
  const Case cases[] = {
      {shiftedSquare, -10, 10, 2.0},
      {[](double x) { return x * x * x * x - 3.0 * x; }, 0, 5, std::cbrt(0.75)},
      {[](double x) { return std::exp(x) - 3.0 * x; }, -2, 4, std::log(3.0)},
      {[](double x) { return std::fabs(x - 1.3); }, -3, 4, 1.3},
      {farAway, 0, 5, 5.0},
  };
  for (const Case& c : cases) {
    double x = 0.0;
    bool failed = true;
    FUNMIN(c.f, c.lower, c.upper, tolerance, x, failed);
    ASSERT_FALSE(failed);
    EXPECT_NEAR(x, c.minimum, 2.0 * (tolerance * std::fabs(c.minimum) + 1e-10) + 1e-12);
  }

  // Brent on a bracket found by the downhill walk.
  double a = 0.0, b = 1.0, c = 0.0, fa = 0, fb = 0, fc = 0, x = 0, fx = 0;
  bool failed = true;
  FMNBRK(shiftedSquare, a, b, c, fa, fb, fc, failed);
  EXPECT_FALSE(failed);
  EXPECT_TRUE((a < b && b < c) || (c < b && b < a));
  EXPECT_LE(fb, fa);
  EXPECT_LE(fb, fc);
  FMNBRN(shiftedSquare, a, b, c, 1e-8, x, fx, failed);
  EXPECT_FALSE(failed);
  EXPECT_NEAR(x, 2.0, 1e-7);
  EXPECT_NEAR(fx, 1.0, 1e-14);
}

TEST_F(Fairing, BadSettingsAreReported) {
  auto rec = circle(6, 2.0);
  expectFailure(fair(*rec, 7, 1, true, -1.0).failed, "(HCFOP3) Illegal fair offset point index!");
  expectFailure(fair(*rec, -1, 1, true, -1.0).failed, "(HCFOP3) Illegal fair offset point index!");
  // Index 0 passes the check and moves nothing.
  const SplineRecord before = *rec;
  const FairRun zero = fair(*rec, 0, 1, true, -1.0);
  EXPECT_FALSE(zero.failed);
  EXPECT_EQ(zero.iterations, 0);
  EXPECT_TRUE(rec->OFFPNT == before.OFFPNT);
  EXPECT_EQ(output(), "");
  expectFailure(fair(*rec, 2, 1, true, -1.0, true, P(0, 0)).failed,
                "(HCFOP3) Found zero length direction vector!");
  expectFailure(fair(*rec, 2, 1, true, 1e-7).failed,
                "(HCFOP3) Stop criterion threshold cannot exceed max allowed adjustment distance!");
  // The one-dimensional search: equal limits give 0.0, crossed limits and
  // a tolerance of 0 are refused.
  double x = 5.0;
  bool failed = true;
  FUNMIN(farAway, 3.0, 3.0, 1e-6, x, failed);
  EXPECT_FALSE(failed);
  EXPECT_EQ(x, 0.0);
  FUNMIN(farAway, 3.0, 2.0, 1e-6, x, failed);
  expectFailure(failed, "(FUNMIN) Max search limit must be larger than min!");
  FUNMIN(farAway, 0.0, 2.0, 0.0, x, failed);
  expectFailure(failed, "(FUNMIN) Tolerance must be positive!");
}

}  // namespace
}  // namespace kntr::spline
