#include "support/ContractListener.h"

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdio>
#include <filesystem>
#include <string>

#include "support/AssertRecorder.h"
#include "support/ContractListenerProbe.h"
#include "support/ProductionBehaviour.h"
#include "util/utility/Basic.h"

namespace {

struct ChildRun {
  std::string output;
  int status = -1;
};

// Runs this test program again with the probe tests only, in order and with
// every result line, whatever GTEST_* variables this run was given.
ChildRun runProbes() {
  std::string const self = std::filesystem::read_symlink("/proc/self/exe").string();
  std::string const command = "env -u GTEST_OUTPUT '" + self + "' " + mtkit_test::probeOption +
                              " --gtest_filter='ContractListenerProbe.*' --gtest_color=no --gtest_brief=0"
                              " --gtest_shuffle=0 --gtest_repeat=1 2>&1";
  ChildRun run;
  FILE* pipe = popen(command.c_str(), "r");
  if (!pipe) return run;
  char buffer[4096];
  std::size_t n = 0;
  while ((n = fread(buffer, 1, sizeof buffer, pipe)) > 0) run.output.append(buffer, n);
  int const raw = pclose(pipe);
  run.status = WIFEXITED(raw) ? WEXITSTATUS(raw) : -1;
  return run;
}

}  // namespace

TEST(ContractListener, AssertionsAreOffAtProcessStart) {
  EXPECT_FALSE(mtkit_test::testingAtProcessStart());
}

TEST(ContractListener, AssertionsAreOnInEveryTest) {
  EXPECT_TRUE(Orvo::_debug::isTesting());
}

TEST(ContractListener, ProductionBehaviourTurnsAssertionsOffAndBackOn) {
  {
    // The scope under test is the production run itself.
    mtkit_test::ProductionBehaviour production;
    EXPECT_FALSE(Orvo::_debug::isTesting());
    Orvo::clamp(0.5, 1.0, 0.0);
  }
  EXPECT_TRUE(Orvo::_debug::isTesting());
  mtkit_test::AssertRecorder rec;
  EXPECT_TRUE(rec.take().empty());
}

TEST(ContractListener, AssertRecorderLeavesAssertionsOnAndTakesOnlyOnce) {
  {
    [[maybe_unused]] mtkit_test::AssertRecorder rec;
    Orvo::_debug::failTestForAssert("a", "b", 3);
  }
  // A recorder going out of scope drops nothing and switches nothing off.
  EXPECT_TRUE(Orvo::_debug::isTesting());
  mtkit_test::AssertRecorder rec;
  auto const left = rec.take();
  ASSERT_EQ(left.size(), 1u);
  EXPECT_EQ(left[0].expression, "a");
  EXPECT_TRUE(rec.take().empty());
}

TEST(ContractListener, UncollectedFailureFailsTheTestBeforeItsResultLine) {
  ChildRun const run = runProbes();
  EXPECT_EQ(run.status, 1) << run.output;

  std::string const failed = "[  FAILED  ] ContractListenerProbe.LeavesTwoUncollected (";
  std::string const first = "\"probeValue == 2\" at tests\\ContractListenerProbe:" +
                            std::to_string(mtkit_test::probeFirstLine);
  std::string const second = "\"EXPECTS:probeValue < 0 && \"second\"\" at tests\\ContractListenerProbe:" +
                             std::to_string(mtkit_test::probeSecondLine);
  std::string const heading = "2 failed contract assertions were not collected by the test:";
  auto const at = [&](std::string const& text) { return run.output.find(text); };
  ASSERT_NE(at(failed), std::string::npos) << run.output;
  ASSERT_NE(at(heading), std::string::npos) << run.output;
  ASSERT_NE(at(first), std::string::npos) << run.output;
  ASSERT_NE(at(second), std::string::npos) << run.output;
  EXPECT_LT(at(heading), at(first));
  EXPECT_LT(at(first), at(second));
  EXPECT_LT(at(second), at(failed));
  // The failure belongs to the failing probe, after its start line.
  EXPECT_LT(at("[ RUN      ] ContractListenerProbe.LeavesTwoUncollected"), at(heading));
  EXPECT_EQ(at("[       OK ] ContractListenerProbe.LeavesTwoUncollected"), std::string::npos);
}

TEST(ContractListener, CollectedFailuresAndTheNextTestPass) {
  ChildRun const run = runProbes();
  EXPECT_NE(run.output.find("[       OK ] ContractListenerProbe.CollectsWhatItRecords"), std::string::npos)
      << run.output;
  EXPECT_NE(run.output.find("[       OK ] ContractListenerProbe.StartsCleanWithAssertionsOn"), std::string::npos)
      << run.output;
  EXPECT_NE(run.output.find("1 FAILED TEST"), std::string::npos) << run.output;
}
