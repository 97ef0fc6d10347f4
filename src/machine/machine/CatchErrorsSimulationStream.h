#pragma once
// A link that turns illegal mode changes into issues. The change itself is
// handed on first, so the next stream has the new mode when the issue
// arrives, and the run goes on:
//   14  a tilted work plane switched on while TCP is on
//   15  TCP switched on while a tilted work plane is on
//   16  TCP switched while radius compensation is applied
//   17  a tilted work plane switched while radius compensation is applied
// One event may raise two of them. The issues go through this stream's own
// guard and then down the chain.
//
// The compensation checks look at the next stream as it stands at
// construction: only when that is a RadiusCompensationSimulationStream are
// they made. A link placed between the two turns them off without a word.

#include <memory>

#include "machine/machine/ControllerStateSimulationStream.h"
#include "machine/machine/RadiusCompensationSimulationStream.h"

namespace machine {

class CatchErrorsSimulationStream : public ControllerStateSimulationStream {
public:
  /// `stream`, the next stream, must not be null.
  explicit CatchErrorsSimulationStream(std::unique_ptr<SimulationStream> stream);
  ~CatchErrorsSimulationStream() override;

  /// The compensation stream behind this one, if it stands right behind.
  RadiusCompensationSimulationStream const* radiusCompensationStream() const noexcept {
    return m_radiusCompensationStream;
  }

private:
  void doOnTCPCoordMode(bool on) override;
  void doOnTiltedWorkPlane(NcCodeTiltedWorkPlane const& plane) override;

  bool isCompensating() const noexcept;

  RadiusCompensationSimulationStream* m_radiusCompensationStream = nullptr;
};

}  // namespace machine
