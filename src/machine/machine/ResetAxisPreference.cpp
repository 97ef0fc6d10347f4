#include "machine/machine/ResetAxisPreference.h"

#include "nc/Persist.h"

namespace machine {

persist::PersistClass const ResetAxisPreference::iceStaticClass{"ResetAxisPreference", 1};
persist::PersistEnum const ResetAxisPreference::iceValueEnum{"ResetAxisValue", 0, 3};

void ResetAxisPreference::iceListMembers(persist::Persist const& persist) {
  // The value is the base's; it is read through a copy and set whole.
  ResetAxisValue number = value();
  persist.beginClass(iceStaticClass);
  persist::serializeEnum(persist, "m_value", number, iceValueEnum);
  persist.endClass();
  if (persist.isReading()) *this = ResetAxisPreference(number);
}

template <>
EnumWords<ResetAxisValue> const& enumWords<ResetAxisValue>() {
  static EnumWords<ResetAxisValue> const table{
      {ResetAxisValue::NEVER, "never"},
      {ResetAxisValue::BEFORE_EVERY_OPERATION, "before every operation"},
      {ResetAxisValue::ON_REWIND, "on rewind"},
      {ResetAxisValue::BEFORE_AND_ON_REWIND, "before and on rewind"},
  };
  return table;
}

}  // namespace machine
