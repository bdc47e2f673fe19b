#include "mesher/holes.h"

#include <algorithm>
#include <cmath>

#include "framework/text.h"
#include "mesher/halfedge.h"
#include "mesher/reflex.h"

namespace kntr::mesher {

using framework::fail;

void JNHOLS(MeshData& m, int numHoles, View1<const int> holeList, View1<int> intAux,
            View1<double> realAux, bool& status) {
  status = false;
  for (int k = 1; k <= numHoles; ++k) {
    JNHBOB(m, holeList(k), intAux, realAux, status);
    if (status) return;
  }
  // Split the bridged region below each hole.
  for (int k = numHoles + 1; k <= 2 * numHoles; ++k) {
    resolveReflexCorner(m, holeList(k), intAux, realAux, status);
    if (status) return;
  }
}

void JNHBOB(MeshData& m, int top, View1<int> intAux, View1<double> realAux, bool& status) {
  status = false;
  if (m.NumVertices + 3 > m.Vertices.size()) {
    fail("(JNHBOB) Max number of vertices exceeded!", status);
    return;
  }
  if (m.NumHalfEdges + 5 > MaxHalfEdges) {
    fail("(JNHBOB) Max number of polygon vertices exceeded!", status);
    return;
  }
  auto& he = m.HalfEdge;
  auto at = [&](int h) { return m.Vertices(he(h).Vertex); };
  const int polygon = he(top).Polygon;
  const XY t = at(top);
  const int head = m.PolygonFirst(polygon);

  // The level band around the top vertex, relative to the loop's largest
  // step in y.
  double dyMax = 0.0;
  {
    int h = head;
    double y = at(h).y;
    int steps = 0;
    do {
      h = he(h).Next;
      const double ys = at(h).y;
      dyMax = std::max(dyMax, std::fabs(ys - y));
      y = ys;
      if (++steps > m.NumHalfEdges) {
        fail("(JNHBOB) Failed to locate subregion above top hole vertex!", status);
        return;
      }
    } while (h != head);
  }
  const double lo = t.y - m.MeshTol * dyMax;
  const double hi = t.y + m.MeshTol * dyMax;

  // The nearest edges that cross the level on either side: upward ones on
  // the right, downward ones on the left.
  int left = 0, right = 0;
  double leftX = 0.0, leftY = 0.0, leftSlope = 0.0;
  double rightX = 0.0, rightY = 0.0, rightSlope = 0.0;
  {
    int h = head;
    do {
      const XY p0 = at(h);
      const XY p1 = at(he(h).Next);
      if (p0.y <= hi && p1.y > hi) {
        if (p0.y >= lo) {
          if (p0.x > t.x) {
            const double slope = (p1.x - p0.x) / (p1.y - p0.y);
            if (right == 0 || p0.x < rightX) {
              right = h;
              rightX = p0.x;
              rightY = p0.y;
              rightSlope = slope;
            } else if (p0.x == rightX && slope < rightSlope) {
              right = h;
              rightY = p0.y;
              rightSlope = slope;
            }
          }
        } else {
          const double x = (t.y - p0.y) * (p1.x - p0.x) / (p1.y - p0.y) + p0.x;
          if (x > t.x && (right == 0 || x < rightX)) {
            right = h;
            rightX = x;
            rightY = t.y;
          }
        }
      } else if (p0.y > hi && p1.y <= hi) {
        if (p1.y >= lo) {
          if (p1.x < t.x) {
            const double slope = (p1.x - p0.x) / (p1.y - p0.y);
            if (left == 0 || p1.x > leftX) {
              left = h;
              leftX = p1.x;
              leftY = p1.y;
              leftSlope = slope;
            } else if (p1.x == leftX && slope > leftSlope) {
              left = h;
              leftY = p1.y;
              leftSlope = slope;
            }
          }
        } else {
          const double x = (t.y - p0.y) * (p1.x - p0.x) / (p1.y - p0.y) + p0.x;
          if (x < t.x && (left == 0 || x > leftX)) {
            left = h;
            leftX = x;
            leftY = t.y;
          }
        }
      }
      h = he(h).Next;
    } while (h != head);
  }
  if (left == 0 || right == 0) {
    fail("(JNHBOB) Failed to locate subregion above top hole vertex!", status);
    return;
  }

  // The two level points, stored behind the counted vertices.
  const int lv = m.NumVertices + 2;
  const int rv = m.NumVertices + 3;
  m.Vertices(lv) = XY{leftX, leftY};
  m.Vertices(rv) = XY{rightX, rightY};
  const double flat = IQANGL(leftX, leftY, t.x, t.y, rightX, rightY);
  if (flat < Pi - m.MeshTol || flat > Pi + m.MeshTol) {
    fail("(JNHBOB) Internal error - problems with angular tolerance!", status);
    return;
  }

  // A temporary polygon: the part of the loop above the level, closed by the
  // path L, T, R of three scratch half-edges.
  const int afterLeft = he(left).Next;
  const int afterRight = he(right).Next;
  const int sl = m.NumHalfEdges + 3;
  const int st = m.NumHalfEdges + 4;
  const int sr = m.NumHalfEdges + 5;
  he(sl) = HalfEdgeRow{lv, polygon, st, 0};
  he(st) = HalfEdgeRow{he(top).Vertex, polygon, sr, 0};
  he(sr) = HalfEdgeRow{rv, polygon, afterRight, he(right).Twin};
  he(left).Next = sl;
  m.CornerAngle(st) = flat;
  const XY beforeL = at(left);
  m.CornerAngle(sl) = IQANGL(beforeL.x, beforeL.y, leftX, leftY, t.x, t.y);
  const XY afterR = at(afterRight);
  m.CornerAngle(sr) = IQANGL(t.x, t.y, rightX, rightY, afterR.x, afterR.y);

  int target = 0, unused = 0;
  RSRFVX(m, st, intAux, realAux, target, unused, status);

  // Take the scratch path out again. A target put into the right edge sits
  // behind the scratch half-edge that stood for that edge.
  if (!status && he(sr).Next == target) {
    he(left).Next = afterLeft;
    he(right).Next = target;
    he(right).Twin = he(sr).Twin;
    if (he(right).Twin > 0) he(he(right).Twin).Twin = right;
  } else if (!status && he(left).Next == target) {
    he(target).Next = afterLeft;
  } else {
    he(left).Next = afterLeft;
  }
  if (status) return;

  // The bridge: a doubled edge from the top vertex to the target, which
  // makes the hole and the loop around it one cycle.
  if (m.NumHalfEdges + 2 > MaxHalfEdges) {
    fail("(JNHBOB) Max number of polygon vertices exceeded!", status);
    return;
  }
  linkHalfEdges(m, top, target, polygon);
}

}  // namespace kntr::mesher
