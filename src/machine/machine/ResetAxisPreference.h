#pragma once
// When the controller resets the position of an axis, with the words the
// controller settings use for it.

#include <map>
#include <string>

namespace machine {

enum class ResetAxisValue : int {
  NEVER = 0,
  BEFORE_EVERY_OPERATION = 1,
  ON_REWIND = 2,
  BEFORE_AND_ON_REWIND = 3,
};

class ResetAxisPreference {
public:
  /// The target of a read from persistence, which sets the value afterwards.
  ResetAxisPreference() noexcept = default;
  ResetAxisPreference(ResetAxisValue value) noexcept : m_value(value) {}
  /// Looks the word up; an unknown word throws std::out_of_range with
  /// "invalid map<K, T> key".
  explicit ResetAxisPreference(std::string const& text);

  ResetAxisValue value() const noexcept { return m_value; }
  /// The word of the value. A value outside the enumeration throws
  /// std::out_of_range as an unknown word does.
  std::string const& toString() const;
  std::wstring toWString() const;

  friend bool operator==(ResetAxisPreference const& a, ResetAxisPreference const& b) noexcept {
    return a.m_value == b.m_value;
  }
  friend bool operator!=(ResetAxisPreference const& a, ResetAxisPreference const& b) noexcept { return !(a == b); }

private:
  static std::map<ResetAxisValue, std::string> const& valueToText();
  static std::map<std::string, ResetAxisValue> const& textToValue();

  // Zero rather than indeterminate, so that a value read before persistence
  // fills it in is still defined.
  ResetAxisValue m_value = ResetAxisValue::NEVER;
};

}  // namespace machine
