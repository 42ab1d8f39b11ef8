// Vexil - exact integer optimization on lattices.
#pragma once

#include <string>

#include "foundation/array.h"
#include "foundation/pair.h"

namespace vexil {

/// Key-value table in insertion order, searched from the front.
template <typename K, typename V>
class Map : public ConversionArray<Pair<K, V>> {
 public:
  /// The value of `key`, or null.
  [[nodiscard]] V* find(const K& key) {
    for (auto& entry : this->elements()) {
      if (entry.left == key) return &entry.right;
    }
    return nullptr;
  }

  /// The value of `key`; a key that is not there gets a new entry behind the others.
  [[nodiscard]] V& operator[](const K& key) {
    if (V* const value = find(key)) return *value;
    this->resize(this->MN + 1, false);
    auto& entry = this->data[this->MN];
    entry.left = key;
    return entry.right;
  }
};

/// Table with text keys.
template <typename V>
class Hash : public Map<std::string, V> {};

}  // namespace vexil
