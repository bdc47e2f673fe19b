// The topology of a triangle mesh for smoothing: faces, edges, vertices.
//
// Faces are added one by one; edges are found or made from their two
// vertices through a hash table keyed by the vertex pair, faces are filed by
// their vertex set and by their edge set. Each edge knows its faces and
// each vertex its faces, from which the classes and neighbours follow: an
// edge of one face lies on the boundary (class 13), of two inside (11); a
// vertex on a boundary edge has class 23, any other one 21.
//
// The edge table has 199 entries, the table of faces by edges 76 and the
// table of faces by vertices 65. Each entry is a chain with room for about
// four times its share of the largest mesh, so that the chains do not
// overflow before the limits of faces and edges are reached.
//
//   ISFACE  add a face of three vertices, making its edges as needed
//   MKEVHS  file an edge in the edge hash table by its vertices
//   MKFEHS  file a face in the face hash table by its edges
//   MKFVHS  file a face in the face hash table by its vertices
//   IQVNBF  the neighbour vertices of a vertex, in the order found
#pragma once

#include "framework/onebased.h"
#include "mesher/limits.h"

namespace kntr::mesher {

inline constexpr int EdgeHashSize = 199;
inline constexpr int FaceEdgeHashSize = 76;
inline constexpr int FaceVertexHashSize = 65;
inline constexpr int EdgeHashSlots = 4 * MaxEdges / EdgeHashSize;
inline constexpr int FaceEdgeHashSlots = 4 * MaxFaces / FaceEdgeHashSize;
inline constexpr int FaceVertexHashSlots = 4 * MaxFaces / FaceVertexHashSize;
// Vertex numbers the tables can hold.
inline constexpr int MaxTopologyVertices = 20000;

// Classes of edges and vertices.
inline constexpr int InnerEdge = 11;
inline constexpr int BoundaryEdge = 13;
inline constexpr int InteriorVertex = 21;
inline constexpr int BoundaryVertex = 23;

struct Topology {
  int NumVertices = 0;  // highest vertex number met
  int NumEdges = 0;
  int NumFaces = 0;

  Array2<int, MaxFaces, MaxFaceVertices> FaceVertex;
  Array2<int, MaxFaces, MaxFaceVertices> FaceEdge;  // side j: vertex j to vertex j + 1
  Array2<int, MaxEdges, 2> EdgeVertex;
  Array2<int, MaxEdges, MaxEdgeFaces> EdgeFace;
  Array1<int, MaxEdges> EdgeFaceCount;  // may pass MaxEdgeFaces; only the first are kept
  Array1<int, MaxEdges> EdgeClass;
  Array2<int, MaxTopologyVertices, MaxVertexFaces> VertexFace;
  Array1<int, MaxTopologyVertices> VertexFaceCount;
  Array1<int, MaxTopologyVertices> VertexClass;  // 0 for a vertex of no face

  // Hash chains: the count of each entry and its items.
  Array1<int, EdgeHashSize> EdgeHashCount;
  Array2<int, EdgeHashSize, EdgeHashSlots> EdgeHash;
  Array1<int, FaceEdgeHashSize> FaceEdgeHashCount;
  Array2<int, FaceEdgeHashSize, FaceEdgeHashSlots> FaceEdgeHash;
  Array1<int, FaceVertexHashSize> FaceVertexHashCount;
  Array2<int, FaceVertexHashSize, FaceVertexHashSlots> FaceVertexHash;
};

// The one instance.
Topology& topology();

// Empty the tables.
void clearTopology();

// ISFACE: add the face (v1, v2, v3), or find it when a face of the same
// vertices is there already; `face` is its number.
//   status: set on failure; the message has been shown.
void ISFACE(int v1, int v2, int v3, int& face, bool& status);

// MKEVHS: file `edge` in the edge hash table by its two vertices.
//   status: set when its chain is full; the message has been shown.
void MKEVHS(int edge, bool& status);

// MKFEHS: file `face` in the face hash table by its three edges.
//   status: set when its chain is full; the message has been shown.
void MKFEHS(int face, bool& status);

// MKFVHS: file `face` in the face hash table by its three vertices.
//   status: set when its chain is full; the message has been shown.
void MKFVHS(int face, bool& status);

// IQVNBF: the vertices joined to `vertex` by an edge, each once, in the
// order met through its faces; at most `maxNeighbours` are kept.
//   status: set when the vertex is not in the tables; the message has been shown.
void IQVNBF(int vertex, int maxNeighbours, int& count, View1<int> neighbours, bool& status);

}  // namespace kntr::mesher
