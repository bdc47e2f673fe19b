#include "spline/knots.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numeric>
#include <random>
#include <vector>

#include "spline/record.h"
#include "spline/tangents.h"
#include "support/spline_helpers.h"

namespace kntr::spline {
namespace {

using testing::makeRecord;
using testing::P;
using testing::shown;
using Knots = testing::SplineTest;

constexpr double Pi = 3.141592653589793;

TEST_F(Knots, UniformRunsOneTwoThreeFour) {
  auto rec = makeRecord({P(0, 0), P(5, 0), P(5, 7), P(1, 1)}, true);
  bool failed = true;
  MKIKV3(ParamUniform, *rec, failed);
  ASSERT_FALSE(failed);
  for (int i = 1; i <= 4; ++i) EXPECT_EQ(rec->INCKNT(i), i);
  EXPECT_EQ(output(), "");
}

TEST_F(Knots, ChordLengthOpenAndClosed) {
  auto rec = makeRecord({P(0, 0), P(3, 4), P(3, 4, 12)});
  bool failed = true;
  MKIKV3(ParamChordLength, *rec, failed);
  ASSERT_FALSE(failed);
  EXPECT_DOUBLE_EQ(rec->INCKNT(1), 5.0);
  EXPECT_DOUBLE_EQ(rec->INCKNT(2), 12.0);
  rec->CLOSED = true;
  MKIKV3(ParamChordLength, *rec, failed);
  EXPECT_DOUBLE_EQ(rec->INCKNT(3), 13.0);
}

TEST_F(Knots, CentripetalOnTwoPointsIsTheChord) {
  auto rec = makeRecord({P(1, 1), P(4, 5)});
  bool failed = true;
  MKIKV3(ParamCentripetal, *rec, failed);
  ASSERT_FALSE(failed);
  EXPECT_NEAR(rec->INCKNT(1), 5.0, 1e-12);
}

TEST_F(Knots, CentripetalScalesToTheChordSumExceptTheClosingSegment) {
  // Chords 1, 4, 9 on an open curve: roots 1, 2, 3, scale 14 / 6.
  auto rec = makeRecord({P(0, 0), P(1, 0), P(1, 4), P(10, 4)});
  bool failed = true;
  MKIKV3(ParamCentripetal, *rec, failed);
  ASSERT_FALSE(failed);
  EXPECT_NEAR(rec->INCKNT(1), 14.0 / 6.0 * 1.0, 1e-12);
  EXPECT_NEAR(rec->INCKNT(2), 14.0 / 6.0 * 2.0, 1e-12);
  EXPECT_NEAR(rec->INCKNT(3), 14.0 / 6.0 * 3.0, 1e-12);

  // Closed square of side 4: chords 4, roots 2, scale 16 / 8 = 2; the
  // closing segment keeps its bare root.
  auto square = makeRecord({P(0, 0), P(4, 0), P(4, 4), P(0, 4)}, true);
  MKIKV3(ParamCentripetal, *square, failed);
  ASSERT_FALSE(failed);
  for (int i = 1; i <= 3; ++i) EXPECT_NEAR(square->INCKNT(i), 4.0, 1e-12);
  EXPECT_NEAR(square->INCKNT(4), 2.0, 1e-12);
}

TEST_F(Knots, CentripetalOnCoincidentPointsGivesZerosAndASingularSolve) {
  auto rec = makeRecord({P(2, 2), P(2, 2), P(2, 2)});
  bool failed = true;
  MKIKV3(ParamCentripetal, *rec, failed);
  ASSERT_FALSE(failed);
  for (int i = 1; i <= 3; ++i) EXPECT_EQ(rec->INCKNT(i), 0.0);
  auto solved = std::make_unique<HermiteCurve>();
  type("\n");
  HCTAN3(500, P(0, 0), P(1, 0), SideNone, 0.0, *rec, *solved, failed);
  EXPECT_TRUE(failed);
  EXPECT_TRUE(shown(output(), "(HCLEQ3) Found singular coefficient matrix for type 1 spline!"));
}

TEST_F(Knots, FoleyAtARightAngleAndSharperTurns) {
  // Chords 1 and 2 meeting at a right angle: the stretch is 1.5 * pi/2.
  auto rec = makeRecord({P(0, 0), P(1, 0), P(1, 2)});
  bool failed = true;
  MKIKV3(ParamFoley, *rec, failed);
  ASSERT_FALSE(failed);
  const double stretch = 1.5 * Pi / 2.0;
  EXPECT_NEAR(rec->INCKNT(1), 1.0 * (1.0 + stretch * 2.0 / 3.0), 1e-12);
  EXPECT_NEAR(rec->INCKNT(2), 2.0 * (1.0 + stretch * 1.0 / 3.0), 1e-12);

  // A sharper turn (45 degrees between the chords) is clipped to the same.
  auto sharp = makeRecord({P(0, 0), P(1, 0), P(1 - std::sqrt(2.0), std::sqrt(2.0))});
  MKIKV3(ParamFoley, *sharp, failed);
  ASSERT_FALSE(failed);
  EXPECT_NEAR(sharp->INCKNT(1), rec->INCKNT(1), 1e-12);
  EXPECT_NEAR(sharp->INCKNT(2), rec->INCKNT(2), 1e-12);

  // A straight run has no stretch at all.
  auto straight = makeRecord({P(0, 0), P(1, 0), P(3, 0)});
  MKIKV3(ParamFoley, *straight, failed);
  EXPECT_NEAR(straight->INCKNT(1), 1.0, 1e-12);
  EXPECT_NEAR(straight->INCKNT(2), 2.0, 1e-12);
}

TEST_F(Knots, FoleyOnTwoPointsIsTheChord) {
  auto rec = makeRecord({P(0, 0), P(3, 4)});
  bool failed = true;
  MKIKV3(ParamFoley, *rec, failed);
  ASSERT_FALSE(failed);
  EXPECT_NEAR(rec->INCKNT(1), 5.0, 1e-12);
}

TEST_F(Knots, FoleyClosedFirstIntervalWeighsTheAngleWithTheTwoLastChords) {
  // A 2 by 1 rectangle: chords 2, 1, 2, 1 and right angles everywhere.
  auto rec = makeRecord({P(0, 0), P(2, 0), P(2, 1), P(0, 1)}, true);
  bool failed = true;
  MKIKV3(ParamFoley, *rec, failed);
  ASSERT_FALSE(failed);
  const double s = 1.5 * Pi / 2.0;
  // Interval 1 takes d(3) / (d(3) + d(4)) = 2/3 at its start, where the
  // cyclic neighbour chord would give 1/3.
  EXPECT_NEAR(rec->INCKNT(1), 2.0 * (1.0 + s * 2.0 / 3.0 + s / 3.0), 1e-12);
  EXPECT_NEAR(rec->INCKNT(2), 1.0 * (1.0 + s * 2.0 / 3.0 + s * 2.0 / 3.0), 1e-12);
  EXPECT_NEAR(rec->INCKNT(3), 2.0 * (1.0 + s / 3.0 + s / 3.0), 1e-12);
  EXPECT_NEAR(rec->INCKNT(4), 1.0 * (1.0 + s * 2.0 / 3.0 + s * 2.0 / 3.0), 1e-12);
}

TEST_F(Knots, FallBacksAndErrors) {
  auto rec = makeRecord({P(0, 0), P(3, 4)});
  bool failed = true;
  type("\n");
  MKIKV3(7, *rec, failed);
  EXPECT_FALSE(failed);
  EXPECT_TRUE(shown(
      output(), "(MKIKV3) Illegal parameterization type specified - uses chorde length instead!"));
  EXPECT_DOUBLE_EQ(rec->INCKNT(1), 5.0);

  type("\n");
  rec->INCKNT(1) = 0.0;
  MKIKV3(ParamCurveLength, *rec, failed);
  EXPECT_FALSE(failed);
  EXPECT_TRUE(
      shown(output(),
            "(MKIKV3) Curve length parameterization is impossible - uses chorde length instead!"));
  EXPECT_DOUBLE_EQ(rec->INCKNT(1), 5.0);

  type("\n");
  rec->NOFFS = 1;
  MKIKV3(ParamChordLength, *rec, failed);
  EXPECT_TRUE(failed);
  EXPECT_TRUE(shown(output(), "(MKIKV3) At least 2 offset points must be given!"));
}

TEST_F(Knots, AngleAtAPoint) {
  EXPECT_NEAR(IQANG3(P(1, 0), P(0, 0), P(0, 1)), Pi / 2, 1e-15);
  EXPECT_EQ(IQANG3(P(1, 0), P(0, 0), P(2, 0)), 0.0);
  EXPECT_EQ(IQANG3(P(1, 0), P(0, 0), P(-2, 0)), Pi);
  EXPECT_NEAR(IQANG3(P(1, 0, 0), P(0, 0, 0), P(1, 1, 0)), Pi / 4, 1e-15);
  // Nearly opposite legs snap to pi; a leg of no length gives pi/2.
  EXPECT_EQ(IQANG3(P(1, 1e-9), P(0, 0), P(-1, 0)), Pi);
  EXPECT_NEAR(IQANG3(P(0, 0), P(0, 0), P(1, 0)), Pi / 2, 1e-15);
}

TEST_F(Knots, NearestPointOnASegment) {
  Triple n;
  bool failed = true;
  IQNPLS(P(1, 5), P(0, 0), P(4, 0), n, failed);
  EXPECT_FALSE(failed);
  EXPECT_NEAR(testing::dist(n, P(1, 0)), 0.0, 1e-15);
  IQNPLS(P(-3, 1), P(0, 0), P(4, 0), n, failed);
  EXPECT_EQ(testing::dist(n, P(0, 0)), 0.0);
  IQNPLS(P(9, -1), P(0, 0), P(4, 0), n, failed);
  EXPECT_EQ(testing::dist(n, P(4, 0)), 0.0);
  IQNPLS(P(9, -1), P(2, 2), P(2, 2), n, failed);
  EXPECT_EQ(testing::dist(n, P(2, 2)), 0.0);
}

TEST_F(Knots, BoxesOverlapWhenTheyTouch) {
  EXPECT_TRUE(BOXOVL(0, 1, 0, 1, 1, 2, 1, 2));
  EXPECT_TRUE(BOXOVL(0, 4, 0, 4, 1, 2, 1, 2));
  EXPECT_FALSE(BOXOVL(0, 1, 0, 1, 1.0001, 2, 0, 1));
  EXPECT_FALSE(BOXOVL(0, 1, 0, 1, 0, 1, -2, -0.5));
}

TEST_F(Knots, HeapSortOrdersLikeAStableSort) {
  const unsigned seed = 20261;
  std::mt19937 random(seed);
  for (int round = 0; round < 50; ++round) {
    const int n = 1 + static_cast<int>(random() % 60);
    std::vector<double> doubles(static_cast<std::size_t>(n));
    std::vector<int> ints(static_cast<std::size_t>(n));
    for (int i = 0; i < n; ++i) {
      ints[static_cast<std::size_t>(i)] = static_cast<int>(random() % 7);
      doubles[static_cast<std::size_t>(i)] = static_cast<double>(random() % 11) / 3.0;
    }
    std::vector<int> expectD(static_cast<std::size_t>(n)), expectI(static_cast<std::size_t>(n));
    std::iota(expectD.begin(), expectD.end(), 1);
    std::iota(expectI.begin(), expectI.end(), 1);
    std::stable_sort(expectD.begin(), expectD.end(), [&](int a, int b) {
      return doubles[static_cast<std::size_t>(a - 1)] < doubles[static_cast<std::size_t>(b - 1)];
    });
    std::stable_sort(expectI.begin(), expectI.end(), [&](int a, int b) {
      return ints[static_cast<std::size_t>(a - 1)] < ints[static_cast<std::size_t>(b - 1)];
    });
    std::vector<int> orderD(static_cast<std::size_t>(n)), orderI(static_cast<std::size_t>(n));
    bool failed = true;
    IXSRTD(n, View1<const double>(doubles.data(), n), View1<int>(orderD.data(), n), failed);
    EXPECT_FALSE(failed);
    IXSRTI(n, View1<const int>(ints.data(), n), View1<int>(orderI.data(), n), failed);
    EXPECT_EQ(orderD, expectD) << "seed " << seed << " round " << round;
    EXPECT_EQ(orderI, expectI) << "seed " << seed << " round " << round;
  }
  // A count of 0 leaves the order alone.
  int untouched[1] = {42};
  double key[1] = {1.0};
  bool failed = true;
  IXSRTD(0, View1<const double>(key, 1), View1<int>(untouched, 1), failed);
  EXPECT_EQ(untouched[0], 42);
}

}  // namespace
}  // namespace kntr::spline
