// The half-edge structure of one region, built from its boundary polygons.
//
//   IZMCPR  build the structure of a region: exterior loop and hole loops
//   IQHLTB  the top and bottom vertices of the holes, sorted
#pragma once

#include "framework/onebased.h"
#include "mesher/structure.h"

namespace kntr::mesher {

// IZMCPR: fill the structure of `m` from numHoles + 1 counterclockwise
// polygons lying one after another at the start of m.Vertices, with
// polySizes(1) points for the exterior and polySizes(1 + k) for hole k. The
// exterior loop is walked counterclockwise and each hole loop clockwise, so
// the region is on the left of every half-edge. The region is one polygon;
// PolygonFirst(1 + k) is the first half-edge of hole k. holeList receives
// 2 x numHoles half-edges (see IQHLTB).
void IZMCPR(MeshData& m, int numHoles, View1<const int> polySizes, View1<int> holeList,
            bool& status);

// IQHLTB: for each hole, from PolygonFirst(1 + k), the half-edge at its top
// vertex (highest y, then highest x) and at its bottom vertex (lowest y,
// then lowest x). holeList(1..numHoles) gets the tops from top to bottom,
// holeList(numHoles + 1..2 numHoles) the bottoms from bottom to top.
void IQHLTB(const MeshData& m, int numHoles, View1<int> holeList, bool& status);

}  // namespace kntr::mesher
