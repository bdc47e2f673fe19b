#include "mesher/robust.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <string_view>

#include "framework/state.h"
#include "framework/text.h"
#include "mesher/driver.h"
#include "mesher/improve.h"
#include "mesher/limits.h"
#include "mesher/polygons.h"
#include "mesher/predicates.h"
#include "mesher/quality.h"
#include "profile/block.h"
#include "profile/polylines.h"

namespace kntr::mesher {

namespace {

// Messages of one attempt, held back: the first error is kept so that it
// can be shown when every attempt has failed. The framework's error and
// message boxes are borrowed for the time of the attempt.
struct HeldMessages {
  std::array<char, 240> first{};
  std::size_t length = 0;
  bool any = false;
};

HeldMessages& heldMessages() {
  static HeldMessages held;
  return held;
}

void holdMessage(std::string_view text) {
  HeldMessages& held = heldMessages();
  if (held.any) return;
  held.any = true;
  held.length = std::min(text.size(), held.first.size());
  std::copy_n(text.data(), held.length, held.first.data());
}

class MessageHold {
 public:
  MessageHold() : device_(framework::program().outputDevice), hooks_(framework::graphicsTextHooks()) {
    framework::program().outputDevice = framework::DeviceGraphics;
    framework::graphicsTextHooks().errorBox = holdMessage;
    framework::graphicsTextHooks().messageBox = holdMessage;
  }
  ~MessageHold() {
    framework::program().outputDevice = device_;
    framework::graphicsTextHooks() = hooks_;
  }
  MessageHold(const MessageHold&) = delete;
  MessageHold& operator=(const MessageHold&) = delete;

