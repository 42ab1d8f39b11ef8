// Vexil - exact integer optimization on lattices.
#pragma once

#include "foundation/string.h"

namespace vexil {

/// The whole run on one sol file: reads the program and the stars, checks, sorts and rewrites the
/// stars and prints the report on standard output. Until the rewriting any failure leaves all files
/// as they were.
void run(const String& solFile);

}  // namespace vexil
