// Vexil - exact integer optimization on lattices.
#pragma once

#include <gtest/gtest.h>

#include <random>
#include <sstream>
#include <string>

#include "numbers/qq.h"
#include "support/parsed.h"

namespace vexil {

/// Expects `function(left)` to be `right` for each word "left=right" of `table`.
template <typename Function>
void expectResults(const std::string& table, Function function) {
  std::istringstream words(table);
  for (std::string word; words >> word;) {
    const auto middle = word.find('=');
    EXPECT_EQ(function(word.substr(0, middle)), word.substr(middle + 1)) << word;
  }
}

/// The result of the operation, which is the same in whatever operand it goes.
template <typename T>
T result(void (*operation)(const T&, const T&, T&), const T& a, const T& b) {
  T separate, left = a, right = b, square, both = b;
  operation(a, b, separate);
  operation(left, b, left);
  operation(a, right, right);
  operation(b, T(b), square);
  operation(both, both, both);
  EXPECT_EQ(left, separate);
  EXPECT_EQ(right, separate);
  EXPECT_EQ(both, square);
  return separate;
}

/// Source of the numbers of the property tests.
inline std::mt19937 randomBits;

/// 0 <= value < limit
inline int below(int limit) { return std::uniform_int_distribution<int>(0, limit - 1)(randomBits); }

/// 1 to `most` digits, the first one not 0. Runs of 0 and of 9 are frequent: they are where carries
/// and estimates of quotients go wrong.
inline std::string randomDigits(int most) {
  const int mode = below(3);
  std::string text;
  for (int i = below(most); i >= 0; --i) {
    const int digit = below(mode == 0 ? 10 : 40);
    text += static_cast<char>(digit < 10 ? '0' + digit : (mode == 1 ? '0' : '9'));
  }
  if (text.front() == '0') text.front() = '1';
  return text;
}

inline ZZ randomInteger(int mostDigits) {
  ZZ number;
  fromString(number, (below(2) == 0 ? "-" : "") + randomDigits(mostDigits));
  return number;
}

/// Whole numbers, fractions and zero.
inline QQ randomRational(int mostDigits) {
  if (below(20) == 0) return 0;
  return {randomInteger(mostDigits), below(3) == 0 ? ZZ(1) : randomInteger(mostDigits)};
}

}  // namespace vexil
