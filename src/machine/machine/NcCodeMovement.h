#pragma once
// A movement programmed in NC code: coordinates in machine axes or in post
// space, rapid or at a feed, with the modes the controller moves it in.

#include <optional>
#include <vector>

#include "machine/machine/NcCodeCoordinate.h"
#include "machine/machine/NcCodeFeedrate.h"
#include "machine/machine/NcCodeKinematicInterpolationMode.h"
#include "machine/machine/NcCodeRotaryAxisTraverseMode.h"

namespace machine {

enum class NcCodeCoordProgrammingMode : int {
  /// Every coordinate is a machine axis.
  MACHINE_AXES = 0,
  /// Post-space X, Y, Z, with machine axes allowed beside them.
  CARTESIAN = 1,
};

enum class NcCodeMotionProgrammingMode : int {
  RAPID = 0,
  FEED = 1,
};

class NcCodeMovement {
public:
  NcCodeMovement(NcCodeCoordProgrammingMode coordProgrammingMode, NcCodeMotionProgrammingMode motionProgrammingMode,
                 NcCodeFeedrate const& feedrate, NcCodeKinematicInterpolationMode kinematicInterpolationMode,
                 NcCodeRotaryAxisTraverseMode rotaryAxisTraverseMode);
  /// Without a feed of its own.
  NcCodeMovement(NcCodeCoordProgrammingMode coordProgrammingMode, NcCodeMotionProgrammingMode motionProgrammingMode,
                 NcCodeKinematicInterpolationMode kinematicInterpolationMode,
                 NcCodeRotaryAxisTraverseMode rotaryAxisTraverseMode);

  /// A post-space coordinate; asserts as NcCodeCoordinate does.
  void append(NcCodeCoordinateType type, double value);
  /// A machine axis.
  void append(Orvo::AxisName const& axisName, Orvo::AxisValue const& axisValue);

  int numCoordinates() const noexcept { return static_cast<int>(m_coordinates.size()); }
  NcCodeCoordinate const& coordinate(int index) const { return m_coordinates.at(static_cast<std::size_t>(index)); }
  std::optional<NcCodeFeedrate> const& feedrate() const noexcept { return m_feedrate; }
  NcCodeCoordProgrammingMode coordProgrammingMode() const noexcept { return m_coordProgrammingMode; }
  NcCodeMotionProgrammingMode motionProgrammingMode() const noexcept { return m_motionProgrammingMode; }
  NcCodeKinematicInterpolationMode kinematicInterpolationMode() const noexcept { return m_kinematicInterpolationMode; }
  NcCodeRotaryAxisTraverseMode rotaryAxisTraverseMode() const noexcept { return m_rotaryAxisTraverseMode; }

  friend bool operator==(NcCodeMovement const& a, NcCodeMovement const& b) noexcept {
    return a.m_coordProgrammingMode == b.m_coordProgrammingMode &&
           a.m_motionProgrammingMode == b.m_motionProgrammingMode &&
           a.m_kinematicInterpolationMode == b.m_kinematicInterpolationMode &&
           a.m_rotaryAxisTraverseMode == b.m_rotaryAxisTraverseMode && a.m_feedrate == b.m_feedrate &&
           a.m_coordinates == b.m_coordinates;
  }
  friend bool operator!=(NcCodeMovement const& a, NcCodeMovement const& b) noexcept { return !(a == b); }

private:
  NcCodeCoordProgrammingMode m_coordProgrammingMode;
  NcCodeMotionProgrammingMode m_motionProgrammingMode;
  NcCodeKinematicInterpolationMode m_kinematicInterpolationMode;
  NcCodeRotaryAxisTraverseMode m_rotaryAxisTraverseMode;
  std::optional<NcCodeFeedrate> m_feedrate;
  std::vector<NcCodeCoordinate> m_coordinates;
};

}  // namespace machine
