// Choosing a point of the profile: by a pick near it, or by its number on
// the current curve. Every point editor chooses its point this way.
//
//   IQPPNT  the point nearest to a picked position, if the pick is clear
//   SLPRPN  the common dialogue: a point of CURCRV by number or by pick
#pragma once

#include <string_view>

namespace kntr::profile {

// Verdicts of IQPPNT.
inline constexpr int PointFound = 0;
inline constexpr int PointNothingNear = 1;
inline constexpr int PointAmbiguous = 2;
// Share of the larger visible side within which a pick finds a point, the
// most candidates kept, and how much farther the second must be.
inline constexpr double PointPickShare = 0.03;
inline constexpr int MaxPointCandidates = 10;
inline constexpr double PointPickRatio = 2.0;

// IQPPNT: the point nearest to (x, y) within the pick tolerance: `result`
// PointFound with its curve and point, PointNothingNear, or PointAmbiguous
// (more than ten candidates, or a second within twice the nearest distance).
void IQPPNT(double x, double y, int& curve, int& point, int& result, bool& status);

// Messages of the common dialogue where an editor says them otherwise.
struct PointPickTexts {
  const char* tooHigh = "Point number exceeds available profile points!";
  const char* nothingNear = "Non-precise selection of point!";
  const char* ambiguous = "Ambiguous selection of point!";
};

// SLPRPN: ask `question` for a point of CURCRV, CURPNT the default: a keyed
// number or a pick (which may change CURCRV). On success CURCRV and CURPNT
// are the chosen point. `item` is set to a menu item chosen instead (the
// caller acts on it as a new selection), `cancel` to an abort.
void SLPRPN(std::string_view question, std::string_view help, const PointPickTexts& texts,
            int& item, bool& cancel, bool& status);

}  // namespace kntr::profile
