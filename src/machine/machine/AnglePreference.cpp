#include "machine/machine/AnglePreference.h"

namespace machine {

persist::PersistClass const AnglePreference::iceStaticClass{"AnglePreference", 1};
persist::PersistEnum const AnglePreference::iceValueEnum{"AnglePreferenceValue", -1, 1};

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
