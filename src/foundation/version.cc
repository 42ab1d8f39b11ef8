// Vexil - exact integer optimization on lattices.
#include "foundation/version.h"

namespace vexil {

const char* const VERSION = VEXIL_VERSION;

}  // namespace vexil
