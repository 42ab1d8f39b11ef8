// Vexil - exact integer optimization on lattices.
#include "solver/integers.h"

#include "numbers/limbs.h"

namespace vexil::solver {
namespace {

/// The magnitude limb by limb, from the top.
template <typename Number>
Number assembled(const ZZ& a, Number base) {
  Number value = 0;
  for (std::int64_t i = a.MN; i >= 1; --i) value = value * base + static_cast<Number>(a[i]);
  return a.positive ? value : -value;
}

}  // namespace

ZZ toZZ(Int128 a) {
  constexpr std::int64_t BASE = 1'000'000'000'000'000'000;
  const auto low = static_cast<long long>(a % BASE);
  const Int128 rest = a / BASE;
  const auto middle = static_cast<long long>(rest % BASE);
  const auto high = static_cast<long long>(rest / BASE);
  if (middle == 0 && high == 0) return low;
  return (ZZ(high) * ZZ(BASE) + ZZ(middle)) * ZZ(BASE) + ZZ(low);
}

bool isNarrow(const ZZ& a) {
  static const ZZ limit(static_cast<long long>(NARROW_LIMIT));
  return compareMagnitudes(a, limit) < 0;
}

std::int64_t toNarrow(const ZZ& a) { return assembled<std::int64_t>(a, limbs::BASE); }

double toDouble(const ZZ& a) { return assembled<double>(a, static_cast<double>(limbs::BASE)); }

template <>
ZZ nearestInteger<ZZ>(double a) {
  double rest = std::rint(std::fabs(a));
  if (rest < 4e18) {
    const auto small = static_cast<long long>(rest);
    return a < 0 ? -small : small;
  }
  // A double beyond 2^62 is m 2^e; halve it exactly until it fits, then double back.
  int doublings = 0;
  for (; rest >= 4e18; rest *= 0.5) ++doublings;
  ZZ value(static_cast<long long>(rest));
  for (; doublings > 0; --doublings) value = value + value;
  return a < 0 ? -value : value;
}

template <>
ZZ floorDivide<ZZ>(const ZZ& a, const ZZ& b) {
  ZZ q;
  ZZ r;
  div(a, b, q, r);
  return signOf(r) < 0 ? q - ZZ(1) : q;
}

template <>
ZZ ceilDivide<ZZ>(const ZZ& a, const ZZ& b) {
  return -floorDivide<ZZ>(-a, b);
}

}  // namespace vexil::solver
