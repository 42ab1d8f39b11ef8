// Vexil - exact integer optimization on lattices.
#pragma once

#include <cstdint>
#include <span>
#include <utility>

#include "foundation/failure.h"

namespace vexil {

/// Exchanges two elements of an array through a temporary that lives for the whole process, so that
/// sorting allocates nothing.
template <typename T>
void exchange(T& a, T& b) {
  static T temporary;
  temporary = std::move(a);
  a = std::move(b);
  b = std::move(temporary);
}

/// Growable block of elements at the indices 1 to `MN`. Slot 0 exists and is a legal index, but no
/// element lives there. The block never shrinks and shrinking destroys nothing: a later growth
/// within `capacity` shows the old elements again. An array owns its elements.
///
/// Indexing is checked; inner loops read `data` directly.
template <typename T>
class Array {
 public:
  std::int64_t MN = 0;        ///< number of elements
  T* data = nullptr;          ///< the block of `capacity` + 1 slots; null until the first growth
  std::int64_t capacity = 0;  ///< highest index that the block can hold

  Array() = default;
  Array(const Array& other) { copyElements(other); }
  Array(Array&& other) noexcept { swapBlocks(other); }
  Array& operator=(const Array& other) {
    if (this != &other) copyElements(other);
    return *this;
  }
  Array& operator=(Array&& other) noexcept {
    if (this != &other) swapBlocks(other);
    return *this;
  }

  /// Empties the array; its storage stays.
  virtual void clear() { Array::resize(0, false); }

  virtual ~Array() {
    MN = 0;
    delete[] data;
    data = nullptr;
    capacity = 0;
  }

  /// Sets the number of elements. A growth beyond `capacity` moves the elements into a block for
  /// `n` + 1 of them, or for `n` + 100 with `reserveMore`, which appending code asks for. New slots
  /// are value-initialised. Fatal: "array: dimension < 0".
  virtual void resize(std::int64_t n, bool reserveMore) {
    if (n < 0) fail("array: dimension < 0");
    if (MN < n && capacity < n) grow(n + (reserveMore ? 100 : 1));
    MN = n;
  }

  /// True if there is an element.
  [[nodiscard]] virtual bool notEmpty() const { return MN > 0; }

  /// Slot `i`, 0 <= i <= `MN`. Fatal: "Array: index out of range".
  [[nodiscard]] T& operator[](std::int64_t i) {
    checkIndex(i);
    return data[i];
  }
  [[nodiscard]] const T& operator[](std::int64_t i) const {
    checkIndex(i);
    return data[i];
  }

  /// Exchanges two slots, 0 <= i, j <= `MN`. Fatal: "Array: swap index out of range".
  void swap(std::int64_t i, std::int64_t j) {
    if (i < 0 || i > MN || j < 0 || j > MN) fail("Array: swap index out of range");
    if (i != j) exchange(data[i], data[j]);
  }

  /// The elements 1 to `MN` as a range.
  [[nodiscard]] std::span<T> elements() {
    return {MN > 0 ? data + 1 : data, static_cast<std::size_t>(MN)};
  }
  [[nodiscard]] std::span<const T> elements() const {
    return {MN > 0 ? data + 1 : data, static_cast<std::size_t>(MN)};
  }

  /// Appends an element.
  void append(const T& element) {
    resize(MN + 1, true);
    data[MN] = element;
  }

  /// Removes element `i`, 1 <= i <= `MN`, by moving the later ones down.
  void removeElement(std::int64_t i) {
    for (; i < MN; ++i) data[i] = std::move(data[i + 1]);
    --MN;
  }

 private:
  void checkIndex(std::int64_t i) const {
    if (i < 0 || i > MN || data == nullptr) fail("Array: index out of range");
  }

  void grow(std::int64_t newCapacity) {
    T* const grown = new T[static_cast<std::size_t>(newCapacity) + 1]();
    if (data != nullptr) std::move(data, data + MN + 1, grown);
    delete[] data;
    data = grown;
    capacity = newCapacity;
  }

  void copyElements(const Array& other) {
    Array::resize(other.MN, false);
    for (std::int64_t i = 1; i <= MN; ++i) data[i] = other.data[i];
  }

  void swapBlocks(Array& other) noexcept {
    std::swap(MN, other.MN);
    std::swap(data, other.data);
    std::swap(capacity, other.capacity);
  }
};

/// Array with the two settings of the number conversion (numbers/convert.h) that its elements go
/// through when they are produced from another number type. The settings belong to the object:
/// neither copies nor assignments take them along.
template <typename T>
class ConversionArray : public Array<T> {
 public:
  bool throwOnLoss = false;
  bool tolerateFraction = false;

  ConversionArray() = default;
  ConversionArray(const ConversionArray& other) : Array<T>(other) {}
  ConversionArray(ConversionArray&& other) noexcept : Array<T>(std::move(other)) {}
  ConversionArray& operator=(const ConversionArray& other) {
    Array<T>::operator=(other);
    return *this;
  }
  ConversionArray& operator=(ConversionArray&& other) noexcept {
    Array<T>::operator=(std::move(other));
    return *this;
  }
  ~ConversionArray() override = default;
};

}  // namespace vexil
