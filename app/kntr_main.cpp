// kntr: the interactive profile editor.
#include "framework/state.h"
#include "profile/module.h"

int main(int argc, char** argv) {
  auto& arguments = kntr::framework::program().arguments;
  arguments.assign(argv, argv + argc);
  return kntr::profile::KNTRMN();
}
