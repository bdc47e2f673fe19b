// kntr-tool fair: fair one point of a curve and write the resulting profile.
#include <cstdio>
#include <string>

#include "app/tool/tool.h"
#include "profile/block.h"
#include "profile/datafile.h"
#include "profile/pointfairing.h"

namespace kntr::tool {

namespace {
const char* const fairUsage =
    "fair FILE CURVE POINT [--along leading|trailing|leading-normal|trailing-normal|DX,DY] "
    "[--global] [--restraint D] [--iterations N] -o OUT";

}  // namespace

int fairCommand(const Arguments& arguments) {
  if (arguments.size() < 3) return usage(fairUsage);
  const std::string& file = arguments[0];
  int curve = 0, point = 0;
  if (!parseInteger(arguments[1], curve) || !parseInteger(arguments[2], point))
    return usage(fairUsage);

  // Settings: the profile's defaults, changed by the options.
  profile::FairSettings settings = profile::fairSettingsFromProfile(profile::FairMode::Free);
  std::string output;
  for (std::size_t k = 3; k < arguments.size(); ++k) {
    const std::string& option = arguments[k];
    const bool hasValue = k + 1 < arguments.size();
    if (option == "--global") {
      settings.local = false;
    } else if (option == "--along" && hasValue) {
      const std::string& along = arguments[++k];
      if (along == "leading") settings.mode = profile::FairMode::LeadingTangent;
      else if (along == "trailing") settings.mode = profile::FairMode::TrailingTangent;
      else if (along == "leading-normal") settings.mode = profile::FairMode::LeadingNormal;
      else if (along == "trailing-normal") settings.mode = profile::FairMode::TrailingNormal;
      else {
        const auto comma = along.find(',');
        if (comma == std::string::npos ||
            !parseReal(along.substr(0, comma), settings.direction.x) ||
            !parseReal(along.substr(comma + 1), settings.direction.y))
          return usage(fairUsage);
        settings.mode = profile::FairMode::GivenVector;
      }
    } else if (option == "--restraint" && hasValue) {
      if (!parseReal(arguments[++k], settings.restraint) || !(settings.restraint > 0.0))
        return usage(fairUsage);
    } else if (option == "--iterations" && hasValue) {
      if (!parseInteger(arguments[++k], settings.maxIterations) || settings.maxIterations < 1)
        return usage(fairUsage);
    } else if (option == "-o" && hasValue) {
      output = arguments[++k];
    } else {
      return usage(fairUsage);
    }
  }
  if (output.empty()) return usage(fairUsage);

  if (!loadProfile(file)) return 1;
  profile::FairOutcome outcome;
  bool failed = false;
  profile::fairCurvePoint(curve, point, settings, outcome, failed);
  if (failed) return fail("");

  profile::ProfileData& p = profile::profile();
  p.PRPNTS(curve, point)(1) = outcome.faired.x;
  p.PRPNTS(curve, point)(2) = outcome.faired.y;
  bool status = false;
  profile::PTKNTR(output, true, status);
  if (status) return fail("");

  std::string line = "iterations " + std::to_string(outcome.iterations) + " energy";
  for (int i = 1; i <= outcome.energyCount; ++i) line += " " + fullPrecision(outcome.energies(i));
  line += " moved " + fullPrecision(outcome.faired.x - outcome.start.x) + " " +
          fullPrecision(outcome.faired.y - outcome.start.y) + "\n";
  print(line);
  return 0;
}

}  // namespace kntr::tool
