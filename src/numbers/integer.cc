// Vexil - exact integer optimization on lattices.
#include "numbers/integer.h"

#include <cmath>
#include <limits>

#include "numbers/zz_words.h"

namespace vexil {

namespace {

constexpr std::int64_t LEAST = std::numeric_limits<std::int64_t>::min();

/// Greatest magnitude of a word's value, that of LEAST aside.
constexpr Word WORD_MAX = static_cast<Word>(std::numeric_limits<std::int64_t>::max());

/// Two words whose quotient is a word.
bool quotientIsWord(const Integer& a, const Integer& b) {
  return a.isWord() && b.isWord() && !(a.word() == LEAST && b.word() == -1);
}

/// Quotient and remainder of a / b for words, the quotient rounded down.
struct Division {
  std::int64_t quotient;
  std::int64_t remainder;  ///< with the sign of b
};

Division floorDivision(std::int64_t a, std::int64_t b) {
  const std::int64_t remainder = a % b;
  const bool down = remainder != 0 && (remainder < 0) != (b < 0);
  return {a / b - (down ? 1 : 0), down ? remainder + b : remainder};
}

}  // namespace

void Integer::assign(const ZZ& value) {
  const Index n = limbCount(value);
  if (n <= WORD_LIMBS + 1) {
    const Word top = n > WORD_LIMBS ? limbs::word(value.data[n]) : 0;
    Word magnitude = 0;
    if (!__builtin_mul_overflow(top, limbs::WORD_BASE * limbs::WORD_BASE, &magnitude) &&
        !__builtin_add_overflow(magnitude, toWord(value), &magnitude) && magnitude <= WORD_MAX) {
      word_ = static_cast<std::int64_t>(magnitude);
      if (!value.positive) word_ = -word_;
      big_.reset();
      return;
    }
  }
  word_ = 0;
  if (big_) {
    *big_ = value;
  } else {
    big_ = std::make_unique<ZZ>(value);
  }
}

int Integer::compareBig(const Integer& a, const Integer& b) {
  return vexil::compare(a.zz(), b.zz());
}

Integer& Integer::addBig(const Integer& b) {
  assign(zz() + b.zz());
  return *this;
}

Integer& Integer::subtractBig(const Integer& b) {
  assign(zz() - b.zz());
  return *this;
}

Integer& Integer::multiplyBig(const Integer& b) {
  assign(zz() * b.zz());
  return *this;
}

void Integer::addBigProduct(const Integer& a, const Integer& b) { assign(zz() + a.zz() * b.zz()); }

void Integer::subtractBigProduct(const Integer& a, const Integer& b) {
  assign(zz() - a.zz() * b.zz());
}

dbl_t Integer::bigToReal() const {
  dbl_t x = 0;
  for (Index i = limbCount(*big_); i > 0; --i) {
    x = x * static_cast<dbl_t>(limbs::BASE) + static_cast<dbl_t>(big_->data[i]);
  }
  return big_->positive ? x : -x;
}

Integer Integer::fromReal(dbl_t x) {
  constexpr dbl_t WORD_SIZE = 0x1p62L;
  constexpr dbl_t STEP = 0x1p32L;
  const dbl_t magnitude = std::fabs(x);
  if (magnitude < WORD_SIZE) return static_cast<std::int64_t>(x);
  if (!(magnitude <= std::numeric_limits<dbl_t>::max())) return 0;
  dbl_t rest = magnitude;
  int steps = 0;
  for (; rest >= WORD_SIZE; ++steps) rest /= STEP;
  auto head = static_cast<std::int64_t>(rest);
  Integer result = head;
  for (; steps > 0; --steps) {
    rest = (rest - static_cast<dbl_t>(head)) * STEP;
    head = static_cast<std::int64_t>(rest);
    result *= std::int64_t{1} << 32;
    result += head;
  }
  return x < 0 ? -result : result;
}

Integer floorQuotient(const Integer& a, const Integer& b) {
  if (quotientIsWord(a, b)) return floorDivision(a.word(), b.word()).quotient;
  ZZ q;
  ZZ r;
  div(a.zz(), b.zz(), q, r);
  if (!isZero(r) && (a.sign() < 0) != (b.sign() < 0)) sub(q, 1, q);
  return Integer(q);
}

Integer ceilQuotient(const Integer& a, const Integer& b) { return -floorQuotient(-a, b); }

Integer nearestQuotient(const Integer& a, const Integer& b) {
  if (quotientIsWord(a, b)) {
    const auto [quotient, remainder] = floorDivision(a.word(), b.word());
    const bool up =
        b.word() < 0 ? remainder <= b.word() - remainder : remainder >= b.word() - remainder;
    return up ? quotient + 1 : quotient;
  }
  return floorQuotient(a * 2 + b, b * 2);
}

bool divides(const Integer& b, const Integer& a) {
  if (quotientIsWord(a, b)) return a.word() % b.word() == 0;
  return a.isZero() || exactQuotient(a, b) * b == a;
}

Integer gcd(const Integer& a, const Integer& b) {
  const auto fits = [](const Integer& x) { return x.isWord() && x.word() != LEAST; };
  if (!fits(a) || !fits(b)) return Integer(gcd(a.zz(), b.zz()));
  return static_cast<std::int64_t>(
      gcdWord(static_cast<Word>(abs(a).word()), static_cast<Word>(abs(b).word())));
}

std::ostream& operator<<(std::ostream& out, const Integer& a) { return out << toString(a.zz()); }

}  // namespace vexil
