// Fuzz target: the expression evaluator on arbitrary text.
//
// The first byte chooses the wanted type (logical, integer, real, or one the
// evaluator does not know); the rest is the expression. Batch mode keeps the
// error messages from waiting for RETURN.
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "framework/calculator.h"
#include "framework/state.h"
#include "platform/console.h"

namespace {

[[noreturn]] void inputEnded() {
  __builtin_trap();
}  // nothing here reads

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace kntr;
  if (size < 1) return 0;
  static const bool ready = [] {
    platform::setEndOfInputHandler(&inputEnded);
    return true;
  }();
  (void)ready;
  framework::program().executionMode = framework::ModeBatch;
  platform::testconsole::attach("", 80, 24);
  const int wanted = 1 + data[0] % 4;
  const std::string_view text(reinterpret_cast<const char*>(data + 1), size - 1);
  int integer = 7;
  double real = 2.5;
  bool logical = false;
  bool status = false;
  framework::EVALEX(text, wanted, integer, real, logical, status);
  platform::testconsole::takeOutput();
  platform::testconsole::detach();
  return 0;
}
