#include "mesher/predicates.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

namespace kntr::mesher {

namespace {

constexpr double Epsilon = std::numeric_limits<double>::epsilon() / 2.0;  // 2^-53
// Relative error bounds of the plain evaluations.
constexpr double OrientBound = (3.0 + 16.0 * Epsilon) * Epsilon;
constexpr double CircleBound = (10.0 + 96.0 * Epsilon) * Epsilon;

// The longest expansion met: the in-circle determinant in full.
constexpr int ExpansionRoom = 2048;

// A value as a sum of non-overlapping doubles, smallest first, zeros left
// out.
struct Expansion {
  std::array<double, ExpansionRoom> part;
  int length = 0;
  double sign() const { return length == 0 ? 0.0 : part[static_cast<std::size_t>(length - 1)]; }
};

// a + b = s + e exactly.
inline void twoSum(double a, double b, double& s, double& e) {
  s = a + b;
  const double bv = s - a;
  const double av = s - bv;
  e = (a - av) + (b - bv);
}

// a * b = p + e exactly (the fused multiply-add gives the error).
inline void twoProduct(double a, double b, double& p, double& e) {
  p = a * b;
  e = std::fma(a, b, -p);
}

// The exact difference a - b as an expansion.
void difference(double a, double b, Expansion& out) {
  double s = 0.0, e = 0.0;
  twoSum(a, -b, s, e);
  out.length = 0;
  if (e != 0.0) out.part[static_cast<std::size_t>(out.length++)] = e;
  if (s != 0.0) out.part[static_cast<std::size_t>(out.length++)] = s;
}

// out = e + f, both expansions, zeros dropped (the sum of two expansions,
// each component added in order of size).
void add(const Expansion& e, const Expansion& f, Expansion& out) {
  out.length = 0;
  int i = 0, j = 0;
  double q = 0.0;
  bool started = false;
  auto nextSmallest = [&]() {
    if (j >= f.length || (i < e.length && std::fabs(e.part[static_cast<std::size_t>(i)]) <
                                               std::fabs(f.part[static_cast<std::size_t>(j)])))
      return e.part[static_cast<std::size_t>(i++)];
    return f.part[static_cast<std::size_t>(j++)];
  };
  while (i < e.length || j < f.length) {
    const double g = nextSmallest();
    if (!started) {
      q = g;
      started = true;
      continue;
    }
    double s = 0.0, h = 0.0;
    twoSum(q, g, s, h);
    q = s;
    if (h != 0.0) out.part[static_cast<std::size_t>(out.length++)] = h;
  }
  if (started && q != 0.0) out.part[static_cast<std::size_t>(out.length++)] = q;
}

// out = e * b for an expansion e and a double b.
void scale(const Expansion& e, double b, Expansion& out) {
  out.length = 0;
  if (e.length == 0 || b == 0.0) return;
  double q = 0.0, h = 0.0;
  twoProduct(e.part[0], b, q, h);
  if (h != 0.0) out.part[static_cast<std::size_t>(out.length++)] = h;
  for (int i = 1; i < e.length; ++i) {
    double p1 = 0.0, p0 = 0.0, s = 0.0;
    twoProduct(e.part[static_cast<std::size_t>(i)], b, p1, p0);
    twoSum(q, p0, s, h);
    if (h != 0.0) out.part[static_cast<std::size_t>(out.length++)] = h;
    twoSum(p1, s, q, h);
    if (h != 0.0) out.part[static_cast<std::size_t>(out.length++)] = h;
  }
  if (q != 0.0) out.part[static_cast<std::size_t>(out.length++)] = q;
}

// to = from, the used components only.
void copy(const Expansion& from, Expansion& to) {
  std::copy_n(from.part.data(), from.length, to.part.data());
  to.length = from.length;
}

// out = e * f for two expansions; `work` and `term` are scratch.
void multiply(const Expansion& e, const Expansion& f, Expansion& out, Expansion& work,
              Expansion& term) {
  out.length = 0;
  for (int k = 0; k < f.length; ++k) {
    scale(e, f.part[static_cast<std::size_t>(k)], term);
    add(out, term, work);
    copy(work, out);
  }
}

int signOf(double v) { return v > 0.0 ? 1 : (v < 0.0 ? -1 : 0); }

// Scratch expansions of the exact paths; the mesher runs on one thread.
struct ExactWork {
  Expansion dx[3], dy[3], t1, t2, t3, w1, w2, lift[3], cross[3], sum;
};

ExactWork& exactWork() {
  static ExactWork work;
  return work;
}

}  // namespace

int IQORNT(const XY& a, const XY& b, const XY& c) {
  const double left = (a.x - c.x) * (b.y - c.y);
  const double right = (a.y - c.y) * (b.x - c.x);
  const double det = left - right;
  const double bound = OrientBound * (std::fabs(left) + std::fabs(right));
  if (det > bound || -det > bound) return signOf(det);

  // Exactly: (ax - cx)(by - cy) - (ay - cy)(bx - cx).
  ExactWork& w = exactWork();
  difference(a.x, c.x, w.dx[0]);
  difference(b.y, c.y, w.dy[0]);
  difference(a.y, c.y, w.dx[1]);
  difference(b.x, c.x, w.dy[1]);
  multiply(w.dx[0], w.dy[0], w.t1, w.w1, w.w2);
  multiply(w.dx[1], w.dy[1], w.t2, w.w1, w.w2);
  for (int i = 0; i < w.t2.length; ++i) w.t2.part[static_cast<std::size_t>(i)] *= -1.0;
  add(w.t1, w.t2, w.sum);
  return signOf(w.sum.sign());
}

int IQINCR(const XY& a, const XY& b, const XY& c, const XY& d) {
  const double adx = a.x - d.x, ady = a.y - d.y;
  const double bdx = b.x - d.x, bdy = b.y - d.y;
  const double cdx = c.x - d.x, cdy = c.y - d.y;
  const double bc = bdx * cdy - cdx * bdy, ca = cdx * ady - adx * cdy, ab = adx * bdy - bdx * ady;
  const double alift = adx * adx + ady * ady, blift = bdx * bdx + bdy * bdy,
               clift = cdx * cdx + cdy * cdy;
  const double det = alift * bc + blift * ca + clift * ab;
  const double permanent = (std::fabs(bdx * cdy) + std::fabs(cdx * bdy)) * alift +
                           (std::fabs(cdx * ady) + std::fabs(adx * cdy)) * blift +
                           (std::fabs(adx * bdy) + std::fabs(bdx * ady)) * clift;
  const double bound = CircleBound * permanent;
  if (det > bound || -det > bound) return signOf(det);

  // Exactly: the sum over the three points of lift(p) times the cross
  // product of the other two, all relative to d.
  ExactWork& w = exactWork();
  const XY* p[3] = {&a, &b, &c};
  for (int i = 0; i < 3; ++i) {
    difference(p[i]->x, d.x, w.dx[i]);
    difference(p[i]->y, d.y, w.dy[i]);
  }
  for (int i = 0; i < 3; ++i) {
    multiply(w.dx[i], w.dx[i], w.t1, w.w1, w.w2);
    multiply(w.dy[i], w.dy[i], w.t2, w.w1, w.w2);
    add(w.t1, w.t2, w.lift[i]);
    const int j = (i + 1) % 3, k = (i + 2) % 3;
    multiply(w.dx[j], w.dy[k], w.t1, w.w1, w.w2);
    multiply(w.dx[k], w.dy[j], w.t2, w.w1, w.w2);
    for (int q = 0; q < w.t2.length; ++q) w.t2.part[static_cast<std::size_t>(q)] *= -1.0;
    add(w.t1, w.t2, w.cross[i]);
  }
  w.sum.length = 0;
  for (int i = 0; i < 3; ++i) {
    multiply(w.lift[i], w.cross[i], w.t3, w.w1, w.w2);
    add(w.sum, w.t3, w.t1);
    copy(w.t1, w.sum);
  }
  return signOf(w.sum.sign());
}

bool IQSGTC(const XY& p1, const XY& p2, const XY& q1, const XY& q2) {
  if (std::max(p1.x, p2.x) < std::min(q1.x, q2.x) || std::max(q1.x, q2.x) < std::min(p1.x, p2.x) ||
      std::max(p1.y, p2.y) < std::min(q1.y, q2.y) || std::max(q1.y, q2.y) < std::min(p1.y, p2.y))
    return false;
  const int o1 = IQORNT(p1, p2, q1), o2 = IQORNT(p1, p2, q2);
  const int o3 = IQORNT(q1, q2, p1), o4 = IQORNT(q1, q2, p2);
  if (o1 * o2 > 0 || o3 * o4 > 0) return false;
  if (o1 != 0 || o2 != 0 || o3 != 0 || o4 != 0) return true;
  // All four on one line: the boxes overlap, so the segments share a stretch
  // or a point (the box test above was on closed intervals).
  return true;
}

}  // namespace kntr::mesher
