// The console: the only code that touches the text terminal.
//
// The framework reaches the screen and the keyboard through the operations of
// `WinConF` and nothing else. On a terminal they drive ANSI/xterm sequences
// (colours, cursor, clear screen, window title, SGR mouse reports) and raw
// keyboard input; when standard input or output is not a terminal, lines are
// read as they come and the same texts are written without escape sequences.
// A memory console (namespace `testconsole`) replaces the terminal in tests:
// scripted keystrokes in, a virtual screen out.
//
// Positions are zero-based on this side; mouse reports give them one-based.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace kntr::platform {

namespace WinConF {

// initialize: take the terminal, hide the cursor, note what it can do.
void initialize();
// terminate: give the terminal back as it was found.
void terminate();
// getHandle: the output handle (a file descriptor here).
void getHandle(int& handle);
// setTitle: the terminal window's title.
void setTitle(std::string_view text);
// getSize: the screen's size in columns and lines.
void getSize(int& columns, int& lines);
// setSize: ask for a new size; a size beyond the largest possible is ignored.
void setSize(int columns, int lines);
// clearScreen: blank the screen in the current colours; the cursor stays.
void clearScreen();
// getChar: one key, no echo, no wait for RETURN.
void getChar(char& character);
// getString: one line of at most 1024 characters.
void getString(std::string& buffer);
// getStrMouse: a line, or a mouse click. button 0 = the line ended with
// RETURN; 1 left, 2 middle, 3 right (the number of buttons); column and row
// of the click are one-based. length is the count of characters typed.
void getStrMouse(int& button, int& column, int& row, int& length, std::string& buffer);
// putString: write at the cursor, no line feed added.
void putString(std::string_view text);
// setColor: foreground and background colour numbers; 0 keeps the current.
void setColor(int foreground, int background);
// getColor: the colour numbers in use.
void getColor(int& foreground, int& background);
// setPosition: cursor to a cell, clipped to the screen.
void setPosition(int column, int row);
// setUpperLeft: cursor to column 0, row 0.
void setUpperLeft();
// setLowerLeft: cursor to column 0 of the last row.
void setLowerLeft();
// getPosition: the cursor cell.
void getPosition(int& column, int& row);

}  // namespace WinConF

// What happens when the input ends. The handler must not return; until one is
// set the process writes a line and exits with status 1.
using EndOfInputHandler = void (*)();
void setEndOfInputHandler(EndOfInputHandler handler);

// What happens when the terminal window changes its size: called from the
// reading loop (not from the signal handler) while a line is awaited.
using ResizeHandler = void (*)();
void setResizeHandler(ResizeHandler handler);

// Hands the terminal to a child process as the user's shell expects it
// (true), and takes it back for key-by-key reading (false).
void lendTerminal(bool toChild);

// Direct write to standard output, for the few texts that go out before or
// around the console (start-up warnings, scanner diagnostics).
void writeStandardOutput(std::string_view text);

// True when the console is a real terminal that takes escape sequences.
bool consoleIsTerminal();

// True when a read of the console will not wait on standard input: a byte
// was read ahead, or the memory console stands in (its reads never wait).
bool consoleInputBuffered();

// The memory console used by tests.
namespace testconsole {

// Replace the terminal: `input` is what the user types (bytes, SGR mouse
// reports included), the screen has the given size, and `maxColumns` and
// `maxLines` bound what setSize accepts.
void attach(std::string input, int columns = 80, int lines = 24, int maxColumns = 200,
            int maxLines = 100);
// Go back to the real terminal.
void detach();
bool attached();
// Append more keystrokes.
void feed(std::string_view more);
// Everything written so far, escape-free, and clear it.
std::string takeOutput();
// The virtual screen, one string per row, trailing blanks cut.
std::vector<std::string> screen();
// The colour numbers last set, for tests of colour handling.
int lastForeground();
// Unread input left.
bool inputExhausted();

}  // namespace testconsole

}  // namespace kntr::platform
