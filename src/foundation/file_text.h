// Vexil - exact integer optimization on lattices.
#pragma once

#include <optional>
#include <string>

#include "foundation/string.h"

namespace vexil {

/// The whole content of a file; nothing if it cannot be opened or read.
[[nodiscard]] std::optional<std::string> readFileText(const String& path);

}  // namespace vexil
