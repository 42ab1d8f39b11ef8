// Vexil - exact integer optimization on lattices.
//
// A number's text falls into pieces at its exponents, and a piece into levels at its separators:
// each level is a whole part and, behind the separator, the rest of the piece, a number of its own.
// Both are taken apart first and put together from the end, so that the depth of a text costs no
// stack.
#include <algorithm>
#include <vector>

#include "foundation/failure.h"
#include "foundation/string.h"
#include "foundation/text_streams.h"
#include "numbers/qq_parts.h"

namespace vexil {

namespace {

bool isNumberCharacter(char c) {
  // "+" to ":" are the digits and "+", ",", "-", ".", "/", ":".
  return c >= '+' && c <= ':';
}

/// The white space of the C library in its own locale.
bool isSpace(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

std::string_view withoutSpaces(std::string_view text) {
  while (!text.empty() && isSpace(text.front())) text.remove_prefix(1);
  return text;
}

// ---- plain texts: whole numbers, fractions and mixed numbers of few digits

/// Takes 1 to 18 digits off the front; false if there are none, or more.
bool takeDigits(std::string_view& text, Word& value) {
  std::size_t n = 0;
  value = 0;
  for (; n < text.size() && isDigit(text[n]); ++n)
    value = value * 10 + static_cast<Word>(text[n] - '0');
  text.remove_prefix(n);
  return n >= 1 && n <= WORD_LIMBS * limbs::LIMB_DIGITS;
}

bool takeChar(std::string_view& text, char c) {
  if (text.empty() || text.front() != c) return false;
  text.remove_prefix(1);
  return true;
}

/// Parses what needs no more than words; false, with `x` unchanged, for any other text.
bool parsePlain(std::string_view text, QQ& x) {
  const bool positive = !takeChar(text, '-');
  Word whole = 0;
  Word numerator = 0;
  Word denominator = 1;
  if (!takeDigits(text, whole)) return false;
  if (!text.empty()) {
    const bool mixed = takeChar(text, ':');
    if (mixed) {
      if (text.empty() || text.front() == '0' || !takeDigits(text, numerator)) return false;
    } else {
      std::swap(whole, numerator);
    }
    if (!takeChar(text, '/') || !takeDigits(text, denominator) || !text.empty()) return false;
    if (denominator == 0 || (mixed && numerator >= denominator)) return false;
    if (numerator >= denominator) {
      whole = numerator / denominator;
      numerator %= denominator;
    }
    const Word divisor = gcdWord(numerator, denominator);
    numerator /= divisor;
    denominator /= divisor;
  }
  assignParts(x, positive, whole, numerator, denominator);
  return true;
}

// ---- all other texts

/// What stands before a separator.
struct Level {
  bool positive;
  char separator;
  std::string_view whole;
  Index zeros;  ///< directly behind a decimal separator
};

/// Takes the one sign of a number off its text.
bool takeSign(std::string_view& text) {
  if (takeChar(text, '+')) return true;
  return !takeChar(text, '-');
}

void setInfinity(QQ& x, bool positive) {
  x = QQ::INF();
  x.positive = positive;
}

void parseWhole(std::string_view text, bool positive, QQ& x) {
  if (text.front() == 'i') {
    if (text.size() < 2 || text[1] != 'n') fail("QQ: parse error2");
    if (text.size() < 3 || text[2] != 'f') fail("QQ: parse error3");
    return setInfinity(x, positive);
  }
  x.isInf = false;
  fromString(x.ganze, text);
  x.positive = positive == x.ganze.positive || isZero(x.ganze);
  x.ganze.positive = true;
  assignPart(x.zaehler, 0);
  assignWord(x.nenner, 1);
}

void parseFraction(std::string_view numerator, std::string_view denominator, bool positive, QQ& x) {
  fromString(x.nenner, denominator);
  if (isZero(x.nenner)) fail("QQ: division by zero1");
  x.isInf = false;
  x.positive = positive == x.nenner.positive;
  x.nenner.positive = true;
  assignPart(x.ganze, 0);
  fromString(x.zaehler, numerator);
  normalize(x);
}

/// Cancels the powers of one prime, at most the `exponent`-th, from both; `step` of them are told
/// from the two lowest limbs, and their product is a limb.
void cancelPrime(ZZ& a, ZZ& b, Index exponent, Word prime, int step) {
  while (exponent > 0) {
    Word low = toWord(a);
    Limb divisor = 1;
    for (int i = 0; i < step && exponent > 0 && low % prime == 0; ++i, --exponent) {
      low /= prime;
      divisor *= limbs::limb(prime);
    }
    if (divisor == 1) return;
    for (ZZ* const x : {&a, &b}) {
      limbs::divideSmall(x->data + 1, x->data + 1, x->MN, limbs::word(divisor));
      x->MN = limbs::trimmed(x->data + 1, x->MN);
    }
  }
}

/// Sets the fraction to digits / 10^places, for `digits` that 10 does not divide, or 0.
void assignDecimals(QQ& x, ZZ& digits, Index places) {
  std::swap(x.zaehler, digits);
  if (isZero(x.zaehler)) {
    assignWord(x.nenner, 1);
    return;
  }
  powerOfTen(places, x.nenner);
  cancelPrime(x.zaehler, x.nenner, places, 2, 18);
  cancelPrime(x.zaehler, x.nenner, places, 5, 12);
}

/// Puts a level around the number behind its separator, which `x` holds.
void wrap(const Level& level, QQ& x) {
  if (level.separator == ':') {
    if (!x.positive) fail("QQ: malformed number1");
    if (!isZero(x.ganze)) fail("QQ: malformed number2");
  } else {
    ZZ digits = std::move(x.ganze);
    stripTrailingZeros(digits);
    const Index places = level.zeros + digitCount(digits);
    assignDecimals(x, digits, places);
  }
  x.isInf = false;
  x.positive = level.positive;
  fromString(x.ganze, level.whole);
  if (!x.ganze.positive || isZero(x.zaehler)) normalize(x);
}

/// A number without an exponent.
void parsePiece(std::string_view text, QQ& x) {
  std::vector<Level> levels;
  for (;;) {
    text = withoutSpaces(text);
    const bool positive = takeSign(text);
    if (text.empty()) fail("QQ: parse error1");
    const std::size_t end = text.find_first_of(",./:");
    if (end == std::string_view::npos) {
      parseWhole(text, positive, x);
      break;
    }
    const char separator = text[end];
    Level level{positive, separator, text.substr(0, end), 0};
    text.remove_prefix(end + 1);
    if (separator == '/') {
      parseFraction(level.whole, text, positive, x);
      break;
    }
    if (separator == ':') {
      if (!text.empty() && text.front() == '0') fail("QQ: malformed number1");
    } else {
      const std::size_t zeros = std::min(text.find_first_not_of('0'), text.size());
      level.zeros = static_cast<Index>(zeros);
      text.remove_prefix(zeros);
    }
    levels.push_back(level);
  }
  for (; !levels.empty(); levels.pop_back()) wrap(levels.back(), x);
}

}  // namespace

void parse(std::string_view text, QQ& x) {
  if (parsePlain(text, x)) return;
  text = text.substr(0, text.find('\0'));
  std::vector<QQ> pieces;
  for (std::size_t end = text.find_first_of("eE"); end != std::string_view::npos;
       end = text.find_first_of("eE")) {
    parsePiece(text.substr(0, end), pieces.emplace_back());
    text.remove_prefix(end + 1);
  }
  parsePiece(text, x);
  static const QQ ten = 10;
  for (; !pieces.empty(); pieces.pop_back()) mul(pieces.back(), pow(ten, x), x);
}

QQ::QQ(std::string_view text) { parse(text, *this); }

void append(std::string& text, const QQ& x) {
  if (!x.positive) text += '-';
  if (x.isInf) {
    text += "inf";
    return;
  }
  const bool fraction = !isZero(x.zaehler);
  if (!isZero(x.ganze) || !fraction) appendTo(text, x.ganze);
  if (!fraction) return;
  if (!isZero(x.ganze)) text += ':';
  appendTo(text, x.zaehler);
  if (x.nenner.MN == 1 && x.nenner.data[1] == 1) return;
  text += '/';
  appendTo(text, x.nenner);
}

std::string toString(const QQ& x) {
  std::string text;
  append(text, x);
  return text;
}

std::ostream& operator<<(std::ostream& out, const QQ& x) {
  static std::string text;
  text.clear();
  append(text, x);
  return out << text;
}

std::istream& operator>>(std::istream& in, QQ& x) {
  static std::string text;
  text.clear();
  if (in.good()) skipBlanks(in);
  if (in.good()) {
    constexpr int end = std::istream::traits_type::eof();
    int next = lookAhead(in);
    const auto take = [&] {
      text += std::istream::traits_type::to_char_type(next);
      in.rdbuf()->sbumpc();
      next = lookAhead(in);
    };
    while (next != end && isNumberCharacter(std::istream::traits_type::to_char_type(next))) take();
    for (const char c : {'i', 'n', 'f'}) {
      if (next != c) break;
      take();
    }
  }
  parse(text, x);
  return in;
}

}  // namespace vexil
