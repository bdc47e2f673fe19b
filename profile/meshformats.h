// Mesh files in the formats that finite element programs and viewers read.
//
// Each writer takes the mesh as the mesher gives it (vertices, triangles
// and, where the format carries it, the quality of each triangle), asks
// before an existing file is replaced, and puts the file in place whole.
//
//   PTGMSH  write a Gmsh MSH 4.1 file with a physical group per boundary and the surface
//   PTVTKL  write a legacy ASCII VTK unstructured grid with the triangle quality
//   PTVTUX  write an XML VTK unstructured grid (.vtu) with the triangle quality
//   PTNSTR  write a Nastran bulk deck of GRID and CTRIA3 entries
//   IQMBND  find the boundary loops of a mesh, outer boundaries first
#pragma once

#include <string_view>
#include <vector>

#include "framework/onebased.h"
#include "mesher/structure.h"

namespace kntr::profile {

// Property number given to every CTRIA3 of the Nastran deck.
inline constexpr int NastranShellProperty = 1;

// One closed boundary of a mesh: its vertex numbers in order, walking with
// the mesh on the left, and whether it is an outer boundary or a hole.
struct MeshBoundary {
  std::vector<int> vertices;
  bool outer = false;
};

// IQMBND: the boundary loops of a mesh: edges that only one triangle has,
// chained into closed loops. Outer boundaries (counterclockwise) come
// first, then the holes, each group in the order of its lowest edge.
std::vector<MeshBoundary> IQMBND(int numVertices, View1<const XY> vertices, int numTriangles,
                                 View1<const mesher::Triangle> triangles);

// PTGMSH: the mesh as Gmsh MSH 4.1 ASCII. Each boundary loop is a curve
// entity with its line elements and a physical group ("outer boundary",
// "hole 1", ...); the triangles are one surface entity in the physical
// group "surface".
//   status: set on failure or when the user declines to overwrite.
void PTGMSH(int numVertices, View1<const XY> vertices, int numTriangles,
            View1<const mesher::Triangle> triangles, std::string_view name, bool& status);

// PTVTKL: the mesh as a legacy ASCII VTK unstructured grid, with the cell
// field "quality".
void PTVTKL(int numVertices, View1<const XY> vertices, int numTriangles,
            View1<const mesher::Triangle> triangles, View1<const double> quality,
            std::string_view name, bool& status);

// PTVTUX: the mesh as an XML VTK unstructured grid in ASCII, with the cell
// field "quality".
void PTVTUX(int numVertices, View1<const XY> vertices, int numTriangles,
            View1<const mesher::Triangle> triangles, View1<const double> quality,
            std::string_view name, bool& status);

// PTNSTR: the mesh as a Nastran bulk deck: one large-field GRID* per vertex
// and one CTRIA3 per triangle, all of property NastranShellProperty, whose
// PSHELL and material the user adds.
void PTNSTR(int numVertices, View1<const XY> vertices, int numTriangles,
            View1<const mesher::Triangle> triangles, std::string_view name, bool& status);

}  // namespace kntr::profile
