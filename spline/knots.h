// Knot vectors and the small geometry and sorting helpers of the engine.
//
//   MKIKV3  make the incremental knot vector of a record
//   IQANG3  angle at B between BA and BC
//   IQNPLS  nearest point to p on the segment ab
//   BOXOVL  do two boxes overlap (touching included)
//   IXSRTD  ascending order of a vector of doubles (heap sort)
//   IXSRTI  ascending order of a vector of integers (heap sort)
#pragma once

#include "framework/onebased.h"
#include "spline/record.h"

namespace kntr::spline {

// MKIKV3: make the incremental knot vector of a record.
//   in:  parameterization code (1 uniform, 2 chord length, 3 curve length
//        which falls back to 2, 4 centripetal, 5 Foley; others act as 2),
//        rec.NOFFS, rec.OFFPNT, rec.CLOSED
//   out: rec.INCKNT; the last element only counts for a closed curve
//   failed: fewer than 2 points (or more than the record holds)
void MKIKV3(int parameterization, SplineRecord& rec, bool& failed);

// IQANG3: angle at B between BA and BC, in radians, 0 to pi. Points that
// coincide with B give pi/2.
double IQANG3(const Triple& a, const Triple& b, const Triple& c);

// IQNPLS: nearest point `nearest` to p on the segment ab, the parameter
// clipped to the segment; a degenerate segment gives a.
void IQNPLS(const Triple& p, const Triple& a, const Triple& b, Triple& nearest, bool& failed);

// BOXOVL: true if the boxes [xmin1, xmax1] x [ymin1, ymax1] and
// [xmin2, xmax2] x [ymin2, ymax2] overlap, touching included.
bool BOXOVL(double xmin1, double xmax1, double ymin1, double ymax1, double xmin2, double xmax2,
            double ymin2, double ymax2);

// IXSRTD: order(1..n) such that keys(order(1)) <= keys(order(2)) <= ...;
// keys are untouched, equal keys keep their given order. n = 1 gives
// order 1; n <= 0 does nothing.
void IXSRTD(int n, View1<const double> keys, View1<int> order, bool& failed);

// IXSRTI: the same for integer keys.
void IXSRTI(int n, View1<const int> keys, View1<int> order, bool& failed);

}  // namespace kntr::spline
