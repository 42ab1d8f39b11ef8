// Vexil - exact integer optimization on lattices.
#pragma once

#include <cstdint>
#include <memory>
#include <utility>

#include "foundation/failure.h"

namespace vexil {

/// Doubly linked list that owns copies of its elements and refuses equal ones. E needs `==`.
template <typename E>
class Set {
 public:
  /// A link of the list with the element that it owns.
  struct Node {
    E element;
    Node* prev = nullptr;
    Node* next = nullptr;
  };

  Node* head = nullptr;       ///< first node, null when empty
  Node* tail = nullptr;       ///< last node, null when empty
  std::int64_t capacity = 0;  ///< greatest count; 0: unbounded
  std::int64_t count = 0;     ///< number of nodes

  Set() = default;
  Set(const Set& other) { copyNodes(other); }
  Set& operator=(const Set& other) {
    if (this != &other) {
      clear();
      copyNodes(other);
    }
    return *this;
  }
  virtual ~Set() { clear(); }

  /// Appends `element` and returns true; false for a set that is full or holds an equal
  /// one.
  virtual bool insert(E element) {
    if (capacity != 0 && count == capacity) return false;
    for (const Node* p = head; p != nullptr; p = p->next) {
      if (p->element == element) return false;
    }
    append(std::move(element));
    return true;
  }

  /// Links `element` directly before `before`, or behind the last node for null. Fatal:
  /// "Set: before_element is not in the given set!" for a first node that is not `head`.
  Node* insertBefore(E element, Node* before) {
    if (before != nullptr && before->prev == nullptr && before != head) {
      fail("Set: before_element is not in the given set!");
    }
    Node* const previous = before == nullptr ? tail : before->prev;
    Node* const node = allocate(std::move(element), previous, before);
    (previous == nullptr ? head : previous->next) = node;
    (before == nullptr ? tail : before->prev) = node;
    ++count;
    return node;
  }

  /// Links `element` behind the last node.
  Node* append(E element) { return insertBefore(std::move(element), nullptr); }

  /// Frees the first node, if there is one.
  void removeFirst() {
    if (head == nullptr) return;
    Node* const first = head;
    head = first->next;
    (head == nullptr ? tail : head->prev) = nullptr;
    --count;
    release(first);
  }

  /// Frees all nodes; the capacity stays.
  void clear() {
    while (head != nullptr) removeFirst();
  }

  /// Bounds later insertions; nothing is removed now.
  void setCapacity(std::int64_t limit) { capacity = limit; }

 private:
  [[nodiscard]] static Node* allocate(E&& element, Node* previous, Node* following) {
    auto node = std::make_unique<Node>();
    *node = {std::move(element), previous, following};
    return node.release();
  }

  static void release(Node* node) { std::unique_ptr<Node>{node}.reset(); }

  void copyNodes(const Set& other) {
    capacity = other.capacity;
    for (const Node* p = other.head; p != nullptr; p = p->next) append(p->element);
  }
};

/// Set in the order from the worst element at `head` to the best at `tail`; `a < b` on elements
/// means that a is better than b. A full set drops its worst element.
template <typename E>
class SortedSet : public Set<E> {
 public:
  using Node = typename Set<E>::Node;

  /// Links the element behind all worse elements and before the first better one. Returns false for
  /// an element that equals one on the way there, or that would be dropped as the worst of a full
  /// set.
  bool insert(E element) override {
    if (this->head == nullptr) return Set<E>::insert(std::move(element));
    Node* better = this->head;
    for (; better != nullptr; better = better->next) {
      if (better->element == element) return false;
      if (better->element < element) break;
    }
    const Node* const inserted = this->insertBefore(std::move(element), better);
    if (this->capacity == 0 || this->count <= this->capacity) return true;
    const bool insertedIsWorst = this->head == inserted;
    this->removeFirst();
    return !insertedIsWorst;
  }
};

}  // namespace vexil
