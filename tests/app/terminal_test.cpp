// The program on a real terminal (a pseudo-terminal): colours, raw keys with
// echo and backspace, and a mouse click on a menu row.
#include <gtest/gtest.h>
#include <poll.h>
#include <pty.h>
#include <sys/ioctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <csignal>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace {

namespace fs = std::filesystem;

class Terminal : public ::testing::Test {
 protected:
  void SetUp() override {
    scratch_ = fs::temp_directory_path() / ("kntr-pty-" + std::to_string(::getpid()));
    fs::remove_all(scratch_);
    fs::create_directories(scratch_ / "home" / "T-cnfg");
    // No banner pause.
    std::ofstream(scratch_ / "home" / "T-cnfg" / "Tarvik-2016A.ini") << "show-time=0\n";
  }
  void TearDown() override {
    if (child_ > 0) {
      ::kill(child_, SIGKILL);
      ::waitpid(child_, nullptr, 0);
    }
    if (master_ >= 0) ::close(master_);
    fs::remove_all(scratch_);
  }

  // Starts the program; `option` and `value`, when given, go on its command line.
  void start(const char* option = nullptr, const char* value = nullptr) {
    winsize size{};
    size.ws_col = 80;
    size.ws_row = 24;
    child_ = ::forkpty(&master_, nullptr, nullptr, &size);
    ASSERT_GE(child_, 0);
    if (child_ == 0) {
      if (::chdir(scratch_.c_str()) != 0) std::_Exit(125);
      rlimit noCore{};
      ::setrlimit(RLIMIT_CORE, &noCore);
      ::setenv("HOME", (scratch_ / "home").c_str(), 1);
      ::setenv("TERM", "xterm", 1);
      ::setenv("KNTR_SITE_CONFIG_DIR", (scratch_ / "site").c_str(), 1);
      ::unsetenv("NO_COLOR");
      ::unsetenv("TARVIKRC");
      ::unsetenv("COLUMNS");
      ::unsetenv("LINES");
      const std::string program = std::string(KNTR_BINARY_DIR) + "/app/kntr";
      ::execl(program.c_str(), program.c_str(), option, value, static_cast<char*>(nullptr));
      std::_Exit(126);
    }
  }

  // Reads until `text` has appeared in what the program wrote since the
  // last call; false when it does not come within the guard time.
  bool waitFor(const std::string& text) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(15);
    for (;;) {
      const auto found = seen_.find(text);
      if (found != std::string::npos) {
        seen_.erase(0, found + text.size());
        return true;
      }
      const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
          deadline - std::chrono::steady_clock::now());
      if (left.count() <= 0) return false;
      pollfd p{master_, POLLIN, 0};
      if (::poll(&p, 1, static_cast<int>(left.count())) <= 0) return false;
      char buffer[4096];
      const ssize_t n = ::read(master_, buffer, sizeof buffer);
      if (n <= 0) return false;
      seen_.append(buffer, static_cast<std::size_t>(n));
      all_.append(buffer, static_cast<std::size_t>(n));
    }
  }

  void send(const std::string& keys) {
    ASSERT_EQ(::write(master_, keys.data(), keys.size()), static_cast<ssize_t>(keys.size()));
  }

  int exitStatus() {
    int status = 0;
    ::waitpid(child_, &status, 0);
    child_ = -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }

  // The terminal's modes as the program left them: key by key (false) or
  // line by line with echo (true).
  bool lineMode() {
    termios modes{};
    if (::tcgetattr(master_, &modes) != 0) return false;
    return (modes.c_lflag & ICANON) != 0 && (modes.c_lflag & ECHO) != 0;
  }
  // Reads what the program writes until it closes the terminal.
  void drain() {
    while (waitFor("\x01never\x01")) {
    }
  }
  // Blanks in front of the last menu row "1.  ... <text>", colour
  // sequences skipped: the menu's margin, a quarter of the screen's width.
  int marginOfFirstRow(const std::string& text) {
    const std::size_t at = all_.rfind("1.  ... " + text);
    if (at == std::string::npos) return -1;
    std::size_t p = at;
    while (p > 0 && all_[p - 1] == 'm') {  // an SGR sequence ends in 'm'
      const std::size_t start = all_.rfind('\x1b', p - 1);
      if (start == std::string::npos) break;
      p = start;
    }
    int blanks = 0;
    while (p > 0 && all_[p - 1] == ' ') {
      --p;
      ++blanks;
    }
    return blanks;
  }
  void createProject(const std::string& name) {
    ASSERT_TRUE(waitFor("Input name of project file?"));
    send(name + "\r");
    ASSERT_TRUE(waitFor("OK to create new project"));
    send("yes\r");
    ASSERT_TRUE(waitFor("company identification"));
    send("ACME\r");
    ASSERT_TRUE(waitFor("user identification"));
    send("me\r");
    ASSERT_TRUE(waitFor("Select item number [1-9] ?"));
  }
  void resizeTerminal(int columns, int lines) {
    winsize size{};
    size.ws_col = static_cast<unsigned short>(columns);
    size.ws_row = static_cast<unsigned short>(lines);
    ASSERT_EQ(::ioctl(master_, TIOCSWINSZ, &size), 0);
  }

  std::string logText() {
    std::ifstream in(scratch_ / "home" / "T-cnfg" / "Tarvik.log");
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
  }

  fs::path scratch_;
  pid_t child_ = -1;
  int master_ = -1;
  std::string seen_;
  std::string all_;
};

