// Vexil - exact integer optimization on lattices.
//
// The two integer types of the solver, `std::int64_t` where numbers stay below 2^61 and `ZZ`
// beyond, behind one set of operations, so that an algorithm is written once.
#pragma once

#include <cmath>
#include <cstdint>

#include "numbers/zz.h"

namespace vexil::solver {

__extension__ using Int128 = __int128;

/// Numbers of narrow systems are below this in magnitude.
inline constexpr std::int64_t NARROW_LIMIT = std::int64_t{1} << 61;

/// What sums of products are made in: `Wide<std::int64_t>` holds 2^20 products of a number below
/// NARROW_LIMIT and one below 2^45, `Wide<ZZ>` everything.
template <typename Z>
struct WideOf;
template <>
struct WideOf<std::int64_t> {
  using type = Int128;
};
template <>
struct WideOf<ZZ> {
  using type = ZZ;
};
template <typename Z>
using Wide = typename WideOf<Z>::type;

inline Int128 widen(std::int64_t a) { return a; }
inline const ZZ& widen(const ZZ& a) { return a; }

[[nodiscard]] ZZ toZZ(Int128 a);
inline ZZ toZZ(std::int64_t a) { return {a}; }
inline const ZZ& toZZ(const ZZ& a) { return a; }

/// |a| < NARROW_LIMIT.
[[nodiscard]] bool isNarrow(const ZZ& a);
/// The value of a number with isNarrow(a).
[[nodiscard]] std::int64_t toNarrow(const ZZ& a);

/// Fits `a` into the type of the system; the caller knows that it does.
template <typename Z>
[[nodiscard]] Z fromZZ(const ZZ& a) {
  if constexpr (std::is_same_v<Z, ZZ>) {
    return a;
  } else {
    return toNarrow(a);
  }
}

/// The double next to a number, or one of its neighbours; the same on every machine.
[[nodiscard]] inline double toDouble(std::int64_t a) { return static_cast<double>(a); }
[[nodiscard]] double toDouble(const ZZ& a);
[[nodiscard]] inline double toDouble(Int128 a) { return static_cast<double>(a); }

/// The integer next to a finite `a`; for int64 |a| < 2^62.
template <typename Z>
[[nodiscard]] Z nearestInteger(double a);
template <>
[[nodiscard]] inline std::int64_t nearestInteger<std::int64_t>(double a) {
  return static_cast<std::int64_t>(std::rint(a));
}
template <>
[[nodiscard]] ZZ nearestInteger<ZZ>(double a);

/// The greatest integer up to `a`.
[[nodiscard]] inline double roundedDown(double a) {
  const double nearest = std::rint(a);
  return nearest > a ? nearest - 1 : nearest;
}

/// -1, 0 or 1.
template <typename Z>
[[nodiscard]] int signOf(const Z& a) {
  return a > 0 ? 1 : a < 0 ? -1 : 0;
}
template <>
[[nodiscard]] inline int signOf<ZZ>(const ZZ& a) {
  return vexil::isZero(a) ? 0 : a.positive ? 1 : -1;
}

/// floor(a / b) and ceil(a / b), b > 0.
template <typename Integer>
[[nodiscard]] Integer floorDivide(const Integer& a, const Integer& b) {
  const Integer q = a / b;
  return a % b < 0 ? q - 1 : q;
}
template <>
[[nodiscard]] ZZ floorDivide<ZZ>(const ZZ& a, const ZZ& b);
template <typename Integer>
[[nodiscard]] Integer ceilDivide(const Integer& a, const Integer& b) {
  return -floorDivide<Integer>(-a, b);
}
template <>
[[nodiscard]] ZZ ceilDivide<ZZ>(const ZZ& a, const ZZ& b);

/// sum += a * b.
inline void addProduct(Int128& sum, std::int64_t a, std::int64_t b) { sum += Int128{a} * b; }
inline void addProduct(ZZ& sum, const ZZ& a, const ZZ& b) {
  ZZ product;
  mul(a, b, product);
  add(sum, product, sum);
}

}  // namespace vexil::solver
