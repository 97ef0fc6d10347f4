#pragma once
// When the controller resets the position of an axis, with the words the
// controller settings use for it.

#include <string>

#include "machine/machine/EnumWordValue.h"
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

/// An ResetAxisValue with its word (see EnumWordValue).
class ResetAxisPreference : public EnumWordValue<ResetAxisPreference, ResetAxisValue> {
public:
  using EnumWordValue::EnumWordValue;

  /// Stored as "ResetAxisPreference", version 1: "m_value" as an integer, registered as the
  /// enumeration "ResetAxisValue" with the bounds 0 and 3.
  static persist::PersistClass const iceStaticClass;
  static persist::PersistEnum const iceValueEnum;

  // Virtual, with no virtual destructor: a small value that persists
  // polymorphically but is never deleted through a base.
  virtual persist::PersistClass const& iceDynamicClass() const { return iceStaticClass; }
  virtual void iceListMembers(persist::Persist const& persist);
};

template <>
EnumWords<ResetAxisValue> const& enumWords<ResetAxisValue>();

}  // namespace machine
