// Vexil - exact integer optimization on lattices.
#include "reduction/blend.tcc"

#include "lattice/instantiate.h"
