// Triangle quality and Laplace smoothing.
//
// The quality of a triangle with sides a, b, c and half perimeter s is
// 8 (s - a)(s - b)(s - c) / (a b c): 1 for an equilateral triangle, 0 for a
// degenerate one. Smoothing moves every interior vertex of a mesh to the
// mean of its neighbours, sweep after sweep, until no move is longer than a
// tolerance or a limit of moves is reached.
//
//   IQTRST  quality of each triangle, with minimum, maximum, mean, deviation
//   SMLPT2  Laplace smoothing of the interior vertices of a mesh
//   SMMSH2  Laplace smoothing of listed vertices with given neighbours
#pragma once

#include "framework/onebased.h"
#include "mesher/structure.h"

namespace kntr::mesher {

// IQTRST: quality 8(s-a)(s-b)(s-c)/(abc) of each triangle, and the figures;
// `deviation` is the sample deviation (0 for one triangle). With no
// triangles nothing is computed or changed. A triangle with two equal
// vertices divides by zero.
void IQTRST(int numTriangles, View1<const XY> vertices, View1<const Triangle> triangles,
            double& minimum, double& maximum, double& mean, double& deviation,
            View1<double> quality, bool& status);

// SMLPT2: move each interior vertex to the mean of its neighbours until no
// move is longer than `tolerance`, or `moveLimit` moves are done.
//   status: set when the mesh is too large for the topology tables or the
//   tables fail; the message has been shown.
void SMLPT2(int numTriangles, View1<const Triangle> triangles, double tolerance, int moveLimit,
            View1<XY> vertices, int& moves, bool& status);

// SMMSH2: the smoothing sweeps over list(1..count): vertex list(i), when
// free(i), goes to the mean of neighbours((i - 1) maxNeighbours + k),
// k = 1..neighbourCount(i). `moves` counts the moves made.
//   status: set when a listed vertex has no neighbours; the message has been shown.
void SMMSH2(int count, View1<const int> list, View1<const bool> free, int maxNeighbours,
            View1<const int> neighbourCount, View1<const int> neighbours, double tolerance,
            int moveLimit, View1<XY> vertices, int& moves, bool& status);

}  // namespace kntr::mesher
