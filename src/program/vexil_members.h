// Vexil - exact integer optimization on lattices.
//
// Gathers the member definitions of Vexil<T> and of the stars it holds; included by the one source
// of each instantiation and by nothing else.
#pragma once

#include "program/opt_file.tcc"
#include "program/vexil.tcc"
#include "solutions/reports.tcc"
#include "solutions/sol_writer.tcc"
#include "solutions/star.tcc"
#include "solutions/star_check.tcc"
#include "solutions/star_parser.tcc"
