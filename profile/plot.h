// The plot of the profile on paper, a plotter or a plot file.
//
//   PLKNTR  the plot dialogue: plot attributes, medium, scale, then the plot
//   MNSTPA  the menu "SETUP OF PLOT ATTRIBUTTES"
//   plotProfileOn  draw the plot on the open medium: scale, grid, curves,
//                  heading
#pragma once

namespace kntr::profile {

// Room around the box on a plot fitted to the page, as a fraction.
inline constexpr double PlotPageMargin = 0.08;

// PLKNTR: plot the profile. With no curves, "(PLKNTR) No profile curves
// available!". The plot attributes come first, then the medium (SLMEDM) and
// the scale; "$" at any question ends the dialogue without a plot.
//   status: set when the medium fails to open or close (already told).
void PLKNTR(bool& status);

// MNSTPA: the menu "SETUP OF PLOT ATTRIBUTTES"; `cancelled` on "$".
void MNSTPA(bool& cancelled, bool& status);

// plotProfileOn: on the open medium, scale to the box (fitted with a margin
// when `denominator` is 0, else at 1:denominator), draw the grid, the curves
// and the heading "Spline profile" or "Polyline profile".
void plotProfileOn(double denominator, bool& status);

}  // namespace kntr::profile
