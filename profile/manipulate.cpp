#include "profile/manipulate.h"

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
#include "profile/controls.h"
#include "profile/display.h"
#include "profile/curvecreate.h"
#include "profile/curveinput.h"
#include "profile/meshexport.h"
#include "profile/module.h"
#include "profile/wholeprofile.h"
#include "profile/plot.h"
#include "profile/pointedit.h"

namespace kntr::profile {

namespace {

namespace fw = framework;
namespace gr = graphics;

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
  gr::OPNWIN(windowPicture, failed);
  if (failed) {
    status = true;
    return;
  }
  fw::program().terminalInput = false;
  gr::setUnderlayHandler(UNDRLY);
  windowPicture(false, true, status);
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
          windowRedraw(false, st);
        }
        break;
      case 3:
        if (p.NPRCRV >= MaxCurves)
          fw::ERRSCN("Max number of profile curves reached!");
        else
          CRPRCV(st);
        break;
      case 4:
        if (p.NPRCRV == 0)
          fw::ERRSCN("No profile curves to modify!");
        else
          MDPRCV(st);
        break;
      case 7:
        if (p.NPRCRV == 0)
          fw::ERRSCN("No profile curves to modify!");
        else
          MDKNTR(st);
        break;
      case 5:
        if (p.NPRCRV == 0) {
          fw::ERRSCN("No profile curves to delete!");
        } else {
          windowPicture(true, false, st);
          if (st) break;
          RMPRCV(p.CURCRV, st);
          if (st) break;
          if (p.CURCRV > 1) --p.CURCRV;
          p.MODFLG = true;
          windowPicture(false, false, st);
          gr::flushPlot();
        }
        break;
      case 8: {
        int item = 0;
        bool cancel = false;
        INSNAP(item, cancel, st);
        break;
      }
      case 9:
        if (p.NPRCRV == 0)
          fw::ERRSCN("No profile curves available!");
        else
          XPMESH(st);
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
    if (selection == 1) {
      CTSPLN(status);
    } else if (selection == 2) {
      CTMESH(status);
    } else if (selection == 3) {
      CTDISP(status);
    } else {
      // the hardcopy of the picture, asked in the terminal; then the window again
      PLKNTR(status);
      if (!status) windowRedraw(false, status);
    }
    if (status) return;
  }
}

void CTDISP(bool& status) {
  status = false;
  ProfileData& p = profile();
  for (;;) {
    const std::array<std::string, 4> rows{"Grid " + fw::logicalStateText(p.SHOWGR),
                                          "Curvature{ncomb " + fw::logicalStateText(p.SHOWCB),
                                          "Section properties{nin printout " +
                                              fw::logicalStateText(p.SHOWSP),
                                          "RETURN"};
    int selection = 4;
    bool abort = false;
    gr::GSELCT("DISPLAY CONTROL", rows, "Select item", "", selection, abort);
    if (abort || selection == 4) return;
    if (selection == 3) {
      // a setting of the printout: the picture stays
      p.SHOWSP = !p.SHOWSP;
      continue;
    }
    // Erase, flip, draw; a failing picture ends the menu.
    windowPicture(true, false, status);
    if (status) return;
    bool& flag = selection == 1 ? p.SHOWGR : p.SHOWCB;
    flag = !flag;
    windowPicture(false, false, status);
    gr::flushPlot();
    if (status) return;
  }
}

}  // namespace kntr::profile
