#include "spline/knots.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numeric>
#include <random>
#include <vector>

#include "framework/state.h"
#include "framework/text.h"
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

TEST_F(Knots, EachParameterizationAgainstItsClosedForm) {
  const double s = 1.5 * Pi / 2.0;  // Foley's stretch at a right angle (and sharper)
  const double r2 = std::sqrt(2.0);
  struct Case {
    const char* what;
    int param;
    std::vector<Triple> points;
    bool closed;
    std::vector<double> knots;
    double tolerance;
  };
  const Case cases[] = {
      {"uniform", ParamUniform, {P(0, 0), P(5, 0), P(5, 7), P(1, 1)}, true, {1, 2, 3, 4}, 0.0},
      {"chord", ParamChordLength, {P(0, 0), P(3, 4), P(3, 4, 12)}, false, {5, 12}, 0.0},
      {"closed chord", ParamChordLength, {P(0, 0), P(3, 4), P(3, 4, 12)}, true, {5, 12, 13}, 0.0},
      {"centripetal on two points", ParamCentripetal, {P(1, 1), P(4, 5)}, false, {5}, 1e-12},
      // Chords 1, 4, 9: roots 1, 2, 3, scaled by 14 / 6 to the chord sum.
      {"centripetal",
       ParamCentripetal,
       {P(0, 0), P(1, 0), P(1, 4), P(10, 4)},
       false,
       {14.0 / 6.0, 28.0 / 6.0, 42.0 / 6.0},
       1e-12},
      // A 4 by 1 rectangle: chords 4, 1, 4, 1 and roots 2, 1, 2, 1, scaled by
      // 10 / 6, the closing chord counted; the closing segment keeps its
      // bare root.
      {"closed centripetal",
       ParamCentripetal,
       {P(0, 0), P(4, 0), P(4, 1), P(0, 1)},
       true,
       {10.0 / 3.0, 5.0 / 3.0, 10.0 / 3.0, 1},
       1e-12},
      {"coincident centripetal",
       ParamCentripetal,
       {P(2, 2), P(2, 2), P(2, 2)},
       false,
       {0, 0, 0},
       0},
      // Chords 1 and 2 at a right angle; a sharper turn is clipped to it,
      // a straight run has no stretch.
      {"Foley at a right angle",
       ParamFoley,
       {P(0, 0), P(1, 0), P(1, 2)},
       false,
       {1.0 + s * 2.0 / 3.0, 2.0 * (1.0 + s / 3.0)},
       1e-12},
      {"Foley at 45 degrees",
       ParamFoley,
       {P(0, 0), P(1, 0), P(1 - r2, r2)},
       false,
       {1.0 + s * 2.0 / 3.0, 2.0 * (1.0 + s / 3.0)},
       1e-12},
      {"Foley straight", ParamFoley, {P(0, 0), P(1, 0), P(3, 0)}, false, {1, 2}, 1e-12},
      {"Foley on two points", ParamFoley, {P(0, 0), P(3, 4)}, false, {5}, 1e-12},
      // A closed 2 by 1 rectangle: interval 1 takes d(3) / (d(3) + d(4)) =
      // 2/3 at its start, where the cyclic neighbour chord would give 1/3.
      {"closed Foley",
       ParamFoley,
       {P(0, 0), P(2, 0), P(2, 1), P(0, 1)},
       true,
       {2.0 * (1.0 + s * 2.0 / 3.0 + s / 3.0), 1.0 + s * 4.0 / 3.0, 2.0 * (1.0 + s * 2.0 / 3.0),
        1.0 + s * 4.0 / 3.0},
       1e-12},
  };
  for (const Case& c : cases) {
    auto rec = makeRecord(c.points, c.closed);
    bool failed = true;
    MKIKV3(c.param, *rec, failed);
    ASSERT_FALSE(failed) << c.what;
    for (std::size_t i = 0; i < c.knots.size(); ++i)
      EXPECT_NEAR(rec->INCKNT(static_cast<int>(i) + 1), c.knots[i], c.tolerance)
          << c.what << ", knot " << i + 1;
  }
  EXPECT_EQ(output(), "");
}

