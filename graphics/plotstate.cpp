#include "graphics/plotstate.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <string>
#include <unordered_map>

#include "framework/text.h"
#include "platform/drawing.h"

namespace kntr::graphics {

namespace {

using framework::ERRSCN;
using framework::fail;

// Integer attributes of the element classes, all starting at 1 (colour 1,
// solid lines, font 1, ...), and the real text attributes.
const char* const integerNames[] = {
    "txtcol", "txtfcl", "lblxcl", "lblxfc", "lblycl", "lblyfc", "tltpcl", "tltpfc", "tltxcl",
    "tltxfc", "tltycl", "tltyfc", "lincol", "splcol", "mrkcol", "plgcol", "plgfcl", "elpcol",
    "elpfcl", "bgrcol", "bgrfcl", "axsxcl", "axsycl", "txtlst", "txtfls", "lblxls", "lblxfl",
    "lblyls", "lblyfl", "tltpls", "tltpfl", "tltxls", "tltxfl", "tltyls", "tltyfl", "linlst",
    "spllst", "mrklst", "plglst", "plgfls", "elplst", "elpfls", "bgrlst", "bgrfls", "axsxls",
    "axsyls", "txtfnt", "lblxfn", "lblyfn", "tltpfn", "tltxfn", "tltyfn", "txtfrm", "lblxfr",
    "lblyfr", "tltpfr", "tltxfr", "tltyfr", "txtlrg", "lblxlg", "lblylg", "tltplg", "tltxlg",
    "tltylg", "txtftp", "lblxft", "lblyft", "tltpft", "tltxft", "tltyft", "plgftp", "elpftp",
    "bgrftp"};

const char* const textRealNames[] = {
    "txtsiz", "lblxsz", "lblysz", "tltpsz", "tltxsz", "tltysz", "txtang", "lblxan", "lblyan",
    "tltpan", "tltxan", "tltyan", "txtgap", "lblxgp", "lblygp", "tltpgp", "tltxgp", "tltygp",
    "txthgh", "lblxhg", "lblyhg", "tltphg", "tltxhg", "tltyhg", "txtwth", "lblxwh", "lblywh",
    "tltpwh", "tltxwh", "tltywh", "xaxpla", "yaxpla"};

// Integer attributes of the element classes, all starting at 1 (colour 1,
// solid lines, font 1, ...), and the real text attributes.
constexpr int IntegerCount = sizeof(integerNames) / sizeof(integerNames[0]);
constexpr int RealCount = sizeof(textRealNames) / sizeof(textRealNames[0]);

// Position of an attribute in its table by name; -1 for none.
int integerIndex(std::string_view name) {
  static const std::unordered_map<std::string_view, int> index = [] {
    std::unordered_map<std::string_view, int> m;
    for (int k = 0; k < IntegerCount; ++k) m[integerNames[k]] = k;
    return m;
  }();
  const auto it = index.find(name);
  return it == index.end() ? -1 : it->second;
}

int realIndex(std::string_view name) {
  static const std::unordered_map<std::string_view, int> index = [] {
    std::unordered_map<std::string_view, int> m;
    for (int k = 0; k < RealCount; ++k) m[textRealNames[k]] = k;
    return m;
  }();
  const auto it = index.find(name);
  return it == index.end() ? -1 : it->second;
}

// Default label origins of text, x label, y label, plot title, x title,
// y title.
constexpr int labelOrigins[6] = {1, 6, 8, 4, 9, 7};
// Label origin and frame flag attributes of the six classes, for GINIT mode 2.
const char* const originNames[6] = {"txtlrg", "lblxlg", "lblylg", "tltplg", "tltxlg", "tltylg"};
const char* const frameNames[6] = {"txtfrm", "lblxfr", "lblyfr", "tltpfr", "tltxfr", "tltyfr"};
const char* const fillNames[9] = {"txtftp", "lblxft", "lblyft", "tltpft", "tltxft",
                                  "tltyft", "plgftp", "elpftp", "bgrftp"};

struct Attributes {
  int integers[IntegerCount];
  double reals[RealCount];
  Attributes() { defaults(); }
  // Every colour, style, font, fill 1; frames 0; the text classes' sizes,
  // widths, heights, angles and label origins.
  void defaults() {
    for (int& v : integers) v = 1;
    for (double& v : reals) v = 0.0;
    static const char* const classes[6][7] = {
        // size,   angle,    width,    height,   origin,   frame,    (gap)
        {"txtsiz", "txtang", "txtwth", "txthgh", "txtlrg", "txtfrm", "txtgap"},
        {"lblxsz", "lblxan", "lblxwh", "lblxhg", "lblxlg", "lblxfr", "lblxgp"},
        {"lblysz", "lblyan", "lblywh", "lblyhg", "lblylg", "lblyfr", "lblygp"},
        {"tltpsz", "tltpan", "tltpwh", "tltphg", "tltplg", "tltpfr", "tltpgp"},
        {"tltxsz", "tltxan", "tltxwh", "tltxhg", "tltxlg", "tltxfr", "tltxgp"},
        {"tltysz", "tltyan", "tltywh", "tltyhg", "tltylg", "tltyfr", "tltygp"}};
    const double sizes[6] = {1.0, 0.8, 0.8, 1.2, 0.8, 0.8};
    const double angles[6] = {0.0, 0.0, 0.0, 0.0, 0.0, 90.0};
    for (int c = 0; c < 6; ++c) {
      reals[realIndex(classes[c][0])] = sizes[c];
      reals[realIndex(classes[c][1])] = angles[c];
      reals[realIndex(classes[c][2])] = 0.017;
      reals[realIndex(classes[c][3])] = 0.025;
      integers[integerIndex(classes[c][4])] = labelOrigins[c];
      integers[integerIndex(classes[c][5])] = 0;
    }
  }
};

PlotState& state() {
  static PlotState s;
  return s;
}

Attributes& attributes() {
  static Attributes a;
  return a;
}

// Margin and digit rectangles from the plot rectangle.
void deriveRectangles(PlotState& s) {
  const double w = s.plot.xmax - s.plot.xmin;
  const double h = s.plot.ymax - s.plot.ymin;
  s.margin = Rectangle{s.plot.xmin + s.mgnlft * w, s.plot.xmax - s.mgnrgh * w,
                       s.plot.ymin + s.mgnbot * h, s.plot.ymax - s.mgntop * h};
  s.digit = Rectangle{s.plot.xmin + s.digitLeft * w, s.plot.xmax - s.digitRight * w,
                      s.plot.ymin + s.digitBottom * h, s.plot.ymax - s.digitTop * h};
}

// Common checks and the scale rectangle of both scale calls; false when the
// call is refused.
bool scaleRectangle(const char* routine, bool equalUnits, double& xmin, double& xmax,
                    double& ymin, double& ymax) {
  const std::string head = std::string("PLOT ERROR FROM SUBROUTINE ** ") + routine + " **{nwl";
  if (xmax == xmin && ymax == ymin) {
    ERRSCN(head + (equalUnits ? "(xmax, xmin, ymax and ymin must be destinct)"
                              : "(xmax, xmin, ymax, ymin must be distinct)"));
    return false;
  }
  if (xmax < xmin) {
    if (equalUnits)
      ERRSCN(head + "(xmax must be greater than xmin)");
    else
      ERRSCN(std::string("PLOT ERROR FROM SUBROUTINE ") + routine +
             " **{nwl(xmax must be greater than xmin)");
    return false;
  }
  if (ymax < ymin) {
    ERRSCN(head + "(ymax must be greater than ymin)");
    return false;
  }
  // A zero extent takes the other axis' extent, centred on the given value.
  if (xmin == xmax) {
    const double half = (ymax - ymin) / 2.0;
    xmin = xmax - half;
    xmax = xmax + half;
  } else if (ymin == ymax) {
    const double half = (xmax - xmin) / 2.0;
    ymin = ymax - half;
    ymax = ymax + half;
  }
  return true;
}


RedrawClient redrawClient = nullptr;

platform::Device* device() {
  const PlotState& s = state();
  if (s.deviceFailed) return nullptr;
  return platform::currentDevice();
}

bool drawingDevice() {
  const int code = state().device;
  return code != DeviceNone && code != DeviceNoDrawing;
}

// Clip rectangle of the present mode, in world units.
Rectangle clipRectangle(const PlotState& s) {
  switch (s.iclipx) {
    case ClipOff:
      return Rectangle{s.plot.xmin - 1, s.plot.xmax + 1, s.plot.ymin - 1, s.plot.ymax + 1};
    case ClipDigit: return s.digit;
    case ClipMargin: return s.margin;
    case ClipScale: return s.scale;
    default: return s.plot;
  }
}

// Hand the clip rectangle of the present mode to the device.
void applyClip() {
  platform::Device* d = device();
  if (!d || !drawingDevice()) return;
  const Rectangle r = clipRectangle(state());
  double x1, y1, x2, y2;
  worldToDevice(r.xmin, r.ymin, x1, y1);
  worldToDevice(r.xmax, r.ymax, x2, y2);
  d->clip(std::min(x1, x2), std::min(y1, y2), std::max(x1, x2), std::max(y1, y2));
}

// Cut the segment (x0, y0)-(x1, y1) to the rectangle; false when nothing
// of it is inside.
bool clipSegment(const Rectangle& r, double& x0, double& y0, double& x1, double& y1) {
  double t0 = 0.0, t1 = 1.0;
  const double dx = x1 - x0, dy = y1 - y0;
  const double p[4] = {-dx, dx, -dy, dy};
  const double q[4] = {x0 - r.xmin, r.xmax - x0, y0 - r.ymin, r.ymax - y0};
  for (int k = 0; k < 4; ++k) {
    if (p[k] == 0.0) {
      if (q[k] < 0.0) return false;
      continue;
    }
    const double t = q[k] / p[k];
    if (p[k] < 0.0) {
      if (t > t1) return false;
      if (t > t0) t0 = t;
    } else {
      if (t < t0) return false;
      if (t < t1) t1 = t;
    }
  }
  const double ax = x0 + t0 * dx, ay = y0 + t0 * dy;
  const double bx = x0 + t1 * dx, by = y0 + t1 * dy;
  x0 = ax;
  y0 = ay;
  x1 = bx;
  y1 = by;
  return true;
}

// Where the device's pen stands, in device units, to spare repeated moves.
struct DevicePen {
  bool known = false;
  double x = 0.0, y = 0.0;
};
DevicePen& devicePen() {
  static DevicePen pen;
  return pen;
}

// A clipped line in world units on the device.
void deviceLine(double x0, double y0, double x1, double y1) {
  platform::Device* d = device();
  if (!d) return;
  const Rectangle r = clipRectangle(state());
  const bool inside = x0 >= r.xmin && x0 <= r.xmax && y0 >= r.ymin && y0 <= r.ymax &&
                      x1 >= r.xmin && x1 <= r.xmax && y1 >= r.ymin && y1 <= r.ymax;
  if (!inside && !clipSegment(r, x0, y0, x1, y1)) return;
  double a, b, c, e;
  worldToDevice(x0, y0, a, b);
  worldToDevice(x1, y1, c, e);
  DevicePen& pen = devicePen();
  if (!pen.known || pen.x != a || pen.y != b) d->move(a, b);
  d->draw(c, e);
  pen = DevicePen{true, c, e};
}

void setDeviceColour(int colour) {
  PlotState& s = state();
  platform::Device* d = device();
  if (!d || s.deviceColour == colour) return;
  d->color(s.lineWidth, colour);
  s.deviceColour = colour;
}

int& integerAttribute(const char* name) { return attributes().integers[integerIndex(name)]; }

// Refuse drawing when there is no device to draw on.
bool drawable() {
  PlotState& s = state();
  if (s.device == DeviceNone || s.device == DeviceNoDrawing) {
    s.deviceFailed = true;
    return false;
  }
  return !s.deviceFailed && platform::currentDevice() != nullptr;
}

}  // namespace

PlotState& plotState() { return state(); }

void resetPlotState() {
  state() = PlotState{};
  attributes() = Attributes{};
}

void GMARG(double left, double right, double bottom, double top) {
  const std::string head = "PLOT ERROR FROM SUBROUTINE ** GMARG **{nwl";
  struct Check {
    double value;
    const char* name;
  };
  for (const Check& c : {Check{top, "mtop"}, Check{bottom, "mbot"}, Check{left, "mleft"},
                         Check{right, "mrigth"}}) {
    if (!(c.value >= 0.0 && c.value < 1.0)) {
      ERRSCN(head + "(" + c.name + " must be in [0,1])");
      return;
    }
  }
  if (!(top + bottom < 1.0)) {
    ERRSCN(head + "(mtop+mbot must be <= 1)");
    return;
  }
  if (!(left + right < 1.0)) {
    ERRSCN(head + "(mleft+mrigth must be <= 1)");
    return;
  }
  PlotState& s = state();
  s.mgnlft = left;
  s.mgnrgh = right;
  s.mgnbot = bottom;
  s.mgntop = top;
}

void G2SCAL(double xmin, double xmax, double ymin, double ymax) {
  if (!scaleRectangle("G2SCAL", false, xmin, xmax, ymin, ymax)) return;
  PlotState& s = state();
  s.scale = Rectangle{xmin, xmax, ymin, ymax};
  const double a = 1.0 - s.mgnlft - s.mgnrgh;
  const double b = 1.0 - s.mgntop - s.mgnbot;
  const double w = xmax - xmin;
  const double h = ymax - ymin;
  s.plot = Rectangle{xmin - (s.mgnlft / a) * w, xmax + (s.mgnrgh / a) * w,
                     ymin - (s.mgnbot / b) * h, ymax + (s.mgntop / b) * h};
  deriveRectangles(s);
  applyClip();
}

void G2SCLT(double xmin, double xmax, double ymin, double ymax) {
  if (!scaleRectangle("G2SCLT", true, xmin, xmax, ymin, ymax)) return;
  PlotState& s = state();
  s.scale = Rectangle{xmin, xmax, ymin, ymax};
  const double a = 1.0 - s.mgnlft - s.mgnrgh;
  const double b = 1.0 - s.mgntop - s.mgnbot;
  const double w = xmax - xmin;
  const double h = ymax - ymin;
  const double r = (a / b) * (h / w) / s.asprto;
  const double d = s.asprto * w / a - h / b;
  double ex = 0.0, ey = 0.0;
  if (d > 0.0)
    ey = 0.5 - r / 2.0;
  else
    ex = 0.5 - 1.0 / (2.0 * r);
  s.plot = Rectangle{xmin - (ex + s.mgnlft / a) * w / (1.0 - 2.0 * ex),
                     xmax + (ex + s.mgnrgh / a) * w / (1.0 - 2.0 * ex),
                     ymin - (ey + s.mgnbot / b) * h / (1.0 - 2.0 * ey),
                     ymax + (ey + s.mgntop / b) * h / (1.0 - 2.0 * ey)};
  deriveRectangles(s);
  applyClip();
}

void GCLIPM(std::string_view mode) {
  int code = 0;
  if (mode == "off") code = ClipOff;
  else if (mode == "plot") code = ClipPlot;
  else if (mode == "digit") code = ClipDigit;
  else if (mode == "margin") code = ClipMargin;
  else if (mode == "scale") code = ClipScale;
  if (code == 0) {
    ERRSCN("PLOT ERROR FROM SUBROUTINE ** GCLIPM **{nwl(unknown clip mode " + std::string(mode) +
           ")");
    return;
  }
  state().iclipx = code;
  applyClip();
}

void GINQRL(std::string_view name, double& value, bool& status) {
  status = false;
  const PlotState& s = state();
  struct Named {
    const char* name;
    double value;
  };
  const Rectangle clip = clipRectangle(s);
  const Named fields[] = {
      {"xaxmin", s.scale.xmin},  {"xaxmax", s.scale.xmax},  {"yaxmin", s.scale.ymin},
      {"yaxmax", s.scale.ymax},  {"xmgmin", s.margin.xmin}, {"xmgmax", s.margin.xmax},
      {"ymgmin", s.margin.ymin}, {"ymgmax", s.margin.ymax}, {"xdgtmn", s.digit.xmin},
      {"xdgtmx", s.digit.xmax},  {"ydgtmn", s.digit.ymin},  {"ydgtmx", s.digit.ymax},
      {"xclmin", clip.xmin},     {"xclmax", clip.xmax},     {"yclmin", clip.ymin},
      {"yclmax", clip.ymax},     {"asprto", s.asprto},      {"xsizem", s.xsizem},
      {"ysizem", s.ysizem},      {"mgntop", s.mgntop},      {"mgnbot", s.mgnbot},
      {"mgnlft", s.mgnlft},      {"mgnrgh", s.mgnrgh},      {"mrksiz", s.markerSize}};
  for (const Named& f : fields) {
    if (name == f.name) {
      value = f.value;
      return;
    }
  }
  if (const int k = realIndex(name); k >= 0) {
    value = attributes().reals[k];
    return;
  }
  fail("PLOT ERROR FROM SUBROUTINE ** GINQRL **{nwl(unknown attribute " + std::string(name) + ")",
       status);
}

void GSETRL(std::string_view name, double value, bool& status) {
  status = false;
  if (const int k = realIndex(name); k >= 0) {
    attributes().reals[k] = value;
    return;
  }
  fail("PLOT ERROR FROM SUBROUTINE ** GSETRL **{nwl(unknown attribute " + std::string(name) + ")",
       status);
}

void GINQIN(std::string_view name, int& value, bool& status) {
  status = false;
  if (name == "iclipx") {
    value = state().iclipx;
    return;
  }
  if (name == "reset") {
    value = state().reset;
    return;
  }
  if (const int k = integerIndex(name); k >= 0) {
    value = attributes().integers[k];
    return;
  }
  fail("PLOT ERROR FROM SUBROUTINE ** GINQIN **{nwl(unknown attribute " + std::string(name) + ")",
       status);
}

void GSETIN(std::string_view name, int value, bool& status) {
  status = false;
  if (name == "iclipx") {
    if (value < ClipOff || value > ClipScale) {
      fail("PLOT ERROR FROM SUBROUTINE ** GSETIN **{nwl(clip mode must be in [1,5])", status);
      return;
    }
    state().iclipx = value;
    applyClip();
    return;
  }
  if (name == "reset") {
    state().reset = value;
    return;
  }
  if (const int k = integerIndex(name); k >= 0) {
    attributes().integers[k] = value;
    return;
  }
  fail("PLOT ERROR FROM SUBROUTINE ** GSETIN **{nwl(unknown attribute " + std::string(name) + ")",
       status);
}

void GINIT(int mode) {
  Attributes& a = attributes();
  if (mode == 1) {
    a.defaults();
    PlotState& s = state();
    s.mgntop = s.mgnbot = s.mgnlft = s.mgnrgh = 0.2;
    s.digitLeft = s.digitRight = s.digitBottom = s.digitTop = 0.2;
    s.markerSize = 1.0;
    s.iclipx = ClipOff;
    G2SCAL(0.0, 1.0, 0.0, 1.0);
    GMOVE2(s.plot.xmin, s.plot.ymin);
    return;
  }
  if (state().reset != 0) return;
  for (int c = 0; c < 6; ++c) {
    a.integers[integerIndex(originNames[c])] = labelOrigins[c];
    a.integers[integerIndex(frameNames[c])] = 0;
  }
  for (const char* name : fillNames) a.integers[integerIndex(name)] = 1;
}

void GCOLOR(int colour) {
  const PlotState& s = state();
  if (colour < 0 || colour > s.colours) {
    ERRSCN("PLOT ERROR FROM SUBROUTINE ** GCOLOR **{nwl(color number must be in [1," +
           std::to_string(s.colours) + "]");
    return;
  }
  for (int k = 0; k < 23; ++k) attributes().integers[k] = colour;
}

void GLORG(int lorg) {
  if (lorg < 1 || lorg > 9) {
    ERRSCN("PLOT ERROR FROM ** GLORG **{nwl(lorg must be in [1,9])");
    return;
  }
  for (const char* name : originNames) integerAttribute(name) = lorg;
}

void GTSIZE(double factor, bool& status) {
  status = false;
  if (!(factor > 0.0)) {
    fail("(GTSIZE) text size scale factor must be positive", status);
    return;
  }
  Attributes& a = attributes();
  a.reals[realIndex("txtsiz")] = factor;
  a.reals[realIndex("lblxsz")] = a.reals[realIndex("lblysz")] = 0.8 * factor;
  a.reals[realIndex("tltpsz")] = 1.2 * factor;
  a.reals[realIndex("tltxsz")] = a.reals[realIndex("tltysz")] = 0.8 * factor;
}

void GTANGL(double degrees) {
  for (const char* name : {"txtang", "lblxan", "lblyan", "tltpan", "tltxan", "tltyan"})
    attributes().reals[realIndex(name)] = degrees;
}

void GMSIZE(double size) {
  if (!(size > 0.0)) {
    ERRSCN("PLOT ERROR FROM SUBROUTINE ** GMSIZE **");
    return;
  }
  state().markerSize = size;
}

void GPALET(int number) {
  PlotState& s = state();
  if (number < 1 || number > platform::PaletteCount) return;
  s.palette = number;
  s.colours = number == 1 ? 16 : platform::PaletteColours;
  if (platform::Device* d = device()) d->palette(number);
  s.deviceColour = -1;
}

void GMOVE2(double x, double y) {
  PlotState& s = state();
  s.penX = x;
  s.penY = y;
  if (!drawable()) return;
}

void GDRAW2(double x, double y) {
  PlotState& s = state();
  const double x0 = s.penX, y0 = s.penY;
  s.penX = x;
  s.penY = y;
  if (!drawable()) return;
  static const int lincol = integerIndex("lincol");
  setDeviceColour(attributes().integers[lincol]);
  deviceLine(x0, y0, x, y);
}

void GPOLY2(int n, const double* x, const double* y) {
  if (n < 1) return;
  GMOVE2(x[0], y[0]);
  if (drawable()) {
    static const int lincol = integerIndex("lincol");
    setDeviceColour(attributes().integers[lincol]);
    for (int k = 1; k < n; ++k) deviceLine(x[k - 1], y[k - 1], x[k], y[k]);
  }
  PlotState& s = state();
  s.penX = x[n - 1];
  s.penY = y[n - 1];
  GINIT(2);
}

void GFILL2(int n, const double* x, const double* y) {
  if (n < 3 || n > MaxFillPoints || !drawable()) return;
  static const int plgfcl = integerIndex("plgfcl");
  setDeviceColour(attributes().integers[plgfcl]);
  double xy[2 * MaxFillPoints];
  for (int k = 0; k < n; ++k) worldToDevice(x[k], y[k], xy[2 * k], xy[2 * k + 1]);
  device()->polygon(n, xy);
  devicePen().known = false;
}

bool GIMAGE(const std::string& path, double xmin, double xmax, double ymin, double ymax) {
  if (!drawable()) return false;
  double x1, y1, x2, y2;
  worldToDevice(xmin, ymin, x1, y1);
  worldToDevice(xmax, ymax, x2, y2);
  devicePen().known = false;
  return device()->picture(path, std::min(x1, x2), std::min(y1, y2), std::max(x1, x2),
                         std::max(y1, y2));
}

void GCLEAR(std::string_view name) {
  std::string n(name);
  for (char& c : n) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  const PlotState& s = state();
  Rectangle r;
  if (n == "plot") r = s.plot;
  else if (n == "display") r = s.digit;
  else if (n == "margin") r = s.margin;
  else if (n == "scale") r = s.scale;
  else return;
  if (!drawable()) return;
  double x1, y1, x2, y2;
  worldToDevice(r.xmin, r.ymin, x1, y1);
  worldToDevice(r.xmax, r.ymax, x2, y2);
  platform::Device* d = device();
  d->clear(std::min(x1, x2), std::min(y1, y2), std::max(x1, x2), std::max(y1, y2));
  devicePen().known = false;
}

void GFRAME(std::string_view name) {
  const PlotState& s = state();
  const Rectangle* r = name == "plot"     ? &s.plot
                       : name == "scale"  ? &s.scale
                       : name == "margin" ? &s.margin
                                          : nullptr;
  if (r) {
    const Rectangle box = *r;
    GMOVE2(box.xmin, box.ymin);
    GDRAW2(box.xmax, box.ymin);
    GDRAW2(box.xmax, box.ymax);
    GDRAW2(box.xmin, box.ymax);
    GDRAW2(box.xmin, box.ymin);
    return;
  }
  const char* const classes[6] = {"text", "xlabel", "ylabel", "ptitle", "xtitle", "ytitle"};
  for (int c = 0; c < 6; ++c)
    if (name == classes[c]) integerAttribute(frameNames[c]) = 1;
}

void strokeColour(int colour) {
  if (drawable()) setDeviceColour(colour);
}

void strokeMove(double x, double y) {
  PlotState& s = state();
  s.penX = x;
  s.penY = y;
}

void strokeDraw(double x, double y) {
  PlotState& s = state();
  const double x0 = s.penX, y0 = s.penY;
  s.penX = x;
  s.penY = y;
  if (drawable()) deviceLine(x0, y0, x, y);
}

void worldPerDeviceUnit(double& dx, double& dy) {
  const PlotState& s = state();
  dx = (s.plot.xmax - s.plot.xmin) / std::max(1, s.widthUnits - 1);
  dy = (s.plot.ymax - s.plot.ymin) / std::max(1, s.heightUnits - 1);
}

namespace {

// The world-to-device mapping as factors, made again whenever the plot
// rectangle, the surface or the device changes.
struct Mapping {
  Rectangle plot;
  int width = 0, height = 0, device = 0;
  double ax = 0.0, bx = 0.0, ay = 0.0, by = 0.0;
  bool round = true;
};

const Mapping& mapping() {
  static Mapping m;
  const PlotState& s = state();
  if (m.plot.xmin != s.plot.xmin || m.plot.xmax != s.plot.xmax || m.plot.ymin != s.plot.ymin ||
      m.plot.ymax != s.plot.ymax || m.width != s.widthUnits || m.height != s.heightUnits ||
      m.device != s.device) {
    m.plot = s.plot;
    m.width = s.widthUnits;
    m.height = s.heightUnits;
    m.device = s.device;
    const double w = s.widthUnits - 1, h = s.heightUnits - 1;
    m.ax = w / (s.plot.xmax - s.plot.xmin);
    m.bx = -s.plot.xmin * m.ax;
    const bool up = s.device == DevicePageFile || s.device == DevicePlotter ||
                    s.device == DevicePlotter2;
    // rows count downward on windows and images, upward on pages and plotters
    m.ay = (up ? h : -h) / (s.plot.ymax - s.plot.ymin);
    m.by = up ? -s.plot.ymin * m.ay : h - s.plot.ymin * m.ay;
    m.round = s.device != DevicePageFile;
  }
  return m;
}

}  // namespace

void worldToDevice(double x, double y, double& dx, double& dy) {
  if (state().deviceFailed) {
    dx = dy = 0.0;
    return;
  }
  const Mapping& m = mapping();
  dx = m.ax * x + m.bx;
  dy = m.ay * y + m.by;
  if (m.round) {
    dx = std::nearbyint(dx);
    dy = std::nearbyint(dy);
  }
}

void deviceToWorld(double dx, double dy, double& x, double& y) {
  const PlotState& s = state();
  const double w = s.widthUnits - 1, h = s.heightUnits - 1;
  const double u = dx / w;
  const double v = (s.device == DevicePageFile || s.device == DevicePlotter ||
                    s.device == DevicePlotter2)
                       ? dy / h
                       : 1.0 - dy / h;
  x = s.plot.xmin + u * (s.plot.xmax - s.plot.xmin);
  y = s.plot.ymin + v * (s.plot.ymax - s.plot.ymin);
}

void attachDevice(int code, platform::Device* device) {
  PlotState& s = state();
  flushPlot();
  platform::setDevice(device);
  s.device = device ? code : (code == DeviceNone ? DeviceNone : DeviceNoDrawing);
  s.deviceFailed = false;
  s.deviceColour = -1;
  devicePen().known = false;
  if (device) {
    device->palette(s.palette);
    rescalePlotState(device->width(), device->height(), device->widthMm(), device->heightMm());
  }
}

void rescalePlotState(int width, int height, double widthMm, double heightMm) {
  PlotState& s = state();
  s.widthUnits = std::max(2, width);
  s.heightUnits = std::max(2, height);
  s.xsizem = widthMm;
  s.ysizem = heightMm;
  s.asprto = double(s.heightUnits) / double(s.widthUnits);
  devicePen().known = false;
  applyClip();
}

void setRedrawClient(RedrawClient client) { redrawClient = client; }

void redrawPlot(int mode, bool& status) {
  status = false;
  if (!redrawClient) return;
  redrawClient(true, false, status);
  if (!status) redrawClient(false, mode == 2, status);
  flushPlot();
}

void hairlines(bool on) {
  if (platform::Device* d = device()) d->hairline(on);
}

void flushPlot() {
  if (platform::Device* d = platform::currentDevice()) d->flush();
}

}  // namespace kntr::graphics
