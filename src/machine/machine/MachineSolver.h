#pragma once
// A Machine that can also be driven from the tool's side: given where the
// tool tip is wanted in table coordinates, it finds axis positions and moves
// itself there. The solving is done by its subclasses.
//
// A solver is a copy of the machine it was made from, so moving it never
// disturbs that machine.

#include <optional>

#include "machine/machine/Machine.h"
#include "util/utility/Distance.h"
#include "util/utility/math/Frame.h"
#include "util/utility/math/Point3D.h"
#include "util/utility/math/Vector3D.h"

namespace machine {

class MachineSolver : public Machine {
public:
  using Distance = Orvo::NamedCheckedImplicitType<double, Orvo::DistanceParameter, Orvo::NonNegativeDoubleCheck>;

  ~MachineSolver() override;

  /// Moves the tool tip to `point` (table coordinates). Empty when the axes
  /// could not be solved; else the distance left between tip and point.
  std::optional<Distance> moveToolTipTo(Orvo::Point3D const& point) { return doMoveToolTipTo(point); }
  /// The head's attachment as seen from a tool coordinate system whose
  /// origin is the tool tip.
  void setToolReferenceFrame(Orvo::Frame const& frame);
  Orvo::Frame const& toolReferenceFrame() const noexcept { return m_toolReferenceFrame; }

  /// The tool tip at the present positions, in table coordinates.
  Orvo::Point3D toolTipPoint() const;
  Orvo::Frame headAttachFrameInTableCs() const;
  /// The Z axis of the head's attach frame; the tool reference frame plays no part.
  Orvo::Vector3D toolAxisInTableCs() const;

protected:
  /// A copy of `machine`, ordering and positions included.
  explicit MachineSolver(Machine const& machine);

  /// At least `count` ordered parts, and the first `count` of them have
  /// linear axes: what the linear solvers need to solve.
  bool areFirstAxesLinear(int count) const;

private:
  virtual std::optional<Distance> doMoveToolTipTo(Orvo::Point3D const& point) = 0;
  virtual void doOnToolReferenceFrameChanged();
  virtual bool doAreAxesCompatible() const = 0;

  Orvo::Transform3D headToTable() const;
  Orvo::Point3D tableCoordinatesFromHeadCoordinates(Orvo::Point3D const& point) const;

  Orvo::Frame m_toolReferenceFrame;
};

}  // namespace machine
