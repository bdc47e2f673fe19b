// Triangle generation in the convex polygons of the decomposition.
//
// Each convex polygon is filled on its own, with triangles of its size h:
// points go on its edges (the same points for the two polygons that share an
// edge); the polygon shrunk by h / sqrt(2) is filled with rows of points at
// spacing h across its diameter, with triangles between neighbouring rows;
// the ring between the boundary and the rows is closed by a strip; and the
// strip's diagonals are improved by swaps. A polygon too thin for rows is
// filled by a strip between two chains of its boundary.
//
//   TRMSCP  fill every convex polygon with triangles of its size
//   MKCPBM  put points on the polygon edges, shared between neighbours
//   TRDLCP  triangles of one convex polygon from its corners and boundary
//   SHRNCP  inward offset of a convex polygon
//   IQOFIN  intersection of two lines moved to their left
//   RTCPDM  turn a convex polygon so that its diameter stands upright
//   TRQUCP  rows of points in a convex polygon, with the triangles between
#pragma once

#include "framework/onebased.h"
#include "mesher/structure.h"
#include "mesher/workarea.h"

namespace kntr::mesher {

// TRMSCP: triangles for all polygons of the decomposition, appended to
// `triangles` (its size is the capacity); numTriangles is set to the count.
// New vertices are added to m.Vertices.
//   status: set on failure; the message has been shown.
void TRMSCP(MeshData& m, View1<Triangle> triangles, int& numTriangles, View1<int> intAux,
            View1<double> realAux, bool& status);

// MKCPBM: points on every edge, as many as the polygon's size asks for (the
// geometric mean of both sizes on an inner edge), recorded in
// EdgePointStart and EdgePointCount; the twin has the negated count.
//   status: set when the vertices run out; the message has been shown.
void MKCPBM(MeshData& m, bool& status);

// TRDLCP: the triangles of one convex polygon: the corners
// (cornerX, cornerY)(0..numCorners), closed, and the boundary vertex list
// boundary(0..numBoundary), closed, edge points included. New vertices and
// triangles are added behind numVertices and numTriangles.
//   status: set on failure; the message has been shown.
void TRDLCP(int numCorners, View0<const double> cornerX, View0<const double> cornerY, double h,
            int numBoundary, View0<int> boundary, int& numVertices, View1<XY> vertices,
            int& numTriangles, View1<Triangle> triangles, View1<int> intRoom,
            View1<double> realRoom, bool& status);

// SHRNCP: the convex counterclockwise polygon (x, y)(0..n), closed, with
// each edge i moved inward by offsets(i). The result has m points, 0-based
// and closed (point m = point 0), m = 0 when nothing is left; edges(k) is
// the edge of the original polygon that leaves point k.
//   status: set when two edges to be intersected are parallel; the message
//   has been shown.
void SHRNCP(int n, View0<const double> x, View0<const double> y, View0<const double> offsets,
            int& m, View0<double> shrunkX, View0<double> shrunkY, View0<int> edges, bool& status);

// IQOFIN: where the line p1->p2 moved left by offset1 meets the line q1->q2
// moved left by offset2. False for parallel lines.
bool IQOFIN(double p1x, double p1y, double p2x, double p2y, double offset1, double q1x, double q1y,
            double q2x, double q2y, double offset2, double& x, double& y);

// RTCPDM: turn the closed polygon (x, y)(0..n) so that its diameter a-b is
// vertical, the upper end at index n (and 0); `bottom` is the lower end's
// new index, and (cos, sin) the turn: x' = cos x - sin y, y' = sin x + cos y.
void RTCPDM(int n, View0<double> x, View0<double> y, int a, int b, int& bottom, double& cos,
            double& sin);

// TRQUCP: rows of points at spacing h in the turned polygon (x, y)(0..n),
// top at index 0 and n and bottom at `bottom`, turned back by (cos, sin) as
// they are stored, with the triangles between neighbouring rows. `walk`
// receives the closed walk round the rows, walk(0) = walk(walkLength), with
// the rows on its left; walkLength = 0 for a single row.
//   status: set on failure; the message has been shown.
void TRQUCP(int n, View0<const double> x, View0<const double> y, double h, int bottom, double cos,
            double sin, int& numVertices, View1<XY> vertices, int& numTriangles,
            View1<Triangle> triangles, View0<int> walk, int& walkLength, bool& status);

}  // namespace kntr::mesher
