// Operations on a curve as a whole or on the whole profile: the profile's
// type, a curve's parameterization, opening and closing, translation and
// rotation, the reference point, fitting the box, and the snap line.
//
//   MDKNTR  the menu "PROFILE MODIFICATION"
//   SLPRTP  the profile type: cubic spline or polyline
//   SLPARM  the parameterization of a curve
//   SPPRCV  split a closed curve open at a chosen point
//   JNPRCV  close an open curve (no point is added)
//   ORKNTR  the menu "ORIENT PROFILE"
//   TRKNTR  translate the profile
//   RTKNTR  rotate the profile about the reference point
//   DGREFP  the reference point by pointer, digitizer or keyboard
//   INSNAP  define the snap line by two points
#pragma once

namespace kntr::profile {

void MDKNTR(bool& status);
// SLPRTP: `cancel` for "CANCEL" or an abort; a deadlock refuses the spline.
void SLPRTP(bool& cancel, bool& status);
// SLPARM: choose the parameterization code `code` (1..5); `cancel` leaves it.
void SLPARM(int& code, bool& cancel, bool& status);
// SPPRCV: the chosen point of CURCRV becomes its first point, and the curve
// is open.
void SPPRCV(int& item, bool& cancel, bool& status);
// JNPRCV: close curve c unless that would lock its spline (told).
void JNPRCV(int c, bool& status);
void ORKNTR(bool& status);
void TRKNTR(int& item, bool& cancel, bool& status);
// RTKNTR: `angle` in degrees, kept as the default of the next turn.
void RTKNTR(double& angle, int& item, bool& cancel, bool& status);
void DGREFP(bool show, bool digitizer, bool& cancel, bool& status);
// translateProfile, rotateProfile: the arithmetic of TRKNTR and RTKNTR.
void translateProfile(double dx, double dy);
void rotateProfile(double degrees);
void INSNAP(int& item, bool& cancel, bool& status);

}  // namespace kntr::profile
