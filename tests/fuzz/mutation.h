// Vexil - exact integer optimization on lattices.
#pragma once

#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace vexil::fuzz {

using Random = std::mt19937_64;

/// A number from 0 to `limit` - 1.
[[nodiscard]] std::size_t below(Random& random, std::size_t limit);

/// One of `corpus`, as it stands or changed in a few places: bytes, words, pieces, its length.
/// Readers come to its end: see `comesToItsEnd`.
[[nodiscard]] std::string mutated(const std::vector<std::string>& corpus, Random& random);

/// False if skipping a comment of `text` might look for the comment's end for ever. True is
/// certain, false may err, as where "/*" stands in a line that nobody skips.
[[nodiscard]] bool comesToItsEnd(std::string_view text);

}  // namespace vexil::fuzz
