// Vexil - exact integer optimization on lattices.
#pragma once

#include <random>
#include <string>
#include <vector>

namespace vexil::fuzz {

using Random = std::mt19937_64;
using Texts = std::vector<std::string>;

/// A number from 0 to `limit` - 1.
[[nodiscard]] std::size_t below(Random& random, std::size_t limit);

/// The texts in tests/fuzz/corpus whose names end so, in the order of these.
[[nodiscard]] Texts corpus(const std::string& extension);

/// One of `texts`, as it stands or changed in a few places: bytes, words, pieces, its length. No
/// reader looks for the end of a comment for ever.
[[nodiscard]] std::string mutated(const Texts& texts, Random& random);

}  // namespace vexil::fuzz
