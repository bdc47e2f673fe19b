#include "profile/wholeprofile.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <string>

#include "framework/format.h"
#include "framework/input.h"
#include "framework/menus.h"
#include "framework/state.h"
#include "framework/text.h"
#include "graphics/dialogue.h"
#include "graphics/plotstate.h"
#include "graphics/view.h"
#include "profile/block.h"
#include "profile/display.h"
#include "profile/module.h"
#include "profile/pointedit.h"
#include "profile/pointpick.h"
#include "profile/polylines.h"
#include "spline/tangents.h"

namespace kntr::profile {

namespace {

namespace fw = framework;
namespace gr = graphics;

constexpr double Pi = 3.141592653589793;

// The box handed to the plot after it changed.
void boxToPlot() {
  const ProfileData& p = profile();
  bool failed = false;
  gr::SPBBOX(p.PRBBOX(1), p.PRBBOX(2), p.PRBBOX(3), p.PRBBOX(4), 0.0, 0.0, failed);
}

// Does curve c lock with these types (weights and closed flag of the first
// slot, as the editors have always asked)?
bool locks(int n, const Array1<int, MaxCurvePoints>& types, bool closed, bool& status) {
  const ProfileData& p = profile();
  Array1<double, MaxCurvePoints> weights;
  for (int j = 1; j <= MaxCurvePoints; ++j) weights(j) = p.PRKWGT(1, j);
  bool deadlock = false;
  spline::IQDLCK(n, View1<const int>(types.data(), n), View1<const double>(weights.data(), n),
                 closed, deadlock, status);
  return deadlock;
}

// Two keyed reals, or a position, for a graphic question.
bool pairAnswer(std::string_view question, std::string_view deflt, std::string_view help,
                double& x, double& y, bool& positioned, int& item, bool& cancel) {
  for (;;) {
    gr::GraphicAnswer answer;
    bool failed = false;
    gr::GQUEST(question, deflt, help, 2, answer, cancel, failed);
    if (cancel) return false;
    if (failed) continue;
    if (answer.kind == gr::ItemInput) {
      item = answer.item;
      return false;
    }
    positioned = answer.kind == gr::PositionInput;
    if (positioned) {
      x = answer.x;
      y = answer.y;
      return true;
    }
    std::array<double, 2> v{x, y};
    bool none = false;
    fw::GTREAL(v, none, failed);
    if (failed) continue;
    x = v[0];
    y = v[1];
    return true;
  }
}

std::string pairText(double x, double y) { return fmt::PE(x, 10, 3) + ", " + fmt::PE(y, 10, 3); }

// Cross hairs through (x, y) across the box.
void crossHairs(double x, double y) {
  const ProfileData& p = profile();
  gr::GCOLOR(HelpLineColour);
  gr::GMOVE2(p.PRBBOX(1), y);
  gr::GDRAW2(p.PRBBOX(2), y);
  gr::GMOVE2(x, p.PRBBOX(3));
  gr::GDRAW2(x, p.PRBBOX(4));
  gr::flushPlot();
}

// Both ends of the line through two points where it meets the box.
bool lineInBox(double x1, double y1, double x2, double y2, double first[3], double second[3]) {
  const ProfileData& p = profile();
  const double a[3] = {x1, y1, 0.0}, b[3] = {x2, y2, 0.0};
  bool found = false, failed = false;
  gr::FTL2BX(a, b, p.PRBBOX(1), p.PRBBOX(2), p.PRBBOX(3), p.PRBBOX(4), -1.0, 1.0, found, first,
             second, failed);
  return found && !failed;
}

}  // namespace

void translateProfile(double dx, double dy) {
  ProfileData& p = profile();
  for (int c = 1; c <= p.NPRCRV; ++c)
    for (int j = 1; j <= p.NPRPNT(c); ++j) {
      p.PRPNTS(c, j)(1) += dx;
      p.PRPNTS(c, j)(2) += dy;
    }
  p.PRREFP(1) += dx;
  p.PRREFP(2) += dy;
}

void rotateProfile(double degrees) {
  ProfileData& p = profile();
  const double a = degrees * Pi / 180.0;
  const double c = std::cos(-a), s = std::sin(-a);
  const double rx = p.PRREFP(1), ry = p.PRREFP(2);
  for (int k = 1; k <= p.NPRCRV; ++k)
    for (int j = 1; j <= p.NPRPNT(k); ++j) {
      const double dx = p.PRPNTS(k, j)(1) - rx, dy = p.PRPNTS(k, j)(2) - ry;
      p.PRPNTS(k, j)(1) = c * dx + s * dy + rx;
      p.PRPNTS(k, j)(2) = -s * dx + c * dy + ry;
      // both tangent directions turn with the points
      Array1<double, 4>& t = p.PRTANV(k, j);
      for (int e = 1; e <= 3; e += 2) {
        const double tx = t(e), ty = t(e + 1);
        t(e) = c * tx + s * ty;
        t(e + 1) = -s * tx + c * ty;
      }
    }
}

void SLPRTP(bool& cancel, bool& status) {
  status = false;
  cancel = false;
  ProfileData& p = profile();
  const std::array<std::string, 3> rows{"Cubic spline{nprofile", "Polyline{nprofile", "CANCEL"};
  int selection = 3;
  gr::GSELCT("PROFILE TYPE SELECTION", rows, "Select profile type", "", selection, cancel);
  if (cancel || selection == 3) {
    cancel = true;
    return;
  }
  if (selection == 2) {
    p.PRFTYP = PolylineProfile;
    return;
  }
  // a spline must not lock on any closed curve
  for (int c = 1; c <= p.NPRCRV; ++c) {
    if (!p.PRCLSD(c)) continue;
    Array1<int, MaxCurvePoints> types;
    for (int j = 1; j <= MaxCurvePoints; ++j) types(j) = p.PRPTYP(1, j);
    if (locks(p.NPRPNT(c), types, p.PRCLSD(1), status)) {
      if (!status) fw::ERRSCN("Deadlock would occur if changing type to spline!");
      return;
    }
    if (status) return;
  }
  p.PRFTYP = SplineProfile;
}

void SLPARM(int& code, bool& cancel, bool& status) {
  status = false;
  cancel = false;
  const std::array<std::string, 6> rows{"Uniform{n(U)",     "Chorde length{n(L)",
                                        "Curve length{n(C)", "Centripetal{n(N)",
                                        "Foley{n(F)",        "CANCEL"};
  const char* const defaults[5] = {"S (Uniform)", "L (Chorde length)", "C (Curve length)",
                                   "N (Centripetal)", "F (Foley)"};
  gr::GITEMS("SPLINE PARAMETERIZATION", rows);
  for (;;) {
    gr::GraphicAnswer answer;
    bool failed = false;
    const int shown = code >= 1 && code <= 5 ? code : ChordLength;
    gr::GQUEST("Select parameterization or key in the corresponding letter", defaults[shown - 1],
               "", 1, answer, cancel, failed);
    if (cancel) return;
    if (failed) continue;
    if (answer.kind == gr::ItemInput) {
      if (answer.item == 6) {
        cancel = true;
        return;
      }
      code = answer.item;
      return;
    }
    if (answer.kind != gr::KeyboardInput) continue;
    std::array<std::string, 1> letter{""};
    bool none = false;
    fw::GTCHAR(letter, 1, none, failed);
    if (failed) continue;
    if (none) return;  // the default keeps the code
    const std::string keys = "ULCNF";
    const auto at = keys.find(static_cast<char>(std::toupper(static_cast<unsigned char>(letter[0][0]))));
    if (at != std::string::npos) code = static_cast<int>(at) + 1;
    return;
  }
}

void SPPRCV(int& item, bool& cancel, bool& status) {
  status = false;
  ProfileData& p = profile();
  SLPRPN("Select item, pick point or input point number",
         "This is where the profile will be split open...", PointPickTexts{}, item, cancel,
         status);
  if (cancel || item != 0 || status) return;
  const int c = p.CURCRV, n = p.NPRPNT(c), k = p.CURPNT;
  // the chosen point first, the one before it last; every field moves along
  const ProfileData copy = p;
  for (int j = 1; j <= n; ++j) {
    const int from = (k - 1 + j - 1) % n + 1;
    p.PRPNTS(c, j) = copy.PRPNTS(c, from);
    p.PRPTYP(c, j) = copy.PRPTYP(c, from);
    p.PRKWGT(c, j) = copy.PRKWGT(c, from);
    p.PRTANV(c, j) = copy.PRTANV(c, from);
    p.PRTANL(c, j) = copy.PRTANL(c, from);
  }
  p.PRCLSD(c) = false;
  p.CURPNT = 1;
}

void JNPRCV(int c, bool& status) {
  status = false;
  ProfileData& p = profile();
  // the types without the current point, as the closing test has them
  Array1<int, MaxCurvePoints> types;
  int n = 0;
  for (int j = 1; j <= p.NPRPNT(c); ++j)
    if (j != p.CURPNT) types(++n) = p.PRPTYP(c, j);
  if (locks(n, types, true, status)) {
    if (!status) fw::fail("Deadlock would occur if closing spline!", status);
    return;
  }
  if (status) return;
  p.PRCLSD(c) = true;
}

void TRKNTR(int& item, bool& cancel, bool& status) {
  status = false;
  ProfileData& p = profile();
  crossHairs(p.PRREFP(1), p.PRREFP(2));
  double dx = 0.0, dy = 0.0;
  bool positioned = false;
  if (!pairAnswer("Select item, digitize or input translation (XY) [m]", "0, 0",
                  "Digitized translation is relative to reference point", dx, dy, positioned,
                  item, cancel)) {
    windowRedraw(false, status);
    return;
  }
  if (positioned) {
    dx -= p.PRREFP(1);
    dy -= p.PRREFP(2);
  }
  windowPicture(true, false, status);
  if (status) return;
  translateProfile(dx, dy);
  p.MODFLG = true;
  FTBBOX(false, status);
  if (status) return;
  boxToPlot();
  windowPicture(false, true, status);
  gr::flushPlot();
}

void RTKNTR(double& angle, int& item, bool& cancel, bool& status) {
  status = false;
  ProfileData& p = profile();
  for (;;) {
    gr::GraphicAnswer answer;
    bool failed = false;
    gr::GQUEST("Select item or input rotation angle [deg]", fmt::PE(angle, 10, 3), "", 1, answer,
               cancel, failed);
    if (cancel) return;
    if (failed) continue;
    if (answer.kind == gr::ItemInput) {
      item = answer.item;
      return;
    }
    if (answer.kind == gr::PositionInput) {
      fw::ERRSCN("Rotation angle cannot be digitized!");
      continue;
    }
    std::array<double, 1> v{angle};
    bool none = false;
    fw::GTREAL(v, none, failed);
    if (failed) continue;
    angle = v[0];
    break;
  }
  windowPicture(true, false, status);
  if (status) return;
  rotateProfile(angle);
  p.MODFLG = true;
  FTBBOX(false, status);
  if (status) return;
  boxToPlot();
  windowPicture(false, true, status);
  gr::flushPlot();
}

void ORKNTR(bool& status) {
  status = false;
  const std::array<std::string, 3> rows{"Translate{nprofile", "Rotate{nprofile", "RETURN"};
  double angle = 0.0;  // the last angle, while the menu stays
  int selection = 3;
  for (;;) {
    bool abort = false;
    gr::GSELCT("ORIENT PROFILE", rows, "Select item", "", selection, abort);
    if (abort || selection == 3) return;
    // a menu item chosen inside a dialogue is the next selection
    while (selection == 1 || selection == 2) {
      int item = 0;
      bool cancel = false;
      if (selection == 1)
        TRKNTR(item, cancel, status);
      else
        RTKNTR(angle, item, cancel, status);
      if (status || cancel || item == 0) break;
      selection = item;
    }
    if (status) return;
    if (selection == 3) return;
  }
}

void DGREFP(bool show, bool digitizer, bool& cancel, bool& status) {
  status = false;
  ProfileData& p = profile();
  if (show) crossHairs(p.PRREFP(1), p.PRREFP(2));
  double x = p.PRREFP(1), y = p.PRREFP(2);
  bool positioned = false;
  int item = 0;
  if (!pairAnswer("Digitize or input reference point coordinates (XY) [m]",
                  show ? pairText(x, y) : " ", "", x, y, positioned, item, cancel)) {
    cancel = true;
    return;
  }
  if (positioned && digitizer) {
    const double r = x, s = y;
    gr::DG2WLD(r, s, x, y, status);
    if (status) return;
  }
  p.PRREFP(1) = x;
  p.PRREFP(2) = y;
  p.MODFLG = true;
}

void INSNAP(int& item, bool& cancel, bool& status) {
  status = false;
  ProfileData& p = profile();
  double point[2][2] = {{p.SNAPLN(1), p.SNAPLN(2)}, {p.SNAPLN(3), p.SNAPLN(4)}};
  const char* const questions[2] = {"Select item, input or digitize first point on snap line!",
                                    "Select item, input or digitize second point on snap line!"};
  for (int k = 0; k < 2; ++k) {
    bool positioned = false;
    const std::string deflt = p.SNAPOK ? pairText(point[k][0], point[k][1]) : " ";
    if (!pairAnswer(questions[k], deflt, "", point[k][0], point[k][1], positioned, item, cancel))
      return;
    gr::GCOLOR(SnapEndColour);
    gr::GMOVE2(point[k][0], point[k][1]);
    gr::GMARK2(SnapEndMark);
    gr::GWTEXT(k == 0 ? "1" : "2");
    gr::flushPlot();
  }
  double first[3], second[3];
  if (!lineInBox(point[0][0], point[0][1], point[1][0], point[1][1], first, second)) {
    fw::ERRSCN("(INSNAP) Could not fit snap line to bounding box!");
    windowRedraw(false, status);
    return;
  }
  windowPicture(true, false, status);
  if (status) return;
  p.SNAPLN = Array1<double, 4>{{point[0][0], point[0][1], point[1][0], point[1][1]}};
  p.SNAPOK = true;
  windowPicture(false, false, status);
  gr::flushPlot();
}

void MDKNTR(bool& status) {
  status = false;
  ProfileData& p = profile();
  for (;;) {
    const bool closed = p.CURCRV >= 1 && p.PRCLSD(p.CURCRV);
    const std::array<std::string, 7> rows{
        "Modify profile{nspline type",     "Modify spline{nparameterization",
        closed ? "Open profile{n(split)" : "Close profile{n(join)", "Orient{nprofile",
        "Move{nref. point",                "Fit{nbounding box",
        "RETURN"};
    int selection = 7;
    bool abort = false;
    gr::GSELCT("PROFILE MODIFICATION", rows, "Select item", "", selection, abort);
    if (abort || selection == 7) return;
    bool cancel = false;
    switch (selection) {
      case 1: {
        const int before = p.PRFTYP;
        SLPRTP(cancel, status);
        if (!cancel && !status) {
          if (p.PRFTYP != before) p.MODFLG = true;
          windowRedraw(false, status);
        }
        break;
      }
      case 2: {
        if (p.CURCRV < 1) break;
        int code = p.PRPARM(p.CURCRV);
        SLPARM(code, cancel, status);
        if (cancel || status) break;
        if (code != p.PRPARM(p.CURCRV)) {
          windowPicture(true, false, status);
          if (status) break;
          p.PRPARM(p.CURCRV) = code;
          p.MODFLG = true;
          windowPicture(false, false, status);
          gr::flushPlot();
        }
        break;
      }
      case 3: {
        // a closed curve that stands alone splits at once
        int item = 0;
        if (!(closed && p.NPRCRV == 1)) {
          bool failed = false;
          gr::GraphicAnswer answer;
          gr::GQUEST(closed ? "Select item or pick curve"
                            : "Select item or pick location to be split open",
                     " ", "", 1, answer, cancel, failed);
          if (cancel || failed || answer.kind == gr::ItemInput) break;
          if (answer.kind == gr::PositionInput) {
            int curve = 0, point = 0, result = 0;
            IQPPNT(answer.x, answer.y, curve, point, result, status);
            if (status) break;
            if (result == PointNothingNear) {
              fw::ERRSCN("Non-precise selection of profile curve/point!");
              break;
            }
            if (result == PointAmbiguous) {
              fw::ERRSCN("Ambiguous selection of profile curve/point!");
              break;
            }
            p.CURCRV = curve;
            p.CURPNT = point;
          }
        }
        const ProfileData before = p;
        windowPicture(true, false, status);
        if (status) break;
        if (p.PRCLSD(p.CURCRV)) {
          SPPRCV(item, cancel, status);
          if (cancel || item != 0) p = before;
        } else {
          JNPRCV(p.CURCRV, status);
        }
        if (!(p == before)) p.MODFLG = true;
        windowPicture(false, false, status);
        gr::flushPlot();
        break;
      }
      case 4: ORKNTR(status); break;
      case 5:
        DGREFP(true, false, cancel, status);
        if (!status) windowRedraw(false, status);
        break;
      case 6:
        FTBBOX(true, status);
        if (status) break;
        boxToPlot();
        p.MODFLG = true;
        windowPicture(true, false, status);
        if (!status) windowPicture(false, true, status);
        gr::flushPlot();
        break;
      default: break;
    }
    if (status) return;
  }
}

}  // namespace kntr::profile
