// Vexil - exact integer optimization on lattices.
//
// The four pairs of numbers. The source of each concern of a lattice includes this behind its
// member definitions, and nothing else does: an explicit instantiation of a class instantiates
// those members whose definitions stand before it, so each source compiles its own concern and no
// other.
#pragma once

#include "lattice/lattice.h"

namespace vexil {

template class Lattice<dbl_t, dbl_t>;
template class Lattice<QQ, dbl_t>;
template class Lattice<dbl_t, QQ>;
template class Lattice<QQ, QQ>;

}  // namespace vexil
