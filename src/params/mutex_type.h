// Vexil - exact integer optimization on lattices.
#pragma once

#include <mutex>
#include <utility>

#include "foundation/serializable.h"
#include "params/named_semaphore.h"

namespace vexil {

/// Cell: a value of type `long`, `String` or `std::string` behind a named semaphore of its own,
/// which lives as long as the cell and is held only while the value is copied. Copies of a cell
/// take the value and nothing else. A cell costs a kernel semaphore: tables of cells are sized
/// once.
template <typename T>
class MutexType : public Serializable {
 public:
  mutable NamedSemaphore
      lock;  ///< guards `value`; may be held around `value`, not around an operation
  T value{};

  MutexType() : Serializable(",", false, false) {}
  MutexType(const MutexType& other) : Serializable(",", false, false), value(other.get()) {}
  MutexType& operator=(const MutexType& other) {
    if (this != &other) set(other.get());
    return *this;
  }
  MutexType& operator=(T newValue) {
    set(std::move(newValue));
    return *this;
  }
  ~MutexType() override = default;

  [[nodiscard]] T get() const {
    const std::lock_guard held(lock);
    return value;
  }

  void set(T newValue) {
    const std::lock_guard held(lock);
    value = std::move(newValue);
  }

  /// Both use the stream outside the lock.
  std::ostream& write(std::ostream& out) const override { return out << get(); }
  void read(std::istream& in) override {
    T text = get();
    in >> text;
    set(std::move(text));
  }
};

}  // namespace vexil
