// Vexil - exact integer optimization on lattices.
#include <algorithm>
#include <bit>
#include <cstdlib>
#include <utility>

#include "numbers/zz.h"
#include "numbers/zz_words.h"

namespace vexil {

namespace {

/// The 36 digits of `a` that begin with the top one of limb `n`, where that limb has `digits`.
DoubleWord leading(const ZZ& a, Index n, int digits) {
  const auto limbAt = [&](Index i) { return limbs::word(i >= 1 && i <= a.MN ? a.data[i] : 0); };
  const auto pairAt = [&](Index i) { return limbAt(i) * limbs::WORD_BASE + limbAt(i - 1); };
  const DoubleWord upper =
      static_cast<DoubleWord>(pairAt(n)) * limbs::word(limbs::WIDE) + pairAt(n - 2);
  return upper * limbs::powerOfTen(limbs::LIMB_DIGITS - digits) +
         limbAt(n - 4) / limbs::powerOfTen(digits);
}

/// What steps of Euclid's algorithm make of u and v: A u - B v and D v - C u, both negated behind
/// an odd number of steps. D is the greatest of the four.
struct Steps {
  Word A = 1;
  Word B = 0;
  Word C = 0;
  Word D = 1;
  bool odd = false;

  [[nodiscard]] DoubleWord first(DoubleWord u, DoubleWord v) const {
    return odd ? B * v - A * u : A * u - B * v;
  }
  [[nodiscard]] DoubleWord second(DoubleWord u, DoubleWord v) const {
    return odd ? C * u - D * v : D * v - C * u;
  }
  /// These steps and then `next`.
  [[nodiscard]] Steps then(const Steps& next) const {
    return {.A = next.A * A + next.B * C,
            .B = next.A * B + next.B * D,
            .C = next.C * A + next.D * C,
            .D = next.C * B + next.D * D,
            .odd = odd != next.odd};
  }
  [[nodiscard]] limbs::Combination combination() const {
    const auto withSign = [](Word factor, bool negative) {
      return negative ? -limbs::limb(factor) : limbs::limb(factor);
    };
    return {.A = withSign(A, odd),
            .B = withSign(B, !odd),
            .C = withSign(C, !odd),
            .D = withSign(D, odd)};
  }
};

/// The steps that are certain for all numbers that differ from u > v by less than `error`: their
/// remainders differ from those here by less than 2 error D, which must not change the order.
Steps certainSteps(Word u, Word v, Word error) {
  const Word slack = 2 * error;
  Steps steps;
  while (v > slack * steps.D) {
    const Word quotient = u / v;
    const Word rest = u - quotient * v;
    const Word C = steps.A + quotient * steps.C;
    const Word D = steps.B + quotient * steps.D;
    if (rest < slack * D || v - rest < slack * (D + steps.D)) break;
    u = std::exchange(v, rest);
    steps = {.A = steps.C, .B = steps.D, .C = C, .D = D, .odd = !steps.odd};
  }
  return steps;
}

/// The steps that 36 leading digits tell: those of their upper halves, and those of the leading
/// words of what these leave.
Steps certainSteps(DoubleWord u, DoubleWord v) {
  constexpr int HALF = 60;
  const Steps steps = certainSteps(static_cast<Word>(u >> HALF), static_cast<Word>(v >> HALF), 1);
  const DoubleWord x = steps.first(u, v);
  const DoubleWord y = steps.second(u, v);
  const int shift = 64 - std::countl_zero(static_cast<Word>(x >> HALF));
  return steps.then(certainSteps(static_cast<Word>(x >> shift), static_cast<Word>(y >> shift),
                                 2 + (steps.D >> shift)));
}

/// Puts zero limbs on top, up to `n` limbs.
void extend(ZZ& a, Index n) {
  const Index before = a.MN;
  a.Array::resize(n, false);
  std::fill(a.data + 1 + before, a.data + 1 + n, 0);
}

/// Calls `operation` with the limbs of both, `count` or one more, and drops zero limbs at the top.
template <typename Operation>
void onEvenLimbs(ZZ& u, ZZ& v, Index count, Operation operation) {
  const Index even = count + count % 2;
  extend(u, even);
  extend(v, even);
  operation(u.data + 1, v.data + 1, even);
  u.MN = limbs::trimmed(u.data + 1, count);
  v.MN = limbs::trimmed(v.data + 1, count);
}

/// One round for u >= v, v of more than WORD_LIMBS limbs.
void shrink(ZZ& u, ZZ& v) {
  const Index n = u.MN;
  const int digits = limbs::digitCount(limbs::word(u.data[n]));
  const Steps steps = certainSteps(leading(u, n, digits), leading(v, n, digits));
  if (steps.B == 0) {
    static ZZ quotient;
    div(u, v, quotient, u);
    return std::swap(u, v);
  }
  const limbs::Combination by = steps.combination();
  onEvenLimbs(u, v, n, [&](Limb* x, Limb* y, Index even) { limbs::combine(x, y, even, by); });
}

}  // namespace

void addScaled(ZZ& u, ZZ& v, Index count, Word A, Word B, Word D) {
  onEvenLimbs(u, v, count, [&](Limb* x, Limb* y, Index n) { limbs::addScaled(x, y, n, A, B, D); });
}

/// Stein's algorithm behind one step of Euclid's, which evens out different sizes; without branches
/// on which number is greater, which could not be foreseen.
Word gcdWord(Word a, Word b) {
  if (b == 0) return a;
  a %= b;
  if (a == 0) return b;
  const int shift = std::countr_zero(a | b);
  a >>= std::countr_zero(a);
  b >>= std::countr_zero(b);
  while (a != b) {
    const Limb difference = limbs::limb(a - b);
    b += limbs::word(std::min<Limb>(difference, 0));
    a = limbs::word(std::abs(difference)) >> std::countr_zero(limbs::word(difference));
  }
  return a << shift;
}

/// Lehmer's algorithm: Knuth, The Art of Computer Programming, volume 2, 4.5.2, algorithm L.
void gcd(const ZZ& a, const ZZ& b, ZZ& r) {
  const bool aFits = limbCount(a) <= WORD_LIMBS;
  const bool bFits = limbCount(b) <= WORD_LIMBS;
  if (aFits && bFits) return assignWord(r, gcdWord(toWord(a), toWord(b)));
  if (aFits && !isZero(a)) return assignWord(r, gcdWord(toWord(a), remainder(b, toWord(a))));
  if (bFits && !isZero(b)) return assignWord(r, gcdWord(toWord(b), remainder(a, toWord(b))));
  static ZZ u;
  static ZZ v;
  u = a;
  v = b;
  u.positive = v.positive = true;
  if (compareMagnitudes(u, v) < 0) std::swap(u, v);
  while (v.MN > WORD_LIMBS) shrink(u, v);
  if (isZero(v)) {
    r = u;
  } else {
    assignWord(r, gcdWord(toWord(v), remainder(u, toWord(v))));
  }
}

ZZ gcd(const ZZ& a, const ZZ& b) {
  ZZ r;
  gcd(a, b, r);
  return r;
}

ZZ lcm(const ZZ& a, const ZZ& b) {
  ZZ r = a * b;
  div(r, gcd(a, b), r, r);
  return r;
}

}  // namespace vexil
