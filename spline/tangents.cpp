#include "spline/tangents.h"

#include <algorithm>
#include <cmath>
#include <initializer_list>
#include <string>

#include "framework/text.h"
#include "spline/knots.h"

namespace kntr::spline {

using framework::fail;

namespace {

std::string message(const char* routine, const char* text) {
  return std::string("(") + routine + ") " + text;
}

// Routine names and segment capacity of each family.
template <int D>
struct Family;
template <>
struct Family<3> {
  static constexpr const char* mtn = "HCMTN3";
  static constexpr const char* leq = "HCLEQ3";
  static constexpr const char* free = "MKSM13";
  static constexpr const char* periodic = "MKSM23";
  static constexpr const char* given = "MKSM33";
  static constexpr const char* quadratic = "MKSM43";
  static constexpr int segmentPoints = MaxCCSegmentPoints;
};
template <>
struct Family<2> {
  static constexpr const char* mtn = "HCMTN2";
  static constexpr const char* leq = "HCLEQ2";
  static constexpr const char* free = "MKSM12";
  static constexpr const char* periodic = "MKSM22";
  static constexpr const char* given = "MKSM32";
  static constexpr const char* quadratic = "MKSM42";
  static constexpr int segmentPoints = MaxCCSegmentPoints2;
};

// ---- small vector helpers ----

template <int D>
double norm(const Vec<D>& v) {
  double s = 0.0;
  for (int k = 1; k <= D; ++k) s += v(k) * v(k);
  return std::sqrt(s);
}

template <int D>
Vec<D> scaled(const Vec<D>& v, double f) {
  Vec<D> r;
  for (int k = 1; k <= D; ++k) r(k) = v(k) * f;
  return r;
}

template <int D>
Vec<D> leadPart(const Vec<2 * D>& t) {
  Vec<D> v;
  for (int k = 1; k <= D; ++k) v(k) = t(k);
  return v;
}

template <int D>
Vec<D> trailPart(const Vec<2 * D>& t) {
  Vec<D> v;
  for (int k = 1; k <= D; ++k) v(k) = t(D + k);
  return v;
}

template <int D>
void setLead(Vec<2 * D>& t, const Vec<D>& v) {
  for (int k = 1; k <= D; ++k) t(k) = v(k);
}

template <int D>
void setTrail(Vec<2 * D>& t, const Vec<D>& v) {
  for (int k = 1; k <= D; ++k) t(D + k) = v(k);
}

bool isOneOf(int value, std::initializer_list<int> set) {
  return std::find(set.begin(), set.end(), value) != set.end();
}

// ---- system builders ----

bool rowCountOk(const char* routine, int rowLimit, int n, bool& failed) {
  if (n < 2) {
    fail(message(routine, "At least two offset points must be given!"), failed);
    return false;
  }
  if (n > std::min(rowLimit, MaxRows)) {
    fail(message(routine, "Max number of offset points exceeded!"), failed);
    return false;
  }
  return true;
}

// Rows 2 to n-1, the same for every spline type: continuity of the second
// derivative at each inner point.
template <int D>
void interiorRows(int n, View1<const Vec<D>> p, View1<const double> h, Bands& m, RightSides& r) {
  for (int i = 2; i <= n - 1; ++i) {
    const double h0 = h(i - 1), h1 = h(i);
    m.a(i) = h1;
    m.b(i) = 2.0 * (h0 + h1);
    m.c(i) = h0;
    for (int k = 1; k <= D; ++k)
      r(i, k) =
          3.0 * (h0 * h0 * (p(i + 1)(k) - p(i)(k)) + h1 * h1 * (p(i)(k) - p(i - 1)(k))) / (h0 * h1);
  }
}

// Free start row: zero second derivative at point 1.
template <int D>
void freeStart(View1<const Vec<D>> p, View1<const double> h, Bands& m, RightSides& r) {
  m.a(1) = 0.0;
  m.b(1) = 2.0;
  m.c(1) = 1.0;
  for (int k = 1; k <= D; ++k) r(1, k) = 3.0 * (p(2)(k) - p(1)(k)) / h(1);
}

// Free end row: zero second derivative at point n.
template <int D>
void freeEnd(int n, View1<const Vec<D>> p, View1<const double> h, Bands& m, RightSides& r) {
  m.a(n) = 1.0;
  m.b(n) = 2.0;
  m.c(n) = 0.0;
  for (int k = 1; k <= D; ++k) r(n, k) = 3.0 * (p(n)(k) - p(n - 1)(k)) / h(n - 1);
}

template <int D>
void buildFree(int rowLimit, int n, View1<const Vec<D>> p, View1<const double> h, Bands& m,
               RightSides& r, bool& failed) {
  failed = false;
  if (!rowCountOk(Family<D>::free, rowLimit, n, failed)) return;
  freeStart<D>(p, h, m, r);
  interiorRows<D>(n, p, h, m, r);
  freeEnd<D>(n, p, h, m, r);
}

template <int D>
void buildGiven(int rowLimit, int type, int n, View1<const Vec<D>> p, View1<const double> h,
                const Vec<D>& start, const Vec<D>& end, Bands& m, RightSides& r, bool& failed) {
  failed = false;
  if (!rowCountOk(Family<D>::given, rowLimit, n, failed)) return;
  if (type != SplineStartGiven && type != SplineEndGiven && type != SplineBothGiven) {
    fail(message(Family<D>::given, "Illegal prescribed tangent indicator flag!"), failed);
    return;
  }
  if (type == SplineEndGiven) {
    freeStart<D>(p, h, m, r);
  } else {
    m.a(1) = 0.0;
    m.b(1) = 1.0;
    m.c(1) = 0.0;
    for (int k = 1; k <= D; ++k) r(1, k) = start(k);
  }
  interiorRows<D>(n, p, h, m, r);
  if (type == SplineStartGiven) {
    freeEnd<D>(n, p, h, m, r);
  } else {
    m.a(n) = 0.0;
    m.b(n) = 1.0;
    m.c(n) = 0.0;
    for (int k = 1; k <= D; ++k) r(n, k) = end(k);
  }
}

template <int D>
void buildQuadratic(int rowLimit, int n, View1<const Vec<D>> p, View1<const double> h, Bands& m,
                    RightSides& r, bool& failed) {
  failed = false;
  if (!rowCountOk(Family<D>::quadratic, rowLimit, n, failed)) return;
  // The first and the last piece are parabolas: the two end derivatives
  // average to the chord's slope.
  m.a(1) = 0.0;
  m.b(1) = 1.0;
  m.c(1) = 1.0;
  for (int k = 1; k <= D; ++k) r(1, k) = 2.0 * (p(2)(k) - p(1)(k)) / h(1);
  interiorRows<D>(n, p, h, m, r);
  m.a(n) = 1.0;
  m.b(n) = 1.0;
  m.c(n) = 0.0;
  for (int k = 1; k <= D; ++k) r(n, k) = 2.0 * (p(n)(k) - p(n - 1)(k)) / h(n - 1);
}

template <int D>
void buildPeriodic(int rowLimit, int n, View1<const Vec<D>> p, View1<const double> h, Bands& m,
                   Corner& corner, RightSides& r, bool& failed) {
  failed = false;
  const char* routine = Family<D>::periodic;
  if (!rowCountOk(routine, rowLimit, n, failed)) return;
  const double closing = h(n - 1);
  const double q = closing / h(1);
  if (q == 0.0) {
    fail(message(routine, "First and second-last point coincide for a closed spline!"), failed);
    return;
  }
  // Row 1: continuity at the first point, whose neighbour before it is
  // point n-1; columns n-1 and n stand in the corner.
  m.a(1) = 0.0;
  m.b(1) = 2.0 * closing;
  m.c(1) = closing;
  corner(1) = h(1);
  corner(2) = 2.0 * h(1);
  for (int k = 1; k <= D; ++k)
    r(1, k) = 3.0 * (q * (p(2)(k) - p(1)(k)) + (1.0 / q) * (p(1)(k) - p(n - 1)(k)));
  for (int i = 2; i <= n - 1; ++i) {
    const double h0 = h(i - 1), h1 = h(i);
    if (h0 * h1 == 0.0) {
      fail(message(routine, "Encountered illegal incremental knot vector!"), failed);
      return;
    }
    // The point after row n-1 is the first point again.
    const Vec<D>& next = i + 1 == n ? p(1) : p(i + 1);
    m.a(i) = h1;
    m.b(i) = 2.0 * (h0 + h1);
    m.c(i) = h0;
    for (int k = 1; k <= D; ++k)
      r(i, k) =
          3.0 * (h0 * h0 * (next(k) - p(i)(k)) + h1 * h1 * (p(i)(k) - p(i - 1)(k))) / (h0 * h1);
  }
  // Row n: the repeated point has the tangent of the first, m(n) = m(1).
  m.a(n) = 0.0;
  m.b(n) = -1.0;
  m.c(n) = 0.0;
  corner(3) = 1.0;
  for (int k = 1; k <= D; ++k) r(n, k) = 0.0;
}

// ---- one CC segment ----

template <int D>
void solveSegment(int type, int count, View1<const Vec<D>> p, View1<const double> h,
                  const Vec<D>& start, const Vec<D>& end, View1<Vec<D>> result, bool& failed) {
  failed = false;
  static Bands bands;
  static RightSides rhs, x;
  static Corner corner;
  static Array1<double, MaxRows> workA, workB;
  bool singular = false;
  const char* kind = "";
  switch (type) {
    case SplineFree:
      buildFree<D>(MaxRows, count, p, h, bands, rhs, failed);
      if (failed) return;
      TRIDG1(MaxRows, MaxColumns, count, D, bands, rhs, x, singular, failed);
      kind = "1";
      break;
    case SplinePeriodic:
      buildPeriodic<D>(MaxRows, count, p, h, bands, corner, rhs, failed);
      if (failed) return;
      TRIDG3(MaxRows, MaxColumns, count, D, bands, corner, workA, workB, rhs, x, singular, failed);
      kind = "2";
      break;
    case SplineStartGiven:
    case SplineEndGiven:
    case SplineBothGiven:
      buildGiven<D>(MaxRows, type, count, p, h, start, end, bands, rhs, failed);
      if (failed) return;
      TRIDG1(MaxRows, MaxColumns, count, D, bands, rhs, x, singular, failed);
      kind = "3";
      break;
    case SplineQuadratic:
      buildQuadratic<D>(MaxRows, count, p, h, bands, rhs, failed);
      if (failed) return;
      TRIDG1(MaxRows, MaxColumns, count, D, bands, rhs, x, singular, failed);
      kind = "6";
      break;
    default:
      fail(message(Family<D>::leq, "Illegal/unknown spline segment type!"), failed);
      return;
  }
  if (failed) return;
  if (singular) {
    fail(std::string("(") + Family<D>::leq + ") Found singular coefficient matrix for type " +
             kind + " spline!",
         failed);
    return;
  }
  for (int i = 1; i <= count; ++i)
    for (int k = 1; k <= D; ++k) result(i)(k) = x(i, k);
}

// ---- the segment loop ----

// The curve that the segment loop solves: the given one, or the given one
// with its mirror image.
template <int D>
struct WorkingCurve {
  int n = 0;
  bool closed = false;
  Array1<Vec<D>, MaxRows> points{};
  Array1<double, MaxRows> knots{};
  Array1<int, MaxRows> types{};
  Array1<double, MaxRows> weights{};
  Array1<Vec<2 * D>, MaxRows> tangents{};
  Array1<Vec<2>, MaxRows> lengths{};
};

template <int D>
WorkingCurve<D>& workingCurve() {
  static WorkingCurve<D> curve;
  return curve;
}

// The tangent work array: leading and trailing knot derivatives per working
// point. It is never cleared; a sheer end reads what stands there.
template <int D>
Array1<Vec<2 * D>, MaxRows>& workTangents() {
  static Array1<Vec<2 * D>, MaxRows> tangents;
  return tangents;
}

// A record as a solve sees it: its own points, knots, weights and lengths,
// with types and tangents that a blending pass may have replaced.
template <int D>
struct Given {
  const BasicSplineRecord<D>& rec;
  View1<const int> types;
  View1<const Vec<2 * D>> tangents;
};

template <int D>
void copyGiven(const Given<D>& g, WorkingCurve<D>& w) {
  const int n = g.rec.NOFFS;
  w.n = n;
  w.closed = g.rec.CLOSED;
  for (int i = 1; i <= n; ++i) {
    w.points(i) = g.rec.OFFPNT(i);
    w.knots(i) = g.rec.INCKNT(i);
    w.types(i) = g.types(i);
    w.weights(i) = g.rec.KNKWGT(i);
    w.tangents(i) = g.tangents(i);
    w.lengths(i) = g.rec.TANLEN(i);
  }
}

// Unit tangents, segments, order, end conditions and solves of the working
// curve; the result stands in the tangent work array.
template <int D>
void solveWorking(WorkingCurve<D>& w, bool& failed) {
  failed = false;
  const char* routine = Family<D>::mtn;
  const int n = w.n;

  // Prescribed directions become unit vectors; their lengths come from
  // the length fields.
  for (int i = 1; i <= n; ++i) {
    const int t = w.types(i);
    if (t == TypeLeadingTangent || t == TypeBothTangents || t == TypeEqualTangents) {
      const Vec<D> v = leadPart<D>(w.tangents(i));
      const double length = norm<D>(v);
      if (length == 0.0) {
        fail(message(routine, "Found leading tangent vector having zero length!"), failed);
        return;
      }
      setLead<D>(w.tangents(i), scaled<D>(v, 1.0 / length));
    }
    if (t == TypeTrailingTangent || t == TypeBothTangents) {
      const Vec<D> v = trailPart<D>(w.tangents(i));
      const double length = norm<D>(v);
      if (length == 0.0) {
        fail(message(routine, "Found trailing tangent vector having zero length!"), failed);
        return;
      }
      setTrail<D>(w.tangents(i), scaled<D>(v, 1.0 / length));
    }
  }

  static CCSegments table;
  bool deadlock = false;
  MKCCSL(MaxCCSegments, Family<D>::segmentPoints, n, View1<const int>(w.types.data(), n),
         View1<const double>(w.weights.data(), n), w.closed, table, deadlock, failed);
  if (failed) return;
  if (deadlock) {
    fail(message(routine, "Closed spline deadlock situation detected!"), failed);
    return;
  }

  auto& work = workTangents<D>();
  static Array1<int, MaxRows + 1> index;
  static Array1<Vec<D>, MaxRows + 1> segmentPoints;
  static Array1<double, MaxRows + 1> segmentKnots;
  static Array1<Vec<D>, MaxRows + 1> solved;

  for (int s = 1; s <= table.count; ++s) {
    const int k = table.order(s);
    const int c = table.points(k);
    for (int j = 1; j <= c; ++j) {
      index(j) = table.point(k, j);
      segmentPoints(j) = w.points(index(j));
      segmentKnots(j) = w.knots(index(j));
    }
    const int firstPoint = index(1), lastPoint = index(c);
    int cf = w.types(firstPoint);
    int cl = w.types(lastPoint);

    // The ends of an open curve have no neighbour to take a direction from.
    if (!w.closed) {
      if (k == 1) {
        if (cf == TypeLeadingSheer || cf == TypeTrailingSheer) cf = TypeKnuckle;
      } else if (k == table.count) {
        if (cl == TypeLeadingSheer || cl == TypeTrailingSheer) cl = TypeKnuckle;
      }
      // A single segment ending in a trailing sheer: nothing solves the
      // trailing side of that end.
      if (table.count == 1 && cl == TypeTrailingSheer) cl = TypeKnuckle;
    }

    const Vec<2 * D>& firstData = w.tangents(firstPoint);
    const Vec<2 * D>& lastData = w.tangents(lastPoint);
    const Vec<2>& firstLengths = w.lengths(firstPoint);
    const Vec<2>& lastLengths = w.lengths(lastPoint);
    Vec<D> start{}, end{};
    int type = SplineFree;
    int rows = c;

    if (w.closed && table.count == 1) {
      // One segment round a closed curve: its one end point decides.
      switch (cf) {
        case TypeContinuous:
          type = SplinePeriodic;
          rows = c + 1;
          index(rows) = firstPoint;
          segmentPoints(rows) = w.points(firstPoint);
          break;
        case TypeLeadingTangent:
          type = SplineEndGiven;
          end = scaled<D>(leadPart<D>(firstData), firstLengths(1));
          break;
        case TypeTrailingTangent:
          type = SplineStartGiven;
          start = scaled<D>(trailPart<D>(firstData), firstLengths(2));
          break;
        case TypeBothTangents:
          type = SplineBothGiven;
          start = scaled<D>(trailPart<D>(firstData), firstLengths(2));
          end = scaled<D>(leadPart<D>(firstData), firstLengths(1));
          break;
        case TypeEqualTangents:
          type = SplineBothGiven;
          start = scaled<D>(leadPart<D>(firstData), firstLengths(2));
          end = scaled<D>(leadPart<D>(firstData), firstLengths(1));
          break;
        case TypeGivenVectors:
          type = SplineBothGiven;
          start = trailPart<D>(firstData);
          end = leadPart<D>(firstData);
          break;
        default:
          type = SplineFree;
          break;
      }
    } else {
      // A sheer takes its direction from the neighbour solved before; where
      // the work array holds no direction yet, that end runs free.
      Vec<D> sheerStart{}, sheerEnd{};
      if (cf == TypeLeadingSheer) {
        const Vec<D> v = leadPart<D>(work(firstPoint));
        const double length = norm<D>(v);
        if (length == 0.0)
          cf = TypeKnuckle;
        else
          sheerStart = scaled<D>(v, 1.0 / length);
      }
      if (cl == TypeTrailingSheer) {
        const Vec<D> v = trailPart<D>(work(lastPoint));
        const double length = norm<D>(v);
        if (length == 0.0)
          cl = TypeKnuckle;
        else
          sheerEnd = scaled<D>(v, 1.0 / length);
      }

      const bool startGiven = isOneOf(cf, {4, 5, 6, 7, 9});
      const bool endGiven = isOneOf(cl, {3, 5, 6, 8, 9});
      if (startGiven && isOneOf(cl, {1, 2, 4, 7}))
        type = SplineStartGiven;
      else if (isOneOf(cf, {1, 2, 3, 8}) && endGiven)
        type = SplineEndGiven;
      else if (!startGiven)
        type = cf == TypeRunOut && cl == TypeRunOut && c >= 3 ? SplineQuadratic : SplineFree;
      else if (endGiven)
        type = SplineBothGiven;
      else
        type = SplineFree;

      if (type == SplineStartGiven || type == SplineBothGiven) {
        switch (cf) {
          case TypeTrailingTangent:
          case TypeBothTangents:
            start = scaled<D>(trailPart<D>(firstData), firstLengths(2));
            break;
          case TypeEqualTangents:
            start = scaled<D>(leadPart<D>(firstData), firstLengths(2));
            break;
          case TypeLeadingSheer:
            start = sheerStart;
            break;
          case TypeGivenVectors:
            start = trailPart<D>(firstData);
            break;
          default:
            break;
        }
      }
      if (type == SplineEndGiven || type == SplineBothGiven) {
        switch (cl) {
          case TypeLeadingTangent:
          case TypeBothTangents:
          case TypeEqualTangents:
            end = scaled<D>(leadPart<D>(lastData), lastLengths(1));
            break;
          case TypeTrailingSheer:
            end = sheerEnd;
            break;
          case TypeGivenVectors:
            end = leadPart<D>(lastData);
            break;
          default:
            break;
        }
      }
    }

    solveSegment<D>(type, rows, View1<const Vec<D>>(segmentPoints.data(), rows),
                    View1<const double>(segmentKnots.data(), rows), start, end,
                    View1<Vec<D>>(solved.data(), rows), failed);
    if (failed) return;

    // First row to the trailing side of the first point, last row to the
    // leading side of the last, the rows between to both sides.
    setTrail<D>(work(index(1)), solved(1));
    setLead<D>(work(index(rows)), solved(rows));
    for (int j = 2; j <= rows - 1; ++j) {
      setLead<D>(work(index(j)), solved(j));
      setTrail<D>(work(index(j)), solved(j));
    }
  }
}

// Tangents per unit segment parameter: each side scaled with the knot of
// its own segment.
template <int D>
void scaleToSegments(int m, bool closed, View1<const double> knots, View1<Vec<2 * D>> t) {
  for (int i = 1; i <= m - 1; ++i) {
    setTrail<D>(t(i), scaled<D>(trailPart<D>(t(i)), knots(i)));
    setLead<D>(t(i + 1), scaled<D>(leadPart<D>(t(i + 1)), knots(i)));
  }
  if (closed) {
    setTrail<D>(t(m), scaled<D>(trailPart<D>(t(m)), knots(m)));
    setLead<D>(t(1), scaled<D>(leadPart<D>(t(1)), knots(m)));
  }
}

// ---- symmetry plane ----

// IQPPLN: signed distance of p from the plane through `origin` with unit
// normal N.
double IQPPLN(const Triple& p, const Triple& origin, const Triple& N) {
  double d = 0.0;
  for (int k = 1; k <= 3; ++k) d += (p(k) - origin(k)) * N(k);
  return d;
}

// REFLPN: mirror image of a point.
Triple REFLPN(const Triple& p, const Triple& origin, const Triple& N) {
  const double d = IQPPLN(p, origin, N);
  Triple r;
  for (int k = 1; k <= 3; ++k) r(k) = p(k) - 2.0 * d * N(k);
  return r;
}

// REFLVC: mirror image of a vector, reversed, as a tangent of the mirrored
// part that runs the other way: 2 N (N.v) - v.
Triple REFLVC(const Triple& v, const Triple& N) {
  double nv = 0.0;
  for (int k = 1; k <= 3; ++k) nv += N(k) * v(k);
  Triple r;
  for (int k = 1; k <= 3; ++k) r(k) = 2.0 * N(k) * nv - v(k);
  return r;
}

// Given point i, mirrored and reversed, into working slot `slot`.
void mirrorPoint(const Given<3>& g, int i, const Triple& origin, const Triple& N,
                 WorkingCurve<3>& w, int slot) {
  w.points(slot) = REFLPN(g.rec.OFFPNT(i), origin, N);
  w.weights(slot) = g.rec.KNKWGT(i);
  const int t = g.types(i);
  const Triple lead = leadPart<3>(g.tangents(i));
  const Triple trail = trailPart<3>(g.tangents(i));
  const Vec<2>& lengths = g.rec.TANLEN(i);
  int type = t;
  Sextuple tangents = g.tangents(i);
  Vec<2> newLengths = lengths;
  switch (t) {
    case TypeLeadingSheer:
      type = TypeTrailingSheer;
      break;
    case TypeTrailingSheer:
      type = TypeLeadingSheer;
      break;
    case TypeLeadingTangent:
    case TypeTrailingTangent:
    case TypeBothTangents:
    case TypeGivenVectors:
      if (t == TypeLeadingTangent) type = TypeTrailingTangent;
      if (t == TypeTrailingTangent) type = TypeLeadingTangent;
      setLead<3>(tangents, REFLVC(trail, N));
      setTrail<3>(tangents, REFLVC(lead, N));
      if (t != TypeGivenVectors) newLengths = Vec<2>{{lengths(2), lengths(1)}};
      break;
    case TypeEqualTangents:
      setLead<3>(tangents, REFLVC(lead, N));
      setTrail<3>(tangents, REFLVC(trail, N));
      newLengths = Vec<2>{{lengths(2), lengths(1)}};
      break;
    default:
      break;
  }
  w.types(slot) = type;
  w.tangents(slot) = tangents;
  w.lengths(slot) = newLengths;
}

// Given point i unchanged into working slot `slot`.
void copyPoint(const Given<3>& g, int i, WorkingCurve<3>& w, int slot) {
  w.points(slot) = g.rec.OFFPNT(i);
  w.weights(slot) = g.rec.KNKWGT(i);
  w.types(slot) = g.types(i);
  w.tangents(slot) = g.tangents(i);
  w.lengths(slot) = g.rec.TANLEN(i);
}

// HCMTN3 on a record whose types and tangents may stand elsewhere.
void solveThree(int limit, const Triple& planePoint, const Triple& planeNormal, int side,
                double tolerance, const Given<3>& g, HermiteCurve& result, bool& failed) {
  failed = false;
  result.m = 0;
  result.closed = false;
  result.firstOnPlane = false;
  result.lastOnPlane = false;
  if (side < SideNone || side > SideBoth) {
    fail("(HCMTN3) Illegal return side specifier!", failed);
    return;
  }
  const int n = g.rec.NOFFS;
  if (n < 2) return;
  if (n > MaxOffsetPoints || n > limit) {
    fail("(HCMTN3) Max number of offset points exceeded!", failed);
    return;
  }
  const bool closed = g.rec.CLOSED;
  const auto& h = g.rec.INCKNT;

  // Which ends lie on the symmetry plane.
  bool firstOn = false, lastOn = false;
  Triple N{};
  if (side != SideNone && !closed) {
    const double length = norm<3>(planeNormal);
    if (length == 0.0) {
      fail("(HCMTN3) Encountered zero length plane normal vector!", failed);
      return;
    }
    N = scaled<3>(planeNormal, 1.0 / length);
    firstOn = std::fabs(IQPPLN(g.rec.OFFPNT(1), planePoint, N)) < tolerance;
    lastOn = std::fabs(IQPPLN(g.rec.OFFPNT(n), planePoint, N)) < tolerance;
  }

  // The working curve; mirrored knots run backwards, so that a mirrored
  // segment has the increment of the segment it mirrors.
  WorkingCurve<3>& w = workingCurve<3>();
  if (!firstOn && !lastOn) {
    copyGiven<3>(g, w);
  } else if (firstOn && !lastOn) {
    w.n = 2 * n - 1;
    w.closed = false;
    for (int k = 1; k <= n - 1; ++k) {
      mirrorPoint(g, n + 1 - k, planePoint, N, w, k);
      w.knots(k) = h(n - k);
    }
    for (int k = 1; k <= n; ++k) {
      copyPoint(g, k, w, n - 1 + k);
      w.knots(n - 1 + k) = k < n ? h(k) : 0.0;
    }
  } else if (lastOn && !firstOn) {
    w.n = 2 * n - 1;
    w.closed = false;
    for (int k = 1; k <= n; ++k) {
      copyPoint(g, k, w, k);
      w.knots(k) = h(k);
    }
    for (int k = 1; k <= n - 1; ++k) {
      mirrorPoint(g, n - k, planePoint, N, w, n + k);
      w.knots(n - 1 + k) = h(n - k);
    }
    w.knots(2 * n - 1) = 0.0;
  } else {
    w.n = 2 * n - 2;
    w.closed = true;
    for (int k = 1; k <= n; ++k) {
      copyPoint(g, k, w, k);
      w.knots(k) = h(k);
    }
    for (int k = 1; k <= n - 2; ++k) {
      mirrorPoint(g, n - k, planePoint, N, w, n + k);
      w.knots(n - 1 + k) = h(n - k);
    }
    w.knots(2 * n - 2) = h(1);
  }

  solveWorking<3>(w, failed);
  if (failed) return;

  // Pick the asked side of the working curve.
  const auto& work = workTangents<3>();
  int count = 0;
  auto take = [&](int j) {
    ++count;
    result.points(count) = w.points(j);
    result.knots(count) = w.knots(j);
    result.types(count) = w.types(j);
    result.tangents(count) = work(j);
  };
  bool resultClosed = false;
  if (!firstOn && !lastOn) {
    for (int j = 1; j <= w.n; ++j) take(j);
    resultClosed = w.closed;
  } else if (side == SideBoth) {
    for (int j = 1; j <= w.n; ++j) take(j);
    resultClosed = w.closed;
  } else if (firstOn && !lastOn) {
    const int from = side == SideGiven ? n : 1;
    for (int j = from; j <= from + n - 1; ++j) take(j);
  } else if (lastOn && !firstOn) {
    const int from = side == SideGiven ? 1 : n;
    for (int j = from; j <= from + n - 1; ++j) take(j);
  } else if (side == SideGiven) {
    for (int j = 1; j <= n; ++j) take(j);
  } else {
    for (int j = n; j <= 2 * n - 2; ++j) take(j);
    take(1);
  }
  if (!resultClosed) result.knots(count) = 0.0;
  result.m = count;
  result.closed = resultClosed;
  result.firstOnPlane = firstOn;
  result.lastOnPlane = lastOn;
}

bool isBlended(int type, double weight) {
  return type == TypeKnuckle && weight != 0.0 && weight != 1.0;
}

// Types as the solver reads them: a knuckle of weight 0 is continuous.
template <int D>
bool effectiveTypes(const BasicSplineRecord<D>& rec, Array1<int, MaxOffsetPoints>& types) {
  bool blended = false;
  for (int i = 1; i <= rec.NOFFS; ++i) {
    const int t = rec.PNTTYP(i);
    const double w = rec.KNKWGT(i);
    types(i) = t == TypeKnuckle && w == 0.0 ? TypeContinuous : t;
    if (isBlended(t, w)) blended = true;
  }
  return blended;
}

template <int D>
void setBlendedTypes(const BasicSplineRecord<D>& rec, Array1<int, MaxOffsetPoints>& types,
                     int type) {
  for (int i = 1; i <= rec.NOFFS; ++i)
    if (isBlended(rec.PNTTYP(i), rec.KNKWGT(i))) types(i) = type;
}

// Blended tangent entry: (1 - w) a + w b, each side separately.
template <int D>
Vec<2 * D> blend(const Vec<2 * D>& a, const Vec<2 * D>& b, double w) {
  Vec<2 * D> r;
  for (int k = 1; k <= 2 * D; ++k) r(k) = (1.0 - w) * a(k) + w * b(k);
  return r;
}

// The two-coordinate segment solve; the result stays in the work array.
void solveTwo(int limit, const Given<2>& g, bool& failed) {
  failed = false;
  const int n = g.rec.NOFFS;
  if (n > MaxOffsetPoints || n > limit) {
    fail("(HCMTN2) Max number of offset points exceeded!", failed);
    return;
  }
  WorkingCurve<2>& w = workingCurve<2>();
  copyGiven<2>(g, w);
  solveWorking<2>(w, failed);
}

}  // namespace

void HCTAN3(int limit, const Triple& planePoint, const Triple& planeNormal, int returnSide,
            double tolerance, const SplineRecord& rec, HermiteCurve& result, bool& failed) {
  failed = false;
  result.m = 0;
  result.closed = false;
  result.firstOnPlane = false;
  result.lastOnPlane = false;
  const int n = rec.NOFFS;
  if (n < 2) return;
  if (n > MaxOffsetPoints || n > limit) {
    fail("(HCTAN3) Max number of offset points exceeded!", failed);
    return;
  }
  static Array1<int, MaxOffsetPoints> types;
  const bool blended = effectiveTypes(rec, types);
  const View1<const int> typeView(types.data(), n);
  if (!blended) {
    solveThree(limit, planePoint, planeNormal, returnSide, tolerance,
               Given<3>{rec, typeView, View1<const Sextuple>(rec.TANVEC.data(), n)}, result,
               failed);
    if (failed) return;
  } else {
    // Solve once with the blended points continuous and once as knuckles,
    // on the given side so that results stand by given point; then once
    // more with the blend of both as given vectors.
    static HermiteCurve continuous, broken;
    static Array1<Sextuple, MaxOffsetPoints> tangents;
    const int passSide = returnSide == SideNone ? SideNone : SideGiven;
    const Given<3> given{rec, typeView, View1<const Sextuple>(rec.TANVEC.data(), n)};
    setBlendedTypes(rec, types, TypeContinuous);
    solveThree(limit, planePoint, planeNormal, passSide, tolerance, given, continuous, failed);
    if (failed) return;
    setBlendedTypes(rec, types, TypeKnuckle);
    solveThree(limit, planePoint, planeNormal, passSide, tolerance, given, broken, failed);
    if (failed) return;
    setBlendedTypes(rec, types, TypeGivenVectors);
    for (int i = 1; i <= n; ++i) {
      tangents(i) = isBlended(rec.PNTTYP(i), rec.KNKWGT(i))
                        ? blend<3>(continuous.tangents(i), broken.tangents(i), rec.KNKWGT(i))
                        : rec.TANVEC(i);
    }
    solveThree(limit, planePoint, planeNormal, returnSide, tolerance,
               Given<3>{rec, typeView, View1<const Sextuple>(tangents.data(), n)}, result, failed);
    if (failed) return;
  }

  const int m = result.m;
  scaleToSegments<3>(m, result.closed, View1<const double>(result.knots.data(), m),
                     View1<Sextuple>(result.tangents.data(), m));
  if (!result.closed) {
    // The ends of an open curve have one tangent.
    setLead<3>(result.tangents(1), trailPart<3>(result.tangents(1)));
    setTrail<3>(result.tangents(m), leadPart<3>(result.tangents(m)));
  }
}

void HCMTN3(int limit, const Triple& planePoint, const Triple& planeNormal, int returnSide,
            double tolerance, const SplineRecord& rec, HermiteCurve& result, bool& failed) {
  const int n = std::min(std::max(rec.NOFFS, 0), MaxOffsetPoints);
  solveThree(limit, planePoint, planeNormal, returnSide, tolerance,
             Given<3>{rec, View1<const int>(rec.PNTTYP.data(), n),
                      View1<const Sextuple>(rec.TANVEC.data(), n)},
             result, failed);
}

void MKCCSL(int segmentLimit, int pointLimit, int n, View1<const int> types,
            View1<const double> weights, bool closed, CCSegments& table, bool& deadlock,
            bool& failed) {
  failed = false;
  deadlock = false;
  table.count = 0;
  IQDLCK(n, types, weights, closed, deadlock, failed);
  if (failed || deadlock || n < 1) return;
  if (n > MaxRows) {
    fail("(MKCCSL) Max number of segment points exceeded!", failed);
    return;
  }

  // How many segments the cuts make.
  int cuts = 0;
  int firstCut = 0;
  for (int i = 1; i <= n; ++i) {
    if (types(i) == TypeContinuous) continue;
    if (!closed && (i == 1 || i == n)) continue;
    ++cuts;
    if (firstCut == 0) firstCut = i;
  }
  const int segments = closed ? std::max(cuts, 1) : cuts + 1;
  if (segments > segmentLimit) {
    fail("(MKCCSL) Max number of CC segments exceeded!{NWL{GRE(Max is " +
             std::to_string(segmentLimit) + ")",
         failed);
    return;
  }
  if (segments > MaxInternalCCSegments) {
    fail("(MKCCSL) Max internal allowed number of CC segments exceeded!", failed);
    return;
  }

  // Walk the points from the start, cutting behind every point that is not
  // continuous; a closed curve starts and ends at its first cut.
  int position = 0;
  int k = 0;
  auto startSegment = [&](int point) {
    ++k;
    table.first(k) = position + 1;
    table.points(k) = 1;
    table.list(++position) = point;
  };
  auto addPoint = [&](int point) {
    if (table.points(k) + 1 > std::min(pointLimit, MaxRows + 1)) {
      fail("(MKCCSL) Max number of segment points exceeded!", failed);
      return false;
    }
    ++table.points(k);
    table.list(++position) = point;
    return true;
  };
  if (!closed || cuts == 0) {
    startSegment(1);
    for (int i = 2; i <= n; ++i) {
      if (!addPoint(i)) return;
      if (types(i) != TypeContinuous && i != n) startSegment(i);
    }
  } else {
    startSegment(firstCut);
    for (int step = 1; step <= n; ++step) {
      const int i = (firstCut - 1 + step) % n + 1;
      if (!addPoint(i)) return;
      if (types(i) != TypeContinuous && step < n) startSegment(i);
    }
  }
  table.count = k;

  if (k == 1) {
    table.order(1) = 1;
    return;
  }

  // Dependencies: a leading sheer at the start waits for the segment
  // before, a trailing sheer at the end for the segment after.
  static Array1<int, MaxInternalCCSegments> dependencies, firstDependency, sorted;
  static Array1<bool, MaxInternalCCSegments> placed;
  for (int s = 1; s <= k; ++s) {
    dependencies(s) = 0;
    firstDependency(s) = 0;
    placed(s) = false;
    const int startPoint = table.point(s, 1);
    const int endPoint = table.point(s, table.points(s));
    int previous = s > 1 ? s - 1 : (closed ? k : 0);
    int next = s < k ? s + 1 : (closed ? 1 : 0);
    if (types(startPoint) == TypeLeadingSheer && previous != 0) {
      ++dependencies(s);
      firstDependency(s) = previous;
    }
    if (types(endPoint) == TypeTrailingSheer && next != 0) {
      ++dependencies(s);
      if (firstDependency(s) == 0) firstDependency(s) = next;
    }
  }
  bool sortFailed = false;
  IXSRTI(k, View1<const int>(dependencies.data(), k), View1<int>(sorted.data(), k), sortFailed);

  // Place the first segment in sorted order that is free or whose first
  // dependency is placed, and scan again.
  for (int placedCount = 1; placedCount <= k; ++placedCount) {
    int chosen = 0;
    for (int s = 1; s <= k && chosen == 0; ++s) {
      const int candidate = sorted(s);
      if (placed(candidate)) continue;
      if (dependencies(candidate) == 0 || placed(firstDependency(candidate))) chosen = candidate;
    }
    if (chosen == 0) {
      // Segments waiting on each other round the loop.
      deadlock = true;
      table.count = 0;
      return;
    }
    placed(chosen) = true;
    table.order(placedCount) = chosen;
  }
}

void IQDLCK(int n, View1<const int> types, View1<const double> weights, bool closed, bool& deadlock,
            bool& failed) {
  failed = false;
  deadlock = false;
  if (!closed) return;
  auto effective = [&](int i) {
    return types(i) == TypeKnuckle && weights(i) != 1.0 ? TypeContinuous : types(i);
  };
  int sheer = 0;
  for (int i = 1; i <= n && sheer == 0; ++i)
    if (effective(i) == TypeLeadingSheer || effective(i) == TypeTrailingSheer) sheer = i;
  if (sheer == 0) return;
  const int other = effective(sheer) == TypeLeadingSheer ? TypeTrailingSheer : TypeLeadingSheer;
  for (int i = 1; i <= n; ++i) {
    if (i == sheer) continue;
    const int t = effective(i);
    if (t == TypeKnuckle || t == TypeLeadingTangent || t == TypeTrailingTangent ||
        t == TypeBothTangents || t == TypeEqualTangents || t == other)
      return;
  }
  deadlock = true;
}

void HCLEQ3(int splineType, int count, View1<const Triple> points, View1<const double> knots,
            const Triple& startTangent, const Triple& endTangent, View1<Triple> result,
            bool& failed) {
  solveSegment<3>(splineType, count, points, knots, startTangent, endTangent, result, failed);
}

void MKSM13(int rowLimit, int n, View1<const Triple> points, View1<const double> knots,
            Bands& bands, RightSides& rhs, bool& failed) {
  buildFree<3>(rowLimit, n, points, knots, bands, rhs, failed);
}

void MKSM23(int rowLimit, int n, View1<const Triple> points, View1<const double> knots,
            Bands& bands, Corner& corner, RightSides& rhs, bool& failed) {
  buildPeriodic<3>(rowLimit, n, points, knots, bands, corner, rhs, failed);
}

void MKSM33(int rowLimit, int splineType, int n, View1<const Triple> points,
            View1<const double> knots, const Triple& startTangent, const Triple& endTangent,
            Bands& bands, RightSides& rhs, bool& failed) {
  buildGiven<3>(rowLimit, splineType, n, points, knots, startTangent, endTangent, bands, rhs,
                failed);
}

void MKSM43(int rowLimit, int n, View1<const Triple> points, View1<const double> knots,
            Bands& bands, RightSides& rhs, bool& failed) {
  buildQuadratic<3>(rowLimit, n, points, knots, bands, rhs, failed);
}

// Whether a system of `rows` equations with `columns` right-hand sides fits
// both the caller's arrays and the solver's own; tells the user when not.
static bool withinSolverLimits(const char* routine, int rowLimit, int columnLimit, int rows,
                               int columns, bool& failed) {
  const std::string who = std::string("(") + routine + ") ";
  if (rows > std::min(rowLimit, MaxRows)) {
    fail(who + "Max number of equations exceeded!", failed);
    return false;
  }
  if (columns > std::min(columnLimit, MaxColumns)) {
    fail(who + "Max number of right hand sides exceeded!", failed);
    return false;
  }
  return true;
}

void TRIDG1(int rowLimit, int columnLimit, int rows, int columns, Bands& bands, RightSides& rhs,
            RightSides& solution, bool& singular, bool& failed) {
  failed = false;
  singular = false;
  if (!withinSolverLimits("TRIDG1", rowLimit, columnLimit, rows, columns, failed)) return;
  const int n = rows;
  if (n < 1) return;
  auto& a = bands.a;
  auto& b = bands.b;
  auto& c = bands.c;
  for (int i = 1; i <= n - 1; ++i) {
    if (b(i) == 0.0) {
      singular = true;
      return;
    }
    const double f = a(i + 1) / b(i);
    b(i + 1) -= f * c(i);
    for (int k = 1; k <= columns; ++k) rhs(i + 1, k) -= f * rhs(i, k);
  }
  if (b(n) == 0.0) {
    singular = true;
    return;
  }
  for (int k = 1; k <= columns; ++k) solution(n, k) = rhs(n, k) / b(n);
  for (int i = n - 1; i >= 1; --i)
    for (int k = 1; k <= columns; ++k)
      solution(i, k) = (rhs(i, k) - c(i) * solution(i + 1, k)) / b(i);
}

void TRIDG3(int rowLimit, int columnLimit, int rows, int columns, Bands& bands,
            const Corner& corner, Array1<double, MaxRows>& workA, Array1<double, MaxRows>& workB,
            RightSides& rhs, RightSides& solution, bool& singular, bool& failed) {
  failed = false;
  singular = false;
  if (!withinSolverLimits("TRIDG3", rowLimit, columnLimit, rows, columns, failed)) return;
  const int n = rows;
  if (n < 1) return;
  auto& a = bands.a;
  auto& b = bands.b;
  auto& c = bands.c;
  auto& A = workA;
  auto& B = workB;
  A(1) = corner(1);
  B(1) = corner(2);
  double w = corner(3);
  // On small systems the corner columns fall onto the bands.
  if (n == 1) {
    b(1) += A(1) + B(1) + w;
    A(1) = B(1) = w = 0.0;
  } else if (n == 2) {
    b(1) += A(1);
    c(1) += B(1);
    a(2) += w;
    A(1) = B(1) = w = 0.0;
  } else if (n == 3) {
    c(1) += A(1);
    A(1) = 0.0;
  }

  for (int i = 1; i <= n - 1; ++i) {
    if (b(i) == 0.0) {
      singular = true;
      return;
    }
    const double f = a(i + 1) / b(i);
    b(i + 1) -= f * c(i);
    for (int k = 1; k <= columns; ++k) rhs(i + 1, k) -= f * rhs(i, k);
    if (n <= 2) continue;
    // Fill-in of the corner columns in row i+1.
    if (i < n - 3) {
      A(i + 1) = -f * A(i);
      B(i + 1) = -f * B(i);
    } else if (i == n - 3) {
      c(i + 1) -= f * A(i);
      B(i + 1) = -f * B(i);
    } else if (i == n - 2) {
      c(i + 1) -= f * B(i);
    }
    // The last row's leftmost entry moves one column on.
    if (i <= n - 2) {
      const double g = w / b(i);
      if (i < n - 2) {
        w = -g * c(i);
        a(n) -= g * A(i);
      } else {
        a(n) -= g * c(i);
      }
      b(n) -= g * B(i);
      for (int k = 1; k <= columns; ++k) rhs(n, k) -= g * rhs(i, k);
    }
  }
  if (b(n) == 0.0) {
    singular = true;
    return;
  }
  for (int k = 1; k <= columns; ++k) {
    solution(n, k) = rhs(n, k) / b(n);
    if (n >= 2) solution(n - 1, k) = (rhs(n - 1, k) - c(n - 1) * solution(n, k)) / b(n - 1);
    if (n >= 3)
      solution(n - 2, k) =
          (rhs(n - 2, k) - c(n - 2) * solution(n - 1, k) - B(n - 2) * solution(n, k)) / b(n - 2);
    for (int i = n - 3; i >= 1; --i)
      solution(i, k) = (rhs(i, k) - c(i) * solution(i + 1, k) - A(i) * solution(n - 1, k) -
                        B(i) * solution(n, k)) /
                       b(i);
  }
}

void HCTAN2(int limit, const SplineRecord2& rec, View1<Vec<4>> tangents, bool& failed) {
  failed = false;
  const int n = rec.NOFFS;
  if (n < 2) return;
  if (n > MaxOffsetPoints || n > limit) {
    fail("(HCTAN2) Max number of offset points exceeded!", failed);
    return;
  }
  static Array1<int, MaxOffsetPoints> types;
  static Array1<Vec<4>, MaxOffsetPoints> continuous, broken, given, result;
  const bool blended = effectiveTypes(rec, types);
  const View1<const int> typeView(types.data(), n);
  const auto& work = workTangents<2>();
  if (!blended) {
    solveTwo(limit, Given<2>{rec, typeView, View1<const Vec<4>>(rec.TANVEC.data(), n)}, failed);
    if (failed) return;
  } else {
    const Given<2> plain{rec, typeView, View1<const Vec<4>>(rec.TANVEC.data(), n)};
    setBlendedTypes(rec, types, TypeContinuous);
    solveTwo(limit, plain, failed);
    if (failed) return;
    for (int i = 1; i <= n; ++i) continuous(i) = work(i);
    setBlendedTypes(rec, types, TypeKnuckle);
    solveTwo(limit, plain, failed);
    if (failed) return;
    for (int i = 1; i <= n; ++i) broken(i) = work(i);
    setBlendedTypes(rec, types, TypeGivenVectors);
    for (int i = 1; i <= n; ++i)
      given(i) = isBlended(rec.PNTTYP(i), rec.KNKWGT(i))
                     ? blend<2>(continuous(i), broken(i), rec.KNKWGT(i))
                     : rec.TANVEC(i);
    solveTwo(limit, Given<2>{rec, typeView, View1<const Vec<4>>(given.data(), n)}, failed);
    if (failed) return;
  }
  for (int i = 1; i <= n; ++i) result(i) = work(i);
  scaleToSegments<2>(n, rec.CLOSED, View1<const double>(rec.INCKNT.data(), n),
                     View1<Vec<4>>(result.data(), n));
  for (int i = 1; i <= n; ++i) {
    if (rec.CLOSED || i > 1) setLead<2>(tangents(i), leadPart<2>(result(i)));
    if (rec.CLOSED || i < n) setTrail<2>(tangents(i), trailPart<2>(result(i)));
  }
}

void HCMTN2(int limit, const SplineRecord2& rec, View1<Vec<4>> tangents, bool& failed) {
  failed = false;
  const int n = std::min(std::max(rec.NOFFS, 0), MaxOffsetPoints);
  if (rec.NOFFS < 2) return;
  solveTwo(limit,
           Given<2>{rec, View1<const int>(rec.PNTTYP.data(), n),
                    View1<const Vec<4>>(rec.TANVEC.data(), n)},
           failed);
  if (failed) return;
  const auto& work = workTangents<2>();
  for (int i = 1; i <= n; ++i) tangents(i) = work(i);
}

void HCLEQ2(int splineType, int count, View1<const Vec<2>> points, View1<const double> knots,
            const Vec<2>& startTangent, const Vec<2>& endTangent, View1<Vec<2>> result,
            bool& failed) {
  solveSegment<2>(splineType, count, points, knots, startTangent, endTangent, result, failed);
}

void MKSM12(int rowLimit, int n, View1<const Vec<2>> points, View1<const double> knots,
            Bands& bands, RightSides& rhs, bool& failed) {
  buildFree<2>(rowLimit, n, points, knots, bands, rhs, failed);
}

void MKSM22(int rowLimit, int n, View1<const Vec<2>> points, View1<const double> knots,
            Bands& bands, Corner& corner, RightSides& rhs, bool& failed) {
  buildPeriodic<2>(rowLimit, n, points, knots, bands, corner, rhs, failed);
}

void MKSM32(int rowLimit, int splineType, int n, View1<const Vec<2>> points,
            View1<const double> knots, const Vec<2>& startTangent, const Vec<2>& endTangent,
            Bands& bands, RightSides& rhs, bool& failed) {
  buildGiven<2>(rowLimit, splineType, n, points, knots, startTangent, endTangent, bands, rhs,
                failed);
}

void MKSM42(int rowLimit, int n, View1<const Vec<2>> points, View1<const double> knots,
            Bands& bands, RightSides& rhs, bool& failed) {
  buildQuadratic<2>(rowLimit, n, points, knots, bands, rhs, failed);
}

}  // namespace kntr::spline
