#include "support/triangle_checker.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <sstream>
#include <utility>

namespace kntr::testing {

namespace {

double cross(const XY& a, const XY& b, const XY& c) {
  return (b.x - a.x) * (c.y - a.y) - (b.y - a.y) * (c.x - a.x);
}

double signedArea(const std::vector<XY>& polygon) {
  double sum = 0.0;
  for (std::size_t i = 0; i < polygon.size(); ++i) {
    const XY& a = polygon[i];
    const XY& b = polygon[(i + 1) % polygon.size()];
    sum += a.x * b.y - b.x * a.y;
  }
  return 0.5 * sum;
}

double distanceToSegment(const XY& p, const XY& a, const XY& b) {
  const double dx = b.x - a.x, dy = b.y - a.y;
  const double length2 = dx * dx + dy * dy;
  double t = length2 > 0.0 ? ((p.x - a.x) * dx + (p.y - a.y) * dy) / length2 : 0.0;
  t = std::clamp(t, 0.0, 1.0);
  return std::hypot(p.x - (a.x + t * dx), p.y - (a.y + t * dy));
}

// Even-odd test of a point against one closed polygon.
bool insidePolygon(const XY& p, const std::vector<XY>& polygon) {
  bool inside = false;
  for (std::size_t i = 0, j = polygon.size() - 1; i < polygon.size(); j = i++) {
    const XY& a = polygon[i];
    const XY& b = polygon[j];
    if ((a.y > p.y) != (b.y > p.y) && p.x < (b.x - a.x) * (p.y - a.y) / (b.y - a.y) + a.x) {
      inside = !inside;
    }
  }
  return inside;
}

// The region's boundary edge that holds the segment p-q, or -1.
struct EdgeIndex {
  int polygon = -1;
  int edge = -1;
};

EdgeIndex boundaryEdgeHolding(const Region& region, const XY& p, const XY& q, double tol) {
  for (std::size_t k = 0; k < region.polygons.size(); ++k) {
    const auto& poly = region.polygons[k];
    for (std::size_t i = 0; i < poly.size(); ++i) {
      const XY& a = poly[i];
      const XY& b = poly[(i + 1) % poly.size()];
      if (distanceToSegment(p, a, b) <= tol && distanceToSegment(q, a, b) <= tol) {
        return EdgeIndex{static_cast<int>(k), static_cast<int>(i)};
      }
    }
  }
  return EdgeIndex{};
}

}  // namespace

double Region::area() const {
  double total = 0.0;
  for (std::size_t k = 0; k < polygons.size(); ++k) {
    total += (k == 0 ? 1.0 : -1.0) * std::fabs(signedArea(polygons[k]));
  }
  return total;
}

bool Region::contains(const XY& p, double tol) const {
  for (const auto& poly : polygons) {
    for (std::size_t i = 0; i < poly.size(); ++i) {
      if (distanceToSegment(p, poly[i], poly[(i + 1) % poly.size()]) <= tol) return true;
    }
  }
  if (polygons.empty() || !insidePolygon(p, polygons[0])) return false;
  for (std::size_t k = 1; k < polygons.size(); ++k) {
    if (insidePolygon(p, polygons[k])) return false;
  }
  return true;
}

::testing::AssertionResult checkMesh(const Region& region, View1<const XY> vertices,
                                     int numTriangles, View1<const mesher::Triangle> triangles) {
  // A length scale for the tolerances of the boundary tests.
  double extent = 0.0;
  for (const auto& poly : region.polygons) {
    for (const XY& p : poly) extent = std::max({extent, std::fabs(p.x), std::fabs(p.y)});
  }
  const double tol = 1e-9 * std::max(extent, 1.0);

  double total = 0.0;
  std::map<std::pair<int, int>, int> directed;
  for (int t = 1; t <= numTriangles; ++t) {
    const mesher::Triangle& tri = triangles(t);
    for (int j = 1; j <= 3; ++j) {
      if (tri(j) < 1 || tri(j) > vertices.size()) {
        return ::testing::AssertionFailure() << "triangle " << t << " names vertex " << tri(j);
      }
    }
    const XY& a = vertices(tri(1));
    const XY& b = vertices(tri(2));
    const XY& c = vertices(tri(3));
    const double area2 = cross(a, b, c);
    if (!(area2 > 0.0)) {
      return ::testing::AssertionFailure()
             << "triangle " << t << " (" << tri(1) << ", " << tri(2) << ", " << tri(3)
             << ") is not counterclockwise with positive area: twice its area is " << area2;
    }
    total += 0.5 * area2;
    for (int j = 1; j <= 3; ++j) {
      const XY& p = vertices(tri(j));
      if (!region.contains(p, tol)) {
        return ::testing::AssertionFailure()
               << "vertex " << tri(j) << " (" << p.x << ", " << p.y << ") lies outside the region";
      }
      const int from = tri(j), to = tri(j == 3 ? 1 : j + 1);
      if (++directed[{from, to}] > 1) {
        return ::testing::AssertionFailure()
               << "edge " << from << "->" << to << " is used twice in one direction";
      }
    }
  }

  const double expected = region.area();
  if (std::fabs(total - expected) > 1e-9 * std::fabs(expected)) {
    return ::testing::AssertionFailure()
           << "triangle areas sum to " << total << ", the region's area is " << expected;
  }

  // Every edge without its reverse must lie on the boundary, and these
  // edges must cover each boundary edge exactly once.
  std::map<std::pair<int, int>, double> covered;
  for (const auto& [edge, uses] : directed) {
    if (directed.count({edge.second, edge.first}) > 0) continue;
    const XY& p = vertices(edge.first);
    const XY& q = vertices(edge.second);
    const EdgeIndex holder = boundaryEdgeHolding(region, p, q, tol);
    if (holder.polygon < 0) {
      return ::testing::AssertionFailure()
             << "edge " << edge.first << "->" << edge.second << " is used once but lies inside";
    }
    covered[{holder.polygon, holder.edge}] += std::hypot(q.x - p.x, q.y - p.y);
  }
  for (std::size_t k = 0; k < region.polygons.size(); ++k) {
    const auto& poly = region.polygons[k];
    for (std::size_t i = 0; i < poly.size(); ++i) {
      const XY& a = poly[i];
      const XY& b = poly[(i + 1) % poly.size()];
      const double length = std::hypot(b.x - a.x, b.y - a.y);
      const double got = covered[{static_cast<int>(k), static_cast<int>(i)}];
      if (std::fabs(got - length) > 1e-9 * std::max(length, 1.0)) {
        return ::testing::AssertionFailure()
               << "boundary edge " << i << " of polygon " << k << " (length " << length
               << ") is covered by mesh edges of total length " << got;
      }
    }
  }
  return ::testing::AssertionSuccess();
}

}  // namespace kntr::testing
