#include "machine/machine/AnglePreference.h"

#include "nc/Persist.h"

namespace machine {

persist::PersistClass const AnglePreference::iceStaticClass{"AnglePreference", 1};
persist::PersistEnum const AnglePreference::iceValueEnum{"AnglePreferenceValue", -1, 1};

void AnglePreference::iceListMembers(persist::Persist const& persist) {
  // The value is the base's; it is read through a copy and set whole.
  AnglePreferenceValue number = value();
  persist.beginClass(iceStaticClass);
  persist::serializeEnum(persist, "m_value", number, iceValueEnum);
  persist.endClass();
  if (persist.isReading()) *this = AnglePreference(number);
}

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
