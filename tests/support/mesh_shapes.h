// Test support: boundary polygons for the mesher's tests, all
// counterclockwise, and a seeded generator of random regions with holes.
#pragma once

#include <cstdint>
#include <random>
#include <vector>

#include "support/mesh_checker.h"

namespace kntr::testing::shapes {

using Polygon = std::vector<XY>;

// Axis-parallel rectangle from (x0, y0) to (x1, y1).
Polygon rectangle(double x0, double y0, double x1, double y1);
// Regular n-gon of radius r around (cx, cy), the first corner at `phase`.
Polygon circle(double cx, double cy, double r, int n, double phase = 0.0);
// An L of outer size w by h with arm width a.
Polygon lShape(double w, double h, double a);
// A comb: a base bar with `teeth` teeth pointing up; every gap has two
// reflex corners at its bottom.
Polygon comb(int teeth);
// A section through a ship's hull: a wine-glass shape, hollow near the keel
// and full towards the deck, closed by a cambered deck; n points.
Polygon shipSection(int n);
// The polygon in reverse order.
Polygon reversed(const Polygon& p);

// A star-shaped polygon around (cx, cy): n corners at sorted random angles
// with radii in [rMin, rMax].
Polygon randomStar(std::mt19937& random, double cx, double cy, double rMin, double rMax, int n);

// A random simple polygon through n random points of the square
// [cx - r, cx + r] x [cy - r, cy + r]: crossing edges are uncrossed by
// reversing the stretch between them until none are left, which gives
// ragged shapes with deep pockets.
Polygon randomTangle(std::mt19937& random, double cx, double cy, double r, int n);

// A random region: a star-shaped (or, with `tangled`, a ragged) exterior and up to maxHoles
// star-shaped holes placed where they keep clear of the exterior and of each other. With `grid` the
// coordinates are rounded to a coarse grid, which makes many points level with one another
// (polygons that would stop being simple are drawn again).
TestRegion randomRegion(std::mt19937& random, int maxHoles, bool grid, bool tangled = false);

// True when no two edges of the region's polygons meet other than
// neighbours at their shared corner.
bool isSimpleRegion(const TestRegion& region);

}  // namespace kntr::testing::shapes
