// Exact signs of the plane's two basic tests, whatever the scale.
//
// Each test is first computed in plain arithmetic with a bound on its
// rounding error; only when the value lies within that bound is it computed
// again exactly, as a sum of doubles that do not overlap (an expansion), so
// that the sign is always the true one. Inputs are the doubles as given:
// nothing is rounded to a grid or compared against a tolerance.
//
//   IQORNT  sign of the turn a -> b -> c: +1 left, -1 right, 0 on one line
//   IQINCR  sign of d against the circle through a, b, c: +1 inside
//   IQSGTC  whether two closed segments have a point in common
#pragma once

#include "framework/onebased.h"

namespace kntr::mesher {

// IQORNT: +1 when a, b, c turn counterclockwise, -1 when clockwise, 0 when
// they lie on one line (exactly).
int IQORNT(const XY& a, const XY& b, const XY& c);

// IQINCR: for a, b, c counterclockwise, +1 when d lies inside their circle,
// -1 outside, 0 on it (exactly). For a clockwise triple the sign turns.
int IQINCR(const XY& a, const XY& b, const XY& c, const XY& d);

// IQSGTC: true when the segments p1-p2 and q1-q2, end points included,
// have at least one point in common: a crossing, a touch or an overlap.
bool IQSGTC(const XY& p1, const XY& p2, const XY& q1, const XY& q2);

}  // namespace kntr::mesher
