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
using testing::shown;
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

// Distance from p to a dense sampling of the polygon's curve.
double distanceToCurve(const Triple& p, const Bezier& b) {
  double best = 1e300;
  for (int j = 0; j <= 20000; ++j) best = std::min(best, dist(p, bernstein(b, j / 20000.0)));
  return best;
}

Bezier curvedPolygon() {
  Bezier b;
  b(1) = P(0, 0, 0);
  b(2) = P(1, 3, 1);
  b(3) = P(4, 3, -1);
  b(4) = P(5, 0, 2);
  return b;
}

TEST_F(Evaluation, BezierPolygonOfAHermiteSegment) {
  Bezier b;
  bool flat = true, failed = true;
  HCBEZ3(P(0, 0), P(3, 0), P(3, 3), P(3, -3), 1e-9, b, flat, failed);
  EXPECT_FALSE(failed);
  EXPECT_FALSE(flat);
  EXPECT_EQ(b(2), P(1, 1));
  EXPECT_EQ(b(3), P(2, 1));
  // Same curve as the Hermite basis.
  for (double t : {0.1, 0.5, 0.8})
    EXPECT_LT(dist(bernstein(b, t), testing::hermitePoint(P(0, 0), P(3, 0), P(3, 3), P(3, -3), t)),
              1e-14);
  HCBEZ3(P(0, 0), P(3, 0), P(3, 0), P(3, 0), 1e-9, b, flat, failed);
  EXPECT_TRUE(flat);
}

TEST_F(Evaluation, SplitHalvesCarryTheCurve) {
  const Bezier b = curvedPolygon();
  Bezier left, right;
  bool failed = true;
  for (double t : {0.5, 0.3}) {
    HCSPL3(b, t, left, right, failed);
    EXPECT_FALSE(failed);
    EXPECT_LT(dist(left(4), bernstein(b, t)), 1e-14);
    EXPECT_EQ(left(4), right(1));
    for (double s : {0.25, 0.6}) {
      EXPECT_LT(dist(bernstein(left, s), bernstein(b, s * t)), 1e-13);
      EXPECT_LT(dist(bernstein(right, s), bernstein(b, t + s * (1 - t))), 1e-13);
    }
  }
  double chord = 0, length = 0;
  IQBZLN(b, chord, length, failed);
  EXPECT_NEAR(chord, std::sqrt(29.0), 1e-14);
  EXPECT_NEAR(length, std::sqrt(11.0) + std::sqrt(13.0) + std::sqrt(19.0), 1e-14);
}

TEST_F(Evaluation, AdaptiveSubdivisionGivesAChainOfFlatPolygons) {
  const Bezier b = curvedPolygon();
  std::vector<Triple> out(10000);
  int count = 0;
  bool failed = true;
  const double tolerance = 1e-3;
  SBDVP3(tolerance, 10000, b, count, View1<Triple>(out.data(), 10000), failed);
  ASSERT_FALSE(failed);
  ASSERT_GT(count, 4);
  EXPECT_EQ((count - 1) % 3, 0);
  EXPECT_EQ(out[0], b(1));
  EXPECT_EQ(out[static_cast<std::size_t>(count - 1)], b(4));
  for (int k = 1; k + 3 <= count; k += 3) {
    Bezier piece;
    for (int j = 1; j <= 4; ++j) piece(j) = out[static_cast<std::size_t>(k + j - 2)];
    double chord = 0, length = 0;
    IQBZLN(piece, chord, length, failed);
    EXPECT_LT(length - chord, tolerance);
    EXPECT_LT(distanceToCurve(piece(1), b), 1e-3);
  }

  // Chord and legs exactly equal: the polygon as it stands.
  Bezier straight;
  straight(1) = P(0, 0);
  straight(2) = P(1, 0);
  straight(3) = P(2, 0);
  straight(4) = P(4, 0);
  SBDVP3(0.0, 10000, straight, count, View1<Triple>(out.data(), 10000), failed);
  EXPECT_FALSE(failed);
  EXPECT_EQ(count, 4);

  // A tolerance of 0 on a true curve runs the stack over.
  type("\n");
  SBDVP3(0.0, 10000, b, count, View1<Triple>(out.data(), 10000), failed);
  EXPECT_TRUE(failed);
  EXPECT_TRUE(shown(output(), "(SBDVP3) Internal subdivision stack overflowed!"));
  type("\n");
  SBDVP3(1e-6, 10, b, count, View1<Triple>(out.data(), 10000), failed);
  EXPECT_TRUE(failed);
  EXPECT_TRUE(shown(output(), "(SBDVP3) Max number of allocated polygon points exceeded!"));
}

std::unique_ptr<SplineRecord> smooth(int n, bool closed) {
  std::vector<Triple> points;
  for (int i = 0; i < n; ++i) {
    const double a = 2 * 3.141592653589793 * i / n;
    points.push_back(closed ? P(4 * std::cos(a), 3 * std::sin(a)) : P(i, std::sin(i)));
  }
  auto rec = makeRecord(points, closed);
  bool failed = true;
  MKIKV3(ParamChordLength, *rec, failed);
  return rec;
}

