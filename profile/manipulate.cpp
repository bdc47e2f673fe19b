#include "profile/manipulate.h"

#include <algorithm>
#include <array>
#include <string>

#include "framework/format.h"
#include "framework/menus.h"
#include "framework/state.h"
#include "framework/text.h"
#include "graphics/dialogue.h"
#include "graphics/plotstate.h"
#include "graphics/view.h"
#include "profile/block.h"
#include "profile/module.h"
#include "profile/polylines.h"

namespace kntr::profile {

namespace {

namespace fw = framework;
namespace gr = graphics;

void notInThisVersion() {
  fw::ERRSCN("Not implemented in this version{nwl{gre(version is " +
             std::string(fmt::trimmed(fw::program().SPVERS)) + ")");
}

// The picture of the profile: erase clears the display area; drawing scales
// to the box first when asked.
void picture(bool erase, bool rescale, bool& status) {
  status = false;
  if (erase) {
    gr::GCLEAR("display");
    gr::GWFRAM();
    return;
  }
  if (rescale) SCKNTR(status);
  const ProfileData& p = profile();
  bool failed = false;
  if (p.SHOWGR) {
    // Grid crosses at a tenth of the box.
    const double dx = (p.PRBBOX(2) - p.PRBBOX(1)) / 10.0, dy = (p.PRBBOX(4) - p.PRBBOX(3)) / 10.0;
    const double arm = 0.15 * std::min(dx, dy);
    gr::strokeColour(1);
    for (int i = 0; i <= 10; ++i)
      for (int j = 0; j <= 10; ++j) {
        const double x = p.PRBBOX(1) + i * dx, y = p.PRBBOX(3) + j * dy;
        gr::strokeMove(x - arm, y);
        gr::strokeDraw(x + arm, y);
        gr::strokeMove(x, y - arm);
        gr::strokeDraw(x, y + arm);
      }
  }
  if (p.NPRCRV == 0) return;
  static ProfilePolylines lines;
  IQPPOL(MaxCurves, MaxPolylinePoints, lines, failed);
  if (failed) {
    status = true;
    return;
  }
  for (int c = 1; c <= lines.curves; ++c) {
    if (lines.points(c) < 2) continue;
    gr::strokeColour(c == p.CURCRV ? 2 : 4);
    gr::strokeMove(lines.xy(c, 1).x, lines.xy(c, 1).y);
    for (int i = 2; i <= lines.points(c); ++i) gr::strokeDraw(lines.xy(c, i).x, lines.xy(c, i).y);
    if (p.PRCLSD(c)) gr::strokeDraw(lines.xy(c, 1).x, lines.xy(c, 1).y);
  }
}

void redraw(bool& status) {
  picture(true, false, status);
  if (!status) picture(false, false, status);
  gr::flushPlot();
}

// The rows of "PROFILE MANIPULATION" as the profile stands.
std::array<std::string, 12> manipulationRows() {
  const ProfileData& p = profile();
  const bool curves = p.NPRCRV > 0;
  return {"Next profile{ncurve as current",
          "------",
          p.NPRCRV >= MaxCurves ? "(Create{nprofile curve)" : "Create{nprofile curve",
          curves ? "Modify{nprofile curve" : "(Modify{nprofile curve)",
          curves ? "Delete current{nprofile curve" : "(Delete current{nprofile curve)",
          "------",
          "Modify entire{nprofile",
          p.SNAPOK ? "Modify{nsnap line" : "Create{nsnap line",
          curves ? "Export{ninterior mesh" : "(Export{ninterior mesh)",
          "Graphic setup",
          "Display{noptions",
          "RETURN{n------"};
}

}  // namespace

void MNPRCV(bool& status) {
  status = false;
  ProfileData& p = profile();
  p.CURPNT = 1;
  // The view: the box, flat in z.
  bool failed = false;
  gr::SPBBOX(p.PRBBOX(1), p.PRBBOX(2), p.PRBBOX(3), p.PRBBOX(4), 0.0, 0.0, failed);
  gr::OPNWIN(picture, failed);
  if (failed) {
    status = true;
    return;
  }
  fw::program().terminalInput = false;
  picture(false, true, status);
  gr::flushPlot();
  for (;;) {
    const auto rows = manipulationRows();
    int selection = 12;
    bool abort = false;
    gr::GSELCT("PROFILE MANIPULATION", rows, "Select item", "", selection, abort);
    if (abort || selection == 12) break;
    bool st = false;
    switch (selection) {
      case 1:
        if (p.NPRCRV > 1) {
          p.CURCRV = p.CURCRV >= p.NPRCRV ? 1 : p.CURCRV + 1;
          redraw(st);
        }
        break;
      case 3:
        if (p.NPRCRV >= MaxCurves)
          fw::ERRSCN("Max number of profile curves reached!");
        else
          notInThisVersion();
        break;
      case 4:
      case 7:
        if (p.NPRCRV == 0)
          fw::ERRSCN("No profile curves to modify!");
        else
          notInThisVersion();
        break;
      case 5:
        if (p.NPRCRV == 0)
          fw::ERRSCN("No profile curves to delete!");
        else
          notInThisVersion();
        break;
      case 8:
        notInThisVersion();
        break;
      case 9:
        if (p.NPRCRV == 0)
          fw::ERRSCN("No profile curves available!");
        else
          notInThisVersion();
        break;
      case 10:
        gr::GVWMNU(st);
        break;
      case 11:
        MNDISP(st);
        break;
      default:
        break;
    }
  }
  gr::CLSWIN();
  fw::program().terminalInput = true;
}

void MNDISP(bool& status) {
  status = false;
  const std::array<std::string, 5> rows{"Spline{ncontrol", "Meshing{ncontrol", "Display{ncontrol",
                                        "Hardcopy", "RETURN"};
  for (;;) {
    int selection = 5;
    bool abort = false;
    gr::GSELCT("DISPLAY OPTIONS", rows, "Select item", "", selection, abort);
    if (abort || selection == 5) return;
    if (selection == 3) {
      CTDISP(status);
      if (status) return;
    } else {
      notInThisVersion();
    }
  }
}

void CTDISP(bool& status) {
  status = false;
  ProfileData& p = profile();
  for (;;) {
    const std::array<std::string, 2> rows{"Grid " + fw::logicalStateText(p.SHOWGR), "RETURN"};
    int selection = 2;
    bool abort = false;
    gr::GSELCT("DISPLAY CONTROL", rows, "Select item", "", selection, abort);
    if (abort || selection == 2) return;
    // Erase, flip, draw; a failing picture ends the menu.
    picture(true, false, status);
    if (status) return;
    p.SHOWGR = !p.SHOWGR;
    picture(false, false, status);
    gr::flushPlot();
    if (status) return;
  }
}

}  // namespace kntr::profile
