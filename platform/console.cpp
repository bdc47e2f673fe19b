#include "platform/console.h"

#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "platform/system.h"

namespace kntr::platform {

namespace {

// Most bytes of screen output kept for the redraw after a suspension.
constexpr std::size_t MaxScreenReplay = 65536;

// Set by the signal handlers, acted on where the console reads its input.
volatile std::sig_atomic_t resumedFlag = 0;
volatile std::sig_atomic_t resizedFlag = 0;

void afterInterruption();

// ---------------------------------------------------------------------------
// Byte sources. Both the terminal and the memory console hand out one byte at
// a time; -1 means the input has ended.

struct ByteSource {
  virtual ~ByteSource() = default;
  virtual int next() = 0;
};

struct DescriptorSource : ByteSource {
  int next() override {
    unsigned char byte = 0;
    for (;;) {
      // A signal that came while no read was waiting is acted on now.
      if (resumedFlag || resizedFlag) afterInterruption();
      ssize_t n = ::read(STDIN_FILENO, &byte, 1);
      if (n == 1) return byte;
      if (n < 0 && errno == EINTR) {
        afterInterruption();
        continue;
      }
      return -1;
    }
  }
};

struct MemorySource : ByteSource {
  std::string bytes;
  std::size_t position = 0;
  int next() override {
    if (position >= bytes.size()) return -1;
    return static_cast<unsigned char>(bytes[position++]);
  }
};

// ---------------------------------------------------------------------------
// The virtual screen of the memory console.

struct VirtualScreen {
  int columns = 80;
  int lines = 24;
  int maxColumns = 200;
  int maxLines = 100;
  int column = 0;
  int row = 0;
  std::vector<std::string> cells;
  std::string transcript;

