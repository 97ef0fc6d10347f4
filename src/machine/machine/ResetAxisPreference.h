#pragma once
// When the controller resets the position of an axis, with the words the
// controller settings use for it.

#include <string>

#include "machine/machine/EnumWordValue.h"

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
};

template <>
EnumWords<ResetAxisValue> const& enumWords<ResetAxisValue>();

}  // namespace machine
