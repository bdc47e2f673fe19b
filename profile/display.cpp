#include "profile/display.h"

#include <algorithm>
#include <cmath>

#include "framework/files.h"
#include "framework/format.h"
#include "framework/text.h"
#include "graphics/grid.h"
#include "graphics/plotstate.h"
#include "mesher/driver.h"
#include "mesher/limits.h"
#include "platform/drawing.h"
#include "profile/block.h"
#include "profile/module.h"
#include "profile/polylines.h"

namespace kntr::profile {

namespace {

using graphics::GCOLOR;
using graphics::GDRAW2;
using graphics::GMARK2;
using graphics::GMOVE2;

// Where the mesh of the picture is made: room as the module asks for it.
struct MeshArea {
  int numVertices = 0;
  int numTriangles = 0;
  Array1<XY, mesher::ResultVertices> vertices;
  Array1<mesher::Triangle, mesher::ResultTriangles> triangles;
  Array1<double, mesher::ResultTriangles> quality;
};

MeshArea& meshArea() {
  static MeshArea area;
  return area;
}

std::string& underlay() {
  static std::string file;
  return file;
}

ProfilePolylines& polylines() {
  static ProfilePolylines lines;
  return lines;
}


// A label beside a point: a little to the right, centred on it.
void labelAt(double x, double y, const std::string& text) {
  double wx = 0.0, wy = 0.0;
  graphics::worldPerDeviceUnit(wx, wy);
  graphics::GLORG(2);
  GMOVE2(x + 8.0 * wx, y);
  graphics::GWTEXT(text);
}

// The span of the polyline from point j to point j + 1 of the current curve.
void drawHighlight(const ProfilePolylines& lines, int c, int j) {
  const ProfileData& p = profile();
  const int n = p.NPRPNT(c);
  const int count = lines.points(c);
  if (j < 1 || j > n) return;
  if (j == n) {
    // the closing segment, only on a closed curve
    if (!p.PRCLSD(c)) return;
    const int from = lines.index(c, n);
    GMOVE2(lines.xy(c, from).x, lines.xy(c, from).y);
    for (int i = from + 1; i <= count; ++i) GDRAW2(lines.xy(c, i).x, lines.xy(c, i).y);
    GDRAW2(lines.xy(c, 1).x, lines.xy(c, 1).y);
    return;
  }
  const int from = lines.index(c, j), to = lines.index(c, j + 1);
  GMOVE2(lines.xy(c, from).x, lines.xy(c, from).y);
  for (int i = from + 1; i <= to; ++i) GDRAW2(lines.xy(c, i).x, lines.xy(c, i).y);
}

// A snap line or auxiliary line across the box.
void lineAcrossBox(const Array1<double, 4>& line, int colour) {
  double ax, ay, bx, by;
  if (!lineThroughBox(line(1), line(2), line(3), line(4), ax, ay, bx, by)) return;
  GCOLOR(colour);
  GMOVE2(ax, ay);
  GDRAW2(bx, by);
}

}  // namespace

bool lineThroughBox(double x1, double y1, double x2, double y2, double& ax, double& ay,
                    double& bx, double& by) {
  const ProfileData& p = profile();
  const double dx = x2 - x1, dy = y2 - y1;
  if (dx == 0.0 && dy == 0.0) return false;
  double t0 = -HUGE_VAL, t1 = HUGE_VAL;
  const double lo[2] = {p.PRBBOX(1), p.PRBBOX(3)}, hi[2] = {p.PRBBOX(2), p.PRBBOX(4)};
  const double o[2] = {x1, y1}, d[2] = {dx, dy};
  for (int k = 0; k < 2; ++k) {
    if (d[k] == 0.0) {
      if (o[k] < lo[k] || o[k] > hi[k]) return false;
      continue;
    }
    double ta = (lo[k] - o[k]) / d[k], tb = (hi[k] - o[k]) / d[k];
    if (ta > tb) std::swap(ta, tb);
    t0 = std::max(t0, ta);
    t1 = std::min(t1, tb);
  }
  if (!(t0 <= t1)) return false;
  ax = x1 + t0 * dx;
  ay = y1 + t0 * dy;
  bx = x1 + t1 * dx;
  by = y1 + t1 * dy;
  return true;
}

const char* const ThingNames[ThingCount] = {
    "Reference point", "Current curve",   "Other curves",    "Interpolated points",
    "Curve points",    "Current point",   "Highlighted segments", "Snap line",
    "Snap line ends",  "Auxiliary line",  "Insertion mark",  "Interior mesh"};

DisplayLook& displayLook() {
  static DisplayLook look;
  return look;
}

std::string pointLabel(int c, int j) {
  const ProfileData& p = profile();
  const std::string number = std::to_string(j);
  switch (p.PRPTYP(c, j)) {
    case ContinuousCurvature: return number;
    case Knuckle: return (p.PRKWGT(c, j) == 1.0 ? "K" : "k") + number;
    case LeadingTangent: return "TL" + number;
    case TrailingTangent: return "TT" + number;
    case BothTangents: return "TB" + number;
    case EqualTangents: return "TE" + number;
    case LeadingSheer: return "SL" + number;
    case TrailingSheer: return "ST" + number;
    default: return number;
  }
}

void PLPRCV(int curve, bool erase, bool& status) {
  status = false;
  const ProfileData& p = profile();
  if (curve < 0 || curve > p.NPRCRV) {
    framework::fail("(PLPRCV) Illegal profile curve index!", status);
    return;
  }
  auto colour = [erase](int c) { return erase ? EraseColour : c; };
  bool failed = false;
  graphics::GTSIZE(LabelSize, failed);

  // the reference point
  const DisplayLook& look = displayLook();
  if (look.reference) {
    GCOLOR(colour(look.colour[ReferenceThing]));
    GMOVE2(p.PRREFP(1), p.PRREFP(2));
    GMARK2(ReferenceMark);
    labelAt(p.PRREFP(1), p.PRREFP(2), "REF");
  }
  if (p.NPRCRV == 0) return;

  ProfilePolylines& lines = polylines();
  IQPPOL(MaxCurves, MaxPolylinePoints, lines, status);
  if (status) return;
  const int first = curve == 0 ? 1 : curve;
  const int last = curve == 0 ? p.NPRCRV : curve;

  // the curves
  for (int c = first; c <= last; ++c) {
    const int count = lines.points(c);
    if (count < 2) continue;
    const int lineColour = colour(look.colour[c == p.CURCRV ? CurrentCurveThing : CurveThing]);
    const bool marksOnly = p.PRFTYP == SplineProfile && p.SHOWIP;
    if (!marksOnly || p.SHOWLS) {
      GCOLOR(lineColour);
      GMOVE2(lines.xy(c, 1).x, lines.xy(c, 1).y);
      for (int i = 2; i <= count; ++i) GDRAW2(lines.xy(c, i).x, lines.xy(c, i).y);
      if (p.PRCLSD(c)) GDRAW2(lines.xy(c, 1).x, lines.xy(c, 1).y);
    }
    if (marksOnly) {
      GCOLOR(colour(look.colour[InterpolatedThing]));
      for (int i = 1; i <= count; ++i) {
        GMOVE2(lines.xy(c, i).x, lines.xy(c, i).y);
        GMARK2(InterpolatedMark);
      }
    }
  }

  // highlighted segments of the current curve
  if (p.CURCRV >= first && p.CURCRV <= last && lines.points(p.CURCRV) >= 2) {
    GCOLOR(colour(look.colour[HighlightThing]));
    for (int k = 1; k <= 2; ++k)
      if (p.HILSEG(k) != 0) drawHighlight(lines, p.CURCRV, p.HILSEG(k));
  }

  // the points, with their labels: small strokes that need no smoothing
  graphics::hairlines(true);
  for (int c = first; c <= last; ++c) {
    for (int j = 1; j <= p.NPRPNT(c); ++j) {
      const bool current = c == p.CURCRV && j == p.CURPNT;
      GCOLOR(colour(look.colour[current ? CurrentPointThing : PointThing]));
      const double x = p.PRPNTS(c, j)(1), y = p.PRPNTS(c, j)(2);
      GMOVE2(x, y);
      if (look.marks) GMARK2(PointMark);
      if (look.labels) labelAt(x, y, pointLabel(c, j));
    }
  }
  graphics::hairlines(false);
}

void PLMESH(bool erase, bool& status) {
  status = false;
  MeshArea& m = meshArea();
  mesher::IQPMSH(mesher::ResultVertices, mesher::ResultTriangles, View1<double>(m.quality),
                 m.numVertices, View1<XY>(m.vertices), m.numTriangles,
                 View1<mesher::Triangle>(m.triangles), status);
  if (status) return;
  const View1<const XY> vertices(m.vertices.data(), m.numVertices);
  const View1<const mesher::Triangle> triangles(m.triangles.data(), m.numTriangles);
  if (profile().MESHQC)
    drawMeshQuality(vertices, triangles, View1<const double>(m.quality.data(), m.numTriangles),
                    erase);
  drawMesh(vertices, triangles, erase ? EraseColour : displayLook().colour[MeshThing]);
}

void drawMeshQuality(View1<const XY> vertices, View1<const mesher::Triangle> triangles,
                     View1<const double> quality, bool erase) {
  bool failed = false;
  // each triangle in the ramp's colour of its quality
  graphics::GPALET(erase ? 1 : 2);
  const int top = platform::PaletteColours - 1;
  for (int t = 1; t <= triangles.size(); ++t) {
    const mesher::Triangle& tri = triangles(t);
    double x[3], y[3];
    for (int k = 0; k < 3; ++k) {
      x[k] = vertices(tri(k + 1)).x;
      y[k] = vertices(tri(k + 1)).y;
    }
    const int colour =
        erase ? EraseColour : static_cast<int>(std::lround(std::clamp(quality(t), 0.0, 1.0) * top));
    graphics::GSETIN("plgfcl", colour, failed);
    graphics::GFILL2(3, x, y);
  }
  // the legend: the ramp from 0 to 1 up the right edge of the margin
  const graphics::Rectangle m = graphics::plotState().margin;
  const double w = 0.02 * (m.xmax - m.xmin), h = 0.4 * (m.ymax - m.ymin) / top;
  const double x0 = m.xmax - w, y0 = m.ymin;
  for (int k = 0; k <= top; ++k) {
    const double x[4] = {x0, x0 + w, x0 + w, x0};
    const double y[4] = {y0 + k * h, y0 + k * h, y0 + (k + 1) * h, y0 + (k + 1) * h};
    graphics::GSETIN("plgfcl", erase ? EraseColour : k, failed);
    graphics::GFILL2(4, x, y);
  }
  graphics::GPALET(1);
  graphics::GTSIZE(LabelSize, failed);
  GCOLOR(erase ? EraseColour : PointColour);
  for (const char* label : {"0.0", "0.5", "1.0"}) {
    const double at = label[0] == '1' ? 1.0 : label[2] == '5' ? 0.5 : 0.0;
    graphics::GLORG(8);
    GMOVE2(x0 - 0.5 * w, y0 + at * (top + 1) * h);
    graphics::GWTEXT(label);
  }
}

void combSpikes(int c, double scale, int& count, View1<XY> bases, View1<XY> tips, bool& status) {
  status = false;
  count = 0;
  const ProfileData& p = profile();
  ProfilePolylines& lines = polylines();
  IQPPOL(MaxCurves, MaxPolylinePoints, lines, status);
  if (status || c < 1 || c > lines.curves) return;
  const int n = lines.points(c);
  const bool closed = p.PRCLSD(c);
  if (n < 3) return;
  // polyline points that stand for knuckles are corners: no curvature there
  static Array1<bool, MaxPolylinePoints> corner;
  for (int i = 1; i <= n; ++i) corner(i) = false;
  for (int j = 1; j <= p.NPRPNT(c); ++j)
    if (p.PRPTYP(c, j) == Knuckle) corner(lines.index(c, j)) = true;
  for (int i = 1; i <= n; ++i) {
    if (!closed && (i == 1 || i == n)) continue;
    if (corner(i) || count >= bases.size()) continue;
    const XY& a = lines.xy(c, i > 1 ? i - 1 : n);
    const XY& b = lines.xy(c, i);
    const XY& d = lines.xy(c, i < n ? i + 1 : 1);
    // curvature of the circle through three neighbours, signed by the turn
    const double ux = b.x - a.x, uy = b.y - a.y, vx = d.x - b.x, vy = d.y - b.y;
    const double wx = d.x - a.x, wy = d.y - a.y;
    const double lu = std::hypot(ux, uy), lv = std::hypot(vx, vy), lw = std::hypot(wx, wy);
    if (lu == 0.0 || lv == 0.0 || lw == 0.0) continue;
    const double k = 2.0 * (ux * vy - uy * vx) / (lu * lv * lw);
    // the spike stands on the side away from the centre of curvature
    const double nx = -wy / lw, ny = wx / lw;
    ++count;
    bases(count) = b;
    tips(count) = XY{b.x - scale * k * nx, b.y - scale * k * ny};
  }
}

void PLCOMB(bool erase, bool& status) {
  status = false;
  const ProfileData& p = profile();
  if (p.PRFTYP != SplineProfile || p.NPRCRV == 0) return;
  static Array1<XY, MaxPolylinePoints> bases, tips;
  // one scale for the picture: the sharpest bend gets the tallest spike
  double largest = 0.0;
  for (int c = 1; c <= p.NPRCRV; ++c) {
    int count = 0;
    combSpikes(c, 1.0, count, View1<XY>(bases), View1<XY>(tips), status);
    if (status) return;
    for (int i = 1; i <= count; ++i)
      largest = std::max(largest, std::hypot(tips(i).x - bases(i).x, tips(i).y - bases(i).y));
  }
  if (largest == 0.0) return;
  const graphics::Rectangle m = graphics::plotState().margin;
  const double scale = CombHeight * std::max(m.xmax - m.xmin, m.ymax - m.ymin) / largest;
  GCOLOR(erase ? EraseColour : CombColour);
  for (int c = 1; c <= p.NPRCRV; ++c) {
    int count = 0;
    combSpikes(c, scale, count, View1<XY>(bases), View1<XY>(tips), status);
    if (status) return;
    for (int i = 1; i <= count; ++i) {
      GMOVE2(bases(i).x, bases(i).y);
      GDRAW2(tips(i).x, tips(i).y);
    }
    // the tips joined
    if (count > 0) GMOVE2(tips(1).x, tips(1).y);
    for (int i = 2; i <= count; ++i) GDRAW2(tips(i).x, tips(i).y);
  }
}

void drawMesh(View1<const XY> vertices, View1<const mesher::Triangle> triangles, int colour) {
  GCOLOR(colour);
  graphics::hairlines(true);
  for (int t = 1; t <= triangles.size(); ++t) {
    const mesher::Triangle& tri = triangles(t);
    const XY& a = vertices(tri(1));
    GMOVE2(a.x, a.y);
    for (int k : {2, 3, 1}) GDRAW2(vertices(tri(k)).x, vertices(tri(k)).y);
  }
  graphics::hairlines(false);
}

void DPKNTR(bool erase, bool rescale, bool& status) {
  status = false;
  if (erase) {
    graphics::GCLEAR("display");
    return;
  }
  if (rescale) {
    SCKNTR(status);
    if (status) return;
  }
  ProfileData& p = profile();
  // a scanned drawing under everything, on the window alone
  if (!underlay().empty() && p.BBOXOK && graphics::plotState().device == graphics::DeviceWindow &&
      !graphics::GIMAGE(underlay(), p.PRBBOX(1), p.PRBBOX(2), p.PRBBOX(3), p.PRBBOX(4))) {
    const std::string file = underlay();
    underlay().clear();  // before the message, whose box repaints the picture
    framework::ERRSCN("Cannot show the drawing " + framework::literal(file) +
                      " (a PNG or JPEG picture is needed)");
  }
  if (p.SHOWGR && p.BBOXOK) {
    graphics::plotState().grid =
        graphics::Rectangle{p.PRBBOX(1), p.PRBBOX(2), p.PRBBOX(3), p.PRBBOX(4)};
    graphics::GGRID2(status);
    if (status) return;
  }
  const DisplayLook& look = displayLook();
  if (p.MESHON && look.mesh) {
    PLMESH(false, status);
    if (status) return;
  }
  PLPRCV(0, false, status);
  if (status) return;
  if (p.SHOWCB) {
    PLCOMB(false, status);
    if (status) return;
  }
  if (p.SNAPOK && look.snapLine) {
    lineAcrossBox(p.SNAPLN, look.colour[SnapLineThing]);
    bool failed = false;
    graphics::GTSIZE(LabelSize, failed);
    GCOLOR(look.colour[SnapEndThing]);
    for (int k = 0; k < 2; ++k) {
      const double x = p.SNAPLN(2 * k + 1), y = p.SNAPLN(2 * k + 2);
      GMOVE2(x, y);
      GMARK2(SnapEndMark);
      labelAt(x, y, k == 0 ? "1" : "2");
    }
  }
  if (p.MARKOK) {
    GCOLOR(look.colour[InsertMarkThing]);
    GMOVE2(p.MARKPT(1), p.MARKPT(2));
    GMARK2(InsertMark);
  }
  if (p.HLPLOK) lineAcrossBox(p.HLPLIN, look.colour[HelpLineThing]);
  graphics::flushPlot();
}

void setUnderlay(const std::string& file) { underlay() = file; }
const std::string& underlayFile() { return underlay(); }

void UNDRLY(std::string_view file) {
  const std::string name = fmt::stripped(file);
  bool status = false;
  if (name.empty()) {
    framework::ERRSCN("Name the drawing: #underlay FILE (a PNG or JPEG picture), or #underlay none");
    return;
  }
  if (fmt::upper(name) != "NONE" && !framework::fileExists(name)) {
    framework::ERRSCN("The drawing " + framework::literal(name) + " is non-existent!");
    return;
  }
  DPKNTR(true, false, status);
  underlay() = fmt::upper(name) == "NONE" ? std::string() : name;
  if (!status) DPKNTR(false, false, status);
  graphics::flushPlot();
}

void REDRAW(bool& status) {
  DPKNTR(true, false, status);
  if (!status) DPKNTR(false, false, status);
}

}  // namespace kntr::profile
