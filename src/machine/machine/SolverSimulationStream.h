#pragma once
// The link that holds the machine solver. NC-code movements, in machine axes
// or in post coordinates, become axis values and a tool-tip motion in table
// coordinates here; a retract along the tool axis is worked out here; and a
// producer's placeholder axis values are replaced by solved ones, for the
// end point of the motion that follows them.
//
// Plain motions (onLinear, onRapid, onHelical and their 5D forms) pass
// through unconverted: they only solve a pending placeholder and record the
// feed. The solver's machine is the stream's memory of where the tool is.

#include <memory>
#include <optional>

#include "machine/machine/ControllerStateSimulationStream.h"
#include "machine/machine/MachineSolver.h"
#include "machine/machine/NcCodeFeedrate.h"
#include "machine/machine/PostToTableTransformer.h"
#include "nc/AxisValues.h"

namespace machine {

class SolverSimulationStream : public ControllerStateSimulationStream {
public:
  /// Both must be non-null. The machine starts at its home pose.
  SolverSimulationStream(std::unique_ptr<SimulationStream> forward, std::unique_ptr<MachineSolver> solver);
  ~SolverSimulationStream() override;

  /// The solver, for reading the machine's state between events.
  MachineSolver const* solver() const noexcept { return m_solver.get(); }
  PostToTableTransformer const& postToTable() const noexcept { return m_postToTable; }
  /// The feed of the last event that carried one.
  std::optional<NcCodeFeedrate> const& lastFeedrate() const noexcept { return m_lastFeedrate; }

  /// A placeholder: at least two values, the first NaN.
  static bool isPlaceholder(Orvo::AxisValues const& values) noexcept;

private:
  void doOnAxisOrdering(Orvo::AxisOrdering const& ordering) override;
  void doOnAxisValues(Orvo::AxisValues const& values) override;
  void doOnSection(SectionType type) override;
  void doOnTaggedFrame(Orvo::TaggedFrame const& frame) override;
  void doOnLinear(Orvo::Point3D const& target, double feed, MotionSettings const& settings) override;
  void doOnRapid(Orvo::Point3D const& target, MotionSettings const& settings) override;
  void doOnHelical(Orvo::Helix const& helix, Orvo::Point3D const& end, double feed,
                   MotionSettings const& settings) override;
  void doOnLinear5D(Orvo::Point3D const& target, Orvo::Vector3D const& toolAxis, double feed,
                    MotionSettings const& settings) override;
  void doOnRapid5D(Orvo::Point3D const& target, Orvo::Vector3D const& toolAxis,
                   MotionSettings const& settings) override;
  void doOnNcCodeMovement(NcCodeMovement const& movement) override;
  void doOnTCPCoordMode(bool on) override;
  void doOnTiltedWorkPlane(NcCodeTiltedWorkPlane const& plane) override;
  void doOnRetractAlongToolAxisToLimit() override;

  void calculateTargetsForCartesian(NcCodeMovement const& movement, Orvo::AxisValues& axes, Orvo::Point3D& target);
  void calculateTargetsForMachineAxes(NcCodeMovement const& movement, Orvo::AxisValues& axes,
                                      Orvo::Point3D& target);
  void calculateWCSOffset();
  void resetWCSOffset() noexcept;
  void handlePendingAxisValues(Orvo::Point3D target);
  /// Feed moves at rapid rate keep no feed of their own.
  void recordLinearFeed(double feed, MotionSettings const& settings);

  std::unique_ptr<MachineSolver> m_solver;
  PostToTableTransformer m_postToTable;
  bool m_hasPendingAxisValues = false;
  Orvo::AxisValues m_pendingAxisValues;
  std::optional<NcCodeFeedrate> m_lastFeedrate;
  double m_wcsOffset[3] = {0.0, 0.0, 0.0};
};

}  // namespace machine
