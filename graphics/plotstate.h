// The plot state: rectangles, margins, scaling, attributes and the pen.
//
// A client sets margins, sets a scale, and then works in model units; the
// layer maps that onto the present drawing device (a window, an image, a
// page description file). Four rectangles are kept in world units: "scale"
// (what the client asked for), "plot" (the whole device surface), "margin"
// (plot less the margins) and "digit" (plot less the digitizing insets).
// Attributes are reached by six-letter name.
//
//   GMARG   set the four margins, as fractions of the surface
//   G2SCAL  scale to a rectangle, free aspect
//   G2SCLT  scale to a rectangle with equal units on both axes
//   GCLIPM  choose the clip rectangle by name
//   GINQRL  read a real attribute by name
//   GINQIN  read an integer attribute by name
//   GSETIN  set an integer attribute by name
//   GINIT   default attributes (mode 1), or only the label origins and frame and fill flags (mode 2)
//   GCOLOR  set all colour attributes at once
//   GLORG   set the label origin of all text classes
//   GTSIZE  set the text sizes of all text classes from one factor
//   GTANGL  set the text angle of all text classes
//   GMSIZE  set the marker size
//   GPALET  choose the colour table
//   GMOVE2  move the pen
//   GDRAW2  draw a line from the pen in the line colour
//   GPOLY2  draw a polyline in the line colour
//   GFILL2  fill a polygon in the polygon fill colour
//   GMARK2  draw a marker at the pen in the marker colour
//   GWTEXT  draw a text at the pen with the text attributes
//   GIMAGE  show a picture file over a rectangle
//   GCLEAR  clear a named rectangle
//   GFRAME  outline a named rectangle, or ask a frame around a class's next text
//   attachDevice     make a device the drawing target under a device code
//   rescalePlotState take a new surface size (the window's rescale callback)
//   redrawPlot       repaint (mode 1) or rescale and repaint (mode 2)
//   setRedrawClient  the client routine that draws the picture (erase, then draw)
#pragma once

#include <string>
#include <string_view>

namespace kntr::platform {
class Device;
}

namespace kntr::graphics {

// Device codes.
inline constexpr int DeviceNone = 10;
inline constexpr int DeviceNoDrawing = 11;
inline constexpr int DeviceWindow = 12;
inline constexpr int DevicePrinterPage = 13;
inline constexpr int DevicePageFile = 20;
inline constexpr int DevicePlotter = 30;
inline constexpr int DevicePlotter2 = 40;
inline constexpr int DeviceMetafile = 50;

// Clip modes.
inline constexpr int ClipOff = 1;
inline constexpr int ClipPlot = 2;
inline constexpr int ClipDigit = 3;
inline constexpr int ClipMargin = 4;
inline constexpr int ClipScale = 5;

// Markers and text classes.
inline constexpr int MaxMarkers = 32;
// Points of one filled polygon.
inline constexpr int MaxFillPoints = 100;

struct Rectangle {
  double xmin = 0.0, xmax = 1.0, ymin = 0.0, ymax = 1.0;
};

struct PlotState {
  Rectangle scale, plot, margin, digit;
  // The grid rectangle, set by clients before a plot.
  Rectangle grid;
  double mgntop = 0.2, mgnbot = 0.2, mgnlft = 0.2, mgnrgh = 0.2;
  double digitLeft = 0.0, digitRight = 0.0, digitBottom = 0.0, digitTop = 0.0;
  double asprto = 0.75;  // surface height / width
  double xsizem = 1.0, ysizem = 0.75;
  // Surface size in device units (pixels, points, plotter units).
  int widthUnits = 1280, heightUnits = 960;
  int iclipx = ClipOff;
  int device = DeviceNoDrawing;
  bool deviceFailed = false;
  double penX = 0.0, penY = 0.0;
  int palette = 1;
  int colours = 16;      // colours of the palette in use
  int lineWidth = 1;     // pen width index, 1..3
  int reset = 0;
  double markerSize = 1.0;
  int deviceColour = -1;  // colour last handed to the device
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
// GSETRL: set a real attribute (text sizes, angles, gaps, heights, widths).
void GSETRL(std::string_view name, double value, bool& status);

// GINIT: mode 1 all defaults, a scale of the unit square and the pen at its
// corner; mode 2 only label origins, frame and fill flags, unless `reset`.
void GINIT(int mode);
// GCOLOR: all 23 colour attributes; 0 up to the palette's colours.
void GCOLOR(int colour);
// GLORG: label origin 1..9 of all six text classes.
void GLORG(int lorg);
// GTSIZE: text sizes from a positive factor (labels and axis titles 0.8 of
// it, the plot title 1.2).
void GTSIZE(double factor, bool& status);
// GTANGL: the same text angle, in degrees, for all text classes.
void GTANGL(double degrees);
// GMSIZE: marker size, above 0.
void GMSIZE(double size);
// GPALET: colour table 1..4.
void GPALET(int number);

// GMOVE2: pen to (x, y).
void GMOVE2(double x, double y);
// GDRAW2: a line from the pen to (x, y) in `lincol`.
void GDRAW2(double x, double y);
// GPOLY2: a polyline through n points in `lincol`; the pen ends at the last.
void GPOLY2(int n, const double* x, const double* y);
// GFILL2: the polygon of n points filled in `plgfcl` (at most
// MaxFillPoints points); the pen stays where it was.
void GFILL2(int n, const double* x, const double* y);
// GMARK2: marker `kind` at the pen in `mrkcol`.
void GMARK2(int kind);
// GWTEXT: a text at the pen with the text class's attributes; trailing
// blanks are cut and an empty text draws nothing.
void GWTEXT(std::string_view text);
// GIMAGE: the PNG file stretched over the world rectangle; false when it
// cannot be shown.
bool GIMAGE(const std::string& path, double xmin, double xmax, double ymin, double ymax);
// GCLEAR: "plot", "display" (the digit rectangle), "margin" or "scale",
// either case.
void GCLEAR(std::string_view name);
// GFRAME: "plot", "scale" or "margin" outlines that rectangle in `lincol`;
// a text class name ("text", "xlabel", ...) boxes that class's next text.
void GFRAME(std::string_view name);

// Stroke primitives for the text and marker routines: world units, the
// colour given, clipped like every line.
void strokeColour(int colour);
void strokeMove(double x, double y);
void strokeDraw(double x, double y);
// World units per device unit along x and y (text and markers keep their
// shape on a surface of unequal scales).
void worldPerDeviceUnit(double& dx, double& dy);
// Device position of a world point, and back (picks).
void worldToDevice(double x, double y, double& dx, double& dy);
void deviceToWorld(double dx, double dy, double& x, double& y);

// attachDevice: draw on `device` under `code` (DeviceWindow, DevicePageFile,
// ...); nullptr with DeviceNone or DeviceNoDrawing detaches. Takes the
// device's size and keeps the present scale rectangle.
void attachDevice(int code, platform::Device* device);
// rescalePlotState: a new surface size in device units and millimetres.
void rescalePlotState(int width, int height, double widthMm, double heightMm);
// redrawPlot: mode 1 repaints with the state as it stands, mode 2 after a
// change of size; both through the client's redraw routine.
void redrawPlot(int mode, bool& status);
// setRedrawClient: the routine that erases (erase true) or draws the picture.
using RedrawClient = void (*)(bool erase, bool rescale, bool& status);
void setRedrawClient(RedrawClient client);
// hairlines: thin lines that need no smoothing follow (grid, mesh), or no more.
void hairlines(bool on);
// flushPlot: hand what is pending to the device.
void flushPlot();

}  // namespace kntr::graphics
