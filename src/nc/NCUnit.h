#pragma once
// Length units of NC data. Tools and contexts carry the unit their numbers
// are written in; the library itself works in millimetres (unit 1).

namespace Orvo {

class NCUnit {
public:
  /// Numbered as the producers send them; the numbers are stable.
  enum Unit : int {
    INCH = 0,
    MILLIMETER = 1,
    CENTIMETER = 2,
    METER = 3,
    FOOT = 4,
  };

  /// Whether `unit` is one of the numbers above.
  static bool isKnownUnit(int unit) noexcept;

  /// The factor that takes a length in `fromUnit` to `toUnit`:
  /// getUnitConversionFactor(INCH, MILLIMETER) is 25.4. Taken as plain
  /// integers because producers send units by number. An unknown unit has no
  /// factor and gives NaN, so that a length from it is unusable rather than
  /// silently wrong.
  static double getUnitConversionFactor(int fromUnit, int toUnit) noexcept;
};

}  // namespace Orvo
