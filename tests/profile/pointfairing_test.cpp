#include "profile/pointfairing.h"

#include <gtest/gtest.h>

#include <cmath>
#include <memory>

#include "support/curve_builder.h"
#include "support/spline_helpers.h"

namespace kntr::profile {
namespace {

using testing::shown;

// A circle of 12 points with point 4 pushed outward.
class PointFairing : public testing::ProfileTest {
 protected:
  void SetUp() override {
    ProfileTest::SetUp();
    testing::setBox(-8, 8, -8, 8);
    std::vector<XY> points = testing::ellipse(12, 5, 5);
    points[3] = XY{1.3 * points[3].x, 1.3 * points[3].y};
    testing::addCurve(points, true);
  }
  std::unique_ptr<FairOutcome> outcome = std::make_unique<FairOutcome>();
};

TEST_F(PointFairing, FreeFairingPullsADentBackAndLeavesTheProfileAlone) {
  const ProfileData before = profile();
  FairSettings settings;
  settings.maxIterations = 20;
  bool failed = true;
  fairCurvePoint(1, 4, settings, *outcome, failed);
  ASSERT_FALSE(failed);
  EXPECT_TRUE(profile() == before);
  EXPECT_GE(outcome->iterations, 2);
  EXPECT_EQ(outcome->energyCount, outcome->iterations);
  EXPECT_LT(outcome->energies(outcome->energyCount), outcome->energies(1));
  EXPECT_EQ(outcome->start, (XY{before.PRPNTS(1, 4)(1), before.PRPNTS(1, 4)(2)}));
  EXPECT_LT(std::hypot(outcome->faired.x, outcome->faired.y) - 5.0, 0.5);
  EXPECT_EQ(outcome->direction, (XY{0, 0}));
}

TEST_F(PointFairing, NormalModeMovesAcrossTheSolvedTangent) {
  const spline::Triple t = spline::leading(testing::solvedCurve(1)->tangents(4));
  bool failed = true;
  fairCurvePoint(1, 4, FairSettings{FairMode::LeadingNormal, {}, true, -1.0, 3}, *outcome, failed);
  ASSERT_FALSE(failed);
  EXPECT_NEAR(outcome->direction.x * t(1) + outcome->direction.y * t(2), 0.0, 1e-9);
  const double dx = outcome->faired.x - outcome->start.x, dy = outcome->faired.y - outcome->start.y;
  EXPECT_GT(std::hypot(dx, dy), 0.1);
  EXPECT_NEAR(dx * t(1) + dy * t(2), 0.0, 1e-9);
}

TEST_F(PointFairing, RefusesPolylinesAndZeroDirections) {
  bool failed = false;
  type("\n");
  fairCurvePoint(1, 4, FairSettings{FairMode::GivenVector, {0, 0}, true, -1.0, 1}, *outcome,
                 failed);
  EXPECT_TRUE(failed);
  EXPECT_TRUE(shown(output(), "Direction vector cannot have zero length!"));
  profile().PRFTYP = PolylineProfile;
  type("\n");
  failed = false;
  fairCurvePoint(1, 4, FairSettings{}, *outcome, failed);
  EXPECT_TRUE(failed);
  EXPECT_TRUE(shown(output(), "Points cannot be faired for a polyline profile!"));
}

}  // namespace
}  // namespace kntr::profile
