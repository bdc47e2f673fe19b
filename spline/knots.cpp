#include "spline/knots.h"

#include <cmath>

#include "framework/text.h"
#include "mesher/limits.h"

namespace kntr::spline {

namespace {

using framework::ERRSCN;
using framework::fail;

constexpr double Pi = 3.141592653589793;

double distance(const Triple& a, const Triple& b) {
  const double dx = b(1) - a(1), dy = b(2) - a(2), dz = b(3) - a(3);
  return std::sqrt(dx * dx + dy * dy + dz * dz);
}

// x / (x + y), taken as 0 where both are 0 (coinciding points).
double share(double x, double y) {
  return x + y == 0.0 ? 0.0 : x / (x + y);
}

// Heap sort of the index vector 1..n by `less(i, j)` on original indices.
// Ties are broken by the index itself, so equal keys keep their order.
template <class Less>
void heapSortOrder(int n, View1<int> order, Less less) {
  for (int i = 1; i <= n; ++i) order(i) = i;
  if (n < 2) return;
  auto before = [&](int i, int j) { return less(i, j) || (!less(j, i) && i < j); };
  // Sift the element at `root` down a heap of `size` elements.
  auto sift = [&](int root, int size) {
    const int item = order(root);
    int parent = root;
    int child = 2 * parent;
    while (child <= size) {
      if (child < size && before(order(child), order(child + 1))) ++child;
      if (!before(item, order(child))) break;
      order(parent) = order(child);
      parent = child;
      child = 2 * parent;
    }
    order(parent) = item;
  };
  for (int root = n / 2; root >= 1; --root) sift(root, n);
  for (int size = n; size >= 2; --size) {
    const int top = order(1);
    order(1) = order(size);
    order(size) = top;
    sift(1, size - 1);
  }
}

}  // namespace

void MKIKV3(int parameterization, SplineRecord& rec, bool& failed) {
  failed = false;
  const int n = rec.NOFFS;
  if (n < 2) {
    fail("(MKIKV3) At least 2 offset points must be given!", failed);
    return;
  }
  if (n > MaxOffsetPoints) {
    fail("(MKIKV3) Max number of offset points exceeded!", failed);
    return;
  }
  int code = parameterization;
  if (code < ParamUniform || code > ParamFoley) {
    ERRSCN("(MKIKV3) Illegal parameterization type specified - uses chorde length instead!");
    code = ParamChordLength;
  }
  if (code == ParamCurveLength) {
    // A note, not an error: the curve is made all the same.
    framework::PRMESG("(MKIKV3) Curve length parameterization is impossible - uses chorde length instead!");
    code = ParamChordLength;
  }
  const bool closed = rec.CLOSED;
  const auto& p = rec.OFFPNT;
  auto& knots = rec.INCKNT;

  if (code == ParamUniform) {
    // Deliberately the running index, not a vector of ones.
    for (int i = 1; i <= n; ++i) knots(i) = i;
    return;
  }

  // Chords; the last one is the closing chord, 0 on an open curve.
  static Array1<double, MaxOffsetPoints> d;
  for (int i = 1; i < n; ++i) d(i) = distance(p(i), p(i + 1));
  d(n) = closed ? distance(p(n), p(1)) : 0.0;

  if (code == ParamChordLength) {
    for (int i = 1; i <= n; ++i) knots(i) = d(i);
    return;
  }

  if (code == ParamCentripetal) {
    double chordSum = 0.0, rootSum = 0.0;
    for (int i = 1; i <= n; ++i) {
      chordSum += d(i);
      rootSum += std::sqrt(d(i));
    }
    for (int i = 1; i <= n; ++i)
      knots(i) = rootSum == 0.0 ? std::sqrt(d(i)) : (chordSum / rootSum) * std::sqrt(d(i));
    // The closing segment keeps its unscaled root.
    if (closed) knots(n) = std::sqrt(d(n));
    return;
  }

  // Foley: chords stretched by the clipped turning angles at their ends.
  auto turning = [&](int i) {
    int before = i - 1, after = i + 1;
    if (closed) {
      if (before < 1) before = n;
      if (after > n) after = 1;
    } else if (before < 1 || after > n) {
      return 0.0;
    }
    return std::fmin(Pi / 2.0, Pi - IQANG3(p(before), p(i), p(after)));
  };
  auto chord = [&](int i) {
    if (closed) return d(i < 1 ? i + n : (i > n ? i - n : i));
    return (i < 1 || i >= n) ? 0.0 : d(i);
  };
  // Stretch at the start and at the end of interval i.
  auto startStretch = [&](int i) { return 1.5 * turning(i) * share(chord(i - 1), chord(i)); };
  auto endStretch = [&](int i) {
    const int next = closed && i == n ? 1 : i + 1;
    return 1.5 * turning(next) * share(chord(i + 1), chord(i));
  };
  if (!closed) {
    for (int i = 1; i <= n - 1; ++i) {
      double stretch = 1.0;
      if (i > 1) stretch += startStretch(i);
      if (i < n - 1 || i == 1) stretch += endStretch(i);
      knots(i) = d(i) * stretch;
    }
    knots(n) = 0.0;
    return;
  }
  for (int i = 1; i <= n; ++i) {
    // The first interval weighs the angle at P(1) with d(n-1) and d(n).
    const double start =
        i == 1 ? 1.5 * turning(1) * share(chord(n - 1), chord(n)) : startStretch(i);
    knots(i) = d(i) * (1.0 + start + endStretch(i));
  }
}

double IQANG3(const Triple& a, const Triple& b, const Triple& c) {
  double uu = 0.0, vv = 0.0, uv = 0.0;
  for (int k = 1; k <= 3; ++k) {
    const double u = a(k) - b(k), v = c(k) - b(k);
    uu += u * u;
    vv += v * v;
    uv += u * v;
  }
  double q = std::sqrt(uu * vv);
  if (q == 0.0) q = 1.0;
  double cosine = uv / q;
  if (std::fabs(cosine) > 1.0 - mesher::meshTolerance()) cosine = cosine > 0.0 ? 1.0 : -1.0;
  if (cosine >= 1.0) return 0.0;
  if (cosine <= -1.0) return Pi;
  return std::acos(cosine);
}

void IQNPLS(const Triple& p, const Triple& a, const Triple& b, Triple& nearest, bool& failed) {
  failed = false;
  double ab2 = 0.0, apab = 0.0;
  for (int k = 1; k <= 3; ++k) {
    const double ab = b(k) - a(k);
    ab2 += ab * ab;
    apab += (p(k) - a(k)) * ab;
  }
  if (ab2 == 0.0) {
    nearest = a;
    return;
  }
  const double t = apab / ab2;
  if (t <= 0.0) {
    nearest = a;
  } else if (t >= 1.0) {
    nearest = b;
  } else {
    for (int k = 1; k <= 3; ++k) nearest(k) = a(k) + t * (b(k) - a(k));
  }
}

bool BOXOVL(double xmin1, double xmax1, double ymin1, double ymax1, double xmin2, double xmax2,
            double ymin2, double ymax2) {
  return xmin1 <= xmax2 && xmin2 <= xmax1 && ymin1 <= ymax2 && ymin2 <= ymax1;
}

void IXSRTD(int n, View1<const double> keys, View1<int> order, bool& failed) {
  failed = false;
  if (n <= 0) return;
  heapSortOrder(n, order, [&](int i, int j) { return keys(i) < keys(j); });
}

void IXSRTI(int n, View1<const int> keys, View1<int> order, bool& failed) {
  failed = false;
  if (n <= 0) return;
  heapSortOrder(n, order, [&](int i, int j) { return keys(i) < keys(j); });
}

}  // namespace kntr::spline
