// Strips of triangles between two lists of vertices, and their improvement
// by diagonal swaps.
//
// A strip is made by zipping two lists: a ring between two closed lists (a
// polygon's boundary outside, the walk around its rows of points inside),
// or the band between two chains that run from one vertex to another. Its
// triangles are numbered 1..Count; the edge between triangles k and k + 1
// (a rung) has number k, and every side on the lists has one number above
// all rungs. The swaps then replace a rung by the other diagonal of its
// quadrilateral wherever that one is better.
//
//   MRGTRI  zip two lists of vertices with a strip of triangles
//   SWTRSP  swap the diagonals of a strip until none is to be swapped
//   IQTRCE  the two triangles of a strip that share an edge number
//   SWTRDG  test one rung and swap it when the other diagonal is better
//   IQDGCV  which diagonal of a quadrilateral is the better one
#pragma once

#include "framework/onebased.h"
#include "mesher/structure.h"
#include "mesher/workarea.h"

namespace kntr::mesher {

// The edge numbers of the sides of the strip's triangles: side j of triangle
// k runs from its vertex j to vertex j + 1 (3 to 1). Three integers a
// triangle, kept in a piece of IntAux.
class StripSides {
 public:
  StripSides() = default;
  explicit StripSides(View1<int> room) : room_(room) {}
  int& operator()(int k, int j) const { return room_((k - 1) * 3 + j); }

 private:
  View1<int> room_;
};

// MRGTRI: zip the lists a(0..numA) and b(0..numB) into triangles 1, 2, ...
// of `triangles`, with their side numbers in `sides`. With `ring` both lists
// are closed (a(numA) = a(0), b(numB) = b(0)), a runs counterclockwise round
// b, and the strip has numA + numB triangles; otherwise both are chains from
// one vertex to another, a with the region on its left, and the strip has
// numA + numB - 2 triangles. A triangle beyond `maxStrip` is not made.
//   status: set when a triangle would turn over; the message has been shown.
void MRGTRI(bool ring, int maxStrip, int numA, int numB, View0<const int> a, View0<const int> b,
            View1<const XY> vertices, View1<Triangle> triangles, StripSides sides, bool& status);

// SWTRSP: go along the rungs of a strip of `count` triangles, swapping each
// whose other diagonal is better and then the sides around it, until no
// swap is left. `swapStack` holds `count` items of work.
//   status: set when the strip's numbering is broken; the message has been shown.
void SWTRSP(bool ring, int count, View1<const XY> vertices, View1<Triangle> triangles,
            StripSides sides, View1<int> swapStack, bool& status);

// IQTRCE: the two triangles with a side numbered `edge`, and the side of each.
// With `both` they are searched from `start` down to 1; otherwise the first
// so, and the second from 1 upward, below the first.
//   status: set when there are not two; the message has been shown.
void IQTRCE(bool both, int start, int edge, StripSides sides, int& t1, int& j1, int& t2, int& j2,
            bool& status);

// SWTRDG: the rung `edge` between side j1 of t1 and side j2 of t2: swap it
// when the other diagonal is better, and push the four sides around it that
// are numbered at most `limit` and not on the stack.
void SWTRDG(int t1, int j1, int t2, int j2, int edge, int limit, View1<const XY> vertices,
            View1<Triangle> triangles, StripSides sides, View1<int> swapStack, int& top);

// IQDGCV: for the quadrilateral p1, p2, p3, p4 (counterclockwise) with the
// diagonal p2-p4: -1 when that diagonal is the better one, +1 when p1-p3 is,
// 0 when they are as good within the tolerance. The rule is that of the
// circumcircle: the diagonal whose opposite angles sum to less than pi.
int IQDGCV(const XY& p1, const XY& p2, const XY& p3, const XY& p4);

}  // namespace kntr::mesher
