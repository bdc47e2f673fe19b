#include "graphics/view.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cmath>
#include <string>

#include "framework/format.h"
#include "framework/input.h"
#include "framework/menus.h"
#include "framework/text.h"
#include "graphics/dialogue.h"
#include "graphics/strokes.h"
#include "platform/drawing.h"

namespace kntr::graphics {

namespace {

using framework::ERRSCN;
using framework::fail;
constexpr double Pi = 3.14159265358979323846;
// Size of the panel's labels: three letters fit a button.
constexpr double PanelLabelSize = 0.5;

ViewState& view() {
  static ViewState v;
  return v;
}

RedrawClient viewClient = nullptr;

// The client's two calls around a change of view.
void eraseForChange(bool& failed) {
  failed = false;
  view().VWBUSY = false;
  if (viewClient) viewClient(true, false, failed);
}
void drawAfterChange(bool& failed) {
  failed = false;
  if (platform::currentDevice()) GWFRAM();
  view().VWBUSY = true;
  if (viewClient) viewClient(false, false, failed);
  flushPlot();
}

double largestExtent() {
  const auto& b = view().VWBBOX;
  return std::max({b(2) - b(1), b(4) - b(3), b(6) - b(5)});
}

// Magnification of a view rectangle: largest box extent over the larger of
// the view's sides.
double magnificationOf(const Rectangle& r) {
  const double side = std::max(r.xmax - r.xmin, r.ymax - r.ymin);
  return side > 0.0 ? largestExtent() / side : 1.0;
}

// A new view: the margin rectangle becomes `r` with equal units.
void applyView(const Rectangle& r) {
  G2SCLT(r.xmin, r.xmax, r.ymin, r.ymax);
  view().ZOOMMG = magnificationOf(plotState().margin);
}

// Repaint one panel button after its state changed.
void repaintPanel() {
  DRPANL();
  flushPlot();
}

}  // namespace

const char* const panelLabels[PanelButtons] = {
    "XY", "EU", "ZBX", "IN",  "PRV", "PU", "XZ", "EL", "ER",  "OUT", "PL",  "PR",
    "YZ", "ED", "RST", "ALL", "RDR", "PD", "-",  "-",  "DYN", "ASC", "ADR", "-"};

ViewState& viewState() { return view(); }

void resetViewState() {
  view() = ViewState{};
  bool failed = false;
  GVIEWS(view().UPAXIS, 1.0, 1.0, 1.0, failed);
}

void setViewClient(RedrawClient client) { viewClient = client; }

void GVIEWS(int upAxis, double nx, double ny, double nz, bool& failed) {
  failed = false;
  if (upAxis == 0 || std::abs(upAxis) > 3) {
    ERRSCN("Vertical up axis must be either X, -X, Y, -Y, Z or -Z!");
    return;
  }
  const double length = std::sqrt(nx * nx + ny * ny + nz * nz);
  if (length == 0.0) {
    fail("Length of normal vector must be greater than zero", failed);
    return;
  }
  const double n[3] = {nx / length, ny / length, nz / length};
  const double c = n[std::abs(upAxis) - 1];
  const double d = std::sqrt(std::max(0.0, 1.0 - c * c));
  if (d < 1e-6) {
    fail(std::string("It is not possible to look at the construction from the ") +
             "XYZ"[std::abs(upAxis) - 1] + " direction",
         failed);
    return;
  }
  double right[3], up[3];
  const double x = n[0], y = n[1], z = n[2];
  switch (upAxis) {
    case 1: right[0] = 0; right[1] = -z / d; right[2] = y / d;
      up[0] = d; up[1] = -x * y / d; up[2] = -x * z / d; break;
    case -1: right[0] = 0; right[1] = -z / d; right[2] = y / d;
      up[0] = -d; up[1] = x * y / d; up[2] = x * z / d; break;
    case 2: right[0] = z / d; right[1] = 0; right[2] = -x / d;
      up[0] = -x * y / d; up[1] = d; up[2] = -y * z / d; break;
    case -2: right[0] = z / d; right[1] = 0; right[2] = -x / d;
      up[0] = x * y / d; up[1] = -d; up[2] = y * z / d; break;
    case 3: right[0] = -y / d; right[1] = x / d; right[2] = 0;
      up[0] = -x * z / d; up[1] = -y * z / d; up[2] = d; break;
    default: right[0] = -y / d; right[1] = x / d; right[2] = 0;
      up[0] = x * z / d; up[1] = y * z / d; up[2] = -d; break;
  }
  ViewState& v = view();
  for (int j = 1; j <= 3; ++j) {
    v.VMATRX(1, j) = right[j - 1];
    v.VMATRX(2, j) = up[j - 1];
    v.VMATRX(3, j) = n[j - 1];
  }
  v.UPAXIS = upAxis;
  v.VNORML(1) = nx;
  v.VNORML(2) = ny;
  v.VNORML(3) = nz;
}

void AB2XYZ(int upAxis, double a, double b, double& nx, double& ny, double& nz, bool& failed) {
  failed = false;
  const double sa = std::sin(a), ca = std::cos(a), sb = std::sin(b), cb = std::cos(b);
  switch (upAxis) {
    case 1: nx = sa; ny = ca * cb; nz = ca * sb; break;
    case -1: nx = -sa; ny = ca * cb; nz = ca * sb; break;
    case 2: nx = ca * sb; ny = sa; nz = ca * cb; break;
    case -2: nx = ca * sb; ny = -sa; nz = ca * cb; break;
    case 3: nx = ca * cb; ny = ca * sb; nz = sa; break;
    case -3: nx = ca * cb; ny = ca * sb; nz = -sa; break;
    default: fail("(AB2XYZ) Illegal up-axis specifier!", failed);
  }
}

void XYZ2AB(int upAxis, double nx, double ny, double nz, double& a, double& b, bool& failed) {
  failed = false;
  double upComponent = 0, p = 0, q = 0;
  switch (upAxis) {
    case 1: case -1: upComponent = nx; p = ny; q = nz; break;
    case 2: case -2: upComponent = ny; p = nz; q = nx; break;
    case 3: case -3: upComponent = nz; p = nx; q = ny; break;
    default:
      fail("(XYZ2AB) Illegal up-axis specifier!", failed);
      return;
  }
  const double m = std::sqrt(nx * nx + ny * ny + nz * nz);
  const double ratio = m > 0.0 ? std::clamp(upComponent / m, -1.0, 1.0) : 0.0;
  a = std::asin(ratio) * (upAxis < 0 ? -1.0 : 1.0);
  const double d = std::sqrt(p * p + q * q);
  if (d == 0.0) b = 0.0;
  else if (p < 0.0 && q < 0.0) b = std::acos(std::abs(p) / d) + Pi;
  else if (p < 0.0) b = std::acos(p / d);
  else if (q < 0.0) b = -std::acos(p / d);
  else b = std::acos(p / d);
}

void SPBBOX(double xmin, double xmax, double ymin, double ymax, double zmin, double zmax,
            bool& failed) {
  failed = false;
  const double diagonal = std::sqrt((xmax - xmin) * (xmax - xmin) + (ymax - ymin) * (ymax - ymin) +
                                    (zmax - zmin) * (zmax - zmin));
  if (diagonal == 0.0) {
    fail("(SPBBOX) Encountered zero size view bounding box!", failed);
    return;
  }
  double lo[3] = {xmin, ymin, zmin}, hi[3] = {xmax, ymax, zmax};
  for (int k = 0; k < 3; ++k) {
    if (hi[k] - lo[k] == 0.0) {
      lo[k] -= 0.01 * diagonal;
      hi[k] += 0.01 * diagonal;
    }
  }
  auto& b = view().VWBBOX;
  for (int k = 0; k < 3; ++k) {
    b(2 * k + 1) = lo[k];
    b(2 * k + 2) = hi[k];
  }
}

bool LZOMOK(double magnification) {
  if (magnification > 1000.0) {
    ERRSCN("(LZOMOK) Zoom magnification exceeds precision threshold!");
    return false;
  }
  if (magnification < 0.001) {
    ERRSCN("(LZOMOK) Zoom magnification is smaller than precision threshold!");
    return false;
  }
  return true;
}

double IQPPLN(const double point[3], const double normal[3], const double p[3]) {
  const double length =
      std::sqrt(normal[0] * normal[0] + normal[1] * normal[1] + normal[2] * normal[2]);
  if (length == 0.0) return 0.0;
  double s = 0.0;
  for (int k = 0; k < 3; ++k) s += (p[k] - point[k]) * normal[k];
  return s / length;
}

void CUTPLN(const double planePoint[3], const double planeNormal[3], const double p[3],
            const double q[3], bool& hit, bool& between, double point[3], bool& failed) {
  failed = false;
  hit = false;
  between = false;
  double line[3], lineLength = 0.0, normalLength = 0.0;
  for (int k = 0; k < 3; ++k) {
    line[k] = q[k] - p[k];
    lineLength += line[k] * line[k];
    normalLength += planeNormal[k] * planeNormal[k];
  }
  if (lineLength == 0.0) {
    fail("(CUTPLN) Found two coincident points for line!", failed);
    return;
  }
  if (normalLength == 0.0) {
    fail("(CUTPLN) Found zero length plane normal!", failed);
    return;
  }
  lineLength = std::sqrt(lineLength);
  normalLength = std::sqrt(normalLength);
  double cosine = 0.0;
  for (int k = 0; k < 3; ++k) cosine += line[k] * planeNormal[k];
  cosine /= lineLength * normalLength;
  if (std::abs(cosine) < 1e-6) return;
  const double dp = IQPPLN(planePoint, planeNormal, p);
  const double dq = IQPPLN(planePoint, planeNormal, q);
  // Projections of p and q on the plane, and the cut between them.
  double pp[3], qq[3];
  for (int k = 0; k < 3; ++k) {
    pp[k] = p[k] - dp * planeNormal[k] / normalLength;
    qq[k] = q[k] - dq * planeNormal[k] / normalLength;
  }
  for (int k = 0; k < 3; ++k) point[k] = pp[k] - (qq[k] - pp[k]) * dp / (dq - dp);
  hit = true;
  between = (dp >= 0.0) != (dq >= 0.0);
}

void FTL2BX(const double p[3], const double q[3], double xmin, double xmax, double ymin,
            double ymax, double zmin, double zmax, bool& found, double first[3],
            double second[3], bool& failed) {
  failed = false;
  found = false;
  const double largest = std::max({xmax - xmin, ymax - ymin, zmax - zmin});
  if (largest == 0.0) {
    fail("(FTL2BX) Found zero size bounding box!", failed);
    return;
  }
  const double lo[3] = {xmin, ymin, zmin}, hi[3] = {xmax, ymax, zmax};
  std::array<std::array<double, 3>, 6> hits{};
  int count = 0;
  for (int axis = 0; axis < 3; ++axis) {
    for (int side = 0; side < 2; ++side) {
      double planePoint[3] = {0, 0, 0}, normal[3] = {0, 0, 0};
      planePoint[axis] = side == 0 ? lo[axis] : hi[axis];
      normal[axis] = 1.0;
      bool hit = false, between = false, bad = false;
      double point[3];
      CUTPLN(planePoint, normal, p, q, hit, between, point, bad);
      if (bad) {
        failed = true;
        return;
      }
      if (!hit) continue;
      bool inside = true;
      for (int k = 0; k < 3; ++k)
        if (k != axis && !(point[k] > lo[k] && point[k] < hi[k])) inside = false;
      if (!inside) continue;
      // Drop a hit that repeats an earlier one.
      bool repeated = false;
      for (int h = 0; h < count; ++h) {
        const double dx = point[0] - hits[h][0], dy = point[1] - hits[h][1],
                     dz = point[2] - hits[h][2];
        if (std::sqrt(dx * dx + dy * dy + dz * dz) <= 1e-6 * largest) repeated = true;
      }
      if (!repeated) hits[count++] = {point[0], point[1], point[2]};
    }
  }
  if (count != 2) return;
  for (int k = 0; k < 3; ++k) {
    first[k] = hits[0][k];
    second[k] = hits[1][k];
  }
  found = true;
}

void GZVIEW(int which, bool& failed) {
  failed = false;
  eraseForChange(failed);
  if (failed) return;
  bool refused = false;
  if (which == 1) GVIEWS(2, 0, 0, 1, refused);
  else if (which == 2) GVIEWS(3, 0, -1, 0, refused);
  else GVIEWS(3, 1, 0, 0, refused);
  view().PREVOK = false;
  drawAfterChange(failed);
}

void GROTAT(int code, bool& failed) {
  failed = false;
  ViewState& v = view();
  if (v.VIEWKD != 2 && v.VIEWKD != 4 && v.VIEWKD != 6) return;
  double a = 0, b = 0;
  bool bad = false;
  XYZ2AB(v.UPAXIS, v.VNORML(1), v.VNORML(2), v.VNORML(3), a, b, bad);
  if (bad) return;
  eraseForChange(failed);
  if (failed) return;
  const double step = v.ROTSTP * Pi / 180.0;
  if (code == 1 || code == 2) {
    a += code == 1 ? step : -step;
    if (a >= Pi / 2) a = 0.999 * Pi / 2;
    if (a <= -Pi / 2) a = -0.999 * Pi / 2;
  } else {
    b += code == 3 ? -step : step;
  }
  double nx = 0, ny = 0, nz = 0;
  AB2XYZ(v.UPAXIS, a, b, nx, ny, nz, bad);
  if (!bad) GVIEWS(v.UPAXIS, nx, ny, nz, bad);
  v.PREVOK = false;
  drawAfterChange(failed);
}

void zoomAbout(double cx, double cy, bool in, bool& failed) {
  ViewState& v = view();
  const Rectangle present = plotState().margin;
  const double f = in ? 1.0 / v.ZOOMFC : v.ZOOMFC;
  const double w = (present.xmax - present.xmin) * f, h = (present.ymax - present.ymin) * f;
  const Rectangle next{cx - w / 2, cx + w / 2, cy - h / 2, cy + h / 2};
  eraseForChange(failed);
  if (failed) return;
  if (LZOMOK(magnificationOf(next))) {
    v.PREVVW = present;
    v.PREVOK = true;
    v.ZOOMED = in;
    applyView(next);
  } else {
    v.ZOOMED = false;
    applyView(present);
  }
  drawAfterChange(failed);
}

namespace {

// Digitizes one position for a panel action, showing the button as waiting.
bool digitizeFor(int button, std::string_view prompt, double& x, double& y,
                 std::string_view deflt) {
  ViewState& v = view();
  v.waitingButton = button;
  repaintPanel();
  int code = 0;
  const Rectangle m = plotState().margin;
  x = (m.xmin + m.xmax) / 2;
  y = (m.ymin + m.ymax) / 2;
  for (;;) {
    GDIGIT(prompt, code, x, y, deflt);
    if (code == 3 || code == 0 || code == 1) break;
  }
  v.waitingButton = 0;
  repaintPanel();
  return code == 3 || code == 1;
}

}  // namespace

void GZOOMI(bool& failed) {
  failed = false;
  double x = 0, y = 0;
  if (!digitizeFor(panelIndexOf("IN"), "Digitize center of zoom", x, y, "center of view"))
    return;
  zoomAbout(x, y, true, failed);
}

void GZOOMO(bool& failed) {
  failed = false;
  double x = 0, y = 0;
  if (!digitizeFor(panelIndexOf("OUT"), "Digitize center of zoom", x, y,
                   "center of view"))
    return;
  zoomAbout(x, y, false, failed);
}

void GZOOMB(bool& failed) {
  failed = false;
  ViewState& v = view();
  const int button = panelIndexOf("ZBX");
  double x1 = 0, y1 = 0, x2 = 0, y2 = 0;
  if (!digitizeFor(button, "Digitize first corner of zoom box", x1, y1, "")) return;
  if (!digitizeFor(button, "Digitize second corner of zoom box", x2, y2, "")) return;
  if (x1 == x2 && y1 == y2) return;
  const Rectangle present = plotState().margin;
  Rectangle next{std::min(x1, x2), std::max(x1, x2), std::min(y1, y2), std::max(y1, y2)};
  v.ZOOMED = true;
  if (!LZOMOK(magnificationOf(next))) {
    next = present;
    v.ZOOMED = false;
  }
  eraseForChange(failed);
  if (failed) return;
  v.PREVVW = present;
  v.PREVOK = true;
  applyView(next);
  drawAfterChange(failed);
}

void GZPREV(bool& failed) {
  failed = false;
  ViewState& v = view();
  if (!v.PREVOK) return;
  eraseForChange(failed);
  if (failed) return;
  const Rectangle aside = v.PREVVW;
  const Rectangle left = plotState().margin;
  v.PREVVW = left;
  applyView(aside);
  v.ZOOMED = !(aside.xmax - aside.xmin > left.xmax - left.xmin ||
               aside.ymax - aside.ymin > left.ymax - left.ymin);
  drawAfterChange(failed);
}

void GPANVW(int code, bool& failed) {
  failed = false;
  ViewState& v = view();
  Rectangle r = plotState().margin;
  const double f = v.PANFRC * ((code == 1 || code == 2) ? r.ymax - r.ymin : r.xmax - r.xmin);
  eraseForChange(failed);
  if (failed) return;
  switch (code) {
    case 1: r.ymin += f; r.ymax += f; break;
    case 2: r.ymin -= f; r.ymax -= f; break;
    case 3: r.xmin -= f; r.xmax -= f; break;
    default: r.xmin += f; r.xmax += f; break;
  }
  applyView(r);
  v.ZOOMED = false;
  drawAfterChange(failed);
}

void GZRSET(bool& failed) {
  failed = false;
  eraseForChange(failed);
  if (failed) return;
  const ViewState old = view();
  view() = ViewState{};
  ViewState& v = view();
  v.VIEWKD = old.VIEWKD;
  v.VWBBOX = old.VWBBOX;
  bool bad = false;
  GVIEWS(v.UPAXIS, 1.0, 1.0, 1.0, bad);
  GCLIPM("digit");
  // Back to the whole picture, as the client scales it.
  v.VWBUSY = true;
  if (platform::currentDevice()) GWFRAM();
  if (viewClient) viewClient(false, true, failed);
  flushPlot();
}

void GZALL(bool& failed) {
  failed = false;
  ViewState& v = view();
  eraseForChange(failed);
  if (failed) return;
  v.PREVVW = plotState().margin;
  v.PREVOK = true;
  v.ZOOMED = false;
  v.ZOOMMG = 1.0;
  v.VWBUSY = true;
  if (platform::currentDevice()) GWFRAM();
  if (viewClient) viewClient(false, true, failed);
  flushPlot();
}

void GZOOMA(double x, double y, double factor, bool& failed) {
  failed = false;
  ViewState& v = view();
  const Rectangle present = plotState().margin;
  // Keep (x, y) at the same place of the view.
  const Rectangle next{x - (x - present.xmin) / factor, x + (present.xmax - x) / factor,
                       y - (y - present.ymin) / factor, y + (present.ymax - y) / factor};
  if (!LZOMOK(magnificationOf(next))) return;
  eraseForChange(failed);
  if (failed) return;
  v.PREVVW = present;
  v.PREVOK = true;
  v.ZOOMED = factor > 1.0;
  applyView(next);
  drawAfterChange(failed);
}

void GPANBY(double dx, double dy, bool& failed) {
  failed = false;
  Rectangle r = plotState().margin;
  eraseForChange(failed);
  if (failed) return;
  r.xmin += dx;
  r.xmax += dx;
  r.ymin += dy;
  r.ymax += dy;
  applyView(r);
  view().ZOOMED = false;
  drawAfterChange(failed);
}

void GDIGIT(std::string_view prompt, int& code, double& x, double& y, std::string_view deflt,
            int fields) {
  GraphicAnswer answer;
  bool abort = false, status = false;
  code = 0;
  GQUEST(prompt, deflt, "", fields, answer, abort, status);
  if (abort || status) return;
  code = answer.kind == PositionInput ? 3 : answer.kind;
  if (answer.kind == PositionInput) {
    x = answer.x;
    y = answer.y;
  } else if (answer.kind == KeyboardInput) {
    std::array<double, 2> values{x, y};
    bool deflt = false, bad = false;
    framework::GTREAL(std::span<double>(values.data(), fields), deflt, bad);
    if (bad) {
      code = 0;
      return;
    }
    x = values[0];
    y = values[1];
  }
}

void GDIGPT(int& status, double& x, double& y) {
  const PlotState& s = plotState();
  x = s.penX;
  y = s.penY;
  int code = 0;
  GDIGIT("Digitize position", code, x, y);
  status = code == 3 || code == 1 ? 0 : 1;
  if (status == 0) GMOVE2(x, y);
}

void DG2WLD(double r, double s, double& x, double& y, bool& failed) {
  failed = false;
  const ViewState& v = view();
  const double dX = v.X2 - v.X1, dY = v.Y3 - v.Y1;
  if (dX == 0.0 || dY == 0.0) {
    fail("(DG2WLD) Illegal digitizer scaling detected!", failed);
    return;
  }
  const double D = ((v.r2 - v.r1) * (v.s3 - v.s1) - (v.r3 - v.r1) * (v.s2 - v.s1)) / dX / dY;
  if (D == 0.0) {
    fail("(DG2WLD) Illegal digitizer scaling detected!", failed);
    return;
  }
  x = v.X1 + ((v.s3 - v.s1) * (r - v.r1) - (v.r3 - v.r1) * (s - v.s1)) / dY / D;
  y = v.Y1 + ((v.r2 - v.r1) * (s - v.s1) - (v.s2 - v.s1) * (r - v.r1)) / dX / D;
}

void DGSCAL(int plane, int mode, int menuState, bool& failed) {
  (void)mode;
  (void)menuState;
  failed = false;
  if (plane < 1 || plane > 3) {
    fail("(DGSCAL) Illegal digitizing plane specifier!", failed);
    return;
  }
  const char* abscissa = plane == 1 ? "Y" : "X";
  const char* ordinate = plane == 3 ? "Y" : "Z";
  const std::string pair = plane == 1 ? "YZ" : (plane == 2 ? "XZ" : "XY");
  ViewState& v = view();
  const ViewState saved = v;
  for (;;) {
    int code = 0;
    double r1 = 0, s1 = 0, r2 = 0, s2 = 0, r3 = 0, s3 = 0;
    GDIGIT("Digitize a known fix-point", code, r1, s1);
    if (code == 0) { v = saved; return; }
    if (code != 3) { ERRSCN("(DGSCAL) It is only possible to digitize the point!"); continue; }
    GDIGIT("Input the corresponding coordinates (" + pair + ") [m]", code, v.X1, v.Y1);
    if (code == 0) { v = saved; return; }
    if (code != 1) { ERRSCN("(DGSCAL) Coordinates must be keyed in!"); continue; }
    GDIGIT(std::string("Digitize a point with same ordinate (") + ordinate + ") as the fix-point",
           code, r2, s2);
    if (code == 0) { v = saved; return; }
    double value = v.X1, unused = 0;
    GDIGIT(std::string("Input the corresponding ") + abscissa + "-coordinate [m]", code, value,
           unused, "", 1);
    if (code == 0) { v = saved; return; }
    if (code != 1) { ERRSCN("(DGSCAL) Coordinate must be keyed in!"); continue; }
    if (value == v.X1) {
      ERRSCN(std::string("(DGSCAL) Given ") + abscissa +
             "-coordinate must be different from that of the fix-point!");
      continue;
    }
    v.X2 = value;
    GDIGIT(std::string("Digitize a point with same abcissa (") + abscissa + ") as the fix-point",
           code, r3, s3);
    if (code == 0) { v = saved; return; }
    value = v.Y1;
    GDIGIT(std::string("Input the corresponding ") + ordinate + "-coordinate [m]", code, value,
           unused, "", 1);
    if (code == 0) { v = saved; return; }
    if (code != 1) { ERRSCN("(DGSCAL) Coordinate must be keyed in!"); continue; }
    v.Y3 = value;
    if (r2 == r1 || s3 == s1) {
      ERRSCN("(DGSCAL) Illegal scaling, try again!");
      continue;
    }
    const double A = std::atan((s2 - s1) / (r2 - r1));
    const double B = std::atan((r1 - r3) / (s3 - s1));
    if (std::abs(A - B) > 5.0 * Pi / 180.0 + 1e-12) {
      ERRSCN("(DGSCAL) Inaccurate scaling detected, try again!");
      continue;
    }
    v.r1 = r1; v.s1 = s1; v.r2 = r2; v.s2 = s2; v.r3 = r3; v.s3 = s3;
    v.plane = plane;
    GCLEAR("display");
    return;
  }
}

int panelIndex(double u, double v) {
  const double left = 0.8, right = 1.0 - FrameWidth * plotState().asprto / 3.0;
  const double top = 0.1, bottom = 0.25 * FrameWidth;
  if (u < left || u > right || v > top || v < bottom) return 0;
  int column = 1 + static_cast<int>((u - left) / (right - left) * PanelColumns);
  int row = 1 + static_cast<int>((top - v) / (top - bottom) * PanelRows);
  column = std::clamp(column, 1, PanelColumns);
  row = std::clamp(row, 1, PanelRows);
  return (row - 1) * PanelColumns + column;
}

int panelIndexOf(std::string_view label) {
  std::string wanted(label);
  for (char& c : wanted) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  if (wanted == "-") return 0;
  for (int k = 0; k < PanelButtons; ++k)
    if (wanted == panelLabels[k]) return k + 1;
  return 0;
}

void GPANEL(int index, bool& failed) {
  failed = false;
  ViewState& v = view();
  if (index < 1 || index > PanelButtons) return;
  const std::string label = panelLabels[index - 1];
  if (label == "XY") GZVIEW(1, failed);
  else if (label == "XZ") GZVIEW(2, failed);
  else if (label == "YZ") GZVIEW(3, failed);
  else if (label == "EU") GROTAT(1, failed);
  else if (label == "ED") GROTAT(2, failed);
  else if (label == "EL") GROTAT(3, failed);
  else if (label == "ER") GROTAT(4, failed);
  else if (label == "ZBX") GZOOMB(failed);
  else if (label == "IN") GZOOMI(failed);
  else if (label == "OUT") GZOOMO(failed);
  else if (label == "PRV") GZPREV(failed);
  else if (label == "PU") GPANVW(1, failed);
  else if (label == "PD") GPANVW(2, failed);
  else if (label == "PL") GPANVW(3, failed);
  else if (label == "PR") GPANVW(4, failed);
  else if (label == "RST") GZRSET(failed);
  else if (label == "ALL") GZALL(failed);
  else if (label == "RDR") {
    if (viewClient) {
      viewClient(true, false, failed);
      if (platform::currentDevice()) GWFRAM();
      if (!failed) viewClient(false, false, failed);
      flushPlot();
    }
  } else if (label == "DYN" || label == "ASC" || label == "ADR") {
    bool& flag = label == "DYN" ? v.DYNGRF : (label == "ASC" ? v.AUTOSC : v.AUTORD);
    flag = !flag;
    repaintPanel();
  }
}

void DRPANL() {
  // Button colours by column, rows 1..4.
  static const int colours[PanelColumns][PanelRows] = {
      {5, 5, 5, 4}, {3, 3, 3, 4}, {5, 3, 4, 4}, {5, 5, 5, 4}, {5, 3, 4, 4}, {3, 3, 3, 4}};
  platform::Device* d = platform::currentDevice();
  if (!d) return;
  const PlotState& s = plotState();
  const ViewState& v = view();
  const double left = 0.8, right = 1.0 - FrameWidth * s.asprto / 3.0;
  const double top = 0.1, bottom = 0.25 * FrameWidth;
  const double cw = (right - left) / PanelColumns, rh = (top - bottom) / PanelRows;
  const double W = s.widthUnits - 1, H = s.heightUnits - 1;
  int clip = ClipOff;
  bool bad = false;
  GINQIN("iclipx", clip, bad);
  GCLIPM("off");
  for (int row = 1; row <= PanelRows; ++row) {
    for (int column = 1; column <= PanelColumns; ++column) {
      const int index = (row - 1) * PanelColumns + column;
      const std::string label = panelLabels[index - 1];
      int colour = colours[column - 1][row - 1];
      if ((label == "DYN" && v.DYNGRF) || (label == "ASC" && v.AUTOSC) ||
          (label == "ADR" && v.AUTORD) || index == v.waitingButton)
        colour = 7;
      // A cell less a small gap, filled, with its label in black.
      const double u0 = left + (column - 1) * cw + 0.06 * cw, u1 = left + column * cw - 0.06 * cw;
      const double v1 = top - (row - 1) * rh - 0.08 * rh, v0 = top - row * rh + 0.08 * rh;
      const double xy[8] = {u0 * W, (1 - v0) * H, u1 * W, (1 - v0) * H,
                            u1 * W, (1 - v1) * H, u0 * W, (1 - v1) * H};
      d->color(1, colour);
      d->polygon(4, xy);
      plotState().deviceColour = -1;
      if (label == "-") continue;
      double x = 0, y = 0;
      fractionToWorld((u0 + u1) / 2, (v0 + v1) / 2, x, y);
      TextState& t = textState();
      const TextState keep = t;
      t.x = x;
      t.y = y;
      t.TextSize = PanelLabelSize;
      t.TextAngle = 0.0;
      t.Alignment = 5;
      t.colour = 0;
      bool failed = false;
      GDWTXT(label, failed);
      t = keep;
    }
  }
  GSETIN("iclipx", clip, bad);
}

void GVWMNU(bool& failed) {
  failed = false;
  ViewState& v = view();
  for (;;) {
    const std::string rows[4] = {"Autoscale{n" + framework::logicalStateText(v.AUTOSC),
                                 "Auto redraw{n" + framework::logicalStateText(v.AUTORD),
                                 "Dynamic graphic{n" + framework::logicalStateText(v.DYNGRF),
                                 "RETURN"};
    int selection = 4;
    bool abort = false;
    GSELCT("GRAPHICS RELATED VIEW PARAMETERS", rows, "Select item", "", selection, abort);
    if (abort || selection == 4) return;
    if (selection == 1) v.AUTOSC = !v.AUTOSC;
    if (selection == 2) v.AUTORD = !v.AUTORD;
    if (selection == 3) v.DYNGRF = !v.DYNGRF;
    repaintPanel();
  }
}

}  // namespace kntr::graphics
