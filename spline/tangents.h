// Tangent solving: from a spline record to Hermite data.
//
// The curve is cut at every point that is not of type 2 into CC segments,
// runs of points with continuous curvature. Each CC segment is one
// tridiagonal system in the tangents, with end rows chosen by the types at
// its ends (the spline type, 1 to 6). Sheer points make segments wait for
// their neighbours, so segments are solved in a computed order. A weighted
// knuckle blends two complete solutions. A curve may be solved as one half
// of a curve that is symmetric about a plane.
//
//   HCTAN3  solve the tangents of a record per unit segment parameter
//   HCMTN3  mirror, cut into CC segments and solve them (knot derivatives)
//   MKCCSL  make the CC segments of a curve and their solving order
//   IQDLCK  does a closed curve lock (sheers of one kind only)
//   HCLEQ3  solve the tangents of one CC segment
//   MKSM13  build the system of a free-ended segment (spline type 1)
//   MKSM23  build the system of a periodic segment (spline type 2)
//   MKSM33  build the system with prescribed end tangents (types 3, 4, 5)
//   MKSM43  build the system with quadratic ends (spline type 6)
//   TRIDG1  solve a tridiagonal system for several right sides
//   TRIDG3  solve a tridiagonal system with periodic corner entries
//   HCTAN2  two coordinates: solve the tangents of a record
//   HCMTN2  two coordinates: cut into CC segments and solve them
//   HCLEQ2  two coordinates: solve one CC segment
//   MKSM12  two coordinates: free-ended system
//   MKSM22  two coordinates: periodic system
//   MKSM32  two coordinates: system with prescribed end tangents
//   MKSM42  two coordinates: system with quadratic ends
//
// Return sides of the symmetric solve: 0 no symmetry, 1 the given side,
// 2 the mirrored side, 3 both sides.
//
// The solver keeps one tangent work array per family that is not cleared
// between calls: a segment that is solved before a neighbour it depends on
// reads what an earlier solve left there.
#pragma once

#include "framework/onebased.h"
#include "spline/limits.h"
#include "spline/record.h"

