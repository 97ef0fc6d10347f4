#include "support/ContractListenerProbe.h"

#include <gtest/gtest.h>

#include "support/AssertRecorder.h"
#include "util/utility/Basic.h"

namespace mtkit_test {

namespace {
constexpr char const* orvoAssertSourcePath = probeSourcePath;
int volatile probeValue = 1;
}  // namespace

unsigned int const probeFirstLine = __LINE__ + 3;
unsigned int const probeSecondLine = probeFirstLine + 1;
static void leaveTwo() {
  ORVO_ASSERT(probeValue == 2);
  EXPECTS(probeValue < 0 && "second");
}

namespace {

class LeavesTwoUncollected : public testing::Test {
  void TestBody() override { leaveTwo(); }
};

class CollectsWhatItRecords : public testing::Test {
  void TestBody() override {
    AssertRecorder rec;
    leaveTwo();
    EXPECT_EQ(rec.takeTexts().size(), 2u);
  }
};

// Runs after the failing probe: nothing of it may be left over.
class StartsCleanWithAssertionsOn : public testing::Test {
  void TestBody() override {
    EXPECT_TRUE(Orvo::_debug::isTesting());
    EXPECT_TRUE(Orvo::_debug::takeFailedAsserts().empty());
  }
};

template <typename T>
void registerProbe(char const* name, int line) {
  testing::RegisterTest("ContractListenerProbe", name, nullptr, nullptr, __FILE__, line,
                        []() -> testing::Test* { return new T; });
}
}  // namespace

void registerProbeTests() {
  registerProbe<LeavesTwoUncollected>("LeavesTwoUncollected", __LINE__);
  registerProbe<CollectsWhatItRecords>("CollectsWhatItRecords", __LINE__);
  registerProbe<StartsCleanWithAssertionsOn>("StartsCleanWithAssertionsOn", __LINE__);
}

}  // namespace mtkit_test
