#include "mesher/improve.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "framework/text.h"
#include "mesher/predicates.h"

namespace kntr::mesher {

namespace {

// The triangles around each vertex (around(first(v) .. first(v + 1) - 1)),
// and which vertices lie on the boundary.
struct Adjacency {
  Array1<int, MaxImproveVertices + 1> first;
  Array1<int, MaxImproveVertices> cursor;
  Array1<int, 3 * MaxImproveTriangles> around;
  Array1<bool, MaxImproveVertices> onBoundary;
  // A vertex that found no better place, until a neighbour moves.
  Array1<bool, MaxImproveVertices> settled;
  // The triangle across side j of triangle t (vertex j to j + 1), 0 on the
  // boundary; kept up to date through the flips.
  Array2<int, MaxImproveTriangles, 3> neighbour;
};

Adjacency& adjacency() {
  static Adjacency tables;
  return tables;
}

Array1<double, MaxImproveVertices>& angleSum() {
  static Array1<double, MaxImproveVertices> sums;
  return sums;
}

int nextCorner(int j) { return j == 3 ? 1 : j + 1; }

// The triangle other than `t` with the directed edge b -> a, 0 when none
// (a boundary edge), found through the triangles around b.
int across(View1<const Triangle> triangles, int t, int a, int b, int& opposite) {
  const Adjacency& g = adjacency();
  for (int k = g.first(b); k < g.first(b + 1); ++k) {
    const int u = g.around(k);
    if (u == t) continue;
    const Triangle& tri = triangles(u);
    for (int j = 1; j <= 3; ++j) {
      if (tri(j) == b && tri(nextCorner(j)) == a) {
        opposite = tri(nextCorner(nextCorner(j)));
        return u;
      }
    }
  }
  return 0;
}

// The triangles around each vertex; false (with the message) when the mesh
// is too large. With `sides` also the neighbours across each side and the
// boundary's vertices.
bool build(int numTriangles, View1<const Triangle> triangles, int numVertices, const char* name,
           bool sides, bool& status) {
  Adjacency& g = adjacency();
  if (numTriangles > MaxImproveTriangles || numVertices > MaxImproveVertices) {
    framework::fail(std::string("(") + name + ") Max number of mesh triangles or vertices exceeded!",
                    status);
    return false;
  }
  for (int v = 1; v <= numVertices; ++v) g.cursor(v) = 0;
  for (int t = 1; t <= numTriangles; ++t) {
    for (int j = 1; j <= 3; ++j) g.cursor(triangles(t)(j)) += 1;
  }
  g.first(1) = 1;
  for (int v = 1; v <= numVertices; ++v) {
    g.first(v + 1) = g.first(v) + g.cursor(v);
    g.cursor(v) = g.first(v);
  }
  for (int t = 1; t <= numTriangles; ++t) {
    for (int j = 1; j <= 3; ++j) g.around(g.cursor(triangles(t)(j))++) = t;
  }
  for (int v = 1; v <= numVertices; ++v) g.settled(v) = false;
  if (!sides) return true;
  for (int v = 1; v <= numVertices; ++v) g.onBoundary(v) = false;
  for (int t = 1; t <= numTriangles; ++t) {
    for (int j = 1; j <= 3; ++j) {
      const int a = triangles(t)(j), b = triangles(t)(nextCorner(j));
      int d = 0;
      g.neighbour(t, j) = across(triangles, t, a, b, d);
      if (g.neighbour(t, j) == 0) g.onBoundary(a) = g.onBoundary(b) = true;
    }
  }
  return true;
}

double length(double dx, double dy) { return std::sqrt(dx * dx + dy * dy); }

// Quality 8(s-a)(s-b)(s-c)/(abc) of a triangle, -1 unless it is strictly
// counterclockwise.
double quality(const XY& p, const XY& q, const XY& r) {
  if (IQORNT(p, q, r) <= 0) return -1.0;
  const double a = length(q.x - p.x, q.y - p.y);
  const double b = length(r.x - q.x, r.y - q.y);
  const double c = length(p.x - r.x, p.y - r.y);
  const double s = 0.5 * (a + b + c);
  return 8.0 * (s - a) * (s - b) * (s - c) / (a * b * c);
}

// The least quality of the triangles around v with v at `at`; the count
// stops as soon as it falls below `floor`.
double leastAround(View1<const Triangle> triangles, View1<const XY> vertices, int v, const XY& at,
                   double floor = 0.0) {
  const Adjacency& g = adjacency();
  double least = 2.0;
  for (int k = g.first(v); k < g.first(v + 1); ++k) {
    const Triangle& tri = triangles(g.around(k));
    XY p[3];
    for (int j = 1; j <= 3; ++j) p[j - 1] = tri(j) == v ? at : vertices(tri(j));
    least = std::min(least, quality(p[0], p[1], p[2]));
    if (least < 0.0 || least < floor) return least;
  }
  return least;
}

// One sweep over the interior vertices. A vertex may go toward the mean of
// the points that would make each triangle around it equilateral on its
// far side, or toward the mean of its neighbours, by the whole step, a half
// or a quarter, the first move that serves being taken. With `keepLeast`
// it serves when the least quality around the vertex does not fall (both
// targets are tried); otherwise when every triangle stays turned the right
// way (the neighbours' mean only). Returns the number of moves longer than a thousandth of the
// vertex's mean distance to its neighbours.
int smoothSweep(int numVertices, View1<const Triangle> triangles, View1<XY> vertices,
                bool keepLeast, int& moves) {
  Adjacency& g = adjacency();
  constexpr double Height = 0.8660254037844386;  // sqrt(3) / 2
  int large = 0;
  for (int v = 1; v <= numVertices; ++v) {
    if (g.onBoundary(v) || g.settled(v) || g.first(v + 1) == g.first(v)) continue;
    double x = 0.0, y = 0.0, ix = 0.0, iy = 0.0, reach = 0.0;
    const int n = g.first(v + 1) - g.first(v);
    const XY here = vertices(v);
    for (int k = g.first(v); k < g.first(v + 1); ++k) {
      const Triangle& tri = triangles(g.around(k));
      int j = 1;
      while (tri(j) != v) ++j;
      const XY& b = vertices(tri(nextCorner(j)));
      const XY& c = vertices(tri(nextCorner(nextCorner(j))));
      x += b.x + c.x;
      y += b.y + c.y;
      reach += length(b.x - here.x, b.y - here.y) + length(c.x - here.x, c.y - here.y);
      ix += 0.5 * (b.x + c.x) - Height * (c.y - b.y);
      iy += 0.5 * (b.y + c.y) + Height * (c.x - b.x);
    }
    x /= 2 * n;
    y /= 2 * n;
    reach /= 2 * n;
    ix /= n;
    iy /= n;
    // The quality stage tries the equilateral points first.
    const XY targets[2] = {keepLeast ? XY{ix, iy} : XY{x, y}, XY{x, y}};
    const double before = keepLeast ? leastAround(triangles, vertices, v, here) : 0.0;
    if (keepLeast && before >= WellShaped) {
      g.settled(v) = true;
      continue;
    }
    XY chosen = here;
    double best = before;
    bool found = false;
    for (double share = 1.0; share >= 0.25 && !found; share *= 0.5) {
      for (int t = 0; t < (keepLeast ? 2 : 1); ++t) {
        const XY to{here.x + share * (targets[t].x - here.x), here.y + share * (targets[t].y - here.y)};
        const double after = leastAround(triangles, vertices, v, to, keepLeast ? best : 0.0);
        if (after <= 0.0 || (keepLeast && after < best)) continue;
        if (keepLeast && found && after == best) continue;
        chosen = to;
        best = after;
        found = true;
        break;
      }
    }
    if (!found) {
      g.settled(v) = true;
      continue;
    }
    vertices(v) = chosen;
    ++moves;
    if (length(chosen.x - here.x, chosen.y - here.y) > 1e-3 * reach) {
      ++large;
      // The neighbours may find a better place now.
      for (int k = g.first(v); k < g.first(v + 1); ++k) {
        const Triangle& tri = triangles(g.around(k));
        for (int j = 1; j <= 3; ++j) g.settled(tri(j)) = false;
      }
    } else {
      g.settled(v) = true;
    }
  }
  return large;
}

// Triangles a vertex should have: 6 inside; on the boundary one for each
// sixty degrees of its angle, at least one.
Array1<int, MaxImproveVertices> idealCount;
Array1<int, MaxImproveVertices> triangleCount;

double angleAt(const XY& p, const XY& q, const XY& r) {
  const double ux = q.x - p.x, uy = q.y - p.y, vx = r.x - p.x, vy = r.y - p.y;
  return std::atan2(std::fabs(ux * vy - uy * vx), ux * vx + uy * vy);
}

void countTriangles(int numTriangles, View1<const Triangle> triangles, View1<const XY> p) {
  const Adjacency& g = adjacency();
  Array1<double, MaxImproveVertices>& angle = angleSum();
  for (int v = 1; v <= p.size(); ++v) {
    triangleCount(v) = g.first(v + 1) - g.first(v);
    angle(v) = 0.0;
  }
  for (int t = 1; t <= numTriangles; ++t) {
    const Triangle& tri = triangles(t);
    for (int j = 1; j <= 3; ++j) {
      const int v = tri(j);
      if (g.onBoundary(v))
        angle(v) += angleAt(p(v), p(tri(nextCorner(j))), p(tri(nextCorner(nextCorner(j)))));
    }
  }
  for (int v = 1; v <= p.size(); ++v) {
    idealCount(v) = g.onBoundary(v) ? std::max(1, static_cast<int>(std::lround(angle(v) / (Pi / 3.0))))
                                    : 6;
  }
}

// In triangle x, the neighbour `from` becomes `to`.
void relink(int x, int from, int to) {
  if (x == 0) return;
  Adjacency& g = adjacency();
  for (int j = 1; j <= 3; ++j) {
    if (g.neighbour(x, j) == from) {
      g.neighbour(x, j) = to;
      return;
    }
  }
}

// Flip inner edges, pass after pass over all triangles, until none is left
// to flip or MaxFlipPasses passes are done. Plain: the edges that fail the
// in-circle test. `byCount`: the edges whose flip brings the four vertices'
// triangle counts nearer their ideal ones without the least quality of the
// two triangles falling below ValenceFlipShare of what it was. The
// neighbours and the triangle counts are kept up to date.
void flipAll(int numTriangles, View1<Triangle> triangles, View1<const XY> p, bool byCount) {
  Adjacency& g = adjacency();
  auto off = [&](int v, int n) { return std::abs(n - idealCount(v)); };
  for (int pass = 0; pass < MaxFlipPasses; ++pass) {
    int flips = 0;
    for (int t = 1; t <= numTriangles; ++t) {
      for (int j = 1; j <= 3; ++j) {
        const int u = g.neighbour(t, j);
        if (u == 0) continue;
        const int a = triangles(t)(j), b = triangles(t)(nextCorner(j)),
                  c = triangles(t)(nextCorner(nextCorner(j)));
        int k = 1;
        while (k < 3 && triangles(u)(k) != b) ++k;
        const int d = triangles(u)(nextCorner(nextCorner(k)));
        if (byCount) {
          const int na = triangleCount(a), nb = triangleCount(b), nc = triangleCount(c),
                    nd = triangleCount(d);
          if (off(a, na - 1) + off(b, nb - 1) + off(c, nc + 1) + off(d, nd + 1) >=
              off(a, na) + off(b, nb) + off(c, nc) + off(d, nd))
            continue;
          const double now = std::min(quality(p(a), p(b), p(c)), quality(p(b), p(a), p(d)));
          const double then = std::min(quality(p(c), p(a), p(d)), quality(p(d), p(b), p(c)));
          if (then <= 0.0 || then < ValenceFlipShare * now) continue;
        } else {
          if (IQINCR(p(a), p(b), p(c), p(d)) <= 0) continue;
          if (IQORNT(p(c), p(a), p(d)) <= 0 || IQORNT(p(d), p(b), p(c)) <= 0) continue;
        }
        // The sides around the quadrilateral a, d, b, c.
        const int nbc = g.neighbour(t, nextCorner(j));
        const int nca = g.neighbour(t, nextCorner(nextCorner(j)));
        const int nad = g.neighbour(u, nextCorner(k));
        const int ndb = g.neighbour(u, nextCorner(nextCorner(k)));
        triangles(t) = Triangle{{c, a, d}};
        triangles(u) = Triangle{{d, b, c}};
        g.neighbour(t, 1) = nca;
        g.neighbour(t, 2) = nad;
        g.neighbour(t, 3) = u;
        g.neighbour(u, 1) = ndb;
        g.neighbour(u, 2) = nbc;
        g.neighbour(u, 3) = t;
        relink(nad, u, t);
        relink(nbc, t, u);
        triangleCount(a) -= 1;
        triangleCount(b) -= 1;
        triangleCount(c) += 1;
        triangleCount(d) += 1;
        ++flips;
        break;
      }
    }
    if (flips == 0) return;
  }
}

}  // namespace

void SMSAF2(int numTriangles, View1<const Triangle> triangles, View1<XY> vertices, int& moves,
            bool& status) {
  status = false;
  moves = 0;
  if (numTriangles > MaxFaces) {
    framework::fail(
        "(SMSAF2) Max number of mesh triangles exceedes allocated number of topology faces!",
        status);
    return;
  }
  if (!build(numTriangles, triangles, vertices.size(), "SMSAF2", true, status)) return;
  for (int sweep = 0; sweep < SafeSmoothSweeps; ++sweep) {
    if (smoothSweep(vertices.size(), triangles, vertices, false, moves) == 0) return;
  }
}

void IMPRV2(int numTriangles, View1<Triangle> triangles, View1<XY> vertices, bool& status) {
  status = false;
  const View1<const Triangle> seen(triangles.data(), triangles.size());
  if (!build(numTriangles, seen, vertices.size(), "IMPRV2", true, status)) return;
  countTriangles(numTriangles, seen, vertices);
  flipAll(numTriangles, triangles, vertices, false);
  for (int round = 1; round <= ImproveRounds; ++round) {
    flipAll(numTriangles, triangles, vertices, true);
    build(numTriangles, seen, vertices.size(), "IMPRV2", false, status);
    int moves = 0;
    for (int sweep = 0; sweep < ImproveSweeps; ++sweep) {
      if (smoothSweep(vertices.size(), seen, vertices, true, moves) == 0) break;
    }
  }
}

}  // namespace kntr::mesher
