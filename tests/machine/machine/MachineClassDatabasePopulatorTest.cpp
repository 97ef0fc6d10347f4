#include "machine/machine/MachineClassDatabasePopulator.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "machine/machine/MachineMotion.h"
#include "machine/machine/MachineMotions.h"
#include "nc/PersistClassDatabase.h"

TEST(MachineClassDatabasePopulator, AddsTheNcClassesThenMachineMotionAndMachineMotionsButNotMotionEntity) {
  persist::PersistClassDatabase database;
  machine::MachineClassDatabasePopulator().populate(database);
  std::vector<std::string> names;
  for (auto const& entry : database.entries()) names.push_back(entry.first);
  EXPECT_EQ(names, (std::vector<std::string>{"AxisValue", "AxisValues", "AxisOrdering", "MotionContext",
                                             "MachineMotion", "MachineMotions"}));
  EXPECT_EQ(database.find("MachineMotion"), &machine::MachineMotion::iceStaticClass);
  EXPECT_EQ(database.find("MachineMotions"), &machine::MachineMotions::iceStaticClass);
  EXPECT_EQ(database.find("MotionEntity"), nullptr);
}

TEST(MachineClassDatabasePopulator, RunningTwiceAddsNothingMore) {
  persist::PersistClassDatabase database;
  machine::MachineClassDatabasePopulator().populate(database);
  machine::MachineClassDatabasePopulator().populate(database);
  EXPECT_EQ(database.size(), 6u);
}
