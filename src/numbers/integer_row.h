// Vexil - exact integer optimization on lattices.
#pragma once

#include <optional>
#include <tuple>

#include "foundation/vector.h"
#include "numbers/qq.h"

namespace vexil {

/// The numbers of a vector as machine integers, in which a scalar product is exact and quick.
class IntegerRow {
 public:
  /// Takes a vector; false, and the row stays empty, where a number is not whole or the magnitudes
  /// add up to more than LIMIT.
  bool take(const Vector<QQ>& x);
  bool take(const Vector<dbl_t>& x);

  /// Forgets the vector; the storage stays.
  void clear();

  /// A vector was taken, with or without success.
  [[nodiscard]] bool isTaken() const { return taken_; }
  [[nodiscard]] bool isEmpty() const { return values_.MN == 0; }

  /// The scalar product; nothing for an empty row, for rows of different lengths, and where a sum
  /// of some of the products could be greater than LIMIT.
  [[nodiscard]] std::optional<long> operator*(const IntegerRow& other) const;

  static constexpr long LIMIT = 4'000'000'000'000'000'000;

  template <typename Self>
  static auto members(Self& self) {
    auto& [taken, values, greatest, sum] = self;
    return std::tie(taken, values, greatest, sum);
  }

 private:
  template <typename T>
  bool takeNumbers(const Vector<T>& x);

  bool taken_ = false;
  Array<long> values_;
  long greatest_ = 0;  ///< magnitude of a number
  long sum_ = 0;       ///< of all magnitudes
};

}  // namespace vexil
