// The picture of the profile, drawn through the plot state on whatever
// device is attached. The whole picture is erased by clearing the display
// rectangle, one curve by drawing it again in the background colour: every
// editor erases, changes the data, and draws.
//
//   DPKNTR  the whole picture: erase it, or (rescaled to the box) draw it
//   PLPRCV  the curves, their points and labels, and the reference point
//   PLMESH  the interior mesh
//   PLCOMB  the curvature comb of the spline curves
//   drawMesh  draw given triangles as the mesh is drawn
//   pointLabel  the label of a point: its type letters and its number
//   REDRAW  erase and draw the whole picture
//   lineThroughBox  a line through two points cut to the box
//   displayLook  the colours of the things and what the picture shows
//   setUnderlay  a drawing (PNG or JPEG) shown under the picture in the window
//   UNDRLY  take a drawing as the underlay: check it, erase, set, draw
#pragma once

#include <string>
#include <string_view>

#include "framework/onebased.h"
#include "mesher/structure.h"

namespace kntr::profile {

// Colours of the things of the picture.
inline constexpr int EraseColour = 0;
inline constexpr int ReferenceColour = 3;
inline constexpr int CurrentCurveColour = 2;
inline constexpr int CurveColour = 4;
inline constexpr int InterpolatedColour = 5;
inline constexpr int PointColour = 1;
inline constexpr int CurrentPointColour = 2;
inline constexpr int HighlightColour = 1;
inline constexpr int SnapLineColour = 6;
inline constexpr int SnapEndColour = 5;
inline constexpr int HelpLineColour = 3;
inline constexpr int InsertMarkColour = 3;
inline constexpr int MeshColour = 3;
inline constexpr int CombColour = 10;
// The tallest spike of the curvature comb, as a share of the larger side of
// the view.
inline constexpr double CombHeight = 0.08;

// The things of the picture whose colour the plot set-up may change.
enum Thing {
  ReferenceThing, CurrentCurveThing, CurveThing, InterpolatedThing, PointThing,
  CurrentPointThing, HighlightThing, SnapLineThing, SnapEndThing, HelpLineThing,
  InsertMarkThing, MeshThing, ThingCount
};

// How the picture looks: the colour of each thing, and what is shown.
struct DisplayLook {
  int colour[ThingCount] = {ReferenceColour,    CurrentCurveColour, CurveColour,
                            InterpolatedColour, PointColour,        CurrentPointColour,
                            HighlightColour,    SnapLineColour,     SnapEndColour,
                            HelpLineColour,     InsertMarkColour,   MeshColour};
  bool labels = true;          // point labels
  bool reference = true;       // the reference point
  bool marks = true;           // the marks of the points
  bool snapLine = true;        // the snap line
  bool mesh = true;            // the interior mesh (when meshing is on)
};
DisplayLook& displayLook();
// The names of the things, as the colour set-up lists them.
extern const char* const ThingNames[ThingCount];

// Marks.
inline constexpr int PointMark = 1;
inline constexpr int ReferenceMark = 2;
inline constexpr int InterpolatedMark = 5;
inline constexpr int InsertMark = 5;
inline constexpr int SnapEndMark = 15;

// Size of the point labels.
inline constexpr double LabelSize = 0.5;

// lineThroughBox: the line through (x1, y1) and (x2, y2), extended both
// ways, cut to the bounding box: its ends (ax, ay) and (bx, by); false when
// it misses the box or the two points coincide.
bool lineThroughBox(double x1, double y1, double x2, double y2, double& ax, double& ay,
                    double& bx, double& by);
// DPKNTR: with `erase` clear the display rectangle and nothing else;
// otherwise draw grid, mesh, curves, snap line, marks and auxiliary line,
// first scaling the plot to the box when `rescale`.
void DPKNTR(bool erase, bool rescale, bool& status);
// PLPRCV: curve `curve` (0 for all) with its points, in the background
// colour when `erase`.
void PLPRCV(int curve, bool erase, bool& status);
// PLMESH: the interior mesh, in the background colour when `erase`.
void PLMESH(bool erase, bool& status);
// PLCOMB: at each polyline point of each spline curve a spike along the
// normal, as long as the curvature there times one scale for the whole
// picture, the tips joined; in the background colour when `erase`.
void PLCOMB(bool erase, bool& status);
// combSpikes: the spikes of curve c as base and tip points, `count` of them
// (knuckle corners have none); the scale maps curvature to length.
void combSpikes(int c, double scale, int& count, View1<XY> bases, View1<XY> tips, bool& status);
// drawMesh: triangles over the vertices, each as its closed outline.
void drawMesh(View1<const XY> vertices, View1<const mesher::Triangle> triangles, int colour);
// drawMeshQuality: triangles filled in the colour of their quality on the
// ramp (poor red to good blue), with the ramp's legend.
void drawMeshQuality(View1<const XY> vertices, View1<const mesher::Triangle> triangles,
                     View1<const double> quality, bool erase);
// pointLabel: "K12", "k3", "TL4", "7", ... for point j of curve c.
std::string pointLabel(int c, int j);
// REDRAW: DPKNTR erase, then DPKNTR draw.
void REDRAW(bool& status);
// setUnderlay: the PNG or JPEG file stretched over the box below the grid, on the
// window only (never on hardcopy); empty for none.
void setUnderlay(const std::string& file);
const std::string& underlayFile();
// UNDRLY: the answer "#underlay FILE" or the digitizing menu's row: a
// readable PNG or JPEG becomes the underlay ("none" removes it), and the picture is
// drawn again.
void UNDRLY(std::string_view file);

}  // namespace kntr::profile
