// Vexil - exact integer optimization on lattices.
#include "solver/coset.h"

namespace vexil::solver {
namespace {

template <typename Z>
Z greatestDivisor(Z a, Z b) {
  if constexpr (std::is_same_v<Z, ZZ>) {
    return gcd(a, b);
  } else {
    a = a < 0 ? -a : a;
    b = b < 0 ? -b : b;
    while (b != 0) {
      const Z rest = a % b;
      a = b;
      b = rest;
    }
    return a;
  }
}

}  // namespace

/// With |t| = t - 2 min(t, 0) the objective is its linear part plus all t, less even multiples of
/// them: what divides these on the whole lattice is a step of the objective.
template <typename Z>
Coset<Z> objectiveCoset(const FormSystem<Z>& forms) {
  Z divisor = 0;
  Z constant = forms.objectiveOffset;
  std::vector<Z> linear = forms.objective;
  for (std::size_t f = 0; f < forms.count; ++f) {
    if (forms.kind[f] != FormKind::Goal) continue;
    constant = constant + forms.offset[f];
    divisor = greatestDivisor<Z>(divisor, forms.offset[f] + forms.offset[f]);
    for (std::size_t k = 0; k < forms.dimension; ++k) {
      const Z& y = forms.entry(k, f);
      linear[k] = linear[k] + y;
      divisor = greatestDivisor<Z>(divisor, y + y);
    }
  }
  for (const Z& c : linear) divisor = greatestDivisor<Z>(divisor, c);
  return {divisor, constant};
}

template Coset<std::int64_t> objectiveCoset(const FormSystem<std::int64_t>&);
template Coset<ZZ> objectiveCoset(const FormSystem<ZZ>&);

}  // namespace vexil::solver
