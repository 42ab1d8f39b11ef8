// Vexil - exact integer optimization on lattices.
//
// The two arithmetics of a program. The source of each concern of a program includes this behind
// its member definitions, and nothing else does: an explicit instantiation of a class instantiates
// those members whose definitions stand before it, so each source compiles its own concern and no
// other.
#pragma once

#include "program/vexil.h"

namespace vexil {

template class Vexil<dbl_t>;
template class Vexil<QQ>;

}  // namespace vexil
