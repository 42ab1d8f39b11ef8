// Vexil - exact integer optimization on lattices.
#include "lattice/lat_file.tcc"

#include "lattice/instantiate.h"
