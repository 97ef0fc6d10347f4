#pragma once
// Which way a rotary axis should prefer to turn when both directions reach a
// target, with the words the controller settings use for it.

#include <map>
#include <string>

#include "nc/PersistClass.h"
#include "nc/PersistEnum.h"

namespace persist {
class Persist;
}

namespace machine {

enum class AnglePreferenceValue : int {
  NEGATIVE = -1,
  NO_PREFERENCE = 0,
  POSITIVE = 1,
};

class AnglePreference {
public:
  /// Stored as "AnglePreference", version 1: "m_value" as an integer, registered as the
  /// enumeration "AnglePreferenceValue" with the bounds -1 and 1.
  static persist::PersistClass const iceStaticClass;
  static persist::PersistEnum const iceValueEnum;

  /// The target of a read from persistence, which sets the value afterwards.
  AnglePreference() noexcept = default;
  AnglePreference(AnglePreferenceValue value) noexcept : m_value(value) {}
  /// Looks the word up; an unknown word throws std::out_of_range with
  /// "invalid map<K, T> key".
  explicit AnglePreference(std::string const& text);

  AnglePreferenceValue value() const noexcept { return m_value; }
  /// The word of the value. A value outside the enumeration throws
  /// std::out_of_range as an unknown word does.
  std::string const& toString() const;
  std::wstring toWString() const;

  // Virtual, with no virtual destructor: a small value that persists
  // polymorphically but is never deleted through a base.
  virtual persist::PersistClass const& iceDynamicClass() const { return iceStaticClass; }
  virtual void iceListMembers(persist::Persist const& persist);

  friend bool operator==(AnglePreference const& a, AnglePreference const& b) noexcept { return a.m_value == b.m_value; }
  friend bool operator!=(AnglePreference const& a, AnglePreference const& b) noexcept { return !(a == b); }

private:
  static std::map<AnglePreferenceValue, std::string> const& valueToText();
  static std::map<std::string, AnglePreferenceValue> const& textToValue();

  // Zero rather than indeterminate, so that a value read before persistence
  // fills it in is still defined.
  AnglePreferenceValue m_value = AnglePreferenceValue::NO_PREFERENCE;
};

}  // namespace machine
