#include "support/mesh_runner.h"

#include "mesher/boundary.h"
#include "mesher/holes.h"
#include "mesher/reflex.h"
#include "mesher/structure.h"

namespace kntr::testing {

namespace {
Array1<XY, TestVertexRoom> vertexStore;
Array1<int, mesher::MaxHoles + 200> sizeStore;
}  // namespace

View1<XY> testVertices() {
  return View1<XY>(vertexStore);
}

bool decomposeRegion(const TestRegion& region) {
  mesher::MeshData& m = mesher::meshData();
  const int holes = layOut(region, vertexStore, sizeStore);
  m.Vertices = View1<XY>(vertexStore);
  m.MeshTol = mesher::meshTolerance();
  m.SeparatorAngle = 30.0 * mesher::Pi / 180.0;
  m.MinSeparatorAngle = 20.0 * mesher::Pi / 180.0;
  bool failed = false;
  View1<int> holeList(m.IntAux.data(), 2 * holes);
  mesher::IZMCPR(m, holes, sizeStore, holeList, failed);
  if (failed) return false;
  mesher::JNHOLS(m, holes, holeList, View1<int>(m.IntAux).from(2 * holes + 1),
                 View1<double>(m.RealAux), failed);
  if (failed) return false;
  mesher::RSRFAL(m, View1<int>(m.IntAux), View1<double>(m.RealAux), failed);
  return !failed;
}

std::vector<std::string> mesherMessages(const std::string& output) {
  std::vector<std::string> found;
  std::size_t at = 0;
  while ((at = output.find('(', at)) != std::string::npos) {
    const std::size_t close = output.find(')', at);
    const std::size_t end = output.find_first_of("\n", at);
    if (close != std::string::npos && close - at == 7) {
      found.push_back(output.substr(at, end == std::string::npos ? std::string::npos : end - at));
    }
    at = end == std::string::npos ? output.size() : end;
  }
  return found;
}

}  // namespace kntr::testing
