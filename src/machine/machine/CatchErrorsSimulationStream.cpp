#include "machine/machine/CatchErrorsSimulationStream.h"

#include <string>

namespace machine {

namespace {
// Plain wide texts, not localised.
wchar_t const* const kTwpWhileTcpActive =
    L"Tilted Work Plane(TWP) mode must not be started when TCP is already active. The post-processor file needs "
    L"to be fixed.";
wchar_t const* const kTcpWhileTwpActive =
    L"Simulation does not currently support activating TCP mode when Tilted Work Plane (TWP) mode is active. To "
    L"use machine simulation the post-processor file will need to be adjusted to avoid this.";
wchar_t const* const kTcpChangeWhileCompensating =
    L"Cannot change TCP mode whilst radius compensation is being applied.";
wchar_t const* const kTwpChangeWhileCompensating =
    L"Cannot change TWP mode whilst radius compensation is being applied.";
}  // namespace

// The base asserts that the next stream is there.
CatchErrorsSimulationStream::CatchErrorsSimulationStream(std::unique_ptr<SimulationStream> stream)
    : ControllerStateSimulationStream(std::move(stream)),
      m_radiusCompensationStream(dynamic_cast<RadiusCompensationSimulationStream*>(forwardStream())) {}

CatchErrorsSimulationStream::~CatchErrorsSimulationStream() = default;

bool CatchErrorsSimulationStream::isCompensating() const noexcept {
  return m_radiusCompensationStream && m_radiusCompensationStream->isCompensating();
}

void CatchErrorsSimulationStream::doOnTCPCoordMode(bool on) {
  ControllerStateSimulationStream::doOnTCPCoordMode(on);
  if (tcpMode() == TCPMode::ON && tiltedWorkPlane() == TWPMode::ON)
    onIssue(IssueCode::TCP_WHILE_TWP_ACTIVE, std::wstring(kTcpWhileTwpActive));
  if (isCompensating()) onIssue(IssueCode::TCP_CHANGE_WHILE_COMPENSATING, std::wstring(kTcpChangeWhileCompensating));
}

void CatchErrorsSimulationStream::doOnTiltedWorkPlane(NcCodeTiltedWorkPlane const& plane) {
  ControllerStateSimulationStream::doOnTiltedWorkPlane(plane);
  // Switching a plane off while TCP is on is allowed.
  if (tcpMode() == TCPMode::ON && plane.isActive())
    onIssue(IssueCode::TWP_WHILE_TCP_ACTIVE, std::wstring(kTwpWhileTcpActive));
  if (isCompensating()) onIssue(IssueCode::TWP_CHANGE_WHILE_COMPENSATING, std::wstring(kTwpChangeWhileCompensating));
}

}  // namespace machine
