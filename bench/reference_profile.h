// What the meshing benchmarks share: a reference profile of data/bench read
// by the module's own data file reader, and the arrays a mesh run fills.
#pragma once

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

}  // namespace kntr::bench
