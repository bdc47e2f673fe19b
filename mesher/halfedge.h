// Plane geometry and half-edge edits shared by the decomposition stages.
//
//   IQANGL  angle at b, counterclockwise from the ray b->c to the ray b->a
//   IQSIDE  side of a point relative to a directed line, with tolerance
//   IQSGIN  intersection of a line (or ray) with a segment
//   INSEDG  add an edge between two vertices of a polygon and split it
//   INSVTX  insert a vertex into an edge and its twin
#pragma once

#include "mesher/structure.h"

namespace kntr::mesher {

// IQANGL: the angle at b, counterclockwise from the ray b->c to the ray b->a,
// in 0 up to 2 pi.
double IQANGL(double ax, double ay, double bx, double by, double cx, double cy);

// IQSIDE: +1 when p lies right of the directed line a->b, -1 when left, 0 when
// on it within the shared tolerance. `dv` moves the line to the left by dv.
int IQSIDE(double px, double py, double ax, double ay, double bx, double by, double dv);

// IQSGIN: where the line p1->p2 (a ray from p1 when `ray`) meets the segment
// q1->q2. `found` is false for parallel lines and misses.
void IQSGIN(bool ray, double p1x, double p1y, double p2x, double p2y, double q1x, double q1y,
            double q2x, double q2y, double& x, double& y, bool& found, bool& status);

// INSEDG: add the edge from the start vertex of half-edge a to that of
// half-edge b (both of one polygon) and split the polygon in two.
void INSEDG(MeshData& m, int a, int b, bool& status);

// Links the start vertices of half-edges a and b by a new edge: two new
// half-edges (in `polygon`) take over the old edges at a and b, a and b
// become the two sides of the new edge, and the corner angles at both ends
// are split. Returns the new half-edge that follows b. The caller has made
// sure there is room for two more half-edges.
int linkHalfEdges(MeshData& m, int a, int b, int polygon);

// INSVTX: put a new vertex (x, y) into half-edge `edge` and its twin; `added`
// is the half-edge that starts at the new vertex on the side of `edge`.
void INSVTX(MeshData& m, double x, double y, int edge, int& added, bool& status);

}  // namespace kntr::mesher
