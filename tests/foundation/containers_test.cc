// Vexil - exact integer optimization on lattices.
#include <gtest/gtest.h>

#include <sstream>

#include "foundation/array.h"
#include "foundation/serializable_array.h"
#include "foundation/set.h"

namespace vexil {
namespace {

using testing::ExitedWithCode;

TEST(Array, ShrinkingDestroysNothing) {
  Array<int> a;
  a.resize(5, false);
  for (int i = 1; i <= 5; ++i) a[i] = 10 * i;
  a.resize(2, false);
  EXPECT_EQ(a.MN, 2);
  a.resize(5, false);
  EXPECT_EQ(a[3] + a[4] + a[5], 120);
  a.clear();
  EXPECT_FALSE(a.notEmpty());
  EXPECT_EQ(a.capacity, 6);
}

TEST(Array, GrowsByOneOrByAHundredAndMoves) {
  Array<std::string> a;
  a.resize(0, true);
  EXPECT_EQ(a.data, nullptr);
  a.resize(1, true);
  EXPECT_EQ(a.capacity, 101);
  a[1] = std::string(100, 'x');
  const auto* const text = a[1].data();
  a.resize(101, true);
  EXPECT_EQ(a.capacity, 101);
  a.resize(102, false);
  EXPECT_EQ(a.capacity, 103);
  EXPECT_EQ(a[1].data(), text);
}

TEST(Array, RefusesBadIndices) {
  Array<int> a;
  EXPECT_EXIT(a.resize(-1, false), ExitedWithCode(1), "array: dimension < 0");
  EXPECT_EXIT(a[1] = 0, ExitedWithCode(1), "Array: index out of range");
  a.resize(2, false);
  EXPECT_EXIT(a[3] = 0, ExitedWithCode(1), "Array: index out of range");
  EXPECT_EXIT(a[-1] = 0, ExitedWithCode(1), "Array: index out of range");
  EXPECT_EXIT(a.swap(1, 3), ExitedWithCode(1), "Array: swap index out of range");
}

TEST(SerializableArray, WritesAndReadsBack) {
  // Delimiters, elements parted by bars, the text and what is read from it.
  for (const auto& [delimiters, elements, text, readBack] : std::vector<std::array<String, 4>>{
           {",", "", "[ ]", ""},
           {",\n", "", "[\n]", ""},
           {",", "a|b|", "[ a,b ]", "a|b|"},
           {",\n ", "a|b|", "[\na,b\n]", "a|b|"},
           {", ", "a b|", "[ a\\ b ]", "a b|"},
           {", ", "a,b|", "[ a,b ]", "a|b|"},
           {", ", "back\\slash|", "[ back\\slash ]", "back\\slash|"}}) {
    SerializableArray<String> a(delimiters);
    static_cast<Array<String>&>(a) = elements.split('|');
    std::stringstream stream;
    stream << a;
    EXPECT_EQ(stream.str(), text);
    stream >> a;
    String back;
    for (const String& element : a.elements()) back += element + "|";
    EXPECT_EQ(back, readBack);
  }
}

TEST(SerializableArray, ReadsNumbersAndStopsAtTheEndOfTheText) {
  SerializableArray<long> a(",");
  std::istringstream("[]") >> a;
  EXPECT_EQ(a.MN, 0);
  std::istringstream cut(" [1,2,3");
  cut >> a;
  EXPECT_EQ(a.MN, 3);
  EXPECT_TRUE(cut.fail());
  EXPECT_EXIT(std::istringstream("x") >> a, ExitedWithCode(1), "SerializableArray: no start found");
}

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
  for (auto* p = set.tail; p != nullptr; p = p->prev)
    backward.insert(backward.begin(), p->element.vector);
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
  EXPECT_EXIT(set.insertBefore({3, 3}, &stray), ExitedWithCode(1),
              "\n\\*\\*\\* FAIL: Set: before_element is not in the given set!\n");
}

}  // namespace
}  // namespace vexil
