#include "nc/PersistClassDatabase.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/AssertRecorder.h"
#include "support/PersistSamples.h"

TEST(PersistClassDatabase, FindsByNameInTheOrderAdded) {
  persist::PersistClassDatabase database;
  EXPECT_EQ(database.size(), 0u);
  EXPECT_EQ(database.find("Sample"), nullptr);
  database.add("Sample", mtkit_test::Sample::iceStaticClass);
  database.add("Other", mtkit_test::Other::iceStaticClass);
  EXPECT_EQ(database.size(), 2u);
  EXPECT_EQ(database.find("Sample"), &mtkit_test::Sample::iceStaticClass);
  EXPECT_EQ(database.find("Other"), &mtkit_test::Other::iceStaticClass);
  EXPECT_EQ(database.find("sample"), nullptr);
  EXPECT_EQ(database.entries()[0].first, "Sample");
  EXPECT_EQ(database.entries()[1].first, "Other");
}

TEST(PersistClassDatabase, AddingANameAgainForTheSameClassDoesNothing) {
  persist::PersistClassDatabase database;
  database.add("Sample", mtkit_test::Sample::iceStaticClass);
  database.add("Sample", mtkit_test::Sample::iceStaticClass);
  EXPECT_EQ(database.size(), 1u);
}

TEST(PersistClassDatabase, AddingANameForAnotherClassAssertsAndKeepsTheFirst) {
  mtkit_test::AssertRecorder asserts;
  persist::PersistClassDatabase database;
  database.add("Sample", mtkit_test::Sample::iceStaticClass);
  database.add("Sample", mtkit_test::Other::iceStaticClass);
  EXPECT_EQ(asserts.takeTexts(), std::vector<std::string>{"EXPECTS:!existing || existing == &persistClass"});
  EXPECT_EQ(database.find("Sample"), &mtkit_test::Sample::iceStaticClass);
  EXPECT_EQ(database.size(), 1u);
}

TEST(PersistClass, CreatesOnlyWithAFactory) {
  persist::PersistClass const plain("Plain", 1);
  EXPECT_FALSE(plain.canCreate());
  EXPECT_EQ(plain.create(), nullptr);
  EXPECT_TRUE(mtkit_test::Sample::iceStaticClass.canCreate());
  auto const made = mtkit_test::Sample::iceStaticClass.create();
  EXPECT_NE(dynamic_cast<mtkit_test::Sample*>(made.get()), nullptr);
}
