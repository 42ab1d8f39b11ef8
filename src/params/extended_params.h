// Vexil - exact integer optimization on lattices.
#pragma once

#include <type_traits>

#include "numbers/convert.h"
#include "numbers/qq.h"
#include "params/params.h"

namespace vexil {

template <typename T, typename U>
class Lattice;

/// All options of a lattice with numbers of type T, `dbl_t` or `QQ`.
template <typename T>
class ExtendedParams : public Params {
 public:
  Param<T> snorm;
  Param<T> tnorm;

  /// The options of `owner`, which is not kept, with their defaults.
  template <typename U>
  explicit ExtendedParams(Lattice<T, U>& /*owner*/) : ExtendedParams() {}
  ExtendedParams(const ExtendedParams&) = delete;
  ExtendedParams& operator=(const ExtendedParams& other) = default;
  ~ExtendedParams() override = default;

  /// Takes over the options of `source`. Where the number types differ, the norms are converted and
  /// their texts are made anew, in full precision. Throws `PrecisionException` for a norm that
  /// `dbl_t` cannot hold; this object is then assigned in part.
  template <typename S>
  void assign(const ExtendedParams<S>& source) {
    if constexpr (std::is_same_v<S, T>) {
      *this = source;
    } else {
      Params::operator=(source);
      convertParam(source.snorm, snorm);
      convertParam(source.tnorm, tnorm);
    }
  }

 protected:
  ExtendedParams() {
    snorm.init(T(-1), "snorm",
               "Terminate the program, when a solution has been found, whose slack norm <= the "
               "provided value.",
               names, table);
    tnorm.init(-NumberTraits<T>::infinity(), "tnorm",
               "Terminate the program, when a solution has been found, whose target norm <= the "
               "provided value.",
               names, table);
  }

 private:
  template <typename S>
  static void convertParam(const Param<S>& source, Param<T>& target) {
    target.key = source.key;
    target.help = source.help;
    convert(source.initial, target.initial);
    convert(source.current, target.current);
    target.defaultText = textOf(target.initial);
    target.value.set(textOf(target.current));
  }

  [[nodiscard]] static String textOf(const T& number) {
    String text;
    NumberTraits<T>::append(text, number, FILE_DIGITS);
    return text;
  }
};

extern template class Param<dbl_t>;
extern template class Param<QQ>;
extern template class ExtendedParams<dbl_t>;
extern template class ExtendedParams<QQ>;

}  // namespace vexil
