// What the meshing benchmarks share: a reference profile of data/bench read
// by the module's own data file reader, and the arrays a mesh run fills.
#pragma once

#include <cmath>
#include <string>

#include "framework/onebased.h"
#include "mesher/structure.h"
#include "platform/console.h"
#include "profile/block.h"
#include "profile/datafile.h"

namespace kntr::bench {

// Loads a reference profile into the profile block.
inline bool loadProfile(const std::string& name) {
  // The module's notices go to a memory screen, emptied as the runs go.
  platform::testconsole::attach("");
  profile::resetProfileBlock();
  bool loaded = false, status = false;
  profile::GTKNTR(std::string(KNTR_SOURCE_DIR) + "/data/bench/" + name, true, loaded, status);
  return loaded && !status;
}

// The mesh arrays of one run.
struct Result {
  Array1<XY, mesher::ResultVertices> vertices;
  Array1<mesher::Triangle, mesher::ResultTriangles> triangles;
  Array1<double, mesher::ResultTriangles> quality;
};

inline Result& result() {
  static Result r;
  return r;
}


// One outer curve and nine round holes, 100 points each (every tenth a
// knuckle), in a 100 by 100 box: the picture the drawing benchmarks draw.
inline void buildTenCurveProfile() {
  constexpr double Pi = 3.141592653589793;
  platform::testconsole::attach("");
  profile::resetProfileBlock();
  profile::ProfileData& p = profile::profile();
  p.PRFTYP = profile::SplineProfile;
  p.PRBBOX = Array1<double, 4>{{0.0, 100.0, 0.0, 100.0}};
  p.BBOXOK = true;
  p.PRREFP = Array1<double, 2>{{50.0, 50.0}};
  profile::IZACCY();
  p.NPRCRV = profile::MaxCurves;
  for (int c = 1; c <= profile::MaxCurves; ++c) {
    const bool outer = c == 1;
    const double cx = outer ? 50.0 : 30.0 + 20.0 * ((c - 2) % 3);
    const double cy = outer ? 50.0 : 30.0 + 20.0 * ((c - 2) / 3);
    const double r = outer ? 48.0 : 6.0;
    p.NPRPNT(c) = profile::MaxCurvePoints;
    p.PRCLSD(c) = true;
    p.PRPARM(c) = profile::ChordLength;
    for (int j = 1; j <= profile::MaxCurvePoints; ++j) {
      const double a = 2.0 * Pi * (j - 1) / profile::MaxCurvePoints;
      p.PRPNTS(c, j) = Array1<double, 2>{{cx + r * std::cos(a), cy + r * std::sin(a)}};
      const bool knuckle = j % 10 == 0;
      p.PRPTYP(c, j) = knuckle ? profile::Knuckle : profile::ContinuousCurvature;
      p.PRKWGT(c, j) = knuckle ? 1.0 : 0.0;
    }
  }
  p.CURCRV = 1;
  p.CURPNT = 1;
}

}  // namespace kntr::bench
