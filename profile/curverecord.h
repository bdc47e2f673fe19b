// The spline record of one profile curve.
//
//   loadCurveRecord  build the record of a curve from the profile block
#pragma once

#include "spline/record.h"

namespace kntr::profile {

// The box of a curve's points.
struct CurveBox {
  double xmin = 0.0, xmax = 0.0, ymin = 0.0, ymax = 0.0;
  double largerSide() const { return xmax - xmin > ymax - ymin ? xmax - xmin : ymax - ymin; }
};

// loadCurveRecord: the record of curve `curve` (1..NPRCRV): x, y from the
// curve with z = 0, types and weights, the closed flag. Types 3 to 6 get
// their tangent vectors as stored direction times stored length (type 3
// leading, 4 trailing, 5 both, 6 both sides from the leading direction);
// tangent parts a type does not name are left as they stand. A polyline
// profile gives every point type 1 with weight 1. Knots are not made here.
void loadCurveRecord(int curve, spline::SplineRecord& rec, CurveBox& box);

}  // namespace kntr::profile
