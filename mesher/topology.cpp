#include "mesher/topology.h"

#include "framework/text.h"
#include "mesher/hash.h"

namespace kntr::mesher {

using framework::fail;

Topology& topology() {
  static Topology tables;
  return tables;
}

void clearTopology() {
  Topology& t = topology();
  t.NumVertices = 0;
  t.NumEdges = 0;
  t.NumFaces = 0;
  t.EdgeHashCount.fill(0);
  t.FaceEdgeHashCount.fill(0);
  t.FaceVertexHashCount.fill(0);
  t.VertexFaceCount.fill(0);
  t.VertexClass.fill(0);
}

namespace {

int edgeKey(int edge, bool& status) {
  const Topology& t = topology();
  return IHASH2(t.EdgeVertex(edge, 1), t.EdgeVertex(edge, 2), EdgeHashSize, status);
}

int faceEdgeKey(int face, bool& status) {
  const Topology& t = topology();
  const int keys[3] = {t.FaceEdge(face, 1), t.FaceEdge(face, 2), t.FaceEdge(face, 3)};
  return IHASHN(3, View1<const int>(keys, 3), FaceEdgeHashSize, status);
}

int faceVertexKey(int face, bool& status) {
  const Topology& t = topology();
  const int keys[3] = {t.FaceVertex(face, 1), t.FaceVertex(face, 2), t.FaceVertex(face, 3)};
  return IHASHN(3, View1<const int>(keys, 3), FaceVertexHashSize, status);
}

bool sameSet(int a1, int a2, int a3, int b1, int b2, int b3) {
  auto has = [&](int v) { return v == b1 || v == b2 || v == b3; };
  auto back = [&](int v) { return v == a1 || v == a2 || v == a3; };
  return has(a1) && has(a2) && has(a3) && back(b1) && back(b2) && back(b3);
}

// A vertex lies on the boundary when one of its edges has a single face.
void classify(int v) {
  Topology& t = topology();
  int vertexClass = InteriorVertex;
  for (int k = 1; k <= t.VertexFaceCount(v); ++k) {
    const int f = t.VertexFace(v, k);
    for (int j = 1; j <= MaxFaceVertices; ++j) {
      const int e = t.FaceEdge(f, j);
      if ((t.EdgeVertex(e, 1) == v || t.EdgeVertex(e, 2) == v) && t.EdgeClass(e) == BoundaryEdge) {
        vertexClass = BoundaryVertex;
      }
    }
  }
  t.VertexClass(v) = vertexClass;
}

}  // namespace

void MKEVHS(int edge, bool& status) {
  Topology& t = topology();
  const int key = edgeKey(edge, status);
  if (status) return;
  if (t.EdgeHashCount(key) >= EdgeHashSlots) {
    fail("(MKEVHS) Edge->vertex hash list overflowed by too many collisions!", status);
    return;
  }
  t.EdgeHash(key, ++t.EdgeHashCount(key)) = edge;
}

void MKFEHS(int face, bool& status) {
  Topology& t = topology();
  const int key = faceEdgeKey(face, status);
  if (status) return;
  if (t.FaceEdgeHashCount(key) >= FaceEdgeHashSlots) {
    fail("(MKFEHS) Face->edge hash list overflowed by too many collisions!", status);
    return;
  }
  t.FaceEdgeHash(key, ++t.FaceEdgeHashCount(key)) = face;
}

void MKFVHS(int face, bool& status) {
  Topology& t = topology();
  const int key = faceVertexKey(face, status);
  if (status) return;
  if (t.FaceVertexHashCount(key) >= FaceVertexHashSlots) {
    fail("(MKFVHS) Face->vertex hash list overflowed by too many collisions!", status);
    return;
  }
  t.FaceVertexHash(key, ++t.FaceVertexHashCount(key)) = face;
}

void ISFACE(int v1, int v2, int v3, int& face, bool& status) {
  status = false;
  face = 0;
  Topology& t = topology();
  const int v[3] = {v1, v2, v3};
  for (const int vertex : v) {
    if (vertex < 1 || vertex > MaxTopologyVertices) {
      fail("(ISFACE) Illegal topology vertex index!", status);
      return;
    }
  }

  // A face of the same vertices is there already.
  const int vertexKey = IHASHN(3, View1<const int>(v, 3), FaceVertexHashSize, status);
  if (status) return;
  for (int k = 1; k <= t.FaceVertexHashCount(vertexKey); ++k) {
    const int f = t.FaceVertexHash(vertexKey, k);
    if (sameSet(v1, v2, v3, t.FaceVertex(f, 1), t.FaceVertex(f, 2), t.FaceVertex(f, 3))) {
      face = f;
      return;
    }
  }
  if (t.NumFaces >= MaxFaces) {
    fail("(ISFACE) Max number of faces exceeded!", status);
    return;
  }
  if (t.FaceVertexHashCount(vertexKey) >= FaceVertexHashSlots) {
    fail("(ISFACE) Face->vertex hash list overflowed by too many collisions!", status);
    return;
  }
  for (const int vertex : v) {
    if (t.VertexFaceCount(vertex) >= MaxVertexFaces) {
      fail("(ISFACE) Vertex->Face list overflowed!", status);
      return;
    }
  }
  const int f = ++t.NumFaces;
  for (int j = 1; j <= 3; ++j) t.FaceVertex(f, j) = v[j - 1];

  // Find or make the edge of each side.
  for (int j = 1; j <= 3; ++j) {
    const int a = v[j - 1], b = v[j % 3];
    const int key = IHASH2(a, b, EdgeHashSize, status);
    if (status) return;
    int edge = 0;
    for (int k = 1; k <= t.EdgeHashCount(key) && edge == 0; ++k) {
      const int e = t.EdgeHash(key, k);
      if ((t.EdgeVertex(e, 1) == a && t.EdgeVertex(e, 2) == b) ||
          (t.EdgeVertex(e, 1) == b && t.EdgeVertex(e, 2) == a)) {
        edge = e;
      }
    }
    if (edge == 0) {
      if (t.NumEdges >= MaxEdges) {
        fail("(ISFACE) Max number of edges exceeded!", status);
        return;
      }
      if (t.EdgeHashCount(key) >= EdgeHashSlots) {
        fail("(ISFACE) Edge->vertex hash list overflowed by too many collisions!", status);
        return;
      }
      edge = ++t.NumEdges;
      t.EdgeVertex(edge, 1) = a;
      t.EdgeVertex(edge, 2) = b;
      t.EdgeFaceCount(edge) = 0;
      MKEVHS(edge, status);
      if (status) return;
    }
    const int count = ++t.EdgeFaceCount(edge);
    if (count <= MaxEdgeFaces) t.EdgeFace(edge, count) = f;
    t.EdgeClass(edge) = count > 1 ? InnerEdge : BoundaryEdge;
    t.FaceEdge(f, j) = edge;
  }

  const int edgeSetKey = faceEdgeKey(f, status);
  if (status) return;
  if (t.FaceEdgeHashCount(edgeSetKey) >= FaceEdgeHashSlots) {
    fail("(ISFACE) Face->edge hash list overflowed by too many collisions!", status);
    return;
  }
  MKFEHS(f, status);
  if (status) return;
  MKFVHS(f, status);
  if (status) return;

  for (const int vertex : v) {
    t.VertexFace(vertex, ++t.VertexFaceCount(vertex)) = f;
    if (vertex > t.NumVertices) t.NumVertices = vertex;
  }
  for (const int vertex : v) classify(vertex);
  face = f;
}

void IQVNBF(int vertex, int maxNeighbours, int& count, View1<int> neighbours, bool& status) {
  status = false;
  count = 0;
  const Topology& t = topology();
  if (vertex < 1 || vertex > t.NumVertices) {
    fail("(IQVNBF) Illegal topology vertex index!", status);
    return;
  }
  for (int k = 1; k <= t.VertexFaceCount(vertex); ++k) {
    const int f = t.VertexFace(vertex, k);
    for (int j = 1; j <= MaxFaceVertices; ++j) {
      const int e = t.FaceEdge(f, j);
      int other = 0;
      if (t.EdgeVertex(e, 1) == vertex) other = t.EdgeVertex(e, 2);
      if (t.EdgeVertex(e, 2) == vertex) other = t.EdgeVertex(e, 1);
      if (other == 0 || other == vertex) continue;
      bool known = false;
      for (int i = 1; i <= count && !known; ++i) known = neighbours(i) == other;
      if (!known && count < maxNeighbours) neighbours(++count) = other;
    }
  }
}

}  // namespace kntr::mesher
