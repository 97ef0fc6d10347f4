#include "util/utility/ScopePointer.h"

#include <gtest/gtest.h>

#include "support/AssertRecorder.h"

namespace {

TEST(ScopePointer, PointsAtItsPointeeWithoutOwningIt) {
  int value = 7;
  Orvo::ScopePointer<int> const pointer(&value);
  EXPECT_TRUE(static_cast<bool>(pointer));
  EXPECT_EQ(pointer.get(), &value);
  *pointer = 8;
  EXPECT_EQ(value, 8);
}

TEST(ScopePointer, AfterResetItIsEmptyAndAUseIsAContractFailure) {
  mtkit_test::AssertRecorder recorder;
  struct Target {
    int member = 3;
  } target;
  Orvo::ScopePointer<Target> pointer(&target);
  pointer.reset();
  EXPECT_FALSE(static_cast<bool>(pointer));
  EXPECT_EQ(pointer.get(), nullptr);
  (void)pointer.operator->();
  auto const failures = recorder.take();
  ASSERT_EQ(failures.size(), 1u);
  EXPECT_EQ(failures[0].expression, "EXPECTS:m_pointee != nullptr");
  EXPECT_EQ(failures[0].file, "util\\utility\\ScopePointer");
}

}  // namespace
