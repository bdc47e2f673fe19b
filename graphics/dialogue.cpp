#include "graphics/dialogue.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <string>

#include "framework/format.h"
#include "framework/input.h"
#include "framework/menus.h"
#include "framework/startup.h"
#include "framework/state.h"
#include "framework/text.h"
#include "graphics/strokes.h"
#include "graphics/view.h"
#include "platform/cairodevice.h"
#include "platform/window.h"

namespace kntr::graphics {

namespace {

namespace fw = framework;

// Size of the texts of panel, menu and prompts.
constexpr double PanelTextSize = 0.65;
// Share of a window's screen that it takes on its first open, per cent.
constexpr int WindowPercent = 80;
// Zoom of one notch of the mouse wheel.
constexpr double WheelZoom = 1.25;

// Panel insets: space of the menu and panel beside the picture.
constexpr double InsetLeft = 0.0, InsetRight = 0.2, InsetBottom = 0.1, InsetTop = 0.05;

// Colours of the window's furniture.
constexpr int FrameColour = 1;
constexpr int BoxColour = 8;
constexpr int BoxEdgeColour = 5;
constexpr int ItemTextColour = 1;
constexpr int HeadingColour = 3;
constexpr int PromptColours[3] = {3, 4, 1};
constexpr int ErrorColour = 2;
constexpr int MessageColour = 4;

RedrawClient windowClient = nullptr;
UnderlayHandler underlayHandler = nullptr;
QuestionTracker questionTracker = nullptr;
bool headlessNoted = false;

// Runs `draw` with clip mode "off" and the text state kept.
template <class Draw>
void withFurnitureState(Draw draw) {
  int clip = ClipOff;
  bool bad = false;
  GINQIN("iclipx", clip, bad);
  const TextState keep = textState();
  GCLIPM("off");
  draw();
  textState() = keep;
  GSETIN("iclipx", clip, bad);
}

// A filled rectangle between surface fractions.
void fillBox(double u0, double v0, double u1, double v1, int colour) {
  platform::Device* d = platform::currentDevice();
  if (!d) return;
  const PlotState& s = plotState();
  const double W = s.widthUnits - 1, H = s.heightUnits - 1;
  const double xy[8] = {u0 * W, (1 - v0) * H, u1 * W, (1 - v0) * H,
                        u1 * W, (1 - v1) * H, u0 * W, (1 - v1) * H};
  d->color(1, colour);
  d->polygon(4, xy);
  plotState().deviceColour = -1;
}

void line(double u0, double v0, double u1, double v1, int colour) {
  double x0, y0, x1, y1;
  fractionToWorld(u0, v0, x0, y0);
  fractionToWorld(u1, v1, x1, y1);
  strokeColour(colour);
  strokeMove(x0, y0);
  strokeDraw(x1, y1);
}

void outline(double u0, double v0, double u1, double v1, int colour) {
  line(u0, v0, u1, v0, colour);
  line(u1, v0, u1, v1, colour);
  line(u1, v1, u0, v1, colour);
  line(u0, v1, u0, v0, colour);
}

// A text in the window: the console's line break becomes the stroke text's
// own, its other three-letter tokens (colours, screen control) go. "{n"
// before a word stays a line break of the stroke text.
std::string windowText(std::string_view text) {
  auto letter = [&](std::size_t k) {
    return k < text.size() && std::isalpha(static_cast<unsigned char>(text[k]));
  };
  std::string out;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '{' && letter(i + 1) && letter(i + 2) && letter(i + 3)) {
      const std::string token = fmt::upper(text.substr(i + 1, 3));
      if (token == "NWL") {
        out += "{n";
        i += 3;
        continue;
      }
      if (token[0] != 'N') {
        i += 3;
        continue;
      }
    }
    out += text[i];
  }
  return out;
}

void text(double u, double v, std::string_view value, double size, int alignment, int colour) {
  TextState& t = textState();
  fractionToWorld(u, v, t.x, t.y);
  t.TextSize = size;
  t.TextAngle = 0.0;
  t.Alignment = alignment;
  t.colour = colour;
  t.font = 1;
  t.height = DefaultTextHeight;
  bool failed = false;
  GDWTXT(value, failed);
}

