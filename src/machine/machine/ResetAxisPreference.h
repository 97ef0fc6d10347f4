#pragma once
// When the controller resets the position of an axis, with the words the
// controller settings use for it.

#include <string>

#include "machine/machine/PersistentEnumWordValue.h"

namespace machine {

enum class ResetAxisValue : int {
  NEVER = 0,
  BEFORE_EVERY_OPERATION = 1,
  ON_REWIND = 2,
  BEFORE_AND_ON_REWIND = 3,
};

/// A ResetAxisValue with its word (see EnumWordValue), persisted
/// (see PersistentEnumWordValue).
class ResetAxisPreference : public PersistentEnumWordValue<ResetAxisPreference, ResetAxisValue> {
public:
  using PersistentEnumWordValue::PersistentEnumWordValue;

  /// Stored as "ResetAxisPreference", version 1, with the enumeration
  /// "ResetAxisValue" bounded by 0 and 3.
  static persist::PersistClass const iceStaticClass;
  static persist::PersistEnum const iceValueEnum;
};

template <>
EnumWords<ResetAxisValue> const& enumWords<ResetAxisValue>();

}  // namespace machine
