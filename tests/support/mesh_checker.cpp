#include "support/mesh_checker.h"

#include <cmath>
#include <map>
#include <sstream>
#include <utility>

#include "mesher/halfedge.h"
#include "mesher/limits.h"

namespace kntr::testing {

using mesher::MeshData;
using mesher::Pi;

double signedArea(const std::vector<XY>& polygon) {
  double twice = 0.0;
  const std::size_t n = polygon.size();
  for (std::size_t i = 0; i < n; ++i) {
    const XY a = polygon[i];
    const XY b = polygon[(i + 1) % n];
    twice += a.x * b.y - b.x * a.y;
  }
  return 0.5 * twice;
}

double regionArea(const TestRegion& region) {
  double area = 0.0;
  for (std::size_t k = 0; k < region.polygons.size(); ++k) {
    const double a = std::fabs(signedArea(region.polygons[k]));
    area += k == 0 ? a : -a;
  }
  return area;
}

double boundaryLength(const TestRegion& region) {
  double length = 0.0;
  for (const auto& polygon : region.polygons) {
    const std::size_t n = polygon.size();
    for (std::size_t i = 0; i < n; ++i) {
      const XY a = polygon[i];
      const XY b = polygon[(i + 1) % n];
      length += std::hypot(b.x - a.x, b.y - a.y);
    }
  }
  return length;
}

int layOut(const TestRegion& region, View1<XY> vertices, View1<int> sizes) {
  int put = 0;
  for (std::size_t k = 0; k < region.polygons.size(); ++k) {
    sizes(static_cast<int>(k) + 1) = static_cast<int>(region.polygons[k].size());
    for (const XY& p : region.polygons[k]) vertices(++put) = p;
  }
  return static_cast<int>(region.polygons.size()) - 1;
}

namespace {

bool near(double value, double expected, double relative) {
  return std::fabs(value - expected) <= relative * std::max(1.0, std::fabs(expected));
}

// Difference of two angles, folded into [0, pi].
double angleGap(double a, double b) {
  double d = std::fmod(std::fabs(a - b), 2.0 * Pi);
  return std::min(d, 2.0 * Pi - d);
}

}  // namespace

std::vector<std::string> checkDecomposition(const MeshData& m, double area, double length,
                                            bool convex) {
  std::vector<std::string> problems;
  auto report = [&](const std::string& text) {
    if (problems.size() < 20) problems.push_back(text);
  };
  const int nh = m.NumHalfEdges;
  const int np = m.NumPolygons;
  const int nv = m.NumVertices;
  if (nh < 1 || nh > mesher::MaxHalfEdges || np < 1 || np > mesher::MaxSubPolygons || nv < 1 ||
      nv > m.Vertices.size()) {
    report("counts out of range: " + std::to_string(nh) + " half-edges, " + std::to_string(np) +
           " polygons, " + std::to_string(nv) + " vertices");
    return problems;
  }
  const auto& he = m.HalfEdge;
  std::vector<int> pointedTo(nh + 1, 0);
  for (int e = 1; e <= nh; ++e) {
    const auto& row = he(e);
    if (row.Vertex < 1 || row.Vertex > nv || row.Polygon < 1 || row.Polygon > np || row.Next < 1 ||
        row.Next > nh || row.Twin < 0 || row.Twin > nh) {
      report("half-edge " + std::to_string(e) + " has a field out of range");
      return problems;
    }
    pointedTo[row.Next] += 1;
  }
  for (int e = 1; e <= nh; ++e) {
    if (pointedTo[e] != 1) {
      report("half-edge " + std::to_string(e) + " follows " + std::to_string(pointedTo[e]) +
             " half-edges");
    }
  }
  if (!problems.empty()) return problems;

  // Cycles.
  std::vector<int> cycleOf(nh + 1, 0);
  double areaSum = 0.0;
  for (int p = 1; p <= np; ++p) {
    const int first = m.PolygonFirst(p);
    if (first < 1 || first > nh) {
      report("polygon " + std::to_string(p) + " has no first half-edge");
      continue;
    }
    std::vector<int> cycle;
    int e = first;
    do {
      if (cycleOf[e] != 0) {
        report("half-edge " + std::to_string(e) + " lies on polygons " +
               std::to_string(cycleOf[e]) + " and " + std::to_string(p));
        return problems;
      }
      cycleOf[e] = p;
      cycle.push_back(e);
      if (he(e).Polygon != p) {
        report("half-edge " + std::to_string(e) + " of polygon " + std::to_string(p) +
               " is marked " + std::to_string(he(e).Polygon));
      }
      e = he(e).Next;
    } while (e != first && static_cast<int>(cycle.size()) <= nh);
    if (e != first) {
      report("polygon " + std::to_string(p) + " does not close");
      continue;
    }
    const int n = static_cast<int>(cycle.size());
    if (n < 3) report("polygon " + std::to_string(p) + " has " + std::to_string(n) + " corners");

    // Area, orientation, convexity and the stored angles.
    double twice = 0.0;
    for (int i = 0; i < n; ++i) {
      const XY a = m.Vertices(he(cycle[i]).Vertex);
      const XY b = m.Vertices(he(cycle[(i + 1) % n]).Vertex);
      twice += a.x * b.y - b.x * a.y;
      for (int j = i + 1; j < n && convex; ++j) {
        if (m.Vertices(he(cycle[j]).Vertex) == a) {
          report("polygon " + std::to_string(p) + " passes twice through (" + std::to_string(a.x) +
                 ", " + std::to_string(a.y) + ")");
        }
      }
    }
    if (!(twice > 0.0)) {
      report("polygon " + std::to_string(p) + " has area " + std::to_string(0.5 * twice));
    }
    areaSum += 0.5 * twice;
    for (int i = 0; i < n; ++i) {
      const int e0 = cycle[(i + n - 1) % n];
      const int e1 = cycle[i];
      const int e2 = cycle[(i + 1) % n];
      const XY a = m.Vertices(he(e0).Vertex);
      const XY b = m.Vertices(he(e1).Vertex);
      const XY c = m.Vertices(he(e2).Vertex);
      const double measured = mesher::IQANGL(a.x, a.y, b.x, b.y, c.x, c.y);
      const double stored = m.CornerAngle(e1);
      if (angleGap(measured, stored) > 1e-9) {
        report("corner " + std::to_string(e1) + " stores angle " + std::to_string(stored) +
               " but measures " + std::to_string(measured));
      }
      if (convex && (stored > Pi + m.MeshTol || measured > Pi + 1e-9)) {
        report("polygon " + std::to_string(p) + " is reflex at half-edge " + std::to_string(e1) +
               " (angle " + std::to_string(measured) + ")");
      }
    }
  }
  for (int e = 1; e <= nh; ++e) {
    if (cycleOf[e] == 0) report("half-edge " + std::to_string(e) + " lies on no polygon");
  }

  // Twins and the boundary.
  double boundary = 0.0;
  for (int e = 1; e <= nh; ++e) {
    const int t = he(e).Twin;
    const XY a = m.Vertices(he(e).Vertex);
    const XY b = m.Vertices(he(he(e).Next).Vertex);
    if (t == 0) {
      boundary += std::hypot(b.x - a.x, b.y - a.y);
      continue;
    }
    if (he(t).Twin != e) {
      report("twin of " + std::to_string(e) + " is " + std::to_string(t) + ", whose twin is " +
             std::to_string(he(t).Twin));
    } else if (he(t).Vertex != he(he(e).Next).Vertex || he(he(t).Next).Vertex != he(e).Vertex) {
      report("half-edges " + std::to_string(e) + " and " + std::to_string(t) +
             " are twins but do not join the same vertices");
    }
  }
  if (!near(areaSum, area, 1e-9)) {
    report("polygon areas add up to " + std::to_string(areaSum) + ", not " + std::to_string(area));
  }
  if (!near(boundary, length, 1e-9)) {
    report("boundary half-edges add up to " + std::to_string(boundary) + ", not " +
           std::to_string(length));
  }
  return problems;
}

std::vector<std::string> checkTriangles(int numVertices, View1<const XY> vertices, int numTriangles,
                                        View1<const mesher::Triangle> triangles, double area,
                                        double length) {
  std::vector<std::string> problems;
  auto report = [&](const std::string& text) {
    if (problems.size() < 20) problems.push_back(text);
  };
  std::map<std::pair<int, int>, int> directed;
  double areaSum = 0.0;
  for (int t = 1; t <= numTriangles; ++t) {
    const auto& tri = triangles(t);
    bool inRange = true;
    for (int j = 1; j <= 3; ++j) inRange = inRange && tri(j) >= 1 && tri(j) <= numVertices;
    if (!inRange || tri(1) == tri(2) || tri(2) == tri(3) || tri(3) == tri(1)) {
      report("triangle " + std::to_string(t) + " has bad vertex numbers");
      continue;
    }
    const XY a = vertices(tri(1)), b = vertices(tri(2)), c = vertices(tri(3));
    const double twice = (b.x - a.x) * (c.y - a.y) - (c.x - a.x) * (b.y - a.y);
    if (!(twice > 0.0)) {
      report("triangle " + std::to_string(t) + " has area " + std::to_string(0.5 * twice));
    }
    areaSum += 0.5 * twice;
    for (int j = 1; j <= 3; ++j) {
      const auto edge = std::make_pair(tri(j), tri(j == 3 ? 1 : j + 1));
      if (++directed[edge] > 1) {
        report("edge " + std::to_string(edge.first) + "-" + std::to_string(edge.second) +
               " is used twice in one direction");
      }
    }
  }
  double boundary = 0.0;
  for (const auto& [edge, uses] : directed) {
    if (directed.count({edge.second, edge.first}) != 0) continue;
    const XY a = vertices(edge.first), b = vertices(edge.second);
    boundary += std::hypot(b.x - a.x, b.y - a.y);
  }
  if (!near(areaSum, area, 1e-9)) {
    report("triangle areas add up to " + std::to_string(areaSum) + ", not " + std::to_string(area));
  }
  if (!near(boundary, length, 1e-9)) {
    report("edges of one triangle add up to " + std::to_string(boundary) + ", not " +
           std::to_string(length));
  }
  return problems;
}

std::string joined(const std::vector<std::string>& problems) {
  std::ostringstream text;
  for (const auto& line : problems) text << line << '\n';
  return text.str();
}

}  // namespace kntr::testing
