// Vexil - exact integer optimization on lattices.
#pragma once

#include "formats/named_model.h"
#include "formats/source_text.h"

namespace vexil::formats {

/// The model of an MPS file, fixed or free; the rules where readers differ stand in
/// vexil-formats(5). Fatal: "path:line:column: expected ..." at the first fault. Notes go out as
/// warnings.
[[nodiscard]] NamedModel readMps(const SourceText& source, const ReadSettings& settings);

}  // namespace vexil::formats
