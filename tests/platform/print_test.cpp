// Print services against a real print queue: a CUPS scheduler of the test's
// own, with one queue whose device writes each job to a file. A plot on a
// printer and a text job must arrive there as jobs with their content; a
// missing "lp" and a refused job must give a message, not a crash.
#include "platform/print.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>

#include "framework/state.h"
#include "graphics/hardcopy.h"
#include "graphics/plotstate.h"
#include "support/checks.h"
#include "support/scratch_directory.h"

namespace kntr::platform {
namespace {

using kntr::testing::Contains;
using kntr::testing::ScratchDirectory;
namespace fs = std::filesystem;

void writeText(const std::string& name, const std::string& text) {
  std::ofstream out(name, std::ios::binary);
  out << text;
}

// A scheduler in a scratch directory, listening on a socket there, with the
// queue "kntrq" (the default) whose backend copies each job to out/job-N.
class PrintQueue : public kntr::testing::ConsoleTest {
 protected:
  void SetUp() override {
    ConsoleTest::SetUp();
    framework::program().executionMode = framework::ModeBatch;
    savedPath_ = std::getenv("PATH") ? std::getenv("PATH") : "";
    if (const char* server = std::getenv("CUPS_SERVER")) savedServer_ = server;
    if (!fs::exists("/usr/sbin/cupsd") || std::system("command -v lp >/dev/null") != 0) {
      skip_ = "cups (cupsd) and cups-client (lp) are not installed";
      return;
    }
    root_ = dir_.directory().string();
    for (const char* d : {"spool", "cache", "state", "log", "tmp", "out", "bin/backend"})
      fs::create_directories(root_ + "/" + d);
    for (const char* d : {"out", "tmp"}) ::chmod((root_ + "/" + d).c_str(), 0777);
    ::chmod(root_.c_str(), 0755);
    for (const char* d : {"filter", "daemon", "cgi-bin", "monitor", "notifier", "driver"})
      if (fs::exists(std::string("/usr/lib/cups/") + d))
        fs::create_directory_symlink(std::string("/usr/lib/cups/") + d, root_ + "/bin/" + d);
    writeText(root_ + "/bin/backend/kntrfile",
              "#!/bin/sh\n"
              "if [ $# -eq 0 ]; then echo 'direct kntrfile \"Unknown\" \"KNTR test file\"'; "
              "exit 0; fi\n"
              "out=\"${DEVICE_URI#kntrfile:}\"\n"
              "if [ -n \"$6\" ]; then cat \"$6\" > \"$out-$1\"; else cat > \"$out-$1\"; fi\n"
              "exit 0\n");
    ::chmod((root_ + "/bin/backend/kntrfile").c_str(), 0755);
    socket_ = root_ + "/cups.sock";
    writeText(root_ + "/cupsd.conf",
              "Listen " + socket_ +
                  "\nLogLevel warn\nBrowsing Off\nWebInterface No\nDefaultAuthType None\n"
                  "<Location />\n  Order allow,deny\n  Allow all\n</Location>\n"
                  "<Policy default>\n  <Limit All>\n    Order deny,allow\n  </Limit>\n</Policy>\n");
    writeText(root_ + "/cups-files.conf",
              "FileDevice Yes\nServerRoot " + root_ + "\nRequestRoot " + root_ +
                  "/spool\nCacheDir " + root_ + "/cache\nStateDir " + root_ + "/state\nTempDir " +
                  root_ + "/tmp\nErrorLog " + root_ + "/log/error_log\nAccessLog " + root_ +
                  "/log/access_log\nPageLog " + root_ + "/log/page_log\nServerBin " + root_ +
                  "/bin\nDataDir /usr/share/cups\n");
    pid_ = ::fork();
    if (pid_ == 0) {
      ::execl("/usr/sbin/cupsd", "cupsd", "-f", "-c", (root_ + "/cupsd.conf").c_str(), "-s",
              (root_ + "/cups-files.conf").c_str(), static_cast<char*>(nullptr));
      ::_exit(127);
    }
    for (int k = 0; k < 50 && !fs::exists(socket_); ++k)
      std::this_thread::sleep_for(std::chrono::milliseconds(100));
    if (!fs::exists(socket_)) {
      skip_ = "cupsd could not be started here (no socket after 5 s)";
      return;
    }
    ::setenv("CUPS_SERVER", socket_.c_str(), 1);
    const std::string admin = "lpadmin -p kntrq -E -v kntrfile:" + root_ +
                              "/out/job >/dev/null 2>&1 && lpadmin -d kntrq >/dev/null 2>&1";
    if (std::system(admin.c_str()) != 0) skip_ = "cupsd does not take a queue here (lpadmin failed)";
  }

