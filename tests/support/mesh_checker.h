// Test support: structural checks of the mesher's results.
//
// checkDecomposition looks at the half-edge structure after the convex
// decomposition; checkTriangles at a triangle list. Both return the problems
// they find as readable lines, empty when the result is sound, so that a
// test can print them.
#pragma once

#include <string>
#include <vector>

#include "framework/onebased.h"
#include "mesher/structure.h"

namespace kntr::testing {

// A region as the tests build it: the exterior polygon and its holes, each
// counterclockwise.
struct TestRegion {
  std::vector<std::vector<XY>> polygons;
};

// Signed area of a closed polygon (positive when counterclockwise).
double signedArea(const std::vector<XY>& polygon);
// Area of a region: exterior minus holes.
double regionArea(const TestRegion& region);
// Length of all boundary polygons of a region.
double boundaryLength(const TestRegion& region);

// Lay the region's polygons one after another into `vertices` (from
// element 1) and their sizes into `sizes`; the count of holes is returned.
int layOut(const TestRegion& region, View1<XY> vertices, View1<int> sizes);

// Checks of the half-edge structure of m:
// - every row names vertices, polygons and half-edges in range;
// - every polygon's Next cycle closes, carries the polygon's number, and
//   together the cycles hold every half-edge exactly once;
// - twins are symmetric and run between the same two vertices in opposite
//   directions;
// - every polygon has at least 3 distinct corners, its interior on the left
//   and is convex: its corner angles, as stored and as measured, stay within
//   pi (stored within MeshTol, measured within 1e-9);
// - the stored corner angles agree with the geometry;
// - the polygon areas add up to `area` and the half-edges without twin to
//   the boundary length `length`.
std::vector<std::string> checkDecomposition(const mesher::MeshData& m, double area, double length,
                                            bool convex = true);

// Checks of a triangle list: vertex numbers in range and distinct, every
// triangle counterclockwise with positive area, no directed edge used twice,
// areas adding up to `area`, and the edges used by one triangle only adding
// up to the boundary length `length`.
std::vector<std::string> checkTriangles(int numVertices, View1<const XY> vertices, int numTriangles,
                                        View1<const mesher::Triangle> triangles, double area,
                                        double length);

// All problems as one text, for a test's failure message.
std::string joined(const std::vector<std::string>& problems);

}  // namespace kntr::testing
