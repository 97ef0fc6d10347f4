#pragma once
// Which way a rotary axis should prefer to turn when both directions reach a
// target, with the words the controller settings use for it.

#include <string>

#include "machine/machine/EnumWordValue.h"

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
};

template <>
EnumWords<AnglePreferenceValue> const& enumWords<AnglePreferenceValue>();

}  // namespace machine
