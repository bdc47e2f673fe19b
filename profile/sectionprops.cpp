#include "profile/sectionprops.h"

#include <array>
#include <cmath>
#include <string>
#include <vector>

#include "framework/format.h"
#include "framework/printers.h"
#include "framework/text.h"
#include "profile/block.h"
#include "profile/curverecord.h"
#include "profile/polylines.h"
#include "spline/evaluate.h"
#include "spline/knots.h"
#include "spline/tangents.h"

namespace kntr::profile {

namespace {

ProfilePolylines& sectionLines() {
  static ProfilePolylines lines;
  return lines;
}

// True when the point lies inside the closed polyline of curve c (even-odd
// rule).
bool inside(const ProfilePolylines& lines, int c, XY point) {
  const int n = lines.points(c);
  bool in = false;
  for (int i = 1; i <= n; ++i) {
    const XY a = lines.xy(c, i), b = lines.xy(c, i == n ? 1 : i + 1);
    if ((a.y > point.y) != (b.y > point.y)) {
      const double x = a.x + (point.y - a.y) * (b.x - a.x) / (b.y - a.y);
      if (x > point.x) in = !in;
    }
  }
  return in;
}

// Sums over the region's boundaries, each point taken relative to an origin.
struct Moments {
  double area = 0.0, x = 0.0, y = 0.0, xx = 0.0, yy = 0.0, xy = 0.0;
};

// A cubic Bezier piece of a boundary, in the plane.
using Piece = std::array<XY, 4>;

// The boundary of closed curve c as cubic Bezier pieces: the spline's own
// pieces where the subdivision kept them curved, straight pieces where it
// found a segment flat within the accuracy; a polyline profile's curve is
// all straight pieces.
std::vector<Piece>& boundaryPieces(int c, bool& status) {
  static std::vector<Piece> pieces;
  static spline::SplineRecord rec;
  static Array1<spline::Triple, MaxPolylinePoints> raw;
  static Array1<int, MaxCurvePoints> rawIndex;
  static Array1<bool, MaxPolylinePoints> onCurve;
  pieces.clear();
  const ProfileData& p = profile();
  const int n = p.NPRPNT(c);
  auto line = [](XY a, XY b) {
    return Piece{a, XY{a.x + (b.x - a.x) / 3.0, a.y + (b.y - a.y) / 3.0},
                 XY{a.x + 2.0 * (b.x - a.x) / 3.0, a.y + 2.0 * (b.y - a.y) / 3.0}, b};
  };
  if (p.PRFTYP != SplineProfile) {
    for (int j = 1; j <= n; ++j) {
      const int k = j == n ? 1 : j + 1;
      pieces.push_back(
          line(XY{p.PRPNTS(c, j)(1), p.PRPNTS(c, j)(2)}, XY{p.PRPNTS(c, k)(1), p.PRPNTS(c, k)(2)}));
    }
    return pieces;
  }
  CurveBox box;
  loadCurveRecord(c, rec, box);
  spline::MKIKV3(p.PRPARM(c), rec, status);
  if (status) return pieces;
  int count = 0;
  const spline::Triple origin{};
  const spline::Triple normal{{1.0, 0.0, 0.0}};
  spline::HCAIP3(MaxPolylinePoints, p.SPLACC, origin, normal, spline::SideNone, 10.0 * p.SPLACC,
                 rec, count, View1<spline::Triple>(raw), View1<int>(rawIndex), View1<bool>(onCurve),
                 status);
  if (status || count < 1) return pieces;
  // Walk round from each point on the curve to the next one, taking the
  // control points between; the last piece returns to the first point.
  auto at = [&](int k) { return XY{raw(k)(1), raw(k)(2)}; };
  int k = 1;
  while (k <= count && !onCurve(k)) ++k;
  const int first = k;
  while (k <= count) {
    int next = k + 1;
    std::vector<int> inner;
    while (next <= count && !onCurve(next)) inner.push_back(next++);
    const XY end = at(next <= count ? next : first);
    if (inner.size() == 2) {
      pieces.push_back(Piece{at(k), at(inner[0]), at(inner[1]), end});
    } else {
      XY from = at(k);
      for (const int q : inner) {
        pieces.push_back(line(from, at(q)));
        from = at(q);
      }
      pieces.push_back(line(from, end));
    }
    k = next;
  }
  return pieces;
}

// Adds the moments of one closed boundary by the divergence theorem, with
// Gauss-Legendre quadrature of six points, which is exact for the
// polynomials that cubic pieces give. `sign` is 1 for a boundary that adds
// to the region, -1 for one that takes away; the boundary's own direction
// does not matter.
void addBoundary(const std::vector<Piece>& pieces, double sign, XY origin, Moments& m) {
  static constexpr std::array<double, 6> node = {0.033765242898423987, 0.16939530676686776,
                                                 0.38069040695840156,  0.61930959304159849,
                                                 0.83060469323313224,  0.96623475710157603};
  static constexpr std::array<double, 6> weight = {0.085662246189585178, 0.18038078652406930,
                                                   0.23395696728634552,  0.23395696728634552,
                                                   0.18038078652406930,  0.085662246189585178};
  Moments own;
  for (const Piece& piece : pieces) {
    for (std::size_t g = 0; g < node.size(); ++g) {
      const double t = node[g], u = 1.0 - t;
      const double b0 = u * u * u, b1 = 3.0 * u * u * t, b2 = 3.0 * u * t * t, b3 = t * t * t;
      const double d0 = -3.0 * u * u, d1 = 3.0 * u * u - 6.0 * u * t,
                   d2 = 6.0 * u * t - 3.0 * t * t, d3 = 3.0 * t * t;
      const double x =
          b0 * piece[0].x + b1 * piece[1].x + b2 * piece[2].x + b3 * piece[3].x - origin.x;
      const double y =
          b0 * piece[0].y + b1 * piece[1].y + b2 * piece[2].y + b3 * piece[3].y - origin.y;
      const double dx = d0 * piece[0].x + d1 * piece[1].x + d2 * piece[2].x + d3 * piece[3].x;
      const double dy = d0 * piece[0].y + d1 * piece[1].y + d2 * piece[2].y + d3 * piece[3].y;
      const double w = weight[g];
      own.area += w * 0.5 * (x * dy - y * dx);
      own.x += w * 0.5 * x * x * dy;
      own.y -= w * 0.5 * y * y * dx;
      own.xx += w * x * x * x * dy / 3.0;
      own.yy -= w * y * y * y * dx / 3.0;
      own.xy += w * 0.5 * x * x * y * dy;
    }
  }
  const double s = own.area >= 0.0 ? sign : -sign;
  m.area += s * own.area;
  m.x += s * own.x;
  m.y += s * own.y;
  m.xx += s * own.xx;
  m.yy += s * own.yy;
  m.xy += s * own.xy;
}

std::string propertyLine(std::string_view label, double value, std::string_view unit) {
  std::string line = "{NWL{CYA" + std::string(label) + " ";
  line += fmt::repeat(".", 50 - static_cast<int>(label.size()) - 1);
  return line + " : {GRE" + fmt::PE(value, 12, 5) + " {CYA[" + std::string(unit) + "]";
}

}  // namespace

void IQSECP(SectionProperties& props, bool& status) {
  status = false;
  props = SectionProperties{};
  const ProfileData& p = profile();
  ProfilePolylines& lines = sectionLines();
  IQPPOL(MaxCurves, MaxPolylinePoints, lines, status);
  if (status) return;

  // A closed curve inside an odd number of others is a hole.
  Array1<double, MaxCurves> sign{};
  for (int c = 1; c <= lines.curves; ++c) {
    if (!p.PRCLSD(c) || lines.points(c) < 3) continue;
    int depth = 0;
    for (int other = 1; other <= lines.curves; ++other) {
      if (other == c || !p.PRCLSD(other) || lines.points(other) < 3) continue;
      if (inside(lines, other, lines.xy(c, 1))) depth += 1;
    }
    sign(c) = depth % 2 == 0 ? 1.0 : -1.0;
    props.curves += 1;
  }
  if (props.curves == 0) {
    framework::fail("No closed profile curves available!", status);
    return;
  }

  // First moments about the reference point give the centroid; the second
  // moments are summed again about the centroid.
  const XY ref{p.PRREFP(1), p.PRREFP(2)};
  Moments first, central;
  for (int c = 1; c <= lines.curves; ++c) {
    if (sign(c) == 0.0) continue;
    const std::vector<Piece>& pieces = boundaryPieces(c, status);
    if (status) return;
    addBoundary(pieces, sign(c), ref, first);
  }
  if (!(std::fabs(first.area) > 0.0)) {
    framework::fail("The closed profile curves enclose no area!", status);
    return;
  }
  props.area = first.area;
  props.sx = first.y;
  props.sy = first.x;
  props.xc = ref.x + first.x / first.area;
  props.yc = ref.y + first.y / first.area;
  for (int c = 1; c <= lines.curves; ++c) {
    if (sign(c) == 0.0) continue;
    const std::vector<Piece>& pieces = boundaryPieces(c, status);
    if (status) return;
    addBoundary(pieces, sign(c), XY{props.xc, props.yc}, central);
  }
  props.ixx = central.yy;
  props.iyy = central.xx;
  props.ixy = central.xy;
}

void PRSECP(bool& status) {
  status = false;
  const ProfileData& p = profile();
  bool any = false;
  // A closed spline bounds an area from two points on, a polygon from three.
  const int fewest = p.PRFTYP == SplineProfile ? 2 : 3;
  for (int c = 1; c <= p.NPRCRV; ++c) any = any || (p.PRCLSD(c) && p.NPRPNT(c) >= fewest);
  std::string text = "{YEL{UDLSection properties {UDL{NWL";
  if (!any) {
    framework::PRPAGE(text + "{NWL{CYANo closed profile curves available!{NWL");
    return;
  }
  SectionProperties props;
  IQSECP(props, status);
  if (status) return;
  text += propertyLine("Area", props.area, "m2");
  text += propertyLine("X-coordinate of centroid", props.xc, "m");
  text += propertyLine("Y-coordinate of centroid", props.yc, "m");
  text += propertyLine("First moment about reference X-axis", props.sx, "m3");
  text += propertyLine("First moment about reference Y-axis", props.sy, "m3");
  text += propertyLine("Second moment about centroidal X-axis", props.ixx, "m4");
  text += propertyLine("Second moment about centroidal Y-axis", props.iyy, "m4");
  text += propertyLine("Product moment about centroid", props.ixy, "m4");
  framework::PRPAGE(text + "{NWL");
}

}  // namespace kntr::profile
