// Vexil - exact integer optimization on lattices.
#include "numbers/wide_limbs.h"

#include <vector>

namespace vexil::limbs {

namespace {

constinit std::vector<Limb> storage;

}  // namespace

Limb* room(Index count) {
  const auto wanted = static_cast<std::size_t>(count);
  if (storage.size() < wanted) storage.resize(wanted);
  return storage.data();
}

}  // namespace vexil::limbs
