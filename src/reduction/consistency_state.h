// Vexil - exact integer optimization on lattices.
#pragma once

namespace vexil {

template <typename T, typename U>
class Lattice;

/// What the comparison of a basis with its transformations remembers.
template <typename T, typename U>
struct ConsistencyState {
  Lattice<T, U>* lattice = nullptr;    ///< the lattice that this is the state of
  bool transformationPresent = false;  ///< the last matrix of `TT` holds the row operations so far
  bool consistencyForced = false;      ///< the option was switched on for one recovery

  explicit ConsistencyState(Lattice<T, U>& owner) : lattice(&owner) {}

  /// Takes over the state of another lattice; the owner stays.
  template <typename S, typename V>
  void assign(const ConsistencyState<S, V>& source) {
    transformationPresent = source.transformationPresent;
    consistencyForced = source.consistencyForced;
  }
};

}  // namespace vexil
