// The mesh driver: from the profile's closed curves to triangles.
//
//   IQPMSH  mesh the region between the profile's closed curves
//   TRNSM2  mesh one region (exterior polygon and holes) for a triangle count
//   TRASM2  mesh one region for a required mean quality
#pragma once

#include "framework/onebased.h"
#include "mesher/structure.h"

namespace kntr::mesher {

// Quality figures of the last mesh made by IQPMSH, kept for display.
struct MeshStatistics {
  double minimum = 0.0;
  double maximum = 0.0;
  double mean = 0.0;
  double deviation = 0.0;
};
MeshStatistics& lastMeshStatistics();

// IQPMSH: mesh the profile. Vertices and triangles go to the caller's arrays
// (capacities maxVertices and maxTriangles, normally 10000 and 12000), with
// the quality of each triangle.
void IQPMSH(int maxVertices, int maxTriangles, View1<double> quality, int& numVertices,
            View1<XY> vertices, int& numTriangles, View1<Triangle> triangles, bool& status);

// TRNSM2: mesh one region. `polySizes` holds numHoles + 1 sizes, exterior
// first; the polygons lie one after another at the start of `vertices`, all
// counterclockwise. `count` is the desired number of triangles on entry and
// the number made on return; numVertices is set from the sizes and counts
// up. `vertices.size()` and `triangles.size()` are the capacities.
void TRNSM2(int numHoles, View1<const int> polySizes, bool smooth, int& numVertices,
            View1<XY> vertices, int& count, View1<Triangle> triangles, bool& status);

// TRASM2: the same, searching the triangle count that gives the required
// mean quality within at most maxIterations passes.
void TRASM2(int maxIterations, double requiredQuality, int numHoles, View1<const int> polySizes,
            bool smooth, int& numVertices, View1<XY> vertices, int& count,
            View1<Triangle> triangles, int& iterations, double& achievedQuality, bool& status);

}  // namespace kntr::mesher