TEST_F(Knots, FallBacksAndErrors) {
  // Zero knots of coincident points make a singular solve.
  auto same = makeRecord({P(2, 2), P(2, 2), P(2, 2)});
  bool failed = true;
  MKIKV3(ParamCentripetal, *same, failed);
  auto solved = std::make_unique<HermiteCurve>();
  HCTAN3(500, P(0, 0), P(1, 0), SideNone, 0.0, *same, *solved, failed);
  expectFailure(failed, "(HCLEQ3) Found singular coefficient matrix for type 1 spline!");

  auto rec = makeRecord({P(0, 0), P(3, 4)});
  MKIKV3(7, *rec, failed);
  EXPECT_FALSE(failed);
  EXPECT_TRUE(shown(
      output(), "(MKIKV3) Illegal parameterization type specified - uses chorde length instead!"));
  EXPECT_DOUBLE_EQ(rec->INCKNT(1), 5.0);
  rec->INCKNT(1) = 0.0;
  MKIKV3(ParamCurveLength, *rec, failed);
  EXPECT_FALSE(failed);
  EXPECT_TRUE(
      shown(output(),
            "(MKIKV3) Curve length parameterization is impossible - uses chorde length instead!"));
  // A note, shown as a message and not as an error.
  static std::string kind;
  framework::graphicsTextHooks().errorBox = [](std::string_view) { kind = "error"; };
  framework::graphicsTextHooks().messageBox = [](std::string_view) { kind = "message"; };
  framework::program().outputDevice = framework::DeviceGraphics;
  MKIKV3(ParamCurveLength, *rec, failed);
  framework::program().outputDevice = framework::DeviceConsole;
  framework::graphicsTextHooks() = {};
  EXPECT_EQ(kind, "message");
  EXPECT_DOUBLE_EQ(rec->INCKNT(1), 5.0);
  rec->NOFFS = 1;
  MKIKV3(ParamChordLength, *rec, failed);
  expectFailure(failed, "(MKIKV3) At least 2 offset points must be given!");
}

TEST_F(Knots, AnglesNearestPointsAndBoxes) {
  EXPECT_NEAR(IQANG3(P(1, 0), P(0, 0), P(0, 1)), Pi / 2, 1e-15);
  EXPECT_EQ(IQANG3(P(1, 0), P(0, 0), P(2, 0)), 0.0);
  EXPECT_EQ(IQANG3(P(1, 0), P(0, 0), P(-2, 0)), Pi);
  EXPECT_NEAR(IQANG3(P(1, 0, 0), P(0, 0, 0), P(1, 1, 0)), Pi / 4, 1e-15);
  // Nearly opposite legs snap to pi; a leg of no length gives pi/2.
  EXPECT_EQ(IQANG3(P(1, 1e-9), P(0, 0), P(-1, 0)), Pi);
  EXPECT_NEAR(IQANG3(P(0, 0), P(0, 0), P(1, 0)), Pi / 2, 1e-15);

  // The foot of the perpendicular, clamped to the segment's ends.
  struct Foot {
    Triple p, a, b, foot;
    double tolerance;
  };
  for (const Foot& f : {Foot{P(1, 5), P(0, 0), P(4, 0), P(1, 0), 1e-15},
                        Foot{P(-3, 1), P(0, 0), P(4, 0), P(0, 0), 0.0},
                        Foot{P(9, -1), P(0, 0), P(4, 0), P(4, 0), 0.0},
                        Foot{P(9, -1), P(2, 2), P(2, 2), P(2, 2), 0.0}}) {
    Triple n;
    bool failed = true;
    IQNPLS(f.p, f.a, f.b, n, failed);
    EXPECT_FALSE(failed);
    EXPECT_LE(testing::dist(n, f.foot), f.tolerance);
  }

  // Boxes overlap when they touch.
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
    const std::size_t un = static_cast<std::size_t>(n);
    std::vector<double> doubles(un);
    std::vector<int> ints(un);
    for (std::size_t i = 0; i < un; ++i) {
      ints[i] = static_cast<int>(random() % 7);
      doubles[i] = static_cast<double>(random() % 11) / 3.0;
    }
    std::vector<int> expectD(un), expectI(un), orderD(un), orderI(un);
    std::iota(expectD.begin(), expectD.end(), 1);
    std::iota(expectI.begin(), expectI.end(), 1);
    std::stable_sort(expectD.begin(), expectD.end(), [&](int a, int b) {
      return doubles[static_cast<std::size_t>(a - 1)] < doubles[static_cast<std::size_t>(b - 1)];
    });
    std::stable_sort(expectI.begin(), expectI.end(), [&](int a, int b) {
      return ints[static_cast<std::size_t>(a - 1)] < ints[static_cast<std::size_t>(b - 1)];
    });
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
