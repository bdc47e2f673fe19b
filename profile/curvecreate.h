// New curves with the pointer: created by picks or keyed coordinates in the
// window, or digitized off a drawing once the digitizer is calibrated.
//
//   CRPRCV  create a new curve in the window
//   DGPRCV  the menu "PROFILE DIGITIZING"
//   DGPRPN  digitize the points of the last curve
#pragma once

namespace kntr::profile {

void CRPRCV(bool& status);
void DGPRCV(bool& status);
void DGPRPN(bool& status);

}  // namespace kntr::profile
