// Editing the points of a profile curve in the graphics window: insertion,
// moving, fairing and deletion, each chosen by number or by pick. Every
// change erases the picture, changes the block and draws it again, and is
// one step of undo.
//
//   MDPRCV  the menu "PROFILE CURVE MODIFICATION"
//   MNINSP  the menu "CURVE POINT INSERTION"
//   INPRPT  insert points on segments of the current curve
//   MVPRPN  the menu "PROFILE POINT MOVING" and the moves
//   FRPRPN  the menu "PROFILE POINT FAIRING" and the fairings
//   FRPROP  the fairing properties
//   DLPRPN  delete points
//   FTBBOX  grow or fit the bounding box to the curves
//   windowPicture  the profile's picture in the window (erase or draw)
//   windowRedraw   erase, draw and show the picture in the window
//   dragPoint  one step of a drag: the point stored and the picture drawn anew
//   segmentPoint  the point of a segment at a given X, Y or parameter
#pragma once

#include "framework/onebased.h"

namespace kntr::profile {

// Ways to insert (rows of "CURVE POINT INSERTION").
inline constexpr int InsertFree = 1;
inline constexpr int InsertAtX = 2;
inline constexpr int InsertAtY = 3;
inline constexpr int InsertAtParameter = 4;

// Ways to move (rows of "PROFILE POINT MOVING").
inline constexpr int MoveFree = 1;
inline constexpr int MoveHorizontal = 2;
inline constexpr int MoveVertical = 3;
inline constexpr int MoveToSnapLine = 4;
inline constexpr int MoveSameX = 5;
inline constexpr int MoveSameY = 6;

// The margin of FTBBOX: a tenth of the larger extent of the curves.
inline constexpr double BoxMarginShare = 0.1;

void MDPRCV(bool& status);
void MNINSP(bool& status);
// INPRPT: insert by `mode` until a cancel; `item` is a menu item chosen
// instead of an answer (0 for none), for the caller to act on.
void INPRPT(int mode, int& item, bool& status);
void MVPRPN(bool& status);
void FRPRPN(bool& status);
void FRPROP(bool& status);
// DLPRPN: delete points until a cancel; `item` as for INPRPT.
void DLPRPN(int& item, bool& status);

// FTBBOX: with `fit` every side of the box goes to the extreme of the
// curves' polylines plus the margin; without, a side moves only when the
// curves reach past it. Nothing happens with no curves.
void FTBBOX(bool fit, bool& status);

// windowPicture: erase the picture (and draw the frame again), or draw it,
// rescaled to the box when `rescale`, and show it.
void windowPicture(bool erase, bool rescale, bool& status);
// windowRedraw: erase the picture and draw it (first scaled to the box when
// `rescale`).
void windowRedraw(bool rescale, bool& status);

// dragPoint: point j of curve c to (x, y) as one step of a drag with the
// picture drawn anew: erase, store, draw.
void dragPoint(int c, int j, double x, double y, bool& status);

// segmentPoint: the point of segment `segment` of curve c (from point
// `segment` to the next; on a closed curve segment n closes it) where X
// (InsertAtX) or Y (InsertAtY) equals `value`, the first along the segment,
// or at segment parameter `value` in 0..1 (InsertAtParameter). `found` is
// false when the segment has no such point. A spline profile takes the
// solved spline, a polyline profile the chord.
//   status: a failed solve or a bad segment; the message has been shown.
void segmentPoint(int c, int segment, int mode, double value, XY& point, bool& found,
                  bool& status);

}  // namespace kntr::profile
