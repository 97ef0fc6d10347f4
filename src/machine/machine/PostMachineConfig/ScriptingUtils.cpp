#include "machine/machine/PostMachineConfig/ScriptingUtils.h"

#include <cmath>
#include <utility>

#include "machine/machine/PostMachineConfig/Range.h"
#include "util/utility/Basic.h"

namespace {
constexpr char const* orvoAssertSourcePath = "machine\\machine\\PostMachineConfig\\ScriptingUtils";
constexpr double kPi = 3.141592653589793;
constexpr double kTwoPi = 2 * kPi;
}  // namespace

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

namespace post {

double atOrAbove(double value, double origin) {
  if (origin <= value) return value;
  value += std::trunc((origin - value) / kTwoPi) * kTwoPi;
  if (origin > value) value += kTwoPi;
  ORVO_ASSERT(value >= origin);
  return value;
}

double atOrBelow(double value, double origin) {
  if (value <= origin) return value;
  value -= std::trunc((value - origin) / kTwoPi) * kTwoPi;
  if (value > origin) value -= kTwoPi;
  ORVO_ASSERT(value <= origin);
  return value;
}

double snapToRangeEnd(double value, double step, Range const& range) {
  double const minimum = range.getInternalMinimum();
  double const maximum = range.getInternalMaximum();
  if (step - (maximum - minimum) <= 3.5e-5) return minimum - value > value - maximum ? maximum : minimum;
  if (std::fabs(value - minimum) <= 8.709e-6) return minimum;
  if (std::fabs(value - maximum) <= 8.709e-6) return maximum;
  return value;
}

double reduceToRange(double value, double step, Range const& requiredRange) {
  ORVO_ASSERT((value >= -1e6) && (value <= 1e6));
  ORVO_ASSERT(step > 0);
  ORVO_ASSERT(!requiredRange.isNonRange());
  if (requiredRange.isNonRange()) return value;
  // Past the contract the loops below might never end (no step, or steps too
  // small to move the value); such a value has no turn to take.
  if (!(step > 0) || !(std::fabs(value) / step < 0x1p52)) return value;

  double const minimum = requiredRange.getInternalMinimum();
  double const maximum = requiredRange.getInternalMaximum();
  auto const at = [&](double k) { return value + k * step; };
  auto const aboveMaximum = [&](double k) { return maximum < at(k) - 1e-6; };
  auto const belowMinimum = [&](double k) { return at(k) + 1e-6 < minimum; };

  // The step count moves one step at a time. A far value first jumps to
  // within a step or two of where the walk would stop; both tests are
  // monotonic in k, so every count skipped would have been stepped over.
  double k = 0;
  if (aboveMaximum(k)) {
    double const near = std::ceil((maximum - value) / step) + 1;
    if (near < k && aboveMaximum(near)) k = near;
    while (aboveMaximum(k)) --k;
  }
  if (belowMinimum(k)) {
    double const near = std::floor((minimum - value) / step) - 1;
    if (near > k && belowMinimum(near)) k = near;
    while (belowMinimum(k)) ++k;
  }
  double const v = at(k);
  if (requiredRange.isWithin(v)) return v;
  return snapToRangeEnd(v, step, requiredRange);
}

}  // namespace post

}  // namespace vantora
}  // namespace com
