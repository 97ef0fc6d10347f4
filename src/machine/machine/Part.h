#pragma once
// One node of a runtime machine: a part definition, its axis if it moves,
// and its cached transform from the machine base.
//
// Caching: a part's transform is valid only if its parent's is, so a move
// invalidates the moved part's subtree and nothing else, and the walk stops
// at a part that is already invalid.

#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "machine/machine/Axis.h"
#include "machine/machine/AxisConfiguration.h"
#include "machine/machine/DisplayName.h"
#include "machine/machine/PartDefinition.h"
#include "nc/AxisInfo.h"
#include "nc/AxisName.h"
#include "nc/AxisValue.h"
#include "nc/MachinePartId.h"
#include "util/utility/Subrange.h"
#include "util/utility/math/Transform3D.h"

namespace machine {

class Part {
public:
  using ChildVector = std::vector<std::unique_ptr<Part>>;
  using ChildRange = Orvo::Subrange<Orvo::DereferenceIterator<ChildVector::iterator, Part>>;

  /// An axis is made when the definition has an axis definition.
  Part(PartDefinition const* definition, AxisConfiguration const* configuration);
  Part(Part const&) = delete;
  Part& operator=(Part const&) = delete;
  ~Part();

  PartDefinition const* definition() const;
  std::optional<Axis> const& axis() const noexcept { return m_axis; }
  /// Empty without an axis; an unnamed axis gets the empty name.
  std::optional<Orvo::AxisInfo> axisInfo() const;
  /// The axis's name, else the definition's display name, else the identifier.
  DisplayName displayName() const;
  /// Null for a base part: the machine's hidden root is never handed out.
  Part const* parent() const noexcept;

  /// Searches the descendants, not this part; each child is tested before
  /// its own children are searched.
  std::optional<Part const*> find(Orvo::MachinePartId const& identifier) const;
  std::optional<Part*> findNonConst(Orvo::MachinePartId const& identifier);
  /// The same walk, for a part whose axis has that name.
  std::optional<Part*> findPartByName(Orvo::AxisName const& name) const;

  ChildRange nonConstChildren() { return Orvo::makeDereferencedRange<Part>(m_children); }
  ChildVector const& children() const noexcept { return m_children; }
  /// Makes this part the child's parent and appends it.
  void addChild(std::unique_ptr<Part> child);

  /// Dropped on a part without an axis. A value equal to the present one
  /// leaves every cache valid; another invalidates this subtree.
  void setAxisValue(Orvo::AxisValue value);

  /// The motion from this part's own coordinates to the machine base.
  Orvo::Transform3D const& transform3DFromBase() const {
    if (!m_transformValid) calculateTransform();
    return m_transformFromBase;
  }
  /// As modelled: no axis motion anywhere. Not cached.
  Orvo::Transform3D transform3DFromBaseAsModelled() const;
  bool transformValid() const noexcept { return m_transformValid; }

  /// Calls `visit` on this part and then on each parent(), the root left out.
  void visitChainToBase(std::function<void(Part const&)> const& visit) const { visitChainToBase(this, visit); }
  /// The same from `part`, which may be null: then nothing is visited. A
  /// static form, so that a missing head or table is a plain null argument
  /// rather than a call through a null pointer.
  static void visitChainToBase(Part const* part, std::function<void(Part const&)> const& visit);

private:
  // The machine tells its own parts from others' by their root.
  friend class Machine;

  template <typename Self, typename Match>
  static std::optional<Part*> findImpl(Self& self, Match const& match);

  void calculateTransform() const;
  void invalidateTransforms() noexcept;

  PartDefinition const* m_definition;
  Part* m_parent = nullptr;
  std::optional<Axis> m_axis;
  ChildVector m_children;
  // Filled by const queries: see Axis for why that is sound here.
  mutable bool m_transformValid = false;
  mutable Orvo::Transform3D m_transformFromBase;
};

}  // namespace machine
