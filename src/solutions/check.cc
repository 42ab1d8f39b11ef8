// Vexil - exact integer optimization on lattices.
#include "solutions/check.tcc"

#include "lattice/instantiate.h"
