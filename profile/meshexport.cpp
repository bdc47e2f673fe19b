#include "profile/meshexport.h"

#include <array>
#include <string>

#include "framework/format.h"
#include "framework/input.h"
#include "framework/menus.h"
#include "framework/state.h"
#include "framework/text.h"
#include "mesher/driver.h"
#include "mesher/limits.h"

namespace kntr::profile {

namespace {

// The mesh of one export, made anew each time.
struct ExportMesh {
  Array1<XY, mesher::ResultVertices> vertices;
  Array1<mesher::Triangle, mesher::ResultTriangles> triangles;
  Array1<double, mesher::ResultTriangles> quality;
};

ExportMesh& exportMesh() {
  static ExportMesh mesh;
  return mesh;
}

// A menu row as the text menu shows it: the rows break their text with "{n"
// where a graphic menu item takes a second line, and a text row has a blank
// there.
std::string textRow(std::string_view row) {
  std::string shown;
  for (std::size_t k = 0; k < row.size(); ++k) {
    if (row[k] == '{' && k + 1 < row.size() && row[k + 1] == 'n') {
      shown += ' ';
      ++k;
    } else {
      shown += row[k];
    }
  }
  return shown;
}

// Asks for the file name until one is given; false on abort. In graphic
// mode the question is put in the graphics window, where only keyboard
// input counts.
bool askFileName(std::string_view question, std::string& name) {
  const bool graphic =
      !framework::program().terminalInput && framework::graphicDialogues().GQUEST != nullptr;
  for (;;) {
    bool abort = false, failed = false;
    if (graphic) {
      bool picked = false;
      framework::graphicDialogues().GQUEST(question, "", "The mesh is written to this file", 1,
                                           picked, abort, failed);
      if (picked) {
        framework::ERRSCN("Only keyboard input is allowed!");
        continue;
      }
    } else {
      framework::ASKQST(question, "", "The mesh is written to this file", 1, abort, failed);
    }
    if (abort) return false;
    if (failed) continue;
    std::string texts[1] = {""};
    bool deflt = false;
    framework::GTCHAR(texts, MeshFileNameLength, deflt, failed);
    if (failed) continue;
    const std::string_view trimmed = fmt::trimmed(texts[0]);
    if (trimmed.empty()) continue;
    name = std::string(trimmed);
    return true;
  }
}

}  // namespace

void XPMESH(bool& status) {
  status = false;
  ExportMesh& mesh = exportMesh();
  int numVertices = 0, numTriangles = 0;
  bool failed = false;
  mesher::IQPMSH(mesher::ResultVertices, mesher::ResultTriangles, View1<double>(mesh.quality),
                 numVertices, View1<XY>(mesh.vertices), numTriangles,
                 View1<mesher::Triangle>(mesh.triangles), failed);
  if (numTriangles == 0) {
    framework::fail("Could not establish interior mesh for profile!", status);
    return;
  }

  const std::array<std::string, 3> rows = {textRow("Orvik{nFEM-MESH"),
                                           textRow("TVEW{n(Viewer format)"), "CANCEL"};
  int selection = 0;
  bool abort = false;
  framework::TXMENU("EXPORT FORMAT SELECTION", rows, 0, "Select export file format", abort,
                    selection, failed);
  if (abort || failed || selection < 1 || selection > 2) return;

  std::string name;
  const bool finite = selection == 1;
  if (!askFileName(finite ? "Input name (full) for mesh file (max 80 char)"
                          : "Input name (full) for TVEW file (max 80 char)",
                   name)) {
    return;
  }
  const View1<const XY> vertices(mesh.vertices.data(), numVertices);
  const View1<const mesher::Triangle> triangles(mesh.triangles.data(), numTriangles);
  if (finite) {
    PTFEMM(numVertices, vertices, numTriangles, triangles, name, status);
  } else {
    PTTVEW(numVertices, vertices, numTriangles, triangles,
           View1<const double>(mesh.quality.data(), numTriangles), name, status);
  }
}

}  // namespace kntr::profile
