// Vexil - exact integer optimization on lattices.
#include "foundation/trace_state.h"

namespace vexil {

std::int64_t traceDepth = 0;
std::array<std::uint8_t, TRACE_LEVELS> traceLineClosed{};
std::array<std::uint8_t, TRACE_LEVELS> traceLineOpen{};

String traceNewline() {
  const auto level = static_cast<std::size_t>(traceDepth);
  traceLineClosed[level] = 1;
  traceLineOpen[level] = 0;
  return "\n";
}

}  // namespace vexil
