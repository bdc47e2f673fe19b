// Test support: structural checks of the mesher's results.
//
// checkDecomposition looks at the half-edge structure after the convex
// decomposition, checkTriangles at a triangle list over a region. Both list
// every problem they find in the failure message.
#pragma once

#include <gtest/gtest.h>

#include <vector>

#include "framework/onebased.h"
#include "mesher/structure.h"

namespace kntr::testing {

// A region as the tests build it: the exterior polygon and its holes, each
// counterclockwise. Inside is decided by the even-odd rule, so an island in
// a hole is a region of its own.
struct TestRegion {
  std::vector<std::vector<XY>> polygons;
};

// Plane helpers: twice the signed area of the triangle o, a, b; whether the
// segments ab and cd cross at a point inside both; the distance from p to
// the segment ab; whether p lies inside a polygon (even-odd rule).
double cross(const XY& o, const XY& a, const XY& b);
bool properlyCross(const XY& a, const XY& b, const XY& c, const XY& d);
double distanceToSegment(const XY& p, const XY& a, const XY& b);
bool insidePolygon(const XY& p, const std::vector<XY>& polygon);
// Signed area of a closed polygon (positive when counterclockwise).
double signedArea(const std::vector<XY>& polygon);

// Lay the region's polygons one after another into `vertices` (from
// element 1) and their sizes into `sizes`; the count of holes is returned.
int layOut(const TestRegion& region, View1<XY> vertices, View1<int> sizes);

// Checks of the half-edge structure of m against the region:
// - every row names vertices, polygons and half-edges in range;
// - every polygon's Next cycle closes, carries the polygon's number, and
//   together the cycles hold every half-edge exactly once;
// - twins are symmetric and run between the same two vertices in opposite
//   directions;
// - every polygon has at least 3 corners and its interior on the left; with
//   `convex` no corner passes twice through a point and every corner angle,
//   stored and measured, stays within pi (stored within MeshTol, measured
//   within 1e-9);
// - the stored corner angles agree with the geometry;
// - the polygon areas add up to the region's area and the half-edges
//   without twin to its boundary length.
::testing::AssertionResult checkDecomposition(const mesher::MeshData& m, const TestRegion& region,
                                              bool convex = true);

// Checks that triangles(1..numTriangles) over vertices(1..size) are a proper
// mesh of the region:
// - vertex numbers in range and distinct;
// - every triangle counterclockwise with positive area;
// - the areas sum to the region's area within 1e-9 relative;
// - every inner edge used twice, once in each direction; every other edge
//   lies on the region's boundary, and these cover each boundary edge once;
// - no vertex lies outside the region.
// The bounds of the boundary tests are relative to the region's size.
::testing::AssertionResult checkTriangles(const TestRegion& region, View1<const XY> vertices,
                                          int numTriangles,
                                          View1<const mesher::Triangle> triangles);

}  // namespace kntr::testing
