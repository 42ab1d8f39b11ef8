// Vexil - exact integer optimization on lattices.
#pragma once

#include <random>
#include <string>
#include <vector>

namespace vexil::fuzz {

using Random = std::mt19937_64;

/// A number from 0 to `limit` - 1.
[[nodiscard]] std::size_t below(Random& random, std::size_t limit);

/// One of `corpus`, as it stands or changed in a few places: bytes, words, pieces, its length. No
/// reader looks for the end of a comment for ever.
[[nodiscard]] std::string mutated(const std::vector<std::string>& corpus, Random& random);

}  // namespace vexil::fuzz
