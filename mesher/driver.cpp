#include "mesher/driver.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <string_view>

#include "framework/format.h"
#include "framework/text.h"
#include "mesher/boundary.h"
#include "mesher/density.h"
#include "mesher/holes.h"
#include "mesher/limits.h"
#include "mesher/polygons.h"
#include "mesher/quality.h"
#include "mesher/reflex.h"
#include "mesher/robust.h"
#include "mesher/triangles.h"
#include "profile/block.h"
#include "profile/polylines.h"

namespace kntr::mesher {

using framework::fail;

namespace {

// A notice put together in fixed storage; its short number fields fit the
// strings' own small buffers, so nothing is allocated.
struct NoticeLine {
  std::array<char, 96> text{};
  std::size_t length = 0;
  void add(std::string_view piece) {
    const std::size_t n = std::min(piece.size(), text.size() - length);
    std::copy_n(piece.data(), n, text.data() + length);
    length += n;
  }
  std::string_view view() const { return std::string_view(text.data(), length); }
};

// A count from a real value, cut toward zero; values beyond the integers
// (an infinite or undefined quotient) are held at the ends of the range.
int truncated(double value) {
  if (std::isnan(value)) return 0;
  if (value >= 2.0e9) return 2000000000;
  if (value <= -2.0e9) return -2000000000;
  return static_cast<int>(value);
}

// Index list of one polygon for the direction test.
Array1<int, MaxPolyPoints> polygonIndex;
// Triangle qualities of the quality search.
Array1<double, MaxAutoTriangles> searchQuality;

// Driver storage: the profile's polylines, and the usable curves' index
// lists (stride MaxPolyPoints), sizes, directions and groups.
profile::ProfilePolylines lines;
Array1<int, MaxHoles * MaxPolyPoints> curveIndex;
Array1<int, MaxHoles> curveSize;
Array1<bool, MaxHoles> curveCounterclockwise;
Array1<int, MaxHoles> groupSize;
Array1<int, MaxHoles * MaxHoles> groupMember;
Array1<int, MaxHoles + 1> regionSize;

// Direction of polygon k of a region laid out as polySizes says.
void regionPolygonDirection(View1<const int> polySizes, View1<const XY> vertices, int k, bool& ccw,
                            bool& status) {
  int offset = 0;
  for (int i = 1; i < k; ++i) offset += polySizes(i);
  const int n = polySizes(k);
  for (int j = 1; j <= std::min(n, MaxPolyPoints); ++j) polygonIndex(j) = offset + j;
  IQPLDR(n, polygonIndex, vertices, ccw, status);
}

// True when all polygons of the region lie within the vertex array.
bool regionFits(int numHoles, View1<const int> polySizes, int capacity) {
  long total = 0;
  for (int k = 1; k <= numHoles + 1; ++k) total += polySizes(k);
  return total <= capacity;
}

}  // namespace

MeshStatistics& lastMeshStatistics() {
  static MeshStatistics statistics;
  return statistics;
}

void TRNSM2(int numHoles, View1<const int> polySizes, bool smooth, int& numVertices,
            View1<XY> vertices, int& count, View1<Triangle> triangles, bool& status) {
  status = false;
  MeshData& m = meshData();
  if (numHoles > MaxHoles) {
    fail("(TRNSM2) Max number of interior meshing holes exceeded!", status);
    return;
  }
  if (count > triangles.size()) {
    framework::ERRSCN("(TRNSM2) Desired number of triangles exceedes allocated!");
  } else if (count < 1) {
    fail("(TRNSM2) Desired number of triangles must be positive!", status);
    return;
  }

  // Every boundary polygon must come counterclockwise.
  if (regionFits(numHoles, polySizes, vertices.size())) {
    for (int k = 1; k <= numHoles + 1; ++k) {
      bool ccw = false;
      regionPolygonDirection(polySizes, vertices, k, ccw, status);
      if (status) return;
      if (!ccw) {
        // The text, a line break, and the advice: one message.
        fail(k == 1 ? "(TRNSM2) Encountered exterior boundary polygon with clockwise "
                      "orientation!{nwl(All boundary polygons must be counterclockwise oriented)"
                    : "(TRNSM2) Encountered interior boundary polygon with clockwise "
                      "orientation!{nwl(All boundary polygons must be counterclockwise oriented)",
             status);
        return;
      }
    }
  }

  m.Vertices = vertices;
  View1<int> holeList(m.IntAux.data(), 2 * numHoles);
  IZMCPR(m, numHoles, polySizes, holeList, status);
  numVertices = m.NumVertices;
  if (status) return;

  m.MeshTol = meshTolerance();
  m.SeparatorAngle = 30.0 * Pi / 180.0;
  m.MinSeparatorAngle = 20.0 * Pi / 180.0;
  m.UniformShare = 0.4;
  m.DensitySpread = 0.4;
  m.MinPolygonTriangles = 10;
  m.UseDensityFunction = m.UniformShare < 0.0 || m.UniformShare > 1.0;
  m.SmoothTolerance = static_cast<double>(0.001f);
  m.SmoothLimit = 5000;
  m.StaggeredRows = meshLayout().improved;
  m.GradingShare = meshLayout().improved ? 1.0 / ImprovedGradingFactor : 0.25;

  // HoleList stays at the head of the integer vector while the holes are
  // joined.
  JNHOLS(m, numHoles, holeList, View1<int>(m.IntAux).from(2 * numHoles + 1),
         View1<double>(m.RealAux), status);
  numVertices = m.NumVertices;
  if (status) return;
  RSRFAL(m, View1<int>(m.IntAux), View1<double>(m.RealAux), status);
  numVertices = m.NumVertices;
  if (status) return;
  SDCPET(m, DSFUNC, count, View1<int>(m.IntAux), View1<double>(m.RealAux), status);
  numVertices = m.NumVertices;
  if (status) return;
  if (m.StaggeredRows) {
    // An equilateral triangle of side h covers sqrt(3)/4 h^2 where the
    // size was worked out for h^2 / 2: the same count needs a larger side.
    for (int p = 1; p <= m.NumPolygons; ++p) m.PolygonSize(p) *= StaggeredSizeFactor;
  }
  TRMSCP(m, triangles, count, View1<int>(m.IntAux), View1<double>(m.RealAux), status);
  numVertices = m.NumVertices;
  if (status) return;
  if (smooth) {
    int moves = 0;
    SMLPT2(count, triangles, m.SmoothTolerance, m.SmoothLimit,
           View1<XY>(vertices.data(), m.NumVertices), moves, status);
  }
}

void TRASM2(int maxIterations, double requiredQuality, int numHoles, View1<const int> polySizes,
            bool smooth, int& numVertices, View1<XY> vertices, int& count,
            View1<Triangle> triangles, int& iterations, double& achievedQuality, bool& status) {
  status = false;
  const int cap = std::min(triangles.size(), MaxAutoTriangles);
  iterations = 0;
  if (numHoles > MaxHoles) {
    fail("(TRASM2) Max number of interior holes exceeded!", status);
    return;
  }
  if (!regionFits(numHoles, polySizes, vertices.size())) {
    fail("(TRASM2) Max number of vertices exceeded!", status);
    return;
  }
  for (int k = 1; k <= numHoles + 1; ++k) {
    bool ccw = false;
    regionPolygonDirection(polySizes, vertices, k, ccw, status);
    if (status) return;
    if (!ccw) {
      fail(k == 1 ? "(TRASM2) Encountered exterior boundary polygon with clockwise orientation!"
                  : "(TRASM2) Encountered interior boundary polygon with clockwise orientation!",
           status);
      return;
    }
  }

  // A first guess from the area and the mean boundary edge taken as the side
  // of an equilateral triangle.
  double area = 0.0, edgeSum = 0.0;
  int edges = 0, offset = 0;
  for (int k = 1; k <= numHoles + 1; ++k) {
    const int n = polySizes(k);
    double twice = 0.0;
    for (int i = 1; i <= n; ++i) {
      const XY a = vertices(offset + i);
      const XY b = vertices(offset + (i == n ? 1 : i + 1));
      twice += a.x * b.y - b.x * a.y;
      edgeSum += std::hypot(b.x - a.x, b.y - a.y);
      edges += 1;
    }
    area += (k == 1 ? 1.0 : -1.0) * std::fabs(0.5 * twice);
    offset += n;
  }
  const double meanEdge = edges > 0 ? edgeSum / edges : 0.0;
  const double triangleArea = 1.7320508075688772 * meanEdge * meanEdge * 0.25;
  const double ceiling = 0.9 * cap;
  int request = std::max(truncated(std::min(area / triangleArea, ceiling)), 1);

  const View1<Triangle> capped(triangles.data(), cap);
  int previousActual = 0;
  double previousQuality = 0.0;
  for (;;) {
    iterations += 1;
    const int asked = request;
    count = request;
    TRNSM2(numHoles, polySizes, smooth, numVertices, vertices, count, capped, status);
    if (status) return;
    const int actual = count;
    double minimum = 0.0, maximum = 0.0, mean = 0.0, deviation = 0.0;
    IQTRST(actual, View1<const XY>(vertices.data(), numVertices),
           View1<const Triangle>(triangles.data(), actual), minimum, maximum, mean, deviation,
           View1<double>(searchQuality.data(), std::max(actual, 1)), status);
    if (status) return;
    const double quality = mean;
    achievedQuality = quality;
    if (quality >= 0.99 * requiredQuality && quality <= 1.01 * requiredQuality) return;

    // The next count: from the first pass by the shape of 1 - Q, later by
    // the secant through the last two passes.
    int next;
    if (iterations == 1) {
      next = truncated(actual / std::log(1.0 - quality) * std::log(1.0 - requiredQuality));
    } else {
      const double dN = static_cast<double>(actual - previousActual);
      const double dQ = quality - previousQuality;
      if (dQ == 0.0) return;
      next = truncated(actual + (requiredQuality - quality) * dN / dQ);
      next = std::min(next, 2 * actual);
      next = std::max(next, actual / 4 + 1);
    }
    // Correct for the difference between the count asked and the count made.
    double scaled = static_cast<double>(next) * static_cast<double>(asked) / actual;
    if (!(scaled < ceiling)) scaled = ceiling;
    request = std::max(truncated(scaled), 1);
    previousActual = actual;
    previousQuality = quality;

    NoticeLine notice;
    notice.add("Iteration ");
    notice.add(fmt::I(iterations, 2));
    notice.add("/");
    notice.add(fmt::I(maxIterations, 2));
    notice.add(", quality = ");
    notice.add(fmt::F(quality, 5, 3));
    notice.add(" with ");
    notice.add(fmt::I(actual, 5));
    notice.add(" triangles.");
    framework::PUTSCN(notice.view());
    if (iterations >= maxIterations) return;
  }
}

void IQPMSH(int maxVertices, int maxTriangles, View1<double> quality, int& numVertices,
            View1<XY> vertices, int& numTriangles, View1<Triangle> triangles, bool& status) {
  status = false;
  numVertices = 0;
  numTriangles = 0;
  maxVertices = std::min(maxVertices, vertices.size());
  maxTriangles = std::min(maxTriangles, triangles.size());
  profile::IQPPOL(MaxHoles, MaxPolyPoints, lines, status);
  if (status) return;

  // The closed curves that do not cross themselves are the boundaries.
  const profile::ProfileData& p = profile::profile();
  Array1<int, MaxHoles> usableCurve;
  int usable = 0;
  for (int c = 1; c <= std::min(lines.curves, MaxHoles); ++c) {
    const int n = lines.points(c);
    View1<const XY> points(&lines.xy(c, 1), n);
    bool crosses = false, failed = false;
    IQPLSI(n, points, p.PRCLSD(c), crosses, failed);
    if (failed || crosses || !p.PRCLSD(c)) continue;
    usable += 1;
    usableCurve(usable) = c;
  }
  if (usable == 0) return;

  // Scratch copies for the direction and the nesting tests.
  int put = 0;
  for (int k = 1; k <= usable; ++k) {
    const int c = usableCurve(k);
    const int n = lines.points(c);
    if (put + n > maxVertices) {
      fail("(IQPMSH) Max number of vertices exceeded!", status);
      return;
    }
    View1<int> list(curveIndex.data() + (k - 1) * MaxPolyPoints, MaxPolyPoints);
    for (int i = 1; i <= n; ++i) {
      vertices(put + i) = lines.xy(c, i);
      list(i) = put + i;
    }
    put += n;
    curveSize(k) = n;
    IQPLDR(n, list, vertices, curveCounterclockwise(k), status);
    if (status) return;
  }
  int groups = 0;
  SORTP2(MaxHoles, usable, MaxPolyPoints, curveSize, curveIndex, vertices, groups, groupSize,
         groupMember, status);
  if (status) return;

  for (int g = 1; g <= groups; ++g) {
    const int members = groupSize(g);
    const int numHoles = members - 1;
    // The region's polygons, all counterclockwise, exterior first. A member
    // is a number among the usable curves; its points are read from the
    // curve of that same number in the polyline list.
    put = numVertices;
    for (int q = 1; q <= members; ++q) {
      const int member = groupMember((g - 1) * MaxHoles + q);
      const int n = curveSize(member);
      if (put + n > maxVertices) {
        fail("(IQPMSH) Max number of vertices exceeded!", status);
        return;
      }
      for (int i = 1; i <= n; ++i) {
        const int from = curveCounterclockwise(member) ? i : n + 1 - i;
        vertices(put + i) = lines.xy(member, from);
      }
      regionSize(q) = n;
      put += n;
    }

    View1<XY> regionVertices(vertices.data() + numVertices, maxVertices - numVertices);
    View1<Triangle> regionTriangles(triangles.data() + numTriangles, maxTriangles - numTriangles);
    int regionVertexCount = 0;
    int count = 0;
    if (p.MESHRB) {
      // The robust mode: the mesh for the asked count, or the best one found
      // for the required quality starting from it.
      const RobustSettings settings{p.MESHLP, p.MESHIM};
      count = p.MESHDN;
      if (p.MESHAU) {
        int iterations = 0;
        double achieved = 0.0;
        TRRBA2(MaxAutoIterations, p.MESHQL, numHoles, regionSize, settings, regionVertexCount,
               regionVertices, count, regionTriangles, iterations, achieved, status);
        if (status) return;
        if (achieved < 0.99 * p.MESHQL) framework::ERRSCN("Required mesh quality was not obtained!");
      } else {
        framework::PUTSCN("Generating interior mesh...");
        TRRBM2(numHoles, regionSize, settings, regionVertexCount, regionVertices, count,
               regionTriangles, status);
        if (status) return;
      }
    } else if (p.MESHAU) {
      int iterations = 0;
      double achieved = 0.0;
      TRASM2(MaxAutoIterations, p.MESHQL, numHoles, regionSize, p.MESHLP, regionVertexCount,
             regionVertices, count, regionTriangles, iterations, achieved, status);
      if (status) return;
      if (iterations == MaxAutoIterations && achieved < 0.99 * p.MESHQL) {
        framework::ERRSCN("Required mesh quality was not obtained!");
      }
    } else {
      framework::PUTSCN("Generating interior mesh...");
      count = p.MESHDN;
      TRNSM2(numHoles, regionSize, p.MESHLP, regionVertexCount, regionVertices, count,
             regionTriangles, status);
      if (status) return;
    }

    // Region-local vertex numbers become numbers of the whole result.
    for (int t = 1; t <= count; ++t) {
      for (int j = 1; j <= 3; ++j) regionTriangles(t)(j) += numVertices;
    }
    numVertices += regionVertexCount;
    numTriangles += count;
  }

  MeshStatistics& statistics = lastMeshStatistics();
  IQTRST(numTriangles, vertices, triangles, statistics.minimum, statistics.maximum, statistics.mean,
         statistics.deviation, quality, status);
}

}  // namespace kntr::mesher
