#pragma once
// The host's hook for warnings meant for script authors.

#include <functional>
#include <string>

namespace com {
namespace vantora {

using ScriptWarningHook = std::function<void(std::wstring const&)>;

/// Installs the one global hook that receives script warnings. It is empty at
/// start; installing an empty function removes the hook. Not synchronised: the
/// host installs it before scripts run.
void setScriptWarningHook(ScriptWarningHook hook);

/// Hands `message` to the installed hook; does nothing when there is none.
void sendScriptWarning(std::wstring const& message);

}  // namespace vantora
}  // namespace com
