// Fairing: move one offset point so that the bending energy of the curve
// through it falls. The curve keeps interpolating the point; the other
// points stay. Each iteration solves the tangents, freezes them and
// minimises the energy over the point's position.
//
//   HCFOP3  fair one offset point of a record
//   FPOTX   energy as a function of the faired point's x
//   FPOTY   energy as a function of the faired point's y
//   FPOTZ   energy as a function of the faired point's z
//   FPOTD   energy at CURRPT + s FAIRDR
//   FUNMIN  minimise a function of one variable within limits
//   FMNBRK  bracket a minimum (golden ratio, parabolic extrapolation)
//   FMNBRN  Brent's method on a bracket
//
// The energy of one Hermite segment in one coordinate, with end values p0,
// p1 and tangents t0, t1 per unit parameter, is the integral of the squared
// second derivative: with b = 3 (p1 - p0) - 2 t0 - t1 and
// c = 2 (p0 - p1) + t0 + t1 it is 4 b^2 + 12 b c + 12 c^2.
#pragma once

#include "framework/onebased.h"
#include "spline/record.h"

namespace kntr::spline {

// The fairing state, shared by HCFOP3 and the energy functions and set
// before each minimisation.
struct FairingState {
  bool LOCALE = true;   // evaluate the energy on the two segments at the point only
  bool CLOSFL = false;  // the solved curve is closed
  int FAIRPT = 0;       // index of the faired point
  int NSOLVD = 0;       // points of the solved curve
  Triple PREVPT{};      // previous offset point
  Triple CURRPT{};      // the faired point
  Triple NEXTPT{};      // next offset point
  Triple TANPRV{};      // trailing tangent of the previous point
  Triple TANCL{};       // leading tangent of the faired point
  Triple TANCT{};       // trailing tangent of the faired point
  Triple TANNXT{};      // leading tangent of the next point
  Triple FAIRDR{};      // unit direction of directional fairing
  HermiteCurve solved;  // the last tangent solve: points and tangents
};

// The one instance.
FairingState& fairingState();

// A function of one variable as FUNMIN minimises it.
using ScalarFunction = double (*)(double);

// HCFOP3: fair offset point `pointIndex` of a record.
//   in:  max iterations, local (energy of the two segments at the point, or
//        of the whole curve), restraint (largest step, or <= 0 for none),
//        stop threshold (a smaller move ends the run), directional and its
//        direction, an optional symmetry plane (point, normal) with the
//        tolerance of its on-plane test, the record; its knots stay as given
//   out: iterations used, faired point, energies(k) at the start of
//        iteration k (as far as `energies` reaches); rec.OFFPNT(pointIndex)
//        holds the last tried position
//   failed: set after the message; a failed tangent solve restores the point.
// Curves of 2 points or fewer are left alone, as are the end points of an
// open curve in free mode.
void HCFOP3(int pointIndex, int maxIterations, bool local, double restraint, double stopThreshold,
            bool directional, const Triple& direction, bool planeGiven, const Triple& planePoint,
            const Triple& planeNormal, double tolerance, SplineRecord& rec, int& iterations,
            Triple& fairedPoint, View1<double> energies, bool& failed);

// FPOTX, FPOTY, FPOTZ: the energy (local or global by LOCALE) with one
// coordinate of the faired point set to `value`, tangents frozen.
double FPOTX(double value);
double FPOTY(double value);
double FPOTZ(double value);

// FPOTD: FPOTX + FPOTY + FPOTZ at CURRPT + s FAIRDR.
double FPOTD(double s);

// FUNMIN: the minimum of `function` on [lower, upper] to a relative
// tolerance, clipped to the limits. Equal limits give 0.0.
void FUNMIN(ScalarFunction function, double lower, double upper, double tolerance, double& minimum,
            bool& failed);

// FMNBRK: from a and b, walk downhill until a < b < c (or the reverse)
// brackets a minimum; returns the triple and its values.
void FMNBRK(ScalarFunction function, double& a, double& b, double& c, double& fa, double& fb,
            double& fc, bool& failed);

// FMNBRN: Brent's method on the bracket (a, b, c) with b the start; the
// abscissa to tolerance |x| + 1e-10. At most 1000 iterations.
void FMNBRN(ScalarFunction function, double a, double b, double c, double tolerance, double& xmin,
            double& fmin, bool& failed);

}  // namespace kntr::spline
