// The test program: GoogleTest with contract assertions on in every test.

#include <gtest/gtest.h>

#include <cstring>

#include "support/ContractListener.h"
#include "support/ContractListenerProbe.h"
#include "util/utility/Basic.h"

int main(int argc, char** argv) {
  mtkit_test::recordTestingAtProcessStart(Orvo::_debug::isTesting());
  testing::InitGoogleTest(&argc, argv);
  for (int i = 1; i < argc; ++i)
    if (std::strcmp(argv[i], mtkit_test::probeOption) == 0) mtkit_test::registerProbeTests();
  // GoogleTest sends the end of a test to its listeners in reverse order, so
  // appending after the default printer runs this listener's end ahead of it:
  // a failure it adds is printed before the test's result line and counts in
  // the result.
  testing::UnitTest::GetInstance()->listeners().Append(new mtkit_test::ContractListener);
  return RUN_ALL_TESTS();
}
