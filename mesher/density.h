// Density decomposition and triangle size.
//
//   SDCPET  split the convex polygons by density and give each its size h
#pragma once

#include "framework/onebased.h"
#include "mesher/structure.h"

namespace kntr::mesher {

// A user density at a point; the system's own returns 1.0.
using DensityFunction = double (*)(double x, double y);

// SDCPET: with the region cut into convex polygons, split them where the
// density varies too much and set PolygonSize for each, so that about
// `desiredCount` triangles fill the region. The work arrays come from
// `intAux` and `realAux`, the room the caller leaves.
void SDCPET(MeshData& m, DensityFunction density, int desiredCount, View1<int> intAux,
            View1<double> realAux, bool& status);

}  // namespace kntr::mesher
