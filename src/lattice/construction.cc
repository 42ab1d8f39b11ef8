// Vexil - exact integer optimization on lattices.
#include "lattice/construction.tcc"

#include "lattice/instantiate.h"
