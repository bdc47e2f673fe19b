#include "mesher/polygons.h"

#include <algorithm>
#include <cmath>

#include "framework/text.h"
#include "mesher/limits.h"

namespace kntr::mesher {

using framework::fail;

namespace {

// Container lists of SORTP2: containers(i, k) is the k-th polygon found to
// contain polygon i.
Array2<int, MaxSortPolygons, MaxSortPolygons> containers;
Array1<int, MaxSortPolygons> containerCount;
Array1<bool, MaxSortPolygons> assigned;

// Identity index list for MFPLDR.
Array1<int, MaxOrientPoints> identity;

}  // namespace

void IQPLDR(int n, View1<const int> indexList, View1<const XY> vertices, bool& ccw, bool& status) {
  status = false;
  ccw = false;
  if (n < 3) {
    fail("(IQPLDR) Cannot establish polygon direction for a single point or line!", status);
    return;
  }
  if (n > MaxPolyPoints) {
    fail("(IQPLDR) Max internal number of polygon points exceeded!", status);
    return;
  }
  double sum = 0.0;
  for (int i = 1; i <= n; ++i) {
    const XY prev = vertices(indexList(i == 1 ? n : i - 1));
    const XY here = vertices(indexList(i));
    const XY next = vertices(indexList(i == n ? 1 : i + 1));
    const double ax = here.x - prev.x, ay = here.y - prev.y;  // incoming edge
    const double bx = next.x - here.x, by = next.y - here.y;  // outgoing edge
    const double la = std::sqrt(ax * ax + ay * ay);
    const double lb = std::sqrt(bx * bx + by * by);
    if (la == 0.0 && lb == 0.0) {
      fail("(IQPLDR) Found two consecutive coinciding points!", status);
      return;
    }
    // One zero-length edge makes the quotient 0/0; the NaN carries into the
    // sum, which then does not compare above 0, and the polygon counts as
    // clockwise.
    const double cosine = (ax * bx + ay * by) / (la * lb);
    double turn;
    if (cosine >= 1.0) {
      turn = 0.0;
    } else if (cosine <= -1.0) {
      turn = Pi;
    } else {
      turn = std::acos(cosine);
    }
    if (ax * by - ay * bx < 0.0) turn = -turn;
    sum += turn;
  }
  ccw = sum > 0.0;
}

bool IQPTIN(double x, double y, int n, View1<const int> indexList, View1<const XY> vertices) {
  double sum = 0.0;
  for (int i = 1; i <= n; ++i) {
    const XY a = vertices(indexList(i));
    const XY b = vertices(indexList(i == n ? 1 : i + 1));
    const double ax = a.x - x, ay = a.y - y;
    const double bx = b.x - x, by = b.y - y;
    // An edge that starts or ends on the point is seen under no angle.
    if ((ax == 0.0 && ay == 0.0) || (bx == 0.0 && by == 0.0)) continue;
    sum += std::atan2(ax * by - ay * bx, ax * bx + ay * by);
  }
  return std::fabs(sum) > Pi;
}

void SORTP2(int maxMembers, int numPolygons, int stride, View1<const int> polySizes,
            View1<const int> indexLists, View1<const XY> vertices, int& numGroups,
            View1<int> groupSizes, View1<int> groupMembers, bool& status) {
  status = false;
  numGroups = 0;
  if (numPolygons > MaxSortPolygons) {
    fail("(SORTP2) Max internal number of polygons exceeded!", status);
    return;
  }
  auto list = [&](int i) { return View1<const int>(indexLists.data() + (i - 1) * stride, stride); };

  // Which polygons contain polygon i: those that have all of i's vertices
  // inside.
  for (int i = 1; i <= numPolygons; ++i) {
    containerCount(i) = 0;
    assigned(i) = false;
    for (int j = 1; j <= numPolygons; ++j) {
      if (j == i) continue;
      bool inside = true;
      for (int k = 1; k <= polySizes(i) && inside; ++k) {
        const XY p = vertices(list(i)(k));
        inside = IQPTIN(p.x, p.y, polySizes(j), list(j), vertices);
      }
      if (inside) {
        containerCount(i) += 1;
        containers(i, containerCount(i)) = j;
      }
    }
  }

  // Peel the nesting one level at a time: an outermost polygon starts a
  // group, and what it alone contains are its holes.
  int left = numPolygons;
  while (left > 0) {
    int exterior = 0;
    for (int i = 1; i <= numPolygons && exterior == 0; ++i) {
      if (!assigned(i) && containerCount(i) == 0) exterior = i;
    }
    if (exterior == 0) break;
    if (numGroups >= groupSizes.size() ||
        numGroups * maxMembers + maxMembers > groupMembers.size()) {
      fail("(SORTP2) Max internal number of polygons exceeded!", status);
      return;
    }
    numGroups += 1;
    const int g = numGroups;
    View1<int> members(groupMembers.data() + (g - 1) * maxMembers, maxMembers);
    int size = 1;
    members(1) = exterior;
    assigned(exterior) = true;
    for (int i = 1; i <= numPolygons; ++i) {
      if (assigned(i) || containerCount(i) != 1 || containers(i, 1) != exterior) continue;
      if (size >= maxMembers) {
        fail("(SORTP2) Max internal number of polygons exceeded!", status);
        return;
      }
      size += 1;
      members(size) = i;
      assigned(i) = true;
    }
    groupSizes(g) = size;
    left -= size;

    // The group's members no longer count as containers.
    for (int i = 1; i <= numPolygons; ++i) {
      if (assigned(i)) continue;
      int kept = 0;
      for (int k = 1; k <= containerCount(i); ++k) {
        const int c = containers(i, k);
        bool member = false;
        for (int q = 1; q <= size; ++q) member = member || members(q) == c;
        if (!member) containers(i, ++kept) = c;
      }
      containerCount(i) = kept;
    }
  }
}

void MFPLDR(int n, View1<XY> points, bool& status) {
  status = false;
  if (n > MaxOrientPoints) {
    framework::ERRSCN("(MFPLDR) Unable to check polygon orientation due to too many points");
    return;
  }
  for (int i = 1; i <= n; ++i) identity(i) = i;
  bool ccw = false;
  IQPLDR(n, View1<const int>(identity.data(), n), points, ccw, status);
  if (status || ccw) return;
  std::reverse(points.data(), points.data() + n);
}

void IQSGSG(XY p1, XY p2, XY q1, XY q2, bool& found, double& s, double& t) {
  found = false;
  s = 0.0;
  t = 0.0;
  const double tol = meshTolerance();
  const double dx = p2.x - p1.x, dy = p2.y - p1.y;
  const double ex = q2.x - q1.x, ey = q2.y - q1.y;
  const double det = dx * ey - dy * ex;
  const double scale = std::max({std::fabs(dx), std::fabs(dy), std::fabs(ex), std::fabs(ey)});
  if (std::fabs(det) <= tol * scale) return;
  // p1 + s d = q1 + t e, solved by Cramer's rule.
  const double fx = q1.x - p1.x, fy = q1.y - p1.y;
  s = (fx * ey - fy * ex) / det;
  t = (fx * dy - fy * dx) / det;
  found = s >= -tol && s <= 1.0 + tol && t >= -tol && t <= 1.0 + tol;
}

void IQPLSI(int n, View1<const XY> points, bool closed, bool& crosses, bool& status) {
  status = false;
  crosses = false;
  const int segments = closed ? n : n - 1;
  auto start = [&](int i) { return points(i); };
  auto end = [&](int i) { return points(i == n ? 1 : i + 1); };
  for (int i = 1; i <= segments; ++i) {
    const XY a1 = start(i), a2 = end(i);
    const double axlo = std::min(a1.x, a2.x), axhi = std::max(a1.x, a2.x);
    const double aylo = std::min(a1.y, a2.y), ayhi = std::max(a1.y, a2.y);
    for (int j = i + 1; j <= segments; ++j) {
      const XY b1 = start(j), b2 = end(j);
      if (std::max(b1.x, b2.x) < axlo || std::min(b1.x, b2.x) > axhi) continue;
      if (std::max(b1.y, b2.y) < aylo || std::min(b1.y, b2.y) > ayhi) continue;
      bool found = false;
      double s = 0.0, t = 0.0;
      IQSGSG(a1, a2, b1, b2, found, s, t);
      if (found && s >= CrossLow && s < CrossHigh && t >= CrossLow && t < CrossHigh) {
        crosses = true;
        return;
      }
    }
  }
}

}  // namespace kntr::mesher
