// Capacities of the spline engine.
//
// The engine allocates nothing: every work area is a fixed array sized by one
// of these limits, and a routine that would pass one fails with its message.
#pragma once

namespace kntr::spline {

// Offset points of a record given to tangent solving.
inline constexpr int MaxOffsetPoints = 500;
// Points of a working curve after mirroring, and rows of one linear system.
inline constexpr int MaxRows = 1000;
// Right-hand-side columns of one linear system (x, y, z).
inline constexpr int MaxColumns = 3;
// CC segments of one curve as tangent solving asks for them.
inline constexpr int MaxCCSegments = 200;
// CC segments the segment and order tables can hold.
inline constexpr int MaxInternalCCSegments = 500;
// Points of one CC segment (three coordinates).
inline constexpr int MaxCCSegmentPoints = 1000;
// Points of one CC segment in the two-coordinate family.
inline constexpr int MaxCCSegmentPoints2 = 500;
// Points per segment in even subdivision.
inline constexpr int MaxPointsPerSegment = 1000;
// Bezier polygon points of one segment in adaptive subdivision.
inline constexpr int MaxBezierPoints = 10000;
// Depth of the subdivision stack.
inline constexpr int MaxStackDepth = 100;

}  // namespace kntr::spline
