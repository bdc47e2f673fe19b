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
//   resetStrokes   forget the loaded fonts and markers
//
// A font file holds, for each character code 32 to 127 in order, a record
// "n left right" and then n records "x y pen stroke", all integers:
//   x, y    the point in font units: y = 0 is the baseline, y = 21 the top of
//           a capital (CapitalHeight), x = 0 the middle of the glyph
//   pen     0 moves to the point (a stroke starts there), 1 draws to it
//   stroke  the number of the stroke the point belongs to, from 1
//   left, right  where the glyph's box begins and ends along x; the pen
//           advances by right - left after the glyph
// A character is CapitalHeight font units high at the text class's height
// (a fraction of the surface height) times the size factor.
//
// The marker file holds the count of markers, then per marker its point
// count and one record "x y pen" per point: x and y decimals in the square
// -1..1 around the centre, pen as in the fonts. At size 1 the square is
// MarkerHeight of the surface height across.
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
// Font units from the baseline to the top of a capital.
inline constexpr int CapitalHeight = 21;
// Character height at size 1 when no text class says otherwise, and the
// width of a size 1 marker, both as fractions of the surface height.
inline constexpr double DefaultTextHeight = 0.025;
inline constexpr double MarkerHeight = 0.025;

// Where and how a text is drawn: position in world units, size factor,
// angle in degrees, alignment 1..9, font and colour.
struct TextState {
  double x = 0.0, y = 0.0;
  double TextSize = 1.0;
  double TextAngle = 0.0;
  int Alignment = 1;
  int font = 1;
  int colour = 1;
  // Character height at size 1, as a fraction of the surface height.
  double height = DefaultTextHeight;
};
TextState& textState();

// Lines of a text and their widths, in font units times the size: the sum
// of the glyphs' right - left extents. The height runs from the last line's
// baseline to the top of the first line's capitals; lines stand two
// character heights apart.
struct TextExtent {
  int lines = 0;
  std::array<double, MaxTextLineBreaks + 1> widths{};
  double height = 0.0;
};

// LDFONT: font `font` (1..10) from its formatted file.
void LDFONT(int font, bool& status);
// LDMARK: the marker table from "sfmark.fsa".
void LDMARK(bool& status);
// fontPath: the full name of a font or marker file. The first of these that
// exists: each configured font directory + "/config/fonts/" + name, then the
// directory itself + name; the installation directory + "/config/fonts/" +
// name; the project directory + name; the fonts of the source tree's data
// directory. With none, the first candidate, for the report.
std::string fontPath(std::string_view fileName);
// loadPlotFonts: fonts 1, 4, 5 and the markers.
void loadPlotFonts(bool& status);
// resetStrokes: no font or marker loaded (start-up, tests).
void resetStrokes();

// GDWTXT: draw `text` with the text state. Tokens: "{{" a brace, "{+" "{-"
// half a character height up and down, "{h" "{d" half and double size,
// "{b" back one character, "{u" "{o" half the text height up and down,
// "{c" back to the line's start, "{n" next line, "{0".."{9" font 10, 1..9.
// Alignment 1..9: 1-3 lines start at the position, 4-6 are centred on it,
// 7-9 end at it; 1, 4, 7 put the last baseline there, 2, 5, 8 the block's
// middle, 3, 6, 9 the top of the first line. The pen ends after the text.
void GDWTXT(std::string_view text, bool& status);
// GWTEXT: measure `text` at `size`.
void GWTEXT(std::string_view text, double size, TextExtent& extent, bool& status);
// GDMARK: marker `kind` centred at (x, y), `size` times the standard size.
void GDMARK(int kind, double x, double y, double size);

}  // namespace kntr::graphics
