#include "machine/machine/ResetAxisPreference.h"

namespace machine {

persist::PersistClass const ResetAxisPreference::iceStaticClass{"ResetAxisPreference", 1};
persist::PersistEnum const ResetAxisPreference::iceValueEnum{"ResetAxisValue", 0, 3};

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
