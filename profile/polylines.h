// The profile as polylines: the one road from the profile block to pictures,
// picking and the mesher.
//
//   IQPPOL  turn every curve of the profile into a polyline
#pragma once

#include "framework/onebased.h"
#include "profile/block.h"

namespace kntr::profile {

// Room for the points of one curve's polyline.
inline constexpr int MaxPolylinePoints = 10000;

struct ProfilePolylines {
  int curves = 0;                                        // number of curves
  Array1<int, MaxCurves> points{};                       // polyline points of curve c
  Array2<XY, MaxCurves, MaxPolylinePoints> xy{};         // xy(c, i): the points
  Array2<int, MaxCurves, MaxCurvePoints> index{};        // index(c, j): polyline point of curve point j
};

// IQPPOL: polylines of all curves, at most `maxCurves` curves of at most
// `maxPerCurve` points each. A spline curve is subdivided to the profile's
// accuracy; a polyline curve gives its own points.
void IQPPOL(int maxCurves, int maxPerCurve, ProfilePolylines& result, bool& status);

}  // namespace kntr::profile
