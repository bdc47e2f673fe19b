#include "spline/evaluate.h"

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
using testing::makeRecord;
using testing::P;
using testing::segmentPoint;
using Evaluation = testing::SplineTest;

const Triple Origin = P(0, 0);
const Triple XNormal = P(1, 0);

// Bernstein form of a cubic Bezier polygon at t.
Triple bernstein(const Bezier& b, double t) {
  const double u = 1 - t;
  Triple r;
  for (int k = 1; k <= 3; ++k)
    r(k) = u * u * u * b(1)(k) + 3 * u * u * t * b(2)(k) + 3 * u * t * t * b(3)(k) +
           t * t * t * b(4)(k);
  return r;
}

Bezier bezier(const Triple& a, const Triple& b, const Triple& c, const Triple& d) {
  Bezier p;
  p(1) = a;
  p(2) = b;
  p(3) = c;
  p(4) = d;
  return p;
}

const Bezier Curved = bezier(P(0, 0, 0), P(1, 3, 1), P(4, 3, -1), P(5, 0, 2));

// What a subdivider made: points(1..count) with their flags, and the point
// of each offset point.
struct Subdivided {
  explicit Subdivided(int room) : out(static_cast<std::size_t>(room)), onCurve(new bool[room]) {}
  std::vector<Triple> out;
  std::vector<int> index = std::vector<int>(500);
  std::unique_ptr<bool[]> onCurve;
  int count = 0;
  bool failed = true;

  const Triple& point(int k) const { return out[static_cast<std::size_t>(k - 1)]; }
  bool flagged(int k) const { return onCurve[static_cast<std::size_t>(k - 1)]; }
  int of(int i) const { return index[static_cast<std::size_t>(i - 1)]; }
  View1<Triple> points() { return View1<Triple>(out.data(), static_cast<int>(out.size())); }
  View1<int> indices() { return View1<int>(index.data(), 500); }
};

Subdivided even(const SplineRecord& rec, int limit, int perSegment, int side = SideNone,
                const Triple& normal = XNormal, double tolerance = 0.0, int room = 1000) {
  Subdivided s(room);
  HCPIP3(limit, perSegment, Origin, normal, side, tolerance, rec, s.count, s.points(), s.indices(),
         s.failed);
  return s;
}

Subdivided adaptive(const SplineRecord& rec, int limit, double accuracy, int side = SideNone,
                    double tolerance = 0.0, int room = 10000) {
  Subdivided s(room);
  HCAIP3(limit, accuracy, Origin, XNormal, side, tolerance, rec, s.count, s.points(), s.indices(),
         View1<bool>(s.onCurve.get(), room), s.failed);
  return s;
}

// Points on a sine (open) or an ellipse (closed).
std::unique_ptr<SplineRecord> smooth(int n, bool closed) {
  std::vector<Triple> points;
  for (int i = 0; i < n; ++i) {
    const double a = 2 * 3.141592653589793 * i / n;
    points.push_back(closed ? P(4 * std::cos(a), 3 * std::sin(a)) : P(i, std::sin(i)));
  }
  return makeRecord(points, closed);
}

std::unique_ptr<HermiteCurve> solved(const SplineRecord& rec) {
  auto curve = std::make_unique<HermiteCurve>();
  bool failed = true;
  HCTAN3(500, Origin, XNormal, SideNone, 0.0, rec, *curve, failed);
  EXPECT_FALSE(failed);
  return curve;
}

TEST_F(Evaluation, AdaptiveSubdivisionGivesAChainOfFlatPolygons) {
  std::vector<Triple> out(10000);
  int count = 0;
  bool failed = true;
  const double tolerance = 1e-3;
  SBDVP3(tolerance, 10000, Curved, count, View1<Triple>(out.data(), 10000), failed);
  ASSERT_FALSE(failed);
  ASSERT_GT(count, 4);
  EXPECT_EQ((count - 1) % 3, 0);
  EXPECT_EQ(out[0], Curved(1));
  EXPECT_EQ(out[static_cast<std::size_t>(count - 1)], Curved(4));
  for (std::size_t k = 0; k + 3 < static_cast<std::size_t>(count); k += 3) {
    const Bezier piece = bezier(out[k], out[k + 1], out[k + 2], out[k + 3]);
    double chord = 0, length = 0;
    IQBZLN(piece, chord, length, failed);
    EXPECT_LT(length - chord, tolerance);
    // The piece starts on the curve: near a dense sampling of it.
    double best = 1e300;
    for (int j = 0; j <= 20000; ++j)
      best = std::min(best, dist(piece(1), bernstein(Curved, j / 2e4)));
    EXPECT_LT(best, 1e-3);
  }

  // Chord and legs exactly equal: the polygon as it stands.
  SBDVP3(0.0, 10000, bezier(P(0, 0), P(1, 0), P(2, 0), P(4, 0)), count,
         View1<Triple>(out.data(), 10000), failed);
  EXPECT_FALSE(failed);
  EXPECT_EQ(count, 4);

  // A tolerance of 0 on a true curve runs the stack over.
  SBDVP3(0.0, 10000, Curved, count, View1<Triple>(out.data(), 10000), failed);
  expectFailure(failed, "(SBDVP3) Internal subdivision stack overflowed!");
  SBDVP3(1e-6, 10, Curved, count, View1<Triple>(out.data(), 10000), failed);
  expectFailure(failed, "(SBDVP3) Max number of allocated polygon points exceeded!");
}

