// Vexil - exact integer optimization on lattices.
#pragma once

#include <gtest/gtest.h>

#include <random>
#include <sstream>
#include <string>

#include "numbers/qq.h"

namespace vexil {

/// Calls `check(left, right)` for each word "left=right" of `table`.
template <typename Check>
void forEachCase(const std::string& table, Check check) {
  std::istringstream words(table);
  for (std::string word; words >> word;) {
    const auto middle = word.find('=');
    check(word.substr(0, middle), word.substr(middle + 1));
  }
}

/// Numbers for the property tests; a failing test names the seed.
class RandomNumbers {
 public:
  explicit RandomNumbers(unsigned seed)
      : random_(seed), trace_(__FILE__, __LINE__, "seed " + std::to_string(seed)) {}

  /// 0 <= value < limit
  int below(int limit) { return std::uniform_int_distribution<int>(0, limit - 1)(random_); }

  /// 1 to `most` digits, the first one not 0. Runs of 0 and of 9 are frequent: they are where
  /// carries and estimates of quotients go wrong.
  std::string digits(int most) {
    const int mode = below(3);
    std::string text;
    for (int i = below(most); i >= 0; --i) {
      const int digit = below(mode == 0 ? 10 : 40);
      text += static_cast<char>(digit < 10 ? '0' + digit : (mode == 1 ? '0' : '9'));
    }
    if (text.front() == '0') text.front() = '1';
    return text;
  }

  ZZ integer(int mostDigits) {
    ZZ result;
    fromString(result, (below(2) == 0 ? "-" : "") + digits(mostDigits));
    return result;
  }

  /// Whole numbers, fractions and zero.
  QQ rational(int mostDigits) {
    if (below(20) == 0) return 0;
    return {integer(mostDigits), below(3) == 0 ? ZZ(1) : integer(mostDigits)};
  }

 private:
  std::mt19937 random_;
  testing::ScopedTrace trace_;
};

}  // namespace vexil
