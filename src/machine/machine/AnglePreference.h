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

class AnglePreference : public EnumWordValue<AnglePreference, AnglePreferenceValue> {
public:
  /// The target of a read from persistence, which sets the value afterwards.
  AnglePreference() noexcept = default;
  AnglePreference(AnglePreferenceValue value) noexcept : EnumWordValue(value) {}
  /// Looks the word up; an unknown word throws std::out_of_range with
  /// "invalid map<K, T> key".
  explicit AnglePreference(std::string const& text) : EnumWordValue(text) {}

private:
  friend EnumWordValue;
  static Words const& words();
};

}  // namespace machine
