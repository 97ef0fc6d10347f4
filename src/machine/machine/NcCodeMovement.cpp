#include "machine/machine/NcCodeMovement.h"

namespace machine {

NcCodeMovement::NcCodeMovement(NcCodeCoordProgrammingMode coordProgrammingMode,
                               NcCodeMotionProgrammingMode motionProgrammingMode, NcCodeFeedrate const& feedrate,
                               NcCodeKinematicInterpolationMode kinematicInterpolationMode,
                               NcCodeRotaryAxisTraverseMode rotaryAxisTraverseMode)
    : m_coordProgrammingMode(coordProgrammingMode),
      m_motionProgrammingMode(motionProgrammingMode),
      m_kinematicInterpolationMode(kinematicInterpolationMode),
      m_rotaryAxisTraverseMode(rotaryAxisTraverseMode),
      m_feedrate(feedrate) {}

NcCodeMovement::NcCodeMovement(NcCodeCoordProgrammingMode coordProgrammingMode,
                               NcCodeMotionProgrammingMode motionProgrammingMode,
                               NcCodeKinematicInterpolationMode kinematicInterpolationMode,
                               NcCodeRotaryAxisTraverseMode rotaryAxisTraverseMode)
    : m_coordProgrammingMode(coordProgrammingMode),
      m_motionProgrammingMode(motionProgrammingMode),
      m_kinematicInterpolationMode(kinematicInterpolationMode),
      m_rotaryAxisTraverseMode(rotaryAxisTraverseMode) {}

void NcCodeMovement::append(NcCodeCoordinateType type, double value) { m_coordinates.emplace_back(type, value); }

void NcCodeMovement::append(Orvo::AxisName const& axisName, Orvo::AxisValue const& axisValue) {
  m_coordinates.emplace_back(axisName, axisValue);
}

}  // namespace machine
