#include "mesher/boundary.h"

#include "framework/text.h"
#include "mesher/halfedge.h"

namespace kntr::mesher {

void IZMCPR(MeshData& m, int numHoles, View1<const int> polySizes, View1<int> holeList,
            bool& status) {
  status = false;
  int total = 0;
  for (int k = 1; k <= numHoles + 1; ++k) total += polySizes(k);
  m.NumVertices = total;
  m.NumHalfEdges = total;
  m.NumPolygons = 1;
  m.SlitCount = 0;
  m.PolygonRegion(1) = 1;
  if (1 + numHoles > MaxSubPolygons || 2 * numHoles > MaxHalfEdges ||
      2 * numHoles > holeList.size()) {
    framework::fail("(IZMCPR) Max number of internal holes exceeded!", status);
    return;
  }
  if (total > MaxBoundaryVertices || total > m.Vertices.size()) {
    framework::fail("(IZMCPR) Max number of polygon vertices exceeded!", status);
    return;
  }
  auto& he = m.HalfEdge;

  // The exterior, walked in stored (counterclockwise) order.
  const int outer = polySizes(1);
  for (int i = 1; i <= outer; ++i) he(i) = HalfEdgeRow{i, 1, i + 1, 0};
  he(outer).Next = 1;
  m.PolygonFirst(1) = 1;

  // Each hole, walked against its stored order.
  int last = outer;
  for (int k = 1; k <= numHoles; ++k) {
    const int first = last + 1;
    last += polySizes(1 + k);
    for (int i = first; i <= last; ++i) he(i) = HalfEdgeRow{i, 1, i - 1, 0};
    he(first).Next = last;
    m.PolygonFirst(1 + k) = first;
  }

  // Interior angles along the walk of every loop.
  for (int k = 1; k <= numHoles + 1; ++k) {
    const int first = m.PolygonFirst(k);
    int previous = first;
    while (he(previous).Next != first) previous = he(previous).Next;
    int h = first;
    do {
      const XY a = m.Vertices(he(previous).Vertex);
      const XY b = m.Vertices(he(h).Vertex);
      const XY c = m.Vertices(he(he(h).Next).Vertex);
      m.CornerAngle(h) = IQANGL(a.x, a.y, b.x, b.y, c.x, c.y);
      previous = h;
      h = he(h).Next;
    } while (h != first);
  }

  if (numHoles > 0) IQHLTB(m, numHoles, holeList, status);
}

void IQHLTB(const MeshData& m, int numHoles, View1<int> holeList, bool& status) {
  status = false;
  const auto& he = m.HalfEdge;
  auto at = [&](int h) { return m.Vertices(he(h).Vertex); };

  for (int k = 1; k <= numHoles; ++k) {
    const int first = m.PolygonFirst(1 + k);
    int top = first, bottom = first;
    XY high = at(first), low = at(first);
    for (int h = he(first).Next; h != first; h = he(h).Next) {
      const XY p = at(h);
      if (p.y < low.y || (p.y == low.y && p.x < low.x)) {
        bottom = h;
        low = p;
      } else if (p.y > high.y || (p.y == high.y && p.x > high.x)) {
        top = h;
        high = p;
      }
    }
    holeList(k) = top;
    holeList(numHoles + k) = bottom;
  }

  // Insertion sorts: tops by descending (y, x), bottoms by ascending (y, x).
  for (int i = 2; i <= numHoles; ++i) {
    const int h = holeList(i);
    const XY p = at(h);
    int j = i;
    while (j > 1) {
      const XY q = at(holeList(j - 1));
      if (!(p.y > q.y || (p.y == q.y && p.x > q.x))) break;
      holeList(j) = holeList(j - 1);
      --j;
    }
    holeList(j) = h;
  }
  for (int i = numHoles + 2; i <= 2 * numHoles; ++i) {
    const int h = holeList(i);
    const XY p = at(h);
    int j = i;
    while (j > numHoles + 1) {
      const XY q = at(holeList(j - 1));
      if (!(p.y < q.y || (p.y == q.y && p.x < q.x))) break;
      holeList(j) = holeList(j - 1);
      --j;
    }
    holeList(j) = h;
  }
}

}  // namespace kntr::mesher
