#include "spline/tangents.h"

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
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
  MomentSpline s{y, h, {}};
  const std::size_t n = y.size();
  const bool clampStart = ends == Ends::Clamped || ends == Ends::ClampedStart;
  s.M.assign(n, Triple{});
  for (int k = 1; k <= 3; ++k) {
    std::vector<std::vector<double>> a(n, std::vector<double>(n, 0.0));
    std::vector<double> b(n, 0.0);
    for (std::size_t i = 0; i < n; ++i) {
      if (ends != Ends::Periodic && i == 0) {
        a[0][0] = clampStart ? 2 * h[0] : 1.0;
        a[0][1] = clampStart ? h[0] : 0.0;
        b[0] = clampStart ? 6 * ((y[1](k) - y[0](k)) / h[0] - d0(k)) : 0.0;
      } else if (ends != Ends::Periodic && i + 1 == n) {
        const bool clamp = ends == Ends::Clamped;
        a[i][n - 2] = clamp ? h[n - 2] : 0.0;
        a[i][n - 1] = clamp ? 2 * h[n - 2] : 1.0;
        b[i] = clamp ? 6 * (d1(k) - (y[n - 1](k) - y[n - 2](k)) / h[n - 2]) : 0.0;
      } else {
        const std::size_t prev = (i + n - 1) % n, next = (i + 1) % n;
        const double hp = h[prev], hn = h[i];
        a[i][prev] += hp;
        a[i][i] += 2 * (hp + hn);
        a[i][next] += hn;
        b[i] = 6 * ((y[next](k) - y[i](k)) / hn - (y[i](k) - y[prev](k)) / hp);
      }
    }
    const std::vector<double> m = testing::denseSolve(a, b);
    for (std::size_t i = 0; i < n; ++i) s.M[i](k) = m[i];
  }
  return s;
}

