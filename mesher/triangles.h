// Triangle generation in the convex polygons of the decomposition.
//
//   TRMSCP  fill every convex polygon with triangles of its size
#pragma once

#include "framework/onebased.h"
#include "mesher/structure.h"

namespace kntr::mesher {

// TRMSCP: triangles for all polygons of the decomposition, appended to
// `triangles` (its size is the capacity); numTriangles is set to the count.
void TRMSCP(MeshData& m, View1<Triangle> triangles, int& numTriangles, View1<int> intAux,
            View1<double> realAux, bool& status);

}  // namespace kntr::mesher
