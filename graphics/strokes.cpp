#include "graphics/strokes.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <numbers>
#include <string>

#include "framework/configuration.h"
#include "framework/files.h"
#include "framework/format.h"
#include "framework/projects.h"
#include "framework/state.h"
#include "framework/text.h"
#include "graphics/plotstate.h"

namespace kntr::graphics {

namespace {

using framework::ERRSCN;
using framework::fail;

constexpr int CharacterCount = LastCharacter - FirstCharacter + 1;

const char* const fontFiles[MaxFonts] = {"sfsrom.fsa", "sfdrom.fsa", "sftrom.fsa", "sfcrom.fsa",
                                         "sfcgre.fsa", "sfsrom.psa", "sfdrom.psa", "sftrom.psa",
                                         "sfcrom.psa", "sfcgre.psa"};
constexpr const char* MarkerFile = "sfmark.fsa";

// One character of a font: its points, each x, y, pen and stroke number, and
// its extents.
struct Glyph {
  int count = 0;
  int left = 0, right = 0;
  int items[MaxStrokePoints][4];
};

struct FontTable {
  Glyph glyph[MaxFonts][CharacterCount];
  bool loaded[MaxFonts] = {};
  bool tried[MaxFonts] = {};  // a load was attempted (failures are told once)
};

struct MarkerPoint {
  double x = 0.0, y = 0.0;
  int pen = 0;
};

struct MarkerTable {
  int count = 0;
  int points[MaxMarkers] = {};
  MarkerPoint point[MaxMarkers][MaxMarkerPoints];
  bool tried = false;
};

FontTable& fonts() {
  static FontTable table;
  return table;
}

MarkerTable& markers() {
  static MarkerTable table;
  return table;
}

TextState& state() {
  static TextState s;
  return s;
}

// --- reading the formatted files ----------------------------------------------

// The blank-separated numbers of a text file, one after the other.
class NumberReader {
 public:
  explicit NumberReader(framework::TextReader& file) : file_(file) {}
  // The next number's text: true, or false at the end (io 0) or on a read
  // failure (io set).
  bool next(std::string& token, int& io) {
    io = 0;
    for (;;) {
      while (pos_ < line_.size() && (line_[pos_] == ' ' || line_[pos_] == '\t' ||
                                     line_[pos_] == '\r' || line_[pos_] == ','))
        ++pos_;
      if (pos_ < line_.size()) break;
      const int r = file_.readLine(line_);
      pos_ = 0;
      if (r == -1) return false;
      if (r != 0) {
        io = r;
        return false;
      }
    }
    const std::size_t start = pos_;
    while (pos_ < line_.size() && line_[pos_] != ' ' && line_[pos_] != '\t' &&
           line_[pos_] != '\r' && line_[pos_] != ',')
      ++pos_;
    token = line_.substr(start, pos_ - start);
    return true;
  }
  // The next integer; io tells why not (end of file, a bad number).
  bool integer(int& value, int& io) {
    std::string token;
    if (!next(token, io)) {
      if (io == 0) io = framework::IoEndOfFile;
      return false;
    }
    const char* end = token.data() + token.size();
    const auto [ptr, ec] = std::from_chars(token.data(), end, value);
    if (ec != std::errc() || ptr != end) {
      io = framework::IoCharacterForNumber;
      return false;
    }
    return true;
  }
  bool real(double& value, int& io) {
    std::string token;
    if (!next(token, io)) {
      if (io == 0) io = framework::IoEndOfFile;
      return false;
    }
    char* end = nullptr;
    value = std::strtod(token.c_str(), &end);
    if (end != token.c_str() + token.size() || !std::isfinite(value)) {
      io = framework::IoCharacterForNumber;
      return false;
    }
    return true;
  }

