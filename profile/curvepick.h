// Segments of profile curves: their midpoints, and the segment under a
// picked position.
//
//   MKPSMP  the midpoint of every segment of a curve
//   IQPCSG  which curve and segment lies under a position, and the point on it
#pragma once

#include "framework/onebased.h"
#include "profile/block.h"

namespace kntr::profile {

// Verdicts of IQPCSG.
inline constexpr int PickFound = 0;
inline constexpr int PickNothingNear = 1;
inline constexpr int PickAmbiguous = 2;

// MKPSMP: one point per segment of curve `curve`: the chord midpoints of a
// polyline profile, the curve point at parameter 1/2 of a spline profile.
// An open curve of n points gives n - 1, a closed one n (the last from the
// closing segment). `midpoints` must hold MaxCurvePoints points.
//   failed: an illegal curve index, or a failed solve; already reported.
void MKPSMP(int curve, int& count, View1<XY> midpoints, bool& failed);

// IQPCSG: the curve segment nearest to the position (x, y) within 0.03 of
// the larger side of the visible margin rectangle. Returns the curve, the
// segment (segment k runs from point k to point k + 1; on a closed curve
// segment n closes it), the point (px, py) found on the curve, and the
// verdict: PickFound, PickNothingNear, or PickAmbiguous (more than 20
// candidates, or a second segment less than 5 times farther than the best).
void IQPCSG(double x, double y, int& curve, int& segment, double& px, double& py, int& verdict,
            bool& failed);

}  // namespace kntr::profile
