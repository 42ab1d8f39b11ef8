// Vexil - exact integer optimization on lattices.
#include "reduction/reduce.tcc"

#include "lattice/instantiate.h"
