// The profile block: all of the module's data, one instance for the process.
//
// A profile is up to 10 curves inside a bounding box, with a reference point.
// Either all curves are cubic splines (PRFTYP 1) or all are polylines (0).
// Each curve runs through up to 100 points, each with a type:
//   1 knuckle (with a weight), 2 continuous curvature, 3 leading tangent,
//   4 trailing tangent, 5 both tangents, 6 equal tangents, 7 leading sheer,
//   8 trailing sheer.
// Counts tell how much of each fixed array is valid. Indices count from 1.
#pragma once

#include "framework/onebased.h"

namespace kntr::profile {

// Limits (kntrsz).
inline constexpr int MaxCurves = 10;
inline constexpr int MaxCurvePoints = 100;

// Point type codes.
inline constexpr int Knuckle = 1;
inline constexpr int ContinuousCurvature = 2;
inline constexpr int LeadingTangent = 3;
inline constexpr int TrailingTangent = 4;
inline constexpr int BothTangents = 5;
inline constexpr int EqualTangents = 6;
inline constexpr int LeadingSheer = 7;
inline constexpr int TrailingSheer = 8;

// Profile kinds.
inline constexpr int PolylineProfile = 0;
inline constexpr int SplineProfile = 1;

// Parameterization codes.
inline constexpr int Uniform = 1;
inline constexpr int ChordLength = 2;
inline constexpr int CurveLength = 3;
inline constexpr int Centripetal = 4;
inline constexpr int Foley = 5;

struct ProfileData {
  // Profile-wide data (kntrdt).
  int PRFTYP = SplineProfile;      // 1 cubic spline profile, 0 polyline profile
  int NPRCRV = 0;                  // number of curves
  Array1<double, 4> PRBBOX{};      // bounding box: min X, max X, min Y, max Y
  Array1<double, 2> PRREFP{};      // reference point X, Y
  double SPLACC = 0.0;             // spline accuracy, also the coincidence distance
  bool BBOXOK = false;             // the bounding box has been given
  bool MODFLG = false;             // data changed since the last load or store
  int CURCRV = 0;                  // current curve, 0 for none
  int CURPNT = 0;                  // current point of CURCRV
  Array1<int, 2> HILSEG{};         // highlighted segments of the current curve
  bool SNAPOK = false;             // the snap line is defined
  Array1<double, 4> SNAPLN{};      // snap line X1, Y1, X2, Y2
  bool HLPLOK = false;             // the auxiliary line is drawn
  Array1<double, 4> HLPLIN{};      // auxiliary line X1, Y1, X2, Y2
  bool MARKOK = false;             // the insertion mark is drawn
  Array1<double, 2> MARKPT{};      // insertion mark X, Y

  // Settings (not stored in the data file).
  bool FRLOCL = true;              // fairing evaluates the energy locally
  bool FRRSTR = false;             // fairing steps are restrained
  double FRRDST = 1.0;             // restraint distance of fairing
  int FRMITR = 1;                  // maximum number of fairing iterations
  bool MESHON = false;             // the interior mesh is drawn
  bool MESHLP = false;             // the mesh gets Laplace smoothing
  bool MESHAU = false;             // the mesh density is set automatically
  int MESHDN = 1000;               // requested number of triangles
  double MESHQL = 0.85;            // required mean mesh quality
  bool MESHRB = false;             // the mesh is made in the robust mode
  bool MESHIM = false;             // the robust mode improves the mesh's quality
  bool SHOWIP = false;             // interpolated points drawn as marks
  bool SHOWCP = false;             // control polygon selected for drawing
  bool SHOWLS = true;              // curves drawn with line strokes
  bool SHOWGR = true;              // grid of the graphics window drawn
  bool SHOWCB = false;             // curvature comb of each spline curve drawn
  bool MESHQC = false;             // mesh triangles coloured by their quality
  bool SHOWSP = false;             // section properties printed with the profile

  // Per curve.
  Array1<int, MaxCurves> NPRPNT{};       // number of points
  Array1<bool, MaxCurves> PRCLSD{};      // closed curve (last point joins the first)
  Array1<int, MaxCurves> PRPARM{};       // parameterization code

  // Per point of a curve.
  Array2<Array1<double, 2>, MaxCurves, MaxCurvePoints> PRPNTS{};  // X, Y
  Array2<int, MaxCurves, MaxCurvePoints> PRPTYP{};                // type code
  Array2<double, MaxCurves, MaxCurvePoints> PRKWGT{};             // knuckle weight
  Array2<Array1<double, 4>, MaxCurves, MaxCurvePoints> PRTANV{};  // lead X, Y, trail X, Y
  Array2<Array1<double, 2>, MaxCurves, MaxCurvePoints> PRTANL{};  // lead, trail lengths

  friend bool operator==(const ProfileData&, const ProfileData&) = default;
};

// The one instance.
ProfileData& profile();

// Everything back to the state before start-up (tests).
void resetProfileBlock();

// IZACCY: SPLACC = 0.001 times the larger side of the bounding box.
void IZACCY();

// Coincidence test: closer than SPLACC in X, in Y and in distance (strictly).
bool coincident(double ax, double ay, double bx, double by);

}  // namespace kntr::profile
