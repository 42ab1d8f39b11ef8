// Vexil - exact integer optimization on lattices.
#pragma once

#include <sstream>

#include "foundation/exceptions.h"
#include "foundation/number_traits.h"
#include "foundation/serializable_array.h"

namespace vexil {

/// Mathematical vector with the elements x[1] to x[MN]; T is `dbl_t`, `QQ` or `long`. The text form
/// is "[ 1 2 3 ]", its numbers in the format of the stream.
///
/// Operations on two vectors want equal dimensions and check that before anything is changed; each
/// failure is fatal with the text named beside it.
template <typename T>
class Vector : public SerializableArray<T> {
 public:
  Vector() : SerializableArray<T>(" ", true, true) {}

  Vector& operator+=(const Vector& b);  ///< "Vector: dimension mismatch1"
  Vector& operator-=(const Vector& b);  ///< "Vector: dimension mismatch2"
  Vector& operator*=(const Vector& b);  ///< by element; "Vector: dimension mismatch3"
  Vector& operator/=(const Vector& b);  ///< by element; "Vector: dimension mismatch4"
  Vector& operator*=(T factor);         ///< every element

  [[nodiscard]] Vector operator+(const Vector& b) const;  ///< "Vector: dimension mismatch5"
  [[nodiscard]] Vector operator-(const Vector& b) const;  ///< "Vector: dimension mismatch6"

  [[nodiscard]] Vector operator-() const;
  void negate();  ///< every element

  /// *this -= q b, the row operation of reductions. "Vector: dimension mismatch2"
  void subtractMultiple(const T& q, const Vector& b);

  /// The greatest magnitude of an element; 0 where there is none.
  [[nodiscard]] T supNorm() const;

  /// Takes `value` as a new last element.
  void append(const T& value);

  /// Puts `value` in front of element `i`, or behind the last one for `i` = MN + 1. Fatal:
  /// "insertComponent: invalid index".
  void insertComponent(std::int64_t i, const T& value);

  /// Drops element `i`. Fatal: "removeComponent: invalid index".
  void removeComponent(std::int64_t i);

  /// Equal dimensions and equal elements, without a tolerance.
  [[nodiscard]] bool equalsExactly(const Vector& b) const;

  /// Scalar product: the terms added to 0 in index order. "Vector: dimension mismatch8"
  [[nodiscard]] T operator*(const Vector& b) const;

  /// Equality within the tolerance 10^-9 of each component, in both arithmetics; an object equals
  /// itself whatever it holds. "Vector: dimension mismatch9"
  [[nodiscard]] bool operator==(const Vector& b) const;
  /// All components, compared exactly. "Vector: dimension mismatch10"
  [[nodiscard]] bool operator>=(const Vector& b) const;
  /// All components, compared exactly. "Vector: dimension mismatch11"
  [[nodiscard]] bool operator<=(const Vector& b) const;

  /// All elements pass the tolerant zero test.
  [[nodiscard]] bool isZero() const;

  /// Removes the first `count` elements, 0 <= `count` <= MN.
  void dropLeading(std::int64_t count);

  /// Sets every element to `value`.
  void fill(const T& value);

  std::ostream& write(std::ostream& out) const override;

  /// Appends the text form to `text`, the numbers in the format of a stream or with a count of
  /// significant digits.
  template <typename Format>
  void appendTo(std::string& text, const Format& format) const {
    text += "[ ";
    for (const T& element : this->elements()) {
      NumberTraits<T>::append(text, element, format);
      text += ' ';
    }
    text += ']';
  }

  /// Reads the text form; white space and comments may stand around the numbers, "inf" and "-inf"
  /// are the infinities. A text that does not start with "[" leaves the vector empty and is not
  /// consumed. Throws `ReadException` "Vector: bad stream" on a stream that has already failed.
  /// Fatal: "Vector: bad input" for what is no number, "Vector: bad input2", "Vector: bad input3"
  /// for a misspelt "inf", and what the reader of T reports.
  void read(std::istream& in) override;
};

/// The tolerant zero test of all elements.
template <typename T>
[[nodiscard]] bool isZero(const Vector<T>& x) {
  return x.isZero();
}

/// No element is an infinity.
template <typename T>
[[nodiscard]] bool isFinite(const Vector<T>& x) {
  for (const T& element : x.elements()) {
    if (!isFinite<T>(element)) return false;
  }
  return true;
}

extern template class Array<dbl_t>;
extern template class Array<long>;
extern template class ConversionArray<dbl_t>;
extern template class ConversionArray<long>;
extern template class SerializableArray<dbl_t>;
extern template class SerializableArray<long>;
extern template class Vector<dbl_t>;
extern template class Vector<long>;

}  // namespace vexil
