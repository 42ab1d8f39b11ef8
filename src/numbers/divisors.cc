// Vexil - exact integer optimization on lattices.
#include "numbers/divisors.h"

#include <algorithm>
#include <numeric>
#include <vector>

#include "numbers/zz_words.h"

namespace vexil {

namespace {

/// Greatest number that is factored.
const ZZ& factoredLimit() {
  static const ZZ LIMIT = 1'000'000'000'000'000'000LL;
  return LIMIT;
}

/// Candidates that are tried for a number beyond that.
constexpr int SEARCH_LIMIT = 100'000;

Word multiply(Word a, Word b, Word n) {
  return static_cast<Word>(static_cast<DoubleWord>(a) * b % n);
}

Word power(Word a, Word e, Word n) {
  Word result = 1;
  for (; e > 0; e /= 2, a = multiply(a, a, n)) {
    if (e % 2 != 0) result = multiply(result, a, n);
  }
  return result;
}

/// The test of Miller and Rabin for an odd n > 40; these bases leave no doubt below 2^64.
bool isPrime(Word n) {
  Word odd = n - 1;
  int twos = 0;
  for (; odd % 2 == 0; odd /= 2) ++twos;
  for (const Word base : {2U, 3U, 5U, 7U, 11U, 13U, 17U, 19U, 23U, 29U, 31U, 37U}) {
    Word x = power(base, odd, n);
    bool passed = x == 1 || x == n - 1;
    for (int i = 1; i < twos && !passed; ++i) {
      x = multiply(x, x, n);
      passed = x == n - 1;
    }
    if (!passed) return false;
  }
  return true;
}

/// A proper divisor of a composite odd n by the rho method of Pollard: x -> x^2 + c runs into a
/// cycle modulo a prime factor long before it does modulo n.
Word properDivisor(Word n) {
  for (Word c = 1;; ++c) {
    const auto step = [&](Word x) { return (multiply(x, x, n) + c) % n; };
    Word slow = 2;
    Word fast = 2;
    Word divisor = 1;
    while (divisor == 1) {
      constexpr int BATCH = 128;  // one gcd for so many differences
      const Word slowBefore = slow;
      const Word fastBefore = fast;
      Word product = 1;
      for (int i = 0; i < BATCH; ++i) {
        slow = step(slow);
        fast = step(step(fast));
        product = multiply(product, slow > fast ? slow - fast : fast - slow, n);
      }
      divisor = std::gcd(product, n);
      if (divisor != n) continue;
      slow = slowBefore;
      fast = fastBefore;
      for (divisor = 1; divisor == 1;) {
        slow = step(slow);
        fast = step(step(fast));
        divisor = std::gcd(slow > fast ? slow - fast : fast - slow, n);
      }
    }
    if (divisor != n) return divisor;
  }
}

/// Appends the prime factors of n, which has none up to 40.
void appendFactors(Word n, std::vector<Word>& factors) {
  if (n == 1) return;
  if (isPrime(n)) {
    factors.push_back(n);
    return;
  }
  const Word divisor = properDivisor(n);
  appendFactors(divisor, factors);
  appendFactors(n / divisor, factors);
}

std::vector<Word> primeFactors(Word n) {
  std::vector<Word> factors;
  for (Word p = 2; p <= 40; ++p) {
    for (; n % p == 0; n /= p) factors.push_back(p);
  }
  appendFactors(n, factors);
  std::sort(factors.begin(), factors.end());
  return factors;
}

Word nextDivisor(Word n, Word bound) {
  std::vector<Word> divisors = {1};
  std::size_t fresh = 0;  // the divisors with the full power of the factor before
  Word last = 0;
  for (const Word p : primeFactors(n)) {
    const std::size_t count = divisors.size();
    if (p != last) fresh = 0;
    for (std::size_t i = fresh; i < count; ++i) divisors.push_back(divisors[i] * p);
    fresh = count;
    last = p;
  }
  Word next = n;
  for (const Word divisor : divisors) {
    if (divisor > bound) next = std::min(next, divisor);
  }
  return next;
}

/// n / b if b divides n, else 0.
ZZ exactQuotient(const ZZ& n, const ZZ& b) {
  ZZ quotient, remainder;
  div(n, b, quotient, remainder);
  return isZero(remainder) ? quotient : ZZ(0);
}

}  // namespace

ZZ nextDivisor(const ZZ& n, const ZZ& bound) {
  if (n <= factoredLimit()) {
    const auto word = [](const ZZ& a) {
      return toWord(a) + (a.MN > WORD_LIMBS ? limbs::WORD_BASE * limbs::WORD_BASE : 0);
    };
    return static_cast<long long>(nextDivisor(word(n), word(bound)));
  }
  ZZ divisor = bound;
  ZZ cofactor, remainder;
  div(n, bound, cofactor, remainder);
  if (isZero(remainder)) cofactor = cofactor - 1;
  for (int i = 0; i < SEARCH_LIMIT && cofactor > 1; ++i, cofactor = cofactor - 1) {
    divisor = divisor + 1;
    if (!isZero(exactQuotient(n, divisor))) return divisor;
    ZZ quotient = exactQuotient(n, cofactor);
    if (!isZero(quotient)) return quotient;
  }
  return n;
}

}  // namespace vexil
