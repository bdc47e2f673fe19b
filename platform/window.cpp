#include "platform/window.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <deque>
#include <memory>

#include "platform/cairodevice.h"
#include "platform/console.h"

// The X headers come last: their macros (None, Status, ...) would otherwise
// reach into the headers above.
#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <cairo-xlib.h>
#include <cairo.h>
#include <poll.h>
#include <unistd.h>

namespace kntr::platform {

namespace {

// The window's buffer as a drawing device. The device stays the same object
// across a change of size; only the image behind it is made anew. A flush
// copies the buffer to the window.
class WindowDevice : public Device {
 public:
  std::unique_ptr<CairoDevice> image;
  int width() const override { return image->width(); }
  int height() const override { return image->height(); }
  double widthMm() const override { return widthMm_; }
  double heightMm() const override { return heightMm_; }
  void move(double x, double y) override { image->move(x, y); }
  void draw(double x, double y) override { image->draw(x, y); }
  void color(int lineWidth, int colour) override { image->color(lineWidth, colour); }
  void polygon(int n, const double* xy) override { image->polygon(n, xy); }
  void clear(double l, double t, double r, double b) override { image->clear(l, t, r, b); }
  void clip(double x1, double y1, double x2, double y2) override { image->clip(x1, y1, x2, y2); }
  void palette(int table) override {
    table_ = table;
    image->palette(table);
  }
  void hairline(bool on) override { image->hairline(on); }
  bool picture(const std::string& path, double l, double t, double r, double b) override {
    return image->picture(path, l, t, r, b);
  }
  void flush() override {
    image->flush();
    cwPresent();
  }
  // A new image of the given size, cleared, with the palette kept.
  void resize(int w, int h, double mmPerPixelX, double mmPerPixelY) {
    image = CairoDevice::image(std::max(2, w), std::max(2, h), HeadlessDpi);
    image->palette(table_);
    widthMm_ = image->width() * mmPerPixelX;
    heightMm_ = image->height() * mmPerPixelY;
  }

