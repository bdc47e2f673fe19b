// The part of a boundary chain that a corner of the polygon sees: a
// rotating scan around the corner, with the front part of the chain's own
// lists used as the stack of what is visible so far.
//
//   IQVSPG  the visible part of a chain, seen from a point
//   SCVPGL  scan state 1: the chain turns counterclockwise around the point
//   SCVPGR  scan state 2: the chain backs up, pop what it hides
//   SCVPG1  scan state 3: the chain runs behind the visible part
//   SCVPG2  scan state 4: the chain's end is hidden behind the stack
//   SCVPG3  scan state 5: the chain turned clockwise behind a point
//   SCVPG4  scan state 6: as state 3 for a stack whose top was cut
#pragma once

#include "mesher/workarea.h"

namespace kntr::mesher {

// Scan states; ScanDone ends the scan.
inline constexpr int ScanLeft = 1;
inline constexpr int ScanRight = 2;
inline constexpr int ScanBehind = 3;
inline constexpr int ScanEndHidden = 4;
inline constexpr int ScanTurned = 5;
inline constexpr int ScanCut = 6;
inline constexpr int ScanDone = 7;

// The running state of one scan. Points 0..n of x, y are the chain; the
// stack occupies 0..s and never passes the scan index c. A label is the
// chain index of a point, minus the index of an edge's end for a point
// inside that edge, and is shifted by n for a stack point that does not
// end a visible stretch of the boundary.
struct VisibilityScan {
  double rx = 0.0, ry = 0.0;  // the point that looks, R
  int n = 0;                  // last chain index
  bool open = true;           // first and last point differ
  int state = ScanLeft;
  int c = 0;                  // current chain index
  int s = 0;                  // stack top
  double wx = 0.0, wy = 0.0;  // saved point W
  // Chain point c - 1 as it came in, when its place in the lists has been
  // taken by a cut stack top; only state 2 reads it.
  bool previousSaved = false;
  double previousX = 0.0, previousY = 0.0;
  View0<double> x, y;
  View0<int> label;
};

// IQVSPG: the part of the chain (x, y)(0..n) visible from (rx, ry), which is
// the corner between the chain's last and first points. On return points
// 0..top of x, y, label are the visible chain in counterclockwise order
// around R, labels as in VisibilityScan without the shift.
void IQVSPG(double rx, double ry, int n, View0<double> x, View0<double> y, View0<int> label,
            int& top, bool& status);

void SCVPGL(VisibilityScan& v, bool& status);
void SCVPGR(VisibilityScan& v, bool& status);
void SCVPG1(VisibilityScan& v, bool& status);
void SCVPG2(VisibilityScan& v, bool& status);
void SCVPG3(VisibilityScan& v, bool& status);
void SCVPG4(VisibilityScan& v, bool& status);

}  // namespace kntr::mesher
