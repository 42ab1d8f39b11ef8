// Vexil - exact integer optimization on lattices.
#include "foundation/failure.h"

#include <cstdlib>
#include <iostream>

#include "foundation/trace_state.h"

namespace vexil {

void endWithFailure(const std::string& text) {
  std::cerr << "\n*** FAIL: " + text + traceNewline() << std::flush;
  std::exit(1);
}

void writeWarning(const std::string& text) { std::cerr << "\n*** " + text + "\n" << std::flush; }

}  // namespace vexil
