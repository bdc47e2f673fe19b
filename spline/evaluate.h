// Evaluation and subdivision of solved curves.
//
// Each Hermite segment becomes a cubic Bezier polygon, and polygons are cut
// with the de Casteljau construction; there is no other evaluator. Two
// subdividers stand on that: an even one (fixed parameter steps per
// segment) and an adaptive one that refines down to an accuracy.
//
//   HCBEZ3  Bezier polygon of a Hermite segment, and whether it is flat
//   HCSPL3  split a Bezier polygon at a parameter
//   IQBZLN  chord and leg length of a Bezier polygon
//   SBDVP3  adaptive subdivision of one polygon into a chain of polygons
//   HCPIP3  solve a record and take evenly spaced points in each segment
//   HCAIP3  solve a record and subdivide it adaptively to an accuracy
#pragma once

#include "framework/onebased.h"
#include "spline/record.h"

namespace kntr::spline {

// A cubic Bezier polygon B0..B3 as points 1..4.
using Bezier = Array1<Triple, 4>;

// HCBEZ3: the Bezier polygon of the Hermite segment p0, p1 with tangents
// t0, t1 per unit parameter: p0, p0 + t0/3, p1 - t1/3, p1. `flat` when the
// leg sum differs from the chord by less than `tolerance`.
void HCBEZ3(const Triple& p0, const Triple& p1, const Triple& t0, const Triple& t1,
            double tolerance, Bezier& polygon, bool& flat, bool& failed);

// HCSPL3: split a polygon at parameter t into `left` and `right`; the curve
// point at t is left(4) (= right(1)).
void HCSPL3(const Bezier& polygon, double t, Bezier& left, Bezier& right, bool& failed);

// IQBZLN: length of the chord B0 to B3 and the sum of the three legs.
void IQBZLN(const Bezier& polygon, double& chord, double& length, bool& failed);

// SBDVP3: subdivide a polygon until each piece's leg sum is within
// `tolerance` of its chord. The result is a chain of polygons sharing their
// end points: points 1, 4, 7, ... lie on the curve, the others are control
// points. At most `limit` points.
void SBDVP3(double tolerance, int limit, const Bezier& polygon, int& count, View1<Triple> points,
            bool& failed);

// HCPIP3: solve the record (HCTAN3) and take `pointsPerSegment` evenly
// spaced parameters in each segment, shared ends once; a closed curve does
// not repeat its first point.
//   in:  limit (most result points), points per segment (at most 1000), the
//        symmetry plane, return side and tolerance as for HCTAN3, the record
//   out: count, points, pointIndex(i): the result point of offset point i
void HCPIP3(int limit, int pointsPerSegment, const Triple& planePoint, const Triple& planeNormal,
            int returnSide, double tolerance, const SplineRecord& rec, int& count,
            View1<Triple> points, View1<int> pointIndex, bool& failed);

// HCAIP3: solve the record and subdivide each segment adaptively: a flat
// segment gives its end point only, a curved one a chain of Bezier
// polygons. onCurve(k) tells points on the curve from inner control points.
//   in:  limit (most result points), accuracy (flatness tolerance), the
//        symmetry plane, return side and tolerance as for HCTAN3, the record
//   out: count, points, pointIndex(i) for each offset point, onCurve flags
void HCAIP3(int limit, double accuracy, const Triple& planePoint, const Triple& planeNormal,
            int returnSide, double tolerance, const SplineRecord& rec, int& count,
            View1<Triple> points, View1<int> pointIndex, View1<bool> onCurve, bool& failed);

}  // namespace kntr::spline
