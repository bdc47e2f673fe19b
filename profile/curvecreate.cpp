#include "profile/curvecreate.h"

#include <algorithm>
#include <array>
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
#include "profile/pointedit.h"
#include "profile/wholeprofile.h"

namespace kntr::profile {

namespace {

namespace fw = framework;
namespace gr = graphics;

// The rubber band from the latest point of the new curve to the pointer.
void rubberBand(double x, double y) {
  const ProfileData& p = profile();
  const int c = p.NPRCRV;
  if (c < 1 || p.NPRPNT(c) < 1) return;
  bool status = false;
  windowPicture(true, false, status);
  if (!status) windowPicture(false, false, status);
  if (status) return;
  const int j = p.NPRPNT(c);
  gr::GCOLOR(CurveColour);
  gr::GMOVE2(p.PRPNTS(c, j)(1), p.PRPNTS(c, j)(2));
  gr::GDRAW2(std::clamp(x, p.PRBBOX(1), p.PRBBOX(2)), std::clamp(y, p.PRBBOX(3), p.PRBBOX(4)));
  gr::flushPlot();
}

// The band follows the pointer while a curve's points are asked.
struct BandOn {
  BandOn() { gr::setQuestionTracker(rubberBand); }
  ~BandOn() { gr::setQuestionTracker(nullptr); }
};

// How a point of a new curve is asked and stored.
struct PointInput {
  const char* title;
  bool digitized;    // positions come from the digitizer's calibration
  bool cancelRow;    // the menu has "CANCEL"
  int storedType;    // the type of a new point
  double storedWeight;
  bool keepClosing;  // a yes to closure goes on with the input
};

// Points of the last curve until DONE, CLOSE, a closure or a cancel. false
// when the curve is to be thrown away (a cancel); `closedOut` tells how it
// ended.
bool inputPoints(const PointInput& in, bool& status) {
  const BandOn band;
  ProfileData& p = profile();
  const int c = p.NPRCRV;
  const bool spline = p.PRFTYP == SplineProfile;
  bool knuckleRow = true;  // the row offers to make the latest point a knuckle
  double lastX = 0.0, lastY = 0.0;
  for (;;) {
    std::array<std::string, 4> rows;
    int n = 0;
    if (spline) rows[n++] = knuckleRow ? "Latest point{nis knuckle pnt" : "Latest point{nis CC point";
    if (in.cancelRow) rows[n++] = "CANCEL";
    rows[n++] = "CLOSE";
    rows[n++] = "DONE";
    const int latestRow = spline ? 1 : 0;
    const int cancelRow = in.cancelRow ? latestRow + 1 : 0;
    const int closeRow = n - 1, doneRow = n;
    gr::GITEMS(in.title, std::span<const std::string>(rows.data(), n));

    gr::GraphicAnswer answer;
    bool cancel = false, failed = false;
    gr::GQUEST("Select item, digitize point or input coordinates (XY) [m]", " ", "", 2, answer,
               cancel, failed);
    if (cancel) return false;
    if (failed) continue;
    if (p.NPRPNT(c) >= MaxCurvePoints && !in.digitized) {
      fw::ERRSCN("Max number of profile curve points reached!");
      continue;
    }
    if (answer.kind == gr::ItemInput) {
      const int row = answer.item;
      if (row == latestRow && row != 0) {
        const int j = p.NPRPNT(c);
        if (j == 0) continue;
        windowPicture(true, false, status);
        if (status) return false;
        p.PRPTYP(c, j) = knuckleRow ? Knuckle : ContinuousCurvature;
        p.PRKWGT(c, j) = knuckleRow ? 1.0 : 0.0;
        knuckleRow = !knuckleRow;
        windowPicture(false, false, status);
        if (status) return false;
        continue;
      }
      if (row == cancelRow && row != 0) return false;
      if (row == doneRow) {
        windowPicture(true, false, status);
        if (status) return false;
        p.PRCLSD(c) = false;
        windowPicture(false, false, status);
        return !status;
      }
      if (row == closeRow) {
        windowPicture(true, false, status);
        if (status) return false;
        const int j = p.NPRPNT(c);
        if (j >= 2 && coincident(lastX, lastY, p.PRPNTS(c, 1)(1), p.PRPNTS(c, 1)(2))) {
          p.NPRPNT(c) = j - 1;
          if (p.NPRPNT(c) <= 1) {
            fw::PRMESG("Only one distinct profile point - input aborted!");
            return false;
          }
        }
        p.PRCLSD(c) = true;
        windowPicture(false, false, status);
        return !status;
      }
      continue;
    }
    // a position or two keyed reals
    double x = 0.0, y = 0.0;
    if (answer.kind == gr::PositionInput) {
      x = answer.x;
      y = answer.y;
      if (in.digitized) {
        const double r = x, s = y;
        gr::DG2WLD(r, s, x, y, status);
        if (status) return false;
      }
    } else {
      std::array<double, 2> v{0.0, 0.0};
      bool none = false;
      fw::GTREAL(v, none, failed);
      if (failed || none) continue;
      x = v[0];
      y = v[1];
    }
    if (p.NPRPNT(c) >= MaxCurvePoints) {
      fw::PRMESG("Max number of profile curve points reached!");
      continue;
    }
    // inside the box, as every input position
    x = std::clamp(x, p.PRBBOX(1), p.PRBBOX(2));
    y = std::clamp(y, p.PRBBOX(3), p.PRBBOX(4));
    const int j = p.NPRPNT(c) + 1;
    if (j >= 2 && coincident(x, y, p.PRPNTS(c, j - 1)(1), p.PRPNTS(c, j - 1)(2))) {
      fw::ERRSCN("Latest two points was coincidental, ignoring last point!");
      continue;
    }
    lastX = x;
    lastY = y;
    if (j >= 3 && coincident(x, y, p.PRPNTS(c, 1)(1), p.PRPNTS(c, 1)(2))) {
      bool yes = true, cancelled = false;
      fw::askYesNo("OK to close profile curve? (yes/no)", true, "yes",
                   "First and latest profile point coincides", true, yes, cancelled);
      if (yes) {
        windowPicture(true, false, status);
        if (status) return false;
        p.PRCLSD(c) = true;
        if (in.keepClosing) {
          // the coincident point is stored too, and the input goes on
          p.NPRPNT(c) = j;
          p.PRPNTS(c, j) = Array1<double, 2>{{x, y}};
          p.PRPTYP(c, j) = in.storedType;
          p.PRKWGT(c, j) = in.storedWeight;
          windowPicture(false, false, status);
          if (status) return false;
          continue;
        }
        windowPicture(false, false, status);
        return !status;
      }
    }
    windowPicture(true, false, status);
    if (status) return false;
    p.NPRPNT(c) = j;
    p.PRPNTS(c, j) = Array1<double, 2>{{x, y}};
    p.PRPTYP(c, j) = in.storedType;
    p.PRKWGT(c, j) = in.storedWeight;
    p.PRTANV(c, j) = Array1<double, 4>{};
    p.PRTANL(c, j) = Array1<double, 2>{};
    p.CURPNT = j;
    p.MODFLG = true;
    windowPicture(false, false, status);
    if (status) return false;
    knuckleRow = true;
  }
}

// The rows of "PROFILE DIGITIZING", with the window open.
void digitizingMenu(bool& status);

}  // namespace

void CRPRCV(bool& status) {
  status = false;
  ProfileData& p = profile();
  if (p.NPRCRV == 0) {
    bool cancel = false;
    SLPRTP(cancel, status);
    if (cancel || status) return;
    DGREFP(false, false, cancel, status);
    if (cancel || status) return;
    windowRedraw(false, status);
    if (status) return;
  }
  const ProfileData before = p;
  const int c = ++p.NPRCRV;
  p.NPRPNT(c) = 0;
  p.PRCLSD(c) = false;
  if (p.PRPARM(c) == 0) p.PRPARM(c) = ChordLength;
  p.CURCRV = c;
  const PointInput in{"PROFILE CURVE CREATION", false, true, ContinuousCurvature, 0.0, false};
  if (!inputPoints(in, status)) {
    // a cancelled or failed creation leaves the profile as it was
    bool ignored = false;
    windowPicture(true, false, ignored);
    const bool failed = status;
    p = before;
    windowPicture(false, false, ignored);
    status = failed;
    return;
  }
  p.MODFLG = true;
}

void DGPRPN(bool& status) {
  status = false;
  ProfileData& p = profile();
  const bool spline = p.PRFTYP == SplineProfile;
  const PointInput in{"PROFILE CURVE DIGITIZING", true, false,
                      spline ? ContinuousCurvature : Knuckle, spline ? 0.0 : 1.0, true};
  if (!inputPoints(in, status)) {
    // a cancel keeps the curve in the table, with no points
    if (!status) p.NPRPNT(p.NPRCRV) = 0;
  }
}

void DGPRCV(bool& status) {
  status = false;
  ProfileData& p = profile();
  if (p.NPRCRV + 1 > MaxCurves) {
    fw::PRMESG("Max number of profile curves reached!");
    return;
  }
  if (p.NPRCRV == 0) p.PRFTYP = SplineProfile;
  // the window, with the profile in it, for the whole menu
  bool failed = false;
  gr::SPBBOX(p.PRBBOX(1), p.PRBBOX(2), p.PRBBOX(3), p.PRBBOX(4), 0.0, 0.0, failed);
  gr::OPNWIN(windowPicture, failed);
  if (failed) {
    status = true;
    return;
  }
  fw::program().terminalInput = false;
  gr::setUnderlayHandler(UNDRLY);
  windowPicture(false, true, status);
  gr::flushPlot();
  if (!status) digitizingMenu(status);
  gr::CLSWIN();
  fw::program().terminalInput = true;
}

namespace {

void digitizingMenu(bool& status) {
  ProfileData& p = profile();
  bool scaled = false;
  for (;;) {
    const std::array<std::string, 4> rows{
        "Scale{ndigitizer", scaled ? "Create{nprofile curve" : "(Create{nprofile curve)",
        "Drawing{nunderlay", "RETURN"};
    int selection = 4;
    bool abort = false;
    gr::GSELCT("PROFILE DIGITIZING", rows, "Select item", "", selection, abort);
    if (abort || selection == 4) return;
    if (selection == 3) {
      // a scanned drawing under the plot, to digitize off
      gr::GraphicAnswer answer;
      bool cancel = false, failed = false;
      gr::GQUEST("Input name of drawing (PNG or JPEG) to show under the plot, or none",
                 underlayFile().empty() ? " " : underlayFile(),
                 "The drawing fills the bounding box; calibrate the digitizer on its known points",
                 1, answer, cancel, failed);
      if (cancel || failed || answer.kind != gr::KeyboardInput) continue;
      std::array<std::string, 1> name{underlayFile()};
      bool none = false;
      fw::GTCHAR(name, fw::InputLineLength, none, failed);
      if (!failed && !none) UNDRLY(name[0]);
      continue;
    }
    if (selection == 1) {
      if (scaled) {
        bool yes = false, cancelled = false;
        fw::askYesNo("OK to rescale digitizing area? (yes/no)", false, "no", "", true, yes,
                     cancelled);
        if (!yes) continue;
      }
      bool failed = false;
      const gr::ViewState before = gr::viewState();
      gr::DGSCAL(3, 1, 0, failed);
      // an aborted calibration leaves the digitizer as it was
      const gr::ViewState& after = gr::viewState();
      const bool calibrated = after.r1 != before.r1 || after.s1 != before.s1 ||
                              after.r2 != before.r2 || after.s2 != before.s2 ||
                              after.r3 != before.r3 || after.s3 != before.s3 ||
                              after.X1 != before.X1 || after.Y1 != before.Y1 ||
                              after.X2 != before.X2 || after.Y3 != before.Y3;
      if (!failed && calibrated) scaled = true;
      windowRedraw(false, status);
      if (status) return;
      continue;
    }
    if (!scaled) {
      fw::ERRSCN("Digitizer must be scaled in advance!");
      continue;
    }
    p.MODFLG = true;
    if (p.NPRCRV == 0) {
      bool cancel = false;
      DGREFP(false, true, cancel, status);
      if (status) return;
    }
    const int kept = p.CURCRV;
    const int c = ++p.NPRCRV;
    p.NPRPNT(c) = 0;
    p.PRCLSD(c) = false;
    if (p.PRPARM(c) == 0) p.PRPARM(c) = ChordLength;
    p.CURCRV = c;
    DGPRPN(status);
    if (status) {
      --p.NPRCRV;
      p.CURCRV = kept;
      return;
    }
    if (p.NPRCRV + 1 > MaxCurves) {
      fw::PRMESG("Max number of profile curves reached!");
      return;
    }
  }
}

}  // namespace

}  // namespace kntr::profile
