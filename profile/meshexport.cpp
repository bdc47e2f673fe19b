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
#include "profile/meshformats.h"
#include "mesher/robust.h"

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
      framework::graphicDialogues().GQUEST(question, "", "", 1, picked, abort, failed);
      if (picked) {
        framework::ERRSCN("Only keyboard input is allowed!");
        continue;
      }
    } else {
      framework::ASKQST(question, "", "", 1, abort, failed);
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
  // Curves that cross, overlap or touch give a mesh that covers parts twice.
  int first = 0, second = 0;
  mesher::IQCVCR(first, second, failed);
  if (first > 0) framework::ERRSCN(mesher::crossingCurvesMessage(first, second));
  mesher::IQPMSH(mesher::ResultVertices, mesher::ResultTriangles, View1<double>(mesh.quality),
                 numVertices, View1<XY>(mesh.vertices), numTriangles,
                 View1<mesher::Triangle>(mesh.triangles), failed);
  if (numTriangles == 0) {
    framework::fail("Could not establish interior mesh for profile!", status);
    return;
  }

  const std::array<std::string, 7> rows = {textRow("Orvik{nFEM-MESH"),
                                           textRow("TVEW{n(Viewer format)"),
                                           textRow("Gmsh{nMSH 4.1"),
                                           textRow("VTK{nlegacy (.vtk)"),
                                           textRow("VTK{nXML (.vtu)"),
                                           textRow("Nastran{nbulk deck"),
                                           "CANCEL"};
  int selection = 0;
  bool abort = false;
  framework::TXMENU("EXPORT FORMAT SELECTION", rows, 0, "Select export file format", abort,
                    selection, failed);
  if (abort || failed || selection < 1 || selection > 6) return;

  static const char* const questions[] = {"Input name (full) for mesh file (max 80 char)",
                                          "Input name (full) for TVEW file (max 80 char)",
                                          "Input name (full) for Gmsh file (max 80 char)",
                                          "Input name (full) for VTK file (max 80 char)",
                                          "Input name (full) for VTU file (max 80 char)",
                                          "Input name (full) for Nastran file (max 80 char)"};
  std::string name;
  if (!askFileName(questions[selection - 1], name)) return;
  const View1<const XY> vertices(mesh.vertices.data(), numVertices);
  const View1<const mesher::Triangle> triangles(mesh.triangles.data(), numTriangles);
  const View1<const double> quality(mesh.quality.data(), numTriangles);
  switch (selection) {
    case 1:
      PTFEMM(numVertices, vertices, numTriangles, triangles, name, status);
      break;
    case 2:
      PTTVEW(numVertices, vertices, numTriangles, triangles, quality, name, status);
      break;
    case 3:
      PTGMSH(numVertices, vertices, numTriangles, triangles, name, status);
      break;
    case 4:
      PTVTKL(numVertices, vertices, numTriangles, triangles, quality, name, status);
      break;
    case 5:
      PTVTUX(numVertices, vertices, numTriangles, triangles, quality, name, status);
      break;
    default:
      PTNSTR(numVertices, vertices, numTriangles, triangles, name, status);
      break;
  }
}

}  // namespace kntr::profile
