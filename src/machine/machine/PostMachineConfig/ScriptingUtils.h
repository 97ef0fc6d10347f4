#pragma once
// Helpers shared by the script-facing classes: the host's hook for warnings
// meant for script authors, and the rotary arithmetic that axes and the
// orientation solving lean on.

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

namespace post {

class Range;

// Rotary arithmetic. Angles are radians, ranges are read in internal units,
// and a turn is 2 pi.

/// `value` if it is at or above `origin`; otherwise `value` moved up by whole
/// turns to the first representative at or above `origin`.
double atOrAbove(double value, double origin);
/// `value` if it is at or below `origin`; otherwise `value` moved down by
/// whole turns to the first representative at or below `origin`.
double atOrBelow(double value, double origin);

/// For a value that missed `range`. When the range spans a whole `step`
/// (within 3.5e-5), the range end farther from the value: a value above the
/// maximum goes to the minimum and the reverse, as a full turn brings it
/// there. Otherwise the end within 8.709e-6 of the value, if any, else the
/// value as it is.
double snapToRangeEnd(double value, double step, Range const& range);

/// `value` moved by whole steps into `requiredRange`: the lowest step count
/// from 0 downwards that is not above the maximum (within 1e-6), then upwards
/// until it is not below the minimum. Outside the range that gives, the result
/// is snapToRangeEnd of it. A non-range gives the value. Expects a value
/// within -1e6..1e6 and a positive step; past those a finite result still
/// comes back without looping for long, and a value that no step count can
/// move, as infinity or one beyond 2^52 steps, comes back as it is.
double reduceToRange(double value, double step, Range const& requiredRange);

}  // namespace post

}  // namespace vantora
}  // namespace com