 private:
  double widthMm_ = 0.0, heightMm_ = 0.0;
  int table_ = 1;
};

struct Window {
  bool made = false;      // the window (or the headless image) exists
  bool headless = false;
  bool shown = false;
  WindowDevice device;
  double mmPerPixelX = 25.4 / HeadlessDpi, mmPerPixelY = 25.4 / HeadlessDpi;
  // X resources
  Display* display = nullptr;
  ::Window window = 0;
  Atom deleteMessage = 0;
  cairo_surface_t* surface = nullptr;  // the window's own surface
  int surfaceWidth = 0, surfaceHeight = 0;
  // Middle-button drag in progress.
  bool dragging = false;
  int dragX = 0, dragY = 0;
  std::deque<WindowEvent> queue;
  cairo_surface_t* kept = nullptr;  // the picture under a rubber band
  RescaleCallback rescale = nullptr;
  RedrawCallback redraw = nullptr;
  int penX = 0, penY = 0;
};

Window& win() {
  static Window w;
  return w;
}

// A change of size: new buffer, the plot layer told, redrawn in mode 2.
void changeSize(int w, int h) {
  Window& s = win();
  if (w == s.device.width() && h == s.device.height()) return;
  s.device.resize(w, h, s.mmPerPixelX, s.mmPerPixelY);
  if (s.surface) cairo_xlib_surface_set_size(s.surface, w, h);
  s.surfaceWidth = w;
  s.surfaceHeight = h;
  if (s.rescale) s.rescale(s.device.width(), s.device.height(), s.device.widthMm(),
                           s.device.heightMm());
  if (s.redraw) s.redraw(2);
  cwPresent();
}

// The text of a key press: its character, or 13 for RETURN, 8 for erase,
// 27 for escape; 0 for keys with no character (shift, arrows).
int keyCode(XKeyEvent& key) {
  char text[8] = {};
  KeySym sym = 0;
  const int n = XLookupString(&key, text, sizeof text, &sym, nullptr);
  if (sym == XK_Return || sym == XK_KP_Enter) return 13;
  if (sym == XK_BackSpace || sym == XK_Delete) return 8;
  if (n >= 1) return static_cast<unsigned char>(text[0]);
  return 0;
}

// Handles one X event; what the dialogue should see goes to the queue.
void handleXEvent(XEvent& e, bool tracking) {
  Window& s = win();
  switch (e.type) {
    case Expose:
      if (e.xexpose.count == 0) cwPresent();
      break;
    case ConfigureNotify:
      changeSize(e.xconfigure.width, e.xconfigure.height);
      break;
    case KeyPress: {
      const int code = keyCode(e.xkey);
      if (code != 0) {
        WindowEvent ev;
        ev.kind = EventKind::Key;
        ev.key = code;
        ev.x = e.xkey.x;
        ev.y = e.xkey.y;
        s.queue.push_back(ev);
      }
      break;
    }
    case ButtonPress: {
      const int b = static_cast<int>(e.xbutton.button);
      WindowEvent ev;
      ev.x = e.xbutton.x;
      ev.y = e.xbutton.y;
      if (b == 4 || b == 5) {
        ev.kind = EventKind::Wheel;
        ev.button = b == 4 ? 1 : -1;
        s.queue.push_back(ev);
      } else if (b == 2) {
        s.dragging = true;
        s.dragX = ev.x;
        s.dragY = ev.y;
      } else if (b == 1 || b == 3) {
        ev.kind = EventKind::Press;
        ev.button = b;
        s.queue.push_back(ev);
      }
      break;
    }
    case ButtonRelease:
      if (e.xbutton.button == 2 && s.dragging) {
        s.dragging = false;
        WindowEvent ev;
        ev.x = s.dragX;
        ev.y = s.dragY;
        if (std::abs(e.xbutton.x - s.dragX) + std::abs(e.xbutton.y - s.dragY) > 2) {
          ev.kind = EventKind::Drag;
          ev.x2 = e.xbutton.x;
          ev.y2 = e.xbutton.y;
        } else {
          ev.kind = EventKind::Press;
          ev.button = 2;
        }
        s.queue.push_back(ev);
      }
      break;
    case MotionNotify:
      if (tracking) {
        // Only the latest position of a run of moves counts.
        if (!s.queue.empty() && s.queue.back().kind == EventKind::Move) s.queue.pop_back();
        WindowEvent ev;
        ev.kind = EventKind::Move;
        ev.x = e.xmotion.x;
        ev.y = e.xmotion.y;
        s.queue.push_back(ev);
      }
      break;
    case DestroyNotify:
      if (e.xdestroywindow.window != s.window) break;
      // Destroyed from outside: the wait ends as for a close.
      if (s.surface) cairo_surface_destroy(s.surface);
      s.surface = nullptr;
      s.window = 0;
      s.shown = false;
      s.dragging = false;
      {
        WindowEvent ev;
        ev.kind = EventKind::Closed;
        s.queue.push_back(ev);
      }
      break;
    case ClientMessage:
      if (static_cast<Atom>(e.xclient.data.l[0]) == s.deleteMessage) {
        // Closing hides the window and ends the wait.
        XUnmapWindow(s.display, s.window);
        XFlush(s.display);
        s.shown = false;
        s.dragging = false;
        WindowEvent ev;
        ev.kind = EventKind::Closed;
        s.queue.push_back(ev);
      }
      break;
    default:
      break;
  }
}

void pumpX(bool tracking) {
  Window& s = win();
  if (!s.display) return;
  while (XPending(s.display) > 0) {
    XEvent e;
    XNextEvent(s.display, &e);
    handleXEvent(e, tracking);
  }
}

// A line from the console: a typed line, or the default for a click of the
// middle or right button in the terminal. False for other clicks.
bool readConsoleLine(WindowEvent& event) {
  int button = 0, column = 0, row = 0, length = 0;
  std::string line;
  WinConF::getStrMouse(button, column, row, length, line);
  if (button != 0 && button != 2) return false;
  event = WindowEvent{};
  event.kind = EventKind::Line;
  if (button == 0) event.line = line;
  return true;
}

// Errors of requests on a window that went away are of no consequence: the
// window is made anew at the next open.
int ignoreXError(Display*, XErrorEvent*) { return 0; }

// Makes the X window at the given size.
void createWindow(int w, int h, std::string_view title) {
  Window& s = win();
  const int screen = DefaultScreen(s.display);
  s.window = XCreateSimpleWindow(s.display, RootWindow(s.display, screen), 0, 0,
                                 static_cast<unsigned>(w), static_cast<unsigned>(h), 0,
                                 BlackPixel(s.display, screen), BlackPixel(s.display, screen));
  const std::string titleText(title);
  XStoreName(s.display, s.window, titleText.c_str());
  XSelectInput(s.display, s.window,
               ExposureMask | StructureNotifyMask | KeyPressMask | ButtonPressMask |
                   ButtonReleaseMask | PointerMotionMask);
  s.deleteMessage = XInternAtom(s.display, "WM_DELETE_WINDOW", False);
  XSetWMProtocols(s.display, s.window, &s.deleteMessage, 1);
  s.surface = cairo_xlib_surface_create(s.display, s.window, DefaultVisual(s.display, screen), w, h);
  s.surfaceWidth = w;
  s.surfaceHeight = h;
  s.shown = false;
}

// Opens the display and the window; false when there is no display.
bool openX(int horizontalPercent, int verticalPercent, std::string_view title) {
  Window& s = win();
  const char* name = std::getenv("DISPLAY");
  if (!name || !*name) return false;
  s.display = XOpenDisplay(nullptr);
  if (!s.display) return false;
  XSetErrorHandler(ignoreXError);
  const int screen = DefaultScreen(s.display);
  const int screenW = DisplayWidth(s.display, screen), screenH = DisplayHeight(s.display, screen);
  const int mmW = DisplayWidthMM(s.display, screen), mmH = DisplayHeightMM(s.display, screen);
  s.mmPerPixelX = mmW > 0 ? double(mmW) / screenW : 25.4 / HeadlessDpi;
  s.mmPerPixelY = mmH > 0 ? double(mmH) / screenH : 25.4 / HeadlessDpi;
  const int w = std::max(64, horizontalPercent * screenW / 100);
  const int h = std::max(48, verticalPercent * screenH / 100);
  s.device.resize(w, h, s.mmPerPixelX, s.mmPerPixelY);
  createWindow(w, h, title);
  return true;
}

}  // namespace

void cwOpenWindow(int horizontalPercent, int verticalPercent, std::string_view title,
                  bool& failed, int& widthPixels, int& heightPixels, double& widthMm,
                  double& heightMm) {
  failed = false;
  Window& s = win();
  if (!s.made) {
    if (!openX(horizontalPercent, verticalPercent, title)) {
      s.headless = true;
      s.device.resize(HeadlessWidth, HeadlessHeight, s.mmPerPixelX, s.mmPerPixelY);
    }
    if (!s.device.image) {
      failed = true;
      return;
    }
    s.made = true;
  }
  if (s.display && s.window == 0) {
    // The window was destroyed from outside: a new one of the buffer's size.
    createWindow(s.device.width(), s.device.height(), title);
  }
  if (s.display && !s.shown) {
    XMapRaised(s.display, s.window);
    XFlush(s.display);
  }
  s.shown = true;
  widthPixels = s.device.width();
  heightPixels = s.device.height();
  widthMm = s.device.widthMm();
  heightMm = s.device.heightMm();
}

void cwCloseWindow() {
  Window& s = win();
  if (s.display && s.window != 0 && s.shown) {
    XUnmapWindow(s.display, s.window);
    XFlush(s.display);
  }
  s.shown = false;
  s.queue.clear();
}

void cwWaitOnEvent() {
  for (;;) {
    WindowEvent e;
    cwNextEvent(e, false);
    if (e.kind == EventKind::Key || e.kind == EventKind::Line || e.kind == EventKind::Closed)
      return;
  }
}

void cwmove(int x, int y) {
  Window& s = win();
  s.penX = x;
  s.penY = y;
  if (s.device.image) s.device.move(x, y);
}

void cwdraw(int x, int y) {
  Window& s = win();
  if (!s.device.image) return;
  s.device.move(s.penX, s.penY);
  s.device.draw(x, y);
  s.penX = x;
  s.penY = y;
}

void cwColor(int lineWidth, int colour) {
  if (win().device.image) win().device.color(lineWidth, colour);
}

void cwPolygon(int count, const int* xy) {
  if (!win().device.image || count < 3 || count > MaxPolygonPoints) return;
  double points[2 * MaxPolygonPoints];
  for (int k = 0; k < 2 * count; ++k) points[k] = xy[k];
  win().device.polygon(count, points);
}

void cwclar(int left, int top, int right, int bottom) {
  if (win().device.image) win().device.clear(left, top, right, bottom);
}

void cwclip(int x1, int y1, int x2, int y2) {
  if (win().device.image) win().device.clip(x1, y1, x2, y2);
}

void cwdigt(int& key, int& x, int& y) {
  for (;;) {
    WindowEvent e;
    cwNextEvent(e, false);
    switch (e.kind) {
      case EventKind::Key:
        key = e.key;
        return;
      case EventKind::Line:
        key = e.line.empty() ? 13 : static_cast<unsigned char>(e.line[0]);
        return;
      case EventKind::Press:
        if (e.button != 1) break;
        key = 0;
        x = e.x;
        y = e.y;
        return;
      case EventKind::Closed:
        return;
      default:
        break;
    }
  }
}

void cwtscn(int& kind, int& x, int& y) {
  for (;;) {
    WindowEvent e;
    cwNextEvent(e, true);
    switch (e.kind) {
      case EventKind::Key:
        kind = 1;
        x = e.key;
        return;
      case EventKind::Line:
        kind = 1;
        x = e.line.empty() ? 13 : static_cast<unsigned char>(e.line[0]);
        return;
      case EventKind::Press:
        if (e.button != 1) break;
        kind = 2;
        x = e.x;
        y = e.y;
        return;
      case EventKind::Move:
        kind = 3;
        x = e.x;
        y = e.y;
        return;
      case EventKind::Closed:
        kind = 0;
        return;
      default:
        break;
    }
  }
}

void cwSetCallbacks(RescaleCallback rescale, RedrawCallback redraw) {
  win().rescale = rescale;
  win().redraw = redraw;
}

void cwNextEvent(WindowEvent& event, bool tracking) {
  Window& s = win();
  for (;;) {
    pumpX(tracking);
    if (!s.queue.empty()) {
      event = s.queue.front();
      s.queue.pop_front();
      if (event.kind == EventKind::Move && !tracking) continue;
      return;
    }
    if (consoleInputBuffered() || !s.display) {
      if (readConsoleLine(event)) return;
      continue;
    }
    cwPresent();
    pollfd fds[2] = {{ConnectionNumber(s.display), POLLIN, 0}, {STDIN_FILENO, POLLIN, 0}};
    const int n = ::poll(fds, 2, -1);
    if (n < 0 && errno != EINTR) {
      // Nothing to wait on any more: the console's read ends the session.
      if (readConsoleLine(event)) return;
      continue;
    }
    if (fds[0].revents != 0) pumpX(tracking);
    if (s.queue.empty() && fds[1].revents != 0) {
      if (readConsoleLine(event)) return;
    }
  }
}

void cwPresent() {
  Window& s = win();
  if (!s.display || !s.surface || !s.shown || !s.device.image) return;
  cairo_t* cr = cairo_create(s.surface);
  cairo_set_source_surface(cr, s.device.image->surface(), 0, 0);
  cairo_set_operator(cr, CAIRO_OPERATOR_SOURCE);
  cairo_paint(cr);
  cairo_destroy(cr);
  cairo_surface_flush(s.surface);
  XFlush(s.display);
}

bool cwWritePng(const std::string& path, std::string& error) {
  if (!win().device.image) {
    error = "no picture";
    return false;
  }
  return win().device.image->writePng(path, error);
}

void cwResize(int widthPixels, int heightPixels) {
  Window& s = win();
  if (!s.made) return;
  if (s.display && s.window != 0) {
    XResizeWindow(s.display, s.window, static_cast<unsigned>(std::max(2, widthPixels)),
                  static_cast<unsigned>(std::max(2, heightPixels)));
    XFlush(s.display);
    return;  // the change comes back as an event
  }
  changeSize(widthPixels, heightPixels);
}

void cwKeepPicture() {
  Window& s = win();
  if (!s.device.image) return;
  s.device.image->flush();
  if (s.kept) cairo_surface_destroy(s.kept);
  s.kept = cairo_image_surface_create(CAIRO_FORMAT_RGB24, s.device.width(), s.device.height());
  cairo_t* cr = cairo_create(s.kept);
  cairo_set_source_surface(cr, s.device.image->surface(), 0, 0);
  cairo_paint(cr);
  cairo_destroy(cr);
}

void cwBackPicture() {
  Window& s = win();
  if (!s.device.image || !s.kept || cairo_image_surface_get_width(s.kept) != s.device.width() ||
      cairo_image_surface_get_height(s.kept) != s.device.height())
    return;
  s.device.image->flush();
  cairo_t* cr = cairo_create(s.device.image->surface());
  cairo_set_source_surface(cr, s.kept, 0, 0);
  cairo_set_operator(cr, CAIRO_OPERATOR_SOURCE);
  cairo_paint(cr);
  cairo_destroy(cr);
  cairo_surface_mark_dirty(s.device.image->surface());
}

void cwSync() {
  if (win().display) XSync(win().display, False);
}

Device* windowDevice() {
  return win().device.image ? &win().device : nullptr;
}

bool windowHeadless() { return win().headless; }

bool windowShown() { return win().shown; }

unsigned long windowId() { return win().window; }

}  // namespace kntr::platform
