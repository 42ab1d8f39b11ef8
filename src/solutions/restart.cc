// Vexil - exact integer optimization on lattices.
#include "solutions/restart.tcc"

#include "lattice/instantiate.h"
