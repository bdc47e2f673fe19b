#include "platform/drawing.h"

#include <algorithm>
#include <cmath>

namespace kntr::platform {

namespace {

// First table, for a dark screen, as blue-green-red values: entry 2
// (0000FF) is red.
constexpr std::uint32_t screenTable[16] = {0x000000, 0xFFFFFF, 0x0000FF, 0x00FFFF,
                                           0x00FF00, 0xFFFF00, 0xFF0000, 0xFF00FF,
                                           0x752323, 0xF0FFFF, 0x0087FF, 0x87B8DE,
                                           0x52008F, 0xC4E4FF, 0x2D5296, 0xCE3E9C};

Rgb fromBgr(std::uint32_t value) {
  return Rgb{static_cast<std::uint8_t>(value & 0xFF), static_cast<std::uint8_t>((value >> 8) & 0xFF),
             static_cast<std::uint8_t>((value >> 16) & 0xFF)};
}

std::uint8_t channel(double v) {
  return static_cast<std::uint8_t>(std::lround(std::clamp(v, 0.0, 255.0)));
}

// Second table: a ramp from orange-red through yellow and green to blue.
Rgb rampColour(int index) {
  struct Stop {
    double t, r, g, b;
  };
  constexpr Stop stops[] = {{0.0, 255, 99, 0},
                            {1.0 / 3.0, 255, 230, 0},
                            {2.0 / 3.0, 0, 200, 60},
                            {1.0, 20, 60, 255}};
  const double t = index / double(PaletteColours - 1);
  int k = 0;
  while (k < 2 && t > stops[k + 1].t) ++k;
  const double u = (t - stops[k].t) / (stops[k + 1].t - stops[k].t);
  return Rgb{channel(stops[k].r + u * (stops[k + 1].r - stops[k].r)),
             channel(stops[k].g + u * (stops[k + 1].g - stops[k].g)),
             channel(stops[k].b + u * (stops[k + 1].b - stops[k].b))};
}

Device* target = nullptr;

}  // namespace

Rgb paletteColour(int table, int index, PaletteMode mode) {
  if (mode == PaletteMode::AllWhite) return Rgb{255, 255, 255};
  index = std::clamp(index, 0, PaletteColours - 1);
  // Paper: background and drawing colour change places.
  if (mode == PaletteMode::Paper && index <= 1) index = 1 - index;
  switch (table) {
    case 2:
      return rampColour(index);
    case 3:
    case 4: {
      // Grey ramps from black (the fourth stands for the shaded displays).
      const std::uint8_t v = channel(255.0 * index / (PaletteColours - 1));
      return Rgb{v, v, v};
    }
    default:
      return index < 16 ? fromBgr(screenTable[index]) : Rgb{255, 255, 255};
  }
}

void setDevice(Device* device) { target = device; }
Device* currentDevice() { return target; }

}  // namespace kntr::platform
