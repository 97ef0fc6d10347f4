#include "machine/machine/AnglePreference.h"

namespace machine {

template <>
EnumWords<AnglePreferenceValue> const& enumWords<AnglePreferenceValue>() {
  static EnumWords<AnglePreferenceValue> const table{
      {AnglePreferenceValue::NEGATIVE, "negative"},
      {AnglePreferenceValue::NO_PREFERENCE, "no preference"},
      {AnglePreferenceValue::POSITIVE, "positive"},
  };
  return table;
}

}  // namespace machine
