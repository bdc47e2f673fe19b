// The graphics window: one window on the X display, or an off-screen image
// when there is no display, with its input.
//
// Everything is drawn into an off-screen buffer (an image) and copied to the
// window after each drawing step and on every expose, so the window never
// flickers and a picture can be written as it stands. A change of size makes
// a new buffer, tells the plot layer the size and asks it to redraw (mode 2).
// Closing the window hides it; a later open shows it again.
//
// While the dialogue waits, the window's connection and standard input are
// watched together, so a key or a click in the window, a line typed in the
// terminal and a line of a script all answer.
//
//   cwOpenWindow    open (or show again) the window; sizes in pixels and mm
//   cwCloseWindow   hide the window
//   cwWaitOnEvent   wait until a key goes down
//   cwmove          set the current point
//   cwdraw          draw a line from the current point
//   cwColor         select line width and colour
//   cwPolygon       a filled polygon of at most 100 points
//   cwclar          fill a rectangle with the background
//   cwclip          make a rectangle the clipping path
//   cwdigt          wait for one digitizing event (a key or a left press)
//   cwtscn          wait for one tracking event (a key, a press or a move)
//   cwSetCallbacks  the plot layer's rescale and redraw routines
//   cwNextEvent     wait for the next input event of any kind
//   cwPresent       copy the off-screen buffer to the window
//   cwWritePng      the buffer as a PNG file
//   cwResize        give the window a new size (as the user would)
//   cwSync          wait until the display has done all that was sent
//   cwKeepPicture   keep a copy of the buffer (under a rubber band)
//   cwBackPicture   put the kept copy back into the buffer
//   windowDevice    the drawing device of the window's buffer
//   windowHeadless  true when the window is an off-screen image only
#pragma once

#include <string>
#include <string_view>

namespace kntr::platform {

class Device;

// The off-screen picture when there is no display.
inline constexpr int HeadlessWidth = 1280;
inline constexpr int HeadlessHeight = 960;
inline constexpr double HeadlessDpi = 96.0;
// Points of one polygon.
inline constexpr int MaxPolygonPoints = 100;

enum class EventKind {
  None,
  Key,     // a key in the window: `key`
  Press,   // a button pressed at (x, y): `button` 1 left, 2 middle, 3 right
  Move,    // the pointer moved to (x, y)
  Line,    // a line from the terminal or a script: `line`
  Wheel,   // the wheel turned at (x, y): `button` +1 away from the user, -1 toward
  Drag,    // a middle-button drag from (x, y) to (x2, y2)
  Closed,  // the window was closed by the user
};

struct WindowEvent {
  EventKind kind = EventKind::None;
  int key = 0;
  int button = 0;
  int x = 0, y = 0;
  int x2 = 0, y2 = 0;
  std::string line;
};

// cwOpenWindow: open the window at the given per cent of the screen, or show
// it again. `failed` when no window could be made at all.
void cwOpenWindow(int horizontalPercent, int verticalPercent, std::string_view title,
                  bool& failed, int& widthPixels, int& heightPixels, double& widthMm,
                  double& heightMm);
// cwCloseWindow: hide the window; it stays for a later open.
void cwCloseWindow();
// cwWaitOnEvent: wait until a key goes down (in the window, or a line typed).
void cwWaitOnEvent();

void cwmove(int x, int y);
void cwdraw(int x, int y);
void cwColor(int lineWidth, int colour);
// cwPolygon: `count` points as x, y pairs; more than 100 are not drawn.
void cwPolygon(int count, const int* xy);
void cwclar(int left, int top, int right, int bottom);
void cwclip(int x1, int y1, int x2, int y2);

// cwdigt: key = the character of a key, or 0 for a left press at (x, y).
// A close of the window ends the wait with the key unchanged.
void cwdigt(int& key, int& x, int& y);
// cwtscn: kind 1 a key (x holds its code), 2 a left press, 3 a move.
// A close of the window ends the wait with kind 0.
void cwtscn(int& kind, int& x, int& y);

// The plot layer's two routines: the new size of the surface, and a redraw
// (mode 1 as it stands, 2 after a change of size).
using RescaleCallback = void (*)(int widthPixels, int heightPixels, double widthMm,
                                 double heightMm);
using RedrawCallback = void (*)(int mode);
void cwSetCallbacks(RescaleCallback rescale, RedrawCallback redraw);

// cwNextEvent: wait for the next event. Moves are reported only when
// `tracking`. A line typed in the terminal or read from a script comes as a
// Line event; so does a line that the input holds already.
void cwNextEvent(WindowEvent& event, bool tracking);
// cwPresent: show the buffer in the window.
void cwPresent();
// cwWritePng: the buffer as it stands, as a PNG file.
bool cwWritePng(const std::string& path, std::string& error);
// cwResize: a new size of the window, handled as the user's resize.
void cwResize(int widthPixels, int heightPixels);

// cwSync: wait until the display has carried out every request sent.
void cwSync();

// cwKeepPicture, cwBackPicture: a copy of the buffer as it stands, and the
// buffer put back to it, so a rubber band can be drawn over the picture and
// taken away again.
void cwKeepPicture();
void cwBackPicture();

// windowDevice: the device that draws into the window's buffer (null
// before the first open).
Device* windowDevice();
// windowHeadless: the window is an off-screen image (no display).
bool windowHeadless();
// windowShown: the window is open and not hidden.
bool windowShown();
// The X window's id, 0 when headless (tests, tools).
unsigned long windowId();

}  // namespace kntr::platform
