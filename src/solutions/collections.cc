// Vexil - exact integer optimization on lattices.
#include "solutions/collections.tcc"

#include "lattice/instantiate.h"
