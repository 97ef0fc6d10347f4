#include "machine/machine/PostMachineConfig/ScriptingUtils.h"

#include <utility>

namespace com {
namespace vantora {

namespace {
ScriptWarningHook& warningHook() {
  static ScriptWarningHook hook;
  return hook;
}
}  // namespace

void setScriptWarningHook(ScriptWarningHook hook) { warningHook() = std::move(hook); }

void sendScriptWarning(std::wstring const& message) {
  ScriptWarningHook const& hook = warningHook();
  if (hook) hook(message);
}

}  // namespace vantora
}  // namespace com
