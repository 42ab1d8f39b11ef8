// Vexil - exact integer optimization on lattices.
#pragma once

namespace vexil {

/// The version of this program, as in "2.2.3".
extern const char* const VERSION;

}  // namespace vexil
