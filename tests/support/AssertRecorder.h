#pragma once
// Hands a test the contract assertions that failed so far, so it can check
// them. Every test already runs with assertions on (tests/support/TestMain.cpp),
// and whatever a test leaves uncollected fails it; a recorder only collects.

#include <string>
#include <vector>

#include "util/utility/Basic.h"

namespace mtkit_test {

class AssertRecorder {
public:
  AssertRecorder() = default;
  AssertRecorder(AssertRecorder const&) = delete;
  AssertRecorder& operator=(AssertRecorder const&) = delete;

  /// The failures recorded since the last call, oldest first.
  std::vector<Orvo::_debug::FailedAssert> take() { return Orvo::_debug::takeFailedAsserts(); }

  /// The expression texts recorded since the last call, oldest first.
  std::vector<std::string> takeTexts() {
    std::vector<std::string> texts;
    for (auto const& f : take()) texts.push_back(f.expression);
    return texts;
  }
};

}  // namespace mtkit_test
