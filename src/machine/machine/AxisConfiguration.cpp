#include "machine/machine/AxisConfiguration.h"

namespace machine {

AxisConfiguration::AxisConfiguration(CopyTag, AxisConfiguration const& other) : AxisConfiguration(other) {}

AxisConfiguration::~AxisConfiguration() = default;

bool operator==(AxisConfiguration const& a, AxisConfiguration const& b) {
  return a.m_isReversed == b.m_isReversed && a.m_zeroPositionOffset == b.m_zeroPositionOffset &&
         a.m_whenToReset == b.m_whenToReset && a.m_home == b.m_home && a.m_restrictedRange == b.m_restrictedRange &&
         a.m_name == b.m_name && a.m_maxNormalSpeed == b.m_maxNormalSpeed &&
         a.m_maxRapidSpeed == b.m_maxRapidSpeed && a.m_coordinate == b.m_coordinate && a.m_tcp == b.m_tcp &&
         a.m_preference == b.m_preference && a.m_wrapAroundAtRange == b.m_wrapAroundAtRange;
}

}  // namespace machine
