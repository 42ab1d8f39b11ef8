// Vexil - exact integer optimization on lattices.
#pragma once

#include <algorithm>
#include <vector>

#include "foundation/text_streams.h"
#include "foundation/vector.h"

namespace vexil {

namespace detail {

/// Takes "inf" behind a sign, whose "i" is next.
inline void takeInfinityWord(std::istream& in) {
  in.get();
  if (!nextIs(in, 'n')) fail("Vector: bad input2");
  in.get();
  if (!nextIs(in, 'f')) fail("Vector: bad input3");
  in.get();
}

/// The next number of a vector's text.
template <typename T>
void readElement(std::istream& in, T& element) {
  const bool negative = nextIs(in, '-');
  if (negative) in.get();
  if (nextIs(in, 'i')) {
    takeInfinityWord(in);
    element = NumberTraits<T>::infinity();
  } else {
    in >> element;
    if (in.fail()) fail("Vector: bad input");
  }
  if (negative) element = -element;
}

}  // namespace detail

template <typename T>
Vector<T>& Vector<T>::operator+=(const Vector& b) {
  if (this->MN != b.MN) fail("Vector: dimension mismatch1");
  for (std::int64_t i = 1; i <= b.MN; ++i) this->data[i] += b.data[i];
  return *this;
}

template <typename T>
Vector<T>& Vector<T>::operator-=(const Vector& b) {
  if (this->MN != b.MN) fail("Vector: dimension mismatch2");
  for (std::int64_t i = 1; i <= b.MN; ++i) this->data[i] -= b.data[i];
  return *this;
}

template <typename T>
Vector<T>& Vector<T>::operator*=(const Vector& b) {
  if (this->MN != b.MN) fail("Vector: dimension mismatch3");
  for (std::int64_t i = 1; i <= b.MN; ++i) this->data[i] *= b.data[i];
  return *this;
}

template <typename T>
Vector<T>& Vector<T>::operator/=(const Vector& b) {
  if (this->MN != b.MN) fail("Vector: dimension mismatch4");
  for (std::int64_t i = 1; i <= b.MN; ++i) this->data[i] /= b.data[i];
  return *this;
}

template <typename T>
Vector<T>& Vector<T>::operator*=(T factor) {
  for (T& element : this->elements()) element *= factor;
  return *this;
}

template <typename T>
Vector<T> Vector<T>::operator+(const Vector& b) const {
  if (this->MN != b.MN) fail("Vector: dimension mismatch5");
  Vector sum = *this;
  sum += b;
  return sum;
}

template <typename T>
Vector<T> Vector<T>::operator-(const Vector& b) const {
  if (this->MN != b.MN) fail("Vector: dimension mismatch6");
  Vector difference = *this;
  difference -= b;
  return difference;
}

template <typename T>
void Vector<T>::negate() {
  for (T& element : this->elements()) element = -element;
}

template <typename T>
Vector<T> Vector<T>::operator-() const {
  Vector negative = *this;
  negative.negate();
  return negative;
}

template <typename T>
void Vector<T>::subtractMultiple(const T& q, const Vector& b) {
  if (this->MN != b.MN) fail("Vector: dimension mismatch2");
  const T factor = -q;
  for (std::int64_t i = 1; i <= b.MN; ++i) {
    NumberTraits<T>::addProduct(this->data[i], factor, b.data[i]);
  }
}

template <typename T>
T Vector<T>::supNorm() const {
  T greatest{};
  for (const T& element : this->elements()) {
    T magnitude = NumberTraits<T>::abs(element);
    if (greatest < magnitude) greatest = std::move(magnitude);
  }
  return greatest;
}

template <typename T>
void Vector<T>::append(const T& value) {
  T copy = value;  // it may stand in the block that the growth replaces
  this->resize(this->MN + 1, true);
  this->data[this->MN] = std::move(copy);
}

template <typename T>
void Vector<T>::insertComponent(std::int64_t i, const T& value) {
  if (i < 1 || i > this->MN + 1) fail("insertComponent: invalid index");
  append(value);
  std::rotate(this->data + i, this->data + this->MN, this->data + this->MN + 1);
}

template <typename T>
void Vector<T>::removeComponent(std::int64_t i) {
  if (i < 1 || i > this->MN) fail("removeComponent: invalid index");
  this->removeElement(i);
}

template <typename T>
bool Vector<T>::equalsExactly(const Vector& b) const {
  const auto left = this->elements();
  const auto right = b.elements();
  return std::equal(left.begin(), left.end(), right.begin(), right.end());
}

template <typename T>
T Vector<T>::operator*(const Vector& b) const {
  if (this->MN != b.MN) fail("Vector: dimension mismatch8");
  T sum{};
  for (std::int64_t i = 1; i <= b.MN; ++i) {
    NumberTraits<T>::addProduct(sum, this->data[i], b.data[i]);
  }
  return sum;
}

template <typename T>
bool Vector<T>::operator==(const Vector& b) const {
  if (this == &b) return true;
  if (this->MN != b.MN) fail("Vector: dimension mismatch9");
  for (std::int64_t i = 1; i <= b.MN; ++i) {
    if (!NumberTraits<T>::agree(this->data[i], b.data[i])) return false;
  }
  return true;
}

template <typename T>
bool Vector<T>::operator>=(const Vector& b) const {
  if (this->MN != b.MN) fail("Vector: dimension mismatch10");
  for (std::int64_t i = 1; i <= b.MN; ++i) {
    if (!(this->data[i] >= b.data[i])) return false;
  }
  return true;
}

template <typename T>
bool Vector<T>::operator<=(const Vector& b) const {
  if (this->MN != b.MN) fail("Vector: dimension mismatch11");
  for (std::int64_t i = 1; i <= b.MN; ++i) {
    if (!(this->data[i] <= b.data[i])) return false;
  }
  return true;
}

template <typename T>
bool Vector<T>::isZero() const {
  for (const T& element : this->elements()) {
    if (!vexil::isZero<T>(element)) return false;
  }
  return true;
}

template <typename T>
void Vector<T>::dropLeading(std::int64_t count) {
  if (count == 0) return;
  std::move(this->data + count + 1, this->data + this->MN + 1, this->data + 1);
  this->resize(this->MN - count, false);
}

template <typename T>
void Vector<T>::fill(const T& value) {
  for (T& element : this->elements()) element = value;
}

template <typename T>
std::ostream& Vector<T>::write(std::ostream& out) const {
  std::string text;
  appendTo(text, out);
  return out << text;
}

template <typename T>
void Vector<T>::read(std::istream& in) {
  this->resize(0, true);
  if (in.fail()) throw ReadException("Vector: bad stream");
  skipBlanks(in);
  if (!nextIs(in, '[')) return;
  in.get();
  skipBlanks(in);
  // The elements gather in storage that is kept between calls and are exchanged with those of a
  // block of the right size, so that nothing is copied and the storage of their digits is used
  // again.
  static std::vector<T> pending;
  std::size_t count = 0;
  while (!nextIs(in, ']')) {
    if (count == pending.size()) pending.emplace_back();
    detail::readElement(in, pending[count++]);
    skipBlanks(in);
  }
  in.get();
  this->resize(static_cast<std::int64_t>(count), false);
  std::swap_ranges(pending.begin(), pending.begin() + static_cast<std::ptrdiff_t>(count),
                   this->elements().begin());
}

}  // namespace vexil
