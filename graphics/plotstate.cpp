#include "graphics/plotstate.h"

#include <map>
#include <string>

#include "framework/text.h"

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

struct Attributes {
  std::map<std::string, int> integers;
  std::map<std::string, double> reals;
  Attributes() {
    for (const char* name : integerNames) integers[name] = 1;
    for (const char* name : textRealNames) reals[name] = 0.0;
    reals["txtsiz"] = 1.0;
    reals["lblxsz"] = reals["lblysz"] = reals["tltxsz"] = reals["tltysz"] = 0.8;
    reals["tltpsz"] = 1.2;
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
}

void GINQRL(std::string_view name, double& value, bool& status) {
  status = false;
  const PlotState& s = state();
  const std::string n(name);
  const std::map<std::string, double> rectangles = {
      {"xaxmin", s.scale.xmin},  {"xaxmax", s.scale.xmax},  {"yaxmin", s.scale.ymin},
      {"yaxmax", s.scale.ymax},  {"xmgmin", s.margin.xmin}, {"xmgmax", s.margin.xmax},
      {"ymgmin", s.margin.ymin}, {"ymgmax", s.margin.ymax}, {"xdgtmn", s.digit.xmin},
      {"xdgtmx", s.digit.xmax},  {"ydgtmn", s.digit.ymin},  {"ydgtmx", s.digit.ymax},
      {"asprto", s.asprto},      {"xsizem", s.xsizem},      {"ysizem", s.ysizem},
      {"mgntop", s.mgntop},      {"mgnbot", s.mgnbot},      {"mgnlft", s.mgnlft},
      {"mgnrgh", s.mgnrgh}};
  if (auto it = rectangles.find(n); it != rectangles.end()) {
    value = it->second;
    return;
  }
  if (n == "xclmin" || n == "xclmax" || n == "yclmin" || n == "yclmax") {
    Rectangle r = s.plot;
    switch (s.iclipx) {
      case ClipOff: r = Rectangle{s.plot.xmin - 1, s.plot.xmax + 1, s.plot.ymin - 1, s.plot.ymax + 1}; break;
      case ClipDigit: r = s.digit; break;
      case ClipMargin: r = s.margin; break;
      case ClipScale: r = s.scale; break;
      default: break;
    }
    value = n == "xclmin" ? r.xmin : n == "xclmax" ? r.xmax : n == "yclmin" ? r.ymin : r.ymax;
    return;
  }
  if (auto it = attributes().reals.find(n); it != attributes().reals.end()) {
    value = it->second;
    return;
  }
  fail("PLOT ERROR FROM SUBROUTINE ** GINQRL **{nwl(unknown attribute " + n + ")", status);
}

void GINQIN(std::string_view name, int& value, bool& status) {
  status = false;
  const std::string n(name);
  if (n == "iclipx") {
    value = state().iclipx;
    return;
  }
  if (n == "reset") {
    value = state().reset;
    return;
  }
  if (auto it = attributes().integers.find(n); it != attributes().integers.end()) {
    value = it->second;
    return;
  }
  fail("PLOT ERROR FROM SUBROUTINE ** GINQIN **{nwl(unknown attribute " + n + ")", status);
}

void GSETIN(std::string_view name, int value, bool& status) {
  status = false;
  const std::string n(name);
  if (n == "iclipx") {
    if (value < ClipOff || value > ClipScale) {
      fail("PLOT ERROR FROM SUBROUTINE ** GSETIN **{nwl(clip mode must be in [1,5])", status);
      return;
    }
    state().iclipx = value;
      return;
  }
  if (n == "reset") {
    state().reset = value;
    return;
  }
  if (auto it = attributes().integers.find(n); it != attributes().integers.end()) {
    it->second = value;
    return;
  }
  fail("PLOT ERROR FROM SUBROUTINE ** GSETIN **{nwl(unknown attribute " + n + ")", status);
}

}  // namespace kntr::graphics
