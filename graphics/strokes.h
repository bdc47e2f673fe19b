// Stroke text and markers, drawn as lines so that every device shows them
// with its line primitives alone. The strokes come from font files read
// once at plot start-up.
//
//   LDFONT    read one font file (fonts 1..10) into the font table
//   LDMARK    read the markers of "sfmark.fsa" into the marker table
//   fontPath  the full name under which a font or marker file is looked for
//   GDWTXT    draw a text with its in-string tokens at the text position
//   GWTEXT    measure a text: line count, width of each line, block height
//   GDMARK    draw a marker at a world point with the marker size
//   loadPlotFonts  the start-up loads: fonts 1, 4 and 5, and the markers
#pragma once

#include <array>
#include <string>
#include <string_view>

namespace kntr::graphics {

inline constexpr int MaxFonts = 10;
inline constexpr int FirstCharacter = 32;
inline constexpr int LastCharacter = 127;
inline constexpr int MaxStrokePoints = 150;
inline constexpr int MaxMarkerPoints = 64;
inline constexpr int MaxTextLineBreaks = 24;

// Where and how a text is drawn: position in world units, size factor,
// angle in degrees, alignment 1..9, font and colour.
struct TextState {
  double x = 0.0, y = 0.0;
  double TextSize = 1.0;
  double TextAngle = 0.0;
  int Alignment = 1;
  int font = 1;
  int colour = 1;
};
TextState& textState();

// Lines of a text and their widths, in the units of the text state's size.
struct TextExtent {
  int lines = 0;
  std::array<double, MaxTextLineBreaks + 1> widths{};
  double height = 0.0;
};

// LDFONT: font `font` (1..10) from its formatted file.
void LDFONT(int font, bool& status);
// LDMARK: the marker table from "sfmark.fsa".
void LDMARK(bool& status);
// fontPath: the full name of a font or marker file.
std::string fontPath(std::string_view fileName);
// loadPlotFonts: fonts 1, 4, 5 and the markers.
void loadPlotFonts(bool& status);

// GDWTXT: draw `text` with the text state.
void GDWTXT(std::string_view text, bool& status);
// GWTEXT: measure `text` at `size`.
void GWTEXT(std::string_view text, double size, TextExtent& extent, bool& status);
// GDMARK: marker `kind` centred at (x, y), `size` times the standard size.
void GDMARK(int kind, double x, double y, double size);

}  // namespace kntr::graphics
