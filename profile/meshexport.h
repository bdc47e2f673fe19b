// Export of the profile's interior mesh to a finite element file or a
// viewer file.
//
// The mesh is made anew for each export from the profile and its mesh
// settings, and nothing of it is kept. The finite element file (Orvik) has
// no header: one fixed-format record per vertex, then one per triangle. The
// viewer file (TVEW) starts with the 12-line file header, data version 4,
// followed by free-form sections of fields, groups, vertices, strokes,
// polylines and polygons; each triangle is a polygon that carries its
// quality once at each of its three corners.
//
//   XPMESH  mesh the profile and export it in a format the user selects
//   PTFEMM  write a mesh to a finite element file
//   PTTVEW  write a mesh with triangle qualities to a viewer file
#pragma once

#include <string_view>

#include "framework/files.h"
#include "framework/onebased.h"
#include "mesher/structure.h"

namespace kntr::profile {

// Data version of the viewer file.
inline constexpr int ViewerFileVersion = 4;
// Longest file name the export asks for.
inline constexpr int MeshFileNameLength = 80;

// XPMESH: mesh the profile, show the menu "EXPORT FORMAT SELECTION", ask
// for the file name and write the file.
//   status: set on failure; the message has been shown.
void XPMESH(bool& status);

// PTFEMM: write vertices(1..numVertices) and triangles(1..numTriangles) to
// the finite element file `name`, asking before an existing file is
// overwritten. A cancel of that question leaves with no failure.
//   status: set on failure or when the user declines; the message has been shown.
void PTFEMM(int numVertices, View1<const XY> vertices, int numTriangles,
            View1<const mesher::Triangle> triangles, std::string_view name, bool& status);

// PTTVEW: write the mesh with the quality of each triangle to the viewer
// file `name`, asking before an existing file is overwritten.
//   status: set on failure or when the user declines; the message has been shown.
void PTTVEW(int numVertices, View1<const XY> vertices, int numTriangles,
            View1<const mesher::Triangle> triangles, View1<const double> quality,
            std::string_view name, bool& status);

// What the opening of a mesh file came to.
enum class Opening { Ready, Cancelled, Failed };

// The opening every mesh writer shares: a unit, the overwrite question for
// an existing file, the file itself, and the notice "Storing interior mesh".
Opening openMeshFile(std::string_view name, framework::AtomicWriter& file);

// Puts a written mesh file in place; false after the failure has been reported.
bool closeMeshFile(std::string_view name, framework::AtomicWriter& file);

}  // namespace kntr::profile
