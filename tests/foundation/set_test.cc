// Vexil - exact integer optimization on lattices.
#include "foundation/set.h"

#include <gtest/gtest.h>

#include <tuple>
#include <vector>

namespace vexil {
namespace {

/// Equal by vector, ordered by deviation, as what the system keeps in its sets.
struct Item {
  int vector;
  int deviation;
  bool operator==(const Item& other) const { return vector == other.vector; }
  bool operator<(const Item& other) const { return deviation < other.deviation; }
};

/// The vectors from `head` to `tail`, checked against the way back.
std::vector<int> contents(const Set<Item>& set) {
  std::vector<int> forward, backward;
  for (auto* p = set.head; p != nullptr; p = p->next) forward.push_back(p->element.vector);
  for (auto* p = set.tail; p != nullptr; p = p->prev) {
    backward.insert(backward.begin(), p->element.vector);
  }
  EXPECT_EQ(forward, backward);
  EXPECT_EQ(set.count, std::ssize(forward));
  return forward;
}

TEST(SortedSet, RunsFromWorstToBestAndDropsTheWorst) {
  using Results = std::vector<bool>;
  const std::tuple<int, std::vector<Item>, Results, std::vector<int>> cases[] = {
      {0, {{1, 5}, {2, 1}, {3, 3}, {4, 9}}, {true, true, true, true}, {4, 1, 3, 2}},
      {0, {{1, 5}, {2, 5}, {3, 5}}, {true, true, true}, {1, 2, 3}},  // ties in arrival order
      {0, {{1, 5}, {2, 1}, {1, 3}, {2, 1}}, {true, true, false, false}, {1, 2}},
      {1, {{1, 5}, {2, 3}, {3, 4}}, {true, true, false}, {2}},
      {2, {{1, 5}, {2, 3}, {3, 4}, {4, 6}, {5, 1}}, {true, true, true, false, true}, {2, 5}},
  };
  for (const auto& [capacity, inserted, accepted, expected] : cases) {
    SortedSet<Item> set;
    set.setCapacity(capacity);
    Results results;
    for (const Item& item : inserted) results.push_back(set.insert(item));
    EXPECT_EQ(results, accepted);
    EXPECT_EQ(contents(set), expected);
  }
}

TEST(SetDeathTest, DamagedSet) {
  SortedSet<Item> set;
  set.insert({1, 1});
  Set<Item>::Node stray{{2, 2}};
  EXPECT_EXIT(set.insertBefore({3, 3}, &stray), testing::ExitedWithCode(1),
              "\n\\*\\*\\* FAIL: Set: before_element is not in the given set!\n");
}

}  // namespace
}  // namespace vexil