// The menu area and the box of item k, in surface fractions.
struct MenuArea {
  double left, right, bottom, top, halfWidth, halfHeight;
};
MenuArea menuArea() {
  const double F = FrameWidth;
  MenuArea a;
  a.left = 0.8;
  a.right = 1.0 - frameWidthX() / 3.0;
  a.bottom = F / 3.0 + 0.1;
  a.top = 1.0 - (F / 3.0 + 0.05);
  a.halfWidth = (a.right - a.left) / MenuWidthConstant;
  a.halfHeight = (a.top - a.bottom) / 24.0;
  return a;
}
void itemBox(int k, double& u0, double& v0, double& u1, double& v1) {
  const MenuArea a = menuArea();
  const double uc = (a.left + a.right) / 2.0;
  const double vc = a.top - (2 * k - 1) * a.halfHeight;
  u0 = uc - 0.95 * a.halfWidth;
  u1 = uc + 0.95 * a.halfWidth;
  v0 = vc - 0.8 * a.halfHeight;
  v1 = vc + 0.8 * a.halfHeight;
}

// Title, breadcrumb and item boxes; all in the background colour to erase.
void drawMenu(bool erase) {
  GraphicMenu& m = graphicMenu();
  withFurnitureState([&] {
    if (m.headings > 0) {
      const std::string crumb = breadcrumbText(m.stack, m.headings);
      const double below = 1.0 - InsetTop;
      if (erase) {
        fillBox(0.0, below + 0.002, 1.0, 1.0, 0);
      } else {
        if (!crumb.empty()) text(0.01, 0.99, crumb, PanelTextSize, 3, MessageColour);
        text(1.0 - frameWidthX() / 3.0, 0.99, m.heading, PanelTextSize, 9, HeadingColour);
      }
    }
    if (erase && m.count > 0) {
      // The boxes and whatever their texts reached.
      const MenuArea a = menuArea();
      fillBox(a.left + 0.001, a.bottom - 0.004, a.right + 0.002, a.top + 0.004, 0);
      return;
    }
    for (int k = 1; k <= m.count; ++k) {
      double u0, v0, u1, v1;
      itemBox(k, u0, v0, u1, v1);
      fillBox(u0, v0, u1, v1, BoxColour);
      outline(u0, v0, u1, v1, BoxEdgeColour);
      text((u0 + u1) / 2, (v0 + v1) / 2, m.items[k - 1], PanelTextSize, 5, ItemTextColour);
    }
  });
}

}  // namespace

// The frame: a line along the top inset, two nested rectangles.
void GWFRAM() {
  withFurnitureState([] {
    const double F = FrameWidth, Fx = frameWidthX();
    line(0.0, 1.0 - InsetTop, 1.0, 1.0 - InsetTop, FrameColour);
    for (double share : {1.0 / 3.0, 0.5}) {
      outline(InsetLeft + share * Fx, InsetBottom + share * F, 1.0 - InsetRight - share * Fx,
              1.0 - InsetTop - share * F, FrameColour);
    }
  });
}