// The reference spline through points from..to of a record, on the
// record's knots (a periodic one closes with the knot of point `to`).
MomentSpline reference(const SplineRecord& rec, int from, int to, Ends ends,
                       const Triple& d0 = Triple{}, const Triple& d1 = Triple{}) {
  std::vector<Triple> y;
  std::vector<double> h;
  for (int i = from; i <= to; ++i) y.push_back(rec.OFFPNT(i));
  for (int i = from; i <= (ends == Ends::Periodic ? to : to - 1); ++i) h.push_back(rec.INCKNT(i));
  return momentSpline(y, h, ends, d0, d1);
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

// Cosine of the angle between two vectors.
double cosine(const Triple& a, const Triple& b) {
  return dot(a, b) / (norm(a) * norm(b));
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

// A wavy open curve in space, or a closed plane one, all continuous, with
// chord-length knots.
std::unique_ptr<SplineRecord> wave(int n, bool closed = false) {
  std::vector<Triple> points;
  for (int i = 0; i < n; ++i) {
    const double a = 2 * 3.141592653589793 * i / n;
    points.push_back(closed ? P(3 * std::cos(a) + 0.4 * std::cos(3 * a), 2 * std::sin(a))
                            : P(i * 1.3 + 0.2 * (i % 2), std::sin(i * 0.9), 0.25 * i * i));
  }
  return makeRecord(points, closed);
}

TEST_F(Tangents, ContinuousCurvesAreTheNaturalOrPeriodicSpline) {
  for (const bool closed : {false, true}) {
    const int n = closed ? 8 : 7;
    auto rec = wave(n, closed);
    Solved s = solve(*rec);
    ASSERT_FALSE(s.failed);
    ASSERT_EQ(s.curve->m, n);
    EXPECT_EQ(s.curve->closed, closed);
    const Ends ends = closed ? Ends::Periodic : Ends::Natural;
    EXPECT_LT(deviation(*s.curve, 1, closed ? n : n - 1, reference(*rec, 1, n, ends)), 1e-12);
    // The ends of an open curve carry one tangent each.
    if (!closed) {
      for (int i : {1, n}) EXPECT_EQ(leading(s.curve->tangents(i)), trailing(s.curve->tangents(i)));
    }
  }

  // A closed curve of two points is periodic too.
  auto pair = makeRecord({P(0, 0), P(4, 0)}, true);
  pair->INCKNT(1) = 4.0;
  pair->INCKNT(2) = 2.0;
  Solved two = solve(*pair);
  ASSERT_FALSE(two.failed);
  EXPECT_LT(deviation(*two.curve, 1, 2, reference(*pair, 1, 2, Ends::Periodic)), 1e-12);

  // Two open points take the chord as tangent, whatever the knot.
  auto chord = makeRecord({P(1, 2, 3), P(4, 6, 3)});
  chord->INCKNT(1) = 7.0;
  Solved line = solve(*chord);
  ASSERT_FALSE(line.failed);
  EXPECT_LT(dist(trailing(line.curve->tangents(1)), P(3, 4, 0)), 1e-14);
  EXPECT_LT(dist(leading(line.curve->tangents(2)), P(3, 4, 0)), 1e-14);
}

TEST_F(Tangents, TangentsAtTheEndsGiveTheClampedSpline) {
  auto rec = wave(6);
  rec->PNTTYP(1) = TypeTrailingTangent;
  setTangent(*rec, 1, 2, P(0, 3, 4), 2.0);  // unit (0, .6, .8) times 2
  rec->PNTTYP(6) = TypeLeadingTangent;
  setTangent(*rec, 6, 1, P(-1, 0, 0), 0.5);
  Solved s = solve(*rec);
  ASSERT_FALSE(s.failed);
  EXPECT_LT(deviation(*s.curve, 1, 5,
                      reference(*rec, 1, 6, Ends::Clamped, P(0, 1.2, 1.6), P(-0.5, 0, 0))),
            1e-12);
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

TEST_F(Tangents, KnuckleWeightsBlendTheTwoReadings) {
  auto rec = wave(7);
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
  EXPECT_LT(deviation(*knuckle.curve, 1, 3, reference(*rec, 1, 4, Ends::Natural)), 1e-12);
  // Half weight: the point takes the mean of both readings on each side.
  for (int k = 1; k <= 6; ++k)
    EXPECT_NEAR(half.curve->tangents(4)(k),
                0.5 * (continuous.curve->tangents(4)(k) + knuckle.curve->tangents(4)(k)), 1e-12);
}

TEST_F(Tangents, SheersHandTheirDirectionOnAtUnitSpeed) {
  // A leading sheer at 3 takes its direction from the segment before it, a
  // trailing sheer at 5 from the one after it: the middle segment waits for
  // both and is the spline clamped by those unit directions.
  auto rec = wave(7);
  rec->PNTTYP(3) = TypeLeadingSheer;
  rec->PNTTYP(5) = TypeTrailingSheer;
  Solved s = solve(*rec);
  ASSERT_FALSE(s.failed);
  EXPECT_LT(deviation(*s.curve, 1, 2, reference(*rec, 1, 3, Ends::Natural)), 1e-12);
  EXPECT_LT(deviation(*s.curve, 5, 6, reference(*rec, 5, 7, Ends::Natural)), 1e-12);
  const Triple arriving = leading(s.curve->tangents(3)), leaving = trailing(s.curve->tangents(5));
  Triple start, end;
  for (int k = 1; k <= 3; ++k) {
    start(k) = arriving(k) / norm(arriving);
    end(k) = leaving(k) / norm(leaving);
  }
  EXPECT_LT(deviation(*s.curve, 3, 4, reference(*rec, 3, 5, Ends::Clamped, start, end)), 1e-12);
  EXPECT_NEAR(cosine(trailing(s.curve->tangents(3)), arriving), 1.0, 1e-12);
  EXPECT_NEAR(norm(trailing(s.curve->tangents(3))), rec->INCKNT(3), 1e-12);
  EXPECT_NEAR(cosine(leading(s.curve->tangents(5)), leaving), 1.0, 1e-12);
  EXPECT_NEAR(norm(leading(s.curve->tangents(5))), rec->INCKNT(4), 1e-12);
}

TEST_F(Tangents, ClosedCurveWithOneKnuckleIsOneFreeSegmentRound) {
  auto rec = wave(6, true);
  rec->PNTTYP(3) = TypeKnuckle;
  rec->KNKWGT(3) = 1.0;
  Solved s = solve(*rec);
  ASSERT_FALSE(s.failed);
  // Unrolled from the knuckle back to itself: 3, 4, 5, 6, 1, 2, 3.
  std::vector<Triple> y;
  std::vector<double> h;
  for (int j = 0; j <= 6; ++j) {
    y.push_back(rec->OFFPNT((2 + j) % 6 + 1));
    if (j < 6) h.push_back(rec->INCKNT((2 + j) % 6 + 1));
  }
  const MomentSpline ref = momentSpline(y, h, Ends::Natural);
  double worst = 0.0;
  for (int j = 0; j < 6; ++j)
    for (double t : {0.0, 0.3, 0.6, 1.0})
      worst = std::max(worst, dist(segmentPoint(*s.curve, (2 + j) % 6 + 1, t), ref.at(j, t)));
  EXPECT_LT(worst, 1e-12);
  EXPECT_GT(dist(leading(s.curve->tangents(3)), trailing(s.curve->tangents(3))), 0.1);
}

TEST_F(Tangents, RunOutEndsMakeParabolasAndIgnoreAFarTangent) {
  auto rec = wave(6);
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
  EXPECT_LT(deviation(*free.curve, 1, 5, reference(*rec, 1, 6, Ends::Natural)), 1e-12);
}

TEST_F(Tangents, EqualTangentsShareADirectionWithTwoLengths) {
  auto rec = wave(5);
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
    EXPECT_EQ(both.curve->points(k)(1), -rec->OFFPNT(5 - k)(1));
    EXPECT_EQ(both.curve->points(k)(2), rec->OFFPNT(5 - k)(2));
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
  rec->PNTTYP(2) = TypeLeadingSheer;
  bool deadlock = false, failed = false;
  auto locks = [&](bool closed) {
    IQDLCK(6, View1<const int>(rec->PNTTYP.data(), 6), View1<const double>(rec->KNKWGT.data(), 6),
           closed, deadlock, failed);
    return deadlock;
  };
  EXPECT_TRUE(locks(true));
  expectFailure(solve(*rec).failed, "(HCMTN3) Closed spline deadlock situation detected!");

  // A weighted knuckle counts as continuous and cures nothing.
  rec->PNTTYP(5) = TypeKnuckle;
  rec->KNKWGT(5) = 0.5;
  EXPECT_TRUE(locks(true));

  // A plain knuckle cures it, and so does a trailing sheer.
  rec->KNKWGT(5) = 1.0;
  EXPECT_FALSE(solve(*rec).failed);
  EXPECT_EQ(output(), "");
  rec->PNTTYP(5) = TypeTrailingSheer;
  Solved sheers = solve(*rec);
  EXPECT_FALSE(sheers.failed);
  // Each sheer keeps its direction across the point.
  for (int i : {2, 5})
    EXPECT_NEAR(cosine(leading(sheers.curve->tangents(i)), trailing(sheers.curve->tangents(i))),
                1.0, 1e-12);
  // Open curves never lock.
  EXPECT_FALSE(locks(false));
}

TEST_F(Tangents, LimitsAndIllegalInputAreReported) {
  auto rec = wave(5);
  auto curve = std::make_unique<HermiteCurve>();
  bool failed = false;
  rec->NOFFS = 501;
  HCTAN3(500, Origin, XNormal, SideNone, 0.0, *rec, *curve, failed);
  expectFailure(failed, "(HCTAN3) Max number of offset points exceeded!");
  rec->NOFFS = 5;
  HCTAN3(500, Origin, XNormal, 4, 0.0, *rec, *curve, failed);
  expectFailure(failed, "(HCMTN3) Illegal return side specifier!");
  rec->PNTTYP(2) = TypeLeadingTangent;
  HCTAN3(500, Origin, XNormal, SideNone, 0.0, *rec, *curve, failed);
  expectFailure(failed, "(HCMTN3) Found leading tangent vector having zero length!");
  rec->PNTTYP(2) = TypeTrailingTangent;
  HCTAN3(500, Origin, XNormal, SideNone, 0.0, *rec, *curve, failed);
  expectFailure(failed, "(HCMTN3) Found trailing tangent vector having zero length!");
  EXPECT_EQ(curve->m, 0);

  // Segment tables.
  std::vector<int> knuckles(5, TypeKnuckle), smooth(6, TypeContinuous);
  std::vector<double> weights(6, 1.0);
  auto table = std::make_unique<CCSegments>();
  bool deadlock = false;
  MKCCSL(2, 1000, 5, View1<const int>(knuckles.data(), 5), View1<const double>(weights.data(), 5),
         false, *table, deadlock, failed);
  expectFailure(failed, "(MKCCSL) Max number of CC segments exceeded!\n(Max is 2)");
  MKCCSL(200, 4, 6, View1<const int>(smooth.data(), 6), View1<const double>(weights.data(), 6),
         false, *table, deadlock, failed);
  expectFailure(failed, "(MKCCSL) Max number of segment points exceeded!");

  // System builders: too few points, and zero knots of a closed curve.
  auto bands = std::make_unique<Bands>();
  auto rhs = std::make_unique<RightSides>();
  Corner corner;
  const Triple pts[4] = {P(0, 0), P(1, 1), P(2, 0), P(0, 0)};
  const double knots[3] = {1.0, 1.0, 1.0}, closingZero[3] = {1.0, 0.0, 1.0};
  const double innerZero[4] = {0.0, 1.0, 1.0, 1.0};
  const View1<const Triple> p(pts, 3);
  MKSM13(1000, 1, p, View1<const double>(knots, 3), *bands, *rhs, failed);
  expectFailure(failed, "(MKSM13) At least two offset points must be given!");
  MKSM23(1000, 3, p, View1<const double>(closingZero, 3), *bands, corner, *rhs, failed);
  expectFailure(failed, "(MKSM23) First and second-last point coincide for a closed spline!");
  MKSM23(1000, 4, View1<const Triple>(pts, 4), View1<const double>(innerZero, 4), *bands, corner,
         *rhs, failed);
  expectFailure(failed, "(MKSM23) Encountered illegal incremental knot vector!");
}

TEST_F(Tangents, TwoCoordinateFamilyMatchesThePlaneCurve) {
  for (bool closed : {false, true}) {
    auto rec = wave(7, closed);
    for (int i = 1; i <= 7; ++i) rec->OFFPNT(i)(3) = 0.0;
    testing::chordKnots(*rec);
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
    bool failed = true;
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
