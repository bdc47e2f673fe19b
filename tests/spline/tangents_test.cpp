#include "spline/tangents.h"

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <random>
#include <vector>

#include "spline/knots.h"
#include "support/spline_helpers.h"

namespace kntr::spline {
namespace {

using testing::dist;
using testing::dot;
using testing::makeRecord;
using testing::norm;
using testing::P;
using testing::segmentPoint;
using testing::setTangent;
using testing::shown;
using Tangents = testing::SplineTest;

const Triple Origin = P(0, 0);
const Triple XNormal = P(1, 0);

// A cubic spline through points y(0..n-1) with intervals h, written in its
// second-derivative moments and solved densely: the reference the solver
// is held against.
struct MomentSpline {
  std::vector<Triple> y;
  std::vector<double> h;  // h[i]: interval from y[i] to the next
  std::vector<Triple> M;  // second derivatives at the points
  bool periodic = false;

  // Point at fraction t of interval i.
  Triple at(int i, double t) const {
    const std::size_t a = static_cast<std::size_t>(i);
    const std::size_t b = (a + 1) % y.size();
    const double hi = h[a], s = t * hi, r = hi - s;
    Triple v;
    for (int k = 1; k <= 3; ++k)
      v(k) = M[a](k) * r * r * r / (6 * hi) + M[b](k) * s * s * s / (6 * hi) +
             (y[a](k) / hi - M[a](k) * hi / 6) * r + (y[b](k) / hi - M[b](k) * hi / 6) * s;
    return v;
  }
};

enum class Ends { Natural, Clamped, Periodic, ClampedStart };

// The spline with the given ends. Clamped ends take first and last
// derivatives by the knot parameter; ClampedStart clamps the start only.
MomentSpline momentSpline(const std::vector<Triple>& y, const std::vector<double>& h, Ends ends,
                          const Triple& d0 = Triple{}, const Triple& d1 = Triple{}) {
  MomentSpline s{y, h, {}, ends == Ends::Periodic};
  const std::size_t n = y.size();
  const bool clampStart = ends == Ends::Clamped || ends == Ends::ClampedStart;
  const bool clampEnd = ends == Ends::Clamped;
  s.M.assign(n, Triple{});
  for (int k = 1; k <= 3; ++k) {
    std::vector<std::vector<double>> a(n, std::vector<double>(n, 0.0));
    std::vector<double> b(n, 0.0);
    for (std::size_t i = 0; i < n; ++i) {
      const bool first = i == 0, last = i + 1 == n;
      if (ends != Ends::Periodic && first) {
        if (clampStart) {
          a[i][0] = 2 * h[0];
          a[i][1] = h[0];
          b[i] = 6 * ((y[1](k) - y[0](k)) / h[0] - d0(k));
        } else {
          a[i][i] = 1.0;
        }
        continue;
      }
      if (ends != Ends::Periodic && last) {
        if (clampEnd) {
          a[i][n - 2] = h[n - 2];
          a[i][n - 1] = 2 * h[n - 2];
          b[i] = 6 * (d1(k) - (y[n - 1](k) - y[n - 2](k)) / h[n - 2]);
        } else {
          a[i][i] = 1.0;
        }
        continue;
      }
      const std::size_t prev = (i + n - 1) % n, next = (i + 1) % n;
      const double hp = h[prev], hn = h[i];
      a[i][prev] += hp;
      a[i][i] += 2 * (hp + hn);
      a[i][next] += hn;
      b[i] = 6 * ((y[next](k) - y[i](k)) / hn - (y[i](k) - y[prev](k)) / hp);
    }
    const std::vector<double> m = testing::denseSolve(a, b);
    for (std::size_t i = 0; i < n; ++i) s.M[i](k) = m[i];
  }
  return s;
}

std::vector<Triple> pointsOf(const SplineRecord& rec, int from, int to) {
  std::vector<Triple> v;
  for (int i = from; i <= to; ++i) v.push_back(rec.OFFPNT(i));
  return v;
}

std::vector<double> knotsOf(const SplineRecord& rec, int from, int to) {
  std::vector<double> v;
  for (int i = from; i <= to; ++i) v.push_back(rec.INCKNT(i));
  return v;
}

// Largest distance between the solved segments first..last and the
// reference intervals 0.., at several parameters.
double deviation(const HermiteCurve& c, int first, int last, const MomentSpline& s) {
  double worst = 0.0;
  for (int i = first; i <= last; ++i)
    for (double t : {0.0, 0.13, 0.5, 0.77, 1.0})
      worst = std::max(worst, dist(segmentPoint(c, i, t), s.at(i - first, t)));
  return worst;
}

struct Solved {
  std::unique_ptr<HermiteCurve> curve = std::make_unique<HermiteCurve>();
  bool failed = false;
};

Solved solve(const SplineRecord& rec, int side = SideNone, const Triple& normal = XNormal) {
  Solved s;
  HCTAN3(500, Origin, normal, side, 1e-9, rec, *s.curve, s.failed);
  return s;
}

std::unique_ptr<SplineRecord> wave(int n, bool closed = false) {
  std::vector<Triple> points;
  for (int i = 0; i < n; ++i) {
    const double a = 2 * 3.141592653589793 * i / n;
    points.push_back(closed ? P(3 * std::cos(a) + 0.4 * std::cos(3 * a), 2 * std::sin(a), 0.3 * i)
                            : P(i * 1.3 + 0.2 * (i % 2), std::sin(i * 0.9), 0.25 * i * i));
  }
  if (closed)
    for (int i = 1; i <= n; ++i) points[static_cast<std::size_t>(i - 1)](3) = 0.0;
  return makeRecord(points, closed);
}

TEST_F(Tangents, OpenContinuousCurveIsTheNaturalSpline) {
  auto rec = wave(7);
  bool failed = true;
  MKIKV3(ParamChordLength, *rec, failed);
  ASSERT_FALSE(failed);
  Solved s = solve(*rec);
  ASSERT_FALSE(s.failed);
  ASSERT_EQ(s.curve->m, 7);
  EXPECT_FALSE(s.curve->closed);
  const MomentSpline ref = momentSpline(pointsOf(*rec, 1, 7), knotsOf(*rec, 1, 6), Ends::Natural);
  EXPECT_LT(deviation(*s.curve, 1, 6, ref), 1e-12);
  // The ends carry one tangent each.
  EXPECT_EQ(leading(s.curve->tangents(1)), trailing(s.curve->tangents(1)));
  EXPECT_EQ(leading(s.curve->tangents(7)), trailing(s.curve->tangents(7)));
}

TEST_F(Tangents, UniformKnotsGrowAlongTheCurve) {
  auto rec = wave(5);
  bool failed = true;
  MKIKV3(ParamUniform, *rec, failed);
  Solved s = solve(*rec);
  ASSERT_FALSE(s.failed);
  const MomentSpline ref = momentSpline(pointsOf(*rec, 1, 5), {1, 2, 3, 4}, Ends::Natural);
  EXPECT_LT(deviation(*s.curve, 1, 4, ref), 1e-12);
}

TEST_F(Tangents, ClosedContinuousCurveIsThePeriodicSpline) {
  auto rec = wave(8, true);
  bool failed = true;
  MKIKV3(ParamChordLength, *rec, failed);
  Solved s = solve(*rec);
  ASSERT_FALSE(s.failed);
  ASSERT_EQ(s.curve->m, 8);
  EXPECT_TRUE(s.curve->closed);
  const MomentSpline ref = momentSpline(pointsOf(*rec, 1, 8), knotsOf(*rec, 1, 8), Ends::Periodic);
  EXPECT_LT(deviation(*s.curve, 1, 8, ref), 1e-12);
}

TEST_F(Tangents, ClosedCurveOfTwoPointsIsPeriodic) {
  auto rec = makeRecord({P(0, 0), P(4, 0)}, true);
  rec->INCKNT(1) = 4.0;
  rec->INCKNT(2) = 2.0;
  Solved s = solve(*rec);
  ASSERT_FALSE(s.failed);
  const MomentSpline ref = momentSpline(pointsOf(*rec, 1, 2), {4.0, 2.0}, Ends::Periodic);
  EXPECT_LT(deviation(*s.curve, 1, 2, ref), 1e-12);
}

TEST_F(Tangents, TangentsAtTheEndsGiveTheClampedSpline) {
  auto rec = wave(6);
  bool failed = true;
  MKIKV3(ParamChordLength, *rec, failed);
  rec->PNTTYP(1) = TypeTrailingTangent;
  setTangent(*rec, 1, 2, P(0, 3, 4), 2.0);  // unit (0, .6, .8) times 2
  rec->PNTTYP(6) = TypeLeadingTangent;
  setTangent(*rec, 6, 1, P(-1, 0, 0), 0.5);
  Solved s = solve(*rec);
  ASSERT_FALSE(s.failed);
  const MomentSpline ref = momentSpline(pointsOf(*rec, 1, 6), knotsOf(*rec, 1, 5), Ends::Clamped,
                                        P(0, 1.2, 1.6), P(-0.5, 0, 0));
  EXPECT_LT(deviation(*s.curve, 1, 5, ref), 1e-12);
}

TEST_F(Tangents, KnucklesGiveThePolyline) {
  auto rec = makeRecord({P(0, 0), P(2, 1), P(3, 5), P(-1, 4)}, false, TypeKnuckle);
  for (int i = 1; i <= 4; ++i) rec->KNKWGT(i) = 1.0;
  bool failed = true;
  MKIKV3(ParamCentripetal, *rec, failed);
  Solved s = solve(*rec);
  ASSERT_FALSE(s.failed);
  for (int i = 1; i <= 3; ++i) {
    for (double t : {0.25, 0.5, 0.9}) {
      Triple chord;
      for (int k = 1; k <= 3; ++k)
        chord(k) = (1 - t) * rec->OFFPNT(i)(k) + t * rec->OFFPNT(i + 1)(k);
      EXPECT_LT(dist(segmentPoint(*s.curve, i, t), chord), 1e-12);
    }
  }
}

TEST_F(Tangents, TwoContinuousPointsGiveTheChordAsTangent) {
  auto rec = makeRecord({P(1, 2, 3), P(4, 6, 3)});
  rec->INCKNT(1) = 7.0;
  Solved s = solve(*rec);
  ASSERT_FALSE(s.failed);
  EXPECT_LT(dist(trailing(s.curve->tangents(1)), P(3, 4, 0)), 1e-14);
  EXPECT_LT(dist(leading(s.curve->tangents(2)), P(3, 4, 0)), 1e-14);
}

TEST_F(Tangents, KnuckleWeightsBlendTheTwoReadings) {
  auto rec = wave(7);
  bool failed = true;
  MKIKV3(ParamChordLength, *rec, failed);
  rec->PNTTYP(4) = TypeKnuckle;

  rec->KNKWGT(4) = 0.0;
  Solved zero = solve(*rec);
  rec->PNTTYP(4) = TypeContinuous;
  Solved continuous = solve(*rec);
  rec->PNTTYP(4) = TypeKnuckle;
  rec->KNKWGT(4) = 1.0;
  Solved knuckle = solve(*rec);
  rec->KNKWGT(4) = 0.5;
  Solved half = solve(*rec);
  ASSERT_FALSE(zero.failed || continuous.failed || knuckle.failed || half.failed);

  for (int i = 1; i <= 7; ++i) EXPECT_EQ(zero.curve->tangents(i), continuous.curve->tangents(i));
  // The knuckle breaks the curve at point 4: two free ends meet there.
  EXPECT_GT(dist(leading(knuckle.curve->tangents(4)), trailing(knuckle.curve->tangents(4))), 0.1);
  const MomentSpline before =
      momentSpline(pointsOf(*rec, 1, 4), knotsOf(*rec, 1, 3), Ends::Natural);
  EXPECT_LT(deviation(*knuckle.curve, 1, 3, before), 1e-12);
  // Half weight: the point takes the mean of both readings on each side.
  for (int k = 1; k <= 6; ++k)
    EXPECT_NEAR(half.curve->tangents(4)(k),
                0.5 * (continuous.curve->tangents(4)(k) + knuckle.curve->tangents(4)(k)), 1e-12);
}

TEST_F(Tangents, LeadingSheerHandsItsDirectionOnAtUnitSpeed) {
  auto rec = wave(7);
  bool failed = true;
  MKIKV3(ParamChordLength, *rec, failed);
  rec->PNTTYP(3) = TypeLeadingSheer;
  Solved s = solve(*rec);
  ASSERT_FALSE(s.failed);
  // Before the sheer the curve runs freely; after it, it starts with the
  // unit direction that the first part arrived with.
  const MomentSpline before =
      momentSpline(pointsOf(*rec, 1, 3), knotsOf(*rec, 1, 2), Ends::Natural);
  EXPECT_LT(deviation(*s.curve, 1, 2, before), 1e-12);
  const Triple arriving = leading(s.curve->tangents(3));
  Triple unit;
  for (int k = 1; k <= 3; ++k) unit(k) = arriving(k) / norm(arriving);
  const MomentSpline after =
      momentSpline(pointsOf(*rec, 3, 7), knotsOf(*rec, 3, 6), Ends::ClampedStart, unit);
  EXPECT_LT(deviation(*s.curve, 3, 6, after), 1e-12);
  const Triple leaving = trailing(s.curve->tangents(3));
  EXPECT_NEAR(dot(leaving, arriving) / (norm(leaving) * norm(arriving)), 1.0, 1e-12);
  EXPECT_NEAR(norm(leaving), rec->INCKNT(3), 1e-12);
}

TEST_F(Tangents, TrailingSheerTakesTheDirectionFromTheSegmentAfter) {
  auto rec = wave(7);
  bool failed = true;
  MKIKV3(ParamChordLength, *rec, failed);
  rec->PNTTYP(5) = TypeTrailingSheer;
  Solved s = solve(*rec);
  ASSERT_FALSE(s.failed);
  const MomentSpline after = momentSpline(pointsOf(*rec, 5, 7), knotsOf(*rec, 5, 6), Ends::Natural);
  EXPECT_LT(deviation(*s.curve, 5, 6, after), 1e-12);
  const Triple a = leading(s.curve->tangents(5)), b = trailing(s.curve->tangents(5));
  EXPECT_NEAR(dot(a, b) / (norm(a) * norm(b)), 1.0, 1e-12);
  EXPECT_NEAR(norm(a), rec->INCKNT(4), 1e-12);
}

TEST_F(Tangents, ClosedCurveWithOneKnuckleIsOneFreeSegmentRound) {
  auto rec = wave(6, true);
  bool failed = true;
  MKIKV3(ParamChordLength, *rec, failed);
  rec->PNTTYP(3) = TypeKnuckle;
  rec->KNKWGT(3) = 1.0;
  Solved s = solve(*rec);
  ASSERT_FALSE(s.failed);
  // Unrolled from the knuckle back to itself: 3, 4, 5, 6, 1, 2, 3.
  std::vector<Triple> y;
  std::vector<double> h;
  for (int j = 0; j <= 6; ++j) {
    const int i = (2 + j) % 6 + 1;
    y.push_back(rec->OFFPNT(i));
    if (j < 6) h.push_back(rec->INCKNT(i));
  }
  const MomentSpline ref = momentSpline(y, h, Ends::Natural);
  double worst = 0.0;
  for (int j = 0; j < 6; ++j) {
    const int i = (2 + j) % 6 + 1;
    for (double t : {0.0, 0.3, 0.6, 1.0})
      worst = std::max(worst, dist(segmentPoint(*s.curve, i, t), ref.at(j, t)));
  }
  EXPECT_LT(worst, 1e-12);
  EXPECT_GT(dist(leading(s.curve->tangents(3)), trailing(s.curve->tangents(3))), 0.1);
}

TEST_F(Tangents, LeadingTangentAtTheStartHasNoEffect) {
  auto rec = wave(5);
  bool failed = true;
  MKIKV3(ParamChordLength, *rec, failed);
  Solved plain = solve(*rec);
  rec->PNTTYP(1) = TypeLeadingTangent;
  setTangent(*rec, 1, 1, P(5, -1, 2), 3.0);
  Solved given = solve(*rec);
  ASSERT_FALSE(plain.failed || given.failed);
  for (int i = 1; i <= 5; ++i)
    for (int k = 1; k <= 6; ++k)
      EXPECT_NEAR(given.curve->tangents(i)(k), plain.curve->tangents(i)(k), 1e-12);
}

TEST_F(Tangents, RunOutEndsMakeParabolasAndIgnoreAFarTangent) {
  auto rec = wave(6);
  bool failed = true;
  MKIKV3(ParamChordLength, *rec, failed);
  rec->PNTTYP(1) = TypeRunOut;
  rec->PNTTYP(6) = TypeRunOut;
  Solved s = solve(*rec);
  ASSERT_FALSE(s.failed);
  // No cubic term in the first and the last piece.
  for (int i : {1, 5}) {
    const Triple p0 = s.curve->points(i), p1 = s.curve->points(i + 1);
    const Triple t0 = trailing(s.curve->tangents(i)), t1 = leading(s.curve->tangents(i + 1));
    for (int k = 1; k <= 3; ++k) EXPECT_NEAR(2 * (p0(k) - p1(k)) + t0(k) + t1(k), 0.0, 1e-12);
  }
  // A run-out start before a given end tangent: the segment stays free.
  rec->PNTTYP(6) = TypeLeadingTangent;
  setTangent(*rec, 6, 1, P(0, 1, 0), 4.0);
  Solved free = solve(*rec);
  ASSERT_FALSE(free.failed);
  const MomentSpline ref = momentSpline(pointsOf(*rec, 1, 6), knotsOf(*rec, 1, 5), Ends::Natural);
  EXPECT_LT(deviation(*free.curve, 1, 5, ref), 1e-12);
}

TEST_F(Tangents, EqualTangentsShareADirectionWithTwoLengths) {
  auto rec = wave(5);
  bool failed = true;
  MKIKV3(ParamChordLength, *rec, failed);
  rec->PNTTYP(3) = TypeEqualTangents;
  setTangent(*rec, 3, 1, P(0, 0, 2), 1.5);
  rec->TANLEN(3)(2) = 0.5;
  Solved s = solve(*rec);
  ASSERT_FALSE(s.failed);
  EXPECT_LT(dist(leading(s.curve->tangents(3)), P(0, 0, 1.5 * rec->INCKNT(2))), 1e-12);
  EXPECT_LT(dist(trailing(s.curve->tangents(3)), P(0, 0, 0.5 * rec->INCKNT(3))), 1e-12);
}

TEST_F(Tangents, MirroredCurvesCrossThePlaneAtRightAngles) {
  // The first point lies on the plane x = 0.
  auto rec = makeRecord({P(0, 1), P(1, 2), P(2.5, 2.2), P(4, 1)});
  bool failed = true;
  MKIKV3(ParamChordLength, *rec, failed);
  Solved given = solve(*rec, SideGiven);
  ASSERT_FALSE(given.failed);
  EXPECT_TRUE(given.curve->firstOnPlane);
  EXPECT_FALSE(given.curve->lastOnPlane);
  ASSERT_EQ(given.curve->m, 4);
  const Triple t = trailing(given.curve->tangents(1));
  EXPECT_GT(std::fabs(t(1)), 0.1);
  EXPECT_NEAR(t(2), 0.0, 1e-12);
  EXPECT_NEAR(t(3), 0.0, 1e-12);
  EXPECT_EQ(given.curve->points(4), rec->OFFPNT(4));

  // Both halves: the mirrored half runs first, the given points follow.
  Solved both = solve(*rec, SideBoth);
  ASSERT_FALSE(both.failed);
  ASSERT_EQ(both.curve->m, 7);
  for (int k = 1; k <= 3; ++k) {
    const Triple& mirrored = both.curve->points(k);
    const Triple& original = rec->OFFPNT(5 - k);
    EXPECT_EQ(mirrored(1), -original(1));
    EXPECT_EQ(mirrored(2), original(2));
  }
  for (double u : {0.2, 0.7}) {
    const Triple left = segmentPoint(*both.curve, 3, 1 - u);
    const Triple right = segmentPoint(*both.curve, 4, u);
    EXPECT_NEAR(left(1), -right(1), 1e-12);
    EXPECT_NEAR(left(2), right(2), 1e-12);
  }

  // An arch standing on the plane y = 0 with both ends: the working curve
  // closes round through its mirror image.
  auto arch = makeRecord({P(-2, 0), P(-1, 1.5), P(1, 1.8), P(2, 0)});
  MKIKV3(ParamChordLength, *arch, failed);
  Solved closedHalf = solve(*arch, SideGiven, P(0, 1));
  ASSERT_FALSE(closedHalf.failed);
  EXPECT_TRUE(closedHalf.curve->firstOnPlane && closedHalf.curve->lastOnPlane);
  EXPECT_FALSE(closedHalf.curve->closed);
  for (int i : {1, 4}) {
    const Triple end = leading(closedHalf.curve->tangents(i));
    EXPECT_NEAR(end(1), 0.0, 1e-12);
    EXPECT_GT(std::fabs(end(2)), 0.1);
  }
  Solved whole = solve(*arch, SideBoth, P(0, 1));
  ASSERT_FALSE(whole.failed);
  EXPECT_TRUE(whole.curve->closed);
  EXPECT_EQ(whole.curve->m, 6);
}

TEST_F(Tangents, ClosedCurveWithOneLeadingSheerLocksUntilCured) {
  auto rec = wave(6, true);
  bool failed = true;
  MKIKV3(ParamChordLength, *rec, failed);
  rec->PNTTYP(2) = TypeLeadingSheer;
  bool deadlock = false;
  IQDLCK(6, View1<const int>(rec->PNTTYP.data(), 6), View1<const double>(rec->KNKWGT.data(), 6),
         true, deadlock, failed);
  EXPECT_TRUE(deadlock);
  type("\n");
  Solved locked = solve(*rec);
  EXPECT_TRUE(locked.failed);
  EXPECT_TRUE(shown(output(), "(HCMTN3) Closed spline deadlock situation detected!"));

  // A weighted knuckle counts as continuous and cures nothing.
  rec->PNTTYP(5) = TypeKnuckle;
  rec->KNKWGT(5) = 0.5;
  IQDLCK(6, View1<const int>(rec->PNTTYP.data(), 6), View1<const double>(rec->KNKWGT.data(), 6),
         true, deadlock, failed);
  EXPECT_TRUE(deadlock);

  // A plain knuckle cures it, and so does a trailing sheer.
  rec->KNKWGT(5) = 1.0;
  Solved cured = solve(*rec);
  EXPECT_FALSE(cured.failed);
  EXPECT_EQ(output(), "");
  rec->PNTTYP(5) = TypeTrailingSheer;
  Solved sheers = solve(*rec);
  EXPECT_FALSE(sheers.failed);
  // Each sheer keeps its direction across the point.
  for (int i : {2, 5}) {
    const Triple a = leading(sheers.curve->tangents(i)), b = trailing(sheers.curve->tangents(i));
    EXPECT_NEAR(dot(a, b) / (norm(a) * norm(b)), 1.0, 1e-12);
  }
  // Open curves never lock.
  IQDLCK(6, View1<const int>(rec->PNTTYP.data(), 6), View1<const double>(rec->KNKWGT.data(), 6),
         false, deadlock, failed);
  EXPECT_FALSE(deadlock);
}

TEST_F(Tangents, SegmentsAndTheirSolvingOrder) {
  // Open: a leading sheer at 3 and a trailing sheer at 5.
  const int types[7] = {2, 2, 7, 2, 8, 2, 2};
  const double weights[7] = {};
  auto table = std::make_unique<CCSegments>();
  bool deadlock = true, failed = true;
  MKCCSL(200, 1000, 7, View1<const int>(types, 7), View1<const double>(weights, 7), false, *table,
         deadlock, failed);
  ASSERT_FALSE(failed || deadlock);
  ASSERT_EQ(table->count, 3);
  EXPECT_EQ(table->points(1), 3);
  EXPECT_EQ(table->point(2, 1), 3);
  EXPECT_EQ(table->point(2, 3), 5);
  EXPECT_EQ(table->point(3, 3), 7);
  // Segment 2 waits for both of its neighbours.
  EXPECT_EQ(table->order(1), 1);
  EXPECT_EQ(table->order(2), 3);
  EXPECT_EQ(table->order(3), 2);

  // Closed: cut at 2 and 5, the last segment runs round through point 1.
  const int closedTypes[6] = {2, 1, 2, 2, 8, 2};
  const double closedWeights[6] = {0, 1, 0, 0, 0, 0};
  MKCCSL(200, 1000, 6, View1<const int>(closedTypes, 6), View1<const double>(closedWeights, 6),
         true, *table, deadlock, failed);
  ASSERT_FALSE(failed || deadlock);
  ASSERT_EQ(table->count, 2);
  EXPECT_EQ(table->points(2), 4);
  EXPECT_EQ(table->point(2, 1), 5);
  EXPECT_EQ(table->point(2, 3), 1);
  EXPECT_EQ(table->point(2, 4), 2);
  EXPECT_EQ(table->order(1), 2);
  EXPECT_EQ(table->order(2), 1);
}

TEST_F(Tangents, LimitsAndIllegalInputAreReported) {
  auto rec = wave(5);
  bool failed = false;
  MKIKV3(ParamChordLength, *rec, failed);
  auto curve = std::make_unique<HermiteCurve>();

  type("\n");
  rec->NOFFS = 501;
  HCTAN3(500, Origin, XNormal, SideNone, 0.0, *rec, *curve, failed);
  EXPECT_TRUE(failed);
  EXPECT_TRUE(shown(output(), "(HCTAN3) Max number of offset points exceeded!"));
  rec->NOFFS = 5;

  type("\n");
  HCTAN3(500, Origin, XNormal, 4, 0.0, *rec, *curve, failed);
  EXPECT_TRUE(failed);
  EXPECT_TRUE(shown(output(), "(HCMTN3) Illegal return side specifier!"));

  type("\n");
  rec->PNTTYP(2) = TypeLeadingTangent;
  HCTAN3(500, Origin, XNormal, SideNone, 0.0, *rec, *curve, failed);
  EXPECT_TRUE(failed);
  EXPECT_TRUE(shown(output(), "(HCMTN3) Found leading tangent vector having zero length!"));
  rec->PNTTYP(2) = TypeTrailingTangent;
  type("\n");
  HCTAN3(500, Origin, XNormal, SideNone, 0.0, *rec, *curve, failed);
  EXPECT_TRUE(failed);
  EXPECT_TRUE(shown(output(), "(HCMTN3) Found trailing tangent vector having zero length!"));
  EXPECT_EQ(curve->m, 0);

  // Segment tables.
  std::vector<int> types(600, TypeKnuckle);
  std::vector<double> weights(600, 1.0);
  auto table = std::make_unique<CCSegments>();
  bool deadlock = false;
  type("\n");
  MKCCSL(2, 1000, 5, View1<const int>(types.data(), 5), View1<const double>(weights.data(), 5),
         false, *table, deadlock, failed);
  EXPECT_TRUE(failed);
  EXPECT_TRUE(shown(output(), "(MKCCSL) Max number of CC segments exceeded!\n(Max is 2)"));
  type("\n");
  MKCCSL(1000, 1000, 600, View1<const int>(types.data(), 600),
         View1<const double>(weights.data(), 600), false, *table, deadlock, failed);
  EXPECT_TRUE(failed);
  EXPECT_TRUE(shown(output(), "(MKCCSL) Max internal allowed number of CC segments exceeded!"));
  std::vector<int> smooth(6, TypeContinuous);
  type("\n");
  MKCCSL(200, 4, 6, View1<const int>(smooth.data(), 6), View1<const double>(weights.data(), 6),
         false, *table, deadlock, failed);
  EXPECT_TRUE(failed);
  EXPECT_TRUE(shown(output(), "(MKCCSL) Max number of segment points exceeded!"));
}

TEST_F(Tangents, SystemBuildersAndSegmentSolverReport) {
  auto bands = std::make_unique<Bands>();
  auto rhs = std::make_unique<RightSides>();
  Corner corner;
  const Triple pts[3] = {P(0, 0), P(1, 1), P(2, 0)};
  const double knots[3] = {1.0, 1.0, 1.0};
  const View1<const Triple> p(pts, 3);
  const View1<const double> h(knots, 3);
  bool failed = false;

  type("\n");
  MKSM13(1000, 1, p, h, *bands, *rhs, failed);
  EXPECT_TRUE(failed);
  EXPECT_TRUE(shown(output(), "(MKSM13) At least two offset points must be given!"));
  type("\n");
  MKSM43(2, 3, p, h, *bands, *rhs, failed);
  EXPECT_TRUE(failed);
  EXPECT_TRUE(shown(output(), "(MKSM43) Max number of offset points exceeded!"));
  type("\n");
  MKSM33(1000, 6, 3, p, h, P(1, 0), P(1, 0), *bands, *rhs, failed);
  EXPECT_TRUE(failed);
  EXPECT_TRUE(shown(output(), "(MKSM33) Illegal prescribed tangent indicator flag!"));

  const double closingZero[3] = {1.0, 0.0, 1.0};
  type("\n");
  MKSM23(1000, 3, p, View1<const double>(closingZero, 3), *bands, corner, *rhs, failed);
  EXPECT_TRUE(failed);
  EXPECT_TRUE(
      shown(output(), "(MKSM23) First and second-last point coincide for a closed spline!"));
  const double innerZero[4] = {0.0, 1.0, 1.0, 1.0};
  const Triple four[4] = {P(0, 0), P(1, 1), P(2, 0), P(0, 0)};
  type("\n");
  MKSM23(1000, 4, View1<const Triple>(four, 4), View1<const double>(innerZero, 4), *bands, corner,
         *rhs, failed);
  EXPECT_TRUE(failed);
  EXPECT_TRUE(shown(output(), "(MKSM23) Encountered illegal incremental knot vector!"));

  Triple result[3];
  type("\n");
  HCLEQ3(7, 3, p, h, P(0, 0), P(0, 0), View1<Triple>(result, 3), failed);
  EXPECT_TRUE(failed);
  EXPECT_TRUE(shown(output(), "(HCLEQ3) Illegal/unknown spline segment type!"));

  // Coinciding points under zero knots make the quadratic system singular.
  const Triple same[3] = {P(1, 1), P(1, 1), P(1, 1)};
  const double zero[3] = {0.0, 0.0, 0.0};
  type("\n");
  HCLEQ3(SplineQuadratic, 3, View1<const Triple>(same, 3), View1<const double>(zero, 3), P(0, 0),
         P(0, 0), View1<Triple>(result, 3), failed);
  EXPECT_TRUE(failed);
  EXPECT_TRUE(shown(output(), "(HCLEQ3) Found singular coefficient matrix for type 6 spline!"));

  bool singular = false;
  auto x = std::make_unique<RightSides>();
  type("\n");
  TRIDG1(10, 3, 11, 3, *bands, *rhs, *x, singular, failed);
  EXPECT_TRUE(failed);
  EXPECT_TRUE(shown(output(), "(TRIDG1) Max number of equations exceeded!"));
  type("\n");
  TRIDG1(10, 2, 5, 3, *bands, *rhs, *x, singular, failed);
  EXPECT_TRUE(failed);
  EXPECT_TRUE(shown(output(), "(TRIDG1) Max number of right hand sides exceeded!"));
  auto wa = std::make_unique<Array1<double, MaxRows>>();
  auto wb = std::make_unique<Array1<double, MaxRows>>();
  type("\n");
  TRIDG3(10, 3, 11, 3, *bands, corner, *wa, *wb, *rhs, *x, singular, failed);
  EXPECT_TRUE(failed);
  EXPECT_TRUE(shown(output(), "(TRIDG3) Max number of equations exceeded!"));
}

// Random diagonally heavy systems, solved by the band solvers and densely.
TEST_F(Tangents, BandSolversAgreeWithADenseSolve) {
  const unsigned seed = 77;
  std::mt19937 random(seed);
  std::uniform_real_distribution<double> value(-1.0, 1.0);
  auto bands = std::make_unique<Bands>();
  auto rhs = std::make_unique<RightSides>();
  auto x = std::make_unique<RightSides>();
  auto wa = std::make_unique<Array1<double, MaxRows>>();
  auto wb = std::make_unique<Array1<double, MaxRows>>();
  for (int n = 2; n <= 14; ++n) {
    for (bool periodic : {false, true}) {
      std::vector<std::vector<double>> a(static_cast<std::size_t>(n),
                                         std::vector<double>(static_cast<std::size_t>(n), 0.0));
      Corner corner;
      for (int i = 1; i <= n; ++i) {
        bands->a(i) = i > 1 ? value(random) : 0.0;
        bands->b(i) = 4.0 + value(random);
        bands->c(i) = i < n ? value(random) : 0.0;
        auto at = [&](int r, int c) -> double& {
          return a[static_cast<std::size_t>(r - 1)][static_cast<std::size_t>(c - 1)];
        };
        if (i > 1) at(i, i - 1) += bands->a(i);
        at(i, i) += bands->b(i);
        if (i < n) at(i, i + 1) += bands->c(i);
      }
      if (periodic) {
        for (int k = 1; k <= 3; ++k) corner(k) = value(random);
        a[0][static_cast<std::size_t>(n - 2)] += corner(1);
        a[0][static_cast<std::size_t>(n - 1)] += corner(2);
        a[static_cast<std::size_t>(n - 1)][0] += corner(3);
      }
      std::vector<std::vector<double>> columns(3, std::vector<double>(static_cast<std::size_t>(n)));
      for (int k = 1; k <= 3; ++k)
        for (int i = 1; i <= n; ++i)
          (*rhs)(i, k) = columns[static_cast<std::size_t>(k - 1)][static_cast<std::size_t>(i - 1)] =
              value(random);
      bool singular = true, failed = true;
      if (periodic)
        TRIDG3(MaxRows, MaxColumns, n, 3, *bands, corner, *wa, *wb, *rhs, *x, singular, failed);
      else
        TRIDG1(MaxRows, MaxColumns, n, 3, *bands, *rhs, *x, singular, failed);
      ASSERT_FALSE(failed || singular) << "seed " << seed << " n " << n;
      for (int k = 1; k <= 3; ++k) {
        const std::vector<double> expect =
            testing::denseSolve(a, columns[static_cast<std::size_t>(k - 1)]);
        for (int i = 1; i <= n; ++i)
          EXPECT_NEAR((*x)(i, k), expect[static_cast<std::size_t>(i - 1)], 1e-12)
              << "seed " << seed << " n " << n << (periodic ? " periodic" : "");
      }
    }
  }
  // A zero pivot is singular, not a failure.
  bands->b(1) = 0.0;
  bool singular = false, failed = true;
  TRIDG1(MaxRows, MaxColumns, 3, 3, *bands, *rhs, *x, singular, failed);
  EXPECT_TRUE(singular);
  EXPECT_FALSE(failed);
}

TEST_F(Tangents, TwoCoordinateFamilyMatchesThePlaneCurve) {
  for (bool closed : {false, true}) {
    auto rec = wave(7, closed);
    for (int i = 1; i <= 7; ++i) rec->OFFPNT(i)(3) = 0.0;
    bool failed = true;
    MKIKV3(ParamChordLength, *rec, failed);
    rec->PNTTYP(3) = TypeKnuckle;
    rec->KNKWGT(3) = 0.3;
    rec->PNTTYP(5) = TypeBothTangents;
    setTangent(*rec, 5, 1, P(1, 1), 2.0);
    setTangent(*rec, 5, 2, P(1, -1), 0.5);
    rec->PNTTYP(6) = TypeLeadingSheer;
    auto plane = std::make_unique<SplineRecord2>();
    plane->NOFFS = 7;
    plane->CLOSED = closed;
    for (int i = 1; i <= 7; ++i) {
      plane->OFFPNT(i) = Vec<2>{{rec->OFFPNT(i)(1), rec->OFFPNT(i)(2)}};
      plane->INCKNT(i) = rec->INCKNT(i);
      plane->PNTTYP(i) = rec->PNTTYP(i);
      plane->KNKWGT(i) = rec->KNKWGT(i);
      const Sextuple& t = rec->TANVEC(i);
      plane->TANVEC(i) = Vec<4>{{t(1), t(2), t(4), t(5)}};
      plane->TANLEN(i) = rec->TANLEN(i);
    }
    Solved s = solve(*rec);
    ASSERT_FALSE(s.failed);
    std::vector<Vec<4>> tangents(7, Vec<4>{{-99, -99, -99, -99}});
    HCTAN2(500, *plane, View1<Vec<4>>(tangents.data(), 7), failed);
    ASSERT_FALSE(failed);
    for (int i = 1; i <= 7; ++i) {
      const Vec<4>& t = tangents[static_cast<std::size_t>(i - 1)];
      const Sextuple& u = s.curve->tangents(i);
      if (closed || i > 1) {
        EXPECT_NEAR(t(1), u(1), 1e-12);
        EXPECT_NEAR(t(2), u(2), 1e-12);
      } else {
        EXPECT_EQ(t(1), -99);
      }
      if (closed || i < 7) {
        EXPECT_NEAR(t(3), u(4), 1e-12);
        EXPECT_NEAR(t(4), u(5), 1e-12);
      } else {
        EXPECT_EQ(t(4), -99);
      }
    }
  }
}

}  // namespace
}  // namespace kntr::spline
