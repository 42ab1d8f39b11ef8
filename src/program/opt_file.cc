// Vexil - exact integer optimization on lattices.
#include "program/opt_file.tcc"

#include "program/instantiate.h"
