#include "support/mesh_fixture.h"

#include "mesher/boundary.h"
#include "mesher/holes.h"
#include "mesher/reflex.h"

namespace kntr::testing {

namespace {

Array1<XY, TestVertexRoom> vertexStore;
Array1<int, mesher::MaxHoles + 200> sizeStore;

// Messages of the decomposition stages.
const char* const decompositionMessages[] = {
    "(IZMCPR) Max number of internal holes exceeded!",
    "(IZMCPR) Max number of polygon vertices exceeded!",
    "(JNHBOB) Max number of vertices exceeded!",
    "(JNHBOB) Max number of polygon vertices exceeded!",
    "(JNHBOB) Failed to locate subregion above top hole vertex!",
    "(JNHBOB) Internal error - problems with angular tolerance!",
    "(RSRFVX) Attempt to overflow integer auxiliary vector!",
    "(RSRFVX) Attempt to overflow double precision auxiliary vector!",
    "(INSEDG) Max number of polygons exceeded!",
    "(INSEDG) Max number of polygon vertices exceeded!",
    "(INSVTX) Max number of vertices exceeded!",
    "(INSVTX) Max number of polygon vertices exceeded!",
    "(MKVONB) Encountered parallel edges when intersecting!",
    "(SCVPGR) Internal error - attempt to underflow vertex stack!",
    "(SCVPG1) Internal error - index out of range when scanning!",
    "(SCVPG2) Internal error - index out of range when scanning!",
    "(SCVPG3) Internal error - index out of range when scanning!",
    "(SCVPG4) Internal error - index out of range when scanning!",
};

// Messages of the driver, the density, triangle and smoothing stages.
const char* const laterMessages[] = {
    "() error 7",
    "(DSQCPG) Internal error - could not establish outer diameter of convex polygon!",
    "(IDSQCP) Internal error - could not establish inner diameter of convex polygon!",
    "(IQPLDR) Found two consecutive coinciding points!",
    "(IQTRCE) Could not locate two triangles with specified edge!",
    "(ISFACE) Edge->vertex hash list overflowed by too many collisions!",
    "(ISFACE) Max number of edges exceeded!",
    "(ISFACE) Vertex->Face list overflowed!",
    "(MKCPBM) Max allowed number of vertices exceeded!",
    "(MRGTRI) Internal error - illegal triangle formed!",
    "(SDCPMV) Could not locate separator within given angular tolerance!",
    "(SHRNCP) Encountered parallel edges when intersecting !",
    "(TRDLCP) Max number of mesh triangles exceeded!",
    "(TRQUCP) Attempt to overflow closed walk list!",
    "(TRQUCP) Max number of triangles exceeded!",
    "(TRQUCP) Max number of vertices exceeded!",
};

template <std::size_t N>
bool startsWithOneOf(const std::string& message, const char* const (&known)[N]) {
  for (const char* text : known)
    if (message.rfind(text, 0) == 0) return true;
  return false;
}

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

std::string firstMesherMessage(const std::string& output) {
  for (std::size_t at = 0; (at = output.find('(', at)) != std::string::npos;) {
    const std::size_t end = output.find('\n', at);
    if (output.find(')', at) - at == 7 || output.compare(at, 2, "()") == 0)
      return output.substr(at, end == std::string::npos ? std::string::npos : end - at);
    at = end == std::string::npos ? output.size() : end;
  }
  return "";
}

bool isDecompositionMessage(const std::string& message) {
  return startsWithOneOf(message, decompositionMessages);
}

bool isMesherMessage(const std::string& message) {
  return isDecompositionMessage(message) || startsWithOneOf(message, laterMessages);
}

}  // namespace kntr::testing
