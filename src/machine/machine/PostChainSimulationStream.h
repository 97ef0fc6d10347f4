#pragma once
// The standard post chain, the one chain the library wires by itself: the
// head a post-processor run talks to, then
//   CatchErrorsSimulationStream        illegal TCP and tilted-plane changes
//   RadiusCompensationSimulationStream cutter compensation of Operation sections
//   SolverSimulationStream             axis values from the machine's solver
// and the application's own stream at the end. The head owns the chain.

#include <memory>

#include "machine/machine/ForwardingSimulationStream.h"
#include "machine/machine/MachineSolver.h"

namespace machine {

class PostChainSimulationStream : public ForwardingSimulationStream {
public:
  /// Takes both; `stream` ends the chain, `solver` goes to its solver link.
  PostChainSimulationStream(std::unique_ptr<SimulationStream> stream, std::unique_ptr<MachineSolver> solver);
  ~PostChainSimulationStream() override;
};

}  // namespace machine
