// Vexil - exact integer optimization on lattices.
#include "frontend/status_line.h"

#include <iostream>

#include "foundation/failure.h"

namespace vexil {

void StatusLine::renew(const std::function<String()>& text) {
  using namespace std::chrono_literals;
  constexpr std::size_t WIDTH = 79;  // a longer line would wrap and stay
  if (!onTerminal_) return;
  const auto now = std::chrono::steady_clock::now();
  if (now < next_) return;
  next_ = now + 500ms;
  const String line = text().substr(0, WIDTH);
  const std::string rest(shown_ > line.size() ? shown_ - line.size() : 0, ' ');
  std::cerr << '\r' + line + rest << std::flush;
  shown_ = line.size();
}

void StatusLine::clear() {
  if (shown_ == 0) return;
  std::cerr << '\r' + std::string(shown_, ' ') + '\r' << std::flush;
  shown_ = 0;
}

void StatusLine::printAbove(const String& line) {
  clear();
  std::cerr << line + "\n" << std::flush;
}

void StatusLine::warnAbove(const String& text) {
  clear();
  warn(text);
}

}  // namespace vexil
