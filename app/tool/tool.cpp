// kntr-tool: the dispatcher and what the commands share.
//
// The routines of the module talk to the user through the console. Here the
// console is a memory screen: what it collects is written to standard error
// when a command fails, so errors reach the caller in the system's own words
// and successful runs print only their results.
#include "app/tool/tool.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "framework/state.h"
#include "platform/console.h"
#include "profile/block.h"
#include "profile/datafile.h"
#include "profile/module.h"

namespace kntr::tool {

namespace {

void writeTo(std::FILE* stream, const std::string& text) {
  std::fwrite(text.data(), 1, text.size(), stream);
}

// Whatever the module said, cleaned of blank lines, to standard error.
void flushTranscript() {
  std::string transcript = platform::testconsole::takeOutput();
  std::string cleaned;
  std::size_t start = 0;
  while (start < transcript.size()) {
    std::size_t end = transcript.find('\n', start);
    if (end == std::string::npos) end = transcript.size();
    std::string line = transcript.substr(start, end - start);
    if (line.find_first_not_of(' ') != std::string::npos) cleaned += line + "\n";
    start = end + 1;
  }
  writeTo(stderr, cleaned);
}

const char* const usageText =
    "usage: kntr-tool polyline FILE\n"
    "       kntr-tool fair FILE CURVE POINT [--along leading|trailing|leading-normal|"
    "trailing-normal|DX,DY]\n"
    "                 [--global] [--restraint D] [--iterations N] -o OUT\n"
    "       kntr-tool mesh FILE [--triangles N] [--auto Q] [--smooth] [--fem OUT] [--tvew OUT]\n"
    "                 [--plain OUT] [--msh OUT] [--vtk OUT] [--vtu OUT] [--nastran OUT]\n"
    "       kntr-tool plot FILE [--size WxH] [--mesh N] [--quality] [--comb] [--grid|--no-grid]\n"
    "                 (--png|--svg|--pdf) OUT\n"
    "       kntr-tool export FILE (--dxf|--svg) OUT\n"
    "       kntr-tool import CSV [--box XMIN,XMAX,YMIN,YMAX] [--ref X,Y] [--polyline] -o OUT\n"
    "       kntr-tool props FILE\n";

}  // namespace

bool loadProfile(const std::string& name) {
  bool loaded = false;
  bool status = false;
  profile::GTKNTR(name, false, loaded, status);
  if (status || !loaded) {
    flushTranscript();
    return false;
  }
  platform::testconsole::takeOutput();
  return true;
}

int usage(const std::string& text) {
  writeTo(stderr, text.empty() ? std::string(usageText) : "usage: kntr-tool " + text + "\n");
  return 2;
}

void print(const std::string& text) { writeTo(stdout, text); }

int fail(const std::string& text) {
  flushTranscript();
  if (!text.empty()) writeTo(stderr, text + "\n");
  return 1;
}

std::string fullPrecision(double value) {
  char buffer[40];
  std::snprintf(buffer, sizeof buffer, "%.17g", value);
  return buffer;
}

bool parseInteger(const std::string& text, int& value) {
  if (text.empty()) return false;
  char* end = nullptr;
  errno = 0;
  const long v = std::strtol(text.c_str(), &end, 10);
  if (*end != '\0' || errno != 0 || v < -2147483647L || v > 2147483647L) return false;
  value = static_cast<int>(v);
  return true;
}

bool parseReal(const std::string& text, double& value) {
  if (text.empty()) return false;
  char* end = nullptr;
  errno = 0;
  const double v = std::strtod(text.c_str(), &end);
  if (*end != '\0' || errno != 0) return false;
  value = v;
  return true;
}

}  // namespace kntr::tool

int main(int argc, char** argv) {
  using namespace kntr;
  framework::ProgramState& program = framework::program();
  program.arguments.assign(argv, argv + argc);
  program.SPNAME = profile::ModuleName;
  program.SPVERS = profile::ModuleVersion;
  program.packageName = "Tarvik";
  program.packageVersion = "2016A";
  // No person waits at a prompt: errors go on at once.
  program.executionMode = framework::ModeBatch;
  platform::testconsole::attach("", 80, 24);
  platform::setEndOfInputHandler([] {
    tool::fail("Terminating program due to EOF on input");
    std::exit(1);
  });
  bool status = false;
  profile::RSKNTR(status);

  if (argc < 2) return tool::usage("");
  const std::string command = argv[1];
  const tool::Arguments arguments(argv + 2, argv + argc);
  if (command == "polyline") return tool::polylineCommand(arguments);
  if (command == "fair") return tool::fairCommand(arguments);
  if (command == "mesh") return tool::meshCommand(arguments);
  if (command == "plot") return tool::plotCommand(arguments);
  if (command == "export") return tool::exportCommand(arguments);
  if (command == "import") return tool::importCommand(arguments);
  if (command == "props") return tool::propsCommand(arguments);
  return tool::usage("");
}
