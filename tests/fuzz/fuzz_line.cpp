// Fuzz target: the input line language with the item fetchers, and the menu
// and question dialogues that read through it.
//
// The first byte chooses the expected field count, the reader, the fetcher
// and whether a menu runs; the rest is what the user types. The run is in
// batch mode, so messages do not wait, and the end of the typed input ends
// the dialogue by an exception caught here.
#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "framework/input.h"
#include "framework/menus.h"
#include "framework/state.h"
#include "framework/system.h"
#include "platform/console.h"

namespace {

using namespace kntr;

struct InputEnded {};

[[noreturn]] void inputEnded() {
  throw InputEnded{};
}
void keepRunning(int) {}
int noCommand(std::string_view) {
  return 0;
}
void quietly(bool& status) {
  status = false;
}
void failing(bool& status) {
  status = true;
}

void prepare(int selector) {
  framework::resetProgramState();
  framework::ProgramState& p = framework::program();
  p.executionMode = framework::ModeBatch;
  p.specialDisabled = (selector & 0x40) != 0;
  p.backupInterval = 2;
  framework::systemHooks().endProcess = &keepRunning;
  framework::systemHooks().runCommand = &noCommand;
  framework::ModuleCallbacks& c = framework::callbacks();
  c.load = &quietly;
  c.store = &failing;
  c.reset = &quietly;
  c.backup = &quietly;
  framework::services().selectProject = &quietly;
  framework::services().closeLog = &quietly;
  platform::setEndOfInputHandler(&inputEnded);
}

void fetch(int kind, int count) {
  bool deflt = false;
  bool status = false;
  switch (kind) {
    case 0: {
      std::array<int, 4> values{1, 2, 3, 4};
      framework::GTINTV(std::span<int>(values.data(), static_cast<std::size_t>(count)), deflt,
                        status);
      break;
    }
    case 1: {
      std::array<double, 4> values{1.0, 2.0, 3.0, 4.0};
      framework::GTREAL(std::span<double>(values.data(), static_cast<std::size_t>(count)), deflt,
                        status);
      break;
    }
    case 2: {
      std::array<std::string, 4> texts{"a", "b", "c", "d"};
      framework::GTCHAR(std::span<std::string>(texts.data(), static_cast<std::size_t>(count)), 12,
                        deflt, status);
      break;
    }
    default: {
      std::array<bool, 4> values{true, false, true, false};
      framework::GTLOGV(std::span<bool>(values.data(), static_cast<std::size_t>(count)), deflt,
                        status);
      break;
    }
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  // Each "#CALCULATOR" line nests a dialogue; keep the nesting modest.
  if (size < 1 || size > 1024) return 0;
  const int selector = data[0];
  const std::string typed(reinterpret_cast<const char*>(data + 1), size - 1);
  prepare(selector);
  platform::testconsole::attach(typed, 80, 24);
  const int expected = 1 + (selector & 3);
  try {
    framework::Answer answer;
    bool status = false;
    if (selector & 0x80) {
      static const std::array<std::string, 5> items{"One", "", "Two{NWM", "(Three)", "Four"};
      bool abort = false;
      int selection = 0;
      framework::TXMENU("FUZZ", items, (selector >> 3) & 7, (selector & 4) ? "Help" : "", abort,
                        selection, status);
      bool answerYes = false;
      framework::OKEXIT((selector & 1) != 0, answerYes);
    } else {
      if (selector & 4)
        framework::RDLINE(expected, answer, status);
      else
        framework::RDPROM(expected, answer, status);
      fetch((selector >> 3) & 3, expected);
      // Past the end of the line every field is a default.
      fetch((selector >> 4) & 3, 4 - (selector & 3));
    }
  } catch (const InputEnded&) {
  }
  platform::testconsole::takeOutput();
  platform::testconsole::detach();
  return 0;
}