namespace kntr::spline {

// Spline types: the end conditions of one CC segment.
inline constexpr int SplineFree = 1;        // zero second derivative at both ends
inline constexpr int SplinePeriodic = 2;    // closed, one row more for the repeated point
inline constexpr int SplineStartGiven = 3;  // start tangent prescribed, end free
inline constexpr int SplineEndGiven = 4;    // start free, end tangent prescribed
inline constexpr int SplineBothGiven = 5;   // both end tangents prescribed
inline constexpr int SplineQuadratic = 6;   // parabolic first and last piece

// Return sides.
inline constexpr int SideNone = 0;
inline constexpr int SideGiven = 1;
inline constexpr int SideMirrored = 2;
inline constexpr int SideBoth = 3;

// The three bands of a tridiagonal system: row i reads
// a(i) x(i-1) + b(i) x(i) + c(i) x(i+1) = r(i).
struct Bands {
  Array1<double, MaxRows> a{};
  Array1<double, MaxRows> b{};
  Array1<double, MaxRows> c{};
};

// Right sides (and solutions), one column per coordinate.
using RightSides = Array2<double, MaxRows, MaxColumns>;

// Corner entries of a periodic system: row 1 column n-1, row 1 column n,
// row n column 1.
using Corner = Array1<double, 3>;

// The CC segments of a curve. The point lists of all segments stand one
// after the other in `list`; a closed curve may repeat a point at both ends
// of a segment.
struct CCSegments {
  int count = 0;                                            // number of segments
  Array1<int, MaxInternalCCSegments> points{};              // point count of segment k
  Array1<int, MaxInternalCCSegments> first{};               // where its list starts in `list`
  Array1<int, MaxRows + MaxInternalCCSegments + 1> list{};  // point indices
  Array1<int, MaxInternalCCSegments> order{};               // solving order
  // Point j (1-based) of segment k.
  int point(int k, int j) const { return list(first(k) + j - 1); }
};

// HCTAN3: solve the Hermite tangents of a spline record, blending weighted
// knuckles, optionally as one half of a curve symmetric about a plane.
//   in:  limit (most offset points accepted, at most 500), the plane's point
//        and normal, the return side, the tolerance of the on-plane test,
//        the record (n, points, knots, types, weights, tangents, lengths,
//        closed)
//   out: result: m points with types, leading and trailing tangents per
//        unit segment parameter (ends of an open result carry one tangent),
//        its knots, the closed flag, and whether the first and the last
//        given point lie on the plane. n below 2 gives m = 0.
//   failed: set when the solve fails; the message has already been shown.
void HCTAN3(int limit, const Triple& planePoint, const Triple& planeNormal, int returnSide,
            double tolerance, const SplineRecord& rec, HermiteCurve& result, bool& failed);

// HCMTN3: mirror the curve if asked, cut it into CC segments and solve
// them in order. Types and tangents as given; no blending.
//   out: result with tangents as derivatives by the knot parameter, and the
//        knots of the solved curve
void HCMTN3(int limit, const Triple& planePoint, const Triple& planeNormal, int returnSide,
            double tolerance, const SplineRecord& rec, HermiteCurve& result, bool& failed);

// MKCCSL: cut a curve of n points into CC segments and order them so that
// a segment that takes a direction over from a sheer comes after the
// segment that gives it.
//   in:  segment limit, point limit per segment, n, types, weights, closed
//   out: table; deadlock set (and no segments) when a closed curve locks
void MKCCSL(int segmentLimit, int pointLimit, int n, View1<const int> types,
            View1<const double> weights, bool closed, CCSegments& table, bool& deadlock,
            bool& failed);

// IQDLCK: does a closed curve lock? It does when its sheers are all of one
// kind and nothing else ends a CC segment (a knuckle of weight other than 1
// counts as continuous).
void IQDLCK(int n, View1<const int> types, View1<const double> weights, bool closed, bool& deadlock,
            bool& failed);

// HCLEQ3: solve the tangents (knot derivatives) of one CC segment.
//   in:  spline type, count of rows, points, knots, start and end tangent
//        (read by types 3, 4, 5)
//   out: result(1..count)
void HCLEQ3(int splineType, int count, View1<const Triple> points, View1<const double> knots,
            const Triple& startTangent, const Triple& endTangent, View1<Triple> result,
            bool& failed);

// MKSM13: bands and right sides of a free-ended segment of n points.
void MKSM13(int rowLimit, int n, View1<const Triple> points, View1<const double> knots,
            Bands& bands, RightSides& rhs, bool& failed);
// MKSM23: bands, corner and right sides of a periodic segment; row n stands
// for the repeated first point, knots(n-1) is the closing increment.
void MKSM23(int rowLimit, int n, View1<const Triple> points, View1<const double> knots,
            Bands& bands, Corner& corner, RightSides& rhs, bool& failed);
// MKSM33: bands and right sides with prescribed tangents; splineType 3
// (start), 4 (end) or 5 (both).
void MKSM33(int rowLimit, int splineType, int n, View1<const Triple> points,
            View1<const double> knots, const Triple& startTangent, const Triple& endTangent,
            Bands& bands, RightSides& rhs, bool& failed);
// MKSM43: bands and right sides of a segment with quadratic ends.
void MKSM43(int rowLimit, int n, View1<const Triple> points, View1<const double> knots,
            Bands& bands, RightSides& rhs, bool& failed);

// TRIDG1: Gaussian elimination without pivoting on the three bands, for all
// columns at once. A zero pivot sets `singular` (not a failure). Bands and
// right sides are overwritten.
void TRIDG1(int rowLimit, int columnLimit, int rows, int columns, Bands& bands, RightSides& rhs,
            RightSides& solution, bool& singular, bool& failed);

// TRIDG3: as TRIDG1, with the periodic corner entries; workA and workB
// carry the fill-in of columns n-1 and n.
void TRIDG3(int rowLimit, int columnLimit, int rows, int columns, Bands& bands,
            const Corner& corner, Array1<double, MaxRows>& workA, Array1<double, MaxRows>& workB,
            RightSides& rhs, RightSides& solution, bool& singular, bool& failed);

// HCTAN2: the tangents of a two-coordinate record, per unit segment
// parameter, weighted knuckles blended. On an open curve the leading
// tangent of point 1 and the trailing tangent of point n are not written.
void HCTAN2(int limit, const SplineRecord2& rec, View1<Vec<4>> tangents, bool& failed);

// HCMTN2: the two-coordinate segment solve (knot derivatives, no blending).
void HCMTN2(int limit, const SplineRecord2& rec, View1<Vec<4>> tangents, bool& failed);

// HCLEQ2: solve one CC segment in two coordinates.
void HCLEQ2(int splineType, int count, View1<const Vec<2>> points, View1<const double> knots,
            const Vec<2>& startTangent, const Vec<2>& endTangent, View1<Vec<2>> result,
            bool& failed);

// MKSM12, MKSM22, MKSM32, MKSM42: the system builders in two coordinates.
void MKSM12(int rowLimit, int n, View1<const Vec<2>> points, View1<const double> knots,
            Bands& bands, RightSides& rhs, bool& failed);
void MKSM22(int rowLimit, int n, View1<const Vec<2>> points, View1<const double> knots,
            Bands& bands, Corner& corner, RightSides& rhs, bool& failed);
void MKSM32(int rowLimit, int splineType, int n, View1<const Vec<2>> points,
            View1<const double> knots, const Vec<2>& startTangent, const Vec<2>& endTangent,
            Bands& bands, RightSides& rhs, bool& failed);
void MKSM42(int rowLimit, int n, View1<const Vec<2>> points, View1<const double> knots,
            Bands& bands, RightSides& rhs, bool& failed);

}  // namespace kntr::spline
