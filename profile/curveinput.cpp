#include "profile/curveinput.h"

#include <algorithm>
#include <array>
#include <string>

#include "framework/format.h"
#include "framework/input.h"
#include "framework/menus.h"
#include "framework/text.h"
#include "profile/block.h"

namespace kntr::profile {

namespace {

using framework::ASKQST;
using framework::ERRSCN;
using framework::fail;
using framework::GTREAL;

// A value moved into [low, high], without trusting the range to be ordered
// (a damaged file can hold any box).
double clampToRange(double value, double low, double high) {
  return value < low ? low : (value > high ? high : value);
}

// Asks for two reals until the line gives them. The values come preset and
// stay where a field is left empty. False when the user aborts.
bool askTwoReals(std::string_view question, std::string_view deflt, std::string_view help,
                 std::array<double, 2>& values) {
  for (;;) {
    bool abort = false;
    bool status = false;
    ASKQST(question, deflt, help, 2, abort, status);
    if (abort) return false;
    if (status) continue;
    std::array<double, 2> read = values;
    bool none = false;
    GTREAL(read, none, status);
    if (status) continue;
    values = read;
    return true;
  }
}

// Asks for one range of the box; false on abort.
bool askRange(const char* question, const char* help, const char* refusal, bool modify,
              double& low, double& high) {
  const std::string deflt = modify ? fmt::PE(low, 10, 3) + ", " + fmt::PE(high, 10, 3) : "";
  for (;;) {
    std::array<double, 2> values = modify ? std::array<double, 2>{low, high}
                                          : std::array<double, 2>{0.0, 0.0};
    if (!askTwoReals(question, deflt, help, values)) return false;
    if (values[0] >= values[1]) {
      ERRSCN(refusal);
      continue;
    }
    low = values[0];
    high = values[1];
    return true;
  }
}

}  // namespace

void INBBOX(bool modify, bool& cancelled, bool& status) {
  status = false;
  cancelled = false;
  ProfileData& p = profile();
  if (!askRange("Input min and max X-coordinates of bounding box [m]",
                "This is the min and max X-dimension of the profile",
                "Max X-coordinate must be larger than min!", modify, p.PRBBOX(1), p.PRBBOX(2))) {
    cancelled = true;
    return;
  }
  if (!askRange("Input min and max Y-coordinates of bounding box [m]",
                "This is the min and max Y-dimension of the profile",
                "Max Y-coordinate must be larger than min!", modify, p.PRBBOX(3), p.PRBBOX(4))) {
    cancelled = true;
  }
}

void INREFP(bool& status) {
  status = false;
  ProfileData& p = profile();
  std::array<double, 2> values{p.PRREFP(1), p.PRREFP(2)};
  if (!askTwoReals("Input reference point coordinates (XY) [m]", "",
                   "The point the profile is translated and rotated about", values)) return;
  p.PRREFP(1) = values[0];
  p.PRREFP(2) = values[1];
}

void KYPRCV(bool& status) {
  status = false;
  ProfileData& p = profile();
  if (!(p.NPRCRV + 1 < MaxCurves + 1)) {
    ERRSCN("Max number of profile curves reached!");
    return;
  }
  p.NPRCRV += 1;
  const int c = p.NPRCRV;
  p.NPRPNT(c) = 0;
  p.PRCLSD(c) = false;

  if (c == 1) {
    const std::array<std::string, 3> rows{"Cubic spline profile", "Polyline profile", "CANCEL"};
    bool abort = false;
    int selection = 1;
    bool failed = false;
    framework::TXMENU("PROFILE TYPE", rows, 1, "Select profile type", abort, selection, failed);
    if (abort || failed || selection < 1 || selection == 3) {
      p.NPRCRV = 0;
      return;
    }
    p.PRFTYP = selection == 1 ? SplineProfile : PolylineProfile;
    INREFP(status);
    if (status) {
      p.NPRCRV = 0;
      return;
    }
  }

  INPRPN(c, status);
  if (status) p.NPRCRV -= 1;
  // Done or abandoned, a key-in ends with the status set.
  status = true;
}

void INPRPN(int c, bool& status) {
  status = false;
  ProfileData& p = profile();
  if (c < 1 || c > p.NPRCRV) {
    fail("(INPRPN) Illegal profile curve index!", status);
    return;
  }
  auto& n = p.NPRPNT(c);
  const auto throwAway = [&] {
    n = 0;
    status = true;
  };
  for (;;) {
    // The next point, or DONE.
    bool abort = false;
    bool failed = false;
    framework::ASKQST("Input profile curve point coordinates (XY) [m]", "DONE",
                      "X and Y of the next point; RETURN ends the curve...", 2, abort, failed);
    if (abort) return throwAway();
    if (failed) continue;
    std::array<double, 2> xy{0.0, 0.0};
    bool done = false;
    GTREAL(xy, done, failed);
    if (failed) continue;
    if (done) break;

    const double x = clampToRange(xy[0], p.PRBBOX(1), p.PRBBOX(2));
    const double y = clampToRange(xy[1], p.PRBBOX(3), p.PRBBOX(4));
    n += 1;
    if (n >= 2 && coincident(x, y, p.PRPNTS(c, n - 1)(1), p.PRPNTS(c, n - 1)(2))) {
      ERRSCN("Two points was coincidental, ignoring last point!");
      n -= 1;
      continue;
    }
    if (n >= 3 && coincident(x, y, p.PRPNTS(c, 1)(1), p.PRPNTS(c, 1)(2))) {
      bool close = true;
      bool cancelled = false;
      framework::askYesNo("OK to close profile? (yes/no)", true, "yes",
                          "First and latest profile point coincides", false, close, cancelled);
      if (cancelled) return throwAway();
      if (close) {
        // The closing point is counted but not stored.
        p.PRCLSD(c) = true;
        return;
      }
    }
    p.PRPNTS(c, n)(1) = x;
    p.PRPNTS(c, n)(2) = y;

    // A spline point is CC unless the user says knuckle; a polyline point
    // is always a plain knuckle.
    bool knuckle = true;
    if (p.PRFTYP == SplineProfile) {
      for (;;) {
        framework::ASKQST("Input point type: 1 = CC, 2 = Knuckle", "1 (CC)",
                          "CC keeps the curvature continuous, a knuckle makes a corner", 1,
                          abort, failed);
        if (abort) return throwAway();
        if (failed) continue;
        std::array<int, 1> answer{1};
        bool none = false;
        framework::GTINTV(answer, none, failed);
        if (failed) continue;
        knuckle = answer[0] != 1;
        break;
      }
    }
    p.PRPTYP(c, n) = knuckle ? Knuckle : ContinuousCurvature;
    p.PRKWGT(c, n) = knuckle ? 1.0 : 0.0;

    if (n >= MaxCurvePoints) {
      ERRSCN("Max number of profile curve points reached!");
      break;
    }
  }

  // Offer closure to a curve of three points or more.
  if (n < 3) {
    p.PRCLSD(c) = false;
    p.CURCRV = c;
    return;
  }
  bool close = false;
  bool cancelled = false;
  framework::askYesNo("OK to close profile curve? (yes/no)", false, "no",
                      "The default is to keep the profile  curve open...", false, close,
                      cancelled);
  if (cancelled) return throwAway();
  if (close && coincident(p.PRPNTS(c, n)(1), p.PRPNTS(c, n)(2), p.PRPNTS(c, 1)(1),
                          p.PRPNTS(c, 1)(2))) {
    n -= 1;
    if (n == 1) {
      ERRSCN("Only one distinct profile curve point - input aborted!");
      return throwAway();
    }
  }
  p.PRCLSD(c) = close;
  p.CURCRV = c;
}

void RMPRCV(int c, bool& status) {
  status = false;
  ProfileData& p = profile();
  if (c < 1 || c > p.NPRCRV) {
    fail("(RMPRCV) Illegal profile curve index!", status);
    return;
  }
  for (int k = c; k < p.NPRCRV; ++k) {
    p.PRCLSD(k) = p.PRCLSD(k + 1);
    p.NPRPNT(k) = p.NPRPNT(k + 1);
    for (int j = 1; j <= p.NPRPNT(k + 1); ++j) {
      p.PRPNTS(k, j) = p.PRPNTS(k + 1, j);
      p.PRPTYP(k, j) = p.PRPTYP(k + 1, j);
      p.PRKWGT(k, j) = p.PRKWGT(k + 1, j);
      p.PRTANV(k, j) = p.PRTANV(k + 1, j);
      // Only the leading length moves; the trailing one and the
      // parameterization stay with the slot.
      p.PRTANL(k, j)(1) = p.PRTANL(k + 1, j)(1);
    }
  }
  p.NPRCRV -= 1;
}

void deleteCurrentCurve(bool& status) {
  ProfileData& p = profile();
  RMPRCV(p.CURCRV, status);
  if (status) return;
  if (p.CURCRV != 1) p.CURCRV -= 1;
}

}  // namespace kntr::profile