namespace {

double promptHeight(int k) {
  return InsetBottom * (k == 1 ? 5.0 : (k == 2 ? 3.0 : 1.0)) / 7.0;
}

void drawPrompt(int k) {
  GraphicMenu& m = graphicMenu();
  withFurnitureState([&] {
    const double v = promptHeight(k);
    fillBox(0.0, v - InsetBottom / 7.0, 0.8 - 0.002, v + InsetBottom / 7.0, 0);
    if (!m.prompts[k - 1].empty())
      text(frameWidthX() / 3.0, v, m.prompts[k - 1], PanelTextSize, 2, PromptColours[k - 1]);
  });
}

// Sets the margins and digitizing insets of the window's surface.
void layOut() {
  PlotState& s = plotState();
  const double F = FrameWidth, Fx = frameWidthX();
  GMARG(InsetLeft + Fx, InsetRight + Fx, InsetBottom + F, InsetTop + F);
  s.digitLeft = InsetLeft + Fx / 2;
  s.digitRight = InsetRight + Fx / 2;
  s.digitBottom = InsetBottom + F / 2;
  s.digitTop = InsetTop + F / 2;
}

// The window's two callbacks.
void rescaleWindow(int width, int height, double widthMm, double heightMm) {
  rescalePlotState(width, height, widthMm, heightMm);
}

void redrawWindow(int mode) {
  const Rectangle kept = plotState().scale;
  if (mode == 2) layOut();
  GWSETP();
  // The view stays what it was, at the new size.
  G2SCLT(kept.xmin, kept.xmax, kept.ymin, kept.ymax);
  GCLIPM("digit");
  bool failed = false;
  if (windowClient) windowClient(false, false, failed);
  flushPlot();
}

// The screen as it stands, drawn anew: furniture and picture.
void repaint() {
  redrawWindow(1);
}

// A box with a text in the middle of the picture, shown until any key.
void waitAnyKey();
void textBox(std::string_view value, int colour) {
  const std::string shown = windowText(fmt::trimmed(value));
  withFurnitureState([&] {
    TextExtent extent;
    bool failed = false;
    GWTEXT(shown, PanelTextSize, extent, failed);
    const PlotState& s = plotState();
    // Font units to surface fractions: a capital is 21 units high.
    const double unit = DefaultTextHeight / CapitalHeight;
    double width = 0.0;
    for (int k = 0; k < std::max(1, extent.lines); ++k) width = std::max(width, extent.widths[k]);
    const double halfU = std::min(0.39, width * unit * s.asprto / 2 + 0.02);
    const double halfV = std::min(0.4, extent.height * unit / 2 + 0.02);
    const double uc = 0.4, vc = 0.55;
    fillBox(uc - halfU, vc - halfV, uc + halfU, vc + halfV, 0);
    outline(uc - halfU, vc - halfV, uc + halfU, vc + halfV, colour);
    text(uc, vc, shown, PanelTextSize, 5, colour);
  });
  flushPlot();
}

// A text for the terminal: a line break of the stroke text ("{n" before
// anything but a token) becomes the terminal's.
std::string terminalText(std::string_view text) {
  std::string out;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '{' && i + 1 < text.size() && (text[i + 1] == 'n' || text[i + 1] == 'N')) {
      const bool token = i + 3 < text.size() && std::isalpha(static_cast<unsigned char>(text[i + 2])) &&
                         std::isalpha(static_cast<unsigned char>(text[i + 3]));
      if (!token) {
        out += "{nwl";
        ++i;
        continue;
      }
    }
    out += text[i];
  }
  return out;
}

void errorBox(std::string_view value) {
  fw::PUTSCN("{csb{red" + terminalText(fmt::trimmed(value)));
  textBox(value, ErrorColour);
  waitAnyKey();
  repaint();
}

void messageBox(std::string_view value) {
  fw::PUTSCN("{csb{gre" + terminalText(fmt::trimmed(value)));
  textBox(value, MessageColour);
  waitAnyKey();
  repaint();
}

void waitAnyKey() {
  const std::string kept = graphicMenu().prompts[2];
  GPRMPT(3, "(to continue hit any key)");
  flushPlot();
  for (;;) {
    platform::WindowEvent e;
    platform::cwNextEvent(e, false);
    if (e.kind == platform::EventKind::Key || e.kind == platform::EventKind::Line ||
        e.kind == platform::EventKind::Press || e.kind == platform::EventKind::Closed)
      break;
  }
  GPRMPT(3, kept);
}

// The graphic family as the framework calls it.
void itemsForFramework(std::string_view heading, std::span<const std::string> items) {
  GITEMS(heading, items);
}
void questionForFramework(std::string_view question, std::string_view deflt, std::string_view help,
                          int expected, bool& picked, bool& abort, bool& status) {
  GraphicAnswer answer;
  GQUEST(question, deflt, help, expected, answer, abort, status);
  picked = answer.kind != KeyboardInput && !abort && !status;
}

// What a press means: a menu item, a panel button (acted on), a position
// inside the digit rectangle, or nothing.
enum class PressOutcome { Item, Position, Again };

