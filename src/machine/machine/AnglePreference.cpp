#include "machine/machine/AnglePreference.h"

namespace machine {

AnglePreference::Words const& AnglePreference::words() {
  static Words const table{
      {AnglePreferenceValue::NEGATIVE, "negative"},
      {AnglePreferenceValue::NO_PREFERENCE, "no preference"},
      {AnglePreferenceValue::POSITIVE, "positive"},
  };
  return table;
}

}  // namespace machine
