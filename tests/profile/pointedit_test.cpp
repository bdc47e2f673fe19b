// Point editing without the window: the point pick (IQPPNT), the exact
// point of a segment for the starred insertions, FTBBOX, and the undo ring.
#include "profile/pointedit.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "framework/state.h"
#include "graphics/plotstate.h"
#include "profile/block.h"
#include "profile/datafile.h"
#include "profile/pointpick.h"
#include "profile/undo.h"
#include "support/curve_builder.h"
#include "support/scratch_directory.h"
#include "support/spline_helpers.h"

namespace kntr::profile {
namespace {

using testing::addCurve;
using testing::setBox;
using testing::shown;

// Memory console in batch mode (messages do not wait), a fresh block, plot
// state and undo ring, and the view of the box 0..10 x 0..10, so that a
// pick reaches 0.03 * 10 = 0.3.
class PointEdit : public testing::ProfileTest {
 protected:
  void SetUp() override {
    ProfileTest::SetUp();
    framework::program().executionMode = framework::ModeBatch;
    CLUNDO();
    setBox(0, 10, 0, 10);
    graphics::G2SCAL(0, 10, 0, 10);
  }
  void TearDown() override {
    CLUNDO();
    ProfileTest::TearDown();
  }

  struct Pick {
    int curve = 0, point = 0, result = -1;
  };
  static Pick pick(double x, double y) {
    Pick r;
    bool status = true;
    IQPPNT(x, y, r.curve, r.point, r.result, status);
    EXPECT_FALSE(status);
    return r;
  }
};

// Distances here are exact in binary, so the ratio 2 is met exactly.
TEST_F(PointEdit, APickIsClearOnlyWhenTheSecondPointIsTwiceAsFar) {
  addCurve({{4.125, 4}, {3.75, 4}}, false);
  // 0.125 and 0.25: exactly twice, the nearer one cleanly.
  Pick p = pick(4, 4);
  EXPECT_EQ(p.result, PointFound);
  EXPECT_EQ(p.point, 1);
  // The second a little nearer than twice: ambiguous, the nearest named.
  profile().PRPNTS(1, 2)(1) = 3.7578125;
  p = pick(4, 4);
  EXPECT_EQ(p.result, PointAmbiguous);
  EXPECT_EQ(p.point, 1);
  // Half the reach out and a second one at the reach's edge: clean.
  profile().PRPNTS(1, 1)(1) = 0.15;
  profile().PRPNTS(1, 2)(1) = -0.3;
  EXPECT_EQ(pick(0, 4).result, PointFound);
  // Points of another curve compete as well.
  resetProfileBlock();
  setBox(0, 10, 0, 10);
  addCurve({{1, 1}, {5.1, 5}}, false);
  addCurve({{4.9, 5}, {9, 9}}, false);
  p = pick(5.02, 5);
  EXPECT_EQ(p.result, PointAmbiguous);
  EXPECT_EQ(p.curve, 1);
  EXPECT_EQ(p.point, 2);
}

TEST_F(PointEdit, AnExactHitIsNeverAmbiguousAndFarPicksFindNothing) {
  addCurve({{5, 5}, {5.001, 5}, {5, 5.001}}, false);
  Pick p = pick(5.001, 5);
  EXPECT_EQ(p.result, PointFound);
  EXPECT_EQ(p.point, 2);
  // Between them, nearer than twice to each other: ambiguous.
  EXPECT_EQ(pick(5.0004, 5.0004).result, PointAmbiguous);
  // Out of reach (the reach follows the view, not the profile).
  EXPECT_EQ(pick(5.31, 5).result, PointNothingNear);
  graphics::G2SCAL(0, 20, 0, 20);
  EXPECT_NE(pick(5.31, 5).result, PointNothingNear);
}

TEST_F(PointEdit, ElevenPointsWithinReachAreAmbiguousWithTheFirst) {
  std::vector<XY> crowd;
  for (int k = 0; k < 11; ++k) crowd.push_back(XY{5 + 0.01 * k, 5});
  addCurve(crowd, false);
  const Pick p = pick(5.1, 5);  // on the eleventh point
  EXPECT_EQ(p.result, PointAmbiguous);
  EXPECT_EQ(p.point, 1);
  // Ten of them: the exact hit wins.
  profile().NPRPNT(1) = 10;
  EXPECT_EQ(pick(5.09, 5).result, PointFound);
  EXPECT_EQ(pick(5.09, 5).point, 10);
}

// The starred insertions put the point on the solved segment: checked
// against the helpers' own Hermite evaluation.
TEST_F(PointEdit, SegmentPointsLieOnTheSolvedCurve) {
  addCurve({{1, 1}, {3, 2}, {5, 2.5}, {7, 2}, {9, 1}}, false);
  addCurve({{6, 3}, {8, 3}, {8, 4.5}, {6, 4.5}}, true);
  for (int c : {1, 2}) {
    const auto solved = testing::solvedCurve(c);
    const int last = 4;  // four segments each; the closed curve's fourth closes it
    for (int segment = 1; segment <= last; ++segment) {
      const spline::Triple q = testing::segmentPoint(*solved, segment, 0.3);
      XY point;
      bool found = false, status = true;
      segmentPoint(c, segment, InsertAtParameter, 0.3, point, found, status);
      ASSERT_FALSE(status);
      ASSERT_TRUE(found);
      EXPECT_NEAR(point.x, q(1), 1e-12) << c << " " << segment;
      EXPECT_NEAR(point.y, q(2), 1e-12) << c << " " << segment;
      // The same point found from its X and from its Y.
      XY byX, byY;
      segmentPoint(c, segment, InsertAtX, q(1), byX, found, status);
      EXPECT_TRUE(found && !status);
      EXPECT_EQ(byX.x, q(1));
      EXPECT_NEAR(byX.y, q(2), 1e-9) << c << " " << segment;
      segmentPoint(c, segment, InsertAtY, q(2), byY, found, status);
      EXPECT_TRUE(found && !status);
      EXPECT_NEAR(byY.x, q(1), 1e-9) << c << " " << segment;
    }
  }
  // Values the segment does not reach, and segments that are none.
  XY point;
  bool found = true, status = true;
  segmentPoint(1, 1, InsertAtY, 3.0, point, found, status);
  EXPECT_FALSE(status);
  EXPECT_FALSE(found);
  segmentPoint(1, 1, InsertAtParameter, 1.5, point, found, status);
  EXPECT_FALSE(found);
  EXPECT_EQ(output(), "");
  for (int segment : {0, 5}) {
    segmentPoint(1, segment, InsertAtX, 2.0, point, found, status);
    EXPECT_TRUE(status) << segment;
  }
  EXPECT_TRUE(shown(output(), "Segment index must be a segment between two profile points!"));
}

TEST_F(PointEdit, PolylineSegmentsAreTheirChords) {
  profile().PRFTYP = PolylineProfile;
  addCurve({{0, 0}, {4, 2}}, false, Knuckle);
  XY point;
  bool found = false, status = true;
  segmentPoint(1, 1, InsertAtX, 1.0, point, found, status);
  ASSERT_TRUE(found);
  EXPECT_EQ(point, (XY{1.0, 0.5}));
  segmentPoint(1, 1, InsertAtParameter, 0.75, point, found, status);
  EXPECT_EQ(point, (XY{3.0, 1.5}));
}

TEST_F(PointEdit, TheBoxGrowsOnlyWhereTheCurvesReachPastIt) {
  profile().PRFTYP = PolylineProfile;  // the polylines are the points
  addCurve({{1, 1}, {4, 3}}, false, Knuckle);
  // Extents 3 and 2: the margin is 0.3 on every side.
  bool status = true;
  FTBBOX(false, status);
  EXPECT_FALSE(status);
  EXPECT_EQ(profile().PRBBOX, (Array1<double, 4>{{0, 10, 0, 10}}));
  setBox(2, 3, 0, 2);
  FTBBOX(false, status);
  EXPECT_NEAR(profile().PRBBOX(1), 0.7, 1e-12);
  EXPECT_NEAR(profile().PRBBOX(2), 4.3, 1e-12);
  EXPECT_EQ(profile().PRBBOX(3), 0.0);
  EXPECT_NEAR(profile().PRBBOX(4), 3.3, 1e-12);
  FTBBOX(true, status);
  EXPECT_NEAR(profile().PRBBOX(3), 0.7, 1e-12);
  // No curves: nothing moves.
  resetProfileBlock();
  setBox(2, 3, 0, 2);
  FTBBOX(true, status);
  EXPECT_EQ(profile().PRBBOX, (Array1<double, 4>{{2, 3, 0, 2}}));
}

TEST_F(PointEdit, AFullCurveTakesNoMorePoints) {
  std::vector<XY> full;
  for (int j = 0; j < MaxCurvePoints; ++j) full.push_back(XY{0.05 * j, 1.0 + 0.01 * j});
  addCurve(full, false);
  profile().CURCRV = 1;
  profile().CURPNT = 1;
  const ProfileData before = profile();
  int item = -1;
  bool status = true;
  INPRPT(InsertFree, item, status);
  EXPECT_FALSE(status);
  EXPECT_EQ(item, 0);
  EXPECT_TRUE(shown(output(), "Max number of profile points reached!"));
  EXPECT_EQ(profile(), before);
  EXPECT_EQ(undoSteps(), 0);
}

// The undo ring: data back and forth, settings and picture marks kept,
// MODFLG as stored, redo gone after a new step, the oldest steps dropped.
TEST_F(PointEdit, UndoAndRedoSwapTheDataAndKeepTheSettings) {
  addCurve({{1, 1}, {2, 2}, {3, 1}}, false);
  ProfileData& p = profile();
  p.CURCRV = 1;
  p.MODFLG = false;
  const ProfileData before = p;
  STUNDO();
  p.PRPNTS(1, 2)(2) = 4.0;
  p.MODFLG = true;
  const ProfileData after = p;
  p.SHOWGR = false;  // a setting changed after the step
  bool status = true;
  GTUNDO(status);
  EXPECT_FALSE(status);
  EXPECT_EQ(p.PRPNTS(1, 2)(2), 2.0);
  EXPECT_FALSE(p.MODFLG);
  EXPECT_FALSE(p.SHOWGR);
  EXPECT_EQ(undoSteps(), 0);
  EXPECT_EQ(redoSteps(), 1);
  GTREDO(status);
  EXPECT_EQ(p.PRPNTS(1, 2)(2), 4.0);
  EXPECT_TRUE(p.MODFLG);
  p.SHOWGR = true;
  EXPECT_EQ(p, after);
  GTUNDO(status);
  EXPECT_EQ(p, before);
  // A new step forgets what could be redone.
  STUNDO();
  EXPECT_EQ(redoSteps(), 0);
  EXPECT_EQ(undoSteps(), 1);
  GTUNDO(status);
  GTUNDO(status);
  GTREDO(status);
  GTREDO(status);
  const std::string said = output();
  EXPECT_TRUE(shown(said, "Nothing to undo!"));
  EXPECT_TRUE(shown(said, "Nothing to redo!"));
  EXPECT_EQ(p, before);
}

TEST_F(PointEdit, TheRingKeepsItsDepthAndAnUndoGivesBackAStepAtATime) {
  addCurve({{0, 0}, {1, 1}}, false);
  ProfileData& p = profile();
  const int steps = UndoDepth + 6;
  for (int k = 1; k <= steps; ++k) {
    STUNDO();
    p.PRPNTS(1, 2)(1) = k;
  }
  EXPECT_EQ(undoSteps(), UndoDepth);
  bool status = false;
  for (int k = steps - 1; k >= steps - UndoDepth; --k) {
    GTUNDO(status);
    ASSERT_EQ(p.PRPNTS(1, 2)(1), k);
  }
  EXPECT_EQ(undoSteps(), 0);
  EXPECT_EQ(redoSteps(), UndoDepth);
  for (int k = 1; k <= 3; ++k) GTREDO(status);
  EXPECT_EQ(p.PRPNTS(1, 2)(1), steps - UndoDepth + 3);
}

class UndoAndFiles : public PointEdit, public testing::ScratchDirectory {};

TEST_F(UndoAndFiles, ALoadForgetsEveryStep) {
  addCurve({{1, 1}, {2, 2}, {3, 1}}, false);
  bool status = true;
  PTKNTR(path("one.knt"), true, status);
  ASSERT_FALSE(status);
  STUNDO();
  STUNDO();
  bool loaded = false;
  GTKNTR(path("one.knt"), true, loaded, status);
  ASSERT_TRUE(loaded);
  EXPECT_EQ(undoSteps(), 0);
  EXPECT_EQ(redoSteps(), 0);
  // A file that is not there loads nothing and forgets nothing.
  STUNDO();
  GTKNTR(path("none.knt"), true, loaded, status);
  EXPECT_FALSE(loaded);
  EXPECT_EQ(undoSteps(), 1);
}

}  // namespace
}  // namespace kntr::profile
