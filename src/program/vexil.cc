// Vexil - exact integer optimization on lattices.
#include "program/vexil.tcc"

#include "program/instantiate.h"
