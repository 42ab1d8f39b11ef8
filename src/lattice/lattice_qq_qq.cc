// Vexil - exact integer optimization on lattices.
#include "lattice/lattice_members.h"

template class vexil::Lattice<vexil::QQ, vexil::QQ>;