PressOutcome press(double px, double py, bool exact, double wx, double wy, GraphicAnswer& answer) {
  double u, v;
  deviceToFraction(px, py, u, v);
  if (const int item = menuItemAt(u, v, graphicMenu().count); item > 0) {
    answer.kind = ItemInput;
    answer.item = item;
    return PressOutcome::Item;
  }
  if (const int button = panelIndex(u, v); button > 0) {
    bool failed = false;
    GPANEL(button, failed);
    return PressOutcome::Again;
  }
  double x = wx, y = wy;
  if (!exact) deviceToWorld(px, py, x, y);
  const Rectangle& d = plotState().digit;
  if (x < d.xmin || x > d.xmax || y < d.ymin || y > d.ymax) return PressOutcome::Again;
  answer.kind = PositionInput;
  answer.x = x;
  answer.y = y;
  return PressOutcome::Position;
}

// The fields of an event line: blanks next to a comma go, so "X, Y" reads
// as the two fields it means.
std::string eventFields(std::string_view rest) {
  std::string out;
  for (char c : rest) {
    if (c == ',') {
      while (!out.empty() && out.back() == ' ') out.pop_back();
      out += c;
    } else if (!(c == ' ' && !out.empty() && out.back() == ',')) {
      out += c;
    }
  }
  return out;
}

// Two reals from the rest of an event line.
bool twoReals(std::string_view rest, double& a, double& b) {
  fw::Answer parsed;
  bool status = false;
  fw::RDGIVN(eventFields(fmt::stripped(rest)), 2, parsed, status);
  if (status || parsed.special || parsed.help || parsed.abort || parsed.deflt) {
    if (!status) fw::ERRSCN("Two values are needed");
    return false;
  }
  std::array<double, 2> values{0.0, 0.0};
  bool none = false;
  fw::GTREAL(values, none, status);
  if (status) return false;
  a = values[0];
  b = values[1];
  return true;
}

void notImplemented() {
  fw::ERRSCN("Not implemented in this version{nwl{gre(version is " +
             std::string(fmt::trimmed(fw::program().SPVERS)) + ")");
}

// Undo or redo through the client, or the note that there is none.
void editCommand(bool undo) {
  void (*hook)() = undo ? editHooks().undo : editHooks().redo;
  if (hook)
    hook();
  else
    notImplemented();
}

// A graphic event line; true when it answered the question.
bool eventLine(const std::string& word, std::string_view rest, GraphicAnswer& answer) {
  fw::tickBackupClock();
  const std::string w = fmt::upper(word);
  const std::string argument = fmt::stripped(rest);
  if (w == "PICK" || w == "PIXEL") {
    double a = 0, b = 0;
    if (!twoReals(argument, a, b)) return false;
    double px = a, py = b, wx = a, wy = b;
    if (w == "PICK") worldToDevice(a, b, px, py);
    return press(px, py, w == "PICK", wx, wy, answer) != PressOutcome::Again;
  }
  if (w == "MOVE") {
    double a = 0, b = 0;
    // a move answers no question; a question that follows the pointer sees it
    if (twoReals(argument, a, b) && questionTracker) questionTracker(a, b);
    return false;
  }
  if (w == "ITEM") {
    fw::Answer parsed;
    bool status = false;
    fw::RDGIVN(argument, 1, parsed, status);
    std::array<int, 1> value{0};
    bool none = false;
    if (!status) fw::GTINTV(value, none, status);
    if (status || none) return false;
    const int n = graphicMenu().count;
    if (value[0] < 1 || value[0] > n) {
      fw::ERRSCN("Input must be an integer number in [{yel1-" + std::to_string(n) + "{red]");
      return false;
    }
    answer.kind = ItemInput;
    answer.item = value[0];
    return true;
  }
  if (w == "BUTTON") {
    const int index = panelIndexOf(argument);
    if (index == 0) {
      fw::ERRSCN("Unknown button: " + fw::literal(argument));
      return false;
    }
    bool failed = false;
    GPANEL(index, failed);
    return false;
  }
  if (w == "PICTURE") {
    bool failed = false;
    GWPICT(argument, failed);
    return false;
  }
  if (w == "UNDERLAY" && underlayHandler) {
    underlayHandler(argument);
    return false;
  }
  if (w == "UNDO" || w == "REDO") {
    editCommand(w == "UNDO");
    return false;
  }
  notImplemented();  // an underlay with no client to show it
  return false;
}

