#include "profile/pointfairing.h"

#include <algorithm>
#include <cmath>

#include "framework/text.h"
#include "profile/curverecord.h"
#include "spline/fairing.h"
#include "spline/knots.h"
#include "spline/tangents.h"

namespace kntr::profile {

using framework::fail;

FairSettings fairSettingsFromProfile(FairMode mode, XY direction) {
  const ProfileData& p = profile();
  FairSettings s;
  s.mode = mode;
  s.direction = direction;
  s.local = p.FRLOCL;
  s.restraint = p.FRRSTR ? p.FRRDST : -1.0;
  s.maxIterations = p.FRMITR;
  return s;
}

void fairCurvePoint(int curve, int point, const FairSettings& settings, FairOutcome& outcome,
                    bool& failed) {
  failed = false;
  outcome.iterations = 0;
  outcome.energyCount = 0;
  outcome.direction = XY{};
  const ProfileData& p = profile();
  if (p.PRFTYP != SplineProfile) {
    fail("Points cannot be faired for a polyline profile!", failed);
    return;
  }
  if (curve < 1 || curve > p.NPRCRV) {
    fail("Illegal profile curve index!", failed);
    return;
  }
  if (point < 1 || point > p.NPRPNT(curve)) {
    fail("Point number exceeds available profile points!", failed);
    return;
  }
  outcome.start = XY{p.PRPNTS(curve, point)(1), p.PRPNTS(curve, point)(2)};
  outcome.faired = outcome.start;

  static spline::SplineRecord rec;
  CurveBox box;
  loadCurveRecord(curve, rec, box);
  spline::MKIKV3(p.PRPARM(curve), rec, failed);
  if (failed) return;

  const spline::Triple origin{};
  const spline::Triple normal{{1.0, 0.0, 0.0}};
  const double threshold = 1e-6 * std::max(p.PRBBOX(2) - p.PRBBOX(1), p.PRBBOX(4) - p.PRBBOX(3));

  // The direction: given, or from the solved tangent at the point.
  bool directional = settings.mode != FairMode::Free;
  XY direction{};
  if (settings.mode == FairMode::GivenVector) {
    if (settings.direction.x == 0.0 && settings.direction.y == 0.0) {
      fail("Direction vector cannot have zero length!", failed);
      return;
    }
    direction = settings.direction;
  } else if (directional) {
    static spline::HermiteCurve solved;
    spline::HCTAN3(spline::MaxOffsetPoints, origin, normal, spline::SideNone, threshold, rec,
                   solved, failed);
    if (failed) return;
    const bool leadingSide =
        settings.mode == FairMode::LeadingTangent || settings.mode == FairMode::LeadingNormal;
    const spline::Triple t = leadingSide ? spline::leading(solved.tangents(point))
                                         : spline::trailing(solved.tangents(point));
    direction = XY{t(1), t(2)};
    if (settings.mode == FairMode::LeadingNormal || settings.mode == FairMode::TrailingNormal)
      direction = XY{-t(2), t(1)};
  }
  outcome.direction = direction;

  spline::Triple faired;
  int iterations = 0;
  spline::HCFOP3(point, settings.maxIterations, settings.local, settings.restraint, threshold,
                 directional, spline::Triple{{direction.x, direction.y, 0.0}}, false, origin,
                 normal, threshold, rec, iterations, faired, View1<double>(outcome.energies),
                 failed);
  outcome.iterations = iterations;
  outcome.energyCount = std::min(iterations, MaxFairingEnergies);
  if (failed) return;
  outcome.faired = XY{faired(1), faired(2)};
}

}  // namespace kntr::profile
