// Vexil - exact integer optimization on lattices.
//
// The two forms of message on the error stream.
#pragma once

#include <sstream>
#include <string>
#include <utility>

namespace vexil {

/// Writes a newline, "*** FAIL: ", `text` and a newline to the error stream and ends the process
/// by `exit(1)`, the normal process end: standard output is flushed, kernel names are released.
[[noreturn]] void endWithFailure(const std::string& text);

/// Writes a newline, "*** ", `text` and a newline to the error stream; the program goes on.
void writeWarning(const std::string& text);

/// The text of `parts`, one behind the other, in the default format of a stream.
template <typename... Parts>
[[nodiscard]] std::string joined(const Parts&... parts) {
  std::ostringstream text;
  (text << ... << parts);
  return std::move(text).str();
}

/// Fatal failure: reports the text made of `parts` and ends the program with status 1. There is no
/// way back; recoverable events are the exceptions of exceptions.h.
template <typename... Parts>
[[noreturn]] void fail(const Parts&... parts) {
  endWithFailure(joined(parts...));
}

/// Warning made of `parts`; the program goes on.
template <typename... Parts>
void warn(const Parts&... parts) {
  writeWarning(joined(parts...));
}

}  // namespace vexil