 private:
  int device_;
  framework::GraphicsTextHooks hooks_;
};

// The region's boundary as given, kept while it is meshed in turned and
// scaled copies.
Array1<XY, MaxBoundaryVertices> originalBoundary;

// The best mesh of the quality search.
struct BestMesh {
  int numVertices = 0;
  int count = 0;
  double quality = -1.0;
  Array1<XY, MaxAutoTriangles> vertices;
  Array1<Triangle, MaxAutoTriangles> triangles;
};

BestMesh& bestMesh() {
  static BestMesh best;
  return best;
}

Array1<double, MaxAutoTriangles> searchQuality;

// Twice the signed area of a triangle.
double twiceArea(const XY& a, const XY& b, const XY& c) {
  return (b.x - a.x) * (c.y - a.y) - (b.y - a.y) * (c.x - a.x);
}

// The directed edges of a mesh grouped by their start vertex, for the edge
// checks: the ends of the edges from vertex a are
// edgeEnd(edgeFirst(a) .. edgeFirst(a + 1) - 1).
inline constexpr int MaxCheckVertices = 20000;
Array1<int, MaxCheckVertices + 1> edgeFirst;
Array1<int, MaxCheckVertices> edgeCursor;
Array1<int, 3 * MaxAutoTriangles> edgeEnd;

// Whether an edge a -> b is among those filed so far (up to edgeCursor(a)).
// Work lists of the repair: vertices that must stay, neighbours tried, and
// the new numbers of the vertices kept.
Array1<bool, MaxCheckVertices> fixedVertex;
Array1<int, 32> triedList;
Array1<int, MaxCheckVertices> newNumber;

bool hasEdge(int a, int b) {
  for (int k = edgeFirst(a); k < edgeCursor(a); ++k) {
    if (edgeEnd(k) == b) return true;
  }
  return false;
}

// One turned and scaled copy of the region, meshed by the plain pipeline
// with the layout of the quality stage when asked.
void attempt(int numHoles, View1<const int> polySizes, int boundary, double cx, double cy,
             double scale, double angle, bool improve, int& numVertices, View1<XY> vertices,
             int& count, View1<Triangle> triangles, bool& status) {
  const double c = std::cos(angle), s = std::sin(angle);
  for (int i = 1; i <= boundary; ++i) {
    const double x = (originalBoundary(i).x - cx) * scale;
    const double y = (originalBoundary(i).y - cy) * scale;
    vertices(i) = XY{c * x - s * y, s * x + c * y};
  }
  meshLayout().improved = improve;
  TRNSM2(numHoles, polySizes, false, numVertices, vertices, count, triangles, status);
  meshLayout().improved = false;
  if (status) return;
  // Back to the region's own place; the boundary exactly as given.
  for (int i = 1; i <= boundary; ++i) vertices(i) = originalBoundary(i);
  for (int i = boundary + 1; i <= numVertices; ++i) {
    const XY p = vertices(i);
    vertices(i) = XY{(c * p.x + s * p.y) / scale + cx, (c * p.y - s * p.x) / scale + cy};
  }
}

}  // namespace

bool IQMSVL(int numHoles, View1<const int> polySizes, int numVertices, View1<const XY> vertices,
            int numTriangles, View1<const Triangle> triangles) {
  if (numTriangles < 1 || numTriangles > MaxAutoTriangles) return false;
  // The region's area and boundary length.
  double area = 0.0, perimeter = 0.0;
  int offset = 0;
  for (int k = 1; k <= numHoles + 1; ++k) {
    const int n = polySizes(k);
    double twice = 0.0;
    for (int i = 1; i <= n; ++i) {
      const XY a = vertices(offset + i), b = vertices(offset + (i == n ? 1 : i + 1));
      twice += a.x * b.y - b.x * a.y;
      perimeter += std::hypot(b.x - a.x, b.y - a.y);
    }
    area += (k == 1 ? 0.5 : -0.5) * std::fabs(twice);
    offset += n;
  }

  if (numVertices > MaxCheckVertices) return false;
  double sum = 0.0;
  for (int v = 1; v <= numVertices; ++v) edgeCursor(v) = 0;
  for (int t = 1; t <= numTriangles; ++t) {
    const Triangle& tri = triangles(t);
    for (int j = 1; j <= 3; ++j) {
      if (tri(j) < 1 || tri(j) > numVertices) return false;
    }
    const XY& a = vertices(tri(1));
    const XY& b = vertices(tri(2));
    const XY& c = vertices(tri(3));
    if (IQORNT(a, b, c) <= 0) return false;
    sum += 0.5 * twiceArea(a, b, c);
    for (int j = 1; j <= 3; ++j) edgeCursor(tri(j)) += 1;
  }
  edgeFirst(1) = 1;
  for (int v = 1; v <= numVertices; ++v) {
    edgeFirst(v + 1) = edgeFirst(v) + edgeCursor(v);
    edgeCursor(v) = edgeFirst(v);
  }
  for (int t = 1; t <= numTriangles; ++t) {
    const Triangle& tri = triangles(t);
    for (int j = 1; j <= 3; ++j) {
      const int a = tri(j), b = tri(j == 3 ? 1 : j + 1);
      if (hasEdge(a, b)) return false;  // used twice in one direction
      edgeEnd(edgeCursor(a)++) = b;
    }
  }
  double single = 0.0;
  for (int a = 1; a <= numVertices; ++a) {
    for (int k = edgeFirst(a); k < edgeFirst(a + 1); ++k) {
      const int b = edgeEnd(k);
      if (!hasEdge(b, a))
        single += std::hypot(vertices(b).x - vertices(a).x, vertices(b).y - vertices(a).y);
    }
  }
  return std::fabs(sum - area) <= 1e-9 * area && std::fabs(single - perimeter) <= 1e-9 * perimeter;
}

void RMINVT(int boundary, int& numVertices, View1<XY> vertices, int& numTriangles,
            View1<Triangle> triangles) {
  // The vertices on the region's boundary: those that start a half-edge
  // without twin, and the points put on such half-edges.
  const MeshData& m = meshData();
  if (numVertices > MaxCheckVertices) return;
  for (int v = 1; v <= numVertices; ++v) fixedVertex(v) = v <= boundary;
  for (int e = 1; e <= m.NumHalfEdges; ++e) {
    if (m.HalfEdge(e).Twin != 0) continue;
    const int start = m.HalfEdge(e).Vertex;
    if (start >= 1 && start <= numVertices) fixedVertex(start) = true;
    const int count = std::abs(m.EdgePointCount(e));
    for (int k = 0; k < count && m.EdgePointStart(e) > 0; ++k) {
      const int v = m.EdgePointStart(e) + k;
      if (v <= numVertices) fixedVertex(v) = true;
    }
  }
  auto has = [&](int t, int v) {
    return triangles(t)(1) == v || triangles(t)(2) == v || triangles(t)(3) == v;
  };
  // Whether every triangle around v, v taken to w, stays counterclockwise
  // (those that hold both vanish).
  auto canCollapse = [&](int v, int w) {
    for (int t = 1; t <= numTriangles; ++t) {
      if (!has(t, v) || has(t, w)) continue;
      XY p[3];
      for (int j = 1; j <= 3; ++j) p[j - 1] = vertices(triangles(t)(j) == v ? w : triangles(t)(j));
      if (IQORNT(p[0], p[1], p[2]) <= 0) return false;
    }
    return true;
  };
  auto collapse = [&](int v, int w) {
    int kept = 0;
    for (int t = 1; t <= numTriangles; ++t) {
      if (has(t, v) && has(t, w)) continue;
      Triangle tri = triangles(t);
      for (int j = 1; j <= 3; ++j) {
        if (tri(j) == v) tri(j) = w;
      }
      triangles(++kept) = tri;
    }
    numTriangles = kept;
  };

  for (int pass = 0; pass < MaxRepairPasses; ++pass) {
    bool changed = false;
    for (int t = 1; t <= numTriangles; ++t) {
      const Triangle tri = triangles(t);
      if (IQORNT(vertices(tri(1)), vertices(tri(2)), vertices(tri(3))) > 0) continue;
      // Collapse a free vertex of it onto its nearest neighbour that allows it.
      bool done = false;
      for (int j = 1; j <= 3 && !done; ++j) {
        const int v = tri(j);
        if (fixedVertex(v)) continue;
        for (int tries = 0; tries < 32 && !done; ++tries) {
          int w = 0;
          double nearest = 0.0;
          for (int u = 1; u <= numTriangles; ++u) {
            if (!has(u, v)) continue;
            for (int k = 1; k <= 3; ++k) {
              const int c = triangles(u)(k);
              if (c == v) continue;
              const double d = std::hypot(vertices(c).x - vertices(v).x,
                                          vertices(c).y - vertices(v).y);
              bool before = false;
              for (int q = 1; q <= tries; ++q) before = before || triedList(q) == c;
              if (before) continue;
              if (w == 0 || d < nearest) {
                w = c;
                nearest = d;
              }
            }
          }
          if (w == 0) break;
          triedList(tries + 1) = w;
          if (canCollapse(v, w)) {
            collapse(v, w);
            done = true;
          }
        }
      }
      if (done) {
        changed = true;
        break;
      }
    }
    if (!changed) break;
  }

  // Vertices that no triangle uses any more are dropped; the others keep
  // their order, the boundary's first.
  for (int v = 1; v <= numVertices; ++v) newNumber(v) = 0;
  for (int t = 1; t <= numTriangles; ++t)
    for (int j = 1; j <= 3; ++j) newNumber(triangles(t)(j)) = 1;
  int kept = 0;
  for (int v = 1; v <= numVertices; ++v) {
    if (newNumber(v) == 0 && v > boundary) continue;
    newNumber(v) = ++kept;
    vertices(kept) = vertices(v);
  }
  for (int t = 1; t <= numTriangles; ++t)
    for (int j = 1; j <= 3; ++j) triangles(t)(j) = newNumber(triangles(t)(j));
  numVertices = kept;
}

void TRRBM2(int numHoles, View1<const int> polySizes, const RobustSettings& settings,
            int& numVertices, View1<XY> vertices, int& count, View1<Triangle> triangles,
            bool& status) {
  status = false;
  if (numHoles > MaxHoles) {
    framework::fail("(TRNSM2) Max number of interior meshing holes exceeded!", status);
    return;
  }
  int boundary = 0;
  for (int k = 1; k <= numHoles + 1; ++k) boundary += polySizes(k);
  if (boundary > MaxBoundaryVertices || boundary > vertices.size()) {
    framework::fail("(IZMCPR) Max number of polygon vertices exceeded!", status);
    return;
  }
  double xlo = vertices(1).x, xhi = xlo, ylo = vertices(1).y, yhi = ylo;
  for (int i = 1; i <= boundary; ++i) {
    originalBoundary(i) = vertices(i);
    xlo = std::min(xlo, vertices(i).x);
    xhi = std::max(xhi, vertices(i).x);
    ylo = std::min(ylo, vertices(i).y);
    yhi = std::max(yhi, vertices(i).y);
  }
  // A power of two near the reciprocal of the size: scaling by it is exact.
  const double extent = std::max(xhi - xlo, yhi - ylo);
  const double scale = extent > 0.0 && std::isfinite(extent) ? std::ldexp(1.0, -std::ilogb(extent))
                                                             : 1.0;
  const double cx = 0.5 * (xlo + xhi), cy = 0.5 * (ylo + yhi);

  const int desired = count;
  HeldMessages& held = heldMessages();
  held = HeldMessages{};
  bool done = false;
  for (int a = 0; a < MaxRobustAttempts && !done; ++a) {
    // Turns by an irrational share of a full turn, so that no two attempts
    // line the region up alike; counts a little apart.
    const double angle = a == 0 ? 0.0 : 2.0 * Pi * std::fmod(0.6180339887498949 * a, 1.0);
    count = a == 0 ? desired : std::max(1, desired + (a % 2 == 1 ? 1 : -1) * desired * a / 50);
    bool failed = false;
    {
      MessageHold hold;
      attempt(numHoles, polySizes, boundary, cx, cy, scale, angle, settings.improve, numVertices,
              vertices, count, triangles, failed);
    }
    if (failed) continue;
    if (!IQMSVL(numHoles, polySizes, numVertices, vertices, count, triangles)) {
      RMINVT(boundary, numVertices, vertices, count, triangles);
    }
    if (IQMSVL(numHoles, polySizes, numVertices, vertices, count, triangles)) {
      done = true;
    } else if (!held.any) {
      holdMessage("(TRRBM2) Could not make a proper mesh of the region!");
    }
  }
  for (int i = 1; i <= boundary; ++i) vertices(i) = originalBoundary(i);
  if (!done) {
    if (!held.any) holdMessage("(TRRBM2) Could not make a proper mesh of the region!");
    framework::fail(std::string_view(held.first.data(), held.length), status);
    count = 0;
    return;
  }

  const View1<XY> used(vertices.data(), numVertices);
  if (settings.smooth) {
    int moves = 0;
    SMSAF2(count, triangles, used, moves, status);
    if (status) return;
  }
  if (settings.improve) IMPRV2(count, triangles, used, status);
}

void TRRBA2(int maxIterations, double requiredQuality, int numHoles, View1<const int> polySizes,
            const RobustSettings& settings, int& numVertices, View1<XY> vertices, int& count,
            View1<Triangle> triangles, int& iterations, double& achieved, bool& status) {
  status = false;
  iterations = 0;
  achieved = 0.0;
  const int cap = std::min(triangles.size(), MaxAutoTriangles);
  const int ceiling = std::max(1, static_cast<int>(0.9 * cap));
  const View1<Triangle> capped(triangles.data(), cap);
  BestMesh& best = bestMesh();
  best.quality = -1.0;
  best.count = 0;
  auto meets = [&](double q) { return q >= 0.99 * requiredQuality; };
  // Better: meeting the requirement within 1% beats not meeting it; among
  // meshes that meet it the one nearer to it (fewer triangles), among the
  // others the one of higher quality.
  auto better = [&](double q, double than) {
    if (than < 0.0) return true;
    if (meets(q) != meets(than)) return meets(q);
    return meets(q) ? std::fabs(q - requiredQuality) < std::fabs(than - requiredQuality)
                    : q > than;
  };

  int request = std::clamp(count, 1, ceiling);
  int previousActual = 0;
  double previousQuality = 0.0;
  while (iterations < maxIterations) {
    iterations += 1;
    int made = request;
    TRRBM2(numHoles, polySizes, settings, numVertices, vertices, made, capped, status);
    if (status) return;
    double minimum = 0.0, maximum = 0.0, mean = 0.0, deviation = 0.0;
    IQTRST(made, View1<const XY>(vertices.data(), numVertices),
           View1<const Triangle>(triangles.data(), made), minimum, maximum, mean, deviation,
           View1<double>(searchQuality.data(), std::max(made, 1)), status);
    if (status) return;
    if (better(mean, best.quality) && numVertices <= best.vertices.size()) {
      best.quality = mean;
      best.count = made;
      best.numVertices = numVertices;
      std::copy_n(vertices.data(), numVertices, best.vertices.data());
      std::copy_n(triangles.data(), made, best.triangles.data());
    }
    if (meets(mean) && mean <= 1.01 * requiredQuality) break;

    // The next count: the secant through the last two passes, or a doubling
    // (halving) step from the first.
    int next;
    if (iterations == 1 || mean == previousQuality) {
      next = mean < requiredQuality ? 2 * made : made / 2;
    } else {
      const double slope = (made - previousActual) / (mean - previousQuality);
      const double guess = made + (requiredQuality - mean) * slope;
      next = std::isfinite(guess) ? static_cast<int>(std::clamp(guess, made / 4.0, 2.0 * made))
                                  : 2 * made;
    }
    next = std::clamp(next, 1, ceiling);
    if (next == request) {
      // The count cannot go further that way.
      if ((mean < requiredQuality && request >= ceiling) || request <= 1) break;
    }
    previousActual = made;
    previousQuality = mean;
    request = next;
  }

  count = best.count;
  numVertices = best.numVertices;
  std::copy_n(best.vertices.data(), numVertices, vertices.data());
  std::copy_n(best.triangles.data(), count, triangles.data());
  achieved = best.quality;
}

std::string crossingCurvesMessage(int first, int second) {
  return "(IQCVCR) Curves " + std::to_string(first) + " and " + std::to_string(second) +
         " cross, overlap or touch each other!";
}

namespace {

// The segments of the closed curves, sorted by their left end for a sweep.
struct CurveSegment {
  double xlo = 0.0, xhi = 0.0;
  int curve = 0;  // the curve's number in the profile
  int start = 0;  // point number of its start
};

struct CurveCheck {
  profile::ProfilePolylines lines;
  Array1<CurveSegment, MaxHoles * MaxPolyPoints> segments;
};

CurveCheck& curveCheck() {
  static CurveCheck check;
  return check;
}

}  // namespace

void IQCVCR(int& first, int& second, bool& status) {
  status = false;
  first = second = 0;
  CurveCheck& check = curveCheck();
  profile::ProfilePolylines& lines = check.lines;
  profile::IQPPOL(MaxHoles, MaxPolyPoints, lines, status);
  if (status) return;
  const profile::ProfileData& p = profile::profile();
  int count = 0;
  for (int c = 1; c <= std::min(lines.curves, MaxHoles); ++c) {
    const int n = lines.points(c);
    if (!p.PRCLSD(c) || n < 3) continue;
    View1<const XY> points(&lines.xy(c, 1), n);
    bool crosses = false, failed = false;
    IQPLSI(n, points, true, crosses, failed);
    if (failed || crosses) continue;
    for (int i = 1; i <= n; ++i) {
      const XY a = lines.xy(c, i), b = lines.xy(c, i == n ? 1 : i + 1);
      check.segments(++count) = CurveSegment{std::min(a.x, b.x), std::max(a.x, b.x), c, i};
    }
  }
  std::sort(check.segments.data(), check.segments.data() + count,
            [](const CurveSegment& u, const CurveSegment& v) { return u.xlo < v.xlo; });
  // The first pair in the order of the curves' numbers.
  int bestFirst = 0, bestSecond = 0;
  for (int i = 1; i <= count; ++i) {
    const CurveSegment& u = check.segments(i);
    for (int j = i + 1; j <= count && check.segments(j).xlo <= u.xhi; ++j) {
      const CurveSegment& v = check.segments(j);
      if (u.curve == v.curve) continue;
      const int nu = lines.points(u.curve), nv = lines.points(v.curve);
      if (!IQSGTC(lines.xy(u.curve, u.start), lines.xy(u.curve, u.start == nu ? 1 : u.start + 1),
                  lines.xy(v.curve, v.start), lines.xy(v.curve, v.start == nv ? 1 : v.start + 1)))
        continue;
      const int lo = std::min(u.curve, v.curve), hi = std::max(u.curve, v.curve);
      if (bestFirst == 0 || lo < bestFirst || (lo == bestFirst && hi < bestSecond)) {
        bestFirst = lo;
        bestSecond = hi;
      }
    }
  }
  first = bestFirst;
  second = bestSecond;
}

}  // namespace kntr::mesher