// Splits "#word rest" when the word is a graphic event word.
bool graphicEvent(std::string_view lineText, std::string& word, std::string_view& rest) {
  const std::string_view t = fmt::trimmed(lineText);
  std::size_t start = 0;
  while (start < t.size() && t[start] == ' ') ++start;
  if (start >= t.size() || t[start] != '#') return false;
  std::size_t end = start + 1;
  while (end < t.size() && t[end] != ' ' && t[end] != ',') ++end;
  word = std::string(t.substr(start + 1, end - start - 1));
  rest = t.substr(end);
  return fw::graphicEventWord(word);
}

}  // namespace

GraphicMenu& graphicMenu() {
  static GraphicMenu menu;
  return menu;
}

EditHooks& editHooks() {
  static EditHooks hooks;
  return hooks;
}

double frameWidthX() { return FrameWidth * plotState().asprto; }

void deviceToFraction(double px, double py, double& u, double& v) {
  const PlotState& s = plotState();
  u = px / std::max(1, s.widthUnits - 1);
  v = 1.0 - py / std::max(1, s.heightUnits - 1);
}

void fractionToWorld(double u, double v, double& x, double& y) {
  const Rectangle& p = plotState().plot;
  x = p.xmin + u * (p.xmax - p.xmin);
  y = p.ymin + v * (p.ymax - p.ymin);
}

std::string breadcrumbText(const std::string* stack, int count) {
  if (count <= 1) return {};
  int cost = 0;
  int deepest = count;  // the lowest level that fitted
  for (int k = count - 1; k >= 1; --k) {
    const int length = static_cast<int>(fmt::trimmed(stack[k - 1]).size());
    cost += length + (k == 1 ? 1 : 2);
    if (cost > BreadcrumbLength) break;
    deepest = k;
  }
  std::string crumb;
  for (int k = deepest; k <= count - 1; ++k) {
    crumb += k == deepest ? "/" : " /";
    crumb += fmt::trimmed(stack[k - 1]);
  }
  return crumb;
}

int menuItemAt(double u, double v, int count) {
  for (int k = 1; k <= count; ++k) {
    double u0, v0, u1, v1;
    itemBox(k, u0, v0, u1, v1);
    if (u >= u0 && u <= u1 && v >= v0 && v <= v1) return k;
  }
  return 0;
}

void GPRMPT(int lineNumber, std::string_view value) {
  if (lineNumber < 1 || lineNumber > 3) return;
  std::string shown = windowText(fmt::trimmed(value));
  if (static_cast<int>(shown.size()) > PromptLength) shown.resize(PromptLength);
  graphicMenu().prompts[lineNumber - 1] = shown;
  if (platform::currentDevice()) drawPrompt(lineNumber);
}

void GWSETP() {
  platform::Device* d = platform::currentDevice();
  if (!d) return;
  const PlotState& s = plotState();
  d->clear(0, 0, s.widthUnits, s.heightUnits);
  GWFRAM();
  DRPANL();
  drawMenu(false);
  for (int k = 1; k <= 3; ++k) drawPrompt(k);
}

void OPNWIN(RedrawClient client, bool& failed) {
  failed = false;
  int width = 0, height = 0;
  double widthMm = 0, heightMm = 0;
  const std::string title = std::string(fmt::trimmed(fw::program().SPNAME));
  platform::cwOpenWindow(WindowPercent, WindowPercent, title.empty() ? "KNTR" : title, failed,
                         width, height, widthMm, heightMm);
  if (failed) {
    fw::ERRSCN("Unable to open the graphics window");
    return;
  }
  if (platform::windowHeadless() && !headlessNoted) {
    headlessNoted = true;
    fw::LGNOTE("No graphics display: the graphics window is an off-screen image of " +
               std::to_string(platform::HeadlessWidth) + "x" +
               std::to_string(platform::HeadlessHeight) + " pixels at 96 dpi");
  }
  platform::cwSetCallbacks(rescaleWindow, redrawWindow);
  attachDevice(DeviceWindow, platform::windowDevice());
  windowClient = client;
  setRedrawClient(client);
  setViewClient(client);
  fw::ProgramState& p = fw::program();
  p.outputDevice = fw::DeviceGraphics;
  fw::graphicsTextHooks() = {errorBox, messageBox, waitAnyKey};
  fw::graphicDialogues() = {itemsForFramework, questionForFramework};
  GraphicMenu& m = graphicMenu();
  m = GraphicMenu{};
  GPALET(1);
  GCOLOR(1);
  layOut();
  G2SCAL(0, 1, 0, 1);
  GWSETP();
  GCLIPM("digit");
}

