#pragma once
// Which way a rotary axis should prefer to turn when both directions reach a
// target, with the words the controller settings use for it.

#include <string>

#include "machine/machine/EnumWordValue.h"
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

/// An AnglePreferenceValue with its word (see EnumWordValue).
class AnglePreference : public EnumWordValue<AnglePreference, AnglePreferenceValue> {
public:
  using EnumWordValue::EnumWordValue;

  /// Stored as "AnglePreference", version 1: "m_value" as an integer, registered as the
  /// enumeration "AnglePreferenceValue" with the bounds -1 and 1.
  static persist::PersistClass const iceStaticClass;
  static persist::PersistEnum const iceValueEnum;

  // Virtual, with no virtual destructor: a small value that persists
  // polymorphically but is never deleted through a base.
  virtual persist::PersistClass const& iceDynamicClass() const { return iceStaticClass; }
  virtual void iceListMembers(persist::Persist const& persist);
};

template <>
EnumWords<AnglePreferenceValue> const& enumWords<AnglePreferenceValue>();

}  // namespace machine
