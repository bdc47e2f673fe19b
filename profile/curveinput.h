// Bounding box and curve input at the terminal.
//
//   INBBOX  ask for the bounding box, X range then Y range
//   KYPRCV  add a curve by key-in (profile type and reference point first)
//   INPRPN  keyed input of the points of a curve
//   INREFP  keyboard input of the reference point
//   RMPRCV  remove a curve from the table
//   deleteCurrentCurve  remove the current curve and choose the next current
#pragma once

namespace kntr::profile {

// INBBOX: ask for the box; in modify mode the present values are the
// defaults. `cancelled` is set when the user aborts; values already
// accepted stay.
void INBBOX(bool modify, bool& cancelled, bool& status);

// KYPRCV: key in a new curve. Ends with status set after every key-in that
// reached the input of points, done or abandoned, so the caller does not
// mark the data as modified.
void KYPRCV(bool& status);

// INPRPN: keyed input of the points of curve c.
void INPRPN(int c, bool& status);

// INREFP: ask for the reference point; an abort leaves it unchanged.
void INREFP(bool& status);

// RMPRCV: remove curve c, moving the following curves down.
void RMPRCV(int c, bool& status);

// deleteCurrentCurve: remove CURCRV; the curve before it becomes current,
// except that curve 1 stays current.
void deleteCurrentCurve(bool& status);

}  // namespace kntr::profile
