#include "mesher/halfedge.h"

#include <algorithm>
#include <cmath>

#include "framework/text.h"

namespace kntr::mesher {

MeshLayout& meshLayout() {
  static MeshLayout layout;
  return layout;
}

MeshData& meshData() {
  static MeshData data;
  return data;
}

double IQANGL(double ax, double ay, double bx, double by, double cx, double cy) {
  const double toA = std::atan2(ay - by, ax - bx);
  const double toC = std::atan2(cy - by, cx - bx);
  double angle = toA - toC;
  if (angle < 0.0) angle += 2.0 * Pi;
  if (angle >= 2.0 * Pi) angle -= 2.0 * Pi;
  return angle;
}

int IQSIDE(double px, double py, double ax, double ay, double bx, double by, double dv) {
  const double dx = bx - ax;
  const double dy = by - ay;
  const double qx = px - ax;
  const double qy = py - ay;
  double value = dy * qx - dx * qy;
  if (dv != 0.0) value += dv * std::hypot(dx, dy);
  const double scale = std::max({std::fabs(dx), std::fabs(dy), std::fabs(qx), std::fabs(qy),
                                 std::fabs(dv)});
  if (std::fabs(value) <= meshTolerance() * scale) return 0;
  return value > 0.0 ? 1 : -1;
}

void IQSGIN(bool ray, double p1x, double p1y, double p2x, double p2y, double q1x, double q1y,
            double q2x, double q2y, double& x, double& y, bool& found, bool& status) {
  status = false;
  found = false;
  const double tol = meshTolerance();
  const double dx = p2x - p1x, dy = p2y - p1y;
  const double ex = q2x - q1x, ey = q2y - q1y;
  const double scale = tol * std::max({std::fabs(dx), std::fabs(dy), std::fabs(ex), std::fabs(ey)});
  const double cross = dy * ex - dx * ey;
  if (std::fabs(cross) <= scale) return;
  // p1 + t d = q1 + s e; crossing both sides with d gives s.
  const double s = ((p1x - q1x) * dy - (p1y - q1y) * dx) / (ex * dy - ey * dx);
  if (s < -tol || s > 1.0 + tol) return;
  const double hx = q1x + s * ex;
  const double hy = q1y + s * ey;
  const double t = std::fabs(dx) >= std::fabs(dy) ? (hx - p1x) / dx : (hy - p1y) / dy;
  if (t < -tol) return;
  if (!ray && t > 1.0 + tol) return;
  x = hx;
  y = hy;
  found = true;
}

int linkHalfEdges(MeshData& m, int a, int b, int polygon) {
  auto& he = m.HalfEdge;
  const int e1 = m.NumHalfEdges + 1;
  const int e2 = m.NumHalfEdges + 2;
  m.NumHalfEdges += 2;
  he(e1) = HalfEdgeRow{he(a).Vertex, polygon, he(a).Next, he(a).Twin};
  he(e2) = HalfEdgeRow{he(b).Vertex, polygon, he(b).Next, he(b).Twin};
  he(a).Next = e2;
  he(b).Next = e1;
  he(a).Twin = b;
  he(b).Twin = a;
  if (he(e1).Twin > 0) he(he(e1).Twin).Twin = e1;
  if (he(e2).Twin > 0) he(he(e2).Twin).Twin = e2;

  auto vertex = [&](int h) { return m.Vertices(he(h).Vertex); };
  const XY va = vertex(a), vb = vertex(b);
  const XY afterE1 = vertex(he(e1).Next);
  const XY afterE2 = vertex(he(e2).Next);
  m.CornerAngle(e1) = IQANGL(vb.x, vb.y, va.x, va.y, afterE1.x, afterE1.y);
  m.CornerAngle(a) -= m.CornerAngle(e1);
  m.CornerAngle(e2) = IQANGL(va.x, va.y, vb.x, vb.y, afterE2.x, afterE2.y);
  m.CornerAngle(b) -= m.CornerAngle(e2);
  return e1;
}

void INSEDG(MeshData& m, int a, int b, bool& status) {
  status = false;
  if (m.NumPolygons >= MaxSubPolygons) {
    framework::fail("(INSEDG) Max number of polygons exceeded!", status);
    return;
  }
  if (m.NumHalfEdges + 2 > MaxHalfEdges) {
    framework::fail("(INSEDG) Max number of polygon vertices exceeded!", status);
    return;
  }
  auto& he = m.HalfEdge;
  const int oldPolygon = he(a).Polygon;
  const int e1 = linkHalfEdges(m, a, b, oldPolygon);

  // The cycle through e1 is the new polygon.
  m.NumPolygons += 1;
  const int newPolygon = m.NumPolygons;
  int h = e1;
  do {
    he(h).Polygon = newPolygon;
    h = he(h).Next;
  } while (h != e1);
  m.PolygonFirst(oldPolygon) = a;
  m.PolygonFirst(newPolygon) = e1;
  m.PolygonRegion(newPolygon) = m.PolygonRegion(oldPolygon);
}

void INSVTX(MeshData& m, double x, double y, int edge, int& added, bool& status) {
  status = false;
  added = 0;
  if (m.NumVertices >= m.Vertices.size()) {
    framework::fail("(INSVTX) Max number of vertices exceeded!", status);
    return;
  }
  if (m.NumHalfEdges + 2 > MaxHalfEdges) {
    framework::fail("(INSVTX) Max number of polygon vertices exceeded!", status);
    return;
  }
  auto& he = m.HalfEdge;
  m.NumVertices += 1;
  const int v = m.NumVertices;
  m.Vertices(v) = XY{x, y};

  const int n = m.NumHalfEdges + 1;
  m.NumHalfEdges += 1;
  const int twin = he(edge).Twin;
  he(n) = HalfEdgeRow{v, he(edge).Polygon, he(edge).Next, twin};
  he(edge).Next = n;
  m.CornerAngle(n) = Pi;

  if (twin > 0) {
    const int mm = m.NumHalfEdges + 1;
    m.NumHalfEdges += 1;
    he(mm) = HalfEdgeRow{v, he(twin).Polygon, he(twin).Next, edge};
    he(twin).Next = mm;
    he(edge).Twin = mm;
    he(twin).Twin = n;
    m.CornerAngle(mm) = Pi;
  }
  added = n;
}

}  // namespace kntr::mesher
