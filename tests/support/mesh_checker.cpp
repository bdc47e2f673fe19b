#include "support/mesh_checker.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <sstream>
#include <utility>

#include "mesher/halfedge.h"
#include "mesher/limits.h"

namespace kntr::testing {

using mesher::MeshData;
using mesher::Pi;

namespace {

// Problems gathered for one failure message; the first 20 are kept.
class Problems {
 public:
  std::ostream& add() {
    ++count_;
    return count_ <= 20 ? text_ << '\n' : ignored_;
  }
  bool any() const { return count_ > 0; }
  ::testing::AssertionResult result() const {
    if (count_ == 0) return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure() << count_ << " problems:" << text_.str();
  }

 private:
  int count_ = 0;
  std::ostringstream text_, ignored_;
};

// Number of the region's polygons, other than `skip`, that hold p.
int depth(const TestRegion& region, const XY& p, std::size_t skip) {
  int count = 0;
  for (std::size_t k = 0; k < region.polygons.size(); ++k)
    if (k != skip && insidePolygon(p, region.polygons[k])) ++count;
  return count;
}

// True when p lies inside the region or within `tol` of its boundary.
bool contains(const TestRegion& region, const XY& p, double tol) {
  for (const auto& poly : region.polygons)
    for (std::size_t i = 0; i < poly.size(); ++i)
      if (distanceToSegment(p, poly[i], poly[(i + 1) % poly.size()]) <= tol) return true;
  return depth(region, p, region.polygons.size()) % 2 == 1;
}

bool near(double value, double expected, double relative) {
  return std::fabs(value - expected) <= relative * std::max(1.0, std::fabs(expected));
}

// Difference of two angles, folded into [0, pi].
double angleGap(double a, double b) {
  const double d = std::fmod(std::fabs(a - b), 2.0 * Pi);
  return std::min(d, 2.0 * Pi - d);
}

// Area of a region: polygons inside an even number of others add, the rest
// subtract.
double regionArea(const TestRegion& region) {
  double area = 0.0;
  for (std::size_t k = 0; k < region.polygons.size(); ++k) {
    const double a = std::fabs(signedArea(region.polygons[k]));
    area += depth(region, region.polygons[k][0], k) % 2 == 0 ? a : -a;
  }
  return area;
}

// Length of all boundary polygons of a region.
double boundaryLength(const TestRegion& region) {
  double length = 0.0;
  for (const auto& polygon : region.polygons) {
    for (std::size_t i = 0; i < polygon.size(); ++i) {
      const XY a = polygon[i], b = polygon[(i + 1) % polygon.size()];
      length += std::hypot(b.x - a.x, b.y - a.y);
    }
  }
  return length;
}

}  // namespace

double cross(const XY& o, const XY& a, const XY& b) {
  return (a.x - o.x) * (b.y - o.y) - (a.y - o.y) * (b.x - o.x);
}

bool properlyCross(const XY& a, const XY& b, const XY& c, const XY& d) {
  const double d1 = cross(a, b, c), d2 = cross(a, b, d);
  const double d3 = cross(c, d, a), d4 = cross(c, d, b);
  return ((d1 > 0 && d2 < 0) || (d1 < 0 && d2 > 0)) && ((d3 > 0 && d4 < 0) || (d3 < 0 && d4 > 0));
}

double distanceToSegment(const XY& p, const XY& a, const XY& b) {
  const double dx = b.x - a.x, dy = b.y - a.y;
  const double length2 = dx * dx + dy * dy;
  const double t =
      length2 > 0.0 ? std::clamp(((p.x - a.x) * dx + (p.y - a.y) * dy) / length2, 0.0, 1.0) : 0.0;
  return std::hypot(p.x - (a.x + t * dx), p.y - (a.y + t * dy));
}

bool insidePolygon(const XY& p, const std::vector<XY>& polygon) {
  bool inside = false;
  for (std::size_t i = 0, j = polygon.size() - 1; i < polygon.size(); j = i++) {
    const XY& a = polygon[i];
    const XY& b = polygon[j];
    if ((a.y > p.y) != (b.y > p.y) && p.x < (b.x - a.x) * (p.y - a.y) / (b.y - a.y) + a.x)
      inside = !inside;
  }
  return inside;
}

double signedArea(const std::vector<XY>& polygon) {
  double twice = 0.0;
  for (std::size_t i = 0; i < polygon.size(); ++i) {
    const XY a = polygon[i], b = polygon[(i + 1) % polygon.size()];
    twice += a.x * b.y - b.x * a.y;
  }
  return 0.5 * twice;
}

int layOut(const TestRegion& region, View1<XY> vertices, View1<int> sizes) {
  int put = 0;
  for (std::size_t k = 0; k < region.polygons.size(); ++k) {
    sizes(static_cast<int>(k) + 1) = static_cast<int>(region.polygons[k].size());
    for (const XY& p : region.polygons[k]) vertices(++put) = p;
  }
  return static_cast<int>(region.polygons.size()) - 1;
}

::testing::AssertionResult checkDecomposition(const MeshData& m, const TestRegion& region,
                                              bool convex) {
  Problems problems;
  const int nh = m.NumHalfEdges, np = m.NumPolygons, nv = m.NumVertices;
  if (nh < 1 || nh > mesher::MaxHalfEdges || np < 1 || np > mesher::MaxSubPolygons || nv < 1 ||
      nv > m.Vertices.size()) {
    problems.add() << "counts out of range: " << nh << " half-edges, " << np << " polygons, " << nv
                   << " vertices";
    return problems.result();
  }
  const auto& he = m.HalfEdge;
  std::vector<int> pointedTo(nh + 1, 0);
  for (int e = 1; e <= nh; ++e) {
    const auto& row = he(e);
    if (row.Vertex < 1 || row.Vertex > nv || row.Polygon < 1 || row.Polygon > np || row.Next < 1 ||
        row.Next > nh || row.Twin < 0 || row.Twin > nh) {
      problems.add() << "half-edge " << e << " has a field out of range";
      return problems.result();
    }
    pointedTo[row.Next] += 1;
  }
  for (int e = 1; e <= nh; ++e)
    if (pointedTo[e] != 1) problems.add() << "half-edge " << e << " follows " << pointedTo[e];
  if (problems.any()) return problems.result();

  // Cycles: closure, orientation, convexity and the stored angles.
  std::vector<int> cycleOf(nh + 1, 0);
  double areaSum = 0.0;
  for (int p = 1; p <= np; ++p) {
    const int first = m.PolygonFirst(p);
    if (first < 1 || first > nh) {
      problems.add() << "polygon " << p << " has no first half-edge";
      continue;
    }
    std::vector<int> cycle;
    int e = first;
    do {
      if (cycleOf[e] != 0) {
        problems.add() << "half-edge " << e << " lies on polygons " << cycleOf[e] << " and " << p;
        return problems.result();
      }
      cycleOf[e] = p;
      cycle.push_back(e);
      if (he(e).Polygon != p)
        problems.add() << "half-edge " << e << " of polygon " << p << " is marked "
                       << he(e).Polygon;
      e = he(e).Next;
    } while (e != first && static_cast<int>(cycle.size()) <= nh);
    if (e != first) {
      problems.add() << "polygon " << p << " does not close";
      continue;
    }
    const int n = static_cast<int>(cycle.size());
    if (n < 3) problems.add() << "polygon " << p << " has " << n << " corners";
    double twice = 0.0;
    for (int i = 0; i < n; ++i) {
      const XY a = m.Vertices(he(cycle[i]).Vertex);
      const XY b = m.Vertices(he(cycle[(i + 1) % n]).Vertex);
      twice += a.x * b.y - b.x * a.y;
      for (int j = i + 1; j < n && convex; ++j)
        if (m.Vertices(he(cycle[j]).Vertex) == a)
          problems.add() << "polygon " << p << " passes twice through (" << a.x << ", " << a.y
                         << ")";
    }
    if (!(twice > 0.0)) problems.add() << "polygon " << p << " has area " << 0.5 * twice;
    areaSum += 0.5 * twice;
    for (int i = 0; i < n; ++i) {
      const int e1 = cycle[i];
      const XY a = m.Vertices(he(cycle[(i + n - 1) % n]).Vertex);
      const XY b = m.Vertices(he(e1).Vertex);
      const XY c = m.Vertices(he(cycle[(i + 1) % n]).Vertex);
      const double measured = mesher::IQANGL(a.x, a.y, b.x, b.y, c.x, c.y);
      const double stored = m.CornerAngle(e1);
      if (angleGap(measured, stored) > 1e-9)
        problems.add() << "corner " << e1 << " stores angle " << stored << " but measures "
                       << measured;
      if (convex && (stored > Pi + m.MeshTol || measured > Pi + 1e-9))
        problems.add() << "polygon " << p << " is reflex at half-edge " << e1 << " (angle "
                       << measured << ")";
    }
  }
  for (int e = 1; e <= nh; ++e)
    if (cycleOf[e] == 0) problems.add() << "half-edge " << e << " lies on no polygon";

  // Twins and the boundary.
  double boundary = 0.0;
  for (int e = 1; e <= nh; ++e) {
    const int t = he(e).Twin;
    const XY a = m.Vertices(he(e).Vertex);
    const XY b = m.Vertices(he(he(e).Next).Vertex);
    if (t == 0) {
      boundary += std::hypot(b.x - a.x, b.y - a.y);
    } else if (he(t).Twin != e) {
      problems.add() << "twin of " << e << " is " << t << ", whose twin is " << he(t).Twin;
    } else if (he(t).Vertex != he(he(e).Next).Vertex || he(he(t).Next).Vertex != he(e).Vertex) {
      problems.add() << "half-edges " << e << " and " << t
                     << " are twins but do not join the same vertices";
    }
  }
  const double area = regionArea(region), length = boundaryLength(region);
  if (!near(areaSum, area, 1e-9))
    problems.add() << "polygon areas add up to " << areaSum << ", not " << area;
  if (!near(boundary, length, 1e-9))
    problems.add() << "boundary half-edges add up to " << boundary << ", not " << length;
  return problems.result();
}

::testing::AssertionResult checkTriangles(const TestRegion& region, View1<const XY> vertices,
                                          int numTriangles,
                                          View1<const mesher::Triangle> triangles) {
  Problems problems;
  // A length scale for the tolerances of the boundary tests: the region's
  // own, so that a region of any size is held to the same relative bounds.
  double extent = 0.0;
  for (const auto& poly : region.polygons)
    for (const XY& p : poly) extent = std::max({extent, std::fabs(p.x), std::fabs(p.y)});
  const double tol = 1e-9 * extent;

  double total = 0.0;
  std::map<std::pair<int, int>, int> directed;
  for (int t = 1; t <= numTriangles; ++t) {
    const mesher::Triangle& tri = triangles(t);
    bool inRange = true;
    for (int j = 1; j <= 3; ++j) inRange = inRange && tri(j) >= 1 && tri(j) <= vertices.size();
    if (!inRange || tri(1) == tri(2) || tri(2) == tri(3) || tri(3) == tri(1)) {
      problems.add() << "triangle " << t << " has bad vertex numbers " << tri(1) << ", " << tri(2)
                     << ", " << tri(3);
      continue;
    }
    const XY a = vertices(tri(1)), b = vertices(tri(2)), c = vertices(tri(3));
    const double twice = (b.x - a.x) * (c.y - a.y) - (c.x - a.x) * (b.y - a.y);
    if (!(twice > 0.0))
      problems.add() << "triangle " << t << " (" << tri(1) << ", " << tri(2) << ", " << tri(3)
                     << ") is not counterclockwise with positive area: twice its area is " << twice;
    total += 0.5 * twice;
    for (int j = 1; j <= 3; ++j) {
      const XY& p = vertices(tri(j));
      if (!contains(region, p, tol))
        problems.add() << "vertex " << tri(j) << " (" << p.x << ", " << p.y
                       << ") lies outside the region";
      const int from = tri(j), to = tri(j == 3 ? 1 : j + 1);
      if (++directed[{from, to}] > 1)
        problems.add() << "edge " << from << "->" << to << " is used twice in one direction";
    }
  }
  const double expected = regionArea(region);
  if (std::fabs(total - expected) > 1e-9 * std::fabs(expected))
    problems.add() << "triangle areas sum to " << total << ", the region's area is " << expected;

  // Every edge without its reverse must lie on the boundary, and these
  // edges must cover each boundary edge exactly once.
  std::map<std::pair<std::size_t, std::size_t>, double> covered;
  for (const auto& [edge, uses] : directed) {
    if (directed.count({edge.second, edge.first}) > 0) continue;
    const XY& p = vertices(edge.first);
    const XY& q = vertices(edge.second);
    bool held = false;
    for (std::size_t k = 0; k < region.polygons.size() && !held; ++k) {
      const auto& poly = region.polygons[k];
      for (std::size_t i = 0; i < poly.size() && !held; ++i) {
        const XY& a = poly[i];
        const XY& b = poly[(i + 1) % poly.size()];
        if (distanceToSegment(p, a, b) <= tol && distanceToSegment(q, a, b) <= tol) {
          covered[{k, i}] += std::hypot(q.x - p.x, q.y - p.y);
          held = true;
        }
      }
    }
    if (!held)
      problems.add() << "edge " << edge.first << "->" << edge.second
                     << " is used once but lies inside";
  }
  for (std::size_t k = 0; k < region.polygons.size(); ++k) {
    const auto& poly = region.polygons[k];
    for (std::size_t i = 0; i < poly.size(); ++i) {
      const XY& a = poly[i];
      const XY& b = poly[(i + 1) % poly.size()];
      const double length = std::hypot(b.x - a.x, b.y - a.y);
      const double got = covered[{k, i}];
      if (std::fabs(got - length) > 1e-9 * std::max(length, 1e-3 * extent))
        problems.add() << "boundary edge " << i << " of polygon " << k << " (length " << length
                       << ") is covered by mesh edges of total length " << got;
    }
  }
  return problems.result();
}

}  // namespace kntr::testing
