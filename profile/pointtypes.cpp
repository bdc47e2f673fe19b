#include "profile/pointtypes.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <string>

#include "framework/format.h"
#include "framework/input.h"
#include "framework/menus.h"
#include "framework/text.h"
#include "graphics/dialogue.h"
#include "graphics/plotstate.h"
#include "graphics/view.h"
#include "profile/block.h"
#include "profile/curverecord.h"
#include "profile/display.h"
#include "profile/pointedit.h"
#include "profile/pointpick.h"
#include "spline/knots.h"
#include "spline/tangents.h"

namespace kntr::profile {

namespace {

namespace fw = framework;
namespace gr = graphics;

// The larger side of the visible window.
double windowSize() {
  double xmin = 0.0, xmax = 1.0, ymin = 0.0, ymax = 1.0;
  bool failed = false;
  gr::GINQRL("xmgmin", xmin, failed);
  gr::GINQRL("xmgmax", xmax, failed);
  gr::GINQRL("ymgmin", ymin, failed);
  gr::GINQRL("ymgmax", ymax, failed);
  return std::max(xmax - xmin, ymax - ymin);
}

// The solved tangent on one side of point j of curve c, with the point's
// present type.
bool solvedTangent(int c, int j, bool leadingSide, double accuracy, XY& t, bool& status) {
  static spline::SplineRecord rec;
  static spline::HermiteCurve solved;
  CurveBox box;
  loadCurveRecord(c, rec, box);
  spline::MKIKV3(profile().PRPARM(c), rec, status);
  if (status) return false;
  const spline::Triple origin{};
  const spline::Triple normal{{1.0, 0.0, 0.0}};
  spline::HCTAN3(spline::MaxOffsetPoints, origin, normal, spline::SideNone, accuracy, rec, solved,
                 status);
  if (status || j > solved.m) return false;
  const spline::Triple s =
      leadingSide ? spline::leading(solved.tangents(j)) : spline::trailing(solved.tangents(j));
  t = XY{s(1), s(2)};
  return true;
}

// The editors: which type they set and what each row changes.
enum class Change { Direction, Length, Both };
struct Row {
  const char* text;
  bool leadingSide;
  Change change;
};
struct Editor {
  const char* title;
  int type;
  const char* tooHigh;
  int rows;
  Row row[6];
};

const Editor leadingEditor{"LEADING TANGENT", LeadingTangent,
                           "Point number exceeds available profile points!", 3,
                           {{"Modify{ndirection", true, Change::Direction},
                            {"Modify{nrelative length", true, Change::Length},
                            {"Modify{ndir. and length", true, Change::Both}}};
const Editor trailingEditor{"TRAILING TANGENT", TrailingTangent,
                            "Point number exceeds available curve points!", 3,
                            {{"Modify{ndirection", false, Change::Direction},
                             {"Modify{nrelative length", false, Change::Length},
                             {"Modify{ndir. and length", false, Change::Both}}};
const Editor equalEditor{"EQUAL TANGENT", EqualTangents,
                         "Point number exceeds available curve points!", 3,
                         {{"Modify{ndirection", true, Change::Direction},
                          {"Modify leading{nrelative length", true, Change::Length},
                          {"Modify trailing{nrelative length", false, Change::Length}}};
const Editor bothEditor{"BOTH TANGENTS", BothTangents,
                        "Point number exceeds available curve points!", 6,
                        {{"Modify leading{ndirection", true, Change::Direction},
                         {"Modify leading{nrelative length", true, Change::Length},
                         {"Modify leading{ndir. and length", true, Change::Both},
                         {"Modify trailing{ndirection", false, Change::Direction},
                         {"Modify trailing{nrelative length", false, Change::Length},
                         {"Modify trailing{ndir. and length", false, Change::Both}}};

// A keyed vector, or a position less the point; false on a menu item or an
// abort.
bool vectorAnswer(const std::string& question, const std::string& deflt, int expected, XY at,
                  double& a, double& b, bool& positioned, int& item, bool& cancel) {
  for (;;) {
    gr::GraphicAnswer answer;
    bool failed = false;
    gr::GQUEST(question, deflt, "", expected, answer, cancel, failed);
    if (cancel) return false;
    if (failed) continue;
    if (answer.kind == gr::ItemInput) {
      item = answer.item;
      return false;
    }
    positioned = answer.kind == gr::PositionInput;
    if (positioned) {
      a = answer.x - at.x;
      b = answer.y - at.y;
      return true;
    }
    std::array<double, 2> v{a, b};
    bool none = false;
    fw::GTREAL(std::span<double>(v.data(), expected), none, failed);
    if (failed) continue;
    a = v[0];
    b = v[1];
    return true;
  }
}

void runEditor(const Editor& e, int& item, bool& status) {
  status = false;
  item = 0;
  ProfileData& p = profile();
  const double size = windowSize();
  const double unit = TangentUnitShare * size;
  std::array<std::string, 7> rows;
  for (int k = 0; k < e.rows; ++k) rows[k] = e.row[k].text;
  rows[e.rows] = "DONE";
  const std::span<const std::string> shown(rows.data(), e.rows + 1);
  int selection = e.rows + 1;
  bool abort = false;
  gr::GSELCT(e.title, shown, "Select item", "", selection, abort);
  for (;;) {
    if (abort || selection == e.rows + 1) break;
    const Row& row = e.row[selection - 1];
    int picked = 0;
    bool cancel = false;
    PointPickTexts texts;
    texts.tooHigh = e.tooHigh;
    gr::GITEMS(e.title, shown);
    SLPRPN("Select item, pick or input point number", "", texts, picked, cancel, status);
    if (status) return;
    if (cancel) break;
    if (picked != 0) {
      selection = picked;
      continue;
    }
    const int c = p.CURCRV, j = p.CURPNT, n = p.NPRPNT(c);
    if (!p.PRCLSD(c) && e.type == LeadingTangent && j == 1)
      fw::PRMESG("Leading tangent has no effect on curve for the first point on an open curve");
    if (!p.PRCLSD(c) && e.type == TrailingTangent && j == n)
      fw::PRMESG("Trailing tangent has no effect on curve for the last point on an open curve");

    // the segments the tangent acts on, lit
    windowPicture(true, false, status);
    if (status) return;
    p.HILSEG(1) = e.type == EqualTangents ? tangentSegment(c, j, true)
                                           : tangentSegment(c, j, row.leadingSide);
    p.HILSEG(2) = e.type == EqualTangents ? tangentSegment(c, j, false) : 0;
    windowPicture(false, false, status);
    if (status) return;

    // where the editing starts: the point's own tangent, or the solved one
    const bool ofType = p.PRPTYP(c, j) == e.type;
    const int slot = row.leadingSide || e.type == EqualTangents ? 1 : 3;
    const int lengthSlot = row.leadingSide ? 1 : 2;
    XY direction{p.PRTANV(c, j)(slot), p.PRTANV(c, j)(slot + 1)};
    if (!ofType) {
      XY solved;
      if (!solvedTangent(c, j, row.leadingSide, size / 1000.0, solved, status)) {
        if (status) return;
      } else {
        direction = solved;
      }
    }
    double length = p.PRTANL(c, j)(lengthSlot);
    if (!ofType && !(length > 0.0)) length = 1.0;
    const XY at{p.PRPNTS(c, j)(1), p.PRPNTS(c, j)(2)};
    // store the type and the tangent: erase, change, draw
    auto store = [&](XY direction, double length, bool& status) {
      windowPicture(true, false, status);
      if (status) return;
      p.PRTANV(c, j)(slot) = direction.x;
      p.PRTANV(c, j)(slot + 1) = direction.y;
      p.PRTANL(c, j)(lengthSlot) = length;
      if (!ofType && e.type != LeadingTangent && e.type != TrailingTangent) {
        // a fresh equal or double tangent point starts with both lengths set
        for (int k = 1; k <= 2; ++k)
          if (!(p.PRTANL(c, j)(k) > 0.0)) p.PRTANL(c, j)(k) = 1.0;
        if (e.type == BothTangents && row.leadingSide && p.PRTANV(c, j)(3) == 0.0 &&
            p.PRTANV(c, j)(4) == 0.0) {
          XY other;
          if (solvedTangent(c, j, false, size / 1000.0, other, status)) {
            p.PRTANV(c, j)(3) = other.x;
            p.PRTANV(c, j)(4) = other.y;
          }
        }
      }
      p.PRPTYP(c, j) = e.type;
      p.MODFLG = true;
      windowPicture(false, false, status);
    };
    if (gr::viewState().DYNGRF) {
      // the tangent follows the pointer: a left press ends, Escape puts it back
      const ProfileData kept = p;
      store(direction, length, status);
      if (status) return;
      gr::GPRMPT(1, "Drag the tangent: a left press ends, Escape puts it back");
      for (;;) {
        int result = 0;
        double x = 0.0, y = 0.0;
        bool pressed = false;
        gr::GTRACK(result, x, y, pressed);
        if (result == gr::TrackCancel) {
          windowPicture(true, false, status);
          p = kept;
          if (!status) windowPicture(false, false, status);
          break;
        }
        if (result == gr::TrackDone && !pressed) break;
        const double a = x - at.x, b = y - at.y, d = std::hypot(a, b);
        if (d > 0.0) {
          if (row.change != Change::Length) direction = XY{a, b};
          if (row.change != Change::Direction) length = d / unit;
          store(direction, length, status);
          if (status) return;
        }
        if (result == gr::TrackDone) break;
      }
      if (status) return;
      continue;
    }
    const char* side = row.leadingSide ? "leading" : "trailing";
    bool positioned = false;
    bool answered = false;
    for (;;) {
      double a = direction.x, b = direction.y;
      if (row.change == Change::Direction) {
        answered = vectorAnswer(std::string("Select item, digitize or input new ") + side +
                                    " tangent vector (XY)",
                                fmt::PE(a, 10, 3) + ", " + fmt::PE(b, 10, 3), 2, at, a, b,
                                positioned, picked, cancel);
        if (!answered) break;
        if (a == 0.0 && b == 0.0) {
          fw::ERRSCN("Tangent vector must have non-zero length!");
          continue;
        }
        direction = XY{a, b};
      } else if (row.change == Change::Length) {
        a = length;
        const std::string question =
            e.type == EqualTangents && !row.leadingSide
                ? "Select item, digitize or input trailing tangent length"
                : "Select item, digitize or input relative tangent length";
        answered = vectorAnswer(question, fmt::PE(length, 10, 3), 1, at, a, b, positioned,
                                picked, cancel);
        if (!answered) break;
        if (positioned) {
          const double d = std::hypot(a, b);
          if (d == 0.0) {
            fw::ERRSCN("Tangent vector must have non-zero length!");
            continue;
          }
          a = d / unit;
        } else if (!(a > 0.0)) {
          fw::ERRSCN("Relative tangent length must be positive!");
          continue;
        }
        length = a;
      } else {
        a = direction.x * length * unit;
        b = direction.y * length * unit;
        answered = vectorAnswer("Select item, digitize or input absolute tangent vector (XY)",
                                fmt::PE(a, 10, 3) + ", " + fmt::PE(b, 10, 3), 2, at, a, b,
                                positioned, picked, cancel);
        if (!answered) break;
        const double d = std::hypot(a, b);
        if (d == 0.0) {
          fw::ERRSCN("Tangent vector cannot have zero length!");
          continue;
        }
        direction = XY{a, b};
        length = d / unit;
      }
      break;
    }
    if (!answered) {
      if (picked != 0) {
        selection = picked;
        continue;
      }
      if (cancel) break;
      continue;
    }
    store(direction, length, status);
    if (status) return;
  }
  // done: the lit segments go out
  windowPicture(true, false, status);
  if (status) return;
  p.HILSEG(1) = 0;
  p.HILSEG(2) = 0;
  windowPicture(false, false, status);
}

}  // namespace

int tangentSegment(int c, int j, bool leadingSide) {
  const ProfileData& p = profile();
  const int n = p.NPRPNT(c);
  if (leadingSide) return j > 1 ? j - 1 : (p.PRCLSD(c) ? n : 0);
  return j < n || p.PRCLSD(c) ? j : 0;
}

void TNLEAD(int& item, bool& status) { runEditor(leadingEditor, item, status); }
void TNTRAI(int& item, bool& status) { runEditor(trailingEditor, item, status); }
void TNEQUL(int& item, bool& status) { runEditor(equalEditor, item, status); }
void TNBOTH(int& item, bool& status) { runEditor(bothEditor, item, status); }

void MDPNTK(int type, bool weighted, int& item, bool& cancel, bool& status) {
  status = false;
  ProfileData& p = profile();
  PointPickTexts texts;
  texts.tooHigh = "Point number exceeds available curve points!";
  for (;;) {
    SLPRPN("Select item, digitize point or input point number", "", texts, item, cancel, status);
    if (cancel || item != 0 || status) return;
    const int c = p.CURCRV, j = p.CURPNT;
    double weight = type == Knuckle ? 1.0 : 0.0;
    if (weighted) {
      bool keyed = false;
      for (;;) {
        gr::GraphicAnswer answer;
        bool failed = false;
        const double present = p.PRPTYP(c, j) == Knuckle ? p.PRKWGT(c, j) : 1.0;
        gr::GQUEST("Input knuckle weight (0..1)", fmt::PE(present, 10, 3), "", 1, answer, cancel,
                   failed);
        if (cancel) return;
        if (failed || answer.kind != gr::KeyboardInput) continue;
        std::array<double, 1> v{present};
        bool none = false;
        fw::GTREAL(v, none, failed);
        if (failed) continue;
        if (v[0] < 0.0) {
          fw::ERRSCN("Knuckle weights cannot be negative!");
          continue;
        }
        if (v[0] > 1.0) {
          fw::ERRSCN("Knuckle weights cannot exceed 1!");
          continue;
        }
        weight = v[0];
        keyed = true;
        break;
      }
      if (!keyed) return;
    }
    // the spline must not lock with the new type (first slot's count,
    // weights and closed flag, as the type editors have always asked)
    Array1<int, MaxCurvePoints> types;
    Array1<double, MaxCurvePoints> weights;
    for (int k = 1; k <= MaxCurvePoints; ++k) {
      types(k) = p.PRPTYP(c, k);
      weights(k) = p.PRKWGT(1, k);
    }
    types(j) = type;
    bool deadlock = false;
    const int n = p.NPRPNT(1);
    spline::IQDLCK(n, View1<const int>(types.data(), n), View1<const double>(weights.data(), n),
                   p.PRCLSD(1), deadlock, status);
    if (status) return;
    if (deadlock) {
      const char* what = type == ContinuousCurvature ? "a continous curvature point"
                         : type == LeadingSheer      ? "a leading sheer point"
                         : type == TrailingSheer     ? "a trailing sheer point"
                         : weighted                  ? "a weighted knuckle point"
                                                     : "a knuckle point";
      fw::ERRSCN(std::string("Deadlock of spline would occur if using ") + what + " here!");
      continue;
    }
    windowPicture(true, false, status);
    if (status) return;
    p.PRPTYP(c, j) = type;
    p.PRKWGT(c, j) = weight;
    p.MODFLG = true;
    windowPicture(false, false, status);
    if (status) return;
  }
}

void MDPTYP(bool& status) {
  status = false;
  ProfileData& p = profile();
  const std::array<std::string, 10> rows{
      "Continous{ncurvature", "Knuckle",          "Weighted{nknuckle", "Leading{nsheer",
      "Trailing{nsheer",      "Leading{ntangent", "Trailing{ntangent", "Equal{ntangents",
      "Both{ntangents",       "RETURN"};
  int selection = 10;
  bool abort = false;
  gr::GSELCT("POINT TYPE MODIFICATION", rows, "Select item", "", selection, abort);
  for (;;) {
    if (abort || selection == 10) return;
    int item = 0;
    bool cancel = false;
    gr::GITEMS("POINT TYPE MODIFICATION", rows);
    switch (selection) {
      case 1: MDPNTK(ContinuousCurvature, false, item, cancel, status); break;
      case 2: MDPNTK(Knuckle, false, item, cancel, status); break;
      case 3: MDPNTK(Knuckle, true, item, cancel, status); break;
      case 4: MDPNTK(LeadingSheer, false, item, cancel, status); break;
      case 5: MDPNTK(TrailingSheer, false, item, cancel, status); break;
      case 6: TNLEAD(item, status); break;
      case 7: TNTRAI(item, status); break;
      case 8: TNEQUL(item, status); break;
      case 9: TNBOTH(item, status); break;
      default: break;
    }
    if (status) return;
    if (selection >= 6) {
      p.HILSEG(1) = 0;
      p.HILSEG(2) = 0;
    }
    if (item != 0) {
      selection = item;
      continue;
    }
    gr::GSELCT("POINT TYPE MODIFICATION", rows, "Select item", "", selection, abort);
  }
}

}  // namespace kntr::profile
