// Vexil - exact integer optimization on lattices.
#include "program/prepare.tcc"

#include "program/instantiate.h"
