// Test support: profiles built point by point in the profile block, and
// their splines solved for evaluation in the test.
#pragma once

#include <cmath>
#include <memory>
#include <vector>

#include "framework/onebased.h"
#include "graphics/plotstate.h"
#include "profile/block.h"
#include "profile/curverecord.h"
#include "spline/knots.h"
#include "spline/tangents.h"
#include "support/console_fixture.h"
#include "support/spline_helpers.h"

namespace kntr::testing {

// Memory console, a fresh profile block and a fresh plot state.
class ProfileTest : public ConsoleTest {
 protected:
  void SetUp() override {
    ConsoleTest::SetUp();
    profile::resetProfileBlock();
    graphics::resetPlotState();
  }
};

// Append a curve of the given points, all of one type (knuckles weigh 1),
// and return its index.
inline int addCurve(const std::vector<XY>& points, bool closed,
                    int type = profile::ContinuousCurvature,
                    int parameterization = profile::ChordLength) {
  profile::ProfileData& p = profile::profile();
  const int c = ++p.NPRCRV;
  p.NPRPNT(c) = static_cast<int>(points.size());
  p.PRCLSD(c) = closed;
  p.PRPARM(c) = parameterization;
  for (int j = 1; j <= p.NPRPNT(c); ++j) {
    const XY& q = points[static_cast<std::size_t>(j - 1)];
    p.PRPNTS(c, j)(1) = q.x;
    p.PRPNTS(c, j)(2) = q.y;
    p.PRPTYP(c, j) = type;
    p.PRKWGT(c, j) = type == profile::Knuckle ? 1.0 : 0.0;
  }
  return c;
}

// n points evenly round an ellipse with half axes a and b about the origin,
// the first on the positive X axis.
inline std::vector<XY> ellipse(int n, double a, double b) {
  std::vector<XY> v;
  for (int i = 0; i < n; ++i) {
    const double t = 2 * 3.141592653589793 * i / n;
    v.push_back(XY{a * std::cos(t), b * std::sin(t)});
  }
  return v;
}

// Set the bounding box and the accuracy that follows from it.
inline void setBox(double xmin, double xmax, double ymin, double ymax) {
  profile::ProfileData& p = profile::profile();
  p.PRBBOX(1) = xmin;
  p.PRBBOX(2) = xmax;
  p.PRBBOX(3) = ymin;
  p.PRBBOX(4) = ymax;
  p.BBOXOK = true;
  profile::IZACCY();
}

// The spline of curve c solved by the engine, to be evaluated in the test
// (segmentPoint).
inline std::unique_ptr<spline::HermiteCurve> solvedCurve(int c) {
  auto rec = std::make_unique<spline::SplineRecord>();
  auto solved = std::make_unique<spline::HermiteCurve>();
  profile::CurveBox box;
  profile::loadCurveRecord(c, *rec, box);
  bool failed = true;
  spline::MKIKV3(profile::profile().PRPARM(c), *rec, failed);
  EXPECT_FALSE(failed);
  spline::HCTAN3(500, P(0, 0), P(1, 0), spline::SideNone, 0.0, *rec, *solved, failed);
  EXPECT_FALSE(failed);
  return solved;
}

}  // namespace kntr::testing
