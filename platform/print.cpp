#include "platform/print.h"

#include <sys/wait.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstring>

namespace kntr::platform {

namespace {

// A word for the shell, quoted unless it is plainly safe.
std::string shellWord(std::string_view word) {
  const bool safe = !word.empty() &&
                    word.find_first_not_of("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz"
                                           "0123456789._/-+:@") == std::string_view::npos;
  if (safe) return std::string(word);
  std::string quoted = "'";
  for (char c : word) quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
  return quoted + "'";
}

// Runs a command with its output and errors captured; the exit code, or -1
// when it could not run.
int captured(const std::string& command, std::string& output) {
  output.clear();
  std::FILE* pipe = ::popen((command + " 2>&1").c_str(), "r");
  if (!pipe) return -1;
  char buffer[512];
  std::size_t n = 0;
  while ((n = std::fread(buffer, 1, sizeof buffer, pipe)) > 0) output.append(buffer, n);
  const int result = ::pclose(pipe);
  if (result == -1) return -1;
  return WIFEXITED(result) ? WEXITSTATUS(result) : -1;
}

bool commandAvailable(const char* name) {
  std::string ignored;
  return captured(std::string("command -v ") + name, ignored) == 0;
}

// The last line of a command's words, without its line end.
std::string lastLine(std::string text) {
  while (!text.empty() && (text.back() == '\n' || text.back() == ' ')) text.pop_back();
  const std::size_t at = text.rfind('\n');
  return at == std::string::npos ? text : text.substr(at + 1);
}

}  // namespace

PrintJobs& printJobs() {
  static PrintJobs jobs;
  return jobs;
}

bool printQueues(std::vector<std::string>& queues, std::string& defaultQueue, std::string& error) {
  queues.clear();
  defaultQueue.clear();
  if (!commandAvailable("lpstat")) {
    error = "the print service's command \"lpstat\" is not installed";
    return false;
  }
  std::string output;
  // "lpstat -a" lists the queues that accept jobs, one a line, the name first.
  if (captured("lpstat -a", output) == 0) {
    std::size_t start = 0;
    while (start < output.size()) {
      std::size_t end = output.find('\n', start);
      if (end == std::string::npos) end = output.size();
      const std::string row = output.substr(start, end - start);
      const std::size_t space = row.find(' ');
      const std::string name = row.substr(0, space);
      if (!name.empty() && row.find("not accepting") == std::string::npos) queues.push_back(name);
      start = end + 1;
    }
  } else if (output.find("No destinations") == std::string::npos) {
    error = lastLine(output);
    if (error.empty()) error = "lpstat failed";
    return false;
  }
  // "lpstat -d": "system default destination: NAME", or a line saying none.
  if (captured("lpstat -d", output) == 0) {
    const std::string marker = "destination: ";
    const std::size_t at = output.find(marker);
    if (at != std::string::npos) defaultQueue = lastLine(output.substr(at + marker.size()));
  }
  return true;
}

bool submitPrintFile(std::string_view fileName, std::string_view queue, std::string_view title,
                     std::string& error) {
  if (!commandAvailable("lp")) {
    error = "the print service's command \"lp\" is not installed";
    return false;
  }
  std::string command = "lp";
  if (!queue.empty()) command += " -d " + shellWord(queue);
  if (!title.empty()) command += " -t " + shellWord(title);
  command += " -- " + shellWord(fileName);
  std::string output;
  const int result = captured(command, output);
  if (result == 0) return true;
  error = lastLine(output);
  if (error.empty()) error = "lp ended with code " + std::to_string(result);
  return false;
}

CairoDevice* cwOpenPlotter(std::string_view queue, std::string_view spoolName, std::string& error) {
  PrintJobs& jobs = printJobs();
  jobs.plotPage.reset();
  const int width = static_cast<int>(std::lround(PlotPageWidthMm * PlotPageDpi / 25.4));
  const int height = static_cast<int>(std::lround(PlotPageHeightMm * PlotPageDpi / 25.4));
  jobs.plotPage = CairoDevice::file(PictureKind::Pdf, std::string(spoolName), width, height,
                                    PlotPageDpi, error);
  if (!jobs.plotPage) return nullptr;
  jobs.plotPage->paperColours(true);
  jobs.plotPage->clear(0, 0, width, height);
  jobs.plotQueue = std::string(queue);
  jobs.plotSpool = std::string(spoolName);
  return jobs.plotPage.get();
}

bool cwClosePlotter(bool keep, std::string& error) {
  PrintJobs& jobs = printJobs();
  if (!jobs.plotPage) return true;
  const bool written = jobs.plotPage->finish(error);
  jobs.plotPage.reset();
  bool ok = written;
  if (written && keep) ok = submitPrintFile(jobs.plotSpool, jobs.plotQueue, "Tarvik", error);
  if (written) std::remove(jobs.plotSpool.c_str());
  return ok;
}

bool cwOpenPrinter(std::string_view jobName, std::string_view queue, std::string_view spoolName,
                   std::string& error) {
  (void)error;
  PrintJobs& jobs = printJobs();
  jobs.textOpen = true;
  jobs.textQueue = std::string(queue);
  jobs.textSpool = std::string(spoolName);
  jobs.textTitle = std::string(jobName);
  jobs.textPages.clear();
  jobs.textLine = 0;
  return true;
}

void cwPrintLine(std::string_view text) {
  PrintJobs& jobs = printJobs();
  if (!jobs.textOpen) return;
  // A page that is full ends with a form feed before the next line.
  if (jobs.textLine >= TextPageLines) {
    jobs.textPages += '\f';
    jobs.textLine = 0;
  }
  jobs.textPages.append(text);
  jobs.textPages += '\n';
  ++jobs.textLine;
}

bool cwClosePrinter(std::string& error) {
  PrintJobs& jobs = printJobs();
  if (!jobs.textOpen) return true;
  jobs.textOpen = false;
  const std::string temporary = jobs.textSpool + ".part";
  std::FILE* file = std::fopen(temporary.c_str(), "w");
  if (!file) {
    error = jobs.textSpool + ": " + std::strerror(errno);
    return false;
  }
  const bool written =
      std::fwrite(jobs.textPages.data(), 1, jobs.textPages.size(), file) == jobs.textPages.size();
  const int savedErrno = errno;
  if (std::fclose(file) != 0 || !written) {
    error = jobs.textSpool + ": " + std::strerror(written ? errno : savedErrno);
    std::remove(temporary.c_str());
    return false;
  }
  if (std::rename(temporary.c_str(), jobs.textSpool.c_str()) != 0) {
    error = jobs.textSpool + ": " + std::strerror(errno);
    std::remove(temporary.c_str());
    return false;
  }
  const bool ok = submitPrintFile(jobs.textSpool, jobs.textQueue, jobs.textTitle, error);
  std::remove(jobs.textSpool.c_str());
  jobs.textPages.clear();
  return ok;
}

CairoDevice* cwOpenMetaFile(std::string_view fileName, double widthMm, double heightMm,
                            std::string& error) {
  PrintJobs& jobs = printJobs();
  jobs.metafile.reset();
  const int width = std::max(2, static_cast<int>(std::lround(widthMm * PlotPageDpi / 25.4)));
  const int height = std::max(2, static_cast<int>(std::lround(heightMm * PlotPageDpi / 25.4)));
  jobs.metafile =
      CairoDevice::file(PictureKind::Svg, std::string(fileName), width, height, PlotPageDpi, error);
  if (!jobs.metafile) return nullptr;
  jobs.metafile->paperColours(true);
  jobs.metafile->clear(0, 0, width, height);
  return jobs.metafile.get();
}

bool cwCloseMetaFile(std::string& error) {
  PrintJobs& jobs = printJobs();
  if (!jobs.metafile) return true;
  const bool ok = jobs.metafile->finish(error);
  jobs.metafile.reset();
  return ok;
}

}  // namespace kntr::platform
