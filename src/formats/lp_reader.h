// Vexil - exact integer optimization on lattices.
#pragma once

#include "formats/named_model.h"
#include "formats/source_text.h"

namespace vexil::formats {

/// The model of an LP file; the rules where readers differ stand in vexil-formats(5). Fatal:
/// "path:line:column: expected ..." at the first fault. Notes go out as warnings.
[[nodiscard]] NamedModel readLp(const SourceText& source);

}  // namespace vexil::formats
