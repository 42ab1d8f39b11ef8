// Vexil - exact integer optimization on lattices.
#include "solutions/reports.tcc"

#include "program/instantiate.h"
