// kntr-tool plot: the picture of a profile as the display shows it, written
// as a PNG, SVG or PDF file.
#include <cstdio>
#include <memory>
#include <string>

#include "app/tool/tool.h"
#include "graphics/plotstate.h"
#include "graphics/strokes.h"
#include "platform/cairodevice.h"
#include "profile/block.h"
#include "profile/display.h"

namespace kntr::tool {

namespace {

const char* const plotUsage =
    "plot FILE [--size WxH] [--mesh N] [--quality] [--comb] [--grid|--no-grid] "
    "(--png|--svg|--pdf) OUT";

// Room around the box for the grid's numbers.
constexpr double PlotMargin = 0.08;
// Largest side of a picture, in pixels.
constexpr int MaxPictureSide = 20000;

bool parseSize(const std::string& text, int& width, int& height) {
  const auto x = text.find_first_of("xX");
  if (x == std::string::npos) return false;
  return parseInteger(text.substr(0, x), width) && parseInteger(text.substr(x + 1), height) &&
         width >= 16 && height >= 16 && width <= MaxPictureSide && height <= MaxPictureSide;
}

}  // namespace

int plotCommand(const Arguments& arguments) {
  if (arguments.empty()) return usage(plotUsage);
  int width = 1280, height = 960, triangles = 0;
  bool grid = true, comb = false, quality = false;
  platform::PictureKind kind = platform::PictureKind::None;
  std::string out;
  for (std::size_t k = 1; k < arguments.size(); ++k) {
    const std::string& option = arguments[k];
    const bool hasValue = k + 1 < arguments.size();
    if (option == "--size" && hasValue) {
      if (!parseSize(arguments[++k], width, height)) return usage(plotUsage);
    } else if (option == "--mesh" && hasValue) {
      if (!parseInteger(arguments[++k], triangles) || triangles < 1) return usage(plotUsage);
    } else if (option == "--comb") {
      comb = true;
    } else if (option == "--quality") {
      quality = true;
    } else if (option == "--grid") {
      grid = true;
    } else if (option == "--no-grid") {
      grid = false;
    } else if ((option == "--png" || option == "--svg" || option == "--pdf") && hasValue &&
               kind == platform::PictureKind::None) {
      kind = option == "--png"   ? platform::PictureKind::Png
             : option == "--svg" ? platform::PictureKind::Svg
                                 : platform::PictureKind::Pdf;
      out = arguments[++k];
    } else {
      return usage(plotUsage);
    }
  }
  if (kind == platform::PictureKind::None) return usage(plotUsage);

  if (!loadProfile(arguments[0])) return 1;
  profile::ProfileData& p = profile::profile();
  if (!p.BBOXOK) return fail("The profile has no bounding box: nothing to plot");
  p.SHOWGR = grid;
  p.SHOWCB = comb;
  p.MESHQC = quality;
  if (triangles > 0) {
    p.MESHON = true;
    p.MESHDN = triangles;
  }

  bool status = false;
  graphics::loadPlotFonts(status);
  if (status) return fail("");

  std::string error;
  std::unique_ptr<platform::CairoDevice> device =
      kind == platform::PictureKind::Png
          ? platform::CairoDevice::image(width, height)
          : platform::CairoDevice::file(kind, out, width, height, 96.0, error);
  if (!device) return fail("Cannot make the picture " + out + ": " + error);
  graphics::GINIT(1);
  graphics::attachDevice(graphics::DeviceWindow, device.get());
  graphics::GMARG(PlotMargin, PlotMargin, PlotMargin, PlotMargin);
  graphics::GCLIPM("plot");
  profile::DPKNTR(false, true, status);
  graphics::attachDevice(graphics::DeviceNoDrawing, nullptr);
  if (status) return fail("");
  const bool written =
      kind == platform::PictureKind::Png ? device->writePng(out, error) : device->finish(error);
  if (!written) return fail("Cannot write the picture " + out + ": " + error);
  return 0;
}

}  // namespace kntr::tool
