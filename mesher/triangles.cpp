#include "mesher/triangles.h"

#include <algorithm>
#include <cmath>

#include "framework/text.h"
#include "mesher/convex.h"
#include "mesher/halfedge.h"
#include "mesher/strip.h"

namespace kntr::mesher {

using framework::fail;

namespace {

// True when a count of `quotient` items fits into `room`; never for a
// quotient that is not a number.
bool fits(double quotient, int room) {
  return quotient < static_cast<double>(room);
}

// The half-edges of polygon p in walking order, bounded by the structure's
// size so that a broken cycle cannot hang the walk.
template <class Visit>
void forEachHalfEdge(const MeshData& m, int p, Visit visit) {
  const int first = m.PolygonFirst(p);
  int h = first;
  int guard = 0;
  do {
    visit(h);
    h = m.HalfEdge(h).Next;
  } while (h != first && ++guard < m.NumHalfEdges);
}

}  // namespace

void MKCPBM(MeshData& m, bool& status) {
  status = false;
  const auto& he = m.HalfEdge;
  for (int e = 1; e <= m.NumHalfEdges; ++e) m.EdgePointStart(e) = -1;
  for (int p = 1; p <= m.NumPolygons; ++p) {
    bool failed = false;
    forEachHalfEdge(m, p, [&](int e) {
      if (failed || m.EdgePointStart(e) != -1) return;
      const XY from = m.Vertices(he(e).Vertex);
      const XY to = m.Vertices(he(he(e).Next).Vertex);
      const double length = std::hypot(to.x - from.x, to.y - from.y);
      const int twin = he(e).Twin;
      const double size = twin > 0 ? std::sqrt(m.PolygonSize(p) * m.PolygonSize(he(twin).Polygon))
                                   : m.PolygonSize(p);
      const double ratio = length / size;
      if (!fits(ratio, m.Vertices.size() - m.NumVertices + 2)) {
        fail("(MKCPBM) Max allowed number of vertices exceeded!", status);
        failed = true;
        return;
      }
      int segments = static_cast<int>(ratio);
      const double rest = ratio - segments;
      if (rest > static_cast<double>(segments) / (2.0 * segments + 1.0)) ++segments;

      int start = 0, count = 0;
      if (segments >= 2) {
        count = segments - 1;
        if (m.NumVertices + count > m.Vertices.size()) {
          fail("(MKCPBM) Max allowed number of vertices exceeded!", status);
          failed = true;
          return;
        }
        start = m.NumVertices + 1;
        for (int s = 1; s <= count; ++s) {
          const double t = static_cast<double>(s) / segments;
          m.Vertices(m.NumVertices + s) =
              XY{from.x + t * (to.x - from.x), from.y + t * (to.y - from.y)};
        }
        m.NumVertices += count;
      }
      m.EdgePointStart(e) = start;
      m.EdgePointCount(e) = count;
      if (twin > 0) {
        m.EdgePointStart(twin) = start;
        m.EdgePointCount(twin) = -count;
      }
    });
    if (failed) return;
  }
}

void TRMSCP(MeshData& m, View1<Triangle> triangles, int& numTriangles, View1<int> intAux,
            View1<double> realAux, bool& status) {
  status = false;
  numTriangles = 0;
  const double limit = Pi - m.MeshTol;
  MKCPBM(m, status);
  if (status) return;
  const auto& he = m.HalfEdge;
  for (int p = 1; p <= m.NumPolygons; ++p) {
    int corners = 0, boundary = 0;
    forEachHalfEdge(m, p, [&](int e) {
      if (m.CornerAngle(e) < limit) ++corners;
      boundary += 1 + std::abs(m.EdgePointCount(e));
    });
    if (boundary + 1 > intAux.size()) {
      fail("(TRMSCP) Attempt to overflow integer auxiliary vector!", status);
      return;
    }
    if (2 * corners + 2 > realAux.size()) {
      fail("(TRMSCP) Attempt to overflow double precision auxiliary vector!", status);
      return;
    }
    const View0<double> cornerX = carve0(realAux, 1, corners + 1);
    const View0<double> cornerY = carve0(realAux, corners + 2, corners + 1);
    const View0<int> list = carve0(intAux, 1, boundary + 1);

    // The true corners, and every vertex of the boundary with the points on
    // its edges, each list closed by its first entry.
    int c = 0, b = 0;
    forEachHalfEdge(m, p, [&](int e) {
      const XY v = m.Vertices(he(e).Vertex);
      if (m.CornerAngle(e) < limit) {
        cornerX(c) = v.x;
        cornerY(c) = v.y;
        ++c;
      }
      list(b++) = he(e).Vertex;
      const int count = m.EdgePointCount(e);
      const int start = m.EdgePointStart(e);
      if (count > 0) {
        for (int s = 0; s < count; ++s) list(b++) = start + s;
      } else {
        for (int s = -count - 1; s >= 0; --s) list(b++) = start + s;
      }
    });
    cornerX(corners) = cornerX(0);
    cornerY(corners) = cornerY(0);
    list(boundary) = list(0);

    m.PolygonTriangleStart(p) = numTriangles + 1;
    TRDLCP(corners, cornerX, cornerY, m.PolygonSize(p), boundary, list, m.NumVertices, m.Vertices,
           numTriangles, triangles, intAux.from(boundary + 2), realAux.from(2 * corners + 3),
           status);
    if (status) return;
  }
}

void TRDLCP(int numCorners, View0<const double> cornerX, View0<const double> cornerY, double h,
            int numBoundary, View0<int> boundary, int& numVertices, View1<XY> vertices,
            int& numTriangles, View1<Triangle> triangles, View1<int> intRoom,
            View1<double> realRoom, bool& status) {
  status = false;
  const char* const intMessage = "(TRDLCP) Attempt to overflow integer auxiliary vector!";
  if (numCorners + 1 > intRoom.size()) {
    fail(intMessage, status);
    return;
  }
  if (3 * numCorners + 2 > realRoom.size()) {
    fail("(TRDLCP) Attempt to overflow double precision auxiliary vector!", status);
    return;
  }
  const View0<double> offsets = carve0(realRoom, 1, numCorners);
  const View0<double> shrunkX = carve0(realRoom, numCorners + 1, numCorners + 1);
  const View0<double> shrunkY = carve0(realRoom, 2 * numCorners + 2, numCorners + 1);
  // Staggered rows stand closer to one another, and so nearer the boundary.
  const bool staggered = meshData().StaggeredRows;
  const double inset = staggered ? StaggeredInset * h : h / 1.4142135623730951;
  for (int i = 0; i < numCorners; ++i) offsets(i) = inset;
  int shrunk = 0;
  SHRNCP(numCorners, cornerX, cornerY, offsets, shrunk, shrunkX, shrunkY,
         carve0(intRoom, 1, numCorners + 1), status);
  if (status) return;

  const bool ring = shrunk > 0;
  int count = 0, numA = 0, numB = 0, taken = 0;
  View0<const int> listA, listB;
  if (ring) {
    // Rows of points in the shrunk polygon, its diameter upright.
    int a = 0, b = 0, bottom = 0;
    double diameter2 = 0.0, cos = 1.0, sin = 0.0;
    DSQCPG(shrunk, cyclic(View0<const double>(shrunkX), shrunk),
           cyclic(View0<const double>(shrunkY), shrunk), a, b, diameter2, status);
    if (status) return;
    RTCPDM(shrunk, shrunkX, shrunkY, a, b, bottom, cos, sin);
    const double levels = (shrunkY(0) - shrunkY(bottom)) / (staggered ? StaggeredRowStep * h : h);
    const int walkRoom = fits(levels, intRoom.size() / 6) ? 6 * (static_cast<int>(levels) + 1) : 0;
    if (walkRoom == 0 || walkRoom + 1 > intRoom.size()) {
      fail(intMessage, status);
      return;
    }
    const View0<int> walk = carve0(intRoom, 1, walkRoom + 1);
    int walkLength = 0;
    TRQUCP(shrunk, shrunkX, shrunkY, h, bottom, cos, sin, numVertices, vertices, numTriangles,
           triangles, walk, walkLength, status);
    if (status) return;
    taken = walkLength + 1;

    // Start the boundary at its point nearest the walk's start, above the
    // top row when there are rows below it.
    const XY w = vertices(walk(0));
    const double level = sin * w.x + cos * w.y;
    int nearest = 0;
    double best = 100000.0 * h * h;
    for (int k = 0; k < numBoundary; ++k) {
      const XY v = vertices(boundary(k));
      if (walkLength > 0 && sin * v.x + cos * v.y <= level) continue;
      const double d2 = (v.x - w.x) * (v.x - w.x) + (v.y - w.y) * (v.y - w.y);
      if (d2 < best) {
        best = d2;
        nearest = k;
      }
    }
    std::rotate(boundary.data(), boundary.data() + nearest, boundary.data() + numBoundary);
    boundary(numBoundary) = boundary(0);
    count = walkLength + numBoundary;
    listA = boundary;
    listB = walk;
    numA = numBoundary;
    numB = walkLength;
  } else {
    // Too thin for rows: two chains of the boundary between the ends of the
    // diameter.
    int a = 0, b = 0;
    double diameter2 = 0.0;
    DSQCPG(numCorners, cyclic(cornerX, numCorners), cyclic(cornerY, numCorners), a, b, diameter2,
           status);
    if (status) return;
    auto find = [&](double x, double y) {
      for (int k = 0; k < numBoundary; ++k) {
        const XY v = vertices(boundary(k));
        if (v.x == x && v.y == y) return k;
      }
      return 0;
    };
    const int first = find(cornerX(a), cornerY(a));
    std::rotate(boundary.data(), boundary.data() + first, boundary.data() + numBoundary);
    boundary(numBoundary) = boundary(0);
    const int e = find(cornerX(b), cornerY(b));
    count = numBoundary - 2;
    numA = e;
    numB = numBoundary - e;
    taken = numB + 1;
    listA = boundary;
  }

  if (count + numTriangles > triangles.size()) {
    fail("(TRDLCP) Max number of mesh triangles exceeded!", status);
    return;
  }
  if (4 * count + taken > intRoom.size()) {
    fail(intMessage, status);
    return;
  }
  if (!ring) {
    // The second chain walks the rest of the boundary backward, from the
    // first end of the diameter to the other.
    const View0<int> chain = carve0(intRoom, 1, numB + 1);
    chain(0) = boundary(0);
    for (int k = 1; k < numB; ++k) chain(k) = boundary(numBoundary - k);
    chain(numB) = boundary(numA);
    listB = chain;
  }
  const StripSides sides(carve1(intRoom, taken + 1, 3 * count));
  const View1<int> swapStack = carve1(intRoom, taken + 3 * count + 1, count);
  const View1<Triangle> strip = triangles.from(numTriangles + 1);
  MRGTRI(ring, count, numA, numB, listA, listB, vertices, strip, sides, status);
  if (status) return;
  SWTRSP(ring, count, vertices, strip, sides, swapStack, status);
  if (status) return;
  numTriangles += count;
}

bool IQOFIN(double p1x, double p1y, double p2x, double p2y, double offset1, double q1x, double q1y,
            double q2x, double q2y, double offset2, double& x, double& y) {
  const double a = p2y - p1y, b = p1x - p2x;
  const double c = q2y - q1y, d = q1x - q2x;
  const double det = a * d - c * b;
  const double scale = std::max({std::fabs(a), std::fabs(b), std::fabs(c), std::fabs(d)});
  if (std::fabs(det) <= meshTolerance() * scale) return false;
  const double r = a * p1x + b * p1y - offset1 * std::sqrt(a * a + b * b);
  const double s = c * q1x + d * q1y - offset2 * std::sqrt(c * c + d * d);
  x = (r * d - s * b) / det;
  y = (s * a - r * c) / det;
  return true;
}

void SHRNCP(int n, View0<const double> x, View0<const double> y, View0<const double> offsets,
            int& m, View0<double> shrunkX, View0<double> shrunkY, View0<int> edges, bool& status) {
  status = false;
  m = 0;
  if (n < 3) return;
  const double tol = meshTolerance();
  auto& ox = shrunkX;
  auto& oy = shrunkY;
  auto& e = edges;
  auto meet = [&](int i, int j, int into) {
    double px = 0.0, py = 0.0;
    if (!IQOFIN(x(i), y(i), x(i + 1), y(i + 1), offsets(i), x(j), y(j), x(j + 1), y(j + 1),
                offsets(j), px, py)) {
      framework::fail("(SHRNCP) Encountered parallel edges when intersecting !", status);
      return false;
    }
    ox(into) = px;
    oy(into) = py;
    return true;
  };
  auto side = [&](int k, int i) {
    return IQSIDE(ox(k), oy(k), x(i), y(i), x(i + 1), y(i + 1), offsets(i));
  };
  auto angle = [&](int i) { return std::atan2(y(i + 1) - y(i), x(i + 1) - x(i)); };
  const double base = angle(0);

  // Growing: the edges that turn by up to pi from the first cut the chain of
  // intersection points from its far end.
  if (!meet(0, 1, 1)) return;
  e(0) = 0;
  e(1) = 1;
  int t = 1, b = 0, i = 2;
  for (; i < n; ++i) {
    double turn = angle(i) - base;
    if (turn < 0.0) turn += 2.0 * Pi;
    if (turn > Pi + tol) break;
    while (t >= 1 && side(t, i) != -1) --t;
    if (t < 1 && std::fabs(turn - Pi) <= tol) return;
    if (!meet(e(t), i, t + 1)) return;
    ++t;
    e(t) = i;
  }
  if (i >= n) return;

  // Closing: the remaining edges cut the chain at both ends.
  bool firstTime = true;
  for (; i < n; ++i) {
    if (!firstTime && side(b, i) < 1) continue;
    firstTime = false;
    while (side(t, i) != -1) {
      --t;
      if (t <= b) return;
    }
    if (!meet(e(t), i, t + 1)) return;
    ++t;
    e(t) = i;
    while (b + 1 < t && side(b + 1, i) != -1) ++b;
    if (!meet(e(b), i, b)) return;
    ox(t + 1) = ox(b);
    oy(t + 1) = oy(b);
    e(t + 1) = e(b);
  }

  m = t + 1 - b;
  if (b > 0) {
    for (int k = 0; k <= m; ++k) {
      ox(k) = ox(k + b);
      oy(k) = oy(k + b);
      e(k) = e(k + b);
    }
  }
}

void RTCPDM(int n, View0<double> x, View0<double> y, int a, int b, int& bottom, double& cos,
            double& sin) {
  a %= n;
  b %= n;
  const int top = y(a) >= y(b) ? a : b;
  const int low = top == a ? b : a;
  const double turn = Pi / 2.0 - std::atan2(y(top) - y(low), x(top) - x(low));
  cos = std::cos(turn);
  sin = std::sin(turn);
  for (int k = 0; k < n; ++k) {
    const double px = x(k), py = y(k);
    x(k) = cos * px - sin * py;
    y(k) = sin * px + cos * py;
  }
  std::rotate(x.data(), x.data() + top, x.data() + n);
  std::rotate(y.data(), y.data() + top, y.data() + n);
  x(n) = x(0);
  y(n) = y(0);
  bottom = (low - top + n) % n;
}

namespace {

// One row of points: vertex numbers first..first + count - 1 at turned
// abscissae x0, x0 + h, ...
struct Row {
  int first = 0;
  int count = 0;
  double x0 = 0.0;
  double last(double h) const { return x0 + (count - 1) * h; }
};

// Points to leave out at the end of a row that reaches `difference` beyond
// the other row: all but the last point short of the other row's end.
int skipCount(double difference, double h, double tol) {
  const double q = difference / h;
  int skip = static_cast<int>(q + tol);
  if (std::fabs(q - std::round(q)) <= tol) --skip;
  return std::max(skip, 0);
}

}  // namespace

void TRQUCP(int n, View0<const double> x, View0<const double> y, double h, int bottom, double cos,
            double sin, int& numVertices, View1<XY> vertices, int& numTriangles,
            View1<Triangle> triangles, View0<int> walk, int& walkLength, bool& status) {
  status = false;
  walkLength = 0;
  const double tol = meshTolerance();
  const double height = y(0) - y(bottom);
  const char* const vertexMessage = "(TRQUCP) Max number of vertices exceeded!";
  if (!fits(height / h, vertices.size() - numVertices)) {
    fail(vertexMessage, status);
    return;
  }
  // Rows h apart with their points at h; staggered, rows sqrt(3)/2 h apart
  // with the points of every other row moved by h / 2 on one lattice.
  const bool staggered = meshData().StaggeredRows;
  const double step = staggered ? StaggeredRowStep * h : h;
  const int rows = static_cast<int>(height / step);
  const double firstLevel = y(0) - (height - rows * step) / 2.0;

  // The walk grows at both ends of its room: down the left side from
  // index 0, and up the right side from the last index backward.
  const int room = walk.size() - 1;
  int left = 0, right = room + 1;
  auto addLeft = [&](int v) {
    if (left + 1 >= right) return false;
    walk(++left) = v;
    return true;
  };
  auto addRight = [&](int v) {
    if (right - 1 <= left) return false;
    walk(--right) = v;
    return true;
  };
  auto overflow = [&] { fail("(TRQUCP) Attempt to overflow closed walk list!", status); };
  auto triangle = [&](int v1, int v2, int v3) {
    if (numTriangles + 1 > triangles.size()) {
      fail("(TRQUCP) Max number of triangles exceeded!", status);
      return false;
    }
    ++numTriangles;
    triangles(numTriangles)(1) = v1;
    triangles(numTriangles)(2) = v2;
    triangles(numTriangles)(3) = v3;
    return true;
  };
  // Abscissa where the edge p->q of the turned polygon crosses `level`.
  auto cross = [&](int p, int q, double level) {
    const double dy = y(q) - y(p);
    if (dy == 0.0) return x(q);
    const double t = std::clamp((level - y(p)) / dy, 0.0, 1.0);
    return x(p) + t * (x(q) - x(p));
  };

  int l = 0, r = n;
  Row previous;
  for (int row = 0; row <= rows; ++row) {
    const double level = firstLevel - row * step;
    while (l + 1 < bottom && y(l + 1) > level) ++l;
    while (r - 1 > bottom && y(r - 1) > level) --r;
    const double xl = cross(l, l + 1, level);
    const double xr = cross(r, r - 1, level);
    if (!fits((xr - xl) / h, vertices.size() - numVertices)) {
      fail(vertexMessage, status);
      return;
    }
    int columns = std::max(0, static_cast<int>((xr - xl) / h));
    double x0 = xl + ((xr - xl) - columns * h) / 2.0;
    if (staggered) {
      const double anchor = x(0) + (row % 2 == 1 ? 0.5 * h : 0.0);
      const double k0 = std::ceil((xl - anchor) / h), k1 = std::floor((xr - anchor) / h);
      if (k1 >= k0) {
        columns = static_cast<int>(k1 - k0);
        x0 = anchor + k0 * h;
      }
    }
    if (columns + numVertices + 1 > vertices.size()) {
      fail(vertexMessage, status);
      return;
    }
    Row current{numVertices + 1, columns + 1, x0};
    for (int c = 0; c <= columns; ++c) {
      const double px = x0 + c * h;
      vertices(++numVertices) = XY{cos * px + sin * level, cos * level - sin * px};
    }
    if (rows == 0) {
      walk(0) = numVertices;
      return;
    }
    if (row == 0) {
      walk(0) = current.first;
      for (int c = 0; c < current.count; ++c) {
        if (!addRight(current.first + c)) return overflow();
      }
      previous = current;
      continue;
    }

    // The stretch of both rows that faces the other row.
    const Row& p = previous;
    const Row& c = current;
    int startP = 0, startC = 0, endP = p.count - 1, endC = c.count - 1;
    if (p.x0 < c.x0) {
      startP = skipCount(c.x0 - p.x0, h, tol);
    } else if (c.x0 < p.x0) {
      startC = skipCount(p.x0 - c.x0, h, tol);
    }
    if (p.last(h) > c.last(h)) {
      endP -= skipCount(p.last(h) - c.last(h), h, tol);
    } else if (c.last(h) > p.last(h)) {
      endC -= skipCount(c.last(h) - p.last(h), h, tol);
    }
    startP = std::min(startP, p.count - 1);
    startC = std::min(startC, c.count - 1);
    endP = std::max(endP, startP);
    endC = std::max(endC, startC);

    // Zip the two stretches, always advancing on the row that lags behind.
    int ip = startP, ic = startC;
    while (ip < endP || ic < endC) {
      const double px = p.x0 + ip * h;
      const double cx = c.x0 + ic * h;
      if (ic < endC && (cx <= px || ip == endP)) {
        if (!triangle(p.first + ip, c.first + ic, c.first + ic + 1)) return;
        ++ic;
      } else {
        if (!triangle(p.first + ip + 1, p.first + ip, c.first + ic)) return;
        ++ip;
      }
    }

    // Down the left side of the walk.
    if (p.x0 >= c.x0) {
      for (int k = startC; k >= 0; --k) {
        if (!addLeft(c.first + k)) return overflow();
      }
    } else {
      for (int k = 1; k <= startP; ++k) {
        if (!addLeft(p.first + k)) return overflow();
      }
      if (!addLeft(c.first)) return overflow();
    }
    // Up the right side, built from the top down.
    if (p.last(h) > c.last(h)) {
      for (int k = p.count - 2; k >= endP; --k) {
        if (!addRight(p.first + k)) return overflow();
      }
      if (!addRight(c.first + c.count - 1)) return overflow();
    } else {
      for (int k = endC; k <= c.count - 1; ++k) {
        if (!addRight(c.first + k)) return overflow();
      }
    }
    previous = current;
  }

  // Along the last row, then join the two ends.
  if (previous.count > 1) {
    for (int k = 1; k <= previous.count - 2; ++k) {
      if (!addLeft(previous.first + k)) return overflow();
    }
  } else {
    ++right;
  }
  if (right <= left) return overflow();
  int last = left;
  for (int k = right; k <= room; ++k) walk(++last) = walk(k);
  walkLength = last;
}

}  // namespace kntr::mesher
