#include "util/utility/VariableSet.h"

#include <gtest/gtest.h>

TEST(VariableSet, NamedValueSetReadAndReplaced) {
  Orvo::VariableSet set;
  EXPECT_FALSE(set.has(L"feed"));
  EXPECT_TRUE(set.get(L"feed").isEmpty());
  set.set(L"feed", 1200).set(L"name", L"fast");
  EXPECT_TRUE(set.has(L"feed"));
  EXPECT_EQ(set.get(L"feed"), Orvo::Variant(1200));
  EXPECT_EQ(set.get(L"name"), Orvo::Variant(L"fast"));
  set.set(L"feed", 2.5);
  EXPECT_EQ(set.get(L"feed"), Orvo::Variant(2.5));
  EXPECT_EQ(set.named().size(), 2u);
}

TEST(VariableSet, NamedValuesLeaveThePlaceholderArgumentsAlone) {
  Orvo::VariableSet set{L"first"};
  set.set(L"x", 1);
  EXPECT_EQ(set.size(), 1u);
  EXPECT_EQ(set[0], Orvo::Variant(L"first"));
  EXPECT_FALSE(Orvo::VariableSet().has(L""));
}
