#include "profile/plot.h"

#include <algorithm>
#include <array>
#include <string>
#include <vector>

#include "framework/format.h"
#include "framework/input.h"
#include "framework/menus.h"
#include "framework/state.h"
#include "framework/text.h"
#include "graphics/grid.h"
#include "graphics/hardcopy.h"
#include "graphics/plotstate.h"
#include "profile/block.h"
#include "profile/display.h"
#include "profile/module.h"

namespace kntr::profile {

namespace {

// The plot's scale: 0 to fit the page, else N of 1:N. False on "$".
bool askPlotScale(double& denominator) {
  for (;;) {
    bool abort = false, failed = false;
    framework::ASKQST("Input plot scale 1:N? (N, 0 = fit to page)", "0 (fit to page)",
                      "The plot's scale: 1000 plots 1 m as 1 mm; 0 fits the box to the page", 1,
                      abort, failed);
    if (abort || failed) return false;
    std::array<double, 1> value{0.0};
    bool none = false;
    framework::GTREAL(value, none, failed);
    if (failed) continue;
    if (!(value[0] >= 0.0)) {
      framework::ERRSCN("Plot scale must be positive, or 0 to fit the page");
      continue;
    }
    denominator = value[0];
    return true;
  }
}

// "/* Setup of Colors": a thing of the picture and its colour (0..15).
void setupColours(bool& status) {
  DisplayLook& look = displayLook();
  for (;;) {
    std::vector<std::string> rows;
    for (int k = 0; k < ThingCount; ++k)
      rows.push_back(std::string(ThingNames[k]) + " (" + std::to_string(look.colour[k]) + ")");
    bool abort = false;
    int selection = 0;
    framework::TXMENU("SETUP OF COLORS", rows, 0,
                      "The colour of each thing of the picture, on the screen and on a plot", abort,
                      selection, status);
    if (status || abort || selection < 1 || selection > ThingCount) return;
    for (;;) {
      bool failed = false;
      framework::ASKQST("Input colour number (0..15)", std::to_string(look.colour[selection - 1]),
                        "0 is the background; 1 white, 2 red, 3 yellow, 4 green, 5 cyan, 6 blue, "
                        "7 magenta, 8 to 15 further colours",
                        1, abort, failed);
      if (abort || failed) break;
      std::array<int, 1> value{look.colour[selection - 1]};
      bool none = false;
      framework::GTINTV(value, none, failed);
      if (failed) continue;
      if (value[0] < 0 || value[0] > 15) {
        framework::ERRSCN("Colour number must be in [0,15]!");
        continue;
      }
      look.colour[selection - 1] = value[0];
      break;
    }
  }
}

// "/* Visibility of ...": toggles of what the picture shows.
template <std::size_t N>
void visibilityMenu(const char* title, const std::array<const char*, N>& names,
                    const std::array<bool*, N>& flags, bool& status) {
  for (;;) {
    std::vector<std::string> rows;
    for (std::size_t k = 0; k < N; ++k)
      rows.push_back(std::string(names[k]) + " " + framework::logicalStateText(*flags[k]));
    bool abort = false;
    int selection = 0;
    framework::TXMENU(title, rows, 0, "Each row turns its part of the picture on or off", abort,
                      selection, status);
    if (status || abort || selection < 1 || selection > static_cast<int>(N)) return;
    *flags[selection - 1] = !*flags[selection - 1];
  }
}

}  // namespace

void MNSTPA(bool& cancelled, bool& status) {
  status = false;
  cancelled = false;
  const std::vector<std::string> rows{"Setup of view projection", "Setup of visibility of titles",
                                      "/* Setup of Colors", "/* Visibility of Labels",
                                      "/* Visibility of Entities"};
  for (;;) {
    bool abort = false;
    int selection = static_cast<int>(rows.size()) + 1;
    framework::TXMENU("SETUP OF PLOT ATTRIBUTTES", rows, selection,
                      "Set up the plot, or RETURN to go on to the plot", abort, selection, status);
    if (status) return;
    if (abort) {
      cancelled = true;
      return;
    }
    switch (selection) {
      case 2:
        graphics::MNPLAT(status);
        if (status) return;
        break;
      case 1:
        // a profile lies in its own plane: there is no other projection
        framework::PRMESG("The profile is plotted in its plane (XY), seen from above");
        break;
      case 3:
        setupColours(status);
        if (status) return;
        break;
      case 4: {
        DisplayLook& look = displayLook();
        visibilityMenu<1>("VISIBILITY OF LABELS", {"Point labels"}, {&look.labels}, status);
        if (status) return;
        break;
      }
      case 5: {
        DisplayLook& look = displayLook();
        visibilityMenu<4>("VISIBILITY OF ENTITIES",
                          {"Reference point", "Point marks", "Snap line", "Interior mesh"},
                          {&look.reference, &look.marks, &look.snapLine, &look.mesh}, status);
        if (status) return;
        break;
      }
      default:
        return;
    }
  }
}

void plotProfileOn(double denominator, bool& status) {
  status = false;
  const ProfileData& p = profile();
  if (denominator > 0.0) {
    graphics::scaleToPaper(p.PRBBOX(1), p.PRBBOX(2), p.PRBBOX(3), p.PRBBOX(4), denominator);
  } else {
    graphics::GMARG(PlotPageMargin, PlotPageMargin, PlotPageMargin, PlotPageMargin);
    SCKNTR(status);
    if (status) return;
  }
  graphics::GCLIPM("plot");
  graphics::plotState().grid =
      graphics::Rectangle{p.PRBBOX(1), p.PRBBOX(2), p.PRBBOX(3), p.PRBBOX(4)};
  graphics::GGRID2(status);
  if (status) return;
  PLPRCV(0, false, status);
  if (status) return;
  graphics::GPHEAD(p.PRFTYP == SplineProfile ? "Spline profile" : "Polyline profile", status);
  graphics::flushPlot();
}

void PLKNTR(bool& status) {
  status = false;
  const ProfileData& p = profile();
  if (p.NPRCRV <= 0) {
    framework::fail("(PLKNTR) No profile curves available!", status);
    return;
  }
  bool cancelled = false;
  MNSTPA(cancelled, status);
  if (status || cancelled) return;
  int code = graphics::DisplayMediaCode;
  std::string fileName;
  graphics::SLMEDM(code, fileName, cancelled, status);
  if (status || cancelled) return;
  double denominator = 0.0;
  if (code != graphics::DisplayMediaCode && !askPlotScale(denominator)) return;

  if (code == graphics::DisplayMediaCode) {
    // On the screen the plot is the picture itself.
    REDRAW(status);
    return;
  }
  double width = 0.0, height = 0.0;
  double aspect = (p.PRBBOX(4) - p.PRBBOX(3)) / std::max(1e-12, p.PRBBOX(2) - p.PRBBOX(1));
  graphics::OPNDEV(graphics::OpenHardcopy, code, fileName, width, height, aspect, status);
  if (status) return;
  bool failed = false;
  plotProfileOn(denominator, failed);
  bool closed = false;
  graphics::CLSDEV(graphics::OpenHardcopy, !failed, closed);
  status = failed || closed;
}

}  // namespace kntr::profile
