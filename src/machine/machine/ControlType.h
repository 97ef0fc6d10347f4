#pragma once

namespace machine {

/// How an axis is controlled. The enumerator order is the sort priority of
/// axes in a machine's full ordering: keep it.
enum class ControlType : int {
  DRIVEN = 0,
  SECONDARY = 1,
  ANCILLARY = 2,
  LINK = 3,
  SUBORDINATE = 4,
  MANUAL = 5,
};

}  // namespace machine
