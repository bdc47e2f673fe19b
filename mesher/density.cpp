#include "mesher/density.h"

#include <algorithm>
#include <cmath>

#include "framework/text.h"
#include "mesher/convex.h"
#include "mesher/halfedge.h"

namespace kntr::mesher {

using framework::fail;

namespace {

// Number of half-edges in the cycle of polygon p; the walk gives up after
// all half-edges of the structure, so a broken cycle cannot hang it.
int cycleLength(const MeshData& m, int p) {
  int count = 0;
  int h = m.PolygonFirst(p);
  do {
    ++count;
    h = m.HalfEdge(h).Next;
  } while (h != m.PolygonFirst(p) && count < m.NumHalfEdges);
  return count;
}

double square(double v) {
  return v * v;
}

// Squared distance from (px, py) to the segment a->b: to the nearer end when
// the point projects beyond the segment, to the line otherwise.
double segmentDistance2(double px, double py, const XY& a, const XY& b) {
  const double dx = b.x - a.x, dy = b.y - a.y;
  const double qx = px - a.x, qy = py - a.y;
  const double along = dx * qx + dy * qy;
  const double length2 = dx * dx + dy * dy;
  if (along <= 0.0 || length2 <= 0.0) return qx * qx + qy * qy;
  if (along >= length2) return square(px - b.x) + square(py - b.y);
  return square(dx * qy - dy * qx) / length2;
}

// Density at an absolute point: 1 over the squared local size.
double densityAt(const MeshData& m, const DensityLists& lists, double limit,
                 DensityFunction density, double px, double py) {
  if (m.UseDensityFunction) return (density ? density : DSFUNC)(px, py);
  double size2 = limit;
  for (int s = 1; s <= lists.NumSources; ++s) {
    const int entry = lists.Sources(s);
    double local;
    if (entry < 0) {
      const XY& v = m.Vertices(-entry);
      local = std::max(0.25 * (square(px - v.x) + square(py - v.y)), lists.VertexSize2(-entry));
    } else {
      const int after =
          (s == lists.NumSources && lists.SourceWrap > 0) ? lists.SourceWrap : entry + 1;
      const XY& a = m.Vertices(lists.EdgeVertex(entry));
      const XY& b = m.Vertices(lists.EdgeVertex(after));
      local = std::max(0.25 * segmentDistance2(px, py, a, b), lists.EdgeSize2(entry));
    }
    size2 = std::min(size2, local);
  }
  return 1.0 / size2;
}

// Mean of the `count` vertices round polygon p.
XY vertexMean(const MeshData& m, int p, int count) {
  const auto& he = m.HalfEdge;
  double cx = 0.0, cy = 0.0;
  int h = m.PolygonFirst(p);
  for (int k = 0; k < count; ++k, h = he(h).Next) {
    cx += m.Vertices(he(h).Vertex).x;
    cy += m.Vertices(he(h).Vertex).y;
  }
  return XY{cx / count, cy / count};
}

// Twice the area of fan triangle i (points i, i + 1 and the centre).
double fanArea2(const SeparatorPoints& pts, int i) {
  return pts.x(i) * pts.y(i + 1) - pts.x(i + 1) * pts.y(i);
}

// Puts the vertices of polygon p into `pts` relative to their mean, with
// extra points on the edges wherever two vertices lie at least `ray` apart
// as seen from the centre, `step` apart at most.
void buildSeparatorPoints(const MeshData& m, int p, double ray, double step, SeparatorPoints& pts) {
  const auto& he = m.HalfEdge;
  const int count = cycleLength(m, p);
  pts.centre = vertexMean(m, p, count);

  // Polar angles of the vertices, made to rise all the way round.
  const XY first = m.Vertices(he(m.PolygonFirst(p)).Vertex);
  const double firstAngle = std::atan2(first.y - pts.centre.y, first.x - pts.centre.x);
  double angle = firstAngle;
  int n = 0;
  int extra = 0;  // at most a full turn of extra points, whatever the rounding
  const int maxExtra = static_cast<int>(2.0 * Pi / step);
  int h = m.PolygonFirst(p);
  for (int k = 0; k < count; ++k, h = he(h).Next) {
    const XY v = m.Vertices(he(h).Vertex);
    const XY w = m.Vertices(he(he(h).Next).Vertex);
    const double vx = v.x - pts.centre.x, vy = v.y - pts.centre.y;
    const double wx = w.x - pts.centre.x, wy = w.y - pts.centre.y;
    pts.x(n) = vx;
    pts.y(n) = vy;
    pts.label(n) = h;
    ++n;
    double nextAngle = k + 1 == count ? firstAngle + 2.0 * Pi : std::atan2(wy, wx);
    while (nextAngle < angle) nextAngle += 2.0 * Pi;
    const double gap = nextAngle - angle;
    if (gap >= ray) {
      const int parts = static_cast<int>(gap / step);
      const double dx = wx - vx, dy = wy - vy;
      for (int s = 1; s < parts && extra < maxExtra; ++s, ++extra) {
        const double phi = angle + s * gap / parts;
        const double c = std::cos(phi), sn = std::sin(phi);
        const double radius = (dy * vx - dx * vy) / (dy * c - dx * sn);
        pts.x(n) = radius * c;
        pts.y(n) = radius * sn;
        pts.label(n) = -h;
        ++n;
      }
    }
    angle = nextAngle;
  }
  pts.n = n;
  pts.x(n) = pts.x(0);
  pts.y(n) = pts.y(0);
}

// Area of polygon p from its vertices, with the coordinates copied to x, y.
double polygonArea(const MeshData& m, int p, View1<double> x, View1<double> y) {
  const int count = cycleLength(m, p);
  int h = m.PolygonFirst(p);
  for (int k = 1; k <= count; ++k, h = m.HalfEdge(h).Next) {
    x(k) = m.Vertices(m.HalfEdge(h).Vertex).x;
    y(k) = m.Vertices(m.HalfEdge(h).Vertex).y;
  }
  return IQCPAR(count, x, y);
}

}  // namespace

double DSFUNC(double, double) {
  return 1.0;
}

void SDCPET(MeshData& m, DensityFunction density, int desiredCount, View1<int> intAux,
            View1<double> realAux, bool& status) {
  status = false;
  const int numPolygons = m.NumPolygons;
  const int intNeed = m.NumHalfEdges + numPolygons + 1;
  if (intNeed > intAux.size()) {
    fail("(SDCPET) Attempt to overflow integer auxiliary vector!", status);
    return;
  }
  const int realNeed = m.UseDensityFunction ? 0 : m.NumHalfEdges + numPolygons + m.NumVertices;
  if (realNeed > realAux.size()) {
    fail("(SDCPET) Attempt to overflow double precision auxiliary vector!", status);
    return;
  }

  // The lists at the low end of both vectors.
  DensityLists lists;
  lists.EdgeStart = carve1(intAux, 1, numPolygons + 1);
  lists.EdgeVertex = carve1(intAux, numPolygons + 2, m.NumHalfEdges);
  if (!m.UseDensityFunction) {
    lists.EdgeSize2 = carve1(realAux, 1, m.NumHalfEdges);
    lists.PolygonWidth2 = carve1(realAux, m.NumHalfEdges + 1, numPolygons);
    lists.VertexSize2 = carve1(realAux, m.NumHalfEdges + numPolygons + 1, m.NumVertices);
  }
  const View1<int> intRoom = intAux.from(intNeed + 1);
  const View1<double> realRoom = realAux.from(realNeed + 1);

  MKCPGM(m, lists, realRoom, status);
  if (status) return;
  SDCPMV(m, lists, density, desiredCount, intRoom, realRoom, status);
  if (status) return;
  if (2 * m.NumPolygons > intAux.size()) {
    fail("(SDCPET) Attempt to overflow integer auxiliary vector!", status);
    return;
  }
  MKCPSZ(m, desiredCount, intAux);
}

void MKCPGM(MeshData& m, DensityLists& lists, View1<double> realRoom, bool& status) {
  status = false;
  const auto& he = m.HalfEdge;
  const double flat = Pi - m.MeshTol;

  // Area and width of each polygon from its true corners; the flat points
  // put into edges would only repeat the shape.
  for (int p = 1; p <= m.NumPolygons; ++p) {
    const int count = cycleLength(m, p);
    int corners = 0;
    int h = m.PolygonFirst(p);
    for (int k = 0; k < count; ++k, h = he(h).Next) {
      if (m.CornerAngle(h) < flat) ++corners;
    }
    if (2 * corners > realRoom.size()) {
      fail("() error 7", status);
      return;
    }
    const View1<double> x = carve1(realRoom, 1, corners);
    const View1<double> y = carve1(realRoom, corners + 1, corners);
    int c = 0;
    h = m.PolygonFirst(p);
    for (int k = 0; k < count; ++k, h = he(h).Next) {
      if (m.CornerAngle(h) >= flat) continue;
      ++c;
      x(c) = m.Vertices(he(h).Vertex).x;
      y(c) = m.Vertices(he(h).Vertex).y;
    }
    m.PolygonArea(p) = IQCPAR(corners, x, y);
    if (!m.UseDensityFunction) {
      int a = 0, b = 0;
      IDSQCP(corners, x, y, a, b, lists.PolygonWidth2(p), status);
      if (status) return;
    }
  }

  // The boundary edges of each polygon in walking order, and their local
  // sizes: no larger than the edge itself or the width on either side.
  int position = 0;
  for (int p = 1; p <= m.NumPolygons; ++p) {
    lists.EdgeStart(p) = position + 1;
    const int count = cycleLength(m, p);
    int h = m.PolygonFirst(p);
    for (int k = 0; k < count && position < lists.EdgeVertex.size(); ++k, h = he(h).Next) {
      ++position;
      lists.EdgeVertex(position) = he(h).Vertex;
      if (m.UseDensityFunction) continue;
      const XY& a = m.Vertices(he(h).Vertex);
      const XY& b = m.Vertices(he(he(h).Next).Vertex);
      double size2 = std::min(square(b.x - a.x) + square(b.y - a.y), lists.PolygonWidth2(p));
      if (he(h).Twin > 0) size2 = std::min(size2, lists.PolygonWidth2(he(he(h).Twin).Polygon));
      lists.EdgeSize2(position) = size2;
    }
  }
  lists.EdgeStart(m.NumPolygons + 1) = position + 1;
  if (m.UseDensityFunction) return;

  // Each vertex takes the least size of the edges that meet there.
  for (int v = 1; v <= lists.VertexSize2.size(); ++v) lists.VertexSize2(v) = 0.0;
  for (int p = 1; p <= m.NumPolygons; ++p) {
    const int first = lists.EdgeStart(p), last = lists.EdgeStart(p + 1) - 1;
    for (int k = first; k <= last; ++k) {
      const int before = k == first ? last : k - 1;
      const int v = lists.EdgeVertex(k);
      double size2 = std::min(lists.EdgeSize2(k), lists.EdgeSize2(before));
      if (lists.VertexSize2(v) != 0.0) size2 = std::min(size2, lists.VertexSize2(v));
      lists.VertexSize2(v) = size2;
    }
  }
}

void IQCPSP(int p, double limit, DensityLists& lists) {
  const int first = lists.EdgeStart(p), last = lists.EdgeStart(p + 1) - 1;
  int count = 0;
  int previous = last;
  for (int k = first; k <= last; ++k) {
    const int v = lists.EdgeVertex(k);
    if (lists.VertexSize2(v) < std::min(lists.EdgeSize2(k), lists.EdgeSize2(previous))) {
      lists.Sources(++count) = -v;
    }
    if (lists.EdgeSize2(k) < limit) lists.Sources(++count) = k;
    previous = k;
  }
  lists.NumSources = count;
  lists.SourceWrap = (count > 0 && lists.Sources(count) == last) ? first : 0;
}

void IQDNST(const MeshData& m, const DensityLists& lists, double limit, DensityFunction density,
            const SeparatorPoints& points, double& integral, double& mean, double& spread) {
  constexpr double major = 2.0 / 3.0, minor = 1.0 / 6.0;
  double sum1 = 0.0, sum2 = 0.0, area = 0.0;
  for (int i = 0; i < points.n; ++i) {
    const double fan = 0.5 * fanArea2(points, i);
    const double xi = points.x(i), yi = points.y(i);
    const double xj = points.x(i + 1), yj = points.y(i + 1);
    // Sample points between the centre of the triangle and its corners.
    const double sx[3] = {major * xi + minor * xj, minor * xi + major * xj, minor * (xi + xj)};
    const double sy[3] = {major * yi + minor * yj, minor * yi + major * yj, minor * (yi + yj)};
    double d1 = 0.0, d2 = 0.0;
    for (int s = 0; s < 3; ++s) {
      const double d =
          densityAt(m, lists, limit, density, sx[s] + points.centre.x, sy[s] + points.centre.y);
      d1 += d / 3.0;
      d2 += d * d / 3.0;
    }
    points.means(i) = d1;
    sum1 += d1 * fan;
    sum2 += d2 * fan;
    area += fan;
  }
  integral = sum1;
  mean = sum1 / area;
  spread = std::sqrt(std::max(0.0, sum2 / area - mean * mean));
}

void SDCPMV(MeshData& m, DensityLists& lists, DensityFunction density, int desiredCount,
            View1<int> intRoom, View1<double> realRoom, bool& status) {
  status = false;
  const int original = m.NumPolygons;
  int largest = 0;
  for (int p = 1; p <= original; ++p) largest = std::max(largest, cycleLength(m, p));
  if (!m.UseDensityFunction && 2 * largest > intRoom.size()) {
    fail("(SDCPMV) Insufficient space in integer auxiliary vector!", status);
    return;
  }
  if (3 * largest + original + 2 > realRoom.size()) {
    fail("(SDCPMV) Insufficient space in double precision auxiliary vector!", status);
    return;
  }
  lists.Sources = intRoom;
  lists.NumSources = 0;
  lists.SourceWrap = 0;

  // Mean density and spread of each polygon.
  const View1<double> spread = carve1(realRoom, 1, original);
  SeparatorPoints pts;
  pts.x = carve0(realRoom, original + 1, largest + 1);
  pts.y = carve0(realRoom, original + largest + 2, largest + 1);
  pts.means = carve0(realRoom, original + 2 * largest + 3, largest);
  double totalArea = 0.0, totalIntegral = 0.0;
  for (int p = 1; p <= original; ++p) {
    const double limit = m.UseDensityFunction ? 0.0 : lists.PolygonWidth2(p);
    if (!m.UseDensityFunction) IQCPSP(p, limit, lists);
    double integral = 0.0, mean = 0.0, sd = 0.0;
    if (lists.NumSources > 0 || m.UseDensityFunction) {
      // The vertices alone around their mean; no extra points are needed.
      const auto& he = m.HalfEdge;
      const int count = cycleLength(m, p);
      pts.centre = vertexMean(m, p, count);
      int h = m.PolygonFirst(p);
      for (int k = 0; k < count; ++k, h = he(h).Next) {
        pts.x(k) = m.Vertices(he(h).Vertex).x - pts.centre.x;
        pts.y(k) = m.Vertices(he(h).Vertex).y - pts.centre.y;
      }
      pts.n = count;
      pts.x(count) = pts.x(0);
      pts.y(count) = pts.y(0);
      IQDNST(m, lists, limit, density, pts, integral, mean, sd);
    } else {
      mean = 1.0 / limit;
      integral = mean * m.PolygonArea(p);
    }
    m.PolygonDensity(p) = mean;
    spread(p) = sd;
    totalArea += m.PolygonArea(p);
    totalIntegral += integral;
  }

  // Normalise so that the density integrates to 1 over the region, part
  // local and part even.
  const double scale =
      m.UseDensityFunction ? 1.0 / totalIntegral : (1.0 - m.UniformShare) / totalIntegral;
  const double offset = m.UseDensityFunction ? 0.0 : m.UniformShare / totalArea;
  auto tooUneven = [&](double d, double sd, double area) {
    return scale * sd > d * m.DensitySpread && desiredCount * d * area > m.MinPolygonTriangles;
  };
  for (int p = 1; p <= original; ++p) {
    const double d = m.PolygonDensity(p) * scale + offset;
    m.PolygonDensity(p) = tooUneven(d, spread(p), m.PolygonArea(p)) ? -d : d;
  }

  // Split each marked polygon, and the parts split off it, until none is
  // marked any more. The sources stay those of the original polygon.
  const double ray = 2.0 * m.SeparatorAngle;
  for (int i = 1; i <= original; ++i) {
    if (m.PolygonDensity(i) >= 0.0) continue;
    if (!m.UseDensityFunction) IQCPSP(i, lists.PolygonWidth2(i), lists);
    const double limit = m.UseDensityFunction ? 0.0 : lists.PolygonWidth2(i);
    int next = m.NumPolygons + 1;
    int j = i;
    for (;;) {
      while (m.PolygonDensity(j) < 0.0) {
        const int count = cycleLength(m, j);
        const int points = count + 12;
        if (points + lists.NumSources + 1 > intRoom.size()) {
          fail("(SDCPMV) Insufficient space in integer auxiliary vector!", status);
          return;
        }
        const int realUsed = 3 * points + 2;
        if (realUsed > realRoom.size()) {
          fail("(SDCPMV) Insufficient space in double precision auxiliary vector!", status);
          return;
        }
        SeparatorPoints around;
        around.x = carve0(realRoom, 1, points + 1);
        around.y = carve0(realRoom, points + 2, points + 1);
        around.means = carve0(realRoom, 2 * points + 3, points);
        around.label = carve0(intRoom, lists.NumSources + 1, points + 1);
        buildSeparatorPoints(m, j, ray, m.SeparatorAngle, around);

        double integral = 0.0, mean = 0.0, sd = 0.0;
        IQDNST(m, lists, limit, density, around, integral, mean, sd);
        const double d = mean * scale + offset;
        m.PolygonDensity(j) = d;
        if (!tooUneven(d, sd, m.PolygonArea(j))) break;

        int a = -1, b = -1;
        SLDNSP(m, around, mean, a, b);
        if (a < 0) {
          if (realUsed + 3 * around.n > realRoom.size()) {
            fail("(SDCPMV) Insufficient space in double precision auxiliary vector!", status);
            return;
          }
          SLDMSP(m, around, realRoom.from(realUsed + 1), a, b, status);
          if (status) return;
        }
        if (a < 0) {
          fail("(SDCPMV) Could not locate separator within given angular tolerance!", status);
          return;
        }

        // The separator's ends become vertices where they lie inside edges.
        int ends[2] = {a, b};
        int halfEdges[2] = {0, 0};
        for (int e = 0; e < 2; ++e) {
          const int label = around.label(ends[e]);
          if (label > 0) {
            halfEdges[e] = label;
            continue;
          }
          INSVTX(m, around.x(ends[e]) + around.centre.x, around.y(ends[e]) + around.centre.y,
                 -label, halfEdges[e], status);
          if (status) return;
        }
        INSEDG(m, halfEdges[0], halfEdges[1], status);
        if (status) return;

        const double before = m.PolygonArea(j);
        const int added = m.NumPolygons;
        const int cycle = cycleLength(m, j);
        m.PolygonArea(j) =
            polygonArea(m, j, carve1(realRoom, 1, cycle), carve1(realRoom, cycle + 1, cycle));
        m.PolygonArea(added) = before - m.PolygonArea(j);
        m.PolygonDensity(j) = -d;
        m.PolygonDensity(added) = -d;
      }
      if (next > m.NumPolygons) break;
      j = next++;
    }
  }
}

void SLDNSP(const MeshData& m, const SeparatorPoints& points, double mean, int& a, int& b) {
  a = -1;
  b = -1;
  const int n = points.n;
  if (n < 3) return;
  auto before = [n](int k) { return k == 0 ? n - 1 : k - 1; };
  auto after = [n](int k) { return k == n - 1 ? 0 : k + 1; };

  double area2 = 0.0;
  int densest = 0;
  for (int i = 0; i < n; ++i) {
    area2 += fanArea2(points, i);
    if (points.means(i) > points.means(densest)) densest = i;
  }
  const double area = 0.5 * area2;

  // Grow the sector to the denser side while it stays above the mean and
  // covers no more than half the polygon.
  double swept = fanArea2(points, densest);
  int p = before(densest), q = after(densest);
  for (int size = 1; size < n - 1; ++size) {
    const bool takeP = points.means(p) >= points.means(q);
    const int t = takeP ? p : q;
    if (points.means(t) < mean) break;
    if (swept + fanArea2(points, t) > area) break;
    swept += fanArea2(points, t);
    if (takeP) {
      p = before(p);
    } else {
      q = after(q);
    }
  }

  // The sector runs from point p to point q.
  p = after(p);
  if (IQANGL(points.x(p), points.y(p), 0.0, 0.0, points.x(q), points.y(q)) > Pi) std::swap(p, q);
  const int candidatesA[2] = {p, before(p)};
  const int candidatesB[2] = {q, after(q)};
  SLSPPR(m, points, candidatesA, candidatesB, a, b);
}

void SLDMSP(const MeshData& m, const SeparatorPoints& points, View1<double> realRoom, int& a,
            int& b, bool& status) {
  status = false;
  a = -1;
  b = -1;
  const int n = points.n;
  const double flat = Pi - m.MeshTol;
  int corners = 0;
  for (int i = 0; i < n; ++i) {
    if (points.label(i) > 0 && m.CornerAngle(points.label(i)) < flat) ++corners;
  }
  const View1<double> x = carve1(realRoom, 1, corners);
  const View1<double> y = carve1(realRoom, corners + 1, corners);
  int c = 0;
  for (int i = 0; i < n; ++i) {
    if (points.label(i) > 0 && m.CornerAngle(points.label(i)) < flat) {
      ++c;
      x(c) = points.x(i);
      y(c) = points.y(i);
    }
  }
  int first = 0, second = 0;
  double diameter2 = 0.0;
  DSQCPG(corners, x, y, first, second, diameter2, status);
  if (status || corners < 3) return;

  // The side of each point relative to the perpendicular bisector.
  const double dx = x(second) - x(first), dy = y(second) - y(first);
  const double mx = 0.5 * (x(first) + x(second)), my = 0.5 * (y(first) + y(second));
  auto side = [&](int i) { return dx * (points.x(i) - mx) + dy * (points.y(i) - my); };
  auto find = [&](double px, double py) {
    for (int i = 0; i < n; ++i) {
      if (points.x(i) == px && points.y(i) == py) return i;
    }
    return -1;
  };
  const int from = find(x(first), y(first));
  const int to = find(x(second), y(second));
  if (from < 0 || to < 0) return;
  auto after = [n](int k) { return k == n - 1 ? 0 : k + 1; };
  auto before = [n](int k) { return k == 0 ? n - 1 : k - 1; };
  int ia = from;
  for (int steps = 0; steps < n && side(ia) < 0.0; ++steps) ia = after(ia);
  int ib = to;
  for (int steps = 0; steps < n && side(ib) > 0.0; ++steps) ib = after(ib);
  const int candidatesA[2] = {ia, before(ia)};
  const int candidatesB[2] = {ib, before(ib)};
  SLSPPR(m, points, candidatesA, candidatesB, a, b);
}

void SLSPPR(const MeshData& m, const SeparatorPoints& points, const int (&candidatesA)[2],
            const int (&candidatesB)[2], int& a, int& b) {
  a = -1;
  b = -1;
  auto corner = [&](int c) { return points.label(c) > 0 ? m.CornerAngle(points.label(c)) : Pi; };
  double best = -1.0;
  for (const int ca : candidatesA) {
    for (const int cb : candidatesB) {
      if (ca == cb) continue;
      const double t1 = IQANGL(points.x(cb), points.y(cb), points.x(ca), points.y(ca),
                               points.x(ca + 1), points.y(ca + 1));
      const double t2 = IQANGL(points.x(ca), points.y(ca), points.x(cb), points.y(cb),
                               points.x(cb + 1), points.y(cb + 1));
      const double value = std::min({t1, corner(ca) - t1, t2, corner(cb) - t2});
      if (value > best) {
        best = value;
        a = ca;
        b = cb;
      }
    }
  }
  if (best < m.MinSeparatorAngle) {
    a = -1;
    b = -1;
  }
}

void MKCPSZ(MeshData& m, int desiredCount, View1<int> intRoom) {
  const int n = m.NumPolygons;
  const View1<int> heap = carve1(intRoom, 1, n);
  const View1<int> place = carve1(intRoom, n + 1, n);
  auto& density = m.PolygonDensity;
  // Larger density first; of equal densities the lower polygon number.
  auto above = [&](int p, int q) {
    return density(p) > density(q) || (density(p) == density(q) && p < q);
  };
  auto put = [&](int slot, int p) {
    heap(slot) = p;
    place(p) = slot;
  };
  auto rise = [&](int slot) {
    const int p = heap(slot);
    while (slot > 1 && above(p, heap(slot / 2))) {
      put(slot, heap(slot / 2));
      slot /= 2;
    }
    put(slot, p);
  };
  auto sink = [&](int slot, int size) {
    const int p = heap(slot);
    for (;;) {
      int child = 2 * slot;
      if (child > size) break;
      if (child < size && above(heap(child + 1), heap(child))) ++child;
      if (!above(heap(child), p)) break;
      put(slot, heap(child));
      slot = child;
    }
    put(slot, p);
  };

  for (int p = 1; p <= n; ++p) {
    put(p, p);
    rise(p);
  }

  // Take the densest polygon out and lift its neighbours to a quarter of
  // its density, until one is left.
  int size = n;
  while (size > 1) {
    const int t = heap(1);
    place(t) = 0;
    put(1, heap(size));
    --size;
    sink(1, size);
    const int start = m.PolygonFirst(t);
    int h = start;
    int guard = 0;
    do {
      const int twin = m.HalfEdge(h).Twin;
      if (twin > 0) {
        const int p = m.HalfEdge(twin).Polygon;
        if (density(p) < m.GradingShare * density(t) && place(p) > 0) {
          density(p) = m.GradingShare * density(t);
          rise(place(p));
        }
      }
      h = m.HalfEdge(h).Next;
    } while (h != start && ++guard < m.NumHalfEdges);
  }

  // Sizes: desiredCount triangles of area h^2 / 2 fill the region at the
  // density of each polygon.
  double total = 0.0;
  for (int p = 1; p <= n; ++p) total += density(p) * m.PolygonArea(p);
  for (int p = 1; p <= n; ++p) {
    const double d = density(p) / total;
    m.PolygonSize(p) = std::sqrt((2.0 / desiredCount) / d);
  }
}

}  // namespace kntr::mesher
