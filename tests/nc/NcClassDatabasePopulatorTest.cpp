#include "nc/NcClassDatabasePopulator.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "nc/AxisOrdering.h"
#include "nc/AxisValue.h"
#include "nc/AxisValues.h"
#include "nc/MotionContext.h"
#include "nc/PersistClassDatabase.h"

TEST(NcClassDatabasePopulator, AddsTheAxisVocabularyInOrder) {
  persist::PersistClassDatabase database;
  Orvo::NcClassDatabasePopulator().populate(database);
  std::vector<std::string> names;
  for (auto const& entry : database.entries()) names.push_back(entry.first);
  EXPECT_EQ(names, (std::vector<std::string>{"AxisValue", "AxisValues", "AxisOrdering", "MotionContext"}));
  EXPECT_EQ(database.find("AxisValue"), &Orvo::AxisValue::iceStaticClass);
  EXPECT_EQ(database.find("AxisValues"), &Orvo::AxisValues::iceStaticClass);
  EXPECT_EQ(database.find("AxisOrdering"), &Orvo::AxisOrdering::iceStaticClass);
  EXPECT_EQ(database.find("MotionContext"), &Orvo::MotionContext::iceStaticClass);
  for (auto const& entry : database.entries()) EXPECT_TRUE(entry.second->canCreate()) << entry.first;
}
