// Vexil - exact integer optimization on lattices.
#pragma once

namespace vexil {

/// Seeds the platform's random generator and returns the seed. A `seed` of 0 asks the random
/// devices for four bytes, first "/dev/random" without blocking, then "/dev/urandom"; a failure of
/// either is not reported.
unsigned seedRandom(unsigned seed);

}  // namespace vexil
