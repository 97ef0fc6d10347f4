#pragma once
// A machine that can be moved: a tree of runtime parts built from its own
// deep copies of a kinematics definition and a controller configuration.
// Given axis positions it answers forward kinematics; it keeps the order in
// which an NC program names its axes, and makes the solver that fits it.
//
// One thread at a time, queries included: forward kinematics fills caches
// inside const operations.

#include <memory>
#include <optional>
#include <vector>

#include "machine/machine/Axis.h"
#include "machine/machine/ControllerConfiguration.h"
#include "machine/machine/CopyTag.h"
#include "machine/machine/KinematicsDefinition.h"
#include "machine/machine/MachineSpecification.h"
#include "machine/machine/NcCodeKinematicInterpolationMode.h"
#include "machine/machine/Part.h"
#include "machine/machine/PartDefinition.h"
#include "nc/AxisName.h"
#include "nc/AxisOrdering.h"
#include "nc/AxisValue.h"
#include "nc/AxisValues.h"
#include "nc/MachinePartId.h"
#include "util/utility/math/Frame.h"

namespace machine {

class MachineSolver;

class Machine {
public:
  /// With a default controller configuration; live tool.
  explicit Machine(KinematicsDefinition const& kinematics);
  /// Live tool.
  Machine(KinematicsDefinition const& kinematics, ControllerConfiguration const& configuration);
  /// Throws std::bad_optional_access when the configuration names a head or
  /// table that is not in the kinematics.
  explicit Machine(MachineSpecification const& specification);
  /// A deep copy with the other's ordering and axis positions.
  Machine(CopyTag, Machine const& other);
  Machine(Machine const&) = delete;
  Machine& operator=(Machine const&) = delete;
  virtual ~Machine();

  KinematicsDefinition const* kinematicsDefinition() const noexcept { return &m_kinematicsDefinition; }
  ControllerConfiguration const* controllerConfiguration() const noexcept { return &m_controllerConfiguration; }

  Part const* headPart() const noexcept { return m_headPart; }
  Part const* tablePart() const noexcept { return m_tablePart; }
  /// The root part's children.
  Part::ChildVector const& baseParts() const noexcept { return m_rootPart.children(); }
  /// Every part but the root, depth first in pre-order.
  std::vector<Part const*> allParts() const;
  std::vector<Part*> allPartsNonConst();
  std::optional<Part const*> find(Orvo::MachinePartId const& identifier) const { return m_rootPart.find(identifier); }
  std::optional<Part*> findPartByName(Orvo::AxisName const& name) const { return m_rootPart.findPartByName(name); }
  std::vector<Part const*> staticParts() const;
  /// The axes that do not take part in TCP; only rotary axes can be such.
  std::vector<Axis const*> nonTcpAxes() const;

  Orvo::AxisOrdering const& axisOrdering() const noexcept { return m_axisOrdering; }
  /// An ordering naming a part that isn't in the machine leaves the machine
  /// with an empty ordering, silently.
  void setAxisOrdering(Orvo::AxisOrdering const& ordering);
  /// Every axis: primary linear axes first, then by control type, then by
  /// identifier.
  Orvo::AxisOrdering fullOrdering() const;
  int numOrderedParts() const noexcept { return static_cast<int>(m_orderedParts.size()); }
  Part const* orderedPart(int index) const;
  /// The first ordered part whose axis has that name, or null.
  Part const* orderedPartByName(Orvo::AxisName const& name) const;
  /// The value of each ordered part.
  Orvo::AxisValues axisValues() const;

  /// False, moving nothing, when the size is not that of the ordering. No
  /// limit is checked.
  bool moveTo(Orvo::AxisValues const& values);
  /// `part` must be a part of this machine.
  void moveAxis(Part const* part, Orvo::AxisValue value);
  /// Every axis to its home, ordered or not.
  void moveToHome();

  /// The head's attach frame in machine coordinates, through the head's own
  /// motion; the identity frame without a head.
  Orvo::Frame headAttachFrame() const;
  Orvo::Frame tableAttachFrame() const;
  Orvo::Frame headAttachFrameAsModelled() const;
  Orvo::Frame tableAttachFrameAsModelled() const;

  /// SYNCHRONIZED when no rotary axis is a TCP axis, TCP_ONLY when all are,
  /// MIXED otherwise.
  NcCodeKinematicInterpolationMode interpolationMode() const;

  /// The solver for the linear axes on the head and table chains: two give a
  /// TwoLinearPlusSolver, three or more a ThreeLinearPlusIkSolver, fewer null.
  std::unique_ptr<MachineSolver> makeMachineSolver() const;

protected:
  /// axisValues() into `values`, whose storage is kept when it has the size
  /// of the ordering: for a caller that reads the positions on every move.
  void readAxisValues(Orvo::AxisValues& values) const;
  /// Whether the ordered parts from index `first` on stand exactly at the
  /// positions in `values` (as AxisValues compares, so never at a NaN); false
  /// when `values` is not of the ordering's size. Inline: a cached solve asks
  /// this every time.
  bool orderedPartsStandAt(Orvo::AxisValues const& values, int first) const {
    std::size_t const size = m_orderedParts.size();
    if (values.values().size() != size) return false;
    Orvo::AxisValue const* const raw = values.values().data();
    Part const* const* const parts = m_orderedParts.data();
    for (std::size_t i = static_cast<std::size_t>(first); i < size; ++i) {
      std::optional<Axis> const& axis = parts[i]->axis();
      if (__builtin_expect(!axis, 0)) return orderedPartsWithoutAxesStandAt(values, first);
      if (axis->value().value() != raw[i].value()) return false;
    }
    return true;
  }
  /// moveTo for the one ordered part `index`, which must exist.
  void moveOrderedPart(int index, Orvo::AxisValue value) {
    m_orderedParts[static_cast<std::size_t>(index)]->setAxisValue(value);
  }

private:
  struct BuildTag {};
  Machine(BuildTag, KinematicsDefinition const& kinematics, ControllerConfiguration const& configuration);

  virtual void doOnAxisOrderingChanged();

  static int axisSortPriority(std::optional<Axis> const& axis);
  /// orderedPartsStandAt() for an ordering with a part that has no axis:
  /// such a part reads as 0, as in axisValues(), which fails the same
  /// assertion.
  bool orderedPartsWithoutAxesStandAt(Orvo::AxisValues const& values, int first) const;
  void addDescendantsToPart(Part& part, PartDefinition::ConstChildRange const& definitions);
  void setHeadTableParts();

  KinematicsDefinition m_kinematicsDefinition;
  ControllerConfiguration m_controllerConfiguration;
  Part* m_headPart = nullptr;
  Part* m_tablePart = nullptr;
  PartDefinition m_rootDefinition;
  Part m_rootPart;
  Orvo::AxisOrdering m_axisOrdering;
  std::vector<Part*> m_orderedParts;
};

}  // namespace machine
