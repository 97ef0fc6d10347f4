#pragma once
// Numbers with units ("10mm", "30m/min", "25kW") read to the internal unit
// of their kind. The script-facing MachineConfiguration::getAs... operations
// and the configuration XML reader both read through here, the reader on the
// document's UTF-8 text directly, so that both see the same values and the
// same failures.

#include <string_view>

namespace com {
namespace vantora {
namespace post {

class UnitStringParser {
public:
  enum Kind {
    SPATIAL,           ///< mm; a plain number is mm
    ANGULAR,           ///< rad; a plain number is degrees
    SPATIAL_FEEDRATE,  ///< mm per minute; a plain number is that
    ANGULAR_FEEDRATE,  ///< rad per minute; a plain number is degrees per minute
    POWER,             ///< W
    TIME,              ///< s
    WEIGHT,            ///< kg
    SPINDLE_SPEED,     ///< rpm, the only unit
  };

  enum Status {
    OK,
    /// No number, or something left after the number and its unit.
    INVALID_TEXT,
    /// The text has the right shape, but its unit is not one of the kind's.
    INVALID_UNIT,
  };

  /// Skips spaces, reads a number and the unit word that touches it (if
  /// any), skips spaces, and requires the end. The unit is looked up only
  /// once the whole text has been read, so a stray word wins over a bad
  /// unit. `value` is set only when the result is OK.
  static Status parse(Kind kind, std::wstring_view text, double& value);
  /// The same on UTF-8 text, with bit-identical results: the text is read
  /// as it stands, without widening, because only ASCII counts in a read
  /// and bytes outside it fail wherever the wide characters they decode to
  /// fail.
  static Status parse(Kind kind, std::string_view utf8, double& value);
};

}  // namespace post
}  // namespace vantora
}  // namespace com