TEST_F(Terminal, ColouredMenuAnswersAClickOnItsRow) {
  start();
  ASSERT_TRUE(waitFor("Input name of project file?"));
  // Typed keys are echoed; backspace takes the x back.
  send("demox\x7f\r");
  ASSERT_TRUE(waitFor("demo"));
  ASSERT_TRUE(waitFor("OK to create new project"));
  send("yes\r");
  ASSERT_TRUE(waitFor("company identification"));
  send("ACME\r");
  ASSERT_TRUE(waitFor("user identification"));
  send("me\r");
  ASSERT_TRUE(waitFor("Select item number [1-9] ?"));
  EXPECT_NE(all_.find("\x1b[96m"), std::string::npos) << "menu rows in cyan";
  EXPECT_NE(all_.find("\x1b[92m"), std::string::npos) << "default row in green";
  EXPECT_NE(all_.find("\x1b[?1006h"), std::string::npos) << "mouse reports asked for";
  EXPECT_NE(all_.find("\x1b]0;Tarvik\a"), std::string::npos) << "window title";

  // Row 6 of an 80 x 24 screen holds "1.  ... Input bounding box".
  send("\x1b[<0;30;6M");
  ASSERT_TRUE(waitFor("Input min and max X-coordinates of bounding box [m]"));
  send("$\r");
  ASSERT_TRUE(waitFor("Select item number [1-9] ?"));
  send("9\r");
  ASSERT_TRUE(waitFor("OK to EXIT module"));
  send("yes\r");
  EXPECT_EQ(exitStatus(), 0);
  EXPECT_TRUE(fs::exists(scratch_ / "home" / "T-cnfg" / "Tarvik.log"));
}

TEST_F(Terminal, ControlDOnAnEmptyLineEndsTheInput) {
  start();
  ASSERT_TRUE(waitFor("Input name of project file?"));
  send("\x04");
  ASSERT_TRUE(waitFor("Terminating program due to EOF on input"));
  EXPECT_EQ(exitStatus(), 1);
}

// A signal that ends the program at a question: the terminal is back in
// line mode with the cursor shown and no mouse reports, the log has a line,
// and the process dies of that signal.
TEST_F(Terminal, FatalSignalsGiveTheTerminalBack) {
  for (int signal : {SIGQUIT, SIGSEGV, SIGABRT}) {
    SCOPED_TRACE(signal);
    start();
    ASSERT_TRUE(waitFor("Input name of project file?"));
    ASSERT_TRUE(waitFor("\x1b[?1006h")) << "waiting for a line";
    EXPECT_FALSE(lineMode()) << "keys are read one by one";
    ASSERT_EQ(::kill(child_, signal), 0);
    int status = 0;
    ASSERT_EQ(::waitpid(child_, &status, 0), child_);
    child_ = -1;
    EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == signal);
    drain();
    EXPECT_TRUE(lineMode());
    const std::string tail = all_.substr(all_.rfind("\x1b[?1006h"));
    EXPECT_NE(tail.find("\x1b[?1000l\x1b[?1006l\x1b[?25h"), std::string::npos);
    EXPECT_NE(logText().find("terminated by signal " + std::to_string(signal) + "\n"),
              std::string::npos);
    ::close(master_);
    master_ = -1;
    all_.clear();
    seen_.clear();
    fs::remove(scratch_ / "home" / "T-cnfg" / "Tarvik.log");
  }
}

// A new window size counts at the next menu, unless the command line fixed
// the width.
TEST_F(Terminal, WindowSizeChangeIsFollowedUnlessAnOptionFixesIt) {
  const struct {
    const char* option;
    const char* value;
    int before, after;  // the menu's margin before and after the change
  } cases[] = {{nullptr, nullptr, 20, 30}, {"-columns", "100", 25, 25}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.option ? c.option : "no option");
    start(c.option, c.value);
    createProject(c.option ? "fixed" : "free");
    EXPECT_EQ(marginOfFirstRow("Input bounding box"), c.before);
    resizeTerminal(120, 30);
    // The next menu is laid out anew: the box question, aborted, leads back.
    send("1\r");
    ASSERT_TRUE(waitFor("Input min and max X-coordinates of bounding box [m]"));
    send("$\r");
    ASSERT_TRUE(waitFor("Select item number [1-9] ?"));
    EXPECT_EQ(marginOfFirstRow("Modify bounding box"), c.after);
    ::kill(child_, SIGTERM);
    ::waitpid(child_, nullptr, 0);
    child_ = -1;
    ::close(master_);
    master_ = -1;
    all_.clear();
    seen_.clear();
  }
}

// Suspended at a question, the terminal goes back to line mode; resumed,
// the program takes it again, draws the question anew and goes on.
TEST_F(Terminal, SuspendAndResumeRedrawTheQuestion) {
  start();
  ASSERT_TRUE(waitFor("Input name of project file?"));
  ASSERT_TRUE(waitFor("\x1b[?1006h"));
  ASSERT_EQ(::kill(child_, SIGTSTP), 0);
  ::kill(child_, SIGCONT);
  ASSERT_TRUE(waitFor("\x1b[?25h")) << "the cursor shown for the shell";
  ASSERT_TRUE(waitFor("Input name of project file?")) << "the question drawn again";
  EXPECT_FALSE(lineMode());
  send("demo\r");
  ASSERT_TRUE(waitFor("OK to create new project"));
}

}  // namespace
