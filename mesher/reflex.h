// Removal of reflex corners: each is resolved by one or two new edges to
// points that the corner sees, chosen so that the smallest angle they make
// is as large as possible.
//
//   RSRFAL  resolve every reflex corner of the decomposition
//   RSRFVX  find the targets of the new edges at one reflex corner
//   MKVSAN  the visible chain with extra points at even angular steps
//   MKVONB  the chain points that are Voronoi neighbours of the corner
//   SLRFSP  choose one or two separators by the smallest angle they leave
#pragma once

#include "framework/onebased.h"
#include "mesher/structure.h"
#include "mesher/workarea.h"

namespace kntr::mesher {

// RSRFAL: resolve every corner above pi + MeshTol, including those of
// half-edges added on the way, by RSRFVX and INSEDG, so that all polygons
// end convex. Work space is taken from intAux and realAux.
void RSRFAL(MeshData& m, View1<int> intAux, View1<double> realAux, bool& status);

// Resolves the corner at half-edge h if it is reflex (above pi + MeshTol):
// the new edges RSRFVX finds are inserted by INSEDG.
void resolveReflexCorner(MeshData& m, int h, View1<int> intAux, View1<double> realAux,
                         bool& status);

// RSRFVX: for the reflex corner at half-edge h, the half-edges `first` and
// `second` at the far ends of one or two new edges (second is 0 for one
// edge). A target inside a boundary edge is inserted there as a vertex.
void RSRFVX(MeshData& m, int h, View1<int> intAux, View1<double> realAux, int& first, int& second,
            bool& status);

// MKVSAN: turn the visible chain (x, y, label)(0..top), seen from R, into the
// candidate list: the chain is moved to the end of the room 0..maxIndex,
// points on one ray from R are thinned to the nearest, an edge that spans
// 2 x separatorAngle or more gets points at even angular steps (labelled as
// lying inside it), and theta(i) is the angle of point i from point 0.
// `count` is the index of the last point.
void MKVSAN(double rx, double ry, double separatorAngle, int top, View0<double> x, View0<double> y,
            View0<int> label, int maxIndex, int& count, View0<double> theta, bool& status);

// MKVONB: the indices among points 0..last (in angular order around R) of
// those whose Voronoi region borders R's within the sector they span:
// stack(0..top), top = -1 when none. cx, cy (0..last) are work space.
void MKVONB(double rx, double ry, int last, View0<const double> x, View0<const double> y, int& top,
            View0<int> stack, View0<double> cx, View0<double> cy, bool& status);

// SLRFSP: among the candidates neighbours(0..numNeighbours - 1) (indices of
// the points 0..count around the corner R, angles theta, labels as
// half-edges), pick one separator whose smallest angle reaches `target`, or
// else the best of one separator and of a pair. `best` is the smallest angle
// of the choice, `first` and `second` the picked point indices (second is
// -1 for a single separator; first is -1 when nothing could be picked).
// `work` needs numNeighbours entries.
void SLRFSP(const MeshData& m, double target, double rx, double ry, int count,
            View0<const double> x, View0<const double> y, View0<const int> label,
            View0<const double> theta, int numNeighbours, View0<const int> neighbours,
            View0<double> work, double& best, int& first, int& second);

}  // namespace kntr::mesher
