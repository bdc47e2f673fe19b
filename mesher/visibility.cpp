#include "mesher/visibility.h"

#include <cstdlib>

#include "framework/text.h"
#include "mesher/halfedge.h"
#include "mesher/limits.h"

namespace kntr::mesher {

using framework::fail;

namespace {

double px(const VisibilityScan& v, int i) {
  return v.x(i);
}
double py(const VisibilityScan& v, int i) {
  return v.y(i);
}

// Side of chain point i relative to the directed line a -> b.
int side(const VisibilityScan& v, int i, double ax, double ay, double bx, double by) {
  return IQSIDE(px(v, i), py(v, i), ax, ay, bx, by, 0.0);
}
// Side of chain point i relative to the ray from R through chain point j.
int sideOfRay(const VisibilityScan& v, int i, int j) {
  return side(v, i, v.rx, v.ry, px(v, j), py(v, j));
}
// Squared distance of a point from R.
double fromR(const VisibilityScan& v, double x, double y) {
  return (x - v.rx) * (x - v.rx) + (y - v.ry) * (y - v.ry);
}
bool same(const VisibilityScan& v, int i, double x, double y) {
  return px(v, i) == x && py(v, i) == y;
}

// Put chain point i on the stack with the given label.
void push(VisibilityScan& v, int i, int label) {
  v.s += 1;
  v.x(v.s) = v.x(i);
  v.y(v.s) = v.y(i);
  v.label(v.s) = label;
}
void pushPoint(VisibilityScan& v, double x, double y, int label) {
  v.s += 1;
  v.x(v.s) = x;
  v.y(v.s) = y;
  v.label(v.s) = label;
}

// From j on, the first chain point that is not on the ray from R through
// chain point `through`; `result` is its side. False when the chain ends.
bool skipCollinear(const VisibilityScan& v, int& j, int through, int& result) {
  for (;;) {
    ++j;
    if (j > v.n) return false;
    result = sideOfRay(v, j, through);
    if (result != 0) return true;
  }
}

// Where the ray or segment p1 -> p2 meets the segment q1 -> q2.
bool meet(bool ray, double p1x, double p1y, double p2x, double p2y, double q1x, double q1y,
          double q2x, double q2y, double& x, double& y) {
  bool found = false, status = false;
  IQSGIN(ray, p1x, p1y, p2x, p2y, q1x, q1y, q2x, q2y, x, y, found, status);
  return found;
}

}  // namespace

void IQVSPG(double rx, double ry, int n, View0<double> x, View0<double> y, View0<int> label,
            int& top, bool& status) {
  status = false;
  top = 0;
  VisibilityScan v;
  v.rx = rx;
  v.ry = ry;
  v.x = x;
  v.y = y;
  v.label = label;
  v.open = x(0) != x(n) || y(0) != y(n);
  v.n = n;
  label(0) = 0;

  // A chain that ends along a ray from R ends where that ray leaves it.
  if (v.open) {
    while (v.n >= 2 && sideOfRay(v, v.n - 1, v.n) == 0) v.n -= 1;
  }

  // The first point off the ray through point 0 sets the way the scan starts.
  int j = 0, lr = 0;
  if (!skipCollinear(v, j, 0, lr)) {
    fail("(IQVSPG) Internal error - index out of range when scanning!", status);
    return;
  }
  if (lr == -1) {
    v.state = ScanLeft;
    if (j == 1) {
      v.s = 1;
      label(1) = 1;
    } else if (v.open) {
      v.s = 1;
      x(0) = x(j - 1);
      y(0) = y(j - 1);
      label(0) = j - 1;
      x(1) = x(j);
      y(1) = y(j);
      label(1) = j;
    } else {
      v.s = 2;
      x(1) = x(j - 1);
      y(1) = y(j - 1);
      label(1) = j - 1 + v.n;
      x(2) = x(j);
      y(2) = y(j);
      label(2) = j;
    }
  } else {
    v.state = ScanBehind;
    v.s = 0;
    if (v.open && j > 1) {
      x(0) = x(j - 1);
      y(0) = y(j - 1);
      label(0) = j - 1;
    }
  }
  v.c = j;

  // Every state moves the scan index on or hands over to one that does; the
  // bound only stops a scan that inconsistent geometry would keep going.
  const int limit = 4 * v.n + 16;
  for (int steps = 0; v.state != ScanDone; ++steps) {
    if (steps > limit) {
      fail("(IQVSPG) Internal error - index out of range when scanning!", status);
      return;
    }
    switch (v.state) {
      case ScanLeft:
        SCVPGL(v, status);
        break;
      case ScanRight:
        SCVPGR(v, status);
        break;
      case ScanBehind:
        SCVPG1(v, status);
        break;
      case ScanEndHidden:
        SCVPG2(v, status);
        break;
      case ScanTurned:
        SCVPG3(v, status);
        break;
      default:
        SCVPG4(v, status);
        break;
    }
    if (status) return;
  }

  // Drop the marks of points that do not end a visible stretch.
  for (int i = 1; i <= v.s; ++i) {
    if (label(i) > v.n) {
      label(i) -= v.n;
    } else if (label(i) < -v.n) {
      label(i) += v.n;
    }
  }
  top = v.s;
}

void SCVPGL(VisibilityScan& v, bool& status) {
  status = false;
  while (v.state == ScanLeft) {
    if (v.c == v.n) {
      v.state = ScanDone;
      return;
    }
    if (v.s < 1) {
      fail("(SCVPGL) Internal error - attempt to underflow vertex stack!", status);
      return;
    }
    // Has the stack turned past the ray through the chain's end?
    if (v.open || v.s >= 3) {
      double ux = 0.0, uy = 0.0;
      if (meet(true, v.rx, v.ry, px(v, v.n), py(v, v.n), px(v, v.s - 1), py(v, v.s - 1), px(v, v.s),
               py(v, v.s), ux, uy)) {
        v.state = ScanEndHidden;
        v.wx = px(v, v.c);
        v.wy = py(v, v.c);
        if (sideOfRay(v, v.s, v.n) == -1) {
          v.x(v.s) = ux;
          v.y(v.s) = uy;
          v.label(v.s) = -v.c;
        }
        return;
      }
    }
    const int lr = sideOfRay(v, v.c + 1, v.c);
    if (lr == -1) {
      // Still turning counterclockwise: the next point is visible.
      v.c += 1;
      push(v, v.c, v.c);
      continue;
    }
    int j = v.c + 1;
    if (side(v, j, px(v, v.s - 1), py(v, v.s - 1), px(v, v.c), py(v, v.c)) == 1) {
      v.state = ScanBehind;
      v.c = j;
      continue;
    }
    int lr2 = lr;
    if (lr == 0 && !skipCollinear(v, j, v.c, lr2)) {
      fail("(SCVPGL) Internal error - index out of range when scanning!", status);
      return;
    }
    if (lr2 == -1) {
      push(v, j - 1, j - 1 + v.n);
      push(v, j, j);
    } else {
      v.state = ScanRight;
    }
    v.c = j;
  }
}

void SCVPGR(VisibilityScan& v, bool& status) {
  status = false;
  while (v.state == ScanRight) {
    // Chain point c - 1 as it came in.
    const double prevX = v.previousSaved ? v.previousX : px(v, v.c - 1);
    const double prevY = v.previousSaved ? v.previousY : py(v, v.c - 1);
    v.previousSaved = false;
    // Pop the stack back to where the ray from R through the current point
    // leaves it.
    int outcome = 0;
    int k = v.s;
    for (;;) {
      if (k < 1) {
        fail("(SCVPGR) Internal error - attempt to underflow vertex stack!", status);
        return;
      }
      if (std::abs(v.label(k)) <= v.n) {
        const int lr = side(v, v.c, v.rx, v.ry, px(v, k - 1), py(v, k - 1));
        if (lr == -1) {
          outcome = 1;
        } else if (lr == 0) {
          if (std::abs(v.label(k - 1)) <= v.n) {
            k -= 1;
            outcome = 2;
          } else if (k < 2) {
            fail("(SCVPGR) Internal error - attempt to underflow vertex stack!", status);
            return;
          } else if (fromR(v, px(v, k - 2), py(v, k - 2)) >= fromR(v, px(v, k - 1), py(v, k - 1))) {
            k -= 2;
            outcome = 2;
          } else {
            outcome = -1;
          }
        }
      } else if (outcome == -1) {
        if (fromR(v, px(v, k - 1), py(v, k - 1)) >= fromR(v, px(v, v.c), py(v, v.c))) {
          k -= 1;
          outcome = 2;
        } else {
          v.wx = px(v, v.c);
          v.wy = py(v, v.c);
          outcome = 3;
        }
      } else {
        double ux = 0.0, uy = 0.0;
        if (meet(false, prevX, prevY, px(v, v.c), py(v, v.c), px(v, k - 1), py(v, k - 1), px(v, k),
                 py(v, k), ux, uy)) {
          v.wx = ux;
          v.wy = uy;
          outcome = 3;
        }
      }
      if (outcome > 0) break;
      k -= 1;
    }

    if (outcome == 3) {
      v.state = ScanCut;
      v.s = k - 1;
      return;
    }
    v.s = k;
    v.wx = prevX;
    v.wy = prevY;
    if (outcome == 1) {
      // Cut the stack top at the ray through the current point.
      double ux = 0.0, uy = 0.0;
      if (meet(true, v.rx, v.ry, px(v, v.c), py(v, v.c), px(v, v.s - 1), py(v, v.s - 1), px(v, v.s),
               py(v, v.s), ux, uy)) {
        v.x(v.s) = ux;
        v.y(v.s) = uy;
        v.label(v.s) = -std::abs(v.label(v.s));
      }
    }
    if (v.c >= v.n) {
      fail("(SCVPGR) Internal error - index out of range when scanning!", status);
      return;
    }
    const int lr = sideOfRay(v, v.c + 1, v.c);
    if (lr == 1) {
      v.c += 1;
      continue;
    }
    int j = v.c + 1;
    if (side(v, j, v.wx, v.wy, px(v, v.c), py(v, v.c)) == -1) {
      v.state = ScanTurned;
      v.c = j;
      return;
    }
    int lr2 = lr;
    if (lr == 0 && !skipCollinear(v, j, v.c, lr2)) {
      fail("(SCVPGR) Internal error - index out of range when scanning!", status);
      return;
    }
    if (lr2 == -1) {
      v.state = ScanLeft;
      push(v, j - 1, j - 1 + v.n);
      push(v, j, j);
    }
    v.c = j;
  }
}

void SCVPG1(VisibilityScan& v, bool& status) {
  status = false;
  // Scan on for the edge that the ray from R through the stack top meets.
  int outcome = 0;
  int k = v.c;
  while (outcome == 0) {
    if (k >= v.n) {
      fail("(SCVPG1) Internal error - index out of range when scanning!", status);
      return;
    }
    if (same(v, k + 1, px(v, v.s), py(v, v.s))) {
      k += 2;
      continue;
    }
    double wx = 0.0, wy = 0.0;
    if (meet(true, v.rx, v.ry, px(v, v.s), py(v, v.s), px(v, k), py(v, k), px(v, k + 1),
             py(v, k + 1), wx, wy)) {
      v.wx = wx;
      v.wy = wy;
      if (sideOfRay(v, k + 1, k) == 1) {
        if (fromR(v, px(v, v.s), py(v, v.s)) >= fromR(v, wx, wy)) {
          if (v.s > 0) outcome = 1;
        } else if (sideOfRay(v, k, v.s) == -1) {
          outcome = 2;
        }
      } else if (sideOfRay(v, k + 1, v.s) == -1) {
        outcome = 3;
      }
    }
    if (outcome == 0) k += 1;
  }

  if (outcome == 3) {
    // The chain comes out from behind the stack top going counterclockwise.
    v.state = ScanLeft;
    v.c = k + 1;
    if (sideOfRay(v, k, v.s) == 0) {
      push(v, k, k + v.n);
    } else {
      pushPoint(v, v.wx, v.wy, -(k + 1 + v.n));
    }
    push(v, v.c, v.c);
  } else if (outcome == 1) {
    v.c = k + 1;
    if (sideOfRay(v, v.c, v.s) == 1) {
      v.state = ScanRight;
      return;
    }
    int j = v.c + 1;
    if (j > v.n) {
      fail("(SCVPG1) Internal error - index out of range when scanning!", status);
      return;
    }
    const int lr1 = sideOfRay(v, j, v.c);
    const int lr2 = side(v, j, px(v, k), py(v, k), px(v, v.c), py(v, v.c));
    if (lr1 <= 0 && lr2 == -1) {
      v.state = ScanTurned;
      v.wx = px(v, k);
      v.wy = py(v, k);
      v.c = j;
      return;
    }
    int lr3 = lr1;
    if (lr1 == 0 && !skipCollinear(v, j, v.c, lr3)) {
      fail("(SCVPG1) Internal error - index out of range when scanning!", status);
      return;
    }
    if (lr3 == 1) {
      v.state = ScanRight;
    } else {
      v.state = ScanLeft;
      push(v, j - 1, j - 1 + v.n);
      push(v, j, j);
    }
    v.c = j;
  } else {
    v.state = ScanCut;
    v.c = k + 1;
    if (sideOfRay(v, v.c, v.s) == 0) {
      v.wx = px(v, v.c);
      v.wy = py(v, v.c);
    }
  }
}

void SCVPG2(VisibilityScan& v, bool& status) {
  status = false;
  const double dxn = px(v, v.n) - px(v, v.s), dyn = py(v, v.n) - py(v, v.s);
  const double tolerance = meshTolerance() * (dxn * dxn + dyn * dyn);
  const int c0 = v.c;
  int k = v.c;
  if (!(v.label(v.s) < 0 || k + 1 == v.n)) {
    if (k + 1 > v.n || v.s < 1) {
      fail("(SCVPG2) Internal error - index out of range when scanning!", status);
      return;
    }
    const int lr = sideOfRay(v, k + 1, v.s);
    const int lr1 = side(v, k + 1, px(v, v.s - 1), py(v, v.s - 1), px(v, v.s), py(v, v.s));
    if (lr == 1 && lr1 == -1) {
      v.state = ScanRight;
      v.c = k + 1;
      return;
    }
    k += 1;
  }
  // Look for the edge that comes back across the segment from the chain's
  // end to the stack top.
  for (;;) {
    if (k + 1 == v.n) {
      v.state = ScanDone;
      v.c = v.n;
      push(v, v.n, v.n);
      return;
    }
    if (k + 1 > v.n) {
      fail("(SCVPG2) Internal error - index out of range when scanning!", status);
      return;
    }
    const double fromX = k == c0 ? v.wx : px(v, k);
    const double fromY = k == c0 ? v.wy : py(v, k);
    double ux = 0.0, uy = 0.0;
    if (meet(false, px(v, v.n), py(v, v.n), px(v, v.s), py(v, v.s), fromX, fromY, px(v, k + 1),
             py(v, k + 1), ux, uy)) {
      // A crossing at the chain's end is no way back in. One at the stack
      // top is a way back only for an edge that goes on in front of the
      // stack's last segment, on R's side; an edge that turns away behind
      // it, or runs back along it (the return side of a doubled edge), is
      // still hidden.
      const double dnx = px(v, v.n) - ux, dny = py(v, v.n) - uy;
      const double dsx = px(v, v.s) - ux, dsy = py(v, v.s) - uy;
      bool back = dnx * dnx + dny * dny > tolerance && sideOfRay(v, k + 1, v.n) == 1;
      if (back && dsx * dsx + dsy * dsy <= tolerance) {
        back = v.s >= 1 &&
               side(v, k + 1, px(v, v.s - 1), py(v, v.s - 1), px(v, v.s), py(v, v.s)) == -1;
      }
      if (back) {
        v.state = ScanRight;
        v.c = k + 1;
        if (k == c0) {
          // The edge starts at W, the point whose place the cut stack top
          // may have taken.
          v.previousSaved = true;
          v.previousX = fromX;
          v.previousY = fromY;
        }
        return;
      }
    }
    k += 1;
  }
}

void SCVPG3(VisibilityScan& v, bool& status) {
  status = false;
  const double qx = px(v, v.c - 1), qy = py(v, v.c - 1);
  int k = v.c;
  for (;;) {
    if (k >= v.n) {
      fail("(SCVPG3) Internal error - index out of range when scanning!", status);
      return;
    }
    if (same(v, k + 1, qx, qy)) {
      k += 1;
      continue;
    }
    if (same(v, k, qx, qy)) {
      // An edge leaving Q decides whether the chain comes out again here.
      int j = k + 1;
      const int lr = side(v, j, v.rx, v.ry, qx, qy);
      const int lr1 = side(v, j, v.wx, v.wy, qx, qy);
      if (lr <= 0 && lr1 == -1) {
        k += 1;
        continue;
      }
      int lr2 = lr;
      while (lr2 == 0) {
        ++j;
        if (j > v.n) {
          fail("(SCVPG3) Internal error - index out of range when scanning!", status);
          return;
        }
        lr2 = side(v, j, v.rx, v.ry, qx, qy);
      }
      if (lr2 == 1) {
        v.state = ScanRight;
      } else {
        v.state = ScanLeft;
        push(v, j - 1, j - 1 + v.n);
        push(v, j, j);
      }
      v.c = j;
      return;
    }
    double ux = 0.0, uy = 0.0;
    if (meet(false, qx, qy, px(v, v.s), py(v, v.s), px(v, k), py(v, k), px(v, k + 1), py(v, k + 1),
             ux, uy) &&
        side(v, k + 1, v.rx, v.ry, qx, qy) == 1) {
      v.state = ScanRight;
      v.c = k + 1;
      return;
    }
    k += 1;
  }
}

void SCVPG4(VisibilityScan& v, bool& status) {
  status = false;
  const double qx = px(v, v.c - 1), qy = py(v, v.c - 1);
  int k = v.c;
  for (;;) {
    if (k >= v.n) {
      fail("(SCVPG4) Internal error - index out of range when scanning!", status);
      return;
    }
    double ux = 0.0, uy = 0.0;
    if (meet(false, v.wx, v.wy, px(v, v.s), py(v, v.s), px(v, k), py(v, k), px(v, k + 1),
             py(v, k + 1), ux, uy)) {
      const int lr = sideOfRay(v, k + 1, k);
      const int lr1 = sideOfRay(v, k + 1, v.s);
      if (lr == -1 && lr1 == -1) {
        const bool atW = same(v, k, v.wx, v.wy);
        if (!atW || side(v, k + 1, qx, qy, v.wx, v.wy) != -1) {
          v.state = ScanLeft;
          v.c = k + 1;
          if (sideOfRay(v, k, v.s) == 0) {
            push(v, k, k + v.n);
          } else {
            pushPoint(v, ux, uy, -(k + 1 + v.n));
          }
          push(v, v.c, v.c);
          return;
        }
      }
    }
    k += 1;
  }
}

}  // namespace kntr::mesher
