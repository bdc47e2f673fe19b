// Test support for the spline engine: records built from point lists,
// Hermite segments evaluated by their own basis, and a dense linear solve,
// so that tests can compare the engine with mathematics of their own.
#pragma once

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "spline/record.h"
#include "support/console_fixture.h"

namespace kntr::testing {

using spline::HermiteCurve;
using spline::SplineRecord;
using spline::Triple;

// Whether the console showed a text (the memory console writes it with
// its tokens resolved).
inline bool shown(const std::string& output, const std::string& text) {
  return output.find(text) != std::string::npos;
}

// Engine tests run against the memory console, in batch mode so that a
// message does not wait for RETURN.
class SplineTest : public ConsoleTest {
 protected:
  void SetUp() override {
    ConsoleTest::SetUp();
    framework::program().executionMode = framework::ModeBatch;
  }
  // The call just made failed and showed `message`.
  void expectFailure(bool failed, const std::string& message) {
    EXPECT_TRUE(failed) << message;
    EXPECT_TRUE(shown(output(), message)) << message;
  }
};

inline Triple P(double x, double y, double z = 0.0) {
  return Triple{{x, y, z}};
}

inline double dist(const Triple& a, const Triple& b) {
  return std::sqrt((a(1) - b(1)) * (a(1) - b(1)) + (a(2) - b(2)) * (a(2) - b(2)) +
                   (a(3) - b(3)) * (a(3) - b(3)));
}

inline double dot(const Triple& a, const Triple& b) {
  return a(1) * b(1) + a(2) * b(2) + a(3) * b(3);
}

inline double norm(const Triple& a) {
  return std::sqrt(dot(a, a));
}

// Chord-length knots computed here, for records whose knots a test needs
// to know independently.
inline void chordKnots(SplineRecord& rec) {
  const int n = rec.NOFFS;
  for (int i = 1; i < n; ++i) rec.INCKNT(i) = dist(rec.OFFPNT(i), rec.OFFPNT(i + 1));
  rec.INCKNT(n) = rec.CLOSED ? dist(rec.OFFPNT(n), rec.OFFPNT(1)) : 0.0;
}

// A record of the given points, all of type `type` (weight 0), with
// chord-length knots.
inline std::unique_ptr<SplineRecord> makeRecord(const std::vector<Triple>& points,
                                                bool closed = false,
                                                int type = spline::TypeContinuous) {
  auto rec = std::make_unique<SplineRecord>();
  rec->NOFFS = static_cast<int>(points.size());
  rec->CLOSED = closed;
  for (int i = 1; i <= rec->NOFFS; ++i) {
    rec->OFFPNT(i) = points[static_cast<std::size_t>(i - 1)];
    rec->PNTTYP(i) = type;
    rec->KNKWGT(i) = 0.0;
    rec->TANLEN(i) = spline::Vec<2>{{1.0, 1.0}};
  }
  chordKnots(*rec);
  return rec;
}

// Set the leading (side 1) or trailing (side 2) tangent direction of point i.
inline void setTangent(SplineRecord& rec, int i, int side, const Triple& v, double length) {
  for (int k = 1; k <= 3; ++k) rec.TANVEC(i)(3 * (side - 1) + k) = v(k);
  rec.TANLEN(i)(side) = length;
}

// Point of the cubic Hermite segment p0, p1, t0, t1 at t in [0, 1].
inline Triple hermitePoint(const Triple& p0, const Triple& p1, const Triple& t0, const Triple& t1,
                           double t) {
  const double h00 = 2 * t * t * t - 3 * t * t + 1, h10 = t * t * t - 2 * t * t + t;
  const double h01 = -2 * t * t * t + 3 * t * t, h11 = t * t * t - t * t;
  Triple r;
  for (int k = 1; k <= 3; ++k) r(k) = h00 * p0(k) + h10 * t0(k) + h01 * p1(k) + h11 * t1(k);
  return r;
}

// Second derivative of the same segment at t.
inline Triple hermiteSecond(const Triple& p0, const Triple& p1, const Triple& t0, const Triple& t1,
                            double t) {
  Triple r;
  for (int k = 1; k <= 3; ++k)
    r(k) = (12 * t - 6) * p0(k) + (6 * t - 4) * t0(k) + (6 - 12 * t) * p1(k) + (6 * t - 2) * t1(k);
  return r;
}

// Point of segment i (to point i+1, or to point 1 after the last) of a
// solved curve.
inline Triple segmentPoint(const HermiteCurve& c, int i, double t) {
  const int next = i < c.m ? i + 1 : 1;
  return hermitePoint(c.points(i), c.points(next), spline::trailing(c.tangents(i)),
                      spline::leading(c.tangents(next)), t);
}

// Solve A x = b by Gaussian elimination with partial pivoting.
inline std::vector<double> denseSolve(std::vector<std::vector<double>> a, std::vector<double> b) {
  const std::size_t n = b.size();
  for (std::size_t col = 0; col < n; ++col) {
    std::size_t pivot = col;
    for (std::size_t r = col + 1; r < n; ++r)
      if (std::fabs(a[r][col]) > std::fabs(a[pivot][col])) pivot = r;
    std::swap(a[col], a[pivot]);
    std::swap(b[col], b[pivot]);
    for (std::size_t r = col + 1; r < n; ++r) {
      const double f = a[r][col] / a[col][col];
      for (std::size_t c = col; c < n; ++c) a[r][c] -= f * a[col][c];
      b[r] -= f * b[col];
    }
  }
  std::vector<double> x(n);
  for (std::size_t i = n; i-- > 0;) {
    double s = b[i];
    for (std::size_t c = i + 1; c < n; ++c) s -= a[i][c] * x[c];
    x[i] = s / a[i][i];
  }
  return x;
}

}  // namespace kntr::testing
