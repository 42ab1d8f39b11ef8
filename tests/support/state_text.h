// Vexil - exact integer optimization on lattices.
//
// Fills whatever a lattice holds with distinct values and writes it, so that a test of copies or of
// clearing needs no list of fields.
#pragma once

#include "foundation/members.h"
#include "foundation/set.h"
#include "lattice/lattice.h"
#include "support/parsed.h"

namespace vexil {

/// Gives every number in `field` a value of its own: `n` counts on.
template <typename Field>
void fill(Field& field, long& n) {
  if constexpr (Composite<Field>) {
    forEachMember(field, [&](auto& member) { fill(member, n); });
  } else if constexpr (std::is_same_v<Field, String>) {
    field = joined("text ", ++n);
  } else if constexpr (std::is_same_v<Field, bool>) {
    field = true;
  } else if constexpr (requires { field.columnCount; }) {
    field.setSize(1, 2);
    fill(field.rows[1], n);
  } else if constexpr (requires { field.head; }) {
    std::remove_reference_t<decltype(field.head->element)> element;
    fill(element, n);
    field.setCapacity(++n);
    field.append(element);
  } else if constexpr (requires { field.left; }) {
    fill(field.left, n);
    fill(field.right, n);
  } else if constexpr (requires { field.data; }) {
    field.resize(2, false);
    fill(field[1], n);
    fill(field[2], n);
    if constexpr (requires { field.time; }) field.time = ++n;
  } else {
    field = static_cast<Field>(++n);
  }
}

/// The values in `field`, alike for all arithmetics.
template <typename Field>
String stateText(const Field& field) {
  String text;
  if constexpr (Composite<Field>) {
    forEachMember(field, [&](const auto& member) { text += stateText(member) + "; "; });
  } else if constexpr (requires { field.head; }) {
    text = joined("capacity ", field.capacity);
    for (const auto* p = field.head; p != nullptr; p = p->next) text += " " + stateText(p->element);
  } else if constexpr (requires { field.left; }) {
    text = stateText(field.left) + ":" + stateText(field.right);
  } else if constexpr (requires { field.data; }) {
    text = "[";
    for (std::int64_t i = 1; i <= field.MN; ++i) text += " " + stateText(field[i]);
    text += "]";
    if constexpr (requires { field.time; }) text += joined(" at ", field.time);
  } else if constexpr (std::is_same_v<Field, std::int8_t>) {
    text = joined(static_cast<int>(field));
  } else {
    text = joined(field);
  }
  return text;
}

}  // namespace vexil
