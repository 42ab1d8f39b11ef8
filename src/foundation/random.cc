// Vexil - exact integer optimization on lattices.
#include "foundation/random.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdlib>

namespace vexil {

namespace {

bool readSeed(const char* device, int flags, unsigned& seed) {
  const int descriptor = open(device, flags);
  if (descriptor < 0) return false;
  const auto count = read(descriptor, &seed, sizeof seed);
  close(descriptor);
  return count == static_cast<ssize_t>(sizeof seed);
}

}  // namespace

unsigned seedRandom(unsigned seed) {
  if (seed == 0 && !readSeed("/dev/random", O_RDONLY | O_NONBLOCK | O_CLOEXEC, seed)) {
    static_cast<void>(readSeed("/dev/urandom", O_RDONLY | O_CLOEXEC, seed));
  }
  std::srand(seed);
  return seed;
}

}  // namespace vexil
