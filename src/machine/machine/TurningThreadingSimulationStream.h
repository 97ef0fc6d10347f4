#pragma once
// A link that turns a turning machine's spindle axis ("C") during a
// threading pass, from the travel in "Z" and the pitch of the last tool:
// between the start-threading and end-threading commands each axis values
// event gets C = the accumulated 360 degrees per pitch of Z travel (the
// other way after a counterclockwise spindle command). A move with no Z
// change keeps the C it came with. Outside threading, and on a machine
// without C or Z, axis values pass unchanged; Z is still followed, so that
// the first threading move counts from the last pose.

#include <memory>
#include <optional>

#include "machine/machine/ForwardingSimulationStream.h"
#include "nc/NCTool.h"

namespace machine {

class TurningThreadingSimulationStream : public ForwardingSimulationStream {
public:
  explicit TurningThreadingSimulationStream(std::unique_ptr<SimulationStream> stream);
  ~TurningThreadingSimulationStream() override;

  bool isThreading() const noexcept { return m_inThreading; }
  /// The accumulated spindle angle of the present pass, in degrees.
  double spindleAngle() const noexcept { return m_spindleAngle; }

private:
  void doOnAxisOrdering(Orvo::AxisOrdering const& ordering) override;
  void doOnAxisValues(Orvo::AxisValues const& values) override;
  void doOnCommand(SimulationStreamCommand const& command) override;
  void doOnNCTool(Orvo::NCTool const& tool) override;

  bool m_inThreading = false;
  std::optional<int> m_zAxisIndex;
  std::optional<int> m_spindleAxisIndex;
  double m_lastZ = 0.0;
  bool m_reversed = false;
  double m_spindleAngle = 0.0;
  Orvo::NCTool m_tool;
};

}  // namespace machine