void CLSWIN() {
  graphicMenu() = GraphicMenu{};
  platform::cwCloseWindow();
  attachDevice(DeviceNoDrawing, nullptr);
  fw::program().outputDevice = fw::DeviceConsole;
  fw::graphicsTextHooks() = {};
  fw::graphicDialogues() = {};
}

void GITEMS(std::string_view heading, std::span<const std::string> items) {
  const int n = static_cast<int>(items.size());
  if (n > MaxMenuItems) {
    fw::ERRSCN("Attempt to exceed maximum number of items{n(maximum is 12 < " + std::to_string(n) +
               ")");
    return;
  }
  GraphicMenu& m = graphicMenu();
  if (platform::currentDevice()) drawMenu(true);
  std::string head(fmt::trimmed(heading));
  if (head.size() > static_cast<std::size_t>(HeadingLength)) head.resize(HeadingLength);
  if (head.empty()) {
    fw::PRMESG("(GITEMS) Unable to stack menu without heading");
  } else {
    int found = 0;
    for (int k = 1; k <= m.headings; ++k)
      if (m.stack[k - 1] == head) found = k;
    if (m.headings == 0) {
      m.stack[0] = head;
      m.headings = 1;
    } else if (found > 0) {
      m.headings = found;  // back up the menu tree
    } else if (m.headings >= MaxHeadings) {
      fw::PRMESG("(GITEMS) Unable to stack more menu headings");
    } else {
      m.stack[m.headings++] = head;
    }
    m.heading = head;
  }
  m.count = n;
  for (int k = 0; k < n; ++k) {
    std::string item(items[static_cast<std::size_t>(k)]);
    if (item.size() > static_cast<std::size_t>(MenuItemLength)) item.resize(MenuItemLength);
    m.items[k] = item;
  }
  if (platform::currentDevice()) {
    drawMenu(false);
    flushPlot();
  }
  fw::OUTSCN("{cya" + fw::literal(m.heading));
}

void GQUEST(std::string_view question, std::string_view deflt, std::string_view help,
            int expected, GraphicAnswer& answer, bool& abort, bool& status) {
  status = false;
  abort = false;
  answer = GraphicAnswer{};
  if (fmt::trimmed(question).empty()) {
    fw::fail("No question text available", status);
    return;
  }
  const bool hasDefault = !fmt::trimmed(deflt).empty();
  const std::string defaultText =
      hasDefault ? "(default " + std::string(fmt::trimmed(deflt)) + ")" : "(no default)";
  GraphicMenu& m = graphicMenu();
  for (;;) {
    // A window closed by the user answers every question with an abort, so
    // the dialogue goes back to the terminal.
    if (!platform::windowShown()) {
      abort = true;
      return;
    }
    GPRMPT(1, question);
    GPRMPT(2, defaultText);
    GPRMPT(3, m.typed);
    fw::OUTSCN("{yel" + std::string(fmt::trimmed(question)) + " {gre" + defaultText);
    flushPlot();
    platform::WindowEvent e;
    platform::cwNextEvent(e, questionTracker != nullptr);
    std::string lineText;
    switch (e.kind) {
      case platform::EventKind::Closed:
        abort = true;
        return;
      case platform::EventKind::Move: {
        // the pointer followed while the question waits (a rubber band)
        double x, y;
        deviceToWorld(e.x, e.y, x, y);
        if (questionTracker) questionTracker(x, y);
        continue;
      }
      case platform::EventKind::Key:
        if (e.key == 13) {
          lineText = m.typed;
          m.typed.clear();
          break;
        }
        if (e.key == UndoKey || e.key == RedoKey) {
          editCommand(e.key == UndoKey);
        } else if (e.key == 8) {
          if (!m.typed.empty()) m.typed.pop_back();
        } else if (e.key == 27) {
          m.typed.clear();
        } else if (e.key >= 32 && e.key < 127 &&
                   static_cast<int>(m.typed.size()) < fw::InputLineLength) {
          m.typed.push_back(static_cast<char>(e.key));
        }
        continue;
      case platform::EventKind::Press:
        fw::tickBackupClock();
        if (e.button == 3) break;  // the right button takes the default
        if (e.button == 1 && press(e.x, e.y, false, 0, 0, answer) != PressOutcome::Again) return;
        continue;
      case platform::EventKind::Wheel: {
        double x, y;
        deviceToWorld(e.x, e.y, x, y);
        bool failed = false;
        GZOOMA(x, y, e.button > 0 ? WheelZoom : 1.0 / WheelZoom, failed);
        continue;
      }
      case platform::EventKind::Drag: {
        double x1, y1, x2, y2;
        deviceToWorld(e.x, e.y, x1, y1);
        deviceToWorld(e.x2, e.y2, x2, y2);
        bool failed = false;
        GPANBY(x1 - x2, y1 - y2, failed);
        continue;
      }
      case platform::EventKind::Line:
        lineText = e.line;
        break;
      default:
        continue;
    }
    std::string word;
    std::string_view rest;
    if (graphicEvent(lineText, word, rest)) {
      if (eventLine(word, rest, answer)) return;
      answer = GraphicAnswer{};
      continue;
    }
    fw::Answer parsed;
    bool error = false;
    fw::RDGIVN(lineText, expected, parsed, error);
    if (parsed.help) {
      const std::string shown = fmt::trimmed(help).empty() ? std::string("No help available")
                                                            : std::string(fmt::trimmed(help));
      messageBox(shown + "{nwl{nwl" + graphicAnswerHelp());
      continue;
    }
    if (!error && parsed.deflt && !hasDefault) {
      fw::ERRSCN("No default values available");
      continue;
    }
    if (error || parsed.special) continue;
    abort = parsed.abort;
    answer.kind = KeyboardInput;
    break;
  }
  fw::tickBackupClock();
}

