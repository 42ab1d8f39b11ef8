// Vexil - exact integer optimization on lattices.
//
// Walks over the fields of a state struct. Such a struct names its fields once, in a static
// `members(self)` that binds all of them and returns them tied: a field that is forgotten there
// does not compile, and whatever walks it (copies, clearing, tests) then misses none.
#pragma once

#include <concepts>
#include <tuple>
#include <type_traits>
#include <utility>

namespace vexil {

/// A struct with `members`.
template <typename State>
concept Composite = requires(State& state) {
  State::members(state);
};

/// f(field) for each field in order.
template <typename State, typename F>
void forEachMember(State& state, F f) {
  std::apply([&](auto&... field) { (f(field), ...); }, std::remove_const_t<State>::members(state));
}

/// f(field of a, field of b) for each field in order; the two structs hold the same fields, perhaps
/// of other types.
template <Composite A, Composite B, typename F>
void forEachMember(const A& a, B& b, F f) {
  const auto fieldsOfA = A::members(a);
  const auto fieldsOfB = B::members(b);
  constexpr std::size_t COUNT = std::tuple_size_v<decltype(fieldsOfA)>;
  static_assert(COUNT == std::tuple_size_v<decltype(fieldsOfB)>);
  [&]<std::size_t... I>(std::index_sequence<I...>) {
    (f(std::get<I>(fieldsOfA), std::get<I>(fieldsOfB)), ...);
  }
  (std::make_index_sequence<COUNT>());
}

/// Empties every container among the fields by its `clear`; everything else becomes
/// value-initialised.
template <Composite State>
void clearMembers(State& state) {
  forEachMember(state, [](auto& field) {
    if constexpr (requires { field.clear(); }) {
      field.clear();
    } else {
      field = std::remove_reference_t<decltype(field)>();
    }
  });
}

}  // namespace vexil
