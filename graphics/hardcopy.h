// Hardcopy: choosing the output medium of a plot, opening it as the drawing
// device and closing it again.
//
// A medium is named by its media code, 1000 x medium + 10 x device index +
// paper code: medium 1 the display (code 1000), 2 a plotter of the
// configuration's plotter table, 3 a plot file of its file plotter table;
// paper codes 0 A0 .. 4 A4. The device table entry gives the language
// (PostScript, ColorPostScript, HP-GL, HP-GL/2, CGM, MetaFile or
// WIN32PLOTTER), the model and the page. While a hardcopy is open the plot
// state draws on it; closing writes the trailer, puts the file in place,
// spools a plotter's file, and gives the picture back to the window.
//
//   SLMEDM         ask for the output medium: media code and file name
//   OPNDEV         open the medium of a media code as the drawing device
//   openPlotMedium open a medium described in full (no device table)
//   CLSDEV         close the open medium
//   GPHEAD         the plot's heading and its block of names and date
//   PLTSCL         the test plot: a frame of known size
//   MNPLAT         the menu "PLOT ATTRIBUTES": heading and logo switches
//   scaleToPaper   scale a plot to 1:N on the page
//   expandSpoolCommand  the command that spools a file to a plotter
//   mediaCode      compose a media code
#pragma once

#include <string>
#include <string_view>

#include "graphics/plotfiles.h"

namespace kntr::graphics {

// Media.
inline constexpr int MediumDisplay = 1;
inline constexpr int MediumPlotter = 2;
inline constexpr int MediumFile = 3;
inline constexpr int DisplayMediaCode = 1000;

// The frame of the test plot, in millimetres.
inline constexpr double TestFrameWidthMm = 200.0;
inline constexpr double TestFrameHeightMm = 100.0;

// OPNDEV modes: the first open of a medium, or a hardcopy's re-open that
// gives the drawing device back on close.
inline constexpr int OpenFull = 1;
inline constexpr int OpenHardcopy = 2;

// The switches of the menu "PLOT ATTRIBUTES", and the plot's heading.
struct PlotTitles {
  bool heading = true;  // the heading text at the top
  bool logo = false;    // the block of company, user, project and date
  std::string text;  // the heading text of the next plot
};
PlotTitles& plotTitles();

// mediaCode: 1000 x medium + 10 x index + paper.
int mediaCode(int medium, int index, int paper);

// SLMEDM: ask for the output medium. For a plot file the user also names the
// file (`fileName`); for a plotter the file is the plot spool file.
// `cancelled` is set by "$".
//   status: set when a menu cannot be shown.
void SLMEDM(int& code, std::string& fileName, bool& cancelled, bool& status);

// OPNDEV: open the medium of `code` and make it the drawing device. The page
// comes back in millimetres, with its aspect (height / width); the aspect
// handed in is the picture's, which an EPSF page of no configured size takes.
// `fileName` is the plot file (or the metafile); a plotter writes the plot
// spool file.
//   status: set, after the message, when the medium cannot be opened.
void OPNDEV(int mode, int code, std::string_view fileName, double& widthMm, double& heightMm,
            double& aspect, bool& status);

// openPlotMedium: as OPNDEV for a medium given in full: `medium` is one of
// MediumPlotter and MediumFile, `spoolCommand` the plotter's command.
void openPlotMedium(int mode, int medium, const PlotMedium& description,
                    std::string_view fileName, std::string_view spoolCommand, double& widthMm,
                    double& heightMm, double& aspect, bool& status);

// CLSDEV: close the open medium. With `keep` the plot is completed (trailer,
// file put in place, a plotter's file spooled, a printer's page submitted);
// without it, thrown away.
//   status: set, after the message, when any of that failed.
void CLSDEV(int mode, bool keep, bool& status);

// True while a hardcopy medium is open.
bool hardcopyOpen();

// The page size in millimetres of one device unit of the open medium (a
// point, a plotter unit, a pixel of the printer page), for plots to scale.
double hardcopyUnitMm();

// scaleToPaper: scale the plot so that the page shows the rectangle's
// centre at 1:`denominator`, one model unit (a metre) being 1000/denominator
// mm on the page; the margins become 0. Without an open medium the surface's
// millimetre size is used.
void scaleToPaper(double xmin, double xmax, double ymin, double ymax, double denominator);

// expandSpoolCommand: `command` with `fileName` put where it holds "%s",
// or appended after a blank.
std::string expandSpoolCommand(std::string_view command, std::string_view fileName);

// GPHEAD: the heading `text` at the top of the plot (when the heading is
// on and the text is not blank), and the block of company, user, project,
// date and time at its foot (when the logo is on), in the plot's own frame.
void GPHEAD(std::string_view text, bool& status);

// PLTSCL: the test plot: on a medium the user chooses, a frame of
// TestFrameWidthMm x TestFrameHeightMm with a tick every 10 mm and its size
// written under it, at 1:1, so that the plotter's scale can be measured.
//   status: set when the medium fails (already told).
void PLTSCL(bool& status);

// MNPLAT: the menu "PLOT ATTRIBUTES".
void MNPLAT(bool& status);

}  // namespace kntr::graphics
