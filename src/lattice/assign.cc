// Vexil - exact integer optimization on lattices.
#include "lattice/assign.tcc"

#include "lattice/instantiate.h"
