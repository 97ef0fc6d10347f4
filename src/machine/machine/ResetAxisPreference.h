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

/// Made from an ResetAxisValue, implicitly, or from its word: an unknown word
/// throws std::out_of_range with "invalid map<K, T> key". Made with no
/// argument, it is the target of a read from persistence, which sets the
/// value afterwards.
class ResetAxisPreference : public EnumWordValue<ResetAxisPreference, ResetAxisValue> {
public:
  using EnumWordValue::EnumWordValue;

private:
  friend EnumWordValue;
  static Words const& words();
};

}  // namespace machine
