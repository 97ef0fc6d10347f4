#pragma once
// Switches contract assertions on for the lifetime of a test scope and hands
// back what they recorded.

#include <algorithm>
#include <string>
#include <vector>

#include "util/utility/Basic.h"

namespace mtkit_test {

class AssertRecorder {
public:
  AssertRecorder() {
    Orvo::_debug::takeFailedAsserts();
    Orvo::_debug::setTesting(true);
  }
  ~AssertRecorder() {
    Orvo::_debug::setTesting(false);
    Orvo::_debug::takeFailedAsserts();
  }
  AssertRecorder(AssertRecorder const&) = delete;
  AssertRecorder& operator=(AssertRecorder const&) = delete;

  /// The failures recorded since the last call.
  std::vector<Orvo::_debug::FailedAssert> take() { return Orvo::_debug::takeFailedAsserts(); }

  /// The expression texts recorded since the last call.
  std::vector<std::string> takeTexts() {
    std::vector<std::string> texts;
    for (auto const& f : take()) texts.push_back(f.expression);
    return texts;
  }
};

}  // namespace mtkit_test
