// Joining the holes of a region to its outer boundary.
//
//   JNHOLS  bridge every hole to the boundary and split below each hole
//   JNHBOB  bridge one hole from its top vertex up to the boundary above
#pragma once

#include "framework/onebased.h"
#include "mesher/structure.h"

namespace kntr::mesher {

// JNHOLS: for the holes of holeList (as IQHLTB leaves it), from the topmost
// down, a bridge from the top vertex upward (JNHBOB); then each bottom
// vertex, from the lowest up, that is still reflex is resolved as RSRFAL
// would. intAux and realAux are the room the caller leaves.
void JNHOLS(MeshData& m, int numHoles, View1<const int> holeList, View1<int> intAux,
            View1<double> realAux, bool& status);

// JNHBOB: join the hole whose top vertex starts half-edge `top` to the
// loop around it by a doubled edge from the top vertex to a point that it
// sees above it; hole and loop become one cycle.
void JNHBOB(MeshData& m, int top, View1<int> intAux, View1<double> realAux, bool& status);

}  // namespace kntr::mesher