  void reset(int c, int l) {
    columns = c;
    lines = l;
    cells.assign(static_cast<std::size_t>(lines), std::string(static_cast<std::size_t>(columns), ' '));
    column = 0;
    row = 0;
  }
  void lineFeed() {
    column = 0;
    if (row + 1 < lines) {
      ++row;
    } else {
      cells.erase(cells.begin());
      cells.emplace_back(static_cast<std::size_t>(columns), ' ');
    }
  }
  void put(std::string_view text) {
    transcript.append(text);
    for (char c : text) {
      if (c == '\n') {
        lineFeed();
      } else if (c == '\r') {
        column = 0;
      } else if (c == '\b') {
        if (column > 0) --column;
      } else {
        if (column >= columns) lineFeed();
        cells[static_cast<std::size_t>(row)][static_cast<std::size_t>(column)] = c;
        ++column;
      }
    }
  }
  void clear() {
    for (auto& line : cells) line.assign(static_cast<std::size_t>(columns), ' ');
  }
};

// ---------------------------------------------------------------------------
// Console state.

struct Console {
  bool initialized = false;
  bool memory = false;
  bool inputTerminal = false;   // standard input is a terminal: raw keys, echo
  bool outputTerminal = false;  // standard output is a terminal: escapes allowed
  bool colours = false;         // colour sequences allowed
  bool rawMode = false;
  termios saved{};
  bool savedValid = false;
  termios raw{};
  bool mouseOn = false;         // mouse reports asked for while a line is read
  std::string screenSoFar;      // what was written since the screen was last cleared
  ResizeHandler resize = nullptr;
  int foreground = 8;
  int background = 1;
  int columns = 80;
  int lines = 24;
  DescriptorSource descriptor;
  MemorySource script;
  VirtualScreen screen;
  EndOfInputHandler endOfInput = nullptr;
  int lastResult = 0;  // result of the last operation, as the console keeps it
  int pendingByte = -2;  // one byte of look-ahead, -2 when empty
};

Console& con() {
  static Console c;
  return c;
}

ByteSource& source() {
  Console& c = con();
  if (c.memory) return c.script;
  return c.descriptor;
}

void rawWrite(std::string_view text) {
  Console& c = con();
  if (c.memory) {
    c.screen.put(text);
    return;
  }
  // The screen since it was last cleared is kept, to be drawn again after
  // a suspension.
  if (c.inputTerminal && c.outputTerminal) {
    const std::size_t clear = text.rfind("\x1b[2J");
    if (clear != std::string_view::npos) c.screenSoFar.assign(text.substr(clear));
    else c.screenSoFar.append(text);
    if (c.screenSoFar.size() > MaxScreenReplay)
      c.screenSoFar.erase(0, c.screenSoFar.size() - MaxScreenReplay);
  }
  const char* p = text.data();
  std::size_t left = text.size();
  while (left > 0) {
    ssize_t n = ::write(STDOUT_FILENO, p, left);
    if (n < 0) {
      if (errno == EINTR) continue;
      c.lastResult = errno;
      return;
    }
    p += n;
    left -= static_cast<std::size_t>(n);
  }
}

// Escape sequences go out only to a real terminal.
void escape(std::string_view sequence) {
  Console& c = con();
  if (!c.memory && c.outputTerminal) rawWrite(sequence);
}

int readByte() {
  Console& c = con();
  if (c.pendingByte != -2) {
    int b = c.pendingByte;
    c.pendingByte = -2;
    return b;
  }
  return source().next();
}

void restoreTerminal();

[[noreturn]] void inputEnded() {
  Console& c = con();
  restoreTerminal();
  if (c.endOfInput) c.endOfInput();
  rawWrite("\nTerminating program due to EOF on input\n");
  std::exit(1);
}

// Terminal modes for key-by-key reading.
void restoreTerminal() {
  Console& c = con();
  if (c.rawMode && c.savedValid) {
    ::tcsetattr(STDIN_FILENO, TCSANOW, &c.saved);
    c.rawMode = false;
  }
}

void enterRawMode() {
  Console& c = con();
  if (c.memory || !c.inputTerminal || c.rawMode) return;
  if (!c.savedValid) {
    if (::tcgetattr(STDIN_FILENO, &c.saved) != 0) return;
    c.savedValid = true;
  }
  termios& raw = c.raw;
  raw = c.saved;
  raw.c_lflag &= static_cast<tcflag_t>(~(ICANON | ECHO));
  raw.c_iflag &= static_cast<tcflag_t>(~(ICRNL | IXON));
  raw.c_cc[VMIN] = 1;
  raw.c_cc[VTIME] = 0;
  if (::tcsetattr(STDIN_FILENO, TCSANOW, &raw) == 0) c.rawMode = true;
}

const char terminalReset[] = "\x1b[?1000l\x1b[?1006l\x1b[?25h\x1b[0m";

// Gives the terminal back: line mode, no mouse reports, cursor shown,
// colours reset. Only async-signal-safe calls, for the signal handlers; the
// raw-mode flag stays, so that a resumed process knows to take it again.
void releaseTerminal() {
  Console& c = con();
  if (c.rawMode && c.savedValid) ::tcsetattr(STDIN_FILENO, TCSANOW, &c.saved);
  if (c.outputTerminal && !c.memory) {
    ssize_t ignored = ::write(STDOUT_FILENO, terminalReset, sizeof terminalReset - 1);
    (void)ignored;
  }
}

void atExit() {
  releaseTerminal();
  con().rawMode = false;
}

// A signal that ends the process: the terminal back, the temporary file of
// a save removed, a line to the log, then the signal's own action.
void onFatalSignal(int signal) {
  releaseTerminal();
  releaseOnFatalSignal(signal);
  std::signal(signal, SIG_DFL);
  std::raise(signal);
}

void catchSignal(int signal, void (*handler)(int), bool restart) {
  struct sigaction action {};
  action.sa_handler = handler;
  sigemptyset(&action.sa_mask);
  action.sa_flags = restart ? SA_RESTART : 0;
  ::sigaction(signal, &action, nullptr);
}

void onContinue(int) { resumedFlag = 1; }

// Suspension: the terminal back as the shell expects it, then stop; on
// resumption the reading loop takes it again and repeats the question.
void onSuspend(int signal) {
  const int savedErrno = errno;
  releaseTerminal();
  std::signal(signal, SIG_DFL);
  sigset_t set;
  sigemptyset(&set);
  sigaddset(&set, signal);
  ::sigprocmask(SIG_UNBLOCK, &set, nullptr);
  std::raise(signal);
  // continued here
  catchSignal(signal, onSuspend, false);
  resumedFlag = 1;
  errno = savedErrno;
}

void onResize(int) { resizedFlag = 1; }

void querySize(int& columns, int& lines) {
  Console& c = con();
  if (c.memory) {
    columns = c.screen.columns;
    lines = c.screen.lines;
    return;
  }
  winsize ws{};
  if (c.outputTerminal && ::ioctl(STDOUT_FILENO, TIOCGWINSZ, &ws) == 0 && ws.ws_col > 0 &&
      ws.ws_row > 0) {
    columns = ws.ws_col;
    lines = ws.ws_row;
    return;
  }
  columns = 80;
  lines = 24;
  if (const char* env = std::getenv("COLUMNS")) {
    int v = std::atoi(env);
    if (v > 0) columns = v;
  }
  if (const char* env = std::getenv("LINES")) {
    int v = std::atoi(env);
    if (v > 0) lines = v;
  }
}

// ANSI colour of a console colour number.
int ansiForeground(int colour) {
  switch (colour) {
    case 1: return 30;   // black
    case 2: return 94;   // bright blue
    case 3: return 92;   // bright green
    case 4: return 96;   // bright cyan
    case 5: return 91;   // bright red
    case 6: return 95;   // bright magenta
    case 7: return 93;   // yellow
    case 8: return 97;   // white
    case 11: return 34;  // blue
    case 12: return 32;  // green
    case 13: return 36;  // cyan
    case 14: return 31;  // red
    case 15: return 35;  // magenta
    case 16: return 33;  // brown
    case 17: return 37;  // grey
    default: return 97;  // anything else shows white
  }
}

int ansiBackground(int colour) {
  switch (colour) {
    case 1: return 40;
    case 2: return 104;
    case 3: return 102;
    case 4: return 106;
    case 5: return 101;
    case 6: return 105;
    case 7: return 103;
    case 8: return 107;
    case 11: return 44;
    case 12: return 42;
    case 13: return 46;
    case 14: return 41;
    case 15: return 45;
    case 16: return 43;
    case 17: return 47;
    default: return 49;  // the terminal's own background
  }
}

bool knownColour(int colour) {
  return (colour >= 1 && colour <= 8) || (colour >= 11 && colour <= 17);
}

void cursorVisible(bool visible) { escape(visible ? "\x1b[?25h" : "\x1b[?25l"); }

void moveCursor(int column, int row) {
  Console& c = con();
  int columns = 0, lines = 0;
  querySize(columns, lines);
  column = std::clamp(column, 0, columns - 1);
  row = std::clamp(row, 0, lines - 1);
  if (c.memory) {
    c.screen.column = column;
    c.screen.row = row;
    return;
  }
  char buffer[32];
  std::snprintf(buffer, sizeof buffer, "\x1b[%d;%dH", row + 1, column + 1);
  escape(buffer);
}

// Reads the rest of an escape sequence after ESC. Returns true and the click
// when it is an SGR mouse press report; every other sequence is swallowed.
bool readEscape(int& button, int& column, int& row) {
  int b = readByte();
  if (b != '[') {
    if (b == -1) inputEnded();
    return false;  // a lone ESC or an ESC-letter pair: ignored
  }
  std::string body;
  for (;;) {
    b = readByte();
    if (b == -1) inputEnded();
    if (b >= 0x40 && b <= 0x7e && !(body.empty() && b == '<')) break;
    body.push_back(static_cast<char>(b));
    if (body.size() > 32) return false;
  }
  if (body.empty() || body[0] != '<' || b != 'M') return false;
  int code = 0, x = 0, y = 0;
  if (std::sscanf(body.c_str() + 1, "%d;%d;%d", &code, &x, &y) != 3) return false;
  if (code & 32) return false;   // motion
  if (code & 64) return false;   // wheel
  // A terminal does not say how many buttons the mouse has: the variable
  // KNTR_MOUSE_BUTTONS does (2 or 3, default 3).
  int buttons = 3;
  if (const char* env = std::getenv("KNTR_MOUSE_BUTTONS"); env && std::atoi(env) == 2) buttons = 2;
  switch (code & 3) {
    case 0: button = 1; break;        // left
    case 1: button = 2; break;        // middle
    case 2: button = buttons; break;  // right: the number of buttons
    default: return false;
  }
  column = x;
  row = y;
  return true;
}

// A read was interrupted by a signal: after a suspension take the terminal
// again and draw the screen anew since its last clearing (the question and
// what was typed); after a change of the window's size tell the framework.
void afterInterruption() {
  Console& c = con();
  if (resumedFlag) {
    resumedFlag = 0;
    if (c.rawMode) ::tcsetattr(STDIN_FILENO, TCSANOW, &c.raw);
    const std::string again = c.screenSoFar;
    if (c.mouseOn) escape("\x1b[?1000h\x1b[?1006h");
    escape("\x1b[?25h");
    rawWrite(again);
  }
  if (resizedFlag) {
    resizedFlag = 0;
    if (c.resize) c.resize();
  }
}

}  // namespace

// ---------------------------------------------------------------------------

namespace WinConF {

void initialize() {
  Console& c = con();
  if (!c.memory) {
    c.inputTerminal = ::isatty(STDIN_FILENO) == 1;
    c.outputTerminal = ::isatty(STDOUT_FILENO) == 1;
    const char* noColor = std::getenv("NO_COLOR");
    c.colours = c.outputTerminal && !(noColor && *noColor);
    if (!c.initialized) {
      // Also a scripted run removes the temporary file of a save and logs
      // its end when a signal stops it.
      std::atexit(atExit);
      for (int signal : {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGSEGV, SIGABRT, SIGBUS, SIGFPE,
                         SIGILL})
        catchSignal(signal, onFatalSignal, true);
      if (c.inputTerminal) {
        catchSignal(SIGTSTP, onSuspend, false);
        catchSignal(SIGCONT, onContinue, false);
      }
      catchSignal(SIGWINCH, onResize, false);
    }
  }
  c.initialized = true;
  // Keys are read one by one for the whole session, so that nothing typed
  // ahead is taken by the terminal's own line editing.
  enterRawMode();
  querySize(c.columns, c.lines);
  cursorVisible(false);
  c.lastResult = 0;
}

void terminate() {
  Console& c = con();
  restoreTerminal();
  cursorVisible(true);
  if (c.colours) escape("\x1b[0m");
  c.initialized = false;
}

void getHandle(int& handle) { handle = STDOUT_FILENO; }

void setTitle(std::string_view text) {
  std::string sequence = "\x1b]0;";
  sequence.append(text);
  sequence.push_back('\a');
  escape(sequence);
}

void getSize(int& columns, int& lines) { querySize(columns, lines); }

void setSize(int columns, int lines) {
  Console& c = con();
  if (c.memory) {
    if (columns > c.screen.maxColumns || lines > c.screen.maxLines || columns < 1 || lines < 1)
      return;
    if (columns != c.screen.columns || lines != c.screen.lines) {
      int keepColumn = std::min(c.screen.column, columns - 1);
      int keepRow = std::min(c.screen.row, lines - 1);
      c.screen.reset(columns, lines);
      c.screen.column = keepColumn;
      c.screen.row = keepRow;
    }
    return;
  }
  int currentColumns = 0, currentLines = 0;
  querySize(currentColumns, currentLines);
  if (!c.outputTerminal || (columns == currentColumns && lines == currentLines)) return;
  if (columns < 1 || lines < 1) return;
  // xterm's window manipulation: resize the text area. Terminals that do not
  // honour it keep their size, and getSize goes on telling the real one.
  char buffer[32];
  std::snprintf(buffer, sizeof buffer, "\x1b[8;%d;%dt", lines, columns);
  escape(buffer);
}

void clearScreen() {
  Console& c = con();
  if (c.memory) {
    c.screen.clear();
    return;
  }
  escape("\x1b[2J");
}

void getChar(char& character) {
  cursorVisible(true);
  enterRawMode();
  int b = readByte();
  cursorVisible(false);
  if (b == -1) inputEnded();
  character = static_cast<char>(b);
}

void getString(std::string& buffer) {
  int button = 0, column = 0, row = 0, length = 0;
  do {
    getStrMouse(button, column, row, length, buffer);
  } while (button != 0);
  if (buffer.size() > 1024) buffer.resize(1024);
}

void getStrMouse(int& button, int& column, int& row, int& length, std::string& buffer) {
  Console& c = con();
  cursorVisible(true);
  enterRawMode();
  const bool echo = c.rawMode;
  if (echo) escape("\x1b[?1000h\x1b[?1006h");
  c.mouseOn = echo;
  button = 0;
  column = 0;
  row = 0;
  buffer.clear();
  for (;;) {
    int b = readByte();
    if (b == -1) {
      if (!buffer.empty()) break;  // a last line without its line end
      if (echo) escape("\x1b[?1000l\x1b[?1006l");
      inputEnded();
    }
    if (b == '\r' || b == '\n') {
      // Take CR LF as one line end.
      if (b == '\r' && !c.rawMode) {
        int after = readByte();
        if (after != '\n') c.pendingByte = after;
      }
      if (echo) rawWrite("\r\n");
      break;
    }
    if (b == 8 || b == 127) {
      if (!buffer.empty()) {
        buffer.pop_back();
        if (echo) rawWrite("\b \b");
      }
      continue;
    }
    if (b == 4 && c.rawMode && buffer.empty()) {  // Ctrl-D on an empty line
      escape("\x1b[?1000l\x1b[?1006l");
      inputEnded();
    }
    if (b == 27) {
      int clickButton = 0, clickColumn = 0, clickRow = 0;
      if (readEscape(clickButton, clickColumn, clickRow)) {
        button = clickButton;
        column = clickColumn;
        row = clickRow;
        break;
      }
      continue;
    }
    if (b > 31) {
      buffer.push_back(static_cast<char>(b));
      if (echo) rawWrite(std::string_view(&buffer.back(), 1));
    }
  }
  if (echo) escape("\x1b[?1000l\x1b[?1006l");
  c.mouseOn = false;
  cursorVisible(false);
  length = static_cast<int>(buffer.size());
}

void putString(std::string_view text) { rawWrite(text); }

void setColor(int foreground, int background) {
  Console& c = con();
  if (foreground != 0) c.foreground = knownColour(foreground) ? foreground : 8;
  if (background != 0) c.background = knownColour(background) ? background : 1;
  if (!c.colours || c.memory) return;
  char buffer[32];
  if (background != 0)
    std::snprintf(buffer, sizeof buffer, "\x1b[%d;%dm", ansiForeground(c.foreground),
                  ansiBackground(background));
  else
    std::snprintf(buffer, sizeof buffer, "\x1b[%dm", ansiForeground(c.foreground));
  rawWrite(buffer);
}

void getColor(int& foreground, int& background) {
  foreground = con().foreground;
  background = con().background;
}

void setPosition(int column, int row) { moveCursor(column, row); }

void setUpperLeft() { moveCursor(0, 0); }

void setLowerLeft() {
  int columns = 0, lines = 0;
  querySize(columns, lines);
  moveCursor(0, lines - 1);
}

void getPosition(int& column, int& row) {
  Console& c = con();
  column = c.memory ? c.screen.column : 0;
  row = c.memory ? c.screen.row : 0;
}

}  // namespace WinConF

void setEndOfInputHandler(EndOfInputHandler handler) { con().endOfInput = handler; }

void setResizeHandler(ResizeHandler handler) { con().resize = handler; }

void lendTerminal(bool toChild) {
  Console& c = con();
  if (c.memory || !c.inputTerminal) return;
  if (toChild) {
    restoreTerminal();
    cursorVisible(true);
  } else {
    enterRawMode();
    cursorVisible(false);
  }
}

void writeStandardOutput(std::string_view text) { rawWrite(text); }

bool consoleInputBuffered() {
  const Console& c = con();
  return c.memory || c.pendingByte != -2;
}

bool consoleIsTerminal() { return !con().memory && con().outputTerminal; }

namespace testconsole {

void attach(std::string input, int columns, int lines, int maxColumns, int maxLines) {
  Console& c = con();
  c.memory = true;
  c.script.bytes = std::move(input);
  c.script.position = 0;
  c.pendingByte = -2;
  c.screen.maxColumns = maxColumns;
  c.screen.maxLines = maxLines;
  c.screen.reset(columns, lines);
  c.screen.transcript.clear();
  c.foreground = 8;
  c.background = 1;
}

void detach() {
  Console& c = con();
  c.memory = false;
  c.script.bytes.clear();
  c.script.position = 0;
  c.pendingByte = -2;
}

bool attached() { return con().memory; }

void feed(std::string_view more) { con().script.bytes.append(more); }

std::string takeOutput() {
  std::string out = std::move(con().screen.transcript);
  con().screen.transcript.clear();
  return out;
}

std::vector<std::string> screen() {
  std::vector<std::string> rows = con().screen.cells;
  for (auto& r : rows) r.erase(r.find_last_not_of(' ') + 1);
  return rows;
}

int lastForeground() { return con().foreground; }

bool inputExhausted() {
  Console& c = con();
  return c.pendingByte == -2 && c.script.position >= c.script.bytes.size();
}

}  // namespace testconsole

}  // namespace kntr::platform
