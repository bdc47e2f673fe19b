// Test support: profiles built point by point in the profile block.
#pragma once

#include <vector>

#include "framework/onebased.h"
#include "graphics/plotstate.h"
#include "profile/block.h"
#include "support/console_fixture.h"

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

}  // namespace kntr::testing
