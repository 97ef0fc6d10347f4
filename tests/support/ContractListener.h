#pragma once
// Turns contract assertions on for every test and fails a test that leaves
// failed assertions uncollected.

#include <gtest/gtest.h>

namespace mtkit_test {

class ContractListener : public testing::EmptyTestEventListener {
public:
  /// Drops failures left from outside any test and turns assertions on.
  void OnTestStart(testing::TestInfo const& test) override;
  /// Fails `test` when failures are left, listing each with its file and
  /// line; then turns assertions off with nothing recorded.
  void OnTestEnd(testing::TestInfo const& test) override;
};

}  // namespace mtkit_test

namespace mtkit_test {

/// Whether assertions were on when the test program started, before any
/// listener ran; main records it.
void recordTestingAtProcessStart(bool testing);
bool testingAtProcessStart();

}  // namespace mtkit_test
