#include "spline/evaluate.h"

#include <algorithm>
#include <cmath>
#include <string>

#include "framework/text.h"
#include "spline/limits.h"
#include "spline/tangents.h"

namespace kntr::spline {

using framework::fail;

namespace {

double distance(const Triple& a, const Triple& b) {
  const double dx = b(1) - a(1), dy = b(2) - a(2), dz = b(3) - a(3);
  return std::sqrt(dx * dx + dy * dy + dz * dz);
}

bool hasLength(const Triple& v) {
  return v(1) != 0.0 || v(2) != 0.0 || v(3) != 0.0;
}

// The Bezier polygon of segment i of a solved curve: from point i to the
// next one (point 1 after the last on a closed curve).
void segmentPolygon(const HermiteCurve& curve, int i, double tolerance, Bezier& polygon, bool& flat,
                    bool& failed) {
  const int next = i < curve.m ? i + 1 : 1;
  HCBEZ3(curve.points(i), curve.points(next), trailing(curve.tangents(i)),
         leading(curve.tangents(next)), tolerance, polygon, flat, failed);
}

}  // namespace

void HCBEZ3(const Triple& p0, const Triple& p1, const Triple& t0, const Triple& t1,
            double tolerance, Bezier& polygon, bool& flat, bool& failed) {
  failed = false;
  for (int k = 1; k <= 3; ++k) {
    polygon(1)(k) = p0(k);
    polygon(2)(k) = p0(k) + t0(k) / 3.0;
    polygon(3)(k) = p1(k) - t1(k) / 3.0;
    polygon(4)(k) = p1(k);
  }
  double chord = 0.0, length = 0.0;
  IQBZLN(polygon, chord, length, failed);
  flat = std::fabs(length - chord) < tolerance;
}

void HCSPL3(const Bezier& polygon, double t, Bezier& left, Bezier& right, bool& failed) {
  failed = false;
  const double u = 1.0 - t;
  const Bezier b = polygon;  // the halves may overwrite the given polygon
  for (int k = 1; k <= 3; ++k) {
    const double q1 = u * b(1)(k) + t * b(2)(k);
    const double q2 = u * b(2)(k) + t * b(3)(k);
    const double q3 = u * b(3)(k) + t * b(4)(k);
    const double r1 = u * q1 + t * q2;
    const double r2 = u * q2 + t * q3;
    const double s = u * r1 + t * r2;
    left(1)(k) = b(1)(k);
    left(2)(k) = q1;
    left(3)(k) = r1;
    left(4)(k) = s;
    right(1)(k) = s;
    right(2)(k) = r2;
    right(3)(k) = q3;
    right(4)(k) = b(4)(k);
  }
}

void IQBZLN(const Bezier& polygon, double& chord, double& length, bool& failed) {
  failed = false;
  chord = distance(polygon(1), polygon(4));
  length = distance(polygon(1), polygon(2)) + distance(polygon(2), polygon(3)) +
           distance(polygon(3), polygon(4));
}

void SBDVP3(double tolerance, int limit, const Bezier& polygon, int& count, View1<Triple> points,
            bool& failed) {
  failed = false;
  count = 0;
  limit = std::min(limit, points.size());
  double chord = 0.0, length = 0.0;
  IQBZLN(polygon, chord, length, failed);
  auto emit = [&](const Bezier& piece) {
    const int from = count == 0 ? 1 : 2;
    if (count + (4 - from + 1) > limit) {
      fail("(SBDVP3) Max number of allocated polygon points exceeded!", failed);
      return false;
    }
    for (int k = from; k <= 4; ++k) points(++count) = piece(k);
    return true;
  };
  if (chord == length) {
    emit(polygon);
    return;
  }

  static Array1<Bezier, MaxStackDepth> stack;
  Bezier work = polygon;
  Bezier left, right;
  int depth = 0;
  for (;;) {
    // Halve the left end until it is flat enough, keeping the right halves.
    while (length - chord >= tolerance) {
      ++depth;
      if (depth > MaxStackDepth) {
        fail("(SBDVP3) Internal subdivision stack overflowed!", failed);
        return;
      }
      HCSPL3(work, 0.5, left, right, failed);
      stack(depth) = right;
      work = left;
      IQBZLN(work, chord, length, failed);
    }
    if (!emit(work)) return;
    if (depth == 0) return;
    if (depth < 0) {
      fail("(SBDVP3) Internal subdivision stack underflowed!", failed);
      return;
    }
    work = stack(depth);
    --depth;
    IQBZLN(work, chord, length, failed);
  }
}

void HCPIP3(int limit, int pointsPerSegment, const Triple& planePoint, const Triple& planeNormal,
            int returnSide, double tolerance, const SplineRecord& rec, int& count,
            View1<Triple> points, View1<int> pointIndex, bool& failed) {
  failed = false;
  count = 0;
  if (pointsPerSegment > MaxPointsPerSegment) {
    fail("(HCPIP3) Max number of subdivisions exceeded!", failed);
    return;
  }
  const int n = rec.NOFFS;
  if (n == 1) {
    count = 1;
    points(1) = rec.OFFPNT(1);
    return;
  }
  if (n < 1) return;
  if (returnSide < SideNone || returnSide > SideBoth) {
    fail("(HCPIP3) Illegal return side specifier!", failed);
    return;
  }
  if (returnSide != SideNone && !hasLength(planeNormal)) {
    fail("(HCPIP3) Encountered zero length plane normal vector!", failed);
    return;
  }
  static HermiteCurve curve;
  HCTAN3(MaxOffsetPoints, planePoint, planeNormal, returnSide, tolerance, rec, curve, failed);
  if (failed) return;
  const int m = curve.m;

  static Array1<double, MaxPointsPerSegment> t;
  for (int j = 1; j <= pointsPerSegment; ++j)
    t(j) = static_cast<double>(j - 1) / static_cast<double>(pointsPerSegment - 1);

  limit = std::min(limit, points.size());
  Bezier polygon, left, right;
  bool flat = false;
  // Points of segment i at the parameters from..to.
  auto sample = [&](int i, int from, int to) {
    segmentPolygon(curve, i, tolerance, polygon, flat, failed);
    if (failed) return false;
    for (int j = from; j <= to; ++j) {
      HCSPL3(polygon, t(j), left, right, failed);
      if (count >= limit) {
        fail("(HCPIP3) Max allowed number of interpolation points exceeded!", failed);
        return false;
      }
      points(++count) = left(4);
    }
    return true;
  };
  for (int i = 1; i <= m - 1; ++i)
    if (!sample(i, i == 1 ? 1 : 2, pointsPerSegment)) return;
  // The closing segment stops short of the first point.
  if (curve.closed && !sample(m, 2, pointsPerSegment - 1)) return;

  const bool firstOnly = curve.firstOnPlane && !curve.lastOnPlane;
  const int step = pointsPerSegment - 1;
  for (int i = 1; i <= std::min(n, pointIndex.size()); ++i)
    pointIndex(i) =
        returnSide == SideBoth && firstOnly ? step * (i + n - 2) + 1 : (i - 1) * step + 1;
}

void HCAIP3(int limit, double accuracy, const Triple& planePoint, const Triple& planeNormal,
            int returnSide, double tolerance, const SplineRecord& rec, int& count,
            View1<Triple> points, View1<int> pointIndex, View1<bool> onCurve, bool& failed) {
  failed = false;
  count = 0;
  const int n = rec.NOFFS;
  if (n == 1) {
    count = 1;
    points(1) = rec.OFFPNT(1);
    pointIndex(1) = 1;
    onCurve(1) = true;
    return;
  }
  if (n < 1) return;
  if (returnSide < SideNone || returnSide > SideBoth) {
    fail("(HCAIP3) Illegal return side specifier!", failed);
    return;
  }
  if (returnSide != SideNone && !hasLength(planeNormal)) {
    fail("(HCAIP3) Encountered zero length plane normal vector!", failed);
    return;
  }
  static HermiteCurve curve;
  HCTAN3(MaxOffsetPoints, planePoint, planeNormal, returnSide, tolerance, rec, curve, failed);
  if (failed) return;
  const int m = curve.m;
  limit = std::min({limit, points.size(), onCurve.size()});

  static Array1<Triple, MaxBezierPoints> chain;
  Bezier polygon;
  bool flat = false;
  // Append the polyline of segment i from its point `from` to the one
  // `dropLast` before its end.
  auto append = [&](int i, int from, int dropLast, const char* limitMessage) {
    segmentPolygon(curve, i, accuracy, polygon, flat, failed);
    if (failed) return false;
    int chainCount = 0;
    if (flat) {
      chain(1) = polygon(1);
      chain(2) = polygon(4);
      chainCount = 2;
    } else {
      SBDVP3(accuracy, MaxBezierPoints, polygon, chainCount, View1<Triple>(chain), failed);
      if (failed) return false;
    }
    for (int k = from; k <= chainCount - dropLast; ++k) {
      if (count >= limit) {
        fail(limitMessage, failed);
        return false;
      }
      points(++count) = chain(k);
      onCurve(count) = flat || (k - 1) % 3 == 0;
    }
    return true;
  };

  // When both halves of a curve with only its first point on the plane are
  // returned, the given points start after the mirrored half.
  const bool firstOnly = curve.firstOnPlane && !curve.lastOnPlane;
  const bool mirroredFirst = firstOnly && returnSide == SideBoth;
  const int indexed = std::min(n, pointIndex.size());
  if (indexed >= 1) pointIndex(1) = 1;
  for (int i = 1; i <= m - 1; ++i) {
    if (!append(i, i == 1 ? 1 : 2, 0,
                "(HCAIP3) Max allowed number of interpolation points exceeded!"))
      return;
    const int point = mirroredFirst ? i - n + 2 : i + 1;
    if (point >= 1 && point <= indexed) pointIndex(point) = count;
  }
  if (curve.closed &&
      !append(m, 2, 1, "(HCPIP3) Max allowed number of interpolation points exceeded!"))
    return;
}

}  // namespace kntr::spline
