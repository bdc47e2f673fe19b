// Density decomposition and triangle size.
//
// The region, already cut into convex polygons, gets a mesh density: high
// where boundary edges are short or polygons narrow, blended with an even
// share. Polygons in which the density varies too much are split by a
// separator chosen by angle; the jump in density between neighbours is held
// to a factor 4; and each polygon gets its triangle size h.
//
//   SDCPET  split the convex polygons by density and give each its size h
//   MKCPGM  areas and widths of the polygons, local sizes of edges and vertices
//   SDCPMV  density of each polygon, and the splits where it varies too much
//   IQCPSP  the sources of small size that act on one polygon
//   IQDNST  integral, mean and spread of the density over a polygon
//   SLDNSP  a separator around the densest sector of a polygon
//   SLDMSP  a separator across the middle of a polygon's diameter
//   SLSPPR  the best pair of separator ends among the candidates
//   MKCPSZ  grade the densities between neighbours and set the sizes
//   DSFUNC  the system's own density function: 1 everywhere
#pragma once

#include "framework/onebased.h"
#include "mesher/structure.h"
#include "mesher/workarea.h"

namespace kntr::mesher {

// A user density at a point; the system's own returns 1.0.
using DensityFunction = double (*)(double x, double y);

// The lists shared by the density routines, laid out by SDCPET at the low
// end of the auxiliary vectors for the polygons and vertices there were
// before any density split. A boundary edge is known by its position in
// EdgeVertex; the edges of polygon p hold positions EdgeStart(p) to
// EdgeStart(p + 1) - 1, in walking order.
struct DensityLists {
  View1<int> EdgeStart;         // per polygon, one more behind the last
  View1<int> EdgeVertex;        // per position: vertex at the start of the edge
  View1<double> EdgeSize2;      // per position: squared local size of the edge
  View1<double> PolygonWidth2;  // per polygon: squared smallest width
  View1<double> VertexSize2;    // per vertex: least EdgeSize2 of its edges

  // What may set a smaller size than the width in the polygon at hand: -v
  // for vertex v, k for the edge at position k. SourceWrap is the position
  // after the last edge when that edge is the polygon's last, else 0.
  View1<int> Sources;
  int NumSources = 0;
  int SourceWrap = 0;
};

// The points around one polygon that SDCPMV looks for a separator among:
// points 0..n-1 with point n repeating point 0, relative to `centre`.
struct SeparatorPoints {
  int n = 0;
  XY centre;
  View0<double> x, y;
  View0<int> label;     // half-edge at a vertex, minus the half-edge inside an edge
  View0<double> means;  // mean density of fan triangle i: points i, i + 1 and the centre
};

// SDCPET: with the region cut into convex polygons, split them where the
// density varies too much and set PolygonSize for each, so that about
// `desiredCount` triangles fill the region. The work arrays come from
// `intAux` and `realAux`, the room the caller leaves.
//   status: set on failure; the message has been shown.
void SDCPET(MeshData& m, DensityFunction density, int desiredCount, View1<int> intAux,
            View1<double> realAux, bool& status);

// MKCPGM: PolygonArea and PolygonWidth2 of each polygon from its true
// corners, then EdgeStart, EdgeVertex, EdgeSize2 and VertexSize2. The
// corners go to `realRoom`.
//   status: set on failure; the message has been shown.
void MKCPGM(MeshData& m, DensityLists& lists, View1<double> realRoom, bool& status);

// SDCPMV: the mean density of each polygon normalised to integrate to 1 over
// the region, and the splits of every polygon whose density spreads too
// much, until none is left to split. The densities go to PolygonDensity.
//   status: set on failure; the message has been shown.
void SDCPMV(MeshData& m, DensityLists& lists, DensityFunction density, int desiredCount,
            View1<int> intRoom, View1<double> realRoom, bool& status);

// IQCPSP: lists.Sources for polygon p against limit, its squared width.
// The caller leaves room for twice the polygon's edge count.
void IQCPSP(int p, double limit, DensityLists& lists);

// IQDNST: the density over the fan of triangles from points.centre to the
// points, by a three-point rule in each. Size starts at `limit` and is
// reduced by lists.Sources, unless `density` is given, which is then
// evaluated instead. Returns the integral, the mean over the polygon and
// the spread (standard deviation); the fan means go to points.means.
void IQDNST(const MeshData& m, const DensityLists& lists, double limit, DensityFunction density,
            const SeparatorPoints& points, double& integral, double& mean, double& spread);

// SLDNSP: grow a sector from the densest fan triangle while it is denser
// than `mean` and covers at most half the area, and pick a separator around
// it. `a` and `b` are point numbers, -1 when none is good enough.
void SLDNSP(const MeshData& m, const SeparatorPoints& points, double mean, int& a, int& b);

// SLDMSP: a separator near the perpendicular bisector of the diameter of the
// true corners among the points. The corners go to `realRoom`.
//   status: set on failure; the message has been shown.
void SLDMSP(const MeshData& m, const SeparatorPoints& points, View1<double> realRoom, int& a,
            int& b, bool& status);

// SLSPPR: the pair (a, b), one end from each candidate list, that leaves the
// largest smallest angle; -1 and -1 when that angle is below the least
// separator angle.
void SLSPPR(const MeshData& m, const SeparatorPoints& points, const int (&candidatesA)[2],
            const int (&candidatesB)[2], int& a, int& b);

// MKCPSZ: raise every polygon to at least a quarter of the density of each
// neighbour, then PolygonSize = sqrt(2 / (desiredCount D)) with D the
// density normalised over the region. The heap lives in `intRoom`.
void MKCPSZ(MeshData& m, int desiredCount, View1<int> intRoom);

// DSFUNC: the system's density function, 1 everywhere.
double DSFUNC(double x, double y);

}  // namespace kntr::mesher
