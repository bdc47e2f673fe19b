#include "mesher/convex.h"

#include <limits>

#include "framework/text.h"
#include "mesher/limits.h"

namespace kntr::mesher {

double IQCPAR(int n, View1<const double> x, View1<const double> y) {
  if (n < 3) return 0.0;
  double sum = 0.0;
  for (int i = 1; i <= n; ++i) {
    const int before = i == 1 ? n : i - 1;
    const int after = i == n ? 1 : i + 1;
    sum += x(i) * (y(after) - y(before));
  }
  return 0.5 * sum;
}

double IQPLAR(int n, View1<const int> list, View1<const XY> vertices) {
  if (n < 3) return 0.0;
  double sum = 0.0;
  for (int i = 1; i <= n; ++i) {
    const XY& before = vertices(list(i == 1 ? n : i - 1));
    const XY& after = vertices(list(i == n ? 1 : i + 1));
    sum += vertices(list(i)).x * (after.y - before.y);
  }
  return 0.5 * sum;
}

namespace {

// The rotating scan over the edges of a convex polygon. For each edge, in
// order from the edge (n, 1), the far vertex is the one of largest area
// above the edge; it only moves forward as the edge does, so one turn of
// the edge takes one turn of the far vertex.
class RotatingScan {
 public:
  RotatingScan(int n, View1<const double> x, View1<const double> y) : n_(n), x_(x), y_(y) {}

  int next(int k) const { return k == n_ ? 1 : k + 1; }

  // Twice the area of the triangle (a, b, k), positive when k is left of a->b.
  double area(int a, int b, int k) const {
    return (x_(b) - x_(a)) * (y_(k) - y_(a)) - (y_(b) - y_(a)) * (x_(k) - x_(a));
  }

  // Moves the far vertex of edge (a, b) forward while the area grows by more
  // than the tolerance. False when it has gone round more than twice, which
  // a convex polygon never asks for.
  bool advance(int a, int b) {
    const double grow = 1.0 + meshTolerance();
    while (area(a, b, next(far_)) > area(a, b, far_) * grow) {
      far_ = next(far_);
      if (++steps_ > 2 * n_) return false;
    }
    return true;
  }

  int far() const { return far_; }

 private:
  int n_;
  View1<const double> x_, y_;
  int far_ = 1;
  int steps_ = 0;
};

double squaredDistance(View1<const double> x, View1<const double> y, int i, int j) {
  const double dx = x(j) - x(i), dy = y(j) - y(i);
  return dx * dx + dy * dy;
}

}  // namespace

void IDSQCP(int n, View1<const double> x, View1<const double> y, int& a, int& b, double& width2,
            bool& status) {
  status = false;
  width2 = std::numeric_limits<double>::max();
  a = 1;
  b = 1;
  if (n < 3) return;
  RotatingScan scan(n, x, y);
  for (int e = 1; e <= n; ++e) {
    const int from = e == 1 ? n : e - 1;
    const int to = scan.next(from);
    if (!scan.advance(from, to)) {
      framework::fail(
          "(IDSQCP) Internal error - could not establish inner diameter of convex polygon!", status);
      return;
    }
    const double length2 = squaredDistance(x, y, from, to);
    if (length2 <= 0.0) continue;
    const double twiceArea = scan.area(from, to, scan.far());
    const double height2 = twiceArea * twiceArea / length2;
    if (height2 < width2) {
      width2 = height2;
      a = from;
      b = scan.far();
    }
  }
}

void DSQCPG(int n, View1<const double> x, View1<const double> y, int& a, int& b, double& diameter2,
            bool& status) {
  status = false;
  diameter2 = 0.0;
  a = 1;
  b = 1;
  if (n < 3) return;
  RotatingScan scan(n, x, y);
  const double shrink = 1.0 - meshTolerance();
  auto consider = [&](int i, int j) {
    const double d2 = squaredDistance(x, y, i, j);
    if (d2 > diameter2) {
      diameter2 = d2;
      a = i < j ? i : j;
      b = i < j ? j : i;
    }
  };
  for (int e = 1; e <= n; ++e) {
    const int from = e == 1 ? n : e - 1;
    const int to = scan.next(from);
    if (!scan.advance(from, to)) {
      framework::fail(
          "(DSQCPG) Internal error - could not establish outer diameter of convex polygon!", status);
      return;
    }
    // Both ends of the edge are antipodal to its far vertex, and to the one
    // after it when the two stand level (an edge parallel to this one).
    const int far = scan.far();
    consider(from, far);
    consider(to, far);
    const int beyond = scan.next(far);
    if (scan.area(from, to, beyond) >= scan.area(from, to, far) * shrink) {
      consider(from, beyond);
      consider(to, beyond);
    }
  }
}

}  // namespace kntr::mesher
