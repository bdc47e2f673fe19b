// Sizes and tolerances of the interior mesher (meshsz).
#pragma once

namespace kntr::mesher {

inline constexpr int MaxHoles = 10;              // holes per region; polygon lists of the driver
inline constexpr int MaxPolyPoints = 10000;      // points of one boundary polygon
inline constexpr int MaxAutoIterations = 15;     // passes of the quality search
inline constexpr int MaxSubPolygons = 2000;      // polygons of the decomposition
inline constexpr int MaxBoundaryVertices = 10000;  // boundary points of one region
inline constexpr int MaxHalfEdges = 20000;       // half-edges of the decomposition
inline constexpr int AuxLength = 20000;          // length of each auxiliary work vector
inline constexpr int MaxAutoTriangles = 20000;   // triangle cap of the quality search

// Capacities of the result as the profile module asks for it.
inline constexpr int ResultVertices = 10000;
inline constexpr int ResultTriangles = 12000;

// Smoothing topology.
inline constexpr int MaxFaceVertices = 3;
inline constexpr int MaxEdges = 12000;
inline constexpr int MaxFaces = 10000;
inline constexpr int MaxVertexFaces = 25;
inline constexpr int MaxEdgeFaces = 2;

// The improved layout: the largest density factor between neighbouring
// polygons, and the side of an equilateral triangle of area h^2 / 2 over h,
// sqrt(2 / sqrt(3)).
inline constexpr double ImprovedGradingFactor = 1.5;
inline constexpr double StaggeredSizeFactor = 1.074569931823542;

// Staggered rows: their distance over h, sqrt(3) / 2, and the inset of the
// row mesh from a polygon's boundary over h.
inline constexpr double StaggeredRowStep = 0.8660254037844386;
inline constexpr double StaggeredInset = 0.6;

// pi as the mesher uses it throughout.
inline constexpr double Pi = 3.141592653589793;

// The one tolerance of the whole library, relative and absolute: the larger
// of 1e-12 and 100 times the machine epsilon, the epsilon found by halving 1
// until 1 + e == 1.
inline double meshTolerance() {
  static const double tolerance = [] {
    volatile double e = 1.0;
    while (1.0 + e / 2.0 != 1.0) e = e / 2.0;
    double hundred = 100.0 * e;
    return hundred > 1e-12 ? hundred : 1e-12;
  }();
  return tolerance;
}

}  // namespace kntr::mesher
