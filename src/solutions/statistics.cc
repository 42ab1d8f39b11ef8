// Vexil - exact integer optimization on lattices.
#include "solutions/statistics.tcc"

#include "lattice/instantiate.h"
