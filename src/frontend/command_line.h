// Vexil - exact integer optimization on lattices.
#pragma once

#include <optional>
#include <string>

#include "foundation/string.h"

namespace vexil {

/// The name of the sol file of a command line: the last of one or two arguments, where that ends in
/// ".sol". Nothing for any other command line.
[[nodiscard]] std::optional<String> solFileArgument(int count, const char* const* words);

/// The usage line with its newline. It names the program by the first word's part behind the last
/// "/", and by nothing if there is no first word.
[[nodiscard]] String usageLine(int count, const char* const* words);

}  // namespace vexil
