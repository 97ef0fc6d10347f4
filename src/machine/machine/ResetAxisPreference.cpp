#include "machine/machine/ResetAxisPreference.h"

namespace machine {

ResetAxisPreference::Words const& ResetAxisPreference::words() {
  static Words const table{
      {ResetAxisValue::NEVER, "never"},
      {ResetAxisValue::BEFORE_EVERY_OPERATION, "before every operation"},
      {ResetAxisValue::ON_REWIND, "on rewind"},
      {ResetAxisValue::BEFORE_AND_ON_REWIND, "before and on rewind"},
  };
  return table;
}

}  // namespace machine
