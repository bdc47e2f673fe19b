// Measures of a polygon: area, and width and diameter of a convex one.
//
//   IQCPAR  area of a polygon from its coordinates
//   IQPLAR  area of a polygon given as an index list into the vertices
//   IDSQCP  squared width of a convex polygon and an antipodal edge-vertex pair
//   DSQCPG  squared diameter of a convex polygon and its two vertices
#pragma once

#include "framework/onebased.h"

namespace kntr::mesher {

// IQCPAR: signed area of the polygon (x(i), y(i)), i = 1..n, by the shoelace
// sum; positive when counterclockwise.
double IQCPAR(int n, View1<const double> x, View1<const double> y);

// IQPLAR: the same for the polygon vertices(list(1)), ..., vertices(list(n)).
double IQPLAR(int n, View1<const int> list, View1<const XY> vertices);

// IDSQCP: the square of the smallest width of the convex counterclockwise
// polygon (x(i), y(i)), i = 1..n: the least squared height of a vertex above
// an edge. `a` is the start of that edge and `b` the vertex. With fewer than
// 3 points width2 keeps its start value, the largest double.
//   status: set when the scan loses its way; the message has been shown.
void IDSQCP(int n, View1<const double> x, View1<const double> y, int& a, int& b, double& width2,
            bool& status);

// DSQCPG: the square of the diameter of the convex counterclockwise polygon
// and its two end vertices, a < b. With fewer than 3 points diameter2 keeps
// its start value 0 and a = b = 1.
//   status: set when the scan loses its way; the message has been shown.
void DSQCPG(int n, View1<const double> x, View1<const double> y, int& a, int& b, double& diameter2,
            bool& status);

}  // namespace kntr::mesher
