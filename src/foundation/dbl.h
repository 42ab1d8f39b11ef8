// Vexil - exact integer optimization on lattices.
#pragma once

#include <cstdint>
#include <limits>

namespace vexil {

/// The floating number of the system: the 80-bit extended type.
using dbl_t = long double;
static_assert(std::numeric_limits<dbl_t>::digits == 64,
              "the exactness of whole numbers rests on it");

/// Decimal digits that `dbl_t` is trusted with.
inline constexpr std::uint8_t DIGITS = 18;

/// Significant digits of the numbers in files, and of the other numbers in reports and lines.
inline constexpr int FILE_DIGITS = DIGITS - 1;
inline constexpr int REPORT_DIGITS = 6;

inline constexpr dbl_t ONE_F = 1.0L;
inline constexpr dbl_t TWO_F = 2.0L;
inline constexpr dbl_t THREE_F = 3.0L;
inline constexpr dbl_t TEN_F = 10.0L;
inline constexpr dbl_t THOUSAND_F = 1000.0L;
inline constexpr dbl_t INF_F = std::numeric_limits<dbl_t>::infinity();

/// The infinity of `long`.
inline constexpr long HUGE_LONG = std::numeric_limits<long>::max();

/// Bound of the zero test, 10^-(DIGITS / 2).
inline constexpr dbl_t TOLERANCE = 1.0L / 1e9L;

}  // namespace vexil
