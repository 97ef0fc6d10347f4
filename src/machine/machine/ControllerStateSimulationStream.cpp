#include "machine/machine/ControllerStateSimulationStream.h"

namespace machine {

ControllerStateSimulationStream::ControllerStateSimulationStream(std::unique_ptr<SimulationStream> stream)
    : ForwardingSimulationStream(std::move(stream)) {}

ControllerStateSimulationStream::~ControllerStateSimulationStream() = default;

void ControllerStateSimulationStream::doOnTCPCoordMode(bool on) {
  m_tcpMode = on ? TCPMode::ON : TCPMode::OFF;
  forwardStream()->onTCPCoordMode(on);
}

void ControllerStateSimulationStream::doOnTiltedWorkPlane(NcCodeTiltedWorkPlane const& plane) {
  bool const active = plane.isActive();
  m_tiltedWorkPlane = active ? TWPMode::ON : TWPMode::OFF;
  if (m_tcpMode == TCPMode::UNDEFINED && active) m_tcpMode = TCPMode::OFF;
  forwardStream()->onTiltedWorkPlane(plane);
}

}  // namespace machine
