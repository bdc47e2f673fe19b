#include "mesher/reflex.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "framework/text.h"
#include "mesher/halfedge.h"
#include "mesher/visibility.h"

namespace kntr::mesher {

using framework::fail;

void MKVSAN(double rx, double ry, double separatorAngle, int top, View0<double> x, View0<double> y,
            View0<int> label, int maxIndex, int& count, View0<double> theta, bool& status) {
  status = false;
  count = 0;
  const double tol = meshTolerance();
  if (top < 1 || top > maxIndex) {
    fail("(MKVSAN) Attempt to overflow double precision auxiliary vector!", status);
    return;
  }
  // Move the chain to the end of the room, so that the list can grow in
  // front of what is still to be read.
  int cur = maxIndex + 1;
  for (int i = top; i >= 0; --i) {
    cur -= 1;
    x(cur) = x(i);
    y(cur) = y(i);
    label(cur) = label(i);
  }
  int last = maxIndex;
  // The ends go when the next point lies on the same ray from R.
  if (IQSIDE(x(cur + 1), y(cur + 1), rx, ry, x(cur), y(cur), 0.0) >= 0) {
    cur += 1;
    x(0) = x(cur);
    y(0) = y(cur);
    label(0) = label(cur);
  }
  if (IQSIDE(x(last - 1), y(last - 1), rx, ry, x(last), y(last), 0.0) <= 0) last -= 1;

  const double phi0 = std::atan2(y(0) - ry, x(0) - rx);
  double angle = 0.0;
  theta(0) = 0.0;
  int out = 0;
  for (cur += 1; cur <= last; ++cur) {
    const double previous = angle;
    angle = IQANGL(x(cur), y(cur), rx, ry, x(0), y(0));
    double delta = angle - previous;
    if (delta <= tol) {
      // On one ray with the point before: keep the nearer.
      const double dHere = (x(cur) - rx) * (x(cur) - rx) + (y(cur) - ry) * (y(cur) - ry);
      const double dBefore =
          (x(cur - 1) - rx) * (x(cur - 1) - rx) + (y(cur - 1) - ry) * (y(cur - 1) - ry);
      if (dHere < dBefore) {
        x(out) = x(cur);
        y(out) = y(cur);
        label(out) = label(cur);
        theta(out) = angle;
      }
      continue;
    }
    if (delta >= 2.0 * separatorAngle) {
      // Points at even angular steps on the edge from the point before.
      const int k = static_cast<int>(delta / separatorAngle);
      const int inside = -std::abs(label(cur));
      delta /= k;
      const double dx = x(cur) - x(cur - 1);
      const double dy = y(cur) - y(cur - 1);
      const double numerator = (x(cur) - rx) * dy - (y(cur) - ry) * dx;
      for (int i = 1; i <= k - 1; ++i) {
        if (out + 1 >= cur) {
          fail("(MKVSAN) Attempt to overflow double precision auxiliary vector!", status);
          return;
        }
        out += 1;
        theta(out) = previous + i * delta;
        const double direction = theta(out) + phi0;
        const double cosine = std::cos(direction);
        const double sine = std::sin(direction);
        const double radius = numerator / (dy * cosine - dx * sine);
        x(out) = radius * cosine + rx;
        y(out) = radius * sine + ry;
        label(out) = inside;
      }
    }
    out += 1;
    x(out) = x(cur);
    y(out) = y(cur);
    label(out) = label(cur);
    theta(out) = angle;
  }
  count = out;
}

void MKVONB(double rx, double ry, int last, View0<const double> x, View0<const double> y, int& top,
            View0<int> stack, View0<double> cx, View0<double> cy, bool& status) {
  status = false;
  const double tol = meshTolerance();
  top = 0;
  stack(0) = 0;
  cx(0) = (rx + x(0)) * 0.5;
  cy(0) = (ry + y(0)) * 0.5;

  // Centre of the circle through R, point i and (bx, by) + R, with bHalf the
  // half squared length of b (0 puts the centre on the line R + t b).
  auto centre = [&](int i, double bx, double by, double bHalf, double& ox, double& oy) {
    const double ax = x(i) - rx, ay = y(i) - ry;
    const double scale = std::max({std::fabs(ax), std::fabs(ay), std::fabs(bx), std::fabs(by)});
    const double det = ax * by - bx * ay;
    if (std::fabs(det) <= tol * scale) return false;
    const double aHalf = (ax * ax + ay * ay) * 0.5;
    ox = rx + (aHalf * by - bHalf * ay) / det;
    oy = ry + (bHalf * ax - aHalf * bx) / det;
    return true;
  };

  int i = 1;
  while (i <= last) {
    const int j = stack(top);
    const double bx = x(j) - rx, by = y(j) - ry;
    double ox = 0.0, oy = 0.0;
    if (!centre(i, bx, by, (bx * bx + by * by) * 0.5, ox, oy)) {
      fail("(MKVONB) Encountered parallel edges when intersecting!", status);
      return;
    }
    cx(top + 1) = ox;
    cy(top + 1) = oy;
    if (IQSIDE(ox, oy, rx, ry, cx(top), cy(top), 0.0) < 1) {
      top += 1;
      stack(top) = i;
      i += 1;
    } else if (top > 0) {
      top -= 1;
    } else {
      // Point i hides point 0's share: its region starts on the sector's
      // first side.
      if (!centre(i, y(0) - ry, rx - x(0), 0.0, ox, oy)) {
        fail("(MKVONB) Encountered parallel edges when intersecting!", status);
        return;
      }
      cx(0) = ox;
      cy(0) = oy;
      stack(0) = i;
      i += 1;
    }
  }
  while (top >= 0 && IQSIDE(cx(top), cy(top), rx, ry, x(last), y(last), 0.0) == -1) top -= 1;
}

void SLRFSP(const MeshData& m, double target, double rx, double ry, int count,
            View0<const double> x, View0<const double> y, View0<const int> label,
            View0<const double> theta, int numNeighbours, View0<const int> neighbours,
            View0<double> work, double& best, int& first, int& second) {
  const double tol = m.MeshTol;
  best = 0.0;
  first = -1;
  second = -1;
  if (numNeighbours <= 0) return;
  const double thetaEnd = theta(count);

  // The four angles that an edge from R to candidate c leaves: at R on both
  // sides, and at c on both sides.
  auto quality = [&](int c) {
    const int l = label(c);
    int after;
    double alpha;
    if (l > 0) {
      after = m.HalfEdge(l).Next;
      alpha = m.CornerAngle(l);
    } else {
      after = m.HalfEdge(-l).Next;
      alpha = Pi;
    }
    const XY next = m.Vertices(m.HalfEdge(after).Vertex);
    const double beta = IQANGL(rx, ry, x(c), y(c), next.x, next.y);
    return std::min({theta(c), thetaEnd - theta(c), alpha - beta, beta});
  };
  auto angleOf = [&](int i) { return theta(neighbours(i)); };

  // The inner cone low..high: a single edge there leaves no reflex corner.
  int low = numNeighbours;
  for (int i = 0; i < numNeighbours; ++i) {
    if (angleOf(i) >= thetaEnd - Pi + tol) {
      low = i;
      break;
    }
  }
  int high = -1;
  for (int i = numNeighbours - 1; i >= 0; --i) {
    if (angleOf(i) <= Pi - tol) {
      high = i;
      break;
    }
  }
  int single = -1;
  for (int i = low; i <= high; ++i) {
    const double q = quality(neighbours(i));
    if (q > best) {
      best = q;
      single = neighbours(i);
    }
  }

  double pairBest = best;
  int pairLow = -1, pairHigh = -1;
  if (best < target) {
    // Two edges, one into each outer cone, may do better.
    int noted = 0;
    for (int r = 0; r < low; ++r) {
      work(r) = 0.0;
      if (angleOf(r) > best) {
        const double q = quality(neighbours(r));
        if (q > best) {
          noted += 1;
          work(r) = q;
        }
      }
    }
    if (noted > 0) {
      noted = 0;
      for (int l = high + 1; l < numNeighbours; ++l) {
        work(l) = 0.0;
        if (angleOf(l) < thetaEnd - best) {
          const double q = quality(neighbours(l));
          if (q > best) {
            noted += 1;
            work(l) = q;
          }
        }
      }
    }
    if (noted > 0) {
      int upper = numNeighbours - 1;
      for (int r = low - 1; r >= 0; --r) {
        if (upper <= high || work(r) <= pairBest) continue;
        const double phi = angleOf(r);
        while (upper > high && (work(upper) <= pairBest || angleOf(upper) - phi > Pi - tol)) {
          upper -= 1;
        }
        for (int l = high + 1; l <= upper; ++l) {
          if (work(l) <= pairBest) continue;
          const double value = std::min({angleOf(l) - phi, work(r), work(l)});
          if (value > pairBest) {
            pairBest = value;
            pairLow = neighbours(r);
            pairHigh = neighbours(l);
          }
        }
      }
    }
  }

  if (pairBest <= best) {
    first = single;
  } else {
    best = pairBest;
    first = pairLow;
    second = pairHigh;
  }
}

void RSRFVX(MeshData& m, int h, View1<int> intAux, View1<double> realAux, int& first, int& second,
            bool& status) {
  status = false;
  first = 0;
  second = 0;
  const auto& he = m.HalfEdge;

  // The polygon's other corners, from the one after R around to the one
  // before it.
  int others = 0;
  for (int e = he(h).Next; e != h; e = he(e).Next) {
    others += 1;
    if (others > m.NumHalfEdges) {
      fail("(RSRFVX) Internal error - polygon boundary does not close!", status);
      return;
    }
  }
  int extra = static_cast<int>(m.CornerAngle(h) / m.SeparatorAngle) + others;
  if (others + extra > intAux.size()) {
    fail("(RSRFVX) Attempt to overflow integer auxiliary vector!", status);
    return;
  }
  if (2 * extra > realAux.size()) {
    fail("(RSRFVX) Attempt to overflow double precision auxiliary vector!", status);
    return;
  }
  if (others < 2) {
    fail("(RSRFVX) Internal error - degenerate polygon at reflex vertex!", status);
    return;
  }

  // Work set: labels, then the chain's half-edges, in intAux; the chain's
  // coordinates in realAux.
  View0<int> label(intAux.data(), extra);
  View0<int> chainEdge(intAux.data() + extra, others);
  View0<double> x(realAux.data(), extra);
  View0<double> y(realAux.data() + extra, extra);
  const XY r = m.Vertices(he(h).Vertex);
  {
    int e = he(h).Next;
    for (int i = 0; i < others; ++i) {
      const XY p = m.Vertices(he(e).Vertex);
      x(i) = p.x;
      y(i) = p.y;
      chainEdge(i) = e;
      e = he(e).Next;
    }
  }

  int top = 0;
  IQVSPG(r.x, r.y, others - 1, x, y, label, top, status);
  if (status) return;

  // Room for the candidates now that the visible chain's length is known.
  const int room = extra - others + top + 1;
  if (extra + 2 * room > realAux.size()) {
    fail("(RSRFVX) Attempt to overflow double precision auxiliary vector!", status);
    return;
  }
  View0<double> theta(realAux.data() + extra + room, room);
  int count = 0;
  MKVSAN(r.x, r.y, m.SeparatorAngle, top, x, View0<double>(y.data(), room), label, room - 1, count,
         theta, status);
  if (status) return;
  for (int i = 0; i <= count; ++i) {
    const int l = label(i);
    if (l > others - 1 || -l > others - 1) {
      fail("(RSRFVX) Internal error - degenerate polygon at reflex vertex!", status);
      return;
    }
    label(i) = l >= 0 ? chainEdge(l) : -chainEdge(-l - 1);
  }

  // Voronoi neighbours of R among the candidates.
  if (2 * (count + 1) > intAux.size()) {
    fail("(RSRFVX) Attempt to overflow integer auxiliary vector!", status);
    return;
  }
  if (extra + room + 3 * (count + 1) > realAux.size()) {
    fail("(RSRFVX) Attempt to overflow double precision auxiliary vector!", status);
    return;
  }
  View0<int> neighbours(intAux.data() + count + 1, count + 1);
  View0<double> cx(realAux.data() + extra + room + count + 1, count + 1);
  View0<double> cy(realAux.data() + extra + room + 2 * (count + 1), count + 1);
  int last = -1;
  MKVONB(r.x, r.y, count, x, y, last, neighbours, cx, cy, status);
  if (status) return;
  // R's own neighbours along the boundary are no targets.
  int from = 0;
  if (last >= 0 && neighbours(last) == count) last -= 1;
  if (last >= 0 && neighbours(0) == 0) from = 1;
  const int numNeighbours = last - from + 1;

  const double target = 2.0 * m.MinSeparatorAngle;
  double best = 0.0;
  int pick1 = -1, pick2 = -1;
  SLRFSP(m, target, r.x, r.y, count, x, y, label, theta, std::max(numNeighbours, 0),
         View0<const int>(neighbours.data() + from, count + 1 - from), cx, best, pick1, pick2);
  if (best < m.MinSeparatorAngle) {
    // Too narrow: try every candidate of the chain.
    for (int i = 1; i <= count - 1; ++i) neighbours(i - 1) = i;
    SLRFSP(m, target, r.x, r.y, count, x, y, label, theta, std::max(count - 1, 0), neighbours, cx,
           best, pick1, pick2);
  }
  if (pick1 < 0) {
    fail("(RSRFVX) Could not locate separator for reflex vertex!", status);
    return;
  }

  // Targets inside edges become vertices, the first pick first. The second
  // lies further along the boundary: when both lie inside one edge, the
  // first's vertex has split it, and the second lies on the part after it.
  if (label(pick1) < 0) {
    INSVTX(m, x(pick1), y(pick1), -label(pick1), first, status);
    if (status) return;
  } else {
    first = label(pick1);
  }
  if (pick2 >= 0) {
    if (label(pick2) < 0) {
      const int edge = label(pick2) == label(pick1) ? first : -label(pick2);
      INSVTX(m, x(pick2), y(pick2), edge, second, status);
      if (status) return;
    } else {
      second = label(pick2);
    }
  }
}

void resolveReflexCorner(MeshData& m, int h, View1<int> intAux, View1<double> realAux,
                         bool& status) {
  status = false;
  if (m.CornerAngle(h) <= Pi + m.MeshTol) return;
  int first = 0, second = 0;
  RSRFVX(m, h, intAux, realAux, first, second, status);
  if (status) return;
  INSEDG(m, h, first, status);
  if (status || second == 0) return;
  INSEDG(m, h, second, status);
}

void RSRFAL(MeshData& m, View1<int> intAux, View1<double> realAux, bool& status) {
  status = false;
  for (int h = 1; h <= m.NumHalfEdges; ++h) {
    resolveReflexCorner(m, h, intAux, realAux, status);
    if (status) return;
  }
}

}  // namespace kntr::mesher
