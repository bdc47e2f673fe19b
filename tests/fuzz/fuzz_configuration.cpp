// Arbitrary bytes as a configuration file and as a terminal definition file:
// the readers must neither crash nor hang, whatever the lines hold.
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>

#include "framework/configuration.h"
#include "framework/state.h"
#include "platform/console.h"

using namespace kntr::framework;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  // one scratch file for the whole run, removed at exit
  static const struct Scratch {
    std::string name = "/tmp/kntr-fuzz-configuration-" + std::to_string(::getpid());
    ~Scratch() { std::remove(name.c_str()); }
  } scratch;
  const std::string& name = scratch.name;
  if (std::FILE* file = std::fopen(name.c_str(), "wb")) {
    std::fwrite(data, 1, size, file);
    std::fclose(file);
  }
  // every error waits for a line: give it plenty
  kntr::platform::testconsole::attach(std::string(64, '\n'));
  resetProgramState();
  resetConfiguration();
  bool status = false;
  RDCONF(name, status);
  resetTerminal();
  RDTERM(name, status);
  kntr::platform::testconsole::takeOutput();
  kntr::platform::testconsole::detach();
  return 0;
}
