#include "profile/controls.h"

#include <array>
#include <string>

#include "framework/format.h"
#include "framework/input.h"
#include "framework/menus.h"
#include "framework/text.h"
#include "graphics/dialogue.h"
#include "graphics/plotstate.h"
#include "profile/block.h"
#include "profile/display.h"
#include "profile/pointedit.h"

namespace kntr::profile {

namespace {

namespace fw = framework;
namespace gr = graphics;

// The state of a toggle after its name.
std::string state(bool on) { return " " + fw::logicalStateText(on); }

// Erase, change, draw: the pattern of every setting.
template <class Change>
void changePicture(Change change, bool& status) {
  windowPicture(true, false, status);
  if (status) return;
  change();
  windowPicture(false, false, status);
  gr::flushPlot();
}

// A value keyed in the window: one real, the default shown; false when the
// question was aborted or answered otherwise than by the keyboard (told).
bool keyedReal(const std::string& question, const std::string& deflt, const std::string& help,
               const char* notKeyed, double& value, bool& abort) {
  for (;;) {
    gr::GraphicAnswer answer;
    bool status = false;
    gr::GQUEST(question, deflt, help, 1, answer, abort, status);
    if (abort) return false;
    if (status) continue;
    if (answer.kind != gr::KeyboardInput) {
      fw::ERRSCN(notKeyed);
      continue;
    }
    std::array<double, 1> v{value};
    bool none = false;
    fw::GTREAL(v, none, status);
    if (status) continue;
    value = v[0];
    return true;
  }
}

}  // namespace

void CTSPLN(bool& status) {
  status = false;
  ProfileData& p = profile();
  // After "Reset" the line strokes row shows its old state until the menu
  // comes anew.
  bool strokesShown = p.SHOWLS;
  for (;;) {
    const std::array<std::string, 6> rows{
        "Interpolated{npoints" + state(p.SHOWIP),
        "B-spline control{npolygon" + state(p.SHOWCP),
        "Line strokes{n" + state(strokesShown), "Spline accuracy", "Reset",
        "RETURN"};
    int selection = 6;
    bool abort = false;
    gr::GSELCT("CURVE SPLINE CONTROL", rows, "Select item", "", selection, abort);
    if (abort || selection == 6) return;
    switch (selection) {
      case 1: changePicture([&] { p.SHOWIP = !p.SHOWIP; }, status); break;
      case 2: changePicture([&] { p.SHOWCP = !p.SHOWCP; }, status); break;
      case 3: changePicture([&] { p.SHOWLS = !p.SHOWLS; }, status); break;
      case 4: {
        double accuracy = p.SPLACC;
        for (;;) {
          if (!keyedReal("Input spline curve length accuracy", fmt::PE(p.SPLACC, 10, 3),
                         "The largest distance between the spline and its polyline [m]",
                         "Only keyboard input allowed!", accuracy, abort))
            break;
          if (accuracy < 0.0) {
            fw::ERRSCN("Spline curve length accuracy must be positive!");
            continue;
          }
          changePicture([&] { p.SPLACC = accuracy; }, status);
          break;
        }
        break;
      }
      case 5:
        changePicture(
            [&] {
              p.SHOWIP = false;
              p.SHOWLS = true;
              IZACCY();
            },
            status);
        break;
      default: break;
    }
    if (status) return;
    if (selection != 5) strokesShown = p.SHOWLS;
  }
}

void CTMESH(bool& status) {
  status = false;
  ProfileData& p = profile();
  for (;;) {
    const std::array<std::string, 9> rows{
        "Interior{nmeshing" + state(p.MESHON),
        "Auto setting of{ndensity" + state(p.MESHAU),
        "Laplace{nsmoothing" + state(p.MESHLP),
        "Setup of{nmesh quality",
        "Key-in of{nmesh density",
        "Quality{ncolours" + state(p.MESHQC),
        "Robust{nmeshing" + state(p.MESHRB),
        "Quality{nstage" + state(p.MESHIM),
        "RETURN"};
    int selection = 9;
    bool abort = false;
    gr::GSELCT("INTERIOR MESHING CONTROL", rows, "Select item", "", selection, abort);
    if (abort || selection == 9) return;
    switch (selection) {
      case 1: changePicture([&] { p.MESHON = !p.MESHON; }, status); break;
      case 2: changePicture([&] { p.MESHAU = !p.MESHAU; }, status); break;
      case 3: changePicture([&] { p.MESHLP = !p.MESHLP; }, status); break;
      case 4: CTMQAL(status); break;
      case 5: {
        double density = p.MESHDN;
        for (;;) {
          if (!keyedReal("Input number of triangles in meshing (Max = " +
                             fmt::I(MaxMeshDensity, 6) + ")",
                         fmt::I(p.MESHDN, 6), "About this many triangles fill the region",
                         "Only keyboard input allowed!", density, abort))
            break;
          if (density > MaxMeshDensity) {
            fw::ERRSCN("Number of triangles exceeds max allowed!");
            continue;
          }
          if (density < 1.0) {
            fw::ERRSCN("Number of triangles must be positive!");
            continue;
          }
          changePicture([&] { p.MESHDN = static_cast<int>(density); }, status);
          break;
        }
        break;
      }
      case 6: changePicture([&] { p.MESHQC = !p.MESHQC; }, status); break;
      case 7: changePicture([&] { p.MESHRB = !p.MESHRB; }, status); break;
      case 8: changePicture([&] { p.MESHIM = !p.MESHIM; }, status); break;
      default: break;
    }
    if (status) return;
  }
}

void CTMQAL(bool& status) {
  status = false;
  ProfileData& p = profile();
  const std::array<std::string, 8> rows{"Very high{n(0.95)", "High{n(0.90)", "Medium{n(0.85)",
                                        "Low{n(0.80)",       "Very low{n(0.75)", "Key in of{nquality",
                                        "Reset",             "RETURN"};
  const double levels[5] = {0.95, 0.90, 0.85, 0.80, 0.75};
  for (;;) {
    int selection = 8;
    bool abort = false;
    gr::GSELCT("SETUP OF MESHING QUALITY", rows, "Select item",
               "Meshing quality (0.0 = bad, 1.0 = perfect)", selection, abort);
    if (abort || selection == 8) return;
    double quality = p.MESHQL;
    if (selection <= 5) {
      quality = levels[selection - 1];
    } else if (selection == 7) {
      quality = 0.85;
    } else {
      bool keyed = false;
      for (;;) {
        if (!keyedReal("Input interior meshing quality (0..1)", fmt::F(p.MESHQL, 7, 4),
                       "Meshing quality (0.0 = bad, 1.0 = perfect)",
                       "Meshing quality must be keyed in!", quality, abort))
          break;
        if (quality < 0.0 || quality > 1.0) {
          fw::ERRSCN("Meshing quality must be in the range (0..1)!");
          continue;
        }
        keyed = true;
        break;
      }
      if (!keyed) continue;
    }
    changePicture([&] { p.MESHQL = quality; }, status);
    if (status) return;
  }
}

}  // namespace kntr::profile
