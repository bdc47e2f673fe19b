// Printed texts of the profile.
//
//   PROUTL  print the profile outline: kind, number of curves, reference point
//   PRPRPN  print the point table of the current curve
//   PRKNTR  print the profile: the outline, the section properties when SHOWSP is
//           on, then the point table
//
// The texts go wherever listings go now: the screen, or the printer that
// SLPRNT opened.
#pragma once

#include <string>

namespace kntr::profile {

// PROUTL: the "Profile outline" text, or "No profile curves available!".
void PROUTL(bool& status);

// PRPRPN: the table "Profile offset point definition" of the current curve:
// number, X, Y, knuckle weight and point type of each point, paged.
//   status: set with no curves ("(PRPRPN) No profile curves available!").
void PRPRPN(bool& status);

// PRKNTR: PROUTL, then PRSECP when SHOWSP is on, then PRPRPN.
//   status: set when either fails or the print job breaks off.
void PRKNTR(bool& status);

// The head, the foot and one row of the point table, as PRPRPN prints them.
std::string pointTableHead();
std::string pointTableFoot();
std::string pointTableRow(int curve, int point);

}  // namespace kntr::profile
