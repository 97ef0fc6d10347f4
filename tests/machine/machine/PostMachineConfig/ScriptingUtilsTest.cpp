#include "machine/machine/PostMachineConfig/ScriptingUtils.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

TEST(ScriptingUtils, WarningWithoutHookIsDropped) {
  com::vantora::setScriptWarningHook({});
  EXPECT_NO_THROW(com::vantora::sendScriptWarning(L"nobody listens"));
}

TEST(ScriptingUtils, HookReceivesTheTextAndAnEmptyFunctionRemovesIt) {
  std::vector<std::wstring> received;
  com::vantora::setScriptWarningHook([&](std::wstring const& text) { received.push_back(text); });
  com::vantora::sendScriptWarning(L"first");
  com::vantora::sendScriptWarning(L"second");
  com::vantora::setScriptWarningHook(nullptr);
  com::vantora::sendScriptWarning(L"third");
  EXPECT_EQ((std::vector<std::wstring>{L"first", L"second"}), received);
}

TEST(ScriptingUtils, InstallingReplacesTheHook) {
  int first = 0, second = 0;
  com::vantora::setScriptWarningHook([&](std::wstring const&) { ++first; });
  com::vantora::setScriptWarningHook([&](std::wstring const&) { ++second; });
  com::vantora::sendScriptWarning(L"x");
  com::vantora::setScriptWarningHook({});
  EXPECT_EQ(0, first);
  EXPECT_EQ(1, second);
}

}  // namespace
