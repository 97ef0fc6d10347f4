#pragma once
// Which way a rotary axis should prefer to turn when both directions reach a
// target, with the words the controller settings use for it.

#include <map>
#include <string>

namespace machine {

enum class AnglePreferenceValue : int {
  NEGATIVE = -1,
  NO_PREFERENCE = 0,
  POSITIVE = 1,
};

class AnglePreference {
public:
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
