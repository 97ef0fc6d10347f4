#include "machine/machine/PostMachineConfig/UnitStringParser.h"

#include <cstddef>
#include <string>

#include "util/utility/WideStringParser.h"

namespace com {
namespace vantora {
namespace post {

namespace {

struct UnitFactor {
  char const* unit;
  double factor;
};

// Lengths in millimetres.
constexpr UnitFactor kLengthUnits[] = {
    {"nm", 1e-6}, {"um", 0.001}, {"mm", 1}, {"cm", 10}, {"m", 1000}, {"in", 25.4}, {"yd", 914.4},
    {"mil", 0.0254}, {"thou", 0.0254}, {"ft", 304.79999999999995},
};
// Angles in radians. "grad" is 0.9 as it stands, not a grad in radians:
// 100grad reads as 90. The value is kept as it is on purpose.
constexpr UnitFactor kAngleUnits[] = {
    {"rad", 1}, {"deg", 0.017453292519943295}, {"grad", 0.9},
};
// The divisor of a speed, in minutes, so that a speed comes out per minute.
constexpr UnitFactor kTimeDivisorUnits[] = {
    {"s", 0.016666666666666666}, {"min", 1}, {"h", 60},
};
constexpr UnitFactor kPowerUnits[] = {
    {"MW", 1000000}, {"kW", 1000}, {"W", 1}, {"hp", 746},
};
constexpr UnitFactor kTimeUnits[] = {
    {"s", 1}, {"min", 60}, {"h", 3600},
};
constexpr UnitFactor kWeightUnits[] = {
    {"kg", 1}, {"g", 0.001}, {"mg", 1e-6}, {"t", 1000}, {"oz", 0.028349523125}, {"lb", 0.45359237},
};
constexpr UnitFactor kSpindleSpeedUnits[] = {
    {"rpm", 1},
};
constexpr double kDegree = 0.017453292519943295;
constexpr double kRevolution = 6.283185307179586;  // 2 pi

// Whether a unit word (wide or narrow) is the ASCII name. A wide character
// is compared as a whole, so no character outside ASCII matches.
template <typename Char>
bool isUnit(std::basic_string_view<Char> word, char const* name) noexcept {
  std::size_t i = 0;
  for (; name[i] != '\0'; ++i)
    if (i >= word.size() || word[i] != static_cast<Char>(name[i])) return false;
  return i == word.size();
}

template <typename Char, std::size_t N>
bool findFactor(UnitFactor const (&table)[N], std::basic_string_view<Char> unit, double& factor) noexcept {
  for (auto const& entry : table) {
    if (isUnit(unit, entry.unit)) {
      factor = entry.factor;
      return true;
    }
  }
  return false;
}

// The factors of the two sides of a unit of the form first "/" time
// divisor; the value is multiplied by the first and divided by the second.
template <typename Char, std::size_t N>
bool compoundFactors(UnitFactor const (&first)[N], std::basic_string_view<Char> unit, double& multiplier,
                     double& divisor) noexcept {
  auto const slash = unit.find(Char('/'));
  return slash != unit.npos && findFactor(first, unit.substr(0, slash), multiplier) &&
         findFactor(kTimeDivisorUnits, unit.substr(slash + 1), divisor);
}

template <typename Char>
UnitStringParser::Status parseText(UnitStringParser::Kind kind, std::basic_string_view<Char> text, double& value) {
  using Orvo::WideStringParser;
  // Only a unit that touches the number is one: "10mm" has the unit "mm",
  // while "10 mm" is a number with something left after it.
  std::size_t position = 0;
  while (position < text.size() && WideStringParser::isSpace(text[position])) ++position;
  double number = 0;
  if (!WideStringParser::readNumber(text, position, number)) return UnitStringParser::INVALID_TEXT;
  std::size_t const unitStart = position;
  while (position < text.size() && !WideStringParser::isSpace(text[position])) ++position;
  std::basic_string_view<Char> const unit = text.substr(unitStart, position - unitStart);
  while (position < text.size() && WideStringParser::isSpace(text[position])) ++position;
  if (position < text.size()) return UnitStringParser::INVALID_TEXT;

  double factor = 1;
  double divisor = 1;
  bool known = true;
  switch (kind) {
    case UnitStringParser::SPATIAL:
      if (unit.empty()) break;
      known = findFactor(kLengthUnits, unit, factor);
      break;
    case UnitStringParser::ANGULAR:
      if (unit.empty()) {
        factor = kDegree;
        break;
      }
      known = findFactor(kAngleUnits, unit, factor);
      break;
    case UnitStringParser::SPATIAL_FEEDRATE:
      if (unit.empty()) break;
      known = compoundFactors(kLengthUnits, unit, factor, divisor);
      break;
    case UnitStringParser::ANGULAR_FEEDRATE:
      if (unit.empty()) {
        factor = kDegree;
        break;
      }
      if (isUnit(unit, "rpm")) {
        factor = kRevolution;
        break;
      }
      known = compoundFactors(kAngleUnits, unit, factor, divisor);
      break;
    case UnitStringParser::POWER:
      if (unit.empty()) break;
      known = findFactor(kPowerUnits, unit, factor);
      break;
    case UnitStringParser::TIME:
      if (unit.empty()) break;
      known = findFactor(kTimeUnits, unit, factor);
      break;
    case UnitStringParser::WEIGHT:
      if (unit.empty()) break;
      known = findFactor(kWeightUnits, unit, factor);
      break;
    case UnitStringParser::SPINDLE_SPEED:
      if (unit.empty()) break;
      known = findFactor(kSpindleSpeedUnits, unit, factor);
      break;
  }
  if (!known) return UnitStringParser::INVALID_UNIT;
  // Multiplying and dividing by 1 is exact, so a plain number and a simple
  // unit come out as the number itself and the number times the factor; the
  // division, slow to finish, is made only for a time divisor.
  value = divisor == 1 ? number * factor : number * factor / divisor;
  return UnitStringParser::OK;
}

}  // namespace

UnitStringParser::Status UnitStringParser::parse(Kind kind, std::wstring_view text, double& value) {
  return parseText(kind, text, value);
}

// UTF-8 is read byte by byte, never widened. Decoding maps ASCII to itself
// and everything else (malformed bytes too) to characters outside ASCII,
// and the reading looks only at ASCII: spaces, the characters of numbers,
// "/" and the unit names. A character outside ASCII, wide or as its bytes,
// ends a number and spoils any unit word it is part of, so both forms of a
// text read to the same status and value.
UnitStringParser::Status UnitStringParser::parse(Kind kind, std::string_view utf8, double& value) {
  return parseText(kind, utf8, value);
}

}  // namespace post
}  // namespace vantora
}  // namespace com
