// kntr-tool mesh: the interior mesh of a profile, its figures, and the
// finite element, viewer and plain files.
#include <algorithm>
#include <cstdio>
#include <memory>
#include <string>

#include "app/tool/tool.h"
#include "framework/files.h"
#include "framework/text.h"
#include "mesher/driver.h"
#include "mesher/limits.h"
#include "mesher/robust.h"
#include "platform/console.h"
#include "profile/block.h"
#include "profile/meshexport.h"
#include "profile/meshformats.h"

namespace kntr::tool {

namespace {

const char* const meshUsage =
    "mesh FILE [--triangles N] [--auto Q] [--smooth] [--classic] [--improve] [--no-improve]\n"
    "                 [--fem OUT] [--tvew OUT] [--plain OUT] [--msh OUT] [--vtk OUT] [--vtu OUT]\n"
    "                 [--nastran OUT]";

struct Mesh {
  int numVertices = 0;
  int numTriangles = 0;
  Array1<XY, mesher::ResultVertices> vertices;
  Array1<mesher::Triangle, mesher::ResultTriangles> triangles;
  Array1<double, mesher::ResultTriangles> quality;
};

// The plain file: "nv nt", the vertices, the triangles.
bool writePlain(const std::string& name, const Mesh& mesh) {
  int unit = 0;
  bool status = false;
  framework::IQFUNT(unit, status);
  if (status) return false;
  framework::AtomicWriter file;
  int io = file.open(unit, name);
  if (io == 0)
    io = file.writeLine(std::to_string(mesh.numVertices) + " " + std::to_string(mesh.numTriangles));
  for (int i = 1; io == 0 && i <= mesh.numVertices; ++i)
    io = file.writeLine(fullPrecision(mesh.vertices(i).x) + " " + fullPrecision(mesh.vertices(i).y));
  for (int t = 1; io == 0 && t <= mesh.numTriangles; ++t)
    io = file.writeLine(std::to_string(mesh.triangles(t)(1)) + " " +
                        std::to_string(mesh.triangles(t)(2)) + " " +
                        std::to_string(mesh.triangles(t)(3)));
  if (io == 0) io = file.commit();
  if (io != 0) {
    framework::IOERRM('W', name, io);
    return false;
  }
  return true;
}

void writeWarning(const std::string& text) {
  std::fputs((text + "\n").c_str(), stderr);
}

// The writers ask before they replace a file; here the command line has
// already said so.
void agreeToOverwrite(const std::string& name) {
  if (framework::fileExists(name)) platform::testconsole::feed("yes\n");
}

// The Gmsh, VTK, VTU and Nastran files the command line names, in that
// order; false after a failure has been reported.
bool writeExchangeFiles(const std::string (&names)[4], int numVertices, View1<const XY> vertices,
                        int numTriangles, View1<const mesher::Triangle> triangles,
                        View1<const double> quality) {
  bool status = false;
  for (int k = 0; k < 4 && !status; ++k) {
    if (names[k].empty()) continue;
    agreeToOverwrite(names[k]);
    if (k == 0) profile::PTGMSH(numVertices, vertices, numTriangles, triangles, names[k], status);
    if (k == 1)
      profile::PTVTKL(numVertices, vertices, numTriangles, triangles, quality, names[k], status);
    if (k == 2)
      profile::PTVTUX(numVertices, vertices, numTriangles, triangles, quality, names[k], status);
    if (k == 3) profile::PTNSTR(numVertices, vertices, numTriangles, triangles, names[k], status);
  }
  return !status;
}

}  // namespace

int meshCommand(const Arguments& arguments) {
  if (arguments.empty()) return usage(meshUsage);
  profile::ProfileData& p = profile::profile();
  std::string fem, tvew, plain;
  std::string exchange[4];  // --msh, --vtk, --vtu, --nastran
  const char* const exchangeOptions[4] = {"--msh", "--vtk", "--vtu", "--nastran"};
  int triangles = 0;
  double quality = 0.0;
  bool automatic = false, smooth = false, classic = false, improve = true;
  for (std::size_t k = 1; k < arguments.size(); ++k) {
    const std::string& option = arguments[k];
    const bool hasValue = k + 1 < arguments.size();
    if (option == "--smooth") {
      smooth = true;
    } else if (option == "--classic") {
      classic = true;
    } else if (option == "--improve") {
      improve = true;
    } else if (option == "--no-improve") {
      improve = false;
    } else if (option == "--triangles" && hasValue) {
      if (!parseInteger(arguments[++k], triangles) || triangles < 1) return usage(meshUsage);
    } else if (option == "--auto" && hasValue) {
      if (!parseReal(arguments[++k], quality) || !(quality >= 0.0 && quality <= 1.0))
        return usage(meshUsage);
      automatic = true;
    } else if (option == "--fem" && hasValue) {
      fem = arguments[++k];
    } else if (option == "--tvew" && hasValue) {
      tvew = arguments[++k];
    } else if (option == "--plain" && hasValue) {
      plain = arguments[++k];
    } else if (hasValue &&
               std::find(exchangeOptions, exchangeOptions + 4, option) != exchangeOptions + 4) {
      exchange[std::find(exchangeOptions, exchangeOptions + 4, option) - exchangeOptions] =
          arguments[++k];
    } else {
      return usage(meshUsage);
    }
  }

  if (!loadProfile(arguments[0])) return 1;
  // The file holds no mesh settings: the profile's defaults, changed by the
  // options.
  if (triangles > 0) p.MESHDN = triangles;
  if (automatic) {
    p.MESHAU = true;
    p.MESHQL = quality;
  }
  if (smooth) p.MESHLP = true;
  // The robust mode with the quality stage unless the plain pipeline is asked for.
  p.MESHRB = !classic;
  p.MESHIM = !classic && improve;

  // Curves that cross, overlap or touch would be meshed twice over.
  int first = 0, second = 0;
  bool refused = false;
  mesher::IQCVCR(first, second, refused);
  if (refused) return fail("");
  if (first > 0) return fail(mesher::crossingCurvesMessage(first, second));

  auto mesh = std::make_unique<Mesh>();
  bool status = false;
  mesher::IQPMSH(mesher::ResultVertices, mesher::ResultTriangles, View1<double>(mesh->quality),
                 mesh->numVertices, View1<XY>(mesh->vertices), mesh->numTriangles,
                 View1<mesher::Triangle>(mesh->triangles), status);
  if (status) return fail("");
  if (mesh->numTriangles == 0) return fail("Could not establish interior mesh for profile!");
  // A warning of the quality search goes to standard error; the other
  // notices of a run that succeeded are dropped.
  const char* const unmet = "Required mesh quality was not obtained!";
  if (platform::testconsole::takeOutput().find(unmet) != std::string::npos)
    writeWarning(unmet);

  const View1<const XY> vertices(mesh->vertices.data(), mesh->numVertices);
  const View1<const mesher::Triangle> triangleView(mesh->triangles.data(), mesh->numTriangles);
  const View1<const double> qualityView(mesh->quality.data(), mesh->numTriangles);
  if (!fem.empty()) {
    agreeToOverwrite(fem);
    profile::PTFEMM(mesh->numVertices, vertices, mesh->numTriangles, triangleView, fem, status);
    if (status) return fail("");
  }
  if (!tvew.empty()) {
    agreeToOverwrite(tvew);
    profile::PTTVEW(mesh->numVertices, vertices, mesh->numTriangles, triangleView, qualityView,
                    tvew, status);
    if (status) return fail("");
  }
  if (!plain.empty() && !writePlain(plain, *mesh)) return fail("");
  if (!writeExchangeFiles(exchange, mesh->numVertices, vertices, mesh->numTriangles, triangleView,
                          qualityView))
    return fail("");

  const mesher::MeshStatistics& figures = mesher::lastMeshStatistics();
  print("vertices " + std::to_string(mesh->numVertices) + " triangles " +
        std::to_string(mesh->numTriangles) + " quality " + fullPrecision(figures.minimum) + " " +
        fullPrecision(figures.mean) + " " + fullPrecision(figures.maximum) + " " +
        fullPrecision(figures.deviation) + "\n");
  return 0;
}

}  // namespace kntr::tool