TEST_F(Evaluation, EvenSubdivisionWithThreePointsPerSegment) {
  auto solved = std::make_unique<HermiteCurve>();
  for (bool closed : {false, true}) {
    auto rec = smooth(6, closed);
    bool failed = true;
    HCTAN3(500, Origin, XNormal, SideNone, 0.0, *rec, *solved, failed);
    ASSERT_FALSE(failed);
    std::vector<Triple> out(100);
    std::vector<int> index(6);
    int count = 0;
    HCPIP3(100, 3, Origin, XNormal, SideNone, 1e-3, *rec, count, View1<Triple>(out.data(), 100),
           View1<int>(index.data(), 6), failed);
    ASSERT_FALSE(failed);
    EXPECT_EQ(count, closed ? 12 : 11);
    for (int i = 1; i <= 6; ++i) {
      EXPECT_EQ(index[static_cast<std::size_t>(i - 1)], 2 * i - 1);
      EXPECT_LT(dist(out[static_cast<std::size_t>(2 * i - 2)], rec->OFFPNT(i)), 1e-14);
    }
    const int segments = closed ? 6 : 5;
    for (int i = 1; i <= segments; ++i)
      EXPECT_LT(dist(out[static_cast<std::size_t>(2 * i - 1)], segmentPoint(*solved, i, 0.5)),
                1e-13);
  }
}

TEST_F(Evaluation, EvenSubdivisionReportsItsLimits) {
  auto rec = smooth(6, false);
  std::vector<Triple> out(100);
  std::vector<int> index(6);
  int count = 0;
  bool failed = false;
  type("\n");
  HCPIP3(100, 1001, Origin, XNormal, SideNone, 0.0, *rec, count, View1<Triple>(out.data(), 100),
         View1<int>(index.data(), 6), failed);
  EXPECT_TRUE(failed);
  EXPECT_TRUE(shown(output(), "(HCPIP3) Max number of subdivisions exceeded!"));
  type("\n");
  HCPIP3(10, 3, Origin, XNormal, SideNone, 0.0, *rec, count, View1<Triple>(out.data(), 100),
         View1<int>(index.data(), 6), failed);
  EXPECT_TRUE(failed);
  EXPECT_TRUE(shown(output(), "(HCPIP3) Max allowed number of interpolation points exceeded!"));
  type("\n");
  HCPIP3(100, 3, Origin, XNormal, 5, 0.0, *rec, count, View1<Triple>(out.data(), 100),
         View1<int>(index.data(), 6), failed);
  EXPECT_TRUE(shown(output(), "(HCPIP3) Illegal return side specifier!"));
  type("\n");
  HCPIP3(100, 3, Origin, P(0, 0), SideGiven, 0.0, *rec, count, View1<Triple>(out.data(), 100),
         View1<int>(index.data(), 6), failed);
  EXPECT_TRUE(shown(output(), "(HCPIP3) Encountered zero length plane normal vector!"));
  // One point is copied, none gives nothing; neither is an error.
  rec->NOFFS = 1;
  HCPIP3(100, 3, Origin, XNormal, 9, 0.0, *rec, count, View1<Triple>(out.data(), 100),
         View1<int>(index.data(), 6), failed);
  EXPECT_FALSE(failed);
  EXPECT_EQ(count, 1);
  EXPECT_EQ(out[0], rec->OFFPNT(1));
}

