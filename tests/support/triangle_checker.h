// Test support: checks that a list of triangles is a proper mesh of a region.
//
// The region is an exterior polygon with holes, each given counterclockwise
// as a list of points. A mesh passes when
//   - every triangle is counterclockwise with positive area;
//   - the triangle areas sum to the region's area within 1e-9 relative;
//   - every edge inside the region is used by two triangles, once in each
//     direction, and every other edge lies on the region's boundary and is
//     used once; together these cover the boundary exactly;
//   - no vertex of a triangle lies outside the region.
#pragma once

#include <gtest/gtest.h>

#include <vector>

#include "framework/onebased.h"
#include "mesher/structure.h"

namespace kntr::testing {

struct Region {
  std::vector<std::vector<XY>> polygons;  // exterior first, then holes; all counterclockwise

  double area() const;
  // True when p lies inside the region or within `tol` of its boundary.
  bool contains(const XY& p, double tol) const;
};

// Checks triangles(1..numTriangles) over vertices against the region.
::testing::AssertionResult checkMesh(const Region& region, View1<const XY> vertices,
                                     int numTriangles, View1<const mesher::Triangle> triangles);

}  // namespace kntr::testing
