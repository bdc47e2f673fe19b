#include "profile/meshformats.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <string>
#include <unordered_map>

#include "framework/files.h"
#include "framework/format.h"
#include "framework/text.h"
#include "profile/meshexport.h"

namespace kntr::profile {

namespace {

// Twice the signed area of a triangle; positive when counterclockwise.
double twiceArea(View1<const XY> v, const mesher::Triangle& t) {
  const XY a = v(t(1)), b = v(t(2)), c = v(t(3));
  return (b.x - a.x) * (c.y - a.y) - (c.x - a.x) * (b.y - a.y);
}

// An extent in x and y.
struct Extent {
  double minX = 0.0, maxX = 0.0, minY = 0.0, maxY = 0.0;
  bool empty = true;
  void add(const XY& p) {
    if (empty) {
      minX = maxX = p.x;
      minY = maxY = p.y;
      empty = false;
      return;
    }
    minX = std::min(minX, p.x);
    maxX = std::max(maxX, p.x);
    minY = std::min(minY, p.y);
    maxY = std::max(maxY, p.y);
  }
  // "minX minY 0 maxX maxY 0" as an entity's bounding box.
  std::string text() const {
    return fmt::exact(minX) + " " + fmt::exact(minY) + " 0 " + fmt::exact(maxX) + " " +
           fmt::exact(maxY) + " 0";
  }
};

// Writes the records that `write` makes into the file `name`, with the
// opening and closing all mesh writers share. `write` returns 0 or the
// I/O status of the first failed write.
template <class Writer>
void writeMeshFile(std::string_view name, bool& status, Writer write) {
  status = false;
  framework::AtomicWriter file;
  const Opening opening = openMeshFile(name, file);
  if (opening != Opening::Ready) {
    status = opening == Opening::Failed;
    return;
  }
  const int io = write(file);
  if (io != 0) {
    framework::IOERRM('W', name, io);
    status = true;
    return;
  }
  status = !closeMeshFile(name, file);
}

// A real in a large field of Nastran: 16 characters with ten significant
// digits.
std::string nastranLarge(double value) {
  if (std::fabs(value) < 1e-99) value = 0.0;
  char buffer[40];
  std::snprintf(buffer, sizeof buffer, "%16.9E", value);
  std::string text = buffer;
  if (text.size() > 16) {
    std::snprintf(buffer, sizeof buffer, "%16.8E", value);
    text = buffer;
  }
  return text;
}

// An integer right-aligned in a field of `width`.
std::string field(long long value, int width) {
  std::string text = std::to_string(value);
  if (static_cast<int>(text.size()) < width) text.insert(0, width - text.size(), ' ');
  return text;
}

// A text left-aligned in a field of `width`.
std::string leftField(std::string_view text, int width) {
  std::string out(text);
  if (static_cast<int>(out.size()) < width) out.append(width - out.size(), ' ');
  return out;
}

}  // namespace

std::vector<MeshBoundary> IQMBND(int numVertices, View1<const XY> vertices, int numTriangles,
                                 View1<const mesher::Triangle> triangles) {
  // Count the triangles of each edge, and keep each edge as its one
  // triangle runs it with the triangle on the left.
  struct Edge {
    int from = 0, to = 0, count = 0;
  };
  std::unordered_map<long long, Edge> edges;
  std::vector<long long> order;
  for (int t = 1; t <= numTriangles; ++t) {
    const mesher::Triangle& tri = triangles(t);
    const bool ccw = twiceArea(vertices, tri) >= 0.0;
    for (int j = 1; j <= 3; ++j) {
      int a = tri(j), b = tri(j == 3 ? 1 : j + 1);
      if (!ccw) std::swap(a, b);
      const long long key =
          static_cast<long long>(std::min(a, b)) * (numVertices + 1LL) + std::max(a, b);
      Edge& e = edges[key];
      if (e.count == 0) {
        e.from = a;
        e.to = b;
        order.push_back(key);
      }
      e.count += 1;
    }
  }

  // The boundary edges leaving each vertex.
  std::vector<std::vector<long long>> leaving(static_cast<std::size_t>(numVertices) + 1);
  std::sort(order.begin(), order.end());
  for (const long long key : order) {
    const Edge& e = edges[key];
    if (e.count == 1) leaving[static_cast<std::size_t>(e.from)].push_back(key);
  }

  // Chain them into loops.
  std::vector<MeshBoundary> outer, holes;
  std::unordered_map<long long, bool> used;
  for (const long long start : order) {
    const Edge& first = edges[start];
    if (first.count != 1 || used[start]) continue;
    MeshBoundary loop;
    long long key = start;
    double area = 0.0;
    for (;;) {
      used[key] = true;
      const Edge& e = edges[key];
      loop.vertices.push_back(e.from);
      const XY a = vertices(e.from), b = vertices(e.to);
      area += a.x * b.y - b.x * a.y;
      long long next = -1;
      for (const long long candidate : leaving[static_cast<std::size_t>(e.to)]) {
        if (!used[candidate]) {
          next = candidate;
          break;
        }
      }
      if (next < 0) break;
      key = next;
    }
    loop.outer = area > 0.0;
    (loop.outer ? outer : holes).push_back(std::move(loop));
  }
  outer.insert(outer.end(), std::make_move_iterator(holes.begin()),
               std::make_move_iterator(holes.end()));
  return outer;
}

void PTGMSH(int numVertices, View1<const XY> vertices, int numTriangles,
            View1<const mesher::Triangle> triangles, std::string_view name, bool& status) {
  const std::vector<MeshBoundary> loops = IQMBND(numVertices, vertices, numTriangles, triangles);
  const int numLoops = static_cast<int>(loops.size());
  int numOuter = 0;
  for (const MeshBoundary& loop : loops) numOuter += loop.outer ? 1 : 0;

  writeMeshFile(name, status, [&](framework::AtomicWriter& file) {
    int io = 0;
    auto put = [&](const std::string& line) {
      if (io == 0) io = file.writeLine(line);
    };
    put("$MeshFormat");
    put("4.1 0 8");
    put("$EndMeshFormat");

    // Physical groups: one per loop (dimension 1), then the surface.
    put("$PhysicalNames");
    put(std::to_string(numLoops + 1));
    int hole = 0, outer = 0;
    for (int k = 1; k <= numLoops; ++k) {
      std::string group;
      if (loops[static_cast<std::size_t>(k - 1)].outer) {
        outer += 1;
        group = numOuter == 1 ? "outer boundary" : "outer boundary " + std::to_string(outer);
      } else {
        hole += 1;
        group = "hole " + std::to_string(hole);
      }
      put("1 " + std::to_string(k) + " \"" + group + "\"");
    }
    put("2 " + std::to_string(numLoops + 1) + " \"surface\"");
    put("$EndPhysicalNames");

    // Entities: a closed curve per loop, and the one surface they bound.
    put("$Entities");
    put("0 " + std::to_string(numLoops) + " 1 0");
    Extent all;
    for (int k = 1; k <= numLoops; ++k) {
      Extent extent;
      for (const int v : loops[static_cast<std::size_t>(k - 1)].vertices) extent.add(vertices(v));
      put(std::to_string(k) + " " + extent.text() + " 1 " + std::to_string(k) + " 0");
    }
    for (int v = 1; v <= numVertices; ++v) all.add(vertices(v));
    std::string surface =
        "1 " + all.text() + " 1 " + std::to_string(numLoops + 1) + " " + std::to_string(numLoops);
    for (int k = 1; k <= numLoops; ++k) surface += " " + std::to_string(k);
    put(surface);
    put("$EndEntities");

    // Nodes, all in one block on the surface, so that their order in the
    // file is the order of their numbers.
    put("$Nodes");
    put("1 " + std::to_string(numVertices) + " 1 " + std::to_string(numVertices));
    put("2 1 0 " + std::to_string(numVertices));
    for (int v = 1; v <= numVertices && io == 0; ++v) put(std::to_string(v));
    for (int v = 1; v <= numVertices && io == 0; ++v)
      put(fmt::exact(vertices(v).x) + " " + fmt::exact(vertices(v).y) + " 0");
    put("$EndNodes");

    // Elements: the line pieces of each loop, then the triangles.
    int numLines = 0;
    for (const MeshBoundary& loop : loops) numLines += static_cast<int>(loop.vertices.size());
    const int numElements = numLines + numTriangles;
    put("$Elements");
    put(std::to_string(numLoops + 1) + " " + std::to_string(numElements) + " 1 " +
        std::to_string(numElements));
    int tag = 0;
    for (int k = 1; k <= numLoops && io == 0; ++k) {
      const std::vector<int>& loop = loops[static_cast<std::size_t>(k - 1)].vertices;
      const std::size_t n = loop.size();
      put("1 " + std::to_string(k) + " 1 " + std::to_string(n));
      for (std::size_t i = 0; i < n; ++i) {
        put(std::to_string(++tag) + " " + std::to_string(loop[i]) + " " +
            std::to_string(loop[(i + 1) % n]));
      }
    }
    put("2 1 2 " + std::to_string(numTriangles));
    for (int t = 1; t <= numTriangles && io == 0; ++t) {
      put(std::to_string(++tag) + " " + std::to_string(triangles(t)(1)) + " " +
          std::to_string(triangles(t)(2)) + " " + std::to_string(triangles(t)(3)));
    }
    put("$EndElements");
    return io;
  });
}

void PTVTKL(int numVertices, View1<const XY> vertices, int numTriangles,
            View1<const mesher::Triangle> triangles, View1<const double> quality,
            std::string_view name, bool& status) {
  writeMeshFile(name, status, [&](framework::AtomicWriter& file) {
    int io = 0;
    auto put = [&](const std::string& line) {
      if (io == 0) io = file.writeLine(line);
    };
    put("# vtk DataFile Version 3.0");
    put("KNTR interior mesh");
    put("ASCII");
    put("DATASET UNSTRUCTURED_GRID");
    put("POINTS " + std::to_string(numVertices) + " double");
    for (int v = 1; v <= numVertices && io == 0; ++v)
      put(fmt::exact(vertices(v).x) + " " + fmt::exact(vertices(v).y) + " 0");
    // Point numbers of VTK count from 0.
    put("CELLS " + std::to_string(numTriangles) + " " + std::to_string(4 * numTriangles));
    for (int t = 1; t <= numTriangles && io == 0; ++t) {
      put("3 " + std::to_string(triangles(t)(1) - 1) + " " + std::to_string(triangles(t)(2) - 1) +
          " " + std::to_string(triangles(t)(3) - 1));
    }
    put("CELL_TYPES " + std::to_string(numTriangles));
    for (int t = 1; t <= numTriangles && io == 0; ++t) put("5");
    put("CELL_DATA " + std::to_string(numTriangles));
    put("SCALARS quality double 1");
    put("LOOKUP_TABLE default");
    for (int t = 1; t <= numTriangles && io == 0; ++t) put(fmt::exact(quality(t)));
    return io;
  });
}

void PTVTUX(int numVertices, View1<const XY> vertices, int numTriangles,
            View1<const mesher::Triangle> triangles, View1<const double> quality,
            std::string_view name, bool& status) {
  writeMeshFile(name, status, [&](framework::AtomicWriter& file) {
    int io = 0;
    auto put = [&](const std::string& line) {
      if (io == 0) io = file.writeLine(line);
    };
    put("<?xml version=\"1.0\"?>");
    put("<VTKFile type=\"UnstructuredGrid\" version=\"0.1\" byte_order=\"LittleEndian\">");
    put("  <UnstructuredGrid>");
    put("    <Piece NumberOfPoints=\"" + std::to_string(numVertices) + "\" NumberOfCells=\"" +
        std::to_string(numTriangles) + "\">");
    put("      <Points>");
    put("        <DataArray type=\"Float64\" NumberOfComponents=\"3\" format=\"ascii\">");
    for (int v = 1; v <= numVertices && io == 0; ++v)
      put("          " + fmt::exact(vertices(v).x) + " " + fmt::exact(vertices(v).y) + " 0");
    put("        </DataArray>");
    put("      </Points>");
    put("      <Cells>");
    put("        <DataArray type=\"Int64\" Name=\"connectivity\" format=\"ascii\">");
    for (int t = 1; t <= numTriangles && io == 0; ++t) {
      put("          " + std::to_string(triangles(t)(1) - 1) + " " +
          std::to_string(triangles(t)(2) - 1) + " " + std::to_string(triangles(t)(3) - 1));
    }
    put("        </DataArray>");
    put("        <DataArray type=\"Int64\" Name=\"offsets\" format=\"ascii\">");
    for (int t = 1; t <= numTriangles && io == 0; ++t) put("          " + std::to_string(3 * t));
    put("        </DataArray>");
    put("        <DataArray type=\"UInt8\" Name=\"types\" format=\"ascii\">");
    for (int t = 1; t <= numTriangles && io == 0; ++t) put("          5");
    put("        </DataArray>");
    put("      </Cells>");
    put("      <CellData Scalars=\"quality\">");
    put("        <DataArray type=\"Float64\" Name=\"quality\" format=\"ascii\">");
    for (int t = 1; t <= numTriangles && io == 0; ++t) put("          " + fmt::exact(quality(t)));
    put("        </DataArray>");
    put("      </CellData>");
    put("    </Piece>");
    put("  </UnstructuredGrid>");
    put("</VTKFile>");
    return io;
  });
}

void PTNSTR(int numVertices, View1<const XY> vertices, int numTriangles,
            View1<const mesher::Triangle> triangles, std::string_view name, bool& status) {
  writeMeshFile(name, status, [&](framework::AtomicWriter& file) {
    int io = 0;
    auto put = [&](const std::string& line) {
      if (io == 0) io = file.writeLine(line);
    };
    put("$ KNTR interior mesh: " + std::to_string(numVertices) + " grid points, " +
        std::to_string(numTriangles) + " triangles");
    put("$ Add PSHELL " + std::to_string(NastranShellProperty) + " and its material.");
    put("BEGIN BULK");
    // A large-field GRID* on two lines: id, coordinate system (basic),
    // X and Y, then Z on the continuation.
    for (int v = 1; v <= numVertices && io == 0; ++v) {
      put("GRID*   " + leftField(std::to_string(v), 16) + std::string(16, ' ') +
          nastranLarge(vertices(v).x) + nastranLarge(vertices(v).y) + "*");
      put("*       " + nastranLarge(0.0));
    }
    for (int t = 1; t <= numTriangles && io == 0; ++t) {
      put("CTRIA3  " + field(t, 8) + field(NastranShellProperty, 8) + field(triangles(t)(1), 8) +
          field(triangles(t)(2), 8) + field(triangles(t)(3), 8));
    }
    put("ENDDATA");
    return io;
  });
}

}  // namespace kntr::profile
