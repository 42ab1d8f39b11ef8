// Vexil - exact integer optimization on lattices.
//
// Gathers the member definitions of Lattice<T, U>; included by the one source of each instantiation
// and by nothing else. A new concern adds its file here and its declarations to lattice.h.
#pragma once

#include "lattice/assign.tcc"
#include "lattice/construction.tcc"
#include "lattice/weighted_form.tcc"
#include "solutions/sol_file.tcc"
#include "solutions/statistics.tcc"