void GSELCT(std::string_view heading, std::span<const std::string> items,
            std::string_view prompt, std::string_view help, int& selection, bool& abort) {
  GITEMS(heading, items);
  const int n = static_cast<int>(items.size());
  for (;;) {
    GraphicAnswer answer;
    bool status = false;
    GQUEST(prompt, " ", help, 1, answer, abort, status);
    if (abort) return;
    if (status) continue;
    if (answer.kind == ItemInput) {
      selection = answer.item;
      return;
    }
    if (answer.kind != KeyboardInput) continue;
    std::array<int, 1> value{0};
    bool none = false;
    fw::GTINTV(value, none, status);
    if (status || none) continue;
    if (value[0] >= 1 && value[0] <= n) {
      selection = value[0];
      return;
    }
    fw::ERRSCN("Input must be an integer number in [{yel1-" + std::to_string(n) + "{red]");
  }
}

void GWPICT(const std::string& path, bool& failed) {
  failed = false;
  const platform::PictureKind kind = platform::pictureKind(path);
  if (path.empty() || kind == platform::PictureKind::None) {
    fw::fail("Picture file name must end in .png, .svg or .pdf", failed);
    return;
  }
  std::string error;
  if (kind == platform::PictureKind::Png) {
    flushPlot();
    failed = !platform::cwWritePng(path, error);
  } else {
    // Drawn anew through the same routines on a file of the window's size.
    const PlotState kept = plotState();
    auto file = platform::CairoDevice::file(kind, path, kept.widthUnits, kept.heightUnits,
                                            platform::HeadlessDpi, error);
    if (!file) {
      failed = true;
    } else {
      attachDevice(DeviceWindow, file.get());
      plotState() = kept;
      plotState().deviceColour = -1;
      GWSETP();
      GCLIPM("digit");
      bool bad = false;
      if (windowClient) windowClient(false, false, bad);
      flushPlot();
      failed = !file->finish(error);
      attachDevice(DeviceWindow, platform::windowDevice());
      plotState() = kept;
      plotState().deviceColour = -1;
      bool ignored = false;
      GSETIN("iclipx", kept.iclipx, ignored);
    }
  }
  if (failed) {
    fw::ERRSCN("Unable to write the picture " + fw::literal(path) + "{nwl{gre(" + error + ")");
    return;
  }
  GPRMPT(3, "Picture written to " + path);
  fw::OUTSCN("{gre" + fw::literal("Picture written to " + path));
}

