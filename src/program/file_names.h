// Vexil - exact integer optimization on lattices.
#pragma once

#include "foundation/string.h"

namespace vexil {

/// What the names of the files of one program have in common: `name` without its ending, which is
/// the last dot of the last part of the path with all behind it. A name that is nothing but an
/// ending stays whole.
[[nodiscard]] String baseOfFileName(const String& name);

}  // namespace vexil
