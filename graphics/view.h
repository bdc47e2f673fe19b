// Views of a model: the view direction, the button panel of the graphics
// window with its zoom, pan and rotation, the digitizer calibration, and the
// menu "GRAPHICS RELATED VIEW PARAMETERS".
//
// A client never changes scales itself: it gives a redraw routine, and every
// change of view calls it twice, first to erase (VWBUSY false) and then to
// draw (VWBUSY true). The view is the margin rectangle of the plot state.
//
//   GVIEWS  set the view: up axis and view normal
//   XYZ2AB  view normal to elevation and azimuth
//   AB2XYZ  elevation and azimuth to view normal
//   SPBBOX  store the view bounding box, widening a flat axis
//   LZOMOK  true if a magnification may be used
//   IQPPLN  signed distance of a point from a plane
//   CUTPLN  intersection of a line with a plane
//   FTL2BX  the two points where a line meets a box
//   GZVIEW  the XY, XZ and YZ views
//   GROTAT  turn the view by one step (turnable view kinds only)
//   GZOOMB  zoom to a box of two digitized corners
//   GZOOMI  zoom in about a digitized centre
//   GZOOMO  zoom out about a digitized centre
//   GZPREV  back to the previous view
//   GPANVW  pan the view by a fraction of its size
//   GZRSET  view state back to its defaults
//   GZALL   show everything
//   GZOOMA  zoom by a factor about a point (the mouse wheel)
//   GPANBY  move the view by a distance (a middle-button drag)
//   GDIGIT  wait for an input event; a position inside the digit rectangle
//   GDIGPT  digitize from the pen position
//   DGSCAL  calibrate the digitizer in a plane
//   DG2WLD  digitizer position to model coordinates
//   panelIndex  the panel button under a surface position, 0 for none
//   GPANEL  act on a press of panel button `index`
//   DRPANL  draw the button panel
//   GVWMNU  the menu "GRAPHICS RELATED VIEW PARAMETERS"
#pragma once

#include <string_view>

#include "framework/onebased.h"
#include "graphics/plotstate.h"

namespace kntr::graphics {

inline constexpr int PanelColumns = 6;
inline constexpr int PanelRows = 4;
inline constexpr int PanelButtons = PanelColumns * PanelRows;

struct ViewState {
  int VIEWKD = 1;
  int UPAXIS = 3;
  Array1<double, 3> VNORML{{1.0, 1.0, 1.0}};
  Array2<double, 3, 3> VMATRX{};
  double ROTSTP = 15.0;
  double ZOOMFC = 2.0;
  double ZOOMMG = 1.0;
  double PANFRC = 0.25;
  bool PREVOK = false;
  bool ZOOMED = false;
  Rectangle PREVVW;
  Array1<double, 6> VWBBOX{{0.0, 1.0, 0.0, 1.0, 0.0, 1.0}};
  bool AUTOSC = true;
  bool AUTORD = false;
  bool DYNGRF = false;
  bool VWBUSY = true;
  // Digitizer calibration: fix-point (r1, s1) at (X1, Y1), second point
  // (r2, s2) at abscissa X2, third point (r3, s3) at ordinate Y3.
  double r1 = 0, s1 = 0, X1 = 0, Y1 = 0;
  double r2 = 1, s2 = 0, X2 = 1;
  double r3 = 0, s3 = 1, Y3 = 1;
  int plane = 3;
  // Panel buttons awaiting digitized positions are shown in colour 7.
  int waitingButton = 0;
};

ViewState& viewState();
// resetViewState: the defaults (start of the module, RST).
void resetViewState();

// The client's redraw routine, called around every change of view.
void setViewClient(RedrawClient client);

void GVIEWS(int upAxis, double nx, double ny, double nz, bool& failed);
void XYZ2AB(int upAxis, double nx, double ny, double nz, double& elevation, double& azimuth,
            bool& failed);
void AB2XYZ(int upAxis, double elevation, double azimuth, double& nx, double& ny, double& nz,
            bool& failed);
void SPBBOX(double xmin, double xmax, double ymin, double ymax, double zmin, double zmax,
            bool& failed);
bool LZOMOK(double magnification);
// IQPPLN: signed distance of p from the plane through `point` with `normal`.
double IQPPLN(const double point[3], const double normal[3], const double p[3]);
void CUTPLN(const double planePoint[3], const double planeNormal[3], const double p[3],
            const double q[3], bool& hit, bool& between, double point[3], bool& failed);
void FTL2BX(const double p[3], const double q[3], double xmin, double xmax, double ymin,
            double ymax, double zmin, double zmax, bool& found, double first[3],
            double second[3], bool& failed);

// Panel actions; `failed` when the client's redraw failed.
void GZVIEW(int which, bool& failed);  // 1 XY, 2 XZ, 3 YZ
void GROTAT(int code, bool& failed);   // 1 EU, 2 ED, 3 EL, 4 ER
void GZOOMB(bool& failed);
void GZOOMI(bool& failed);
void GZOOMO(bool& failed);
void GZPREV(bool& failed);
void GPANVW(int code, bool& failed);  // 1 PU, 2 PD, 3 PL, 4 PR
void GZRSET(bool& failed);
void GZALL(bool& failed);
// Zoom in (factor above 1) or out about (x, y), keeping that point where it
// stands on the surface.
void GZOOMA(double x, double y, double factor, bool& failed);
// Move the view by (dx, dy) world units.
void GPANBY(double dx, double dy, bool& failed);
// The zoom steps with the centre given (GZOOMI and GZOOMO after the pick).
void zoomAbout(double cx, double cy, bool in, bool& failed);

// GDIGIT: code 3 for a position inside the digit rectangle (x, y in world
// units), 1 for keyboard input, 2 for a menu item, 0 when given up.
// `deflt` is the text shown as the default of keyboard input (an empty line
// keeps x and y as preset).
void GDIGIT(std::string_view prompt, int& code, double& x, double& y,
            std::string_view deflt = "", int fields = 2);
// GDIGPT: digitize from the pen; the pen ends at the result when status 0.
void GDIGPT(int& status, double& x, double& y);
void DGSCAL(int plane, int mode, int menuState, bool& failed);
void DG2WLD(double r, double s, double& x, double& y, bool& failed);

// The panel's labels, in reading order (row 1 first).
extern const char* const panelLabels[PanelButtons];
// panelIndex: (row - 1) * 6 + column of the button at surface fractions
// (u from the left, v from the bottom), 0 when no button is there.
int panelIndex(double u, double v);
// panelIndexOf: the index of a button by its label (either case), 0 if none.
int panelIndexOf(std::string_view label);
// GPANEL: the action of button `index`.
void GPANEL(int index, bool& failed);
// DRPANL: draw the panel (the toggles on in colour 7).
void DRPANL();
// GVWMNU: the view parameter menu.
void GVWMNU(bool& failed);

}  // namespace kntr::graphics
