// Vexil - exact integer optimization on lattices.
#include "reduction/consistency.tcc"

#include "lattice/instantiate.h"
