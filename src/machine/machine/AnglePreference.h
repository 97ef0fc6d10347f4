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

/// Made from an AnglePreferenceValue, implicitly, or from its word: an unknown word
/// throws std::out_of_range with "invalid map<K, T> key". Made with no
/// argument, it is the target of a read from persistence, which sets the
/// value afterwards.
class AnglePreference : public EnumWordValue<AnglePreference, AnglePreferenceValue> {
public:
  using EnumWordValue::EnumWordValue;

private:
  friend EnumWordValue;
  static Words const& words();
};

}  // namespace machine
