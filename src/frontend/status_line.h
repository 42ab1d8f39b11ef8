// Vexil - exact integer optimization on lattices.
#pragma once

#include <chrono>
#include <functional>

#include "foundation/string.h"

namespace vexil {

/// The error stream of a long run: lines that stay and, on a terminal, a last line that is renewed
/// twice a second.
class StatusLine {
 public:
  explicit StatusLine(bool onTerminal) : onTerminal_(onTerminal) {}
  StatusLine(const StatusLine&) = delete;
  StatusLine& operator=(const StatusLine&) = delete;
  ~StatusLine() { clear(); }

  /// Shows the line that `text` gives, if it is time for a new one.
  void renew(const std::function<String()>& text);
  /// Takes the status line away until it is renewed.
  void clear();
  void printAbove(const String& line);
  void warnAbove(const String& text);

 private:
  bool onTerminal_;
  std::size_t shown_ = 0;  ///< characters of the line that stands there
  std::chrono::steady_clock::time_point next_{};
};

}  // namespace vexil
