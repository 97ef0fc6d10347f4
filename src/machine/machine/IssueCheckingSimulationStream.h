#pragma once
// A link that keeps the error issues for the application and hands no issue
// on: warnings are dropped, and a stream behind this one sees no issues at
// all. Every other event goes on unchanged.

#include <memory>
#include <vector>

#include "machine/machine/ForwardingSimulationStream.h"
#include "machine/machine/SimulationError.h"

namespace machine {

class IssueCheckingSimulationStream : public ForwardingSimulationStream {
public:
  explicit IssueCheckingSimulationStream(std::unique_ptr<SimulationStream> stream);
  ~IssueCheckingSimulationStream() override;

  /// The errors so far, in order of arrival; read between events.
  std::vector<SimulationError> const& simulationErrorRange() const noexcept { return m_simulationErrors; }

private:
  void doOnIssue(IssueCode code, std::string const& message) override;

  std::vector<SimulationError> m_simulationErrors;
};

}  // namespace machine
