// Undo and redo of the graphic editors: a ring of copies of the profile
// block, one copy per completed command, taken just before it changes the
// block. An undo swaps the block with its latest copy, a redo swaps it back;
// the settings and the marks of the picture stay as they are.
//
//   STUNDO  keep the block as it stands as one undo step (redo steps go)
//   RMUNDO  forget the latest step (a command that changed nothing after all)
//   CLUNDO  forget every step (a file was loaded)
//   GTUNDO  undo one step: erase, restore the block, draw
//   GTREDO  redo one step likewise
//   IZUNDO  hand undo and redo to the graphic dialogue
//   UndoLock  undo and redo refused while a command is under way
#pragma once

namespace kntr::profile {

// Steps kept; the oldest goes when a new one would not fit.
inline constexpr int UndoDepth = 64;

// Numbers of steps that can be undone and redone.
int undoSteps();
int redoSteps();

void STUNDO();
void RMUNDO();
void CLUNDO();
// GTUNDO, GTREDO: with nothing to undo (redo) say so; status is set when
// the picture could not be drawn.
void GTUNDO(bool& status);
void GTREDO(bool& status);
void IZUNDO();

// Held by an editor from the choice of its point until its change is
// stored, so that an undo from a question in between cannot change the
// block under it.
struct UndoLock {
  UndoLock();
  ~UndoLock();
  UndoLock(const UndoLock&) = delete;
  UndoLock& operator=(const UndoLock&) = delete;
};

}  // namespace kntr::profile
