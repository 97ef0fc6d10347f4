#include "machine/machine/PostMachineConfig/Axis.h"

#include <cmath>
#include <optional>

#include "machine/machine/Axis.h"
#include "machine/machine/AxisConfiguration.h"
#include "machine/machine/AxisDefinition.h"
#include "machine/machine/RotaryAxisDefinition.h"
#include "machine/machine/PostMachineConfig/ScriptingUtils.h"
#include "util/utility/Messages.h"
#include "util/utility/ScriptException.h"

namespace com {
namespace vantora {
namespace post {

namespace {
constexpr double kPi = 3.141592653589793;
constexpr double kTwoPi = 2 * kPi;

[[noreturn]] __attribute__((cold)) void fail(wchar_t const* message) { throw Orvo::ScriptException(message); }
}  // namespace

Axis::Axis() : Axis(ListedByOwner{}) { enlistTogether({this, &m_range}); }

Axis::Axis(ListedByOwner tag) noexcept : UnitConsumer(tag), m_range(tag) {}

Axis::Axis(bool table, Vector const& axis, Vector const& offset, int coordinate)
    : Axis(table, axis, offset, coordinate, Range(ListedByOwner{})) {}

// The offset goes in as setOffset takes it, so that getOffset gives it back;
// a new consumer is in millimetre mode, where that changes nothing.
Axis::Axis(bool table, Vector const& axis, Vector const& offset, int coordinate, Range const& range)
    : UnitConsumer(ListedByOwner{}),
      m_actuator(ROTATIONAL),
      m_table(table),
      m_axis(axis.getNormalized()),
      m_offset(mapToInternalABC(offset)),
      m_coordinate(coordinate),
      m_range(range, ListedByOwner{}) {
  enlistTogether({this, &m_range});
  updateEffectiveAxis();
  updateAggregate();
  updateValidity();
}

Axis::Axis(Axis const& other)
    : ScriptObject(other),
      UnitConsumer(other, ListedByOwner{}),
      m_enabled(other.m_enabled),
      m_actuator(other.m_actuator),
      m_table(other.m_table),
      m_axis(other.m_axis),
      m_offset(other.m_offset),
      m_homePosition(other.m_homePosition),
      m_hasHomePosition(other.m_hasHomePosition),
      m_displacement(other.m_displacement),
      m_coordinate(other.m_coordinate),
      m_cyclic(other.m_cyclic),
      m_tcpEnabled(other.m_tcpEnabled),
      m_range(other.m_range, ListedByOwner{}),
      m_preference(other.m_preference),
      m_resolution(other.m_resolution),
      m_maximumFeed(other.m_maximumFeed),
      m_rapidFeed(other.m_rapidFeed),
      m_name(other.m_name),
      m_reset(other.m_reset),
      m_controlType(other.m_controlType),
      m_machinePartId(other.m_machinePartId),
      m_toolChangePosition(other.m_toolChangePosition),
      m_hasToolChangePosition(other.m_hasToolChangePosition),
      m_effectiveAxis(other.m_effectiveAxis),
      m_aggregate(other.m_aggregate) {
  enlistTogether({this, &m_range});
}

Axis::~Axis() { delistTogether({this, &m_range}); }

char const* Axis::getBaseClass() const noexcept { return "ScriptObject"; }

Axis Axis::createFromAxisDefinition(machine::AxisDefinition const& definition,
                                    machine::AxisConfiguration const* configuration, bool table,
                                    Orvo::MachinePartId const& id) {
  constexpr double tolerance = 1e-6;
  bool const linear = definition.axisType() == machine::AxisType::LINEAR;
  // Files hold degrees, scripts radians. A linear table axis moves the part,
  // so its direction is reversed to where the tool goes relative to it; a
  // rotary axis turns the other way round in either place.
  double const scale = linear ? 1.0 : kPi / 180;
  double const sign = linear ? (table ? -1.0 : 1.0) : -1.0;

  Axis axis;
  axis.setTable(table);
  Orvo::Vector3D const direction = definition.direction();
  axis.setAxis(Vector(sign * direction.x, sign * direction.y, sign * direction.z));
  Vector const& v = axis.getAxis();
  double const components[3] = {v.x, v.y, v.z};
  for (int i = 0; i < 3; ++i) {
    if (std::fabs(std::fabs(components[i]) - 1) <= tolerance) {
      axis.setCoordinate(i);
      break;
    }
  }
  axis.setActuator(linear ? LINEAR : ROTATIONAL);

  machine::Axis const runtime(&definition, configuration);
  Orvo::AxisValueRange const range = runtime.range();
  if (!range.isInfinite())
    axis.setRange(Range(range.min().value() * scale, range.max().value() * scale,
                        linear ? Range::LINEAR : Range::ROTATIONAL));
  if (auto const step = definition.stepSize()) axis.setResolution(step->value() * scale);
  if (auto const* rotary = dynamic_cast<machine::RotaryAxisDefinition const*>(&definition)) {
    Orvo::Point3D const p = rotary->offset().value_or(rotary->point());
    axis.setOffset(Vector(p.x, p.y, p.z));
  }
  // The home position is written without its presence flag: a definition's
  // home is where the axis stands, not a home the post asked for.
  axis.m_homePosition = axis.toInternal(runtime.home().value() * scale);
  axis.setToolChangePosition(runtime.toolChangePosition().value() * scale);
  // The runtime axis's name: the configuration's if it gives one, else the
  // definition's.
  if (auto const name = runtime.name()) axis.setName(Orvo::Messages::fromUTF8ToWideUnicode(name->name()));
  axis.setMachinePartId(id);
  axis.setControlType(static_cast<int>(definition.defaultControl()));

  if (configuration) {
    if (auto const coordinate = configuration->coordinate()) axis.setCoordinate(*coordinate);
    if (auto const speed = configuration->maxNormalSpeed()) axis.setMaximumFeed(speed->get() * scale);
    if (auto const speed = configuration->maxRapidSpeed()) axis.setRapidFeed(speed->get() * scale);
    axis.setReset(static_cast<int>(configuration->whenToReset().value()));
    if (axis.isRotational()) {
      axis.setPreference(static_cast<int>(configuration->preference().value()));
      axis.setCyclic(runtime.isCyclic());
      axis.setTCPEnabled(configuration->isTCPEnabled());
    }
  }
  return axis;
}

void Axis::setActuator(unsigned int actuator) {
  if (actuator > 1) fail(L"Invalid axis actuator.");
  m_actuator = actuator;
  updateValidity();
}

void Axis::setTable(bool table) {
  m_table = table;
  updateEffectiveAxis();
  updateValidity();
}

void Axis::setControlType(int controlType) {
  // Stored before the test, and kept after a failure: callers have always
  // seen it so.
  m_controlType = controlType;
  if (controlType > 5) fail(L"Axis.setControlType() Control type is invalid");
}

void Axis::setAxis(Vector const& axis) {
  m_axis = axis;
  updateEffectiveAxis();
  updateAggregate();
  updateValidity();
}

Vector Axis::getOffset() const noexcept {
  return isLinear() ? mapToExternalXYZ(m_offset) : mapToExternalABC(m_offset);
}

void Axis::setOffset(Vector const& offset) {
  m_offset = isLinear() ? mapToInternalXYZ(offset) : mapToInternalABC(offset);
  updateValidity();
}

void Axis::setCoordinate(int coordinate) {
  m_coordinate = coordinate;
  updateValidity();
}

double Axis::getCoordinateOfVector(Vector const& v) const {
  if (!m_enabled) return 0;
  return v.getCoordinate(static_cast<unsigned int>(m_coordinate));
}

std::wstring Axis::getNameFallback() const { return m_name.empty() ? getNameFallbackOnly() : m_name; }

std::wstring Axis::getNameFallbackOnly() const {
  static wchar_t const letters[] = L"XYZABC";
  int const index = (isRotational() ? 3 : 0) + getCoordinate();
  if (index < 0 || index > 5) return std::wstring();
  return std::wstring(1, letters[index]);
}

std::string Axis::getNameFallbackUTF8() const { return Orvo::Messages::wideToUtf8(getNameFallback()); }

std::string Axis::getNameFallbackOnlyUTF8() const { return Orvo::Messages::wideToUtf8(getNameFallbackOnly()); }

void Axis::setHomePosition(double position) noexcept {
  m_homePosition = toInternal(position);
  m_hasHomePosition = true;
}

void Axis::setToolChangePosition(double position) noexcept {
  m_toolChangePosition = toInternal(position);
  m_hasToolChangePosition = true;
}

void Axis::setResolution(double resolution) {
  m_resolution = toInternal(resolution);
  updateValidity();
}

void Axis::setMaximumFeed(double feed) {
  m_maximumFeed = toInternal(feed);
  updateValidity();
}

void Axis::setRapidFeed(double feed) {
  m_rapidFeed = toInternal(feed);
  updateValidity();
}

void Axis::setRange(Range const& range) {
  m_range = range;
  updateAggregate();
  updateValidity();
}

int Axis::getPreference() const noexcept {
  switch (m_preference) {
    case 1: return 1;
    case 2: return -1;
    default: return 0;
  }
}

void Axis::setPreference(int preference) {
  switch (preference) {
    case -1: m_preference = 2; break;
    case 0: m_preference = 0; break;
    case 1: m_preference = 1; break;
    default: fail(L"Invalid angle preference.");
  }
  updateValidity();
}

void Axis::setReset(int reset) {
  if (reset < 0 || reset > 3) fail(L"Invalid reset behavior.");
  m_reset = reset;
  updateValidity();
}

void Axis::setCyclic(bool cyclic) {
  if (!isRotational()) fail(L"Actuator must be rotational.");
  m_cyclic = cyclic;
  updateValidity();
}

bool Axis::isCyclic() const noexcept {
  if (!m_enabled || !isRotational()) return false;
  return !hasRealRange() || m_cyclic;
}

void Axis::setTCPEnabled(bool enabled) {
  if (!isRotational()) fail(L"Actuator must be rotational.");
  m_tcpEnabled = enabled;
}

int Axis::getValidityStatus() const {
  if (!m_axis.isNonZero(0)) return 1;
  if (static_cast<unsigned int>(m_coordinate) > 2) return 2;
  if (m_resolution < 0) return 3;
  if (m_maximumFeed < 0) return 4;
  if (m_rapidFeed < 0) return 5;
  return 0;
}

std::wstring Axis::getStatusDescription(int status) {
  switch (status) {
    case 0: return std::wstring();
    case 1: return L"Invalid vector.";
    case 2: return L"Invalid coordinate.";
    case 3: return L"Invalid resolution.";
    case 4: return L"Invalid maximum feed.";
    case 5: return L"Invalid rapid feed.";
    default: return L"Unknown status.";
  }
}

Matrix Axis::getAxisRotation(double angle) const {
  if (isRotational()) return Matrix::getAxisRotation(m_effectiveAxis, angle);
  return Matrix();
}

bool Axis::isSupported(double value) const {
  if (!hasRealRange()) return true;
  return m_range.isWithin(toInternal(value));
}

double Axis::clamp(double value) const {
  if (!hasRealRange()) return value;
  return toExternal(m_range.clamp(toInternal(value)));
}

double Axis::clampToResolution(double value) const {
  double const internal = toInternal(value);
  if (m_resolution <= 0) return internal;
  return std::round(internal / m_resolution) * m_resolution;
}

double Axis::getResolutionError(double value) const {
  if (m_resolution <= 0) return 0;
  double const internal = toInternal(value);
  return internal - std::round(internal / m_resolution) * m_resolution;
}

bool Axis::remap(double& value) const {
  if (hasRealRange() && !isSupported(value)) value = reduceToRange(value, kTwoPi, m_range);
  if (!isSupported(value)) return false;
  if (m_preference == 1 && value < 0) {
    if (isSupported(value + kTwoPi)) value += kTwoPi;
  } else if (m_preference == 2 && value > 0) {
    if (isSupported(value - kTwoPi)) value -= kTwoPi;
  }
  return true;
}

double Axis::remapToRange(double value) const {
  if (!m_enabled) fail(L"Axis.remapToRange() not allowed on invalid axis.");
  if (!isRotational()) fail(L"Axis.remapToRange() requires rotational actuator.");
  if (m_aggregate) return value;
  if (!remap(value)) fail(L"Rotation is not possible for axis.");
  return value;
}

double Axis::remapToRangeNoException(double value) const noexcept {
  if (!m_enabled || !isRotational() || m_aggregate) return value;
  double remapped = value;
  return remap(remapped) ? remapped : value;
}

double Axis::remapToRange2(double value, double origin) const {
  if (!m_enabled) fail(L"Axis.remapToRange2() not allowed on invalid axis.");
  if (!isRotational()) fail(L"Axis.remapToRange2() requires rotational actuator.");
  if (hasRealRange() && !isSupported(value)) value = atOrBelow(atOrAbove(value, origin - kPi), origin + kPi);
  if (!isSupported(value)) fail(L"Rotation is not possible for axis.");
  if (m_preference == 1 && value < 0) {
    if (isSupported(value + kTwoPi)) value += kTwoPi;
  } else if (m_preference == 2 && value > 0) {
    if (isSupported(value - kTwoPi)) value -= kTwoPi;
  }
  return value;
}

double Axis::remapToRange3(double value, double origin) const {
  if (!m_enabled) fail(L"Axis.remapToRange3() not allowed on invalid axis.");
  if (!isRotational()) fail(L"Axis.remapToRange3() requires rotational actuator.");
  // An enabled rotational axis without a range counts as cyclic, so every
  // axis that gets here moves the value to the turn nearest the origin.
  double const v = (hasRealRange() || isCyclic()) ? atOrBelow(atOrAbove(value, origin - kPi), origin + kPi) : value;
  return isSupported(v) ? v : value;
}

double Axis::reduce(double value) const {
  if (!m_enabled) fail(L"Axis.reduce() not allowed on invalid axis.");
  if (!isRotational()) fail(L"Axis.reduce() requires rotational actuator.");
  double const v = remapToRange(value);
  // No whole turn moves such a value, and the walks below would not end.
  if (!(std::fabs(v) / kTwoPi < 0x1p52)) return v;

  bool const ranged = hasRealRange();
  auto const at = [&](double j) { return v + kTwoPi * j; };
  auto const allowed = [&](double j) { return !ranged || m_range.isWithin(at(j)); };

  // The walks go one turn at a time, as far as the range allows, towards
  // -pi..pi. A far value first jumps to within a turn or two of the end of
  // its walk: the range admits an interval of turns, so turns between two
  // it admits are admitted too, and the test against pi is monotonic.
  double k = 0;
  if (kPi < v) {
    double j = -1;
    double const last = std::floor((kPi - v) / kTwoPi) + 2;  // at or above the last turn above pi
    if (last < j && kPi < at(last) && allowed(j) && allowed(last)) {
      k = last;
      j = last - 1;
    }
    for (;; --j) {
      if (!allowed(j)) break;
      k = j;
      if (!(kPi < at(j))) break;
    }
  }
  if (at(k) <= -kPi) {
    double j = k + 1;
    double const last = std::ceil((-kPi - v) / kTwoPi) - 2;  // at or below the last turn at or below -pi
    if (last > j && at(last) <= -kPi && allowed(j) && allowed(last)) {
      k = last;
      j = last + 1;
    }
    for (;; ++j) {
      if (!allowed(j)) break;
      k = j;
      if (!(at(j) <= -kPi)) break;
    }
  }
  double const result = at(k);
  if (ranged && !m_range.isWithin(result)) return snapToRangeEnd(result, kTwoPi, m_range);
  return result;
}

void Axis::updateEffectiveAxis() noexcept { m_effectiveAxis = Vector::product(m_axis, m_table ? 1.0 : -1.0); }

void Axis::updateAggregate() noexcept {
  m_aggregate = hasRealRange() && m_range.getInternalMinimum() == m_range.getInternalMaximum();
}

void Axis::updateValidity() { m_enabled = getValidityStatus() == 0; }

}  // namespace post
}  // namespace vantora
}  // namespace com
