// The module's graphic mode: the menu "PROFILE MANIPULATION" in the graphics
// window, and the display options reached from it.
//
//   MNPRCV  open the window with the profile drawn and run its menu
//   MNDISP  the menu "DISPLAY OPTIONS"
//   CTDISP  the menu "DISPLAY CONTROL" (grid on or off)
#pragma once

namespace kntr::profile {

void MNPRCV(bool& status);
void MNDISP(bool& status);
void CTDISP(bool& status);

}  // namespace kntr::profile
