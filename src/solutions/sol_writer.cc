// Vexil - exact integer optimization on lattices.
#include "solutions/sol_writer.tcc"

#include "program/instantiate.h"
