#include "mesher/strip.h"

#include <algorithm>
#include <cmath>

#include "framework/text.h"
#include "mesher/halfedge.h"

namespace kntr::mesher {

namespace {

int after(int j) {
  return j == 3 ? 1 : j + 1;
}
int before(int j) {
  return j == 1 ? 3 : j - 1;
}

// Side of `p` relative to the directed line a->b, as IQSIDE gives it.
int sideOf(const XY& p, const XY& a, const XY& b) {
  return IQSIDE(p.x, p.y, a.x, a.y, b.x, b.y, 0.0);
}

}  // namespace

int IQDGCV(const XY& p1, const XY& p2, const XY& p3, const XY& p4) {
  const double tol = meshTolerance();
  const double ux = p2.x - p1.x, uy = p2.y - p1.y;
  const double vx = p4.x - p1.x, vy = p4.y - p1.y;
  const double wx = p2.x - p3.x, wy = p2.y - p3.y;
  const double zx = p4.x - p3.x, zy = p4.y - p3.y;
  const double t1 = tol * std::max({std::fabs(ux), std::fabs(uy), std::fabs(vx), std::fabs(vy)});
  const double t2 = tol * std::max({std::fabs(wx), std::fabs(wy), std::fabs(zx), std::fabs(zy)});
  const double c1 = ux * vx + uy * vy;
  const double c2 = wx * zx + wy * zy;
  if (c1 > t1 && c2 > t2) return -1;
  if (c1 < -t1 && c2 < -t2) return 1;
  // The sine of the sum of the angles at p1 and p3.
  const double t = std::max(t1, t2);
  const double value = c2 * (ux * vy - vx * uy) + c1 * (zx * wy - wx * zy);
  if (value > t) return -1;
  if (value < -t) return 1;
  return 0;
}

void MRGTRI(bool ring, int maxStrip, int numA, int numB, View0<const int> a, View0<const int> b,
            View1<const XY> vertices, View1<Triangle> triangles, StripSides sides, bool& status) {
  status = false;
  const int boundary = numA + numB + 1;
  int k = 0;
  bool full = false;
  auto make = [&](int v1, int v2, int v3, int s1, int s2, int s3) {
    if (k + 1 > maxStrip) {
      // No status: the strip is short and the caller goes on with it.
      if (!full) framework::ERRSCN("(MRGTRI) Max allocated number of mesh triangles exceeded!");
      full = true;
      return false;
    }
    ++k;
    triangles(k)(1) = v1;
    triangles(k)(2) = v2;
    triangles(k)(3) = v3;
    sides(k, 1) = s1;
    sides(k, 2) = s2;
    sides(k, 3) = s3;
    return true;
  };
  int i = 0, j = 0;
  auto advanceA = [&] {
    const bool made = make(a(i + 1), b(j), a(i), k + 1, k, boundary);
    ++i;
    return made;
  };
  auto advanceB = [&] {
    const bool made = make(a(i), b(j + 1), b(j), k + 1, boundary, k);
    ++j;
    return made;
  };

  int endA = numA, endB = numB;
  if (!ring) {
    // The chains share their first vertex: the first triangle has two sides
    // on the boundary.
    if (!make(a(1), b(1), a(0), 1, boundary, boundary)) return;
    if (numA + numB < 4) return;
    endA = numA - 1;
    endB = numB - 1;
    i = 1;
    j = 1;
  }

  while (i < endA && j < endB) {
    const XY& bj = vertices(b(j));
    const XY& bn = vertices(b(j + 1));
    const XY& ai = vertices(a(i));
    const XY& an = vertices(a(i + 1));
    const int swap = IQDGCV(bn, bj, ai, an);
    bool onB = swap > 0;
    if (ring && onB) {
      // Never round a point of a that lies on the inner side of b.
      if (sideOf(ai, bj, bn) <= 0 && sideOf(an, bj, bn) <= 0) onB = false;
    }
    if (!(onB ? advanceB() : advanceA())) return;
  }

  // Without a ring, a list that has come to its end is let on by one, so
  // that its last triangle closes on the far vertex of both chains once the
  // other list is done; the other list's points fan from its last point.
  bool raisedA = false;
  if (!ring) {
    if (i == endA) {
      ++endA;
      raisedA = true;
    } else if (j == endB) {
      ++endB;
    }
  }
  while (i < endA && !raisedA) {
    if (!advanceA()) return;
  }
  while (j < endB) {
    if (ring) {
      const XY& ai = vertices(a(i));
      const XY& bj = vertices(b(j));
      const XY& bn = vertices(b(j + 1));
      if (sideOf(ai, bn, bj) != -1) {
        framework::fail("(MRGTRI) Internal error - illegal triangle formed!", status);
        return;
      }
    }
    if (!advanceB()) return;
  }
  while (i < endA) {
    if (!advanceA()) return;
  }

  if (ring && k > 0) {
    // Close the ring: the first triangle's open rung is the last one.
    for (int s = 1; s <= 3; ++s) {
      if (sides(1, s) == 0) sides(1, s) = numA + numB;
    }
  }
}

void IQTRCE(bool both, int start, int edge, StripSides sides, int& t1, int& j1, int& t2, int& j2,
            bool& status) {
  status = false;
  t1 = 0;
  j1 = 0;
  t2 = 0;
  j2 = 0;
  auto sideIn = [&](int t) {
    for (int s = 1; s <= 3; ++s) {
      if (sides(t, s) == edge) return s;
    }
    return 0;
  };
  for (int t = start; t >= 1; --t) {
    const int s = sideIn(t);
    if (s == 0) continue;
    t1 = t;
    j1 = s;
    break;
  }
  if (t1 > 0) {
    if (both) {
      for (int t = t1 - 1; t >= 1; --t) {
        const int s = sideIn(t);
        if (s == 0) continue;
        t2 = t;
        j2 = s;
        break;
      }
    } else {
      for (int t = 1; t < t1; ++t) {
        const int s = sideIn(t);
        if (s == 0) continue;
        t2 = t;
        j2 = s;
        break;
      }
    }
  }
  if (t2 == 0) {
    framework::fail("(IQTRCE) Could not locate two triangles with specified edge!", status);
  }
}

void SWTRDG(int t1, int j1, int t2, int j2, int edge, int limit, View1<const XY> vertices,
            View1<Triangle> triangles, StripSides sides, View1<int> swapStack, int& top) {
  swapStack(edge) = -1;
  Triangle& first = triangles(t1);
  Triangle& second = triangles(t2);
  const int a = first(j1), b = first(after(j1)), c = first(before(j1));
  const int d = second(before(j2));
  if (IQDGCV(vertices(d), vertices(b), vertices(c), vertices(a)) != 1) return;

  // The four sides around the quadrilateral may now want a swap too.
  const int around[4] = {sides(t1, after(j1)), sides(t1, before(j1)), sides(t2, after(j2)),
                         sides(t2, before(j2))};
  for (const int e : around) {
    if (e <= limit && swapStack(e) == -1) {
      swapStack(e) = top;
      top = e;
    }
  }

  // Turn the diagonal: (a, b, c) and (b, a, d) become (a, d, c) and (b, c, d).
  const int nextSide1 = sides(t1, after(j1));
  const int nextSide2 = sides(t2, after(j2));
  first(after(j1)) = d;
  second(after(j2)) = c;
  sides(t1, j1) = nextSide2;
  sides(t2, j2) = nextSide1;
  sides(t1, after(j1)) = edge;
  sides(t2, after(j2)) = edge;
}

void SWTRSP(bool ring, int count, View1<const XY> vertices, View1<Triangle> triangles,
            StripSides sides, View1<int> swapStack, bool& status) {
  status = false;
  for (int e = 1; e <= count; ++e) swapStack(e) = -1;
  for (int k = 1; k <= count; ++k) {
    int start = k + 1;
    bool both = true;
    if (k == count) {
      if (!ring) return;
      start = count;
      both = false;
    }
    // The stack is a list through swapStack; 0 ends it.
    int top = k;
    swapStack(k) = 0;
    while (top > 0) {
      const int e = top;
      top = swapStack(e);
      int t1 = 0, j1 = 0, t2 = 0, j2 = 0;
      IQTRCE(both, start, e, sides, t1, j1, t2, j2, status);
      if (status) return;
      SWTRDG(t1, j1, t2, j2, e, k, vertices, triangles, sides, swapStack, top);
    }
  }
}

}  // namespace kntr::mesher
