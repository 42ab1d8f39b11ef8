// Vexil - exact integer optimization on lattices.
#pragma once

#include <type_traits>

#include "foundation/dbl.h"
#include "numbers/qq.h"

namespace vexil {

/// True for the one direction between the two arithmetics in which a number can be lost, so that
/// whole-object copies check the round trip of every number there and nowhere else.
template <typename Source, typename Target>
inline constexpr bool narrows = std::is_same_v<Source, QQ>&& std::is_same_v<Target, dbl_t>;

}  // namespace vexil
