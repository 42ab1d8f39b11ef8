// Vexil - exact integer optimization on lattices.
//
// The driver is a program of its own: it takes the tests' harness along by its source.
#include "support/tool_run.cc"
