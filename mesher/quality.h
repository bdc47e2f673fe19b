// Triangle quality and Laplace smoothing.
//
//   IQTRST  quality of each triangle, with minimum, maximum, mean, deviation
//   SMLPT2  Laplace smoothing of the interior vertices of a mesh
#pragma once

#include "framework/onebased.h"
#include "mesher/structure.h"

namespace kntr::mesher {

// IQTRST: quality 8(s-a)(s-b)(s-c)/(abc) of each triangle, and the figures.
void IQTRST(int numTriangles, View1<const XY> vertices, View1<const Triangle> triangles,
            double& minimum, double& maximum, double& mean, double& deviation,
            View1<double> quality, bool& status);

// SMLPT2: move each interior vertex to the mean of its neighbours until no
// move is longer than `tolerance`, or `moveLimit` moves are done.
void SMLPT2(int numTriangles, View1<const Triangle> triangles, double tolerance, int moveLimit,
            View1<XY> vertices, int& moves, bool& status);

}  // namespace kntr::mesher
