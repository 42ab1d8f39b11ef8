// Vexil - exact integer optimization on lattices.
//
// The depth-indented trace log. The operations return pieces of text, which the caller writes on
// standard output behind its own test of the option `verb`:
//
//   a single line:               traceBegin, a blank, the text, traceEnd(false)
//   a heading with nested lines: traceBegin, a blank, the text, traceNewline; ...; traceEnd(true)
//   a heading awaiting a result: traceBegin, a blank, the text; ...; traceEnd(false)
#pragma once

#include "foundation/string.h"
#include "foundation/trace_state.h"

namespace vexil {

/// The prefix of a line, such as "|    |->", one "    |" for each level; a newline goes ahead of it
/// where the enclosing heading still waits for its end. Enters the next level; the 128th nested
/// call is the fatal "Maximum thread depth reached".
[[nodiscard]] String traceBegin();

/// A single line with its prefix and its end.
[[nodiscard]] String traceLine(const String& text);

/// Leaves the level: "\n" where its line is still open, else the empty text. With `quiet` nothing
/// is returned for a level that has ended a line of its own. Level 0 is never left.
[[nodiscard]] String traceEnd(bool quiet);

}  // namespace vexil
