// The spline record: a run of offset points with their types, the knots
// between them and the tangent data that the types call for.
//
// Fields are parallel arrays indexed from 1 by offset point, in the order in
// which every engine routine reads them: NOFFS, OFFPNT, INCKNT, PNTTYP,
// KNKWGT, TANVEC, TANLEN, CLOSED. The record holds MaxOffsetPoints points;
// a count above that is refused by the routines that read it.
//
// Point types as the tangent solver reads them:
//   1 knuckle, weighted by KNKWGT (0 acts as 2, 1 is a plain break)
//   2 continuous curvature, the only type that does not end a CC segment
//   3 leading tangent, 4 trailing tangent, 5 both tangents,
//   6 equal tangents (the leading direction on both sides)
//   7 leading sheer, 8 trailing sheer
//   9 both tangents given as full vectors, used untouched (internal)
//   10 run-out point: a CC segment between two of them gets quadratic ends
// A leading tangent belongs to the segment that arrives at the point, a
// trailing tangent to the segment that leaves it.
#pragma once

#include "framework/onebased.h"
#include "spline/limits.h"

namespace kntr::spline {

// A point or vector of D coordinates.
template <int D>
using Vec = Array1<double, D>;

using Triple = Vec<3>;
using Sextuple = Vec<6>;  // leading x, y, z, then trailing x, y, z

// Point type codes.
inline constexpr int TypeKnuckle = 1;
inline constexpr int TypeContinuous = 2;
inline constexpr int TypeLeadingTangent = 3;
inline constexpr int TypeTrailingTangent = 4;
inline constexpr int TypeBothTangents = 5;
inline constexpr int TypeEqualTangents = 6;
inline constexpr int TypeLeadingSheer = 7;
inline constexpr int TypeTrailingSheer = 8;
inline constexpr int TypeGivenVectors = 9;
inline constexpr int TypeRunOut = 10;

// Parameterization codes of MKIKV3.
inline constexpr int ParamUniform = 1;
inline constexpr int ParamChordLength = 2;
inline constexpr int ParamCurveLength = 3;
inline constexpr int ParamCentripetal = 4;
inline constexpr int ParamFoley = 5;

// A record in D coordinates. A tangent entry holds the leading vector in
// its first D numbers and the trailing vector in the last D.
template <int D>
struct BasicSplineRecord {
  int NOFFS = 0;                                 // number n of offset points
  Array1<Vec<D>, MaxOffsetPoints> OFFPNT{};      // offset points
  Array1<double, MaxOffsetPoints> INCKNT{};      // INCKNT(i): parameter length of segment i
  Array1<int, MaxOffsetPoints> PNTTYP{};         // point type
  Array1<double, MaxOffsetPoints> KNKWGT{};      // knuckle weight (type 1)
  Array1<Vec<2 * D>, MaxOffsetPoints> TANVEC{};  // leading, then trailing tangent
  Array1<Vec<2>, MaxOffsetPoints> TANLEN{};      // leading and trailing tangent length
  bool CLOSED = false;                           // the curve is closed
};

// The record of the three-coordinate routines (names ending in 3).
using SplineRecord = BasicSplineRecord<3>;
// The record of the two-coordinate family (names ending in 2).
using SplineRecord2 = BasicSplineRecord<2>;

// Hermite data of a solved curve, as the tangent solver returns it: per
// point a leading and a trailing tangent. HCTAN3 gives tangents per unit of
// segment parameter; HCMTN3 gives derivatives by the knot parameter, with
// the knots of the (possibly mirrored) curve.
struct HermiteCurve {
  int m = 0;                             // number of points
  Array1<Triple, MaxRows> points{};      // points of the solved curve
  Array1<double, MaxRows> knots{};       // incremental knots (the last only if closed)
  Array1<int, MaxRows> types{};          // point types as solved
  Array1<Sextuple, MaxRows> tangents{};  // leading x, y, z, trailing x, y, z
  bool closed = false;                   // the solved curve is closed
  bool firstOnPlane = false;             // the first given point lies on the symmetry plane
  bool lastOnPlane = false;              // the last given point lies on the symmetry plane
};

// The leading and the trailing part of a tangent entry.
inline Triple leading(const Sextuple& t) {
  return Triple{{t(1), t(2), t(3)}};
}
inline Triple trailing(const Sextuple& t) {
  return Triple{{t(4), t(5), t(6)}};
}

}  // namespace kntr::spline
