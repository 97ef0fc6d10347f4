#pragma once
// Decides whether the axes of a machine configuration make a machine that
// the orientation solving can work with, and if not, why: the first of an
// ordered list of checks that fails gives the status. The texts of the
// statuses are MachineConfiguration::getStatusDescription's.

namespace com {
namespace vantora {
namespace post {

class MachineConfiguration;

class MachineAxesValidator {
public:
  enum Status : int {
    STATUS_OK = 0,
    STATUS_INVALID_X_AXIS = 1,
    STATUS_INVALID_Y_AXIS = 2,
    STATUS_INVALID_Z_AXIS = 3,
    STATUS_INVALID_XYZ_AXES = 4,
    STATUS_INVALID_U_AXIS = 5,
    STATUS_INVALID_V_AXIS = 6,
    STATUS_INVALID_W_AXIS = 7,
    STATUS_INVALID_SPINDLE_AXIS = 8,
    STATUS_INVALID_AXIS_ACTUATOR = 9,
    STATUS_V_WITHOUT_U = 10,
    STATUS_W_WITHOUT_V = 11,
    STATUS_INVALID_COORDINATE = 12,
    STATUS_COORDINATE_USED_TWICE = 13,
    /// Has a text; no check gives it.
    STATUS_INVALID_AXIS = 14,
    STATUS_INVALID_RANGE = 15,
    STATUS_AXES_ALIGNED = 16,
    /// Has a text; no check gives it.
    STATUS_FOURTH_AXIS_ALIGNED_WITH_TOOL_AXIS = 17,
    /// An additive machine without a positive width, depth and height. No
    /// text of its own.
    STATUS_INVALID_ADDITIVE_DIMENSIONS = 18,
    STATUS_TOO_FEW_AXES = 19,
    /// Has a text; no check gives it.
    STATUS_TOO_MANY_AXES = 20,
    /// A turning machine whose Z axis is not a linear axis with a direction.
    /// No text of its own.
    STATUS_INVALID_TURNING_Z_AXIS = 21,
    /// A turning machine with neither an X nor a Y axis. No text of its own.
    STATUS_TURNING_WITHOUT_X_OR_Y = 22,
  };

  /// Squared length below which a direction counts as zero, and up to which
  /// two directions count as the same.
  static constexpr double DIRECTION_TOLERANCE = 1e-14;
  /// The sine of the angle between two rotary axes below which they count
  /// as aligned (about 14.5 degrees).
  static constexpr double ALIGNMENT_THRESHOLD = 0.25;

  /// Holds on to `configuration`, which must outlive the validator.
  explicit MachineAxesValidator(MachineConfiguration const& configuration) noexcept
      : m_configuration(configuration) {}

  /// The status of the configuration as it is now.
  int validate() const;

private:
  int validateTurning() const;
  int validateXYZ() const;
  int validateRotary() const;
  int validateOrder() const;
  int validateAlignment() const;

  MachineConfiguration const& m_configuration;
};

}  // namespace post
}  // namespace vantora
}  // namespace com
