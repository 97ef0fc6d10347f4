#include "util/utility/Subrange.h"

#include <gtest/gtest.h>

#include <memory>
#include <type_traits>
#include <vector>

TEST(Subrange, PresentsOwningPointersAsReferences) {
  std::vector<std::unique_ptr<int>> v;
  for (int i = 0; i < 4; ++i) v.push_back(std::make_unique<int>(i * 10));
  auto const& cv = v;
  auto range = Orvo::makeDereferencedRange<int const>(cv);
  static_assert(std::is_same<decltype(*range.begin()), int const&>::value, "const elements");
  int sum = 0;
  for (int const& x : range) sum += x;
  EXPECT_EQ(sum, 60);
  EXPECT_EQ(range.size(), 4u);
  EXPECT_EQ(range[2], 20);
  EXPECT_FALSE(range.empty());
}

TEST(Subrange, MutableRangeWritesThrough) {
  std::vector<std::unique_ptr<int>> v;
  v.push_back(std::make_unique<int>(1));
  for (int& x : Orvo::makeDereferencedRange<int>(v)) x = 7;
  EXPECT_EQ(*v[0], 7);
}

TEST(Subrange, EmptyRange) {
  std::vector<std::unique_ptr<int>> v;
  auto range = Orvo::makeDereferencedRange<int>(v);
  EXPECT_TRUE(range.empty());
  EXPECT_EQ(range.begin(), range.end());
}
