#pragma once

namespace machine {

/// How an axis is controlled. The values are fixed: the machine's axis sort
/// priority table and the files depend on them.
enum class ControlType : int {
  DRIVEN = 0,
  SECONDARY = 1,
  ANCILLARY = 2,
  LINK = 3,
  SUBORDINATE = 4,
  MANUAL = 5,
};

}  // namespace machine