void GTCRSR(int& button, double& x, double& y) {
  int key = button, px = 0, py = 0;
  platform::cwdigt(key, px, py);
  button = key;
  if (key == 0) deviceToWorld(px, py, x, y);
}

void GTTRAK(int& kind, int& key, double& x, double& y) {
  for (;;) {
    platform::WindowEvent e;
    platform::cwNextEvent(e, true);
    switch (e.kind) {
      case platform::EventKind::Closed:
        kind = 0;
        return;
      case platform::EventKind::Key:
        kind = 1;
        key = e.key;
        return;
      case platform::EventKind::Press:
      case platform::EventKind::Move:
        if (e.kind == platform::EventKind::Press && e.button != 1) continue;
        kind = e.kind == platform::EventKind::Press ? 2 : 3;
        deviceToWorld(e.x, e.y, x, y);
        return;
      case platform::EventKind::Line: {
        std::string word;
        std::string_view rest;
        if (graphicEvent(e.line, word, rest)) {
          const std::string w = fmt::upper(word);
          double a = 0, b = 0;
          if ((w == "MOVE" || w == "PICK" || w == "PIXEL") && twoReals(rest, a, b)) {
            kind = w == "MOVE" ? 3 : 2;
            x = a;
            y = b;
            if (w == "PIXEL") deviceToWorld(a, b, x, y);
            return;
          }
          continue;
        }
        kind = 1;
        key = e.line.empty() ? 13 : static_cast<unsigned char>(e.line[0]);
        return;
      }
      default:
        continue;
    }
  }
}

void GTRACK(int& result, double& x, double& y, bool& at) {
  at = false;
  for (;;) {
    if (!platform::windowShown()) {
      result = TrackCancel;
      return;
    }
    flushPlot();
    platform::WindowEvent e;
    platform::cwNextEvent(e, true);
    switch (e.kind) {
      case platform::EventKind::Closed:
        result = TrackCancel;
        return;
      case platform::EventKind::Key:
        if (e.key == 27 || e.key == 13) {
          result = e.key == 27 ? TrackCancel : TrackDone;
          return;
        }
        if (e.key == UndoKey || e.key == RedoKey) editCommand(e.key == UndoKey);
        continue;
      case platform::EventKind::Press:
        if (e.button != 1) continue;
        deviceToWorld(e.x, e.y, x, y);
        result = TrackDone;
        at = true;
        return;
      case platform::EventKind::Move:
        deviceToWorld(e.x, e.y, x, y);
        result = TrackPosition;
        return;
      case platform::EventKind::Line:
        break;
      default:
        continue;
    }
    // A line: a pointer event of a script, RETURN or "$".
    std::string word;
    std::string_view rest;
    if (graphicEvent(e.line, word, rest)) {
      const std::string w = fmt::upper(word);
      if (w == "PICTURE") {
        bool failed = false;
        GWPICT(fmt::stripped(rest), failed);
        continue;
      }
      if (w == "UNDO" || w == "REDO") {
        editCommand(w == "UNDO");
        continue;
      }
      if (w != "MOVE" && w != "PICK" && w != "PIXEL") continue;
      double a = 0, b = 0;
      if (!twoReals(fmt::stripped(rest), a, b)) continue;
      x = a;
      y = b;
      if (w == "PIXEL") deviceToWorld(a, b, x, y);
      result = w == "MOVE" ? TrackPosition : TrackDone;
      at = result == TrackDone;
      return;
    }
    const std::string typed = fmt::stripped(e.line);
    if (typed.empty() || typed == "$") {
      result = typed.empty() ? TrackDone : TrackCancel;
      return;
    }
  }
}

std::string graphicAnswerHelp() {
  return "Graphic answers:{nwl"
         "#pick x, y  click at model coordinates{nwl"
         "#pixel px, py  click at a window pixel{nwl"
         "#move x, y  move the pointer{nwl"
         "#item n  choose item n of the menu{nwl"
         "#button name  press a panel button{nwl"
         "#picture file  write the picture (.png, .svg, .pdf){nwl"
         "#undo, #redo  undo or redo a change (Ctrl+Z, Ctrl+Y)";
}

void setUnderlayHandler(UnderlayHandler handler) { underlayHandler = handler; }

void setQuestionTracker(QuestionTracker tracker) { questionTracker = tracker; }

}  // namespace kntr::graphics
