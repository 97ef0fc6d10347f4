#include "machine/machine/PostChainSimulationStream.h"

#include "machine/machine/CatchErrorsSimulationStream.h"
#include "machine/machine/RadiusCompensationSimulationStream.h"
#include "machine/machine/SolverSimulationStream.h"

namespace machine {

namespace {
// Built from the inside out. The order matters: the catch-errors link looks
// at its next stream when it is built and keeps a typed pointer to it only
// if it is the compensation stream.
std::unique_ptr<SimulationStream> standardChain(std::unique_ptr<SimulationStream> stream,
                                                std::unique_ptr<MachineSolver> solver) {
  auto solverStream = std::make_unique<SolverSimulationStream>(std::move(stream), std::move(solver));
  auto compensation = std::make_unique<RadiusCompensationSimulationStream>(std::move(solverStream));
  return std::make_unique<CatchErrorsSimulationStream>(std::move(compensation));
}
}  // namespace

PostChainSimulationStream::PostChainSimulationStream(std::unique_ptr<SimulationStream> stream,
                                                     std::unique_ptr<MachineSolver> solver)
    : ForwardingSimulationStream(standardChain(std::move(stream), std::move(solver))) {}

PostChainSimulationStream::~PostChainSimulationStream() = default;

}  // namespace machine
