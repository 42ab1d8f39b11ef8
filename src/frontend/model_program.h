// Vexil - exact integer optimization on lattices.
#pragma once

#include "formats/named_model.h"
#include "program/vexil.h"

namespace vexil {

/// The program that a file belongs to: "m.opt" and "m.sol" to the program in "m.opt", "m.lp" and
/// "m.mps" to the one they state, which "m.opt" then holds as well: it is written if it is not
/// there. An "m.opt" that holds another program is not touched: `WriteException`. Throws
/// `UsageException` for any other ending and `ReadException` for an opt file that ends too soon;
/// the faults of a file are fatal.
[[nodiscard]] Vexil<QQ> programOf(const String& file, const formats::ReadSettings& settings);

}  // namespace vexil
