#pragma once
// One setting of a post-processor: a value and whether it is in force.

#include "util/utility/Variant.h"

namespace machine {

struct PostSetting {
  Orvo::Variant value;
  bool enabled = false;

  friend bool operator==(PostSetting const& a, PostSetting const& b);
  friend bool operator!=(PostSetting const& a, PostSetting const& b) { return !(a == b); }
};

}  // namespace machine
