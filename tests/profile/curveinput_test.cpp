#include "profile/curveinput.h"

#include <gtest/gtest.h>

#include "profile/block.h"
#include "support/curve_builder.h"

namespace kntr::profile {
namespace {

class KeyIn : public kntr::testing::ProfileTest {
 protected:
  void SetUp() override {
    ProfileTest::SetUp();
    resize(80, 24);
    kntr::testing::setBox(0.0, 10.0, -5.0, 5.0);
  }
  ProfileData& p = profile();
};

TEST_F(KeyIn, BoxRangesMustBeOrderedAndModifyOffersThePresentValues) {
  type(
      "3,1\n\n"  // refused, then RETURN for the error
      "1,3\n"
      "-2,2\n");
  bool cancelled = true, status = true;
  INBBOX(false, cancelled, status);
  EXPECT_FALSE(status);
  EXPECT_FALSE(cancelled);
  EXPECT_EQ(p.PRBBOX, (Array1<double, 4>{{1, 3, -2, 2}}));
  const std::string shown = output();
  EXPECT_NE(shown.find("Max X-coordinate must be larger than min!"), std::string::npos);

  // Modify: an empty answer keeps X; an abort at Y leaves the old Y.
  type("\n$\n");
  INBBOX(true, cancelled, status);
  EXPECT_TRUE(cancelled);
  EXPECT_FALSE(status);
  EXPECT_EQ(p.PRBBOX, (Array1<double, 4>{{1, 3, -2, 2}}));
  EXPECT_NE(output().find("(default  1.000E+00,  3.000E+00)"), std::string::npos);
}

TEST_F(KeyIn, FirstCurveAsksTypeAndReferenceThenPoints) {
  type(
      "1\n"        // cubic spline profile
      "2.5,1\n"    // reference point
      "0,0\n1\n"   // point 1, CC
      "20,0\n2\n"  // point 2 beyond the box: stored at the edge, knuckle
      "5,-9\n\n"   // point 3 below the box, default type (CC)
      "\n"         // DONE
      "yes\n");    // close the curve
  bool status = false;
  KYPRCV(status);
  EXPECT_TRUE(status);  // a key-in always ends this way
  // The profile type, given types and knuckle weights are read back from a
  // saved key-in in session_print_profile.
  ASSERT_EQ(p.NPRCRV, 1);
  EXPECT_EQ(p.PRREFP(1), 2.5);
  ASSERT_EQ(p.NPRPNT(1), 3);
  EXPECT_EQ(p.PRPNTS(1, 2)(1), 10.0);
  EXPECT_EQ(p.PRPNTS(1, 3)(2), -5.0);
  EXPECT_EQ(p.PRPTYP(1, 3), ContinuousCurvature);
  EXPECT_TRUE(p.PRCLSD(1));
  EXPECT_EQ(p.CURCRV, 1);
  EXPECT_FALSE(p.MODFLG);
}

TEST_F(KeyIn, CoincidentPointsAreIgnoredAndReturningToTheStartOffersClosure) {
  p.NPRCRV = 1;
  p.PRFTYP = PolylineProfile;
  type(
      "1,1\n"
      "1.001,1\n\n"  // coincides with the previous point: error, RETURN
      "4,1\n"
      "4,4\n"
      "1,1.001\n"  // back on the first point: close? default yes
      "\n");
  bool status = true;
  INPRPN(1, status);
  EXPECT_FALSE(status);
  EXPECT_NE(output().find("Two points was coincidental, ignoring last point!"), std::string::npos);
  EXPECT_TRUE(p.PRCLSD(1));
  // The closing point is counted but not stored.
  EXPECT_EQ(p.NPRPNT(1), 4);
  EXPECT_EQ(p.PRPTYP(1, 3), Knuckle);
  EXPECT_EQ(p.PRKWGT(1, 3), 1.0);
}

TEST_F(KeyIn, TwoPointCurvesAreNotOfferedClosure) {
  p.NPRCRV = 1;
  type("1,1\n\n2,2\n\n\n");  // two points of the default type, DONE
  bool status = true;
  INPRPN(1, status);
  EXPECT_FALSE(status);
  EXPECT_EQ(p.NPRPNT(1), 2);
  EXPECT_FALSE(p.PRCLSD(1));
  EXPECT_EQ(output().find("OK to close"), std::string::npos);
}

TEST_F(KeyIn, AnAbortOrTheLimitOfTenCurvesLeavesNoNewCurve) {
  p.NPRCRV = 2;
  type(
      "3,3\n\n"  // one point
      "$\n");    // then abort
  bool status = false;
  KYPRCV(status);  // a third curve: no profile type question
  EXPECT_TRUE(status);
  EXPECT_EQ(p.NPRCRV, 2);

  p.NPRCRV = MaxCurves;
  type("\n");
  KYPRCV(status);
  EXPECT_FALSE(status);
  EXPECT_NE(output().find("Max number of profile curves reached!"), std::string::npos);
  EXPECT_EQ(p.NPRCRV, MaxCurves);
}

TEST_F(KeyIn, DeletionMovesTheFollowingCurvesDownAndChoosesTheCurrentOne) {
  p.NPRCRV = 4;
  for (int c = 1; c <= 4; ++c) {
    p.NPRPNT(c) = c + 1;
    p.PRPARM(c) = c;
    p.PRCLSD(c) = c == 3;
    for (int j = 1; j <= c + 1; ++j) {
      p.PRPNTS(c, j)(1) = 10.0 * c + j;
      p.PRTANL(c, j) = Array1<double, 2>{{1.0 * c, -1.0 * c}};
    }
  }
  p.CURCRV = 1;
  bool status = true;
  deleteCurrentCurve(status);
  EXPECT_FALSE(status);
  EXPECT_EQ(p.NPRCRV, 3);
  EXPECT_EQ(p.CURCRV, 1);
  EXPECT_EQ(p.NPRPNT(2), 4);
  EXPECT_TRUE(p.PRCLSD(2));
  EXPECT_EQ(p.PRPNTS(2, 4)(1), 34.0);
  EXPECT_EQ(p.PRTANL(2, 1)(1), 3.0);
  // The trailing length and the parameterization stay with the slot.
  EXPECT_EQ(p.PRTANL(2, 1)(2), -2.0);
  EXPECT_EQ(p.PRPARM(2), 2);

  p.CURCRV = 3;
  deleteCurrentCurve(status);
  EXPECT_EQ(p.NPRCRV, 2);
  EXPECT_EQ(p.CURCRV, 2);
  type("\n");
  RMPRCV(3, status);
  EXPECT_TRUE(status);
  EXPECT_NE(output().find("(RMPRCV) Illegal profile curve index!"), std::string::npos);
}

}  // namespace
}  // namespace kntr::profile
