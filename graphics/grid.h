// The lattice of crosses behind a plot, with numbered edges, and the short
// number texts of plot files.
//
//   GGRID2  draw the lattice in the grid rectangle, with axes and labels
//   gridStep  the step and major period the lattice takes for a rectangle
//   SPSFFM  a real as its shortest fixed text (two decimals)
//   SPSIFM  an integer as its shortest text
#pragma once

#include <string>

namespace kntr::graphics {

// Rows of the step table.
inline constexpr int GridSteps = 18;
// At most this many lattice lines along an axis.
inline constexpr int GridLines = 20;

// gridStep: the step and major period for extents w and h; false when no
// row of the table fits (no lattice).
bool gridStep(double w, double h, double& step, int& period);

// GGRID2: the lattice of the plot state's grid rectangle; `failed` is set
// when a number could not be written.
void GGRID2(bool& failed);

// SPSFFM: `value` in fixed form with two decimals, leading blanks dropped,
// into a field of `length` characters (at least 16); `used` is the length
// written.
void SPSFFM(double value, std::string& text, int length, int& used);
// SPSIFM: `value` in exactly its digits, into a field of `length`.
void SPSIFM(long long value, std::string& text, int length, int& used);

}  // namespace kntr::graphics
