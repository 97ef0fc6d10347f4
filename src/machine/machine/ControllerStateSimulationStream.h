#pragma once
// A link that remembers whether TCP mode and a tilted work plane are on, for
// the links derived from it. The state is set before the event is handed
// on, so the next stream has seen the event when a subclass's code goes on.

#include <memory>

#include "machine/machine/ForwardingSimulationStream.h"

namespace machine {

class ControllerStateSimulationStream : public ForwardingSimulationStream {
public:
  enum class TCPMode : int { UNDEFINED = 0, OFF = 1, ON = 2 };
  enum class TWPMode : int { UNDEFINED = 0, OFF = 1, ON = 2 };

  explicit ControllerStateSimulationStream(std::unique_ptr<SimulationStream> stream);
  ~ControllerStateSimulationStream() override;

  TCPMode tcpMode() const noexcept { return m_tcpMode; }
  TWPMode tiltedWorkPlane() const noexcept { return m_tiltedWorkPlane; }

protected:
  void doOnTCPCoordMode(bool on) override;
  /// An active plane also fixes an undefined TCP mode as off.
  void doOnTiltedWorkPlane(NcCodeTiltedWorkPlane const& plane) override;

private:
  TWPMode m_tiltedWorkPlane = TWPMode::UNDEFINED;
  TCPMode m_tcpMode = TCPMode::UNDEFINED;
};

}  // namespace machine
