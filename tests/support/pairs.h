// Vexil - exact integer optimization on lattices.
#pragma once

#include <gtest/gtest.h>

#include "numbers/qq.h"

namespace vexil {

/// The numbers of a lattice, for typed tests.
template <typename First, typename Second>
struct Numbers {
  using T = First;
  using U = Second;
};
using Pairs =
    testing::Types<Numbers<dbl_t, dbl_t>, Numbers<QQ, dbl_t>, Numbers<dbl_t, QQ>, Numbers<QQ, QQ>>;

/// The numbers of a program or a basis alone.
using NumberTypes = testing::Types<dbl_t, QQ>;

}  // namespace vexil
