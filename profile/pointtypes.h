// Point types and the tangents of tangent points.
//
//   MDPTYP  the menu "POINT TYPE MODIFICATION"
//   MDPNTK  give chosen points a type without tangents (refusing a deadlock)
//   TNLEAD  edit leading tangents
//   TNTRAI  edit trailing tangents
//   TNEQUL  edit equal tangents (one direction, two lengths)
//   TNBOTH  edit both tangents, each side on its own
//   tangentSegments  the segments a tangent of a point acts on (HILSEG)
#pragma once

namespace kntr::profile {

// A relative tangent length of 1 stands for this share of the window.
inline constexpr double TangentUnitShare = 0.1;

void MDPTYP(bool& status);
// MDPNTK: `type` 1, 2, 7 or 8 (`weighted` asks for a knuckle's weight);
// `item` is a menu item chosen instead of a point.
void MDPNTK(int type, bool weighted, int& item, bool& cancel, bool& status);
void TNLEAD(int& item, bool& status);
void TNTRAI(int& item, bool& status);
void TNEQUL(int& item, bool& status);
void TNBOTH(int& item, bool& status);
// tangentSegments: the segment before point j of curve c (leading side) or
// after it (trailing side): 0 where an open curve has none.
int tangentSegment(int c, int j, bool leadingSide);

}  // namespace kntr::profile
