// The robust mode of the region mesher.
//
// The region is moved to the origin and scaled by a power of two to a size
// near 1 before it is meshed, so that every tolerance of the pipeline is
// relative to the region's size and a region scaled by any factor meshes
// alike. Each mesh is checked with exact predicates; a run that fails or
// gives a mesh that is not proper is repeated with the region turned by a
// growing angle and a slightly changed count, and the messages of the
// attempts are held back unless all of them fail. After the mesh come, as
// asked, smoothing that keeps every triangle turned the right way and the
// quality stage.
//
//   TRRBM2  mesh one region in the robust mode for a triangle count
//   TRRBA2  mesh one region in the robust mode for a required mean quality
//   IQMSVL  whether a region's triangles fill it exactly once, all counterclockwise
//   RMINVT  remove the free vertices of triangles turned over by collapsing them
//   IQCVCR  the first two closed curves of the profile that cross, overlap or touch
#pragma once

#include <string>

#include "framework/onebased.h"
#include "mesher/structure.h"

namespace kntr::mesher {

// Turns of the region tried before the robust mode gives up.
inline constexpr int MaxRobustAttempts = 8;
// Passes of the repair of triangles turned over, each removing one vertex.
inline constexpr int MaxRepairPasses = 50;

// What the robust mode does after the mesh is made.
struct RobustSettings {
  bool smooth = false;   // smoothing that never inverts a triangle
  bool improve = false;  // staggered rows, gentle grading, flips, constrained smoothing
};

// TRRBM2: mesh one region as TRNSM2 does (same layout of polygons and
// counts), in the robust mode.
//   status: set when every attempt failed; the message of the first
//   attempt has been shown.
void TRRBM2(int numHoles, View1<const int> polySizes, const RobustSettings& settings,
            int& numVertices, View1<XY> vertices, int& count, View1<Triangle> triangles,
            bool& status);

// TRRBA2: search, from the count `count` on entry, the triangle count whose
// mesh has the required mean quality, within maxIterations passes; the best
// mesh of all passes is returned (the one closest to the requirement among
// those that meet it within 1%, else the one of highest quality), with its
// quality in `achieved`.
//   status: set when a pass failed; the message has been shown.
void TRRBA2(int maxIterations, double requiredQuality, int numHoles, View1<const int> polySizes,
            const RobustSettings& settings, int& numVertices, View1<XY> vertices, int& count,
            View1<Triangle> triangles, int& iterations, double& achieved, bool& status);

// IQMSVL: true when triangles(1..numTriangles) over vertices(1..numVertices)
// are all strictly counterclockwise (exactly), no directed edge is used
// twice, their areas add up to the region's area and the edges used once
// to its boundary length (both within 1e-9 relative). The region is given
// as for TRNSM2 by polySizes and the first vertices.
bool IQMSVL(int numHoles, View1<const int> polySizes, int numVertices, View1<const XY> vertices,
            int numTriangles, View1<const Triangle> triangles);

// RMINVT: while a triangle is turned over or flat, move one of its vertices
// that is not on the region's boundary (the first `boundary` vertices and
// those that the last TRNSM2 run put on the boundary's edges) onto its
// nearest neighbour that leaves every other triangle around it
// counterclockwise, dropping the triangles that held both; then drop the
// vertices no triangle uses. The boundary's vertices keep their numbers.
void RMINVT(int boundary, int& numVertices, View1<XY> vertices, int& numTriangles,
            View1<Triangle> triangles);

// IQCVCR: the first pair of the profile's closed curves (those that do not
// cross themselves, which the mesher uses) that cross, overlap, coincide or
// touch one another; first = second = 0 when no pair does. Curve numbers are
// those of the profile.
//   status: set when the curves could not be made; the message has been shown.
void IQCVCR(int& first, int& second, bool& status);

// The message that names such a pair.
std::string crossingCurvesMessage(int first, int second);

}  // namespace kntr::mesher
