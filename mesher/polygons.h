// Services on closed boundary polygons: direction, containment, nesting and
// self-crossing.
//
//   IQPLDR  direction of a polygon given by an index list
//   IQPTIN  is a point inside a polygon given by an index list
//   SORTP2  sort polygons into regions: an exterior with its holes
//   MFPLDR  make a polygon counterclockwise in place
//   IQPLSI  does a polyline cross itself
//   IQSGSG  intersection of two segments with the parameters along both
#pragma once

#include "framework/onebased.h"

namespace kntr::mesher {

// Most polygons SORTP2 takes, and the length of each polygon's container list.
inline constexpr int MaxSortPolygons = 100;
// Most points MFPLDR checks.
inline constexpr int MaxOrientPoints = 2500;
// A self-crossing needs both parameters within [CrossLow, CrossHigh).
inline constexpr double CrossLow = 1e-6;
inline constexpr double CrossHigh = 0.999999;

// IQPLDR: direction of the polygon whose n vertices are
// vertices(indexList(1..n)), by the sum of its turning angles. `ccw` is
// true for a counterclockwise polygon. Fails for fewer than 3 or more than
// MaxPolyPoints points, and for two coinciding edges in a row.
void IQPLDR(int n, View1<const int> indexList, View1<const XY> vertices, bool& ccw, bool& status);

// IQPTIN: true when (x, y) lies inside the polygon vertices(indexList(1..n)),
// by the sum of the angles under which its edges are seen.
bool IQPTIN(double x, double y, int n, View1<const int> indexList, View1<const XY> vertices);

// SORTP2: sort numPolygons polygons into groups. Polygon i has polySizes(i)
// vertices, vertices(indexLists((i - 1) * stride + j)), j = 1..polySizes(i).
// Group g has groupSizes(g) members, groupMembers((g - 1) * maxMembers + k),
// the exterior first and its holes after it in polygon order.
void SORTP2(int maxMembers, int numPolygons, int stride, View1<const int> polySizes,
            View1<const int> indexLists, View1<const XY> vertices, int& numGroups,
            View1<int> groupSizes, View1<int> groupMembers, bool& status);

// MFPLDR: reverse a clockwise polygon of n points in place. A polygon of
// more than MaxOrientPoints points is left as it is, with a message.
void MFPLDR(int n, View1<XY> points, bool& status);

// IQPLSI: `crosses` is set when two segments of the polyline points(1..n)
// cross inside both; `closed` adds the segment from point n to point 1.
// Shared end points do not count.
void IQPLSI(int n, View1<const XY> points, bool closed, bool& crosses, bool& status);

// IQSGSG: where the segments p1->p2 and q1->q2 meet. `found` is false for
// parallel segments and for lines that meet outside either segment; s and t
// are the parameters along p and q (0 at the first point, 1 at the second).
void IQSGSG(XY p1, XY p2, XY q1, XY q2, bool& found, double& s, double& t);

}  // namespace kntr::mesher
