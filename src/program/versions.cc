// Vexil - exact integer optimization on lattices.
#include <cstdint>

#include "program/star.h"

namespace vexil {

namespace {

/// Takes the component that starts at `at` and moves behind the dot that ends it; 0 at the end. The
/// characters count as digits whatever they are, and a number too long wraps round.
std::int64_t takeComponent(const String& version, std::size_t& at) {
  std::uint64_t number = 0;
  for (; at < version.size() && version[at] != '.'; ++at) {
    number = number * 10 + static_cast<std::uint64_t>(version[at] - '0');
  }
  if (at < version.size()) ++at;
  return static_cast<std::int64_t>(number);
}

}  // namespace

int compareVersions(const String& a, const String& b) {
  std::size_t i = 0;
  std::size_t j = 0;
  while (i < a.size() || j < b.size()) {
    const std::int64_t left = takeComponent(a, i);
    const std::int64_t right = takeComponent(b, j);
    if (left != right) return left > right ? 1 : -1;
  }
  return 0;
}

}  // namespace vexil
