// Vexil - exact integer optimization on lattices.
#include "solutions/sol_file.tcc"

#include "lattice/instantiate.h"