TEST_F(Evaluation, AdaptiveCurveFollowsTheSplineAndMarksItsPoints) {
  auto solved = std::make_unique<HermiteCurve>();
  for (bool closed : {false, true}) {
    auto rec = smooth(8, closed);
    bool failed = true;
    HCTAN3(500, Origin, XNormal, SideNone, 0.0, *rec, *solved, failed);
    std::vector<Triple> out(10000);
    std::vector<int> index(8);
    auto onCurve = std::make_unique<bool[]>(10000);
    int count = 0;
    HCAIP3(10000, 1e-4, Origin, XNormal, SideNone, 1e-3, *rec, count,
           View1<Triple>(out.data(), 10000), View1<int>(index.data(), 8),
           View1<bool>(onCurve.get(), 10000), failed);
    ASSERT_FALSE(failed);
    // Offset points are where the index says.
    for (int i = 1; i <= 8; ++i) {
      const int k = index[static_cast<std::size_t>(i - 1)];
      EXPECT_LT(dist(out[static_cast<std::size_t>(k - 1)], rec->OFFPNT(i)), 1e-14);
      EXPECT_TRUE(onCurve[static_cast<std::size_t>(k - 1)]);
    }
    // A closed curve does not repeat its first point.
    EXPECT_GT(dist(out[static_cast<std::size_t>(count - 1)], rec->OFFPNT(1)), 0.01);
    if (!closed) {
      EXPECT_EQ(out[static_cast<std::size_t>(count - 1)], rec->OFFPNT(8));
    }
    // Points flagged on the curve lie on it.
    int flagged = 0;
    for (int k = 1; k <= count; ++k) {
      if (!onCurve[static_cast<std::size_t>(k - 1)]) continue;
      ++flagged;
      double best = 1e300;
      const int segments = closed ? 8 : 7;
      for (int i = 1; i <= segments; ++i)
        for (int j = 0; j <= 2000; ++j)
          best = std::min(best, dist(out[static_cast<std::size_t>(k - 1)],
                                     segmentPoint(*solved, i, j / 2000.0)));
      EXPECT_LT(best, 2e-3) << "point " << k;
    }
    EXPECT_LT(flagged, count);
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
    bool failed = true;
    MKIKV3(ParamChordLength, *rec, failed);
    std::vector<Triple> out(1000);
    std::vector<int> index(4);
    auto onCurve = std::make_unique<bool[]>(1000);
    int count = 0;
    HCAIP3(1000, 1e-4, Origin, XNormal, SideBoth, 1e-9, *rec, count,
           View1<Triple>(out.data(), 1000), View1<int>(index.data(), 4),
           View1<bool>(onCurve.get(), 1000), failed);
    ASSERT_FALSE(failed);
    for (int i = 1; i <= 4; ++i)
      EXPECT_EQ(out[static_cast<std::size_t>(index[static_cast<std::size_t>(i - 1)] - 1)],
                rec->OFFPNT(i))
          << (firstOnPlane ? "first" : "last") << " on the plane, point " << i;
    HCPIP3(1000, 5, Origin, XNormal, SideBoth, 1e-9, *rec, count, View1<Triple>(out.data(), 1000),
           View1<int>(index.data(), 4), failed);
    ASSERT_FALSE(failed);
    EXPECT_EQ(count, 25);
    for (int i = 1; i <= 4; ++i)
      EXPECT_LT(dist(out[static_cast<std::size_t>(index[static_cast<std::size_t>(i - 1)] - 1)],
                     rec->OFFPNT(i)),
                1e-14);
  }
}

TEST_F(Evaluation, AStraightSegmentGivesOnlyItsEndPoint) {
  // Collinear points: the spline is the line itself, every segment flat.
  auto rec = makeRecord({P(0, 0), P(1, 1), P(3, 3), P(4, 4)});
  bool failed = true;
  MKIKV3(ParamChordLength, *rec, failed);
  std::vector<Triple> out(100);
  std::vector<int> index(4);
  auto onCurve = std::make_unique<bool[]>(100);
  int count = 0;
  HCAIP3(100, 1e-6, Origin, XNormal, SideNone, 1e-5, *rec, count, View1<Triple>(out.data(), 100),
         View1<int>(index.data(), 4), View1<bool>(onCurve.get(), 100), failed);
  ASSERT_FALSE(failed);
  EXPECT_EQ(count, 4);
  for (int i = 1; i <= 4; ++i) {
    EXPECT_EQ(index[static_cast<std::size_t>(i - 1)], i);
    EXPECT_TRUE(onCurve[static_cast<std::size_t>(i - 1)]);
  }
}

TEST_F(Evaluation, AdaptiveSubdivisionReportsItsLimits) {
  auto rec = smooth(8, true);
  std::vector<Triple> out(100);
  std::vector<int> index(8);
  auto onCurve = std::make_unique<bool[]>(100);
  int count = 0;
  bool failed = false;
  type("\n");
  HCAIP3(5, 1e-3, Origin, XNormal, SideNone, 0.0, *rec, count, View1<Triple>(out.data(), 100),
         View1<int>(index.data(), 8), View1<bool>(onCurve.get(), 100), failed);
  EXPECT_TRUE(failed);
  EXPECT_TRUE(shown(output(), "(HCAIP3) Max allowed number of interpolation points exceeded!"));
  // Room for every segment but the closing one: that one reports in the
  // words of the even subdivider.
  std::vector<Triple> wide(10000);
  auto wideFlags = std::make_unique<bool[]>(10000);
  HCAIP3(10000, 1e-3, Origin, XNormal, SideNone, 0.0, *rec, count,
         View1<Triple>(wide.data(), 10000), View1<int>(index.data(), 8),
         View1<bool>(wideFlags.get(), 10000), failed);
  ASSERT_FALSE(failed);
  const int beforeClosing = index[7];
  ASSERT_GT(count, beforeClosing);
  type("\n");
  HCAIP3(beforeClosing, 1e-3, Origin, XNormal, SideNone, 0.0, *rec, count,
         View1<Triple>(wide.data(), 10000), View1<int>(index.data(), 8),
         View1<bool>(wideFlags.get(), 10000), failed);
  EXPECT_TRUE(failed);
  EXPECT_TRUE(shown(output(), "(HCPIP3) Max allowed number of interpolation points exceeded!"));
  EXPECT_EQ(count, beforeClosing);
}

}  // namespace
}  // namespace kntr::spline
