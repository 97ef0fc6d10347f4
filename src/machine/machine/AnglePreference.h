#pragma once
// Which way a rotary axis should prefer to turn when both directions reach a
// target, with the words the controller settings use for it.

#include <string>

#include "machine/machine/PersistentEnumWordValue.h"

namespace machine {

enum class AnglePreferenceValue : int {
  NEGATIVE = -1,
  NO_PREFERENCE = 0,
  POSITIVE = 1,
};

/// An AnglePreferenceValue with its word (see EnumWordValue), persisted
/// (see PersistentEnumWordValue).
class AnglePreference : public PersistentEnumWordValue<AnglePreference, AnglePreferenceValue> {
public:
  using PersistentEnumWordValue::PersistentEnumWordValue;

  /// Stored as "AnglePreference", version 1, with the enumeration
  /// "AnglePreferenceValue" bounded by -1 and 1.
  static persist::PersistClass const iceStaticClass;
  static persist::PersistEnum const iceValueEnum;
};

template <>
EnumWords<AnglePreferenceValue> const& enumWords<AnglePreferenceValue>();

}  // namespace machine
