// Vexil - exact integer optimization on lattices.
#include "program/normal_form.tcc"

#include "program/instantiate.h"
