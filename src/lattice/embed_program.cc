// Vexil - exact integer optimization on lattices.
#include "lattice/embed_program.tcc"

#include "lattice/instantiate.h"
