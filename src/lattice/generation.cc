// Vexil - exact integer optimization on lattices.
#include "lattice/generation.tcc"

#include "lattice/instantiate.h"
