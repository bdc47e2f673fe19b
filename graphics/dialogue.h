// The graphic dialogue: the graphics window's set-up (frame, button panel,
// prompt lines, menu area), its menus and questions, and the graphic input
// read where the dialogue waits.
//
// Besides keys, clicks and typed lines, the dialogue takes graphic events as
// lines of input, so that a graphic session can be scripted and replayed:
// "#pick X, Y" (a left click at model coordinates), "#pixel PX, PY" (at a
// window pixel), "#move X, Y" (a pointer move), "#item N" (item N of the
// menu shown), "#button NAME" (a panel button), "#picture FILE" (the picture
// as it stands to a PNG, SVG or PDF file), "#underlay", "#undo", "#redo".
// They are answers, not special commands.
//
//   OPNWIN  open the graphics window and set it up; graphic mode begins
//   CLSWIN  close the graphic menu and hide the window; terminal mode again
//   GWSETP  draw the frame, panel, menu and prompt lines anew
//   GWFRAM  draw the frame around the picture
//   GITEMS  draw a graphic menu: heading, breadcrumb, item boxes
//   GQUEST  a question in the window: keyboard, item or position
//   GSELCT  a graphic menu and its selection
//   GPRMPT  write a prompt line (1..3)
//   GWPICT  write the picture as it stands to a file
//   GTCRSR  cursor read: a key or a left press, in world units
//   GTTRAK  one tracking event in world units (key, press or move)
//   GTRACK  follow the pointer one step (a drag)
//   editHooks  the client's undo and redo, run by Ctrl+Z, Ctrl+Y, "#undo", "#redo"
//   breadcrumbText  the breadcrumb of a heading stack
//   menuItemAt      the item box under surface fractions, 0 for none
//   graphicEventWord  true for the words of the graphic event lines
#pragma once

#include <span>
#include <string>
#include <string_view>

#include "graphics/plotstate.h"

namespace kntr::graphics {

inline constexpr int MaxMenuItems = 12;
inline constexpr int MenuItemLength = 34;
inline constexpr int MaxHeadings = 25;
inline constexpr int HeadingLength = 24;
inline constexpr int BreadcrumbLength = 56;
inline constexpr int PromptLength = 96;
// The frame width as a fraction of the surface height.
inline constexpr double FrameWidth = 0.03;
// Menu width constant: a box's half-width is the menu area's width over it.
inline constexpr double MenuWidthConstant = 2.0;

// Input kinds of a graphic answer.
inline constexpr int KeyboardInput = 1;
inline constexpr int ItemInput = 2;
inline constexpr int PositionInput = 3;

struct GraphicAnswer {
  int kind = 0;  // KeyboardInput, ItemInput, PositionInput
  int item = 0;
  double x = 0.0, y = 0.0;  // world units
};

// The graphic menu shown and the heading stack.
struct GraphicMenu {
  int count = 0;
  std::string items[MaxMenuItems];
  std::string heading;
  int headings = 0;
  std::string stack[MaxHeadings];
  std::string prompts[3];
  std::string typed;  // a line being typed in the window
};
GraphicMenu& graphicMenu();

// OPNWIN: open the window, set it up and make `client` the picture's redraw
// routine. failed when no window could be opened (told already).
void OPNWIN(RedrawClient client, bool& failed);
// CLSWIN: leave graphic mode.
void CLSWIN();
// GWSETP: clear the surface and draw frame, panel, menu and prompts.
void GWSETP();
// GWFRAM: the frame (the picture's erase may have cut into it).
void GWFRAM();

void GITEMS(std::string_view heading, std::span<const std::string> items);
void GQUEST(std::string_view question, std::string_view deflt, std::string_view help,
            int expected, GraphicAnswer& answer, bool& abort, bool& status);
// GSELCT: show the menu and read a selection, by a pick on a box, "#item N"
// or an item number keyed in. abort for "$" or a closed window.
void GSELCT(std::string_view heading, std::span<const std::string> items,
            std::string_view prompt, std::string_view help, int& selection, bool& abort);
void GPRMPT(int line, std::string_view text);
// setQuestionTracker: a routine that sees each pointer move (and "#move X, Y")
// while GQUEST waits, in world units, until it is set back to null.
using QuestionTracker = void (*)(double x, double y);
void setQuestionTracker(QuestionTracker tracker);
// setUnderlayHandler: the client routine that takes "#underlay FILE".
using UnderlayHandler = void (*)(std::string_view file);
void setUnderlayHandler(UnderlayHandler handler);
// GWPICT: PNG from the window's buffer; SVG or PDF drawn anew.
void GWPICT(const std::string& path, bool& failed);

// GTCRSR: button = the character of a key, or 0 for a left press at (x, y)
// in world units; a closed window leaves button as it was.
void GTCRSR(int& button, double& x, double& y);
// GTTRAK: kind 1 a key or typed line (`key` its first character, 13 for an
// empty line), 2 a left press, 3 a pointer move ("#move X, Y" too), 0 a
// closed window; (x, y) in world units.
void GTTRAK(int& kind, int& key, double& x, double& y);
// Results of GTRACK.
inline constexpr int TrackCancel = 1;
inline constexpr int TrackDone = 2;
inline constexpr int TrackPosition = 3;

// GTRACK: wait for one step of the pointer: TrackPosition with (x, y) where
// it went (a motion, or "#move X, Y"); TrackDone at a left press, "#pick" or
// "#pixel" (`at` set, (x, y) its position) or at RETURN (`at` false);
// TrackCancel for Escape, "$" or a closed window.
void GTRACK(int& result, double& x, double& y, bool& at);

// The client's undo and redo of its data. A null member answers "not in
// this version".
struct EditHooks {
  void (*undo)() = nullptr;
  void (*redo)() = nullptr;
};
EditHooks& editHooks();
// Key codes of Ctrl+Z and Ctrl+Y.
inline constexpr int UndoKey = 26;
inline constexpr int RedoKey = 25;

// breadcrumbText: the levels below the current one that fit in 56
// characters, joined; empty for a stack of one.
std::string breadcrumbText(const std::string* stack, int count);
// menuItemAt: the item under (u from the left, v from the bottom), 0 if none.
int menuItemAt(double u, double v, int count);
bool graphicEventWord(std::string_view word);
// The help text of the graphic answers.
std::string graphicAnswerHelp();
// Surface fractions of a device position, and back.
void deviceToFraction(double px, double py, double& u, double& v);
void fractionToWorld(double u, double v, double& x, double& y);
// The surface's aspect (height / width) and the frame width along x.
double frameWidthX();

}  // namespace kntr::graphics
