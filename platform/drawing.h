// The drawing device: the one set of line primitives that every picture
// goes through, and the colour tables behind it.
//
// The plot state maps model units to the device's own frame (pixels of a
// window or an image, points of a page, plotter units) and calls these
// operations; a device never knows what it draws. Colours are indices into
// the palette chosen when the device opened.
//
//   Device          the drawing operations (move, draw, colour, polygon,
//                   clear, clip, flush) and the device's size
//   paletteColour   one entry of the four colour tables, as red, green, blue
//   setDevice       make a device the current drawing target
//   currentDevice   the current drawing target, or none
#pragma once

#include <cstdint>
#include <string>

namespace kntr::platform {

// Colour tables: four of 64 entries.
inline constexpr int PaletteCount = 4;
inline constexpr int PaletteColours = 64;
// Line widths a device keeps pens for.
inline constexpr int LineWidths = 3;

// How a palette is filled: for a dark screen, for paper (background and
// drawing colour exchanged), or all white.
enum class PaletteMode { Screen = 1, AllWhite = 2, Paper = 32 };

struct Rgb {
  std::uint8_t red = 0, green = 0, blue = 0;
};

// paletteColour: entry `index` (0..63) of table `table` (1..4) in `mode`.
Rgb paletteColour(int table, int index, PaletteMode mode);

// A drawing target. Coordinates are in the device's frame, as the plot state
// maps them; for a window or an image that is pixels from the top left.
class Device {
 public:
  virtual ~Device() = default;
  // Size of the surface in device units and in millimetres.
  virtual int width() const = 0;
  virtual int height() const = 0;
  virtual double widthMm() const = 0;
  virtual double heightMm() const = 0;
  // True when rows count downward from the top (windows and images).
  virtual bool rowsDown() const { return true; }
  // move: set the current point.
  virtual void move(double x, double y) = 0;
  // draw: a line from the current point, which moves to (x, y).
  virtual void draw(double x, double y) = 0;
  // color: choose the pen: line width index 1..3 and palette colour index.
  virtual void color(int lineWidth, int colour) = 0;
  // polygon: fill the closed polygon of n points (xy pairs) in the colour.
  virtual void polygon(int n, const double* xy) = 0;
  // clear: fill the rectangle with the background colour (entry 0).
  virtual void clear(double left, double top, double right, double bottom) = 0;
  // clip: make the rectangle the clipping path.
  virtual void clip(double x1, double y1, double x2, double y2) = 0;
  // palette: choose the colour table (1..4) for the colour indices.
  virtual void palette(int table) { (void)table; }
  // hairline: thin lines that need no smoothing follow (grid, mesh) when on.
  virtual void hairline(bool on) { (void)on; }
  // flush: finish what is pending, so that the surface shows all of it.
  virtual void flush() {}
  // picture: the PNG or JPEG file `path` stretched over the rectangle; false when
  // the device shows no pictures or the file cannot be read.
  virtual bool picture(const std::string& path, double left, double top, double right,
                     double bottom) {
    (void)path, (void)left, (void)top, (void)right, (void)bottom;
    return false;
  }
};

// setDevice: make `device` the drawing target (nullptr: none).
void setDevice(Device* device);
// currentDevice: the drawing target, or nullptr.
Device* currentDevice();

}  // namespace kntr::platform
