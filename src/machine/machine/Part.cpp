#include "machine/machine/Part.h"

#include "machine/machine/LinearAxisDefinition.h"
#include "util/utility/Basic.h"

namespace {
constexpr char const* orvoAssertSourcePath = "machine\\machine\\Part";

// compose(p, local), cheaper when `local` is a pure translation, as a linear
// axis's motion is, with the same bits.
Orvo::Transform3D composeWith(Orvo::Transform3D const& p, Orvo::Transform3D const& local) {
  if (local.hasIdentityRotation()) return p.composedWithTranslation(local);
  return compose(p, local);
}

}  // namespace

namespace machine {

Part::Part(PartDefinition const* definition, AxisConfiguration const* configuration) : m_definition(definition) {
  ORVO_ASSERT(m_definition);
  if (!m_definition) return;
  if (m_definition->axisDefinition()) {
    m_axis.emplace(m_definition->axisDefinition(), configuration);
    m_axisTranslates = dynamic_cast<LinearAxisDefinition const*>(m_definition->axisDefinition()) != nullptr;
  }
  Orvo::Frame const& attach = m_definition->attachFrame();
  m_attachIsIdentity = attach == Orvo::Frame(Orvo::IdentityTag{});
  m_attachTransform = Orvo::frameToWorld(attach);
}

Part::~Part() = default;

PartDefinition const* Part::definition() const {
  ENSURES(m_definition);
  return m_definition;
}

std::optional<Orvo::AxisInfo> Part::axisInfo() const {
  if (!m_axis) return std::nullopt;
  return Orvo::AxisInfo(m_definition->identifier(), m_axis->name().value_or(Orvo::AxisName("")));
}

DisplayName Part::displayName() const {
  if (m_axis) {
    if (auto const name = m_axis->name()) return DisplayName(name->name());
  }
  if (auto const& shown = m_definition->displayName()) return *shown;
  return DisplayName(m_definition->identifier().id());
}

Part const* Part::parent() const noexcept {
  if (!m_parent || m_parent->m_definition->type() == PartType::ROOT) return nullptr;
  return m_parent;
}

template <typename Self, typename Match>
std::optional<Part*> Part::findImpl(Self& self, Match const& match) {
  for (auto const& child : self.m_children) {
    if (match(*child)) return child.get();
    if (auto found = findImpl(*child, match)) return found;
  }
  return std::nullopt;
}

std::optional<Part const*> Part::find(Orvo::MachinePartId const& identifier) const {
  auto const found = findImpl(*this, [&](Part const& p) { return p.m_definition->id() == identifier; });
  if (!found) return std::nullopt;
  return *found;
}

std::optional<Part*> Part::findNonConst(Orvo::MachinePartId const& identifier) {
  return findImpl(*this, [&](Part const& p) { return p.m_definition->id() == identifier; });
}

std::optional<Part*> Part::findPartByName(Orvo::AxisName const& name) const {
  return findImpl(*this, [&](Part const& p) {
    if (!p.m_axis) return false;
    auto const axisName = p.m_axis->name();
    return axisName && *axisName == name;
  });
}

void Part::addChild(std::unique_ptr<Part> child) {
  child->m_parent = this;
  // A part moved under a new parent has no valid place yet.
  child->invalidateTransforms();
  m_children.push_back(std::move(child));
}

void Part::invalidateValidSubtree() noexcept {
  // Down a chain of single children in a loop: machines are mostly chains.
  Part* part = this;
  while (part->m_transformValid) {
    part->m_transformValid = false;
    if (part->m_children.size() != 1) {
      for (auto const& child : part->m_children) child->invalidateTransforms();
      return;
    }
    part = part->m_children.front().get();
  }
}

// Flattened so that the compositions are inlined here: they are the whole
// cost of forward kinematics, and a call to each costs about as much as the
// arithmetic. For the same reason the invalid stretch of the chain is walked
// in a loop rather than by recursion through the parents, and the transform
// just computed is handed to the next part down as a value, not read back
// from the cache it was stored in: a read of a store that is still in flight,
// in other pieces than it was written in, stalls the processor for longer
// than a composition takes.
[[gnu::flatten]] void Part::calculateTransform() const {
  if (!m_transformValid) (void)updatedTransform();
}

// The frame is carried by the transform just computed, as a value, for the
// same reason: the cache was written a moment ago.
[[gnu::flatten]] Orvo::Frame Part::frameInBase(Orvo::Frame const& frame) const {
  if (m_transformValid) return frame.transformedBy(m_transformFromBase);
  return frame.transformedBy(updatedTransform());
}

Orvo::Transform3D Part::updatedTransform() const {
  // This part and its invalid ancestors, nearest first; above them all is
  // valid (a valid part has valid ancestors) or the root's parent, null.
  constexpr int kStretch = 32;
  Part const* stretch[kStretch];
  int count = 0;
  for (Part const* part = this; part && !part->m_transformValid; part = part->m_parent) {
    if (count == kStretch) {
      // A deeper tree: the rest of the way up by recursion.
      part->calculateTransform();
      break;
    }
    stretch[count++] = part;
  }
  Part const* const top = stretch[count - 1];
  Orvo::Transform3D running =
      top->m_parent ? top->transformFromParent(top->m_parent->m_transformFromBase) : top->rootTransform();
  top->m_transformFromBase = running;
  top->m_transformValid = true;
  for (int i = count - 2; i >= 0; --i) {
    running = stretch[i]->transformFromParent(running);
    stretch[i]->m_transformFromBase = running;
    stretch[i]->m_transformValid = true;
  }
  return running;
}

Orvo::Transform3D Part::rootTransform() const {
  // The root: no parent, no placement, and no axis.
  return m_axis ? m_axis->transformation() : Orvo::Transform3D();
}

Orvo::Transform3D Part::transformFromParent(Orvo::Transform3D const& parent) const {
  // The transform is compose(P, compose(A, X)): the axis motion X, the
  // placement A at the parent's attach frame, the parent's chain P. P is
  // passed in, as it is valid by now. activeTransform3D(identity frame, F)
  // is frameToWorld(F), and exactly so, and composing with an identity (no
  // axis, an attach frame at the identity as most moving parts have, or the
  // root's chain) only multiplies by one and adds zeros. Those steps are
  // skipped: the result is the same to the last bit for finite values, and a
  // chain of moving parts costs one composition per part instead of two.
  bool const placed = !m_parent->m_attachIsIdentity;
  bool const atRoot = !m_parent->m_parent;
  if (!m_axis) {
    if (!placed) return atRoot ? Orvo::Transform3D() : parent;
    return atRoot ? m_parent->m_attachTransform : composeWith(parent, m_parent->m_attachTransform);
  }
  if (placed) {
    Orvo::Transform3D const local = compose(m_parent->m_attachTransform, m_axis->transformation());
    return atRoot ? local : composeWith(parent, local);
  }
  if (atRoot) return m_axis->transformation();
  if (m_axisTranslates) return parent.composedWithTranslation(m_axis->transformation());
  return composeWith(parent, m_axis->transformation());
}

Orvo::Transform3D Part::transform3DFromBaseAsModelled() const {
  Part const* const up = parent();
  Orvo::Transform3D const q = up ? up->transform3DFromBaseAsModelled() : Orvo::Transform3D();
  Orvo::Frame const attach = m_parent ? m_parent->m_definition->attachFrame() : Orvo::Frame(Orvo::IdentityTag{});
  return compose(q, Orvo::activeTransform3D(Orvo::Frame(Orvo::IdentityTag{}), attach));
}

void Part::visitChainToBase(Part const* part, std::function<void(Part const&)> const& visit) {
  for (; part; part = part->parent()) visit(*part);
}

}  // namespace machine
