#include "machine/machine/IssueCheckingSimulationStream.h"

namespace machine {

IssueCheckingSimulationStream::IssueCheckingSimulationStream(std::unique_ptr<SimulationStream> stream)
    : ForwardingSimulationStream(std::move(stream)) {}

IssueCheckingSimulationStream::~IssueCheckingSimulationStream() = default;

void IssueCheckingSimulationStream::doOnIssue(IssueCode code, std::string const& message) {
  if (severityOfIssue(code).isError()) m_simulationErrors.emplace_back(code, message);
}

}  // namespace machine
