// Vexil - exact integer optimization on lattices.
//
// Arithmetic modulo the prime 2^61 - 1, in which linear systems over the integers are solved with
// machine words.
#pragma once

#include <cmath>
#include <cstdint>
#include <optional>

#include "foundation/dbl.h"
#include "numbers/qq.h"
#include "numbers/zz_words.h"

namespace vexil::prime_field {

using Residue = std::uint64_t;  ///< 0 to PRIME - 1

inline constexpr Residue PRIME = (Residue{1} << 61) - 1;

/// So many products of residues can be added up before the sum has to be reduced.
inline constexpr std::size_t SUMMANDS = 32;

/// The residue of any double word.
[[nodiscard]] constexpr Residue reduced(DoubleWord x) {
  x = (x & PRIME) + (x >> 61);
  const auto folded = static_cast<Residue>((x & PRIME) + (x >> 61));
  return folded >= PRIME ? folded - PRIME : folded;
}

[[nodiscard]] constexpr Residue product(Residue a, Residue b) {
  return reduced(static_cast<DoubleWord>(a) * b);
}

/// a - b c
[[nodiscard]] constexpr Residue difference(Residue a, Residue b, Residue c) {
  return reduced(static_cast<DoubleWord>(b) * (PRIME - c) + a);
}

/// 1 / a by Fermat's little theorem, a not 0.
[[nodiscard]] Residue inverse(Residue a);

/// The integer of least magnitude with this residue.
[[nodiscard]] constexpr long leastInteger(Residue a) {
  return a > PRIME / 2 ? -static_cast<long>(PRIME - a) : static_cast<long>(a);
}

/// The residue of a number; nothing for an infinity, a denominator that the prime divides and a
/// floating number that is not whole.
[[nodiscard]] std::optional<Residue> residue(const QQ& x);
[[nodiscard]] std::optional<Residue> residueOfGreat(dbl_t x);
[[nodiscard]] inline std::optional<Residue> residue(dbl_t x) {
  if (!(std::fabs(x) < static_cast<dbl_t>(PRIME))) return residueOfGreat(x);
  const auto word = static_cast<std::int64_t>(x);
  if (static_cast<dbl_t>(word) != x) return std::nullopt;
  return static_cast<Residue>(word < 0 ? word + static_cast<std::int64_t>(PRIME) : word);
}

}  // namespace vexil::prime_field
