#include "support/ContractListener.h"

#include <sstream>

#include "util/utility/Basic.h"

namespace mtkit_test {

namespace {
bool g_testingAtProcessStart = false;
}

void recordTestingAtProcessStart(bool testing) { g_testingAtProcessStart = testing; }
bool testingAtProcessStart() { return g_testingAtProcessStart; }

void ContractListener::OnTestStart(testing::TestInfo const&) {
  Orvo::_debug::takeFailedAsserts();
  Orvo::_debug::setTesting(true);
}

void ContractListener::OnTestEnd(testing::TestInfo const& test) {
  auto const left = Orvo::_debug::takeFailedAsserts();
  Orvo::_debug::setTesting(false);
  if (left.empty()) return;
  std::ostringstream message;
  message << left.size() << " failed contract assertion" << (left.size() == 1 ? " was" : "s were")
          << " not collected by the test:";
  for (auto const& f : left) message << "\n  \"" << f.expression << "\" at " << f.file << ":" << f.line;
  // The test is still current here, so the failure is its own; it points at
  // the test's definition since the assertions' paths are not file names.
  ADD_FAILURE_AT(test.file() ? test.file() : "unknown file", test.line()) << message.str();
}

}  // namespace mtkit_test
