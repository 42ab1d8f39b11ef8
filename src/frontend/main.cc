// Vexil - exact integer optimization on lattices.
//
// The entry point of the tool: vexil <name>.sol
#include <iostream>

#include "frontend/abrupt_end.h"
#include "frontend/command_line.h"
#include "frontend/run.h"

int main(int argc, char** argv) {
  std::ios::sync_with_stdio(false);
  const auto solFile = vexil::solFileArgument(argc, argv);
  if (!solFile) {
    std::cout << vexil::usageLine(argc, argv);
    return 1;
  }
  vexil::releaseNamesOnAbruptEnd();
  vexil::run(*solFile);
  return 0;
}
