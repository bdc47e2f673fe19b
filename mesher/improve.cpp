#include "mesher/improve.h"

#include <algorithm>
#include <cmath>

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
  Array1<bool, MaxImproveTriangles> changed;
};

Adjacency& adjacency() {
  static Adjacency tables;
  return tables;
}

int nextCorner(int j) { return j == 3 ? 1 : j + 1; }

// The triangle other than `t` with the directed edge b -> a, 0 when none
// (a boundary edge), skipping triangles changed since the tables were
// made; `opposite` is its third vertex.
int across(View1<const Triangle> triangles, int t, int a, int b, int& opposite) {
  const Adjacency& g = adjacency();
  for (int k = g.first(b); k < g.first(b + 1); ++k) {
    const int u = g.around(k);
    if (u == t || g.changed(u)) continue;
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

// The tables for a mesh; false (with the message) when it is too large.
bool build(int numTriangles, View1<const Triangle> triangles, int numVertices, const char* name,
           bool& status) {
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
    g.changed(t) = false;
    for (int j = 1; j <= 3; ++j) g.around(g.cursor(triangles(t)(j))++) = t;
  }
  for (int v = 1; v <= numVertices; ++v) g.onBoundary(v) = false;
  for (int t = 1; t <= numTriangles; ++t) {
    for (int j = 1; j <= 3; ++j) {
      const int a = triangles(t)(j), b = triangles(t)(nextCorner(j));
      int d = 0;
      if (across(triangles, t, a, b, d) == 0) g.onBoundary(a) = g.onBoundary(b) = true;
    }
  }
  return true;
}

// Quality 8(s-a)(s-b)(s-c)/(abc) of a triangle, -1 unless it is strictly
// counterclockwise.
double quality(const XY& p, const XY& q, const XY& r) {
  if (IQORNT(p, q, r) <= 0) return -1.0;
  const double a = std::hypot(q.x - p.x, q.y - p.y);
  const double b = std::hypot(r.x - q.x, r.y - q.y);
  const double c = std::hypot(p.x - r.x, p.y - r.y);
  const double s = 0.5 * (a + b + c);
  return 8.0 * (s - a) * (s - b) * (s - c) / (a * b * c);
}

// The least quality of the triangles around v with v at `at`.
double leastAround(View1<const Triangle> triangles, View1<const XY> vertices, int v, const XY& at) {
  const Adjacency& g = adjacency();
  double least = 2.0;
  for (int k = g.first(v); k < g.first(v + 1); ++k) {
    const Triangle& tri = triangles(g.around(k));
    XY p[3];
    for (int j = 1; j <= 3; ++j) p[j - 1] = tri(j) == v ? at : vertices(tri(j));
    least = std::min(least, quality(p[0], p[1], p[2]));
    if (least < 0.0) return least;
  }
  return least;
}

// One sweep over the interior vertices toward the mean of their
// neighbours. With `keepLeast` a move must not lower the least quality
// around the vertex, otherwise it must only keep every triangle turned the
// right way. Returns the number of moves longer than a thousandth of the
// vertex's mean distance to its neighbours.
int smoothSweep(int numVertices, View1<const Triangle> triangles, View1<XY> vertices,
                bool keepLeast, int& moves) {
  const Adjacency& g = adjacency();
  int large = 0;
  for (int v = 1; v <= numVertices; ++v) {
    if (g.onBoundary(v) || g.first(v + 1) == g.first(v)) continue;
    double x = 0.0, y = 0.0, reach = 0.0;
    const int n = g.first(v + 1) - g.first(v);
    const XY here = vertices(v);
    for (int k = g.first(v); k < g.first(v + 1); ++k) {
      const Triangle& tri = triangles(g.around(k));
      for (int j = 1; j <= 3; ++j) {
        if (tri(j) == v) continue;
        const XY& p = vertices(tri(j));
        x += p.x;
        y += p.y;
        reach += std::hypot(p.x - here.x, p.y - here.y);
      }
    }
    x /= 2 * n;
    y /= 2 * n;
    reach /= 2 * n;
    const double before = keepLeast ? leastAround(triangles, vertices, v, here) : 0.0;
    for (double share = 1.0; share >= 0.25; share *= 0.5) {
      const XY to{here.x + share * (x - here.x), here.y + share * (y - here.y)};
      const double after = leastAround(triangles, vertices, v, to);
      if (after <= 0.0 || (keepLeast && after < before)) continue;
      vertices(v) = to;
      ++moves;
      if (std::hypot(to.x - here.x, to.y - here.y) > 1e-3 * reach) ++large;
      break;
    }
  }
  return large;
}

// Flip inner edges that fail the in-circle test until none does (or a
// bound on the passes is reached); the tables are made anew for each pass.
void flipAll(int numTriangles, View1<Triangle> triangles, View1<const XY> p, bool& status) {
  const int numVertices = p.size();
  Adjacency& g = adjacency();
  const View1<const Triangle> seen(triangles.data(), triangles.size());
  for (int pass = 0; pass < 50; ++pass) {
    if (!build(numTriangles, seen, numVertices, "IMPRV2", status)) return;
    int flips = 0;
    for (int t = 1; t <= numTriangles; ++t) {
      if (g.changed(t)) continue;
      for (int j = 1; j <= 3; ++j) {
        const int a = triangles(t)(j), b = triangles(t)(nextCorner(j)),
                  c = triangles(t)(nextCorner(nextCorner(j)));
        int d = 0;
        const int u = across(seen, t, a, b, d);
        if (u == 0 || g.changed(u)) continue;
        if (IQINCR(p(a), p(b), p(c), p(d)) <= 0) continue;
        if (IQORNT(p(c), p(a), p(d)) <= 0 || IQORNT(p(d), p(b), p(c)) <= 0) continue;
        triangles(t) = Triangle{{c, a, d}};
        triangles(u) = Triangle{{d, b, c}};
        g.changed(t) = g.changed(u) = true;
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
  if (!build(numTriangles, triangles, vertices.size(), "SMSAF2", status)) return;
  for (int sweep = 0; sweep < SafeSmoothSweeps; ++sweep) {
    if (smoothSweep(vertices.size(), triangles, vertices, false, moves) == 0) return;
  }
}

void IMPRV2(int numTriangles, View1<Triangle> triangles, View1<XY> vertices, bool& status) {
  status = false;
  const View1<const Triangle> seen(triangles.data(), triangles.size());
  for (int round = 0; round <= ImproveRounds; ++round) {
    flipAll(numTriangles, triangles, vertices, status);
    if (status || round == ImproveRounds) return;
    if (!build(numTriangles, seen, vertices.size(), "IMPRV2", status)) return;
    int moves = 0;
    for (int sweep = 0; sweep < 3; ++sweep) {
      if (smoothSweep(vertices.size(), seen, vertices, true, moves) == 0) break;
    }
  }
}

}  // namespace kntr::mesher