 private:
  framework::TextReader& file_;
  std::string line_;
  std::size_t pos_ = 0;
};

// Reads the characters of one font; the ones read before a failure stay.
// 0 or the I/O status of the failure.
int readFont(NumberReader& in, Glyph* glyphs) {
  int io = 0;
  for (int c = 0; c < CharacterCount; ++c) {
    int count = 0, left = 0, right = 0;
    if (!in.integer(count, io) || !in.integer(left, io) || !in.integer(right, io)) return io;
    if (count < 0 || count > MaxStrokePoints) return framework::IoValueOutOfRange;
    Glyph g;
    g.count = count;
    g.left = left;
    g.right = right;
    for (int k = 0; k < count; ++k)
      for (int item = 0; item < 4; ++item)
        if (!in.integer(g.items[k][item], io)) return io;
    glyphs[c] = g;
  }
  return 0;
}

int readMarkers(NumberReader& in, MarkerTable& table) {
  int io = 0, count = 0;
  if (!in.integer(count, io)) return io;
  if (count < 1) return 0;
  count = std::min(count, MaxMarkers);
  for (int m = 0; m < count; ++m) {
    int n = 0;
    if (!in.integer(n, io)) return io;
    if (n < 0 || n > MaxMarkerPoints) return framework::IoValueOutOfRange;
    MarkerPoint points[MaxMarkerPoints];
    for (int k = 0; k < n; ++k)
      if (!in.real(points[k].x, io) || !in.real(points[k].y, io) || !in.integer(points[k].pen, io))
        return io;
    std::copy(points, points + n, table.point[m]);
    table.points[m] = n;
    table.count = m + 1;
  }
  return 0;
}

// Opens a font or marker file, runs `read` on it and reports a failure with
// the full name.
template <typename Read>
void readFile(const std::string& name, Read read, bool& status) {
  framework::TextReader file;
  if (!framework::openOnFreeUnit(file, name, status)) return;
  NumberReader in(file);
  const int io = read(in);
  const int closed = file.close();
  if (io != 0) {
    framework::IOERRM('R', name, io);
    status = true;
  } else if (closed != 0) {
    framework::IOERRM('C', name, closed);
    status = true;
  }
}

// The font ready for drawing, loading it at its first use.
const Glyph* fontGlyphs(int font) {
  if (font < 1 || font > MaxFonts) return nullptr;
  FontTable& t = fonts();
  if (!t.loaded[font - 1] && !t.tried[font - 1]) {
    bool failed = false;
    LDFONT(font, failed);
  }
  return t.loaded[font - 1] ? t.glyph[font - 1] : nullptr;
}

// --- walking a text -----------------------------------------------------------

bool tokenCharacter(char c) {
  switch (c) {
    case '{': case '+': case '-': case 'h': case 'H': case 'd': case 'D': case 'b': case 'B':
    case 'u': case 'U': case 'o': case 'O': case 'c': case 'C': case 'n': case 'N':
      return true;
    default: return c >= '0' && c <= '9';
  }
}

// Where the glyphs of a text go, in font units at size 1 of the text, with y
// up; `draw` is called with each glyph and its place, or not at all when
// only measuring.
struct Walk {
  double size = 1.0;   // the text's size factor
  int font = 1;
  // Output: width of each line (the furthest x reached), and line count.
  TextExtent extent;
  // Line starts, from the alignment (drawing pass).
  double lineStart[MaxTextLineBreaks + 1] = {};
  double firstBaseline = 0.0;
};

using GlyphSink = void (*)(void* context, const Glyph& glyph, double x, double y, double scale);

// One pass over the text: applies the tokens, and hands each glyph with its
// pen position and scale to `sink` when there is one. Returns false when the
// text has more than MaxTextLineBreaks line breaks or characters outside the
// fonts.
enum class WalkResult { Done, TooManyLines, NotLegal };

WalkResult walkText(std::string_view text, Walk& w, GlyphSink sink, void* context) {
  for (char c : text) {
    const unsigned char u = static_cast<unsigned char>(c);
    if (u < FirstCharacter || u > LastCharacter) return WalkResult::NotLegal;
  }
  const double pitch = 2.0 * CapitalHeight * w.size;
  int font = w.font;
  double scale = w.size;  // font units of the text per font unit of the glyph
  int line = 0;
  double x = w.lineStart[0], y = w.firstBaseline;
  double lastAdvance = 0.0;
  double furthest = x;
  w.extent.lines = 1;
  const auto lineWidth = [&](int k) { w.extent.widths[k] = std::max(0.0, furthest - w.lineStart[k]); };
  const auto glyph = [&](char c) {
    const Glyph* glyphs = fontGlyphs(font);
    if (!glyphs) return;
    const Glyph& g = glyphs[static_cast<unsigned char>(c) - FirstCharacter];
    if (sink) sink(context, g, x, y, scale);
    lastAdvance = (g.right - g.left) * scale;
    x += lastAdvance;
    furthest = std::max(furthest, x);
  };
  for (std::size_t k = 0; k < text.size(); ++k) {
    const char c = text[k];
    if (c != '{' || k + 1 >= text.size() || !tokenCharacter(text[k + 1])) {
      glyph(c);
      continue;
    }
    const char t = text[++k];
    switch (t) {
      case '{': glyph('{'); break;
      case '+': y += 0.5 * CapitalHeight * scale; break;
      case '-': y -= 0.5 * CapitalHeight * scale; break;
      case 'h': case 'H': scale *= 0.5; break;
      case 'd': case 'D': scale *= 2.0; break;
      case 'b': case 'B': x -= lastAdvance; break;
      case 'u': case 'U': y += 0.5 * CapitalHeight * w.size; break;
      case 'o': case 'O': y -= 0.5 * CapitalHeight * w.size; break;
      case 'c': case 'C': x = w.lineStart[line]; break;
      case 'n': case 'N':
        lineWidth(line);
        if (line == MaxTextLineBreaks) return WalkResult::TooManyLines;
        ++line;
        w.extent.lines = line + 1;
        x = furthest = w.lineStart[line];
        y = w.firstBaseline - line * pitch;
        lastAdvance = 0.0;
        break;
      default: font = t == '0' ? 10 : t - '0'; break;
    }
  }
  lineWidth(line);
  w.extent.height = (w.extent.lines - 1) * pitch + CapitalHeight * w.size;
  return WalkResult::Done;
}

// Measures a text for `routine`; false after the message when it is refused.
bool measure(const char* routine, std::string_view text, double size, int font,
             TextExtent& extent, bool& status) {
  extent = TextExtent{};
  if (!(size > 0.0)) return true;
  Walk w;
  w.size = size;
  w.font = font;
  const WalkResult r = walkText(text, w, nullptr, nullptr);
  if (r != WalkResult::Done) {
    const std::string head = std::string("PLOT ERROR FROM SUBROUTINE ** ") + routine + " **";
    if (r == WalkResult::TooManyLines)
      fail(head + "{nwl(No more than " + std::to_string(MaxTextLineBreaks) +
               " new-lines in a string)",
           status);
    else
      fail(head + "{nwl(text string not legal", status);
    return false;
  }
  extent = w.extent;
  return true;
}

// The frame of a text on the device: origin in world units, device units per
// font unit, rotation, world units per device unit.
struct Frame {
  double x0 = 0.0, y0 = 0.0;
  double unit = 1.0;
  double cosA = 1.0, sinA = 0.0;
  double dx = 1.0, dy = 1.0;
  // The world point of (u, v) font units from the origin.
  void place(double u, double v, double& x, double& y) const {
    const double a = u * unit, b = v * unit;
    x = x0 + (a * cosA - b * sinA) * dx;
    y = y0 + (a * sinA + b * cosA) * dy;
  }
};

void drawGlyph(void* context, const Glyph& g, double x, double y, double scale) {
  const Frame& f = *static_cast<const Frame*>(context);
  for (int k = 0; k < g.count; ++k) {
    double wx, wy;
    f.place(x + (g.items[k][0] - g.left) * scale, y + g.items[k][1] * scale, wx, wy);
    if (g.items[k][2] == 0)
      strokeMove(wx, wy);
    else
      strokeDraw(wx, wy);
  }
}

// Device units of one font unit at size 1 for a character height of
// `height` of the surface.
double deviceUnitsPerFontUnit(double height) {
  return height * (plotState().heightUnits - 1) / CapitalHeight;
}

// Lays out and draws the text of the text state; the frame box around the
// block when `boxed`.
void drawText(std::string_view text, bool boxed, bool& status) {
  const TextState& s = state();
  TextExtent extent;
  if (!measure("GDWTXT", text, s.TextSize, s.font, extent, status)) return;
  Walk w;
  w.size = s.TextSize;
  w.font = s.font;
  const int align = std::clamp(s.Alignment, 1, 9);
  const double along = ((align - 1) / 3) * 0.5;  // 0 start, 0.5 middle, 1 end
  const int vertical = (align - 1) % 3;          // 0 bottom, 1 middle, 2 top
  const double pitch = 2.0 * CapitalHeight * s.TextSize;
  const double cap = CapitalHeight * s.TextSize;
  for (int k = 0; k < extent.lines; ++k) w.lineStart[k] = -along * extent.widths[k];
  w.firstBaseline = vertical == 0   ? (extent.lines - 1) * pitch
                    : vertical == 1 ? extent.height / 2.0 - cap
                                    : -cap;

  Frame f;
  f.x0 = s.x;
  f.y0 = s.y;
  f.unit = deviceUnitsPerFontUnit(s.height);
  const double angle = s.TextAngle * std::numbers::pi / 180.0;
  f.cosA = std::cos(angle);
  f.sinA = std::sin(angle);
  worldPerDeviceUnit(f.dx, f.dy);

  strokeColour(s.colour);
  walkText(text, w, drawGlyph, &f);
  if (boxed) {
    const double endX = plotState().penX, endY = plotState().penY;
    double left = 0.0, right = 0.0;
    for (int k = 0; k < extent.lines; ++k) {
      left = std::min(left, w.lineStart[k]);
      right = std::max(right, w.lineStart[k] + extent.widths[k]);
    }
    const double gap = 0.25 * cap;
    const double bottom = w.firstBaseline - (extent.lines - 1) * pitch - 2.0 * gap;
    const double top = w.firstBaseline + cap + gap;
    const double u[5] = {left - gap, right + gap, right + gap, left - gap, left - gap};
    const double v[5] = {bottom, bottom, top, top, bottom};
    for (int k = 0; k < 5; ++k) {
      double wx, wy;
      f.place(u[k], v[k], wx, wy);
      if (k == 0)
        strokeMove(wx, wy);
      else
        strokeDraw(wx, wy);
    }
    strokeMove(endX, endY);
  }
}

}  // namespace

TextState& textState() { return state(); }

void resetStrokes() {
  FontTable& t = fonts();
  for (int f = 0; f < MaxFonts; ++f) {
    t.loaded[f] = t.tried[f] = false;
    for (Glyph& g : t.glyph[f]) g.count = g.left = g.right = 0;
  }
  MarkerTable& m = markers();
  m.count = 0;
  m.tried = false;
  state() = TextState{};
}

std::string fontPath(std::string_view fileName) {
  const std::string name(fileName);
  std::string candidates[8];
  int count = 0;
  const framework::Configuration& c = framework::configuration();
  for (const std::string* directory : {&c.primaryFontDirectory, &c.secondaryFontDirectory}) {
    const std::string d = fmt::stripped(*directory);
    if (d.empty()) continue;
    candidates[count++] = d + "/config/fonts/" + name;
    candidates[count++] = d + "/" + name;
  }
  const framework::ProgramState& p = framework::program();
  if (const std::string home = fmt::stripped(p.installationPath); !home.empty())
    candidates[count++] = home + "/config/fonts/" + name;
  const std::string project = fmt::stripped(p.projectDirectory);
  candidates[count++] = project.empty() ? name : project + "/" + name;
#ifdef KNTR_DATA_DIR
  candidates[count++] = std::string(KNTR_DATA_DIR) + "/fonts/" + name;
#endif
  for (int k = 0; k < count; ++k)
    if (framework::fileExists(candidates[k])) return candidates[k];
  return candidates[0];
}

void LDFONT(int font, bool& status) {
  status = false;
  if (font < 1 || font > MaxFonts) {
    fail("Font number is invalid!", status);
    return;
  }
  FontTable& t = fonts();
  t.tried[font - 1] = true;
  Glyph* glyphs = t.glyph[font - 1];
  for (int c = 0; c < CharacterCount; ++c) glyphs[c].count = glyphs[c].left = glyphs[c].right = 0;
  // A file that ends early keeps the characters read before the end.
  readFile(
      fontPath(fontFiles[font - 1]),
      [&](NumberReader& in) {
        t.loaded[font - 1] = true;
        return readFont(in, glyphs);
      },
      status);
}

void LDMARK(bool& status) {
  status = false;
  MarkerTable& m = markers();
  m.tried = true;
  m.count = 0;
  readFile(fontPath(MarkerFile), [&](NumberReader& in) { return readMarkers(in, m); }, status);
}

void loadPlotFonts(bool& status) {
  status = false;
  bool failed = false;
  for (int font : {1, 4, 5}) {
    LDFONT(font, failed);
    status = status || failed;
  }
  LDMARK(failed);
  status = status || failed;
}

void GDWTXT(std::string_view text, bool& status) {
  status = false;
  if (!(state().TextSize > 0.0)) return;
  drawText(text, false, status);
}

void GWTEXT(std::string_view text, double size, TextExtent& extent, bool& status) {
  status = false;
  measure("GWTEXT", text, size, state().font, extent, status);
}

void GDMARK(int kind, double x, double y, double size) {
  MarkerTable& m = markers();
  if (m.count == 0 && !m.tried) {
    bool failed = false;
    LDMARK(failed);
  }
  if (kind < 1 || kind > m.count || !(size > 0.0)) return;
  double dx, dy;
  worldPerDeviceUnit(dx, dy);
  const double half = 0.5 * MarkerHeight * (plotState().heightUnits - 1) * size;
  for (int k = 0; k < m.points[kind - 1]; ++k) {
    const MarkerPoint& q = m.point[kind - 1][k];
    const double wx = x + q.x * half * dx, wy = y + q.y * half * dy;
    if (q.pen == 0)
      strokeMove(wx, wy);
    else
      strokeDraw(wx, wy);
  }
}

void GMARK2(int kind) {
  const double x = plotState().penX, y = plotState().penY;
  bool failed = false;
  int colour = 1;
  GINQIN("mrkcol", colour, failed);
  strokeColour(colour);
  GDMARK(kind, x, y, plotState().markerSize);
  strokeMove(x, y);
  GMOVE2(x, y);
}

void GWTEXT(std::string_view text) {
  const std::string_view cut = fmt::trimmed(text);
  const double x = plotState().penX, y = plotState().penY;
  if (cut.empty()) {
    GINIT(2);
    return;
  }
  bool failed = false;
  TextState& s = state();
  s.x = x;
  s.y = y;
  GINQRL("txtsiz", s.TextSize, failed);
  GINQRL("txtang", s.TextAngle, failed);
  GINQRL("txthgh", s.height, failed);
  GINQIN("txtlrg", s.Alignment, failed);
  GINQIN("txtfnt", s.font, failed);
  GINQIN("txtcol", s.colour, failed);
  int framed = 0;
  GINQIN("txtfrm", framed, failed);
  if (!(s.height > 0.0)) s.height = DefaultTextHeight;
  if (s.font < 1 || s.font > MaxFonts) s.font = 1;
  if (s.TextSize > 0.0) drawText(cut, framed != 0, failed);
  strokeMove(x, y);
  GMOVE2(x, y);
  GINIT(2);
}

}  // namespace kntr::graphics
