// Printed texts of the profile.
//
//   PROUTL  print the profile outline: kind, number of curves, reference point
#pragma once

namespace kntr::profile {

// PROUTL: the "Profile outline" text, or "No profile curves available!".
void PROUTL(bool& status);

}  // namespace kntr::profile
