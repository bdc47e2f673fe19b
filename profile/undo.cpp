#include "profile/undo.h"

#include <array>
#include <utility>

#include "framework/text.h"
#include "graphics/dialogue.h"
#include "graphics/view.h"
#include "profile/block.h"
#include "profile/pointedit.h"

namespace kntr::profile {

namespace {

// The ring: `undo` copies from `oldest` on, older to newer, then `redo`
// copies, the next one to redo first.
struct UndoState {
  std::array<ProfileData, UndoDepth> copies{};
  int oldest = 0;
  int undo = 0;
  int redo = 0;
  int locks = 0;
};

UndoState& undoState() {
  static UndoState state;
  return state;
}

ProfileData& slot(int k) {
  UndoState& u = undoState();
  return u.copies[static_cast<std::size_t>((u.oldest + k) % UndoDepth)];
}

// What an undo leaves alone: the settings and the marks of the picture.
void keepSettings(ProfileData& to, const ProfileData& from) {
  to.HILSEG = from.HILSEG;
  to.HLPLOK = from.HLPLOK;
  to.HLPLIN = from.HLPLIN;
  to.MARKOK = from.MARKOK;
  to.MARKPT = from.MARKPT;
  to.FRLOCL = from.FRLOCL;
  to.FRRSTR = from.FRRSTR;
  to.FRRDST = from.FRRDST;
  to.FRMITR = from.FRMITR;
  to.MESHON = from.MESHON;
  to.MESHLP = from.MESHLP;
  to.MESHAU = from.MESHAU;
  to.MESHDN = from.MESHDN;
  to.MESHQL = from.MESHQL;
  to.SHOWIP = from.SHOWIP;
  to.SHOWCP = from.SHOWCP;
  to.SHOWLS = from.SHOWLS;
  to.SHOWGR = from.SHOWGR;
  to.SHOWCB = from.SHOWCB;
  to.MESHQC = from.MESHQC;
}

// Erase, swap the block with copy k, draw (rescaled when the box differs).
void swapWith(int k, bool& status) {
  ProfileData& p = profile();
  ProfileData& copy = slot(k);
  windowPicture(true, false, status);
  const bool boxChanged = !(copy.PRBBOX == p.PRBBOX);
  std::swap(p, copy);
  keepSettings(p, copy);
  if (p.CURCRV > p.NPRCRV) p.CURCRV = p.NPRCRV;
  if (p.CURCRV >= 1 && p.CURPNT > p.NPRPNT(p.CURCRV)) p.CURPNT = p.NPRPNT(p.CURCRV);
  if (boxChanged) {
    bool failed = false;
    graphics::SPBBOX(p.PRBBOX(1), p.PRBBOX(2), p.PRBBOX(3), p.PRBBOX(4), 0.0, 0.0, failed);
  }
  bool drawFailed = false;
  windowPicture(false, boxChanged, drawFailed);
  status = status || drawFailed;
  graphics::flushPlot();
}

bool refusedWhileLocked() {
  if (undoState().locks == 0) return false;
  framework::ERRSCN("Finish the present command before undo or redo!");
  return true;
}

void undoFromWindow() {
  if (refusedWhileLocked()) return;
  bool status = false;
  GTUNDO(status);
}

void redoFromWindow() {
  if (refusedWhileLocked()) return;
  bool status = false;
  GTREDO(status);
}

}  // namespace

int undoSteps() { return undoState().undo; }
int redoSteps() { return undoState().redo; }

void STUNDO() {
  UndoState& u = undoState();
  u.redo = 0;
  if (u.undo == UndoDepth) {
    u.oldest = (u.oldest + 1) % UndoDepth;
    --u.undo;
  }
  slot(u.undo) = profile();
  ++u.undo;
}

void RMUNDO() {
  UndoState& u = undoState();
  if (u.undo > 0) --u.undo;
}

void CLUNDO() {
  UndoState& u = undoState();
  u.oldest = 0;
  u.undo = 0;
  u.redo = 0;
}

void GTUNDO(bool& status) {
  status = false;
  UndoState& u = undoState();
  if (u.undo == 0) {
    framework::ERRSCN("Nothing to undo!");
    return;
  }
  // The latest copy takes the block as it stands: the next step to redo.
  --u.undo;
  ++u.redo;
  swapWith(u.undo, status);
}

void GTREDO(bool& status) {
  status = false;
  UndoState& u = undoState();
  if (u.redo == 0) {
    framework::ERRSCN("Nothing to redo!");
    return;
  }
  swapWith(u.undo, status);
  ++u.undo;
  --u.redo;
}

void IZUNDO() {
  graphics::editHooks() = {undoFromWindow, redoFromWindow};
}

UndoLock::UndoLock() { ++undoState().locks; }
UndoLock::~UndoLock() { --undoState().locks; }

}  // namespace kntr::profile
