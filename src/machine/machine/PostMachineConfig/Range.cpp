#include "machine/machine/PostMachineConfig/Range.h"

#include <algorithm>

#include "util/utility/ScriptException.h"
#include "util/utility/Variant.h"

namespace com {
namespace vantora {
namespace post {

namespace {
[[noreturn]] __attribute__((cold)) void throwNotInitialized() {
  throw Orvo::ScriptException(L"Range has not been initialized.");
}
}  // namespace

Range::Range() = default;

// The constructors map like every setter does. A consumer starts in
// millimetre mode, so this changes nothing today; it keeps a range made in
// inch mode right should consumers ever start in it.
// The limits are set in the body: the mapping reads the actuator, which is
// declared after them.
Range::Range(double value) { m_minimum = m_maximum = toInternal(value); }

Range::Range(double a, double b, Actuator actuator) : m_actuator(actuator) {
  m_minimum = toInternal(std::min(a, b));
  m_maximum = toInternal(std::max(a, b));
}

char const* Range::getBaseClass() const noexcept { return "ScriptObject"; }

void Range::checkNonRange() const {
  if (isNonRange()) throwNotInitialized();
}

double Range::getMinimum() const {
  checkNonRange();
  return toExternal(m_minimum);
}

double Range::getMaximum() const {
  checkNonRange();
  return toExternal(m_maximum);
}

double Range::getMiddle() const {
  checkNonRange();
  return toExternal((m_minimum + m_maximum) / 2);
}

double Range::getSpan() const {
  checkNonRange();
  return toExternal(m_maximum - m_minimum);
}

double Range::getU(double value) const {
  checkNonRange();
  return (value - m_minimum) / (m_maximum - m_minimum);
}

bool Range::isWithin(double value) const {
  checkNonRange();
  return value + 1e-6 >= m_minimum && value - 1e-6 <= m_maximum;
}

double Range::clamp(double value) const {
  checkNonRange();
  return std::min(std::max(value, m_minimum), m_maximum);
}

void Range::expandTo(double value) noexcept {
  if (isNonRange()) {
    m_minimum = m_maximum = value;
    return;
  }
  m_minimum = std::min(m_minimum, value);
  m_maximum = std::max(m_maximum, value);
}

void Range::expandToRange(Range const& other) noexcept {
  if (isNonRange()) {
    m_minimum = other.m_minimum;
    m_maximum = other.m_maximum;
    return;
  }
  m_minimum = std::min(m_minimum, other.m_minimum);
  m_maximum = std::max(m_maximum, other.m_maximum);
}

void Range::grow(double d) {
  checkNonRange();
  if (d > 0) {
    m_minimum -= d;
    m_maximum += d;
  }
}

void Range::reduce(double d) {
  checkNonRange();
  if (d > 0) {
    m_minimum += d;
    m_maximum -= d;
    if (m_minimum > m_maximum) m_minimum = m_maximum = (m_minimum + m_maximum) / 2;
  }
}

void Range::translate(double d) {
  checkNonRange();
  m_minimum += d;
  m_maximum += d;
}

std::wstring Range::toString() const {
  return Orvo::Variant::getSubstitution(L"[%1; %2]", {Orvo::Variant(toExternal(m_minimum)),
                                                       Orvo::Variant(toExternal(m_maximum))});
}

}  // namespace post
}  // namespace vantora
}  // namespace com
