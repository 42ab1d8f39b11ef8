// Vexil - exact integer optimization on lattices.
#include "foundation/array.h"

#include <gtest/gtest.h>

#include <sstream>

#include "foundation/serializable_array.h"

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
  a[0] = 7;
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

struct ArrayText {
  const char* delimiters;
  std::vector<std::string> elements;
  std::string text;
  std::vector<std::string> readBack;
};

TEST(SerializableArray, WritesAndReadsBack) {
  const std::vector<ArrayText> cases = {
      {",", {}, "[ ]", {}},
      {",\n", {}, "[\n]", {}},
      {",", {"a", "b"}, "[ a,b ]", {"a", "b"}},
      {",\n ", {"a", "b"}, "[\na,b\n]", {"a", "b"}},
      {", ", {"a b"}, "[ a\\ b ]", {"a b"}},
      {", ", {"a,b"}, "[ a,b ]", {"a", "b"}},
      {", ", {"back\\slash"}, "[ back\\slash ]", {"back\\slash"}},
  };
  for (const ArrayText& c : cases) {
    SerializableArray<String> a(c.delimiters);
    a.resize(static_cast<std::int64_t>(c.elements.size()), false);
    for (std::size_t i = 0; i < c.elements.size(); ++i) {
      a[static_cast<std::int64_t>(i) + 1] = c.elements[i];
    }
    std::stringstream stream;
    stream << a;
    EXPECT_EQ(stream.str(), c.text);
    stream >> a;
    EXPECT_EQ(std::vector<std::string>(a.elements().begin(), a.elements().end()), c.readBack);
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

}  // namespace
}  // namespace vexil
