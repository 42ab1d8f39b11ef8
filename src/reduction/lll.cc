// Vexil - exact integer optimization on lattices.
#include "reduction/lll.tcc"

#include "lattice/instantiate.h"
