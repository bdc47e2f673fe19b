#include "spline/fairing.h"

#include <algorithm>
#include <cmath>

#include "framework/text.h"
#include "spline/limits.h"
#include "spline/tangents.h"

namespace kntr::spline {

using framework::fail;

namespace {

// Relative search tolerance of the one-dimensional minimisations.
constexpr double SearchTolerance = 0.0001;

// Energy of one Hermite segment in one coordinate.
double segmentEnergy(double p0, double p1, double t0, double t1) {
  const double b = 3.0 * (p1 - p0) - 2.0 * t0 - t1;
  const double c = 2.0 * (p0 - p1) + t0 + t1;
  return 4.0 * b * b + 12.0 * b * c + 12.0 * c * c;
}

// The energy in coordinate k with that coordinate of the faired point at v.
double energy(int k, double v) {
  const FairingState& s = fairingState();
  if (s.LOCALE) {
    const bool first = s.FAIRPT == 1;
    const bool last = s.FAIRPT == s.NSOLVD;
    double e = 0.0;
    // The segment that leaves the point; an open curve's last point has
    // none, and its term, with the point itself for the next one and no
    // tangent there, is constant.
    if (s.CLOSFL || !first) {
      const double next = s.CLOSFL || !last ? s.NEXTPT(k) : v;
      e += segmentEnergy(v, next, s.TANCT(k), s.TANNXT(k));
    }
    // The segment that arrives; likewise constant at an open curve's first
    // point.
    if (s.CLOSFL || !last) {
      const double previous = s.CLOSFL || !first ? s.PREVPT(k) : v;
      e += segmentEnergy(previous, v, s.TANPRV(k), s.TANCL(k));
    }
    return e;
  }
  // Every segment of the curve, the faired point at v.
  const HermiteCurve& c = s.solved;
  const int m = c.m;
  auto coordinate = [&](int j) { return j == s.FAIRPT ? v : c.points(j)(k); };
  double e = 0.0;
  for (int i = 1; i <= m - 1; ++i)
    e +=
        segmentEnergy(coordinate(i), coordinate(i + 1), c.tangents(i)(3 + k), c.tangents(i + 1)(k));
  if (s.CLOSFL && m >= 2)
    e += segmentEnergy(coordinate(m), coordinate(1), c.tangents(m)(3 + k), c.tangents(1)(k));
  return e;
}

double distance(const Triple& a, const Triple& b) {
  const double dx = b(1) - a(1), dy = b(2) - a(2), dz = b(3) - a(3);
  return std::sqrt(dx * dx + dy * dy + dz * dz);
}

// Neighbours and frozen tangents of the faired point from the last solve.
void loadNeighbourhood(FairingState& s) {
  const HermiteCurve& c = s.solved;
  const int i = s.FAIRPT;
  const int m = s.NSOLVD;
  s.CURRPT = c.points(i);
  s.TANCL = leading(c.tangents(i));
  s.TANCT = trailing(c.tangents(i));
  if (s.CLOSFL || i > 1) {
    const int previous = i > 1 ? i - 1 : m;
    s.PREVPT = c.points(previous);
    s.TANPRV = trailing(c.tangents(previous));
  } else {
    s.PREVPT = s.CURRPT;
    s.TANPRV = Triple{};
  }
  if (s.CLOSFL || i < m) {
    const int next = i < m ? i + 1 : 1;
    s.NEXTPT = c.points(next);
    s.TANNXT = leading(c.tangents(next));
  } else {
    s.NEXTPT = s.CURRPT;
    s.TANNXT = Triple{};
  }
}

}  // namespace

FairingState& fairingState() {
  static FairingState state;
  return state;
}

double FPOTX(double value) {
  return energy(1, value);
}
double FPOTY(double value) {
  return energy(2, value);
}
double FPOTZ(double value) {
  return energy(3, value);
}

double FPOTD(double s) {
  const FairingState& f = fairingState();
  return FPOTX(f.CURRPT(1) + s * f.FAIRDR(1)) + FPOTY(f.CURRPT(2) + s * f.FAIRDR(2)) +
         FPOTZ(f.CURRPT(3) + s * f.FAIRDR(3));
}

void HCFOP3(int pointIndex, int maxIterations, bool local, double restraint, double stopThreshold,
            bool directional, const Triple& direction, bool planeGiven, const Triple& planePoint,
            const Triple& planeNormal, double tolerance, SplineRecord& rec, int& iterations,
            Triple& fairedPoint, View1<double> energies, bool& failed) {
  failed = false;
  iterations = 0;
  const int n = rec.NOFFS;
  const bool indexValid = pointIndex >= 1 && pointIndex <= n && n <= MaxOffsetPoints;
  if (indexValid) fairedPoint = rec.OFFPNT(pointIndex);
  if (n <= 2) return;
  // Index 0 passes the check and names no point: nothing to fair.
  if (pointIndex == 0 && n <= MaxOffsetPoints) return;
  if (!indexValid) {
    fail(n > MaxOffsetPoints ? "(HCFOP3) Max number of offset points exceeded!"
                             : "(HCFOP3) Illegal fair offset point index!",
         failed);
    return;
  }
  const bool closed = rec.CLOSED;
  // The ends of an open curve stay unless moved along a direction.
  if (!closed && !directional && (pointIndex == 1 || pointIndex == n)) return;
  if (restraint > 0.0 && stopThreshold > restraint) {
    fail("(HCFOP3) Stop criterion threshold cannot exceed max allowed adjustment distance!",
         failed);
    return;
  }
  FairingState& state = fairingState();
  if (directional) {
    const double length = distance(Triple{}, direction);
    if (length == 0.0) {
      fail("(HCFOP3) Found zero length direction vector!", failed);
      return;
    }
    for (int k = 1; k <= 3; ++k) state.FAIRDR(k) = direction(k) / length;
  }
  int side = SideNone;
  if (planeGiven) {
    if (distance(Triple{}, planeNormal) == 0.0) {
      fail("(HCFOP3) Encountered zero length plane normal vector!", failed);
      return;
    }
    side = SideGiven;
  }

  // Search ranges: the box of all points, or a line through the point.
  Triple low = rec.OFFPNT(1), high = rec.OFFPNT(1);
  for (int i = 2; i <= n; ++i)
    for (int k = 1; k <= 3; ++k) {
      low(k) = std::min(low(k), rec.OFFPNT(i)(k));
      high(k) = std::max(high(k), rec.OFFPNT(i)(k));
    }
  const double extent = std::max({high(1) - low(1), high(2) - low(2), high(3) - low(3)});
  const double reach = restraint > 0.0 ? restraint : extent;

  const Triple start = fairedPoint;
  const int most = std::max(maxIterations, 1);
  double firstMove = 0.0;
  state.LOCALE = local;
  state.FAIRPT = pointIndex;
  for (int iteration = 1;; ++iteration) {
    iterations = iteration;
    rec.OFFPNT(pointIndex) = fairedPoint;
    HCTAN3(MaxOffsetPoints, planePoint, planeNormal, side, tolerance, rec, state.solved, failed);
    if (failed) {
      rec.OFFPNT(pointIndex) = start;
      return;
    }
    state.NSOLVD = state.solved.m;
    state.CLOSFL = state.solved.closed;
    loadNeighbourhood(state);
    if (iteration <= energies.size())
      energies(iteration) =
          FPOTX(state.CURRPT(1)) + FPOTY(state.CURRPT(2)) + FPOTZ(state.CURRPT(3));

    // The position of least energy with the tangents frozen.
    Triple target;
    if (directional) {
      double s = 0.0;
      FUNMIN(FPOTD, -reach, reach, SearchTolerance, s, failed);
      if (failed) return;
      for (int k = 1; k <= 3; ++k) target(k) = fairedPoint(k) + s * state.FAIRDR(k);
    } else {
      const ScalarFunction functions[3] = {FPOTX, FPOTY, FPOTZ};
      for (int k = 1; k <= 3; ++k) {
        FUNMIN(functions[k - 1], low(k), high(k), SearchTolerance, target(k), failed);
        if (failed) return;
      }
    }

    const double move = distance(fairedPoint, target);
    if (move < stopThreshold) {
      fairedPoint = target;
      return;
    }
    // A restrained step is the way to the target times the restraint.
    if (!directional && restraint > 0.0 && move > restraint)
      for (int k = 1; k <= 3; ++k)
        target(k) = fairedPoint(k) + restraint * (target(k) - fairedPoint(k));
    if (iteration == 1) firstMove = move;
    fairedPoint = target;
    if (iteration >= 2 && std::fabs(move / firstMove) < 0.001) return;
    if (iteration >= most) return;
  }
}

void FUNMIN(ScalarFunction function, double lower, double upper, double tolerance, double& minimum,
            bool& failed) {
  failed = false;
  if (lower > upper) {
    fail("(FUNMIN) Max search limit must be larger than min!", failed);
    return;
  }
  if (lower == upper) {
    minimum = 0.0;
    return;
  }
  if (tolerance <= 0.0) {
    fail("(FUNMIN) Tolerance must be positive!", failed);
    return;
  }
  double a = lower, b = upper, c = 0.5 * (lower + upper);
  double fa = 0.0, fb = 0.0, fc = 0.0;
  FMNBRK(function, a, b, c, fa, fb, fc, failed);
  if (failed) return;
  double x = 0.0, fx = 0.0;
  FMNBRN(function, a, b, c, tolerance, x, fx, failed);
  if (failed) return;
  minimum = std::clamp(x, lower, upper);
}

void FMNBRK(ScalarFunction function, double& a, double& b, double& c, double& fa, double& fb,
            double& fc, bool& failed) {
  failed = false;
  constexpr double Gold = 1.618034;
  constexpr double Reach = 100.0;  // farthest parabolic step, in units of c - b
  constexpr double Tiny = 1e-20;
  constexpr int MostSteps = 1000;  // a function without a minimum stops here
  fa = function(a);
  fb = function(b);
  if (fb > fa) {
    std::swap(a, b);
    std::swap(fa, fb);
  }
  c = b + Gold * (b - a);
  fc = function(c);
  for (int step = 1; fb >= fc && step <= MostSteps; ++step) {
    // A flat function has its minimum everywhere.
    if (fa == fb && fb == fc) return;
    const double r = (b - a) * (fb - fc);
    const double q = (b - c) * (fb - fa);
    const double difference = q - r;
    const double guarded = std::copysign(std::max(std::fabs(difference), Tiny), difference);
    double u = b - ((b - c) * q - (b - a) * r) / (2.0 * guarded);
    const double limit = b + Reach * (c - b);
    double fu = 0.0;
    if ((b - u) * (u - c) > 0.0) {
      // The parabola's vertex lies between b and c.
      fu = function(u);
      if (fu < fc) {
        a = b;
        b = u;
        fa = fb;
        fb = fu;
        return;
      }
      if (fu > fb) {
        c = u;
        fc = fu;
        return;
      }
      u = c + Gold * (c - b);
      fu = function(u);
    } else if ((c - u) * (u - limit) > 0.0) {
      // Beyond c but within reach.
      fu = function(u);
      if (fu < fc) {
        b = c;
        c = u;
        u = c + Gold * (c - b);
        fb = fc;
        fc = fu;
        fu = function(u);
      }
    } else if ((u - limit) * (limit - c) >= 0.0) {
      u = limit;
      fu = function(u);
    } else {
      u = c + Gold * (c - b);
      fu = function(u);
    }
    a = b;
    b = c;
    c = u;
    fa = fb;
    fb = fc;
    fc = fu;
  }
}

void FMNBRN(ScalarFunction function, double a, double b, double c, double tolerance, double& xmin,
            double& fmin, bool& failed) {
  failed = false;
  constexpr double GoldenStep = 0.381966;
  constexpr double Absolute = 1e-10;
  constexpr int MostIterations = 1000;
  double low = std::min(a, c), high = std::max(a, c);
  double x = b, w = b, v = b;
  double fx = function(x);
  double fw = fx, fv = fx;
  double d = 0.0, e = 0.0;
  for (int iteration = 1; iteration <= MostIterations; ++iteration) {
    const double middle = 0.5 * (low + high);
    const double tol1 = tolerance * std::fabs(x) + Absolute;
    const double tol2 = 2.0 * tol1;
    if (std::fabs(x - middle) <= tol2 - 0.5 * (high - low)) {
      xmin = x;
      fmin = fx;
      return;
    }
    bool golden = true;
    if (std::fabs(e) > tol1) {
      // Try a parabola through x, w and v.
      const double r = (x - w) * (fx - fv);
      double q = (x - v) * (fx - fw);
      double p = (x - v) * q - (x - w) * r;
      q = 2.0 * (q - r);
      if (q > 0.0) p = -p;
      q = std::fabs(q);
      const double previous = e;
      e = d;
      if (!(std::fabs(p) >= std::fabs(0.5 * q * previous) || p <= q * (low - x) ||
            p >= q * (high - x))) {
        d = p / q;
        const double u = x + d;
        if (u - low < tol2 || high - u < tol2) d = std::copysign(tol1, middle - x);
        golden = false;
      }
    }
    if (golden) {
      e = x >= middle ? low - x : high - x;
      d = GoldenStep * e;
    }
    const double u = std::fabs(d) >= tol1 ? x + d : x + std::copysign(tol1, d);
    const double fu = function(u);
    if (fu <= fx) {
      if (u >= x)
        low = x;
      else
        high = x;
      v = w;
      w = x;
      x = u;
      fv = fw;
      fw = fx;
      fx = fu;
    } else {
      if (u < x)
        low = u;
      else
        high = u;
      if (fu <= fw || w == x) {
        v = w;
        w = u;
        fv = fw;
        fw = fu;
      } else if (fu <= fv || v == x || v == w) {
        v = u;
        fv = fu;
      }
    }
  }
  xmin = x;
  fmin = fx;
  fail("(FMNBRN) Max number of iterations exceeded!", failed);
}

}  // namespace kntr::spline
