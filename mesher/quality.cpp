#include "mesher/quality.h"

#include <algorithm>
#include <cmath>

#include "framework/text.h"
#include "mesher/topology.h"

namespace kntr::mesher {

void IQTRST(int numTriangles, View1<const XY> vertices, View1<const Triangle> triangles,
            double& minimum, double& maximum, double& mean, double& deviation,
            View1<double> quality, bool& status) {
  status = false;
  if (numTriangles <= 0) return;
  auto side = [&](int i, int j) {
    return std::hypot(vertices(j).x - vertices(i).x, vertices(j).y - vertices(i).y);
  };
  double sum = 0.0;
  for (int t = 1; t <= numTriangles; ++t) {
    const Triangle& tri = triangles(t);
    const double a = side(tri(1), tri(2));
    const double b = side(tri(2), tri(3));
    const double c = side(tri(3), tri(1));
    const double s = 0.5 * (a + b + c);
    // at most 1: a near-equilateral triangle can round a hair above it
    const double q = std::min(1.0, 8.0 * (s - a) * (s - b) * (s - c) / (a * b * c));
    quality(t) = q;
    if (t == 1 || q < minimum) minimum = q;
    if (t == 1 || q > maximum) maximum = q;
    sum += q;
  }
  mean = sum / numTriangles;
  double squares = 0.0;
  for (int t = 1; t <= numTriangles; ++t) squares += (quality(t) - mean) * (quality(t) - mean);
  deviation = numTriangles > 1 ? std::sqrt(squares / (numTriangles - 1)) : 0.0;
}

namespace {

// The interior vertices and their neighbours, for the smoothing sweeps.
struct SmoothingLists {
  Array1<int, MaxTopologyVertices> vertex;
  Array1<bool, MaxTopologyVertices> free;
  Array1<int, MaxTopologyVertices> count;
  Array1<int, MaxTopologyVertices * MaxVertexFaces> neighbours;
};

SmoothingLists& smoothingLists() {
  static SmoothingLists lists;
  return lists;
}

}  // namespace

void SMLPT2(int numTriangles, View1<const Triangle> triangles, double tolerance, int moveLimit,
            View1<XY> vertices, int& moves, bool& status) {
  status = false;
  moves = 0;
  clearTopology();
  if (numTriangles > MaxFaces) {
    framework::fail(
        "(SMLPT2) Max number of mesh triangles exceedes allocated number of topology faces!", status);
    return;
  }
  for (int t = 1; t <= numTriangles; ++t) {
    int face = 0;
    ISFACE(triangles(t)(1), triangles(t)(2), triangles(t)(3), face, status);
    if (status) return;
  }

  // The interior vertices, each with its neighbours.
  const Topology& topo = topology();
  SmoothingLists& lists = smoothingLists();
  int count = 0;
  for (int v = 1; v <= topo.NumVertices; ++v) {
    if (topo.VertexClass(v) != InteriorVertex) continue;
    ++count;
    lists.vertex(count) = v;
    lists.free(count) = true;
    const View1<int> row(lists.neighbours.data() + (count - 1) * MaxVertexFaces, MaxVertexFaces);
    IQVNBF(v, MaxVertexFaces, lists.count(count), row, status);
    if (status) return;
  }
  SMMSH2(count, lists.vertex, lists.free, MaxVertexFaces, lists.count, lists.neighbours, tolerance,
         moveLimit, vertices, moves, status);
}

void SMMSH2(int count, View1<const int> list, View1<const bool> free, int maxNeighbours,
            View1<const int> neighbourCount, View1<const int> neighbours, double tolerance,
            int moveLimit, View1<XY> vertices, int& moves, bool& status) {
  status = false;
  moves = 0;
  bool anyFree = false;
  for (int i = 1; i <= count; ++i) anyFree = anyFree || free(i);
  if (count == 0 || !anyFree) return;
  for (int i = 1; i <= count; ++i) {
    if (neighbourCount(i) < 1) {
      framework::fail("(SMMSH2) Found internal point with no neighbours!", status);
      return;
    }
  }

  bool changed = true;
  while (changed) {
    changed = false;
    for (int i = 1; i <= count; ++i) {
      if (!free(i)) continue;
      double x = 0.0, y = 0.0;
      const int n = neighbourCount(i);
      for (int k = 1; k <= n; ++k) {
        const XY& p = vertices(neighbours((i - 1) * maxNeighbours + k));
        x += p.x;
        y += p.y;
      }
      x /= n;
      y /= n;
      XY& v = vertices(list(i));
      if (std::hypot(x - v.x, y - v.y) <= tolerance) continue;
      changed = true;
      ++moves;
      if (moves >= moveLimit) return;
      v = XY{x, y};
    }
  }
}

}  // namespace kntr::mesher
