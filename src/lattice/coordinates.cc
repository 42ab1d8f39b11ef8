// Vexil - exact integer optimization on lattices.
#include "lattice/coordinates.tcc"

#include "lattice/instantiate.h"
