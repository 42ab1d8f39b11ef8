// Vexil - exact integer optimization on lattices.
#include "foundation/trace.h"

#include "foundation/failure.h"

namespace vexil {

String traceBegin() {
  String prefix;
  auto level = static_cast<std::size_t>(traceDepth);
  if (traceLineOpen[level] != 0) {
    traceLineOpen[level] = 0;
    prefix += "\n";
  }
  prefix += "|";
  for (std::size_t i = 0; i < level; ++i) prefix += "    |";
  prefix += "->";
  if (++level == TRACE_LEVELS) fail("Maximum thread depth reached");
  traceDepth = static_cast<std::int64_t>(level);
  traceLineOpen[level] = 1;
  return prefix;
}

String traceEnd(bool quiet) {
  const auto level = static_cast<std::size_t>(traceDepth);
  const bool closed = traceLineClosed[level] != 0;
  const bool open = traceLineOpen[level] != 0;
  traceLineOpen[level] = 0;
  if (traceDepth != 0) {
    traceLineClosed[level] = 0;
    --traceDepth;
  }
  return open && !(quiet && closed) ? "\n" : "";
}

String traceLine(const String& text) {
  const String prefix = traceBegin();
  return prefix + " " + text + traceEnd(false);
}

}  // namespace vexil