  void TearDown() override {
    ::setenv("PATH", savedPath_.c_str(), 1);
    if (savedServer_.empty())
      ::unsetenv("CUPS_SERVER");
    else
      ::setenv("CUPS_SERVER", savedServer_.c_str(), 1);
    if (pid_ > 0) {
      ::kill(pid_, SIGTERM);
      int ignored = 0;
      ::waitpid(pid_, &ignored, 0);
    }
    ConsoleTest::TearDown();
  }

  // The jobs the queue has written, waited for up to 10 s: job number n.
  std::string job(int n) {
    const std::string name = root_ + "/out/job-" + std::to_string(n);
    for (int k = 0; k < 100; ++k) {
      // The backend may still be writing: wait until the queue is idle.
      if (fs::exists(name) && std::system("lpstat -o kntrq 2>/dev/null | grep -q .") != 0)
        return ScratchDirectory::readFile(name);
      std::this_thread::sleep_for(std::chrono::milliseconds(100));
    }
    return {};
  }

  ScratchDirectory dir_;
  std::string root_, socket_, skip_, savedPath_, savedServer_;
  pid_t pid_ = -1;
};

TEST_F(PrintQueue, APlotAndATextArriveAsJobs) {
  if (!skip_.empty()) GTEST_SKIP() << skip_;
  std::vector<std::string> queues;
  std::string deflt, error;
  ASSERT_TRUE(printQueues(queues, deflt, error)) << error;
  EXPECT_EQ(queues, std::vector<std::string>{"kntrq"});
  EXPECT_EQ(deflt, "kntrq");

  // A plot on the printer, through the plot dialogue's medium: a PDF page.
  graphics::resetPlotState();
  graphics::GINIT(1);
  graphics::PlotMedium printer;
  printer.type = graphics::TypeWindowPlotter;
  double w = 0, h = 0, a = 0;
  EXPECT_STATUS(false, graphics::openPlotMedium(graphics::OpenHardcopy, graphics::MediumPlotter,
                                                printer, "", "", w, h, a, status));
  EXPECT_EQ(graphics::plotState().device, graphics::DevicePrinterPage);
  EXPECT_NEAR(w, PlotPageWidthMm, 0.5);
  graphics::GMARG(0, 0, 0, 0);
  graphics::G2SCAL(0.0, 1.0, 0.0, 1.0);
  graphics::GMOVE2(0.1, 0.1);
  graphics::GDRAW2(0.9, 0.9);
  EXPECT_STATUS(false, graphics::CLSDEV(graphics::OpenHardcopy, true, status));
  const std::string pdf = job(1);
  EXPECT_EQ(pdf.substr(0, 5), "%PDF-");
  EXPECT_GT(pdf.size(), 500u);

  // A text job of two pages.
  ASSERT_TRUE(cwOpenPrinter("Tarvik", "", dir_.path("spool.prnt"), error)) << error;
  for (int k = 1; k <= TextPageLines + 4; ++k) cwPrintLine("Line " + std::to_string(k));
  ASSERT_TRUE(cwClosePrinter(error)) << error;
  const std::string text = job(2);
  EXPECT_TRUE(Contains(text, {"Line 1\n", "Line 66\n\fLine 67\n", "Line 70\n"}));
  EXPECT_FALSE(fs::exists(dir_.path("spool.prnt")));  // the spool file is gone

  // A queue that does not exist refuses the job, in lp's own words.
  writeText(dir_.path("x.txt"), "x\n");
  EXPECT_FALSE(submitPrintFile(dir_.path("x.txt"), "nosuchqueue", "Tarvik", error));
  EXPECT_TRUE(Contains(error, "does not exist")) << error;
}

TEST_F(PrintQueue, WithoutLpThePlotSaysSoAndGoesOn) {
  // No print commands on the path at all.
  const std::string empty = dir_.path("nobin");
  fs::create_directories(empty);
  ::setenv("PATH", empty.c_str(), 1);
  std::string error;
  writeText(dir_.path("x.txt"), "x\n");
  EXPECT_FALSE(submitPrintFile(dir_.path("x.txt"), "", "Tarvik", error));
  EXPECT_TRUE(Contains(error, "\"lp\" is not installed"));
  graphics::resetPlotState();
  graphics::PlotMedium printer;
  printer.type = graphics::TypeWindowPlotter;
  double w = 0, h = 0, a = 0;
  EXPECT_STATUS(true, graphics::openPlotMedium(graphics::OpenHardcopy, graphics::MediumPlotter,
                                               printer, "", "", w, h, a, status));
  EXPECT_TRUE(Contains(output(), {"Tarvik printer error", "\"lpstat\" is not installed"}));
  EXPECT_FALSE(graphics::hardcopyOpen());
  // A text job collects its lines and then reports the missing command.
  ASSERT_TRUE(cwOpenPrinter("Tarvik", "", dir_.path("spool.prnt"), error));
  cwPrintLine("one line");
  EXPECT_FALSE(cwClosePrinter(error));
  EXPECT_TRUE(Contains(error, "\"lp\" is not installed"));
}

}  // namespace
}  // namespace kntr::platform
