// Vexil - exact integer optimization on lattices.
#pragma once

#include <compare>
#include <cstdint>
#include <memory>
#include <ostream>

#include "foundation/dbl.h"
#include "numbers/zz.h"

namespace vexil {

/// Exact integer of any size: a machine word as long as the value fits into one, a `ZZ` beyond.
/// Every operation notices when a word overflows and when a value is back in the range of words, so
/// that one body of an algorithm serves both, and each number pays only for its own size.
class Integer {
 public:
  Integer() = default;
  Integer(int value) : word_(value) {}        // NOLINT(google-explicit-constructor)
  Integer(long value) : word_(value) {}       // NOLINT(google-explicit-constructor)
  Integer(long long value) : word_(value) {}  // NOLINT(google-explicit-constructor)
  explicit Integer(const ZZ& value) { assign(value); }
  Integer(const Integer& other) : word_(other.word_), big_(copyOf(other)) {}
  Integer(Integer&& other) noexcept = default;
  Integer& operator=(const Integer& other) {
    word_ = other.word_;
    if (big_ || other.big_) big_ = copyOf(other);
    return *this;
  }
  Integer& operator=(Integer&& other) noexcept = default;
  ~Integer() = default;

  /// The integer with the digits of a whole real number, exactly; the part behind the point is cut
  /// off. What is no number and what is infinite counts as 0.
  [[nodiscard]] static Integer fromReal(dbl_t x);

  [[nodiscard]] bool isWord() const { return !big_; }
  [[nodiscard]] std::int64_t word() const { return word_; }  ///< the value, if `isWord()`
  [[nodiscard]] ZZ zz() const { return big_ ? *big_ : ZZ(static_cast<long long>(word_)); }

  /// A real number near the value, apart from it by less than 2^-60 of its magnitude.
  [[nodiscard]] dbl_t toReal() const { return big_ ? bigToReal() : static_cast<dbl_t>(word_); }

  [[nodiscard]] int sign() const {
    if (big_) return big_->positive ? 1 : -1;
    return word_ > 0 ? 1 : (word_ < 0 ? -1 : 0);
  }
  [[nodiscard]] bool isZero() const { return !big_ && word_ == 0; }

  Integer& operator+=(const Integer& b) {
    std::int64_t r = 0;
    if (big_ || b.big_ || __builtin_add_overflow(word_, b.word_, &r)) return addBig(b);
    word_ = r;
    return *this;
  }
  Integer& operator-=(const Integer& b) {
    std::int64_t r = 0;
    if (big_ || b.big_ || __builtin_sub_overflow(word_, b.word_, &r)) return subtractBig(b);
    word_ = r;
    return *this;
  }
  Integer& operator*=(const Integer& b) {
    std::int64_t r = 0;
    if (big_ || b.big_ || __builtin_mul_overflow(word_, b.word_, &r)) return multiplyBig(b);
    word_ = r;
    return *this;
  }

  /// *this += a b.
  void addProduct(const Integer& a, const Integer& b) {
    std::int64_t p = 0;
    std::int64_t r = 0;
    if (big_ || a.big_ || b.big_ || __builtin_mul_overflow(a.word_, b.word_, &p) ||
        __builtin_add_overflow(word_, p, &r)) {
      return addBigProduct(a, b);
    }
    word_ = r;
  }
  /// *this -= a b.
  void subtractProduct(const Integer& a, const Integer& b) {
    std::int64_t p = 0;
    std::int64_t r = 0;
    if (big_ || a.big_ || b.big_ || __builtin_mul_overflow(a.word_, b.word_, &p) ||
        __builtin_sub_overflow(word_, p, &r)) {
      return subtractBigProduct(a, b);
    }
    word_ = r;
  }

  friend int compare(const Integer& a, const Integer& b) {
    if (a.big_ || b.big_) return compareBig(a, b);
    return a.word_ < b.word_ ? -1 : (a.word_ > b.word_ ? 1 : 0);
  }
  friend bool operator==(const Integer& a, const Integer& b) { return compare(a, b) == 0; }
  friend std::strong_ordering operator<=>(const Integer& a, const Integer& b) {
    return compare(a, b) <=> 0;
  }

 private:
  static std::unique_ptr<ZZ> copyOf(const Integer& other) {
    return other.big_ ? std::make_unique<ZZ>(*other.big_) : nullptr;
  }
  static int compareBig(const Integer& a, const Integer& b);
  void assign(const ZZ& value);
  Integer& addBig(const Integer& b);
  Integer& subtractBig(const Integer& b);
  Integer& multiplyBig(const Integer& b);
  void addBigProduct(const Integer& a, const Integer& b);
  void subtractBigProduct(const Integer& a, const Integer& b);
  [[nodiscard]] dbl_t bigToReal() const;

  std::int64_t word_ = 0;    ///< the value unless `big_` is there, 0 then
  std::unique_ptr<ZZ> big_;  ///< the value where no word holds it
};

[[nodiscard]] inline Integer operator+(Integer a, const Integer& b) { return a += b; }
[[nodiscard]] inline Integer operator-(Integer a, const Integer& b) { return a -= b; }
[[nodiscard]] inline Integer operator*(Integer a, const Integer& b) { return a *= b; }
[[nodiscard]] inline Integer operator-(const Integer& a) { return Integer() - a; }
[[nodiscard]] inline Integer abs(const Integer& a) { return a.sign() < 0 ? -a : a; }

/// The greatest integer up to a / b, b not 0.
[[nodiscard]] Integer floorQuotient(const Integer& a, const Integer& b);
/// The least integer from a / b on, b not 0.
[[nodiscard]] Integer ceilQuotient(const Integer& a, const Integer& b);
/// An integer nearest to a / b, b not 0; of two the greater.
[[nodiscard]] Integer nearestQuotient(const Integer& a, const Integer& b);
/// a / b for a multiple `a` of `b`, b not 0.
[[nodiscard]] inline Integer exactQuotient(const Integer& a, const Integer& b) {
  return floorQuotient(a, b);
}
/// True if b divides a, b not 0.
[[nodiscard]] bool divides(const Integer& b, const Integer& a);
/// The greatest common divisor of the magnitudes; gcd(a, 0) = |a|.
[[nodiscard]] Integer gcd(const Integer& a, const Integer& b);

std::ostream& operator<<(std::ostream& out, const Integer& a);

}  // namespace vexil
