// The profile exchanged with drawing programs and tables of measurements.
//
// A drawing holds each curve as the display draws it: the polyline of the
// spline at the profile's accuracy. DXF is written as release 12 text, one
// layer per curve ("CURVE1", ...), each curve a POLYLINE: for a spline
// profile a spline-fit polyline whose frame vertices are the curve's offset
// points and whose fitted vertices are the polyline; for a polyline profile
// a plain one through the points. SVG holds one path per curve in the
// profile's own coordinates, turned so that Y points up.
//
// An offset table is text with one point a row: curve, X, Y and an optional
// point type (1 = CC, 2 = Knuckle, as key-in asks; CC when absent), the
// fields separated by commas. The curve field names the curve; the rows of
// one curve stand together, and curves are numbered in the order they come.
// A curve whose last row coincides with its first is closed. Blank rows,
// rows that begin with "#" and a first row that begins with the word
// "curve" are passed over. Any bad row stops the import with a message that
// names the row, and the profile is left as it was.
//
//   PTPDXF  write the profile's curves to a DXF file
//   PTPSVG  write the profile's curves to an SVG file
//   GTOFFT  read an offset table into a new profile
//   XPPROF  ask for a file name and export the profile as DXF or SVG
//   INOFFT  ask for a table, its box, reference point and profile type, and import it
#pragma once

#include <string_view>

#include "framework/onebased.h"

namespace kntr::profile {

// Formats of the profile export.
inline constexpr int DxfDrawing = 1;
inline constexpr int SvgDrawing = 2;
// Longest file name the exchange dialogues ask for.
inline constexpr int ExchangeFileNameLength = 80;
// Longest line of an offset table.
inline constexpr int MaxOffsetRowLength = 1000;

// PTPDXF: the curves of the profile as DXF release 12, asking before an
// existing file is replaced (a cancel of that question is no failure).
//   status: set on failure or when the user declines; the message has been shown.
void PTPDXF(std::string_view name, bool& status);

// PTPSVG: the curves of the profile as SVG, one path per curve.
void PTPSVG(std::string_view name, bool& status);

// GTOFFT: read the offset table `name` into a new profile of kind
// `profileType` with the bounding box `box` (min X, max X, min Y, max Y)
// and the reference point `ref`. With `fitBox` the box is made from the
// table's points, a twentieth of the larger side wider on each side, and
// `box` returns it. Nothing in the profile changes unless the whole table
// is good.
//   status: set on failure; the message (naming the row) has been shown.
void GTOFFT(std::string_view name, bool fitBox, Array1<double, 4>& box,
            const Array1<double, 2>& ref, int profileType, bool& status);

// XPPROF: ask "Input name (full) for DXF file (max 80 char)" (or SVG) and
// write the profile in that format.
void XPPROF(int format, bool& status);

// INOFFT: the import dialogue: the load confirmation when there are curves,
// the name of the table, the box, the reference point and the profile type,
// then GTOFFT. A cancel or a failure leaves the profile as it was;
// `imported` tells that the new profile stands.
void INOFFT(bool& imported, bool& status);

}  // namespace kntr::profile
