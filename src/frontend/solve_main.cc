// Vexil - exact integer optimization on lattices.
//
// The entry point of the solver: vexil-solve [--key=value ...] <name>.opt|<name>.sol
#include <fcntl.h>
#include <unistd.h>

#include <iostream>

#include "foundation/failure.h"
#include "foundation/version.h"
#include "frontend/solve_run.h"

namespace {

/// Has no file that is opened later take the place of a standard stream that is closed. What is
/// written there fails.
void fillStandardStreams() {
  for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    if (fcntl(stream, F_GETFD) == -1) static_cast<void>(open("/dev/null", O_RDONLY));
  }
}

int run(const std::vector<std::string>& words) {
  using Action = vexil::SolveOptions::Action;
  const vexil::SolveOptions options = vexil::parseSolveOptions(words);
  if (options.action == Action::SHOW_HELP) {
    std::cout << vexil::solveHelpText();
  } else if (options.action == Action::SHOW_VERSION) {
    std::cout << "vexil-solve " << vexil::VERSION << '\n';
  } else {
    return vexil::solveRun(options, vexil::solver::solve);
  }
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  fillStandardStreams();
  std::ios::sync_with_stdio(false);
  try {
    return run({argv + std::min(argc, 1), argv + argc});
  } catch (const vexil::UsageException& fault) {
    std::cerr << "vexil-solve: " << fault.message << '\n' << vexil::solveUsageLine();
    return 1;
  } catch (const std::exception& fault) {
    vexil::fail(fault.what());
  }
}
