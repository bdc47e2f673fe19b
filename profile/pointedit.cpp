#include "profile/pointedit.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <span>
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
#include "profile/curvepick.h"
#include "profile/curveinput.h"
#include "profile/curverecord.h"
#include "profile/display.h"
#include "profile/pointfairing.h"
#include "profile/pointpick.h"
#include "profile/pointtypes.h"
#include "profile/polylines.h"
#include "profile/undo.h"
#include "spline/knots.h"
#include "spline/tangents.h"

namespace kntr::profile {

namespace {

namespace fw = framework;
namespace gr = graphics;

// Colours and mark of the move dialogue.
constexpr int CrossHairColour = 3;
constexpr int RubberColour = 4;
constexpr int RubberMark = 6;
// Steps of the search for a segment's point at a given X or Y.
constexpr int SegmentSamples = 256;
constexpr int BisectionSteps = 60;
// Share of the larger box side handed to the fairing as its stop length.
constexpr double FairLengthShare = 0.000001;

std::string pairText(double x, double y) {
  return fmt::PE(x, 10, 3) + ", " + fmt::PE(y, 10, 3);
}

void drawPicture(bool rescale, bool& status) {
  windowPicture(false, rescale, status);
  gr::flushPlot();
}

void redraw(bool& status) {
  windowPicture(true, false, status);
  bool failed = false;
  drawPicture(false, failed);
  status = status || failed;
}

// The answers of a question: keyed values, a position, a menu item, a cancel.
enum class Reply { Keyed, Position, Item, Cancel };

// A question answered by keyed reals (preset with their defaults), a
// position or a menu item; scanner errors ask again.
Reply askReals(std::string_view question, std::string_view deflt, std::string_view help,
               std::span<double> values, gr::GraphicAnswer& answer) {
  for (;;) {
    bool abort = false, failed = false;
    gr::GQUEST(question, deflt, help, static_cast<int>(values.size()), answer, abort, failed);
    if (abort) return Reply::Cancel;
    if (failed) continue;
    if (answer.kind == gr::ItemInput) return Reply::Item;
    if (answer.kind == gr::PositionInput) return Reply::Position;
    bool none = false;
    fw::GTREAL(values, none, failed);
    if (!failed) return Reply::Keyed;
  }
}

// The same for one integer.
Reply askInteger(std::string_view question, std::string_view deflt, std::string_view help,
                 int& value, gr::GraphicAnswer& answer) {
  for (;;) {
    bool abort = false, failed = false;
    gr::GQUEST(question, deflt, help, 1, answer, abort, failed);
    if (abort) return Reply::Cancel;
    if (failed) continue;
    if (answer.kind == gr::ItemInput) return Reply::Item;
    if (answer.kind == gr::PositionInput) return Reply::Position;
    std::array<int, 1> number{value};
    bool none = false;
    fw::GTINTV(number, none, failed);
    if (failed) continue;
    value = number[0];
    return Reply::Keyed;
  }
}

void clampToBox(double& x, double& y) {
  const ProfileData& p = profile();
  x = std::clamp(x, p.PRBBOX(1), p.PRBBOX(2));
  y = std::clamp(y, p.PRBBOX(3), p.PRBBOX(4));
}

// Does (x, y) coincide with a neighbour of point j of curve c?
bool nextToNeighbour(int c, int j, double x, double y) {
  const ProfileData& p = profile();
  const int n = p.NPRPNT(c);
  auto near = [&](int k) {
    return k >= 1 && k <= n && k != j && coincident(x, y, p.PRPNTS(c, k)(1), p.PRPNTS(c, k)(2));
  };
  if (near(j - 1) || near(j + 1)) return true;
  if (p.PRCLSD(c) && ((j == 1 && near(n)) || (j == n && near(1)))) return true;
  return false;
}

// Point slots of a curve.
void clearSlot(int c, int j) {
  ProfileData& p = profile();
  p.PRPNTS(c, j) = Array1<double, 2>{};
  p.PRPTYP(c, j) = ContinuousCurvature;
  p.PRKWGT(c, j) = 0.0;
  p.PRTANV(c, j) = Array1<double, 4>{};
  p.PRTANL(c, j) = Array1<double, 2>{};
}

void copySlot(int c, int from, int to) {
  ProfileData& p = profile();
  p.PRPNTS(c, to) = p.PRPNTS(c, from);
  p.PRPTYP(c, to) = p.PRPTYP(c, from);
  p.PRKWGT(c, to) = p.PRKWGT(c, from);
  p.PRTANV(c, to) = p.PRTANV(c, from);
  p.PRTANL(c, to) = p.PRTANL(c, from);
}

// Make room at slot `at` (1..n+1) of curve c: the points from there move up.
void openSlot(int c, int at) {
  ProfileData& p = profile();
  const int n = p.NPRPNT(c);
  for (int j = n; j >= at; --j) copySlot(c, j, j + 1);
  p.NPRPNT(c) = n + 1;
  clearSlot(c, at);
}

// Take slot j of curve c away: the points behind it move down.
void closeSlot(int c, int j) {
  ProfileData& p = profile();
  const int n = p.NPRPNT(c);
  for (int k = j; k < n; ++k) copySlot(c, k + 1, k);
  clearSlot(c, n);
  p.NPRPNT(c) = n - 1;
}

// One completed change of point j of curve c: an undo step, erase, store,
// draw.
void storePoint(int c, int j, double x, double y, bool& status) {
  ProfileData& p = profile();
  STUNDO();
  windowPicture(true, false, status);
  p.PRPNTS(c, j)(1) = x;
  p.PRPNTS(c, j)(2) = y;
  p.MODFLG = true;
  bool failed = false;
  drawPicture(false, failed);
  status = status || failed;
}

// The current curve and point made valid after a change of the curves.
void keepCurrentValid() {
  ProfileData& p = profile();
  if (p.NPRCRV == 0) {
    p.CURCRV = 0;
    p.CURPNT = 0;
    return;
  }
  p.CURCRV = std::clamp(p.CURCRV, 1, p.NPRCRV);
  p.CURPNT = std::clamp(p.CURPNT, std::min(1, p.NPRPNT(p.CURCRV)), p.NPRPNT(p.CURCRV));
}

// Lines across the box through (x, y) in the colour of the cross hairs.
void crossHairs(double x, double y, bool horizontal, bool vertical) {
  const ProfileData& p = profile();
  gr::GCOLOR(CrossHairColour);
  if (horizontal) {
    gr::GMOVE2(p.PRBBOX(1), y);
    gr::GDRAW2(p.PRBBOX(2), y);
  }
  if (vertical) {
    gr::GMOVE2(x, p.PRBBOX(3));
    gr::GDRAW2(x, p.PRBBOX(4));
  }
  gr::flushPlot();
}

// The snap line cut to the box: the ends a, b; false when it misses.
bool snapLineInBox(XY& a, XY& b) {
  const ProfileData& p = profile();
  return lineThroughBox(p.SNAPLN(1), p.SNAPLN(2), p.SNAPLN(3), p.SNAPLN(4), a.x, a.y, b.x, b.y);
}

// The point of the segment a-b nearest to (x, y).
XY nearestOn(const XY& a, const XY& b, double x, double y) {
  const double dx = b.x - a.x, dy = b.y - a.y;
  const double length2 = dx * dx + dy * dy;
  double t = length2 > 0.0 ? ((x - a.x) * dx + (y - a.y) * dy) / length2 : 0.0;
  t = std::clamp(t, 0.0, 1.0);
  return XY{a.x + t * dx, a.y + t * dy};
}

// ---------------------------------------------------------------- insertion

// What became of one insertion.
enum class Step { Done, Again, Leave, Item };

// The position proposed for a new point on keyed segment `segment` of c.
void proposeOnSegment(int c, int segment, XY& proposal, bool& failed) {
  const ProfileData& p = profile();
  const int n = p.NPRPNT(c);
  auto at = [&](int j) { return XY{p.PRPNTS(c, j)(1), p.PRPNTS(c, j)(2)}; };
  failed = false;
  if (n == 0) {
    proposal = XY{0.5 * (p.PRBBOX(1) + p.PRBBOX(2)), 0.5 * (p.PRBBOX(3) + p.PRBBOX(4))};
    return;
  }
  if (n == 1) {
    proposal = at(1);
    return;
  }
  static Array1<XY, MaxCurvePoints> middles;
  int count = 0;
  MKPSMP(c, count, View1<XY>(middles), failed);
  if (failed) return;
  if (segment >= 1 && segment <= n - 1 && segment <= count) {
    proposal = middles(segment);
  } else if (p.PRCLSD(c) && count >= n) {
    proposal = middles(n);
  } else if (segment == 0) {
    proposal = XY{2 * at(1).x - at(2).x, 2 * at(1).y - at(2).y};
  } else {
    proposal = XY{2 * at(n).x - at(n - 1).x, 2 * at(n).y - at(n - 1).y};
  }
}

// The exact point of the starred rows: asks for X, Y or the parameter and
// finds it on the segment.
Step exactPoint(int mode, int c, int segment, XY& point, int& item) {
  const ProfileData& p = profile();
  const int n = p.NPRPNT(c);
  if (segment < 1 || segment > n || (segment == n && !p.PRCLSD(c)) || n < 2) {
    fw::ERRSCN("Segment index must be a segment between two profile points!");
    return Step::Again;
  }
  const char* question = mode == InsertAtX   ? "Select item, digitize or input X-coordinate [m]"
                         : mode == InsertAtY ? "Select item, digitize or input Y-coordinate [m]"
                                             : "Select item or input parameter value (0 .. 1)";
  const char* missing = mode == InsertAtX   ? "Segment has no point at the given X-coordinate!"
                        : mode == InsertAtY ? "Segment has no point at the given Y-coordinate!"
                                            : "Parameter value must be in the range 0 .. 1!";
  for (;;) {
    std::array<double, 1> value{0.5};
    gr::GraphicAnswer answer;
    const Reply reply = askReals(question, mode == InsertAtParameter ? "0.5" : "", "", value, answer);
    if (reply == Reply::Cancel) return Step::Leave;
    if (reply == Reply::Item) {
      item = answer.item;
      return Step::Item;
    }
    if (reply == Reply::Position) {
      if (mode == InsertAtParameter) {
        fw::ERRSCN("Only keyboard input is allowed!");
        continue;
      }
      value[0] = mode == InsertAtX ? answer.x : answer.y;
    }
    bool found = false, failed = false;
    segmentPoint(c, segment, mode, value[0], point, found, failed);
    if (failed) return Step::Again;
    if (found) return Step::Done;
    fw::ERRSCN(missing);
  }
}

// One insertion on `segment` of the current curve (steps after the choice
// of the segment): the position, the closure offer, the new point.
Step insertOnSegment(int mode, int& segment, bool picked, XY proposal, int& item, bool& status) {
  UndoLock lock;
  ProfileData& p = profile();
  const int c = p.CURCRV;
  const int n = p.NPRPNT(c);
  XY point = proposal;
  if (mode != InsertFree) {
    const Step step = exactPoint(mode, c, segment, point, item);
    if (step != Step::Done) return step;
  } else {
    bool failed = false;
    if (!picked) {
      proposeOnSegment(c, segment, proposal, failed);
      if (failed) return Step::Again;
    }
    // Show the proposal, and ask for the position.
    p.MARKOK = true;
    p.MARKPT(1) = proposal.x;
    p.MARKPT(2) = proposal.y;
    redraw(status);
    std::array<double, 2> xy{proposal.x, proposal.y};
    gr::GraphicAnswer answer;
    const Reply reply = askReals("Select item, digitize position or input coordinates (XY) [m]",
                                 pairText(proposal.x, proposal.y), "", xy, answer);
    p.MARKOK = false;
    if (reply == Reply::Cancel || reply == Reply::Item) {
      redraw(status);
      item = reply == Reply::Item ? answer.item : 0;
      return reply == Reply::Item ? Step::Item : Step::Leave;
    }
    point = reply == Reply::Position ? XY{answer.x, answer.y} : XY{xy[0], xy[1]};
  }

  // On the first point of an open curve: an offer to close it instead.
  if (!p.PRCLSD(c) && n >= 3 &&
      coincident(point.x, point.y, p.PRPNTS(c, 1)(1), p.PRPNTS(c, 1)(2))) {
    bool close = true, cancelled = false;
    fw::askYesNo("OK to close profile? (yes/no)", true, "yes", "", true, close, cancelled);
    if (cancelled) {
      redraw(status);
      return Step::Leave;
    }
    if (close) {
      STUNDO();
      windowPicture(true, false, status);
      p.PRCLSD(c) = true;
      p.MODFLG = true;
      bool failed = false;
      drawPicture(false, failed);
      status = status || failed;
      return Step::Done;
    }
  }
  // A point on one of its neighbours would leave no segment between them.
  const int at = segment + 1;
  const int before = segment >= 1 ? segment : (p.PRCLSD(c) ? n : 0);
  const int after = segment < n ? segment + 1 : (p.PRCLSD(c) ? 1 : 0);
  for (int k : {before, after}) {
    if (k >= 1 && coincident(point.x, point.y, p.PRPNTS(c, k)(1), p.PRPNTS(c, k)(2))) {
      fw::ERRSCN("New point coincides with a neighbour point, ignoring it!");
      redraw(status);
      return Step::Again;
    }
  }

  // Erase, insert, grow the box, draw.
  STUNDO();
  windowPicture(true, false, status);
  openSlot(c, at);
  p.PRPNTS(c, at)(1) = point.x;
  p.PRPNTS(c, at)(2) = point.y;
  p.PRPTYP(c, at) = ContinuousCurvature;
  p.PRKWGT(c, at) = 0.0;
  p.CURPNT = at;
  p.MODFLG = true;
  const Array1<double, 4> box = p.PRBBOX;
  bool failed = false;
  FTBBOX(false, failed);
  const bool grown = !(box == p.PRBBOX);
  if (grown) gr::SPBBOX(p.PRBBOX(1), p.PRBBOX(2), p.PRBBOX(3), p.PRBBOX(4), 0.0, 0.0, failed);
  drawPicture(grown, failed);
  status = status || failed;
  if (segment > 0) ++segment;
  return Step::Done;
}

// ------------------------------------------------------------------- moving

// The new place of point j of curve c by `mode`, asked and stored.
Step movePoint(int mode, int& item, bool& status) {
  UndoLock lock;
  ProfileData& p = profile();
  const int c = p.CURCRV, j = p.CURPNT;
  const XY old{p.PRPNTS(c, j)(1), p.PRPNTS(c, j)(2)};
  XY target = old;

  if (mode <= MoveVertical && gr::viewState().DYNGRF) {
    // Drag: the pointer moves the point until a left press.
    crossHairs(old.x, old.y, mode != MoveVertical, mode != MoveHorizontal);
    gr::GPRMPT(1, "Drag the point: a left press ends, Escape puts it back");
    gr::GPRMPT(2, "");
    XY shown = old;
    bool rubber = false;
    for (;;) {
      int result = 0;
      double x = 0, y = 0;
      bool at = false;
      gr::GTRACK(result, x, y, at);
      if (result == gr::TrackCancel) {
        p.PRPNTS(c, j)(1) = old.x;
        p.PRPNTS(c, j)(2) = old.y;
        redraw(status);
        return Step::Again;
      }
      if (result == gr::TrackDone && !at) break;
      if (mode == MoveHorizontal) y = old.y;
      if (mode == MoveVertical) x = old.x;
      clampToBox(x, y);
      if (!nextToNeighbour(c, j, x, y)) {
        gr::GPRMPT(3, "X = " + fmt::PE(x, 10, 3) + " [m]   Y = " + fmt::PE(y, 10, 3) + " [m]");
        if (gr::viewState().AUTORD) {
          dragPoint(c, j, x, y, status);
        } else {
          // The curve goes; a rubber line from the neighbours follows.
          bool failed = false;
          if (!rubber) PLPRCV(c, true, failed);
          const int n = p.NPRPNT(c);
          const int prev = j > 1 ? j - 1 : (p.PRCLSD(c) ? n : 0);
          const int next = j < n ? j + 1 : (p.PRCLSD(c) ? 1 : 0);
          for (int pass = rubber ? 0 : 1; pass <= 1; ++pass) {
            const XY q = pass == 0 ? shown : XY{x, y};
            gr::GCOLOR(pass == 0 ? EraseColour : RubberColour);
            for (int k : {prev, next}) {
              if (k < 1 || k == j) continue;
              gr::GMOVE2(p.PRPNTS(c, k)(1), p.PRPNTS(c, k)(2));
              gr::GDRAW2(q.x, q.y);
            }
            gr::GMOVE2(q.x, q.y);
            gr::GMARK2(RubberMark);
          }
          gr::flushPlot();
          rubber = true;
          p.PRPNTS(c, j)(1) = x;
          p.PRPNTS(c, j)(2) = y;
        }
        shown = XY{x, y};
      }
      if (result == gr::TrackDone) break;
    }
    target = shown;
    // The whole drag is one step: the block as it was, then the new place.
    p.PRPNTS(c, j)(1) = old.x;
    p.PRPNTS(c, j)(2) = old.y;
  } else if (mode <= MoveVertical) {
    crossHairs(old.x, old.y, mode != MoveVertical, mode != MoveHorizontal);
    const char* question = mode == MoveFree ? "Select item, digitize or input new coordinates (XY) [m]"
                           : mode == MoveHorizontal
                               ? "Select item, digitize or input new X-coordinate [m]"
                               : "Select item, digitize or input new Y-coordinate [m]";
    std::array<double, 2> xy{old.x, old.y};
    std::span<double> values(xy.data(), mode == MoveFree ? 2 : 1);
    if (mode == MoveVertical) xy[0] = old.y;
    const std::string deflt = mode == MoveFree         ? pairText(old.x, old.y)
                              : mode == MoveHorizontal ? fmt::PE(old.x, 10, 3)
                                                       : fmt::PE(old.y, 10, 3);
    gr::GraphicAnswer answer;
    const Reply reply = askReals(question, deflt, "", values, answer);
    if (reply == Reply::Cancel || reply == Reply::Item) {
      redraw(status);
      item = reply == Reply::Item ? answer.item : 0;
      return reply == Reply::Item ? Step::Item : Step::Leave;
    }
    if (reply == Reply::Position) {
      target = XY{answer.x, answer.y};
    } else if (mode == MoveFree) {
      target = XY{xy[0], xy[1]};
    } else if (mode == MoveHorizontal) {
      target.x = xy[0];
    } else {
      target.y = xy[0];
    }
    if (mode == MoveHorizontal) target.y = old.y;
    if (mode == MoveVertical) target.x = old.x;
  } else if (mode == MoveToSnapLine) {
    XY a, b;
    if (!snapLineInBox(a, b)) {
      fw::ERRSCN("(MVPRPN) Could not fit snap line to bounding box!");
      return Step::Leave;
    }
    const XY foot = nearestOn(a, b, old.x, old.y);
    gr::GCOLOR(CrossHairColour);
    gr::GMOVE2(old.x, old.y);
    gr::GDRAW2(foot.x, foot.y);
    gr::flushPlot();
    std::array<double, 2> xy{foot.x, foot.y};
    gr::GraphicAnswer answer;
    const Reply reply = askReals("Select item, digitize or input coordinates (XY) [m]",
                                 pairText(foot.x, foot.y), "", xy, answer);
    if (reply == Reply::Cancel || reply == Reply::Item) {
      redraw(status);
      item = reply == Reply::Item ? answer.item : 0;
      return reply == Reply::Item ? Step::Item : Step::Leave;
    }
    const XY given = reply == Reply::Position ? XY{answer.x, answer.y} : XY{xy[0], xy[1]};
    target = nearestOn(a, b, given.x, given.y);
  } else {
    // Same X or Y as another point; the current point stays the one moved.
    int chosen = 0;
    bool cancel = false;
    SLPRPN("Select item, pick or input alignment point number", "", PointPickTexts{}, chosen,
           cancel, status);
    const int alignCurve = p.CURCRV, alignPoint = p.CURPNT;
    p.CURCRV = c;
    p.CURPNT = j;
    if (status) return Step::Leave;
    if (cancel || chosen != 0) {
      item = chosen;
      return chosen != 0 ? Step::Item : Step::Leave;
    }
    if (mode == MoveSameX)
      target.x = p.PRPNTS(alignCurve, alignPoint)(1);
    else
      target.y = p.PRPNTS(alignCurve, alignPoint)(2);
  }

  clampToBox(target.x, target.y);
  if (target == old) {
    redraw(status);
    return Step::Done;
  }
  if (nextToNeighbour(c, j, target.x, target.y)) {
    fw::ERRSCN("Moved point coincides with a neighbour point, ignoring move!");
    redraw(status);
    return Step::Again;
  }
  storePoint(c, j, target.x, target.y, status);
  return Step::Done;
}

// ------------------------------------------------------------------ fairing

// The coordinates of all curves as the fairing menu found them.
struct FairingCopy {
  int curves = 0;
  Array1<int, MaxCurves> points{};
  Array2<Array1<double, 2>, MaxCurves, MaxCurvePoints> xy{};
};

FairingCopy& fairingCopy() {
  static FairingCopy copy;
  return copy;
}

// One fairing of a chosen point by `mode` (rows 1 to 6).
Step fairPoint(int row, int& item, bool& status) {
  ProfileData& p = profile();
  PointPickTexts texts;
  texts.nothingNear = "Non-precise selection of profile point!";
  texts.ambiguous = "Ambiguous selection of profile point!";
  int chosen = 0;
  bool cancel = false;
  SLPRPN("Select item, pick or input point number to fair", "", texts, chosen, cancel, status);
  if (status || cancel) return Step::Leave;
  if (chosen != 0) {
    item = chosen;
    return Step::Item;
  }
  UndoLock lock;
  const int c = p.CURCRV, j = p.CURPNT;
  static constexpr FairMode modes[6] = {FairMode::Free,          FairMode::LeadingTangent,
                                        FairMode::TrailingTangent, FairMode::LeadingNormal,
                                        FairMode::TrailingNormal, FairMode::GivenVector};
  XY direction{};
  if (row == 6) {
    for (;;) {
      std::array<double, 2> v{0.0, 0.0};
      gr::GraphicAnswer answer;
      const Reply reply = askReals("Input direction vector to fair along (x,y)", "", "", v, answer);
      if (reply == Reply::Cancel) return Step::Leave;
      if (reply == Reply::Item) {
        item = answer.item;
        return Step::Item;
      }
      if (reply == Reply::Position) {
        fw::ERRSCN("Only keyboard input is allowed!");
        continue;
      }
      if (v[0] == 0.0 && v[1] == 0.0) {
        fw::ERRSCN("Direction vector cannot have zero length!");
        continue;
      }
      direction = XY{v[0], v[1]};
      break;
    }
  }
  static FairOutcome outcome;
  bool failed = false;
  fairCurvePoint(c, j, fairSettingsFromProfile(modes[row - 1], direction), outcome, failed);
  if (failed) return Step::Again;  // told already; nothing changed
  if (p.FRMITR > 1)
    fw::PRMESG("Fairing used " + fmt::I(outcome.iterations, 4) + " iteration(s) out of " +
               fmt::I(p.FRMITR, 4) + " allowed");
  // Erase, show the direction, store, draw.
  if (!(outcome.faired == outcome.start)) STUNDO();
  windowPicture(true, false, status);
  p.HLPLOK = row != 1;
  if (p.HLPLOK) {
    p.HLPLIN(1) = outcome.start.x;
    p.HLPLIN(2) = outcome.start.y;
    p.HLPLIN(3) = outcome.start.x + outcome.direction.x;
    p.HLPLIN(4) = outcome.start.y + outcome.direction.y;
  }
  if (!(outcome.faired == outcome.start)) {
    p.PRPNTS(c, j)(1) = outcome.faired.x;
    p.PRPNTS(c, j)(2) = outcome.faired.y;
    p.MODFLG = true;
  }
  drawPicture(false, failed);
  status = status || failed;
  return Step::Done;
}

// A positive real of FRPROP's questions, or false for a cancel.
template <class T>
bool askPositive(std::string_view question, const std::string& deflt, const char* refusal, T& value) {
  for (;;) {
    gr::GraphicAnswer answer;
    std::array<double, 1> v{static_cast<double>(value)};
    const Reply reply = askReals(question, deflt, "", v, answer);
    if (reply != Reply::Keyed) {
      if (reply == Reply::Position) {
        fw::ERRSCN("Only keyboard input is allowed!");
        continue;
      }
      return false;
    }
    const T given = static_cast<T>(v[0]);
    if (!(given > 0)) {
      fw::ERRSCN(refusal);
      continue;
    }
    value = given;
    return true;
  }
}

}  // namespace

// ---------------------------------------------------------------- routines

void windowPicture(bool erase, bool rescale, bool& status) {
  DPKNTR(erase, rescale, status);
  if (erase)
    gr::GWFRAM();
  else
    gr::flushPlot();
}

void windowRedraw(bool rescale, bool& status) {
  windowPicture(true, false, status);
  if (!status) windowPicture(false, rescale, status);
}

void dragPoint(int c, int j, double x, double y, bool& status) {
  ProfileData& p = profile();
  windowPicture(true, false, status);
  p.PRPNTS(c, j)(1) = x;
  p.PRPNTS(c, j)(2) = y;
  bool failed = false;
  drawPicture(false, failed);
  status = status || failed;
}

void segmentPoint(int c, int segment, int mode, double value, XY& point, bool& found,
                  bool& status) {
  status = false;
  found = false;
  const ProfileData& p = profile();
  const int n = c >= 1 && c <= p.NPRCRV ? p.NPRPNT(c) : 0;
  if (n < 2 || segment < 1 || segment > n || (segment == n && !p.PRCLSD(c))) {
    fw::fail("Segment index must be a segment between two profile points!", status);
    return;
  }
  // The segment as a cubic in its parameter: a0 + a1 t + a2 t^2 + a3 t^3.
  double a[2][4];
  const int next = segment < n ? segment + 1 : 1;
  if (p.PRFTYP != SplineProfile) {
    for (int k = 0; k < 2; ++k) {
      a[k][0] = p.PRPNTS(c, segment)(k + 1);
      a[k][1] = p.PRPNTS(c, next)(k + 1) - a[k][0];
      a[k][2] = a[k][3] = 0.0;
    }
  } else {
    static spline::SplineRecord rec;
    static spline::HermiteCurve solved;
    CurveBox box;
    loadCurveRecord(c, rec, box);
    spline::MKIKV3(p.PRPARM(c), rec, status);
    if (status) return;
    const spline::Triple origin{}, normal{{1.0, 0.0, 0.0}};
    spline::HCTAN3(MaxCurvePoints, origin, normal, spline::SideNone, box.largerSide() / 1000.0,
                   rec, solved, status);
    if (status) return;
    const int m = solved.m;
    const int s = std::min(segment, m), e = s < m ? s + 1 : 1;
    const spline::Triple p0 = solved.points(s), p1 = solved.points(e);
    const spline::Triple t0 = spline::trailing(solved.tangents(s));
    const spline::Triple t1 = spline::leading(solved.tangents(e));
    for (int k = 0; k < 2; ++k) {
      a[k][0] = p0(k + 1);
      a[k][1] = t0(k + 1);
      a[k][2] = 3 * (p1(k + 1) - p0(k + 1)) - 2 * t0(k + 1) - t1(k + 1);
      a[k][3] = 2 * (p0(k + 1) - p1(k + 1)) + t0(k + 1) + t1(k + 1);
    }
  }
  auto at = [&](int k, double t) { return a[k][0] + t * (a[k][1] + t * (a[k][2] + t * a[k][3])); };
  double t = value;
  if (mode == InsertAtParameter) {
    if (!(value >= 0.0 && value <= 1.0)) return;
  } else {
    // The first crossing of the value along the segment, then halving.
    const int k = mode == InsertAtX ? 0 : 1;
    auto f = [&](double u) { return at(k, u) - value; };
    double lo = 0.0, flo = f(0.0);
    bool bracket = flo == 0.0;
    double hi = 0.0;
    for (int i = 1; i <= SegmentSamples && !bracket; ++i) {
      hi = static_cast<double>(i) / SegmentSamples;
      const double fhi = f(hi);
      if (fhi == 0.0 || (fhi < 0.0) != (flo < 0.0)) {
        bracket = true;
        if (fhi == 0.0) lo = hi;
        break;
      }
      lo = hi;
      flo = fhi;
    }
    if (!bracket) return;
    if (f(lo) != 0.0) {
      for (int i = 0; i < BisectionSteps; ++i) {
        const double mid = 0.5 * (lo + hi);
        if ((f(mid) < 0.0) == (f(lo) < 0.0))
          lo = mid;
        else
          hi = mid;
      }
    }
    t = lo;
  }
  point = XY{at(0, t), at(1, t)};
  // The given coordinate itself, not its nearest float along the cubic.
  if (mode == InsertAtX) point.x = value;
  if (mode == InsertAtY) point.y = value;
  found = true;
}

void FTBBOX(bool fit, bool& status) {
  status = false;
  ProfileData& p = profile();
  if (p.NPRCRV == 0) return;
  static ProfilePolylines lines;
  IQPPOL(MaxCurves, MaxPolylinePoints, lines, status);
  if (status) return;
  bool any = false;
  double xmin = 0, xmax = 0, ymin = 0, ymax = 0;
  for (int c = 1; c <= lines.curves; ++c) {
    for (int i = 1; i <= lines.points(c); ++i) {
      const XY& q = lines.xy(c, i);
      if (!any) {
        xmin = xmax = q.x;
        ymin = ymax = q.y;
        any = true;
      }
      xmin = std::min(xmin, q.x);
      xmax = std::max(xmax, q.x);
      ymin = std::min(ymin, q.y);
      ymax = std::max(ymax, q.y);
    }
  }
  if (!any) return;
  const double margin = BoxMarginShare * std::max(xmax - xmin, ymax - ymin);
  if (fit || xmin < p.PRBBOX(1)) p.PRBBOX(1) = xmin - margin;
  if (fit || xmax > p.PRBBOX(2)) p.PRBBOX(2) = xmax + margin;
  if (fit || ymin < p.PRBBOX(3)) p.PRBBOX(3) = ymin - margin;
  if (fit || ymax > p.PRBBOX(4)) p.PRBBOX(4) = ymax + margin;
}

void MDPRCV(bool& status) {
  status = false;
  int pending = 0;
  for (;;) {
    ProfileData& p = profile();
    keepCurrentValid();
    if (p.NPRCRV == 0) return;
    const bool spline = p.PRFTYP == SplineProfile;
    const std::array<std::string, 6> rows{"Insert point",
                                          "Move point",
                                          spline ? "Fair point" : "(Fair point)",
                                          "Delete point",
                                          spline ? "Modify{npoint type" : "(Modify{npoint type)",
                                          "RETURN"};
    int selection = pending;
    pending = 0;
    if (selection == 0) {
      bool abort = false;
      selection = 6;
      gr::GSELCT("PROFILE CURVE MODIFICATION", rows, "Select item", "", selection, abort);
      if (abort) return;
    }
    bool st = false;
    switch (selection) {
      case 1:
        MNINSP(st);
        break;
      case 2:
        MVPRPN(st);
        break;
      case 3:
        if (!spline)
          fw::ERRSCN("Points cannot be faired for a polyline profile!");
        else
          FRPRPN(st);
        break;
      case 4:
        DLPRPN(pending, st);
        break;
      case 5:
        if (!spline)
          fw::ERRSCN("Point types cannot be modified for a polyline profile!");
        else
          MDPTYP(st);
        break;
      default:
        return;
    }
    if (st) {
      status = true;
      return;
    }
  }
}

void MNINSP(bool& status) {
  status = false;
  const std::array<std::string, 5> rows{"Insert free{n(XY)", "* Insert at{ngiven X",
                                        "* Insert at{ngiven Y", "* Insert at{nparameter value",
                                        "RETURN"};
  int pending = 0;
  for (;;) {
    if (profile().NPRCRV == 0) return;
    int selection = pending;
    pending = 0;
    if (selection == 0) {
      bool abort = false;
      selection = 5;
      gr::GSELCT("CURVE POINT INSERTION", rows, "Select item", "", selection, abort);
      if (abort) return;
    }
    if (selection < InsertFree || selection > InsertAtParameter) return;
    INPRPT(selection, pending, status);
    if (status) return;
  }
}

void INPRPT(int mode, int& item, bool& status) {
  status = false;
  item = 0;
  ProfileData& p = profile();
  int segment = -1;  // none yet: no default
  for (;;) {
    keepCurrentValid();
    if (p.NPRCRV == 0) return;
    int c = p.CURCRV;
    if (p.NPRPNT(c) >= MaxCurvePoints) {
      fw::ERRSCN("Max number of profile points reached!");
      return;
    }
    // The segment: keyed, or picked on any curve.
    const int n = p.NPRPNT(c);
    const std::string question =
        "Select item, pick segment or input segment number (0 .. " + fmt::I(n, 3) + ")";
    const bool hasDefault = segment >= 0 && segment <= n;
    int number = hasDefault ? segment : 0;
    gr::GraphicAnswer answer;
    const Reply reply = askInteger(question, hasDefault ? std::to_string(segment) : "",
                                   "0 = insert before 1st point...", number, answer);
    if (reply == Reply::Cancel) return;
    if (reply == Reply::Item) {
      item = answer.item;
      return;
    }
    XY proposal{};
    const bool picked = reply == Reply::Position;
    if (picked) {
      int curve = 0, verdict = 0;
      double px = 0, py = 0;
      bool failed = false;
      IQPCSG(answer.x, answer.y, curve, number, px, py, verdict, failed);
      if (failed) continue;
      if (verdict == PickNothingNear) {
        fw::ERRSCN("Non-precise selection of profile curve/segment!");
        continue;
      }
      if (verdict == PickAmbiguous) {
        fw::ERRSCN("Ambiguous selection of profile curve/segment!");
        continue;
      }
      p.CURCRV = c = curve;
      proposal = XY{px, py};
      if (p.NPRPNT(c) >= MaxCurvePoints) continue;
    } else if (number < 0) {
      fw::ERRSCN("Segment index cannot be negative!");
      continue;
    } else if (number > n) {
      fw::ERRSCN("Segment index exceeds available profile segments!");
      continue;
    }
    segment = number;
    const Step step = insertOnSegment(mode, segment, picked, proposal, item, status);
    if (status || step == Step::Leave || step == Step::Item) return;
  }
}

void MVPRPN(bool& status) {
  status = false;
  int pending = 0;
  for (;;) {
    ProfileData& p = profile();
    keepCurrentValid();
    if (p.NPRCRV == 0) return;
    const std::array<std::string, 7> rows{
        "Move{nfree (XY)",  "Move{nhorisontal (X)",
        "Move{nvertical (Y)", p.SNAPOK ? "Move to{nsnap line" : "(Move to{nsnap line)",
        "Same X as...",     "Same Y as...",
        "RETURN"};
    int mode = pending;
    pending = 0;
    if (mode == 0) {
      bool abort = false;
      mode = 7;
      gr::GSELCT("PROFILE POINT MOVING", rows, "Select item", "", mode, abort);
      if (abort) return;
    }
    if (mode < MoveFree || mode > MoveSameY) return;
    if (mode == MoveToSnapLine && !p.SNAPOK) {
      fw::ERRSCN("Snap line must be defined first!");
      continue;
    }
    // The same mode again and again, until a cancel or another item.
    for (;;) {
      keepCurrentValid();
      if (p.NPRCRV == 0) return;
      int chosen = 0;
      bool cancel = false;
      SLPRPN("Select item, pick or input point number to move", "", PointPickTexts{}, chosen,
             cancel, status);
      if (status) return;
      if (cancel) break;
      if (chosen != 0) {
        pending = chosen;
        break;
      }
      redraw(status);
      if (p.NPRPNT(p.CURCRV) < 1) continue;
      int item = 0;
      const Step step = movePoint(mode, item, status);
      if (status) return;
      if (step == Step::Item) {
        pending = item;
        break;
      }
    }
  }
}

void FRPRPN(bool& status) {
  status = false;
  ProfileData& p = profile();
  FairingCopy& copy = fairingCopy();
  copy.curves = p.NPRCRV;
  copy.points = p.NPRPNT;
  copy.xy = p.PRPNTS;
  const std::array<std::string, 9> rows{"Fair free",
                                        "Fair along{nleading tangent",
                                        "Fair along{ntrailing tangent",
                                        "Fair along{nleading normal",
                                        "Fair along{ntrailing normal",
                                        "Fair along{ngiven vector",
                                        "Modify fairing{nproperties",
                                        "CANCEL",
                                        "RETURN"};
  int pending = 0;
  bool failed = false;
  for (;;) {
    keepCurrentValid();
    if (p.NPRCRV == 0) break;
    int selection = pending;
    pending = 0;
    if (selection == 0) {
      bool abort = false;
      selection = 9;
      gr::GSELCT("PROFILE POINT FAIRING", rows, "Select item", "", selection, abort);
      if (abort) break;
    }
    if (selection == 9) break;
    if (selection == 7) {
      FRPROP(status);
      if (status) break;
      continue;
    }
    if (selection == 8) {
      // Every coordinate back as the menu found it, as one step.
      bool differs = false;
      for (int c = 1; c <= std::min(p.NPRCRV, copy.curves); ++c)
        for (int j = 1; j <= std::min(p.NPRPNT(c), copy.points(c)); ++j)
          differs = differs || !(p.PRPNTS(c, j) == copy.xy(c, j));
      if (differs) STUNDO();
      windowPicture(true, false, failed);
      for (int c = 1; c <= std::min(p.NPRCRV, copy.curves); ++c)
        for (int j = 1; j <= std::min(p.NPRPNT(c), copy.points(c)); ++j)
          p.PRPNTS(c, j) = copy.xy(c, j);
      if (differs) p.MODFLG = true;
      p.HLPLOK = false;
      drawPicture(false, failed);
      return;
    }
    fairPoint(selection, pending, status);
    if (status) break;
  }
  if (p.HLPLOK) {
    windowPicture(true, false, failed);
    p.HLPLOK = false;
    drawPicture(false, failed);
  }
}

void FRPROP(bool& status) {
  status = false;
  ProfileData& p = profile();
  bool answer = p.FRLOCL, cancelled = false;
  fw::askYesNo("OK to evaluate spline potential energy locally? (yes/no)", p.FRLOCL,
               p.FRLOCL ? "yes" : "no", "Otherwise a global evaluation is done (slower)...", true,
               answer, cancelled);
  if (cancelled) return;
  p.FRLOCL = answer;
  answer = p.FRRSTR;
  fw::askYesNo("OK to restraint fairing adjustments? (yes/no)", p.FRRSTR, p.FRRSTR ? "yes" : "no",
               "No restraint will allow free adjustments...", true, answer, cancelled);
  if (cancelled) return;
  p.FRRSTR = answer;
  if (p.FRRSTR &&
      !askPositive("Input fairing adjustment restraint distance", fmt::PE(p.FRRDST, 10, 3),
                   "Adjustment restraint distance must be positive!", p.FRRDST))
    return;
  askPositive("Input max number of fairing iterations", std::to_string(p.FRMITR),
              "Max number of fairing iterations must be positive!", p.FRMITR);
}

void DLPRPN(int& item, bool& status) {
  status = false;
  item = 0;
  ProfileData& p = profile();
  for (;;) {
    keepCurrentValid();
    if (p.NPRCRV == 0) return;
    bool cancel = false;
    SLPRPN("Select item, pick point or input point number", "", PointPickTexts{}, item, cancel,
           status);
    if (status || cancel || item != 0) return;
    const int c = p.CURCRV, j = p.CURPNT, n = p.NPRPNT(c);
    if (n < 1) continue;
    // Would the spline lock without the point? The first slot's weights
    // and closed flag stand for every curve.
    static Array1<int, MaxCurvePoints> types;
    static Array1<double, MaxCurvePoints> weights;
    int kept = 0;
    for (int k = 1; k <= n; ++k)
      if (k != j) types(++kept) = p.PRPTYP(c, k);
    for (int k = 1; k <= MaxCurvePoints; ++k) weights(k) = p.PRKWGT(1, k);
    bool deadlock = false, failed = false;
    if (kept >= 1)
      spline::IQDLCK(kept, View1<const int>(types.data(), kept),
                     View1<const double>(weights.data(), kept), p.PRCLSD(1), deadlock, failed);
    if (failed) continue;
    if (deadlock) {
      fw::ERRSCN("Deadlock of spline would occur if deleting this point!");
      continue;
    }
    STUNDO();
    windowPicture(true, false, status);
    p.MODFLG = true;
    if (n == 1) {
      fw::PRMESG("Profile curve is deleted!");
      RMPRCV(c, status);
      keepCurrentValid();
      drawPicture(false, failed);
      return;
    }
    closeSlot(c, j);
    p.CURPNT = std::min(p.CURPNT, n - 1);
    drawPicture(false, failed);
    status = status || failed;
    if (status) return;
  }
}

}  // namespace kntr::profile
