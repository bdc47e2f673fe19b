// Fairing of one point of a profile curve, for the fairing menu and the
// command-line tool.
//
//   fairSettingsFromProfile  the fairing properties of the profile block
//   fairCurvePoint           fair one point of a curve, profile unchanged
#pragma once

#include "framework/onebased.h"
#include "profile/block.h"

namespace kntr::profile {

// The ways to fair a point.
enum class FairMode {
  Free,             // free in the plane
  LeadingTangent,   // along the solved leading tangent of the point
  TrailingTangent,  // along the solved trailing tangent
  LeadingNormal,    // along the leading tangent turned a quarter turn
  TrailingNormal,   // along the trailing tangent turned a quarter turn
  GivenVector,      // along a given direction
};

// Energies kept of one fairing run.
inline constexpr int MaxFairingEnergies = 1000;

struct FairSettings {
  FairMode mode = FairMode::Free;
  XY direction{};           // the direction of FairMode::GivenVector
  bool local = true;        // energy of the two segments at the point (else the whole curve)
  double restraint = -1.0;  // largest step, or -1.0 for none
  int maxIterations = 1;    // most iterations
};

struct FairOutcome {
  int iterations = 0;   // iterations used
  XY start{};           // the point before
  XY faired{};          // the faired position
  XY direction{};       // the direction used (0, 0 for free fairing)
  int energyCount = 0;  // energies kept: min(iterations, MaxFairingEnergies)
  Array1<double, MaxFairingEnergies> energies{};  // energy at the start of each iteration
};

// fairSettingsFromProfile: FRLOCL, FRRSTR with FRRDST, and FRMITR, with the
// given mode and direction.
FairSettings fairSettingsFromProfile(FairMode mode, XY direction = XY{});

// fairCurvePoint: fair point `point` of curve `curve` with the given
// settings. The stop threshold is 1e-6 of the larger side of the bounding
// box. The profile is not changed: the caller stores outcome.faired.
//   failed: a polyline profile, a bad index or direction, or a failed
//           solve; the message has been shown.
void fairCurvePoint(int curve, int point, const FairSettings& settings, FairOutcome& outcome,
                    bool& failed);

}  // namespace kntr::profile
