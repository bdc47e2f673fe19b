// The controls of the picture reached from "DISPLAY OPTIONS": spline
// display and accuracy, interior meshing and its quality. Each is a toggle
// menu: a row shows its state; choosing it erases the picture, changes the
// setting, draws the picture again and rewrites the row.
//
//   CTSPLN  the menu "CURVE SPLINE CONTROL"
//   CTMESH  the menu "INTERIOR MESHING CONTROL"
//   CTMQAL  the menu "SETUP OF MESHING QUALITY"
#pragma once

namespace kntr::profile {

// Largest number of triangles a mesh may be asked for.
inline constexpr int MaxMeshDensity = 10000;

void CTSPLN(bool& status);
void CTMESH(bool& status);
void CTMQAL(bool& status);

}  // namespace kntr::profile
