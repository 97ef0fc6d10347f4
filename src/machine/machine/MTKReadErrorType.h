#pragma once

namespace machine {

/// The kind of failure of reading an MTK document.
enum class MTKReadErrorType : int {
  NONE = 0,
  UNITS = 1,
  EXPECTED_STRING = 2,
  EXPECTED_NUMBER = 3,
  BAD_VECTOR = 4,
  BAD_PART_TYPE = 5,
  BAD_ATTACH_FRAME = 6,
  BAD_CONTROL = 7,
  SYNTAX = 8,
  BAD_SPINDLE = 9,
  BAD_CONVENTION = 10,
  BAD_TOOL_STATION = 11,
  BAD_TURRET = 12,
  UNEXPECTED = 13,
};

}  // namespace machine
