#include "framework/state.h"

namespace kntr::framework {

namespace {
ProgramState& instance() {
  static ProgramState state;
  return state;
}
}  // namespace

ProgramState& program() { return instance(); }

void resetProgramState() { instance() = ProgramState{}; }

ModuleCallbacks& callbacks() {
  static ModuleCallbacks c;
  return c;
}

FrameworkServices& services() {
  static FrameworkServices s;
  return s;
}

}  // namespace kntr::framework
