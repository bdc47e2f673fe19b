// The mesher's decomposition structure and work storage (meshdt).
//
// A region (one exterior polygon with its holes) is held as half-edges. Each
// half-edge row names the vertex it starts at, the polygon whose boundary it
// belongs to, the next half-edge of that polygon (walking with the interior
// on the left) and its twin on an inner edge (0 on the region's boundary).
// CornerAngle holds the interior angle at the start vertex of each half-edge,
// 0 up to 2 pi; above pi the corner is reflex.
//
// While a region is meshed, `Vertices` is a view on the region's stretch of
// the caller's result array, so all vertex numbers are local to the region.
// All storage is fixed at build time.
#pragma once

#include "framework/onebased.h"
#include "mesher/limits.h"

namespace kntr::mesher {

struct HalfEdgeRow {
  int Vertex = 0;   // vertex at the start of the half-edge
  int Polygon = 0;  // polygon on whose boundary it lies
  int Next = 0;     // next half-edge of that polygon
  int Twin = 0;     // opposite half-edge, 0 on the region's boundary
  friend bool operator==(const HalfEdgeRow&, const HalfEdgeRow&) = default;
};

// Three vertex numbers; side j runs from vertex j to vertex j + 1 (3 to 1).
using Triangle = Array1<int, 3>;

struct MeshData {
  // Tolerances and parameters, set for each region.
  double MeshTol = 1e-12;
  double SeparatorAngle = 30.0 * Pi / 180.0;
  double MinSeparatorAngle = 20.0 * Pi / 180.0;
  double UniformShare = 0.4;
  double DensitySpread = 0.4;
  int MinPolygonTriangles = 10;
  bool UseDensityFunction = false;
  double SmoothTolerance = static_cast<double>(0.001f);
  int SmoothLimit = 5000;
  // Layout of the triangles: rows of equal spacing h in both directions, or
  // staggered rows of equilateral triangles; and the least density that a
  // polygon may have beside a denser neighbour, as a share of that one's.
  bool StaggeredRows = false;
  double GradingShare = 0.25;

  // The region's vertices (a view on the caller's storage) and counts.
  View1<XY> Vertices;
  int NumVertices = 0;
  int NumPolygons = 0;
  int NumHalfEdges = 0;
  int SlitCount = 0;

  // Decomposition.
  Array1<HalfEdgeRow, MaxHalfEdges> HalfEdge;
  Array1<double, MaxHalfEdges> CornerAngle;
  Array1<int, MaxSubPolygons> PolygonFirst;   // one half-edge of each polygon
  Array1<int, MaxSubPolygons> PolygonRegion;  // region number, copied on splits

  // Density and triangle size, per polygon.
  Array1<double, MaxSubPolygons> PolygonArea;
  Array1<double, MaxSubPolygons> PolygonDensity;  // below zero: still to be split
  Array1<double, MaxSubPolygons> PolygonSize;     // triangle size h

  // Points put on the edges, per half-edge; the twin has the negated count.
  Array1<int, MaxHalfEdges> EdgePointStart;
  Array1<int, MaxHalfEdges> EdgePointCount;
  Array1<int, MaxSubPolygons> PolygonTriangleStart;

  // The two work stacks. A routine takes its work arrays from the part its
  // caller leaves it, and checks the room first.
  Array1<int, AuxLength> IntAux;
  Array1<double, AuxLength> RealAux;
};

// The one instance.
MeshData& meshData();

// The layout that TRNSM2 sets for each region: the plain one, or the
// improved one of the quality stage (staggered rows, a density that changes
// by at most a factor of 1.5 from one polygon to the next).
struct MeshLayout {
  bool improved = false;
};
MeshLayout& meshLayout();

}  // namespace kntr::mesher
