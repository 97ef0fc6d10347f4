#pragma once
// When the controller resets the position of an axis, with the words the
// controller settings use for it.

#include <map>
#include <string>

#include "nc/PersistClass.h"
#include "nc/PersistEnum.h"

namespace persist {
class Persist;
}

namespace machine {

enum class ResetAxisValue : int {
  NEVER = 0,
  BEFORE_EVERY_OPERATION = 1,
  ON_REWIND = 2,
  BEFORE_AND_ON_REWIND = 3,
};

class ResetAxisPreference {
public:
  /// Stored as "ResetAxisPreference", version 1: "m_value" as an integer, registered as the
  /// enumeration "ResetAxisValue" with the bounds 0 and 3.
  static persist::PersistClass const iceStaticClass;
  static persist::PersistEnum const iceValueEnum;

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

  // Virtual, with no virtual destructor: a small value that persists
  // polymorphically but is never deleted through a base.
  virtual persist::PersistClass const& iceDynamicClass() const { return iceStaticClass; }
  virtual void iceListMembers(persist::Persist const& persist);

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
