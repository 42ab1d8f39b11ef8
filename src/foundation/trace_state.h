// Vexil - exact integer optimization on lattices.
//
// The state of the trace log. It is apart from the operations that print lines, since a fatal
// report ends its line through it.
#pragma once

#include <array>
#include <cstdint>

#include "foundation/string.h"

namespace vexil {

/// Number of nesting levels; level TRACE_LEVELS itself is never entered.
inline constexpr std::int64_t TRACE_LEVELS = 128;

/// Current nesting level, 0 to TRACE_LEVELS - 1. Unwinding by an exception leaves levels open, so
/// whoever catches one and goes on puts the level back that it noted before.
extern std::int64_t traceDepth;

/// Per level: the level has ended a line of its own with a newline.
extern std::array<std::uint8_t, TRACE_LEVELS> traceLineClosed;

/// Per level: the level's heading has been printed and its line has not been ended.
extern std::array<std::uint8_t, TRACE_LEVELS> traceLineOpen;

/// The newline that ends a line of the present level; marks the level's line as ended.
[[nodiscard]] String traceNewline();

}  // namespace vexil
