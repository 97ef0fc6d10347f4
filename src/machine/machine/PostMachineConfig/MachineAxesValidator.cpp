#include "machine/machine/PostMachineConfig/MachineAxesValidator.h"

#include "machine/machine/PostMachineConfig/MachineConfiguration.h"

namespace com {
namespace vantora {
namespace post {

namespace {

bool isZeroVector(Vector const& v) { return !v.isNonZero(0); }

bool isSameDirection(Vector const& v, Vector const& expected) {
  return Vector::diff(v, expected).getLength2() <= MachineAxesValidator::DIRECTION_TOLERANCE;
}

/// A linear axis along `unit` on `coordinate`.
bool isLinearAlong(Axis const& axis, Vector const& unit, int coordinate) {
  return axis.isLinear() && isSameDirection(axis.getAxis(), unit) && axis.getCoordinate() == coordinate;
}

bool areAligned(Axis const& a, Axis const& b) {
  return Vector::cross(a.getAxis(), b.getAxis()).getLength() < MachineAxesValidator::ALIGNMENT_THRESHOLD;
}

}  // namespace

int MachineAxesValidator::validate() const {
  MachineConfiguration const& c = m_configuration;
  if (c.getAdditiveFFF()) {
    return c.getWidth() > 0 && c.getDepth() > 0 && c.getHeight() > 0 ? STATUS_OK
                                                                      : STATUS_INVALID_ADDITIVE_DIMENSIONS;
  }
  if (c.getInspection()) return STATUS_OK;
  if (c.getTurning()) return validateTurning();
  if (int const status = validateXYZ()) return status;
  if (c.m_spindleAxisNormalized.getLength2() < DIRECTION_TOLERANCE) return STATUS_INVALID_SPINDLE_AXIS;
  if (int const status = validateRotary()) return status;
  if (int const status = validateOrder()) return status;
  return validateAlignment();
}

int MachineAxesValidator::validateTurning() const {
  Axis const& z = m_configuration.getAxisZ();
  if (!z.isLinear() || isZeroVector(z.getAxis())) return STATUS_INVALID_TURNING_Z_AXIS;
  if (!isSameDirection(z.getAxis(), Vector(0, 0, 1)) || z.getCoordinate() != 2) return STATUS_INVALID_Z_AXIS;
  auto const present = [](Axis const& axis) { return axis.isLinear() && !isZeroVector(axis.getAxis()); };
  if (!present(m_configuration.getAxisX()) && !present(m_configuration.getAxisY())) {
    return STATUS_TURNING_WITHOUT_X_OR_Y;
  }
  return STATUS_OK;
}

int MachineAxesValidator::validateXYZ() const {
  Axis const& x = m_configuration.getAxisX();
  Axis const& y = m_configuration.getAxisY();
  Axis const& z = m_configuration.getAxisZ();
  if (isZeroVector(x.getAxis()) || isZeroVector(y.getAxis()) || isZeroVector(z.getAxis())) {
    return STATUS_TOO_FEW_AXES;
  }
  if (!isLinearAlong(x, Vector(1, 0, 0), 0)) return STATUS_INVALID_X_AXIS;
  if (!isLinearAlong(y, Vector(0, 1, 0), 1)) return STATUS_INVALID_Y_AXIS;
  if (!isLinearAlong(z, Vector(0, 0, 1), 2)) return STATUS_INVALID_Z_AXIS;
  // A left-handed or skewed set of linear axes.
  if (!isSameDirection(z.getAxis(), Vector::cross(x.getAxis(), y.getAxis()))) return STATUS_INVALID_XYZ_AXES;
  return STATUS_OK;
}

int MachineAxesValidator::validateRotary() const {
  struct Slot {
    Axis const* axis;
    int invalidStatus;
    unsigned int neededCount;
  };
  Slot const slots[3] = {
      {&m_configuration.getAxisU(), STATUS_INVALID_U_AXIS, 4},
      {&m_configuration.getAxisV(), STATUS_INVALID_V_AXIS, 5},
      {&m_configuration.getAxisW(), STATUS_INVALID_W_AXIS, 6},
  };
  unsigned int const numberOfAxes = m_configuration.getNumberOfAxes();
  unsigned int usedCoordinates = 0;
  for (Slot const& slot : slots) {
    Axis const& axis = *slot.axis;
    // The axis count says the axis exists, but it does not.
    if (numberOfAxes >= slot.neededCount && !axis.isEnabled()) return slot.invalidStatus;
    if (!axis.isEnabled()) continue;
    if (!axis.isRotational()) return STATUS_INVALID_AXIS_ACTUATOR;
    auto const coordinate = static_cast<unsigned int>(axis.getCoordinate());
    if (coordinate > 2) return STATUS_INVALID_COORDINATE;
    if (usedCoordinates & (1u << coordinate)) return STATUS_COORDINATE_USED_TWICE;
    usedCoordinates |= 1u << coordinate;
    if (axis.getAxis().getLength() < DIRECTION_TOLERANCE) return slot.invalidStatus;
    // A single point counts as a range without span, so an aggregate axis
    // fails here.
    Range const& range = axis.getRange();
    if (!range.isNonRange() && range.getInternalMaximum() - range.getInternalMinimum() <= 0) {
      return STATUS_INVALID_RANGE;
    }
  }
  return STATUS_OK;
}

int MachineAxesValidator::validateOrder() const {
  bool const u = m_configuration.getAxisU().isEnabled();
  bool const v = m_configuration.getAxisV().isEnabled();
  bool const w = m_configuration.getAxisW().isEnabled();
  if (v && !u) return STATUS_V_WITHOUT_U;
  if (w && !v) return STATUS_W_WITHOUT_V;
  return STATUS_OK;
}

int MachineAxesValidator::validateAlignment() const {
  Axis const& u = m_configuration.getAxisU();
  Axis const& v = m_configuration.getAxisV();
  Axis const& w = m_configuration.getAxisW();
  if (w.isEnabled() && (areAligned(w, u) || areAligned(w, v))) return STATUS_AXES_ALIGNED;
  if (v.isEnabled() && areAligned(v, u)) return STATUS_AXES_ALIGNED;
  return STATUS_OK;
}

}  // namespace post
}  // namespace vantora
}  // namespace com
