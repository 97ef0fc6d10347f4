#pragma once
// What a multi-axis post does near a singularity, where the tool axis comes
// close to a rotary axis and small tool motions ask for large rotations.
// A plain value; angles are radians and tolerances millimetres.

namespace com {
namespace vantora {
namespace post {

class MultiAxisSingularity {
public:
  // Held as a plain integer, as scripts pass it.
  enum Method : int {
    METHOD_OFF = 0,
    METHOD_LINEARIZE_LINEAR = 1,
    METHOD_LINEARIZE_ROTARY = 2,
  };

  /// Three degrees in radians, written as the literal: (3 pi) / 180 and
  /// pi / 60 give it, while 3 (pi / 180) gives the double one unit in the
  /// last place above, which is what the machine file's multi-axis
  /// preferences take for a missing "cone". The script-facing default is
  /// this one; the two sides keep their own values.
  static constexpr double DEFAULT_CONE = 0.05235987755982988;
  /// Ten degrees in radians.
  static constexpr double DEFAULT_ANGLE = 0.17453292519943295;
  static constexpr double DEFAULT_TOLERANCE = 0.04;

  /// Adjust on, linearize rotary, the default cone and angle, both
  /// tolerances 0.04 mm.
  MultiAxisSingularity() noexcept = default;

  bool getAdjust() const noexcept { return m_adjust; }
  void setAdjust(bool adjust) noexcept { m_adjust = adjust; }
  int getMethod() const noexcept { return m_method; }
  void setMethod(int method) noexcept { m_method = method; }
  double getCone() const noexcept { return m_cone; }
  void setCone(double cone) noexcept { m_cone = cone; }
  double getAngle() const noexcept { return m_angle; }
  void setAngle(double angle) noexcept { m_angle = angle; }
  double getTolerance() const noexcept { return m_tolerance; }
  void setTolerance(double tolerance) noexcept { m_tolerance = tolerance; }
  double getLinearizationTolerance() const noexcept { return m_linearizationTolerance; }
  void setLinearizationTolerance(double tolerance) noexcept { m_linearizationTolerance = tolerance; }

  /// Every field exactly.
  friend bool operator==(MultiAxisSingularity const& a, MultiAxisSingularity const& b) noexcept;
  friend bool operator!=(MultiAxisSingularity const& a, MultiAxisSingularity const& b) noexcept { return !(a == b); }

private:
  bool m_adjust = true;
  int m_method = METHOD_LINEARIZE_ROTARY;
  double m_cone = DEFAULT_CONE;
  double m_angle = DEFAULT_ANGLE;
  double m_tolerance = DEFAULT_TOLERANCE;
  double m_linearizationTolerance = DEFAULT_TOLERANCE;
};

}  // namespace post
}  // namespace vantora
}  // namespace com