TEST_F(Evaluation, EvenSubdivisionWithThreePointsPerSegment) {
  for (bool closed : {false, true}) {
    auto rec = smooth(6, closed);
    auto curve = solved(*rec);
    const Subdivided s = even(*rec, 100, 3, SideNone, XNormal, 1e-3);
    ASSERT_FALSE(s.failed);
    EXPECT_EQ(s.count, closed ? 12 : 11);
    for (int i = 1; i <= 6; ++i) {
      EXPECT_EQ(s.of(i), 2 * i - 1);
      EXPECT_LT(dist(s.point(2 * i - 1), rec->OFFPNT(i)), 1e-14);
    }
    for (int i = 1; i <= (closed ? 6 : 5); ++i)
      EXPECT_LT(dist(s.point(2 * i), segmentPoint(*curve, i, 0.5)), 1e-13);
  }

  // Limits and bad settings.
  auto rec = smooth(6, false);
  expectFailure(even(*rec, 100, 1001).failed, "(HCPIP3) Max number of subdivisions exceeded!");
  expectFailure(even(*rec, 10, 3).failed,
                "(HCPIP3) Max allowed number of interpolation points exceeded!");
  expectFailure(even(*rec, 100, 3, 5).failed, "(HCPIP3) Illegal return side specifier!");
  expectFailure(even(*rec, 100, 3, SideGiven, P(0, 0)).failed,
                "(HCPIP3) Encountered zero length plane normal vector!");
  // One point is copied, none gives nothing; neither is an error.
  rec->NOFFS = 1;
  const Subdivided one = even(*rec, 100, 3, 9);
  EXPECT_FALSE(one.failed);
  EXPECT_EQ(one.count, 1);
  EXPECT_EQ(one.point(1), rec->OFFPNT(1));
}

TEST_F(Evaluation, AdaptiveCurveFollowsTheSplineAndMarksItsPoints) {
  for (bool closed : {false, true}) {
    auto rec = smooth(8, closed);
    auto curve = solved(*rec);
    const Subdivided s = adaptive(*rec, 10000, 1e-4, SideNone, 1e-3);
    ASSERT_FALSE(s.failed);
    // Offset points are where the index says.
    for (int i = 1; i <= 8; ++i) {
      EXPECT_LT(dist(s.point(s.of(i)), rec->OFFPNT(i)), 1e-14);
      EXPECT_TRUE(s.flagged(s.of(i)));
    }
    // A closed curve does not repeat its first point.
    EXPECT_GT(dist(s.point(s.count), rec->OFFPNT(1)), 0.01);
    if (!closed) {
      EXPECT_EQ(s.point(s.count), rec->OFFPNT(8));
    }
    // Points flagged on the curve lie on it.
    int flagged = 0;
    for (int k = 1; k <= s.count; ++k) {
      if (!s.flagged(k)) continue;
      ++flagged;
      double best = 1e300;
      for (int i = 1; i <= (closed ? 8 : 7); ++i)
        for (int j = 0; j <= 2000; ++j)
          best = std::min(best, dist(s.point(k), segmentPoint(*curve, i, j / 2000.0)));
      EXPECT_LT(best, 2e-3) << "point " << k;
    }
    EXPECT_LT(flagged, s.count);
  }

  // Collinear points: the spline is the line itself, every segment flat
  // and giving only its end point.
  auto line = makeRecord({P(0, 0), P(1, 1), P(3, 3), P(4, 4)});
  const Subdivided straight = adaptive(*line, 100, 1e-6, SideNone, 1e-5, 100);
  ASSERT_FALSE(straight.failed);
  EXPECT_EQ(straight.count, 4);
  for (int i = 1; i <= 4; ++i) {
    EXPECT_EQ(straight.of(i), i);
    EXPECT_TRUE(straight.flagged(i));
  }
}

TEST_F(Evaluation, BothHalvesOfAMirroredCurveIndexTheGivenPoints) {
  // First point on the plane x = 0: the mirrored half comes first.
  // Last point on it: the given half comes first.
  for (bool firstOnPlane : {true, false}) {
    std::vector<Triple> points = {P(0, 1), P(1, 2), P(2.5, 2.2), P(4, 1)};
    if (!firstOnPlane)
      for (Triple& q : points) q(1) -= 4.0;
    auto rec = makeRecord(points);
    const Subdivided a = adaptive(*rec, 1000, 1e-4, SideBoth, 1e-9, 1000);
    ASSERT_FALSE(a.failed);
    for (int i = 1; i <= 4; ++i)
      EXPECT_EQ(a.point(a.of(i)), rec->OFFPNT(i))
          << (firstOnPlane ? "first" : "last") << " on the plane, point " << i;
    const Subdivided e = even(*rec, 1000, 5, SideBoth, XNormal, 1e-9);
    ASSERT_FALSE(e.failed);
    EXPECT_EQ(e.count, 25);
    for (int i = 1; i <= 4; ++i) EXPECT_LT(dist(e.point(e.of(i)), rec->OFFPNT(i)), 1e-14);
  }
}

TEST_F(Evaluation, AdaptiveSubdivisionReportsItsLimits) {
  auto rec = smooth(8, true);
  expectFailure(adaptive(*rec, 5, 1e-3, SideNone, 0.0, 100).failed,
                "(HCAIP3) Max allowed number of interpolation points exceeded!");
  // Room for every segment but the closing one: that one reports in the
  // words of the even subdivider.
  const Subdivided wide = adaptive(*rec, 10000, 1e-3);
  ASSERT_FALSE(wide.failed);
  const int beforeClosing = wide.of(8);
  ASSERT_GT(wide.count, beforeClosing);
  const Subdivided tight = adaptive(*rec, beforeClosing, 1e-3);
  expectFailure(tight.failed, "(HCPIP3) Max allowed number of interpolation points exceeded!");
  EXPECT_EQ(tight.count, beforeClosing);
}

}  // namespace
}  // namespace kntr::spline
