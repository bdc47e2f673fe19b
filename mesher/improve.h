// Mesh improvement of the robust mode.
//
// Both routines work on a triangle list and its vertices alone: they find
// the triangles around each vertex and the boundary (the edges that only
// one triangle uses), move interior vertices and leave the boundary's
// vertices where they are. A move is kept only when every triangle around
// the vertex stays strictly counterclockwise, by exact predicates, so no
// triangle ever turns over.
//
//   SMSAF2  Laplace smoothing that never turns a triangle over nor moves the boundary
//   IMPRV2  quality stage: Delaunay edge flips and smoothing that never lowers the least quality
#pragma once

#include "framework/onebased.h"
#include "mesher/limits.h"
#include "mesher/structure.h"

namespace kntr::mesher {

// Sizes of the improvement's tables: the smoothing is limited to the
// topology's MaxFaces triangles; the quality stage takes every mesh the
// quality search can make.
inline constexpr int MaxImproveTriangles = MaxAutoTriangles;
inline constexpr int MaxImproveVertices = 20000;
// Sweeps of the smoothing at most, and rounds of flips and smoothing of the
// quality stage.
inline constexpr int SafeSmoothSweeps = 50;
inline constexpr int ImproveRounds = 2;
inline constexpr int ImproveSweeps = 1;
// A flip toward better triangle counts may lower the least quality of its
// two triangles to this share of what it was, no further.
inline constexpr double ValenceFlipShare = 0.5;
// The quality stage leaves a vertex alone whose triangles all have at least
// this quality.
inline constexpr double WellShaped = 0.95;
// Passes over all triangles of one flipping stage at most.
inline constexpr int MaxFlipPasses = 20;

// SMSAF2: move each interior vertex toward the mean of its neighbours, by
// the whole step or, when that would turn a triangle over, by a half or a
// quarter of it, sweep after sweep until no vertex moves by more than a
// thousandth of its distance to its neighbours or SafeSmoothSweeps sweeps
// are done. `moves` counts the moves made.
//   status: set for more than MaxFaces triangles (the message of the
//   plain smoothing's limit) or more vertices than the tables hold; the
//   message has been shown.
void SMSAF2(int numTriangles, View1<const Triangle> triangles, View1<XY> vertices, int& moves,
            bool& status);

// IMPRV2: flip every inner edge that is not Delaunay (exact in-circle test)
// until none is left, then in ImproveRounds rounds flip the edges whose
// flip brings the vertices' triangle counts nearer 6 inside (one for each
// 60 degrees on the boundary), and smooth the interior vertices, keeping a
// move only when the least quality of the triangles around the vertex does
// not fall.
//   status: set when the mesh is larger than the tables; the message has
//   been shown.
void IMPRV2(int numTriangles, View1<Triangle> triangles, View1<XY> vertices, bool& status);

}  // namespace kntr::mesher
