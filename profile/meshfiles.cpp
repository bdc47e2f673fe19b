#include <string>

#include "framework/files.h"
#include "framework/format.h"
#include "framework/menus.h"
#include "framework/projects.h"
#include "framework/state.h"
#include "framework/text.h"
#include "profile/meshexport.h"

namespace kntr::profile {

// The opening every mesh writer shares: a unit, the overwrite question for an
// existing file, the file itself, and the notice.
Opening openMeshFile(std::string_view name, framework::AtomicWriter& file) {
  int unit = 0;
  bool failed = false;
  framework::IQFUNT(unit, failed);
  if (failed) {
    framework::ERRSCN("Could not obtain I/O unit!");
    return Opening::Failed;
  }
  if (framework::fileExists(name)) {
    bool overwrite = false, cancelled = false;
    framework::askYesNo(
        "OK to overwrite the file ** {gre" + std::string(name) + "{yel ** ? (yes/no)", false, "no",
        "This will leave the file with the latest modified data",
        !framework::program().terminalInput, overwrite, cancelled);
    if (cancelled) return Opening::Cancelled;
    if (!overwrite) return Opening::Failed;
  }
  framework::program().workFileName = std::string(name);
  const int io = file.open(unit, name);
  if (io != 0) {
    framework::IOERRM('O', name, io);
    return Opening::Failed;
  }
  framework::PUTSCN("Storing interior mesh in ** {GRE" + std::string(name) + "{YEL **");
  return Opening::Ready;
}

// Puts the file in place; false after the failure has been reported.
bool closeMeshFile(std::string_view name, framework::AtomicWriter& file) {
  const int io = file.commit();
  if (io != 0) {
    framework::IOERRM('C', name, io);
    return false;
  }
  return true;
}

namespace {

// One record of free-form output: a blank, then the items separated by
// blanks.
class FreeRecord {
 public:
  FreeRecord& integer(long long value) { return item(std::to_string(value)); }
  FreeRecord& real(double value) { return item(fmt::exact(value)); }
  FreeRecord& text(std::string_view value) { return item(value); }
  const std::string& line() const { return line_; }

 private:
  FreeRecord& item(std::string_view value) {
    line_ += ' ';
    line_.append(value);
    return *this;
  }
  std::string line_;
};

}  // namespace

void PTFEMM(int numVertices, View1<const XY> vertices, int numTriangles,
            View1<const mesher::Triangle> triangles, std::string_view name, bool& status) {
  status = false;
  framework::AtomicWriter file;
  const Opening opening = openMeshFile(name, file);
  if (opening != Opening::Ready) {
    status = opening == Opening::Failed;
    return;
  }
  int io = 0;
  for (int i = 1; i <= numVertices && io == 0; ++i) {
    std::string record = "nodal-point " + fmt::I(i, 6) + " ";
    for (const double value : {vertices(i).x, vertices(i).y, 0.0}) {
      record += fmt::PE(value, 10, 3) + " ";
    }
    record += ";";
    io = file.writeLine(record);
  }
  for (int i = 1; i <= numTriangles && io == 0; ++i) {
    std::string record = "element " + fmt::I(i, 6) + " " + fmt::I(201, 3);
    for (int j = 1; j <= 3; ++j) record += fmt::I(triangles(i)(j), 6) + " ";
    // The element's fixed properties: a 1 and 24 zeros, then ten zero reals.
    for (int k = 1; k <= 25; ++k) record += fmt::I(k == 1 ? 1 : 0, 1) + " ";
    for (int k = 1; k <= 10; ++k) record += fmt::F(0.0, 4, 1) + " ";
    record += ";";
    io = file.writeLine(record);
  }
  if (io != 0) {
    framework::IOERRM('W', name, io);
    status = true;
    return;
  }
  status = !closeMeshFile(name, file);
}

void PTTVEW(int numVertices, View1<const XY> vertices, int numTriangles,
            View1<const mesher::Triangle> triangles, View1<const double> quality,
            std::string_view name, bool& status) {
  status = false;
  framework::AtomicWriter file;
  const Opening opening = openMeshFile(name, file);
  if (opening != Opening::Ready) {
    status = opening == Opening::Failed;
    return;
  }
  framework::PTFLHD(file, ViewerFileVersion, status);
  if (status) return;

  int io = 0;
  auto put = [&](const FreeRecord& record) {
    if (io == 0) io = file.writeLine(record.line());
  };
  put(FreeRecord().text("*** Field section ***"));
  put(FreeRecord().integer(1));
  put(FreeRecord().integer(1).integer(1));
  put(FreeRecord().text(" 'Mesh quality'"));
  put(FreeRecord().text("*** Geometry group section ***"));
  put(FreeRecord().integer(1));
  put(FreeRecord().integer(1).text(" 'Profile mesh'"));
  put(FreeRecord().text("*** Vertex section ***"));
  put(FreeRecord().integer(numVertices));
  for (int i = 1; i <= numVertices && io == 0; ++i) {
    put(FreeRecord()
            .integer(i)
            .integer(1)
            .integer(1)
            .real(vertices(i).x)
            .real(vertices(i).y)
            .real(0.0)
            .integer(0));
  }
  put(FreeRecord().text("*** Line stroke section ***"));
  put(FreeRecord().integer(0));
  put(FreeRecord().text("*** Polyline section ***"));
  put(FreeRecord().integer(0));
  put(FreeRecord().text("*** Polygon section ***"));
  put(FreeRecord().integer(numTriangles));
  for (int i = 1; i <= numTriangles && io == 0; ++i) {
    put(FreeRecord().integer(i).integer(1).integer(5).integer(3).integer(1));
    put(FreeRecord().integer(triangles(i)(1)).integer(triangles(i)(2)).integer(triangles(i)(3)));
    put(FreeRecord().integer(1));
    // The field value at each of the polygon's three corners.
    for (int corner = 1; corner <= 3; ++corner) put(FreeRecord().real(quality(i)));
  }
  if (io != 0) {
    framework::IOERRM('W', name, io);
    status = true;
    return;
  }
  status = !closeMeshFile(name, file);
}

}  // namespace kntr::profile
