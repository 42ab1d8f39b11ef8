// Vexil - exact integer optimization on lattices.
#include "lattice/weighted_basis.tcc"

#include "lattice/instantiate.h"
