// Vexil - exact integer optimization on lattices.
#include "solutions/sol2star.tcc"

#include "lattice/instantiate.h"
