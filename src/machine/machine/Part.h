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
  /// Inline: every move of the machine comes through here, once an axis.
  void setAxisValue(Orvo::AxisValue value) {
    if (!m_axis) return;
    if (value != m_axis->value()) {
      m_axis->setValue(value);
      invalidateTransforms();
    }
  }

  /// The motion from this part's own coordinates to the machine base.
  Orvo::Transform3D const& transform3DFromBase() const {
    if (!m_transformValid) calculateTransform();
    return m_transformFromBase;
  }
  /// A frame given in this part's coordinates, in the base's:
  /// frame.transformedBy(transform3DFromBase()), bringing the cache up to date
  /// on the way.
  Orvo::Frame frameInBase(Orvo::Frame const& frame) const;
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
  /// Brings this invalid part and its invalid ancestors up to date, and
  /// gives this part's transform as a value.
  Orvo::Transform3D updatedTransform() const;
  /// This part's transform from base, given its parent's.
  Orvo::Transform3D transformFromParent(Orvo::Transform3D const& parent) const;
  /// The transform of the machine's root, which has no parent.
  Orvo::Transform3D rootTransform() const;
  void invalidateTransforms() noexcept {
    // The invariant guarantees an invalid part has an invalid subtree.
    if (m_transformValid) invalidateValidSubtree();
  }
  void invalidateValidSubtree() noexcept;

  PartDefinition const* m_definition;
  Part* m_parent = nullptr;
  std::optional<Axis> m_axis;
  ChildVector m_children;
  // Filled by const queries: see Axis for why that is sound here.
  mutable bool m_transformValid = false;
  mutable Orvo::Transform3D m_transformFromBase;

  // Worked out once from the definition, because every transform update
  // reads them: where this part's children attach, as a motion, and whether
  // that is the identity; and whether the axis only translates (a linear
  // axis), so that composing with its motion keeps the rotation as it is.
  // Like the axis cache, they follow the machine's own definitions, which
  // do not change under a standing machine.
  Orvo::Transform3D m_attachTransform;
  bool m_attachIsIdentity = true;
  bool m_axisTranslates = false;
};

}  // namespace machine
