#pragma once
// The limits of an axis as a script sees them, held in internal units
// (millimetres, radians).
//
// A range whose minimum is above its maximum is a non-range: a range not yet
// set. Operations that need limits throw "Range has not been initialized."
// on it. Only the four readers getMinimum, getMaximum, getMiddle and getSpan
// map to the script's unit (for a linear range); every other operation takes
// and gives internal values.

#include <string>

#include "machine/machine/PostMachineConfig/UnitConsumer.h"
#include "util/utility/ScriptObject.h"

namespace com {
namespace vantora {
namespace post {

class Range : public Orvo::ScriptObject, public UnitConsumer {
public:
  /// Whether the unit factors apply (linear) or not (rotational).
  enum Actuator : unsigned int { LINEAR = 0, ROTATIONAL = 1 };

  /// The non-range (minimum 1, maximum 0), linear.
  Range();
  /// The single point `value`, linear.
  explicit Range(double value);
  /// From `a` to `b` in either order.
  Range(double a, double b, Actuator actuator);
  Range(Range const&) = default;
  Range& operator=(Range const&) = default;
  /// The non-range and a copy, left off the consumer list for an owner that
  /// lists them together with itself (see UnitConsumer).
  explicit Range(ListedByOwner tag) noexcept : UnitConsumer(tag) {}
  Range(Range const& other, ListedByOwner tag) noexcept
      : ScriptObject(other),
        UnitConsumer(other, tag),
        m_minimum(other.m_minimum),
        m_maximum(other.m_maximum),
        m_actuator(other.m_actuator) {}

  char const* getBaseClass() const noexcept override;
  ~Range() override = default;

  Actuator getActuator() const noexcept { return m_actuator; }

  // The limits in the script's unit; each checks first.
  double getMinimum() const;
  double getMaximum() const;
  double getMiddle() const;
  double getSpan() const;
  /// The limits in internal units, unchecked: a non-range gives 1 and 0.
  double getInternalMinimum() const noexcept { return m_minimum; }
  double getInternalMaximum() const noexcept { return m_maximum; }

  /// Where `value` lies between minimum (0) and maximum (1); checks first.
  double getU(double value) const;
  bool isNonRange() const noexcept { return m_minimum > m_maximum; }
  /// Within the limits widened by 1e-6 on either side; checks first.
  bool isWithin(double value) const;
  /// `value` limited to the range; checks first.
  double clamp(double value) const;

  /// A non-range becomes the point `value`; a range widens to take it in.
  void expandTo(double value) noexcept;
  /// A non-range takes the limits of `other`; a range widens to take in both
  /// limits of `other`, whatever they are: those of a non-range (1 and 0)
  /// included.
  void expandToRange(Range const& other) noexcept;
  /// Checks; a positive `d` moves both limits outwards by it.
  void grow(double d);
  /// Checks; a positive `d` moves both limits inwards by it, and limits that
  /// cross meet at their mean.
  void reduce(double d);
  /// Checks; moves both limits by `d`.
  void translate(double d);

  /// "[minimum; maximum]" in the script's unit, unchecked, so that a
  /// non-range shows as "[1; 0]".
  std::wstring toString() const;

private:
  void checkNonRange() const;
  double toExternal(double value) const noexcept {
    return m_actuator == LINEAR ? mapToExternalXYZ(value) : mapToExternalABC(value);
  }
  double toInternal(double value) const noexcept {
    return m_actuator == LINEAR ? mapToInternalXYZ(value) : mapToInternalABC(value);
  }

  double m_minimum = 1.0;
  double m_maximum = 0.0;
  Actuator m_actuator = LINEAR;
};

}  // namespace post
}  // namespace vantora
}  // namespace com
