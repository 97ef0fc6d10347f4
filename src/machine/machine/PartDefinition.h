#pragma once
// One node of the static part tree of a machine: what kind of part it is,
// where its children attach, which axis moves it, and what it carries.
//
// The tree is changed only through attachPart, detachPart and editPart (and
// addChild while it is built), which check that the pointers handed in belong
// to this tree.

#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "machine/machine/AxisDefinition.h"
#include "machine/machine/CopyTag.h"
#include "machine/machine/DisplayName.h"
#include "machine/machine/PartType.h"
#include "machine/machine/SpindleDefinition.h"
#include "machine/machine/ToolStationDefinition.h"
#include "machine/machine/TurretDefinition.h"
#include "nc/MachinePartId.h"
#include "util/utility/Subrange.h"
#include "util/utility/math/Frame.h"

namespace machine {

class PartDefinition {
public:
  using ChildVector = std::vector<std::unique_ptr<PartDefinition>>;
  using ConstChildRange = Orvo::Subrange<Orvo::DereferenceIterator<ChildVector::const_iterator, PartDefinition const>>;

  /// Identity attach frame, nothing else set.
  PartDefinition(Orvo::MachinePartId const& identifier, PartType type);
  /// An empty frame leaves the identity. Only LINEAR and ROTARY parts may
  /// carry an axis definition.
  PartDefinition(Orvo::MachinePartId const& identifier, PartType type, std::optional<Orvo::Frame> const& attachFrame,
                 std::optional<SpindleDefinition> const& spindle,
                 std::optional<ToolStationDefinition> const& toolStation, std::unique_ptr<AxisDefinition> axis);
  /// A deep copy of the subtree; each new child gets the new node as parent.
  PartDefinition(CopyTag, PartDefinition const& other);
  /// A copy of this one node with no parent and no children.
  PartDefinition(CopyWithoutChildrenTag, PartDefinition const& other);

  PartDefinition(PartDefinition const&) = delete;
  PartDefinition& operator=(PartDefinition const&) = delete;
  ~PartDefinition();

  // Queries.
  PartType type() const noexcept { return m_type; }
  Orvo::Frame const& attachFrame() const noexcept { return m_attachFrame; }
  AxisDefinition const* axisDefinition() const noexcept { return m_axisDefinition.get(); }
  std::optional<SpindleDefinition> const& spindleDefinition() const noexcept { return m_spindle; }
  std::optional<ToolStationDefinition> const& toolStationDefinition() const noexcept { return m_toolStation; }
  std::optional<TurretDefinition> const& turretDefinition() const noexcept { return m_turret; }
  std::optional<DisplayName> const& displayName() const noexcept { return m_displayName; }
  Orvo::MachinePartId identifier() const { return m_identifier; }
  Orvo::MachinePartId const& id() const noexcept { return m_identifier; }

  ConstChildRange children() const { return Orvo::makeDereferencedRange<PartDefinition const>(m_children); }
  /// The parent, or null when the parent is the hidden root of a tree.
  PartDefinition const* parent() const noexcept;

  /// This node first, then depth first through the children in order.
  std::optional<PartDefinition const*> find(Orvo::MachinePartId const& identifier) const;
  /// This node if it has that type, else the first match depth first, else null.
  PartDefinition const* findByType(PartType type) const;
  /// HEAD or TABLE for those; else the first HEAD or TABLE a child reports,
  /// children in order; else STATIC.
  PartType chainType() const;
  bool isTurretPart() const noexcept { return m_type == PartType::ROTARY && m_turret.has_value(); }
  /// Calls `visit` on this node and each ancestor, stopping before the root.
  void visitChainToBase(std::function<void(PartDefinition const&)> const& visit) const;

  // Changes.
  void setAttachFrame(Orvo::Frame const& frame) noexcept { m_attachFrame = frame; }
  void setSpindleDefinition(std::optional<SpindleDefinition> const& spindle) { m_spindle = spindle; }
  void setToolStationDefinition(std::optional<ToolStationDefinition> const& station) { m_toolStation = station; }
  void setTurretDefinition(std::optional<TurretDefinition> const& turret) { m_turret = turret; }
  void setDisplayName(std::optional<DisplayName> const& name) { m_displayName = name; }
  /// Replaces the axis and sets the type from it: LINEAR, ROTARY, or STATIC
  /// for a null pointer.
  void setAxisDefinition(std::unique_ptr<AxisDefinition> axis);
  /// Appends a child and makes this node its parent.
  void addChild(std::unique_ptr<PartDefinition> child);
  /// Adds `part` below `parent`, which must be a node of this tree.
  void attachPart(std::unique_ptr<PartDefinition> part, PartDefinition const* parent);
  /// Removes `part` (a node of this tree, not this node) from its parent and
  /// hands it back with its parent cleared; the other children keep their order.
  std::unique_ptr<PartDefinition> detachPart(PartDefinition const* part);
  /// Overwrites the settings of `existingPart` (a node of this tree) with
  /// those of `settings`, identifier included; its subtree stays.
  void editPart(PartDefinition const* existingPart, PartDefinition const& settings);

private:
  PartDefinition* findNonConst(PartDefinition const* part);
  /// Takes a direct child out of m_children, keeping the others' order.
  std::unique_ptr<PartDefinition> removeChild(PartDefinition const* child);
  void copySettingsFrom(PartDefinition const& other);

  PartType m_type;
  Orvo::Frame m_attachFrame;
  std::optional<SpindleDefinition> m_spindle;
  std::optional<ToolStationDefinition> m_toolStation;
  std::optional<TurretDefinition> m_turret;
  std::optional<DisplayName> m_displayName;
  PartDefinition* m_parent = nullptr;
  ChildVector m_children;
  Orvo::MachinePartId m_identifier;
  std::unique_ptr<AxisDefinition> m_axisDefinition;
};

}  // namespace machine
