// The plot state: rectangles, margins, scaling and attributes.
//
// A client sets margins, sets a scale, and then works in model units; the
// layer maps that onto the present output device. Four rectangles are kept
// in world units: "scale" (what the client asked for), "plot" (the whole
// device surface), "margin" (plot less the margins) and "digit" (plot less
// the digitizing insets). Attributes are reached by six-letter name.
//
//   GMARG   set the four margins, as fractions of the surface
//   G2SCAL  scale to a rectangle, free aspect
//   G2SCLT  scale to a rectangle with equal units on both axes
//   GCLIPM  choose the clip rectangle by name
//   GINQRL  read a real attribute by name
//   GINQIN  read an integer attribute by name
//   GSETIN  set an integer attribute by name
#pragma once

#include <string_view>

namespace kntr::graphics {

// Device codes.
inline constexpr int DeviceNone = 10;
inline constexpr int DeviceNoDrawing = 11;
inline constexpr int DeviceWindow = 12;

// Clip modes.
inline constexpr int ClipOff = 1;
inline constexpr int ClipPlot = 2;
inline constexpr int ClipDigit = 3;
inline constexpr int ClipMargin = 4;
inline constexpr int ClipScale = 5;

struct Rectangle {
  double xmin = 0.0, xmax = 1.0, ymin = 0.0, ymax = 1.0;
};

struct PlotState {
  Rectangle scale, plot, margin, digit;
  double mgntop = 0.2, mgnbot = 0.2, mgnlft = 0.2, mgnrgh = 0.2;
  double digitLeft = 0.0, digitRight = 0.0, digitBottom = 0.0, digitTop = 0.0;
  double asprto = 0.75;  // surface height / width
  double xsizem = 1.0, ysizem = 0.75;
  int iclipx = ClipOff;
  int device = DeviceNoDrawing;
  bool deviceFailed = false;
  double penX = 0.0, penY = 0.0;
  int colours = 16;      // colours of the palette in use
  int reset = 0;
};

// The one instance, and its reset (start-up, tests).
PlotState& plotState();
void resetPlotState();

// GMARG: margins as fractions in [0, 1); pairs must sum below 1.
void GMARG(double left, double right, double bottom, double top);
// G2SCAL: scale to the rectangle, free aspect.
void G2SCAL(double xmin, double xmax, double ymin, double ymax);
// G2SCLT: scale to the rectangle with equal units on both axes.
void G2SCLT(double xmin, double xmax, double ymin, double ymax);
// GCLIPM: "off", "plot", "digit", "margin" or "scale".
void GCLIPM(std::string_view mode);
// GINQRL: a real attribute ("xmgmin", "asprto", ...); status set for an
// unknown name.
void GINQRL(std::string_view name, double& value, bool& status);
// GINQIN: an integer attribute ("iclipx", "lincol", ...).
void GINQIN(std::string_view name, int& value, bool& status);
// GSETIN: set an integer attribute.
void GSETIN(std::string_view name, int value, bool& status);

}  // namespace kntr::graphics
