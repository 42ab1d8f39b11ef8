// Vexil - exact integer optimization on lattices.
#include "frontend/command_line.h"

namespace vexil {

std::optional<String> solFileArgument(int count, const char* const* words) {
  const int arguments = count - 1;
  if (arguments != 1 && arguments != 2) return std::nullopt;
  const String name = words[arguments];
  if (!name.endsWith(".sol")) return std::nullopt;
  return name;
}

String usageLine(int count, const char* const* words) {
  const String path = count > 0 ? words[0] : "";
  const String program = path.substr(path.rfind('/') + 1);
  return "Usage: " + program + " *.sol\n";
}

}  // namespace vexil
