#include "machine/machine/Part.h"

#include "util/utility/Basic.h"

namespace {
constexpr char const* orvoAssertSourcePath = "machine\\machine\\Part";

// compose(p, local) when `local` is a pure translation, as a linear axis's
// motion is: the rotation columns are p's own, and the translation takes
// the very operations compose would, so the bits are the same while a
// quarter of the work is done.
Orvo::Transform3D composeWith(Orvo::Transform3D const& p, Orvo::Transform3D const& local) {
  if (local.rotation() == Orvo::Matrix3x3::getIdentity())
    return Orvo::Transform3D(p.rotation(), p(local.translation()) + p.translation());
  return compose(p, local);
}

}  // namespace

namespace machine {

Part::Part(PartDefinition const* definition, AxisConfiguration const* configuration) : m_definition(definition) {
  ORVO_ASSERT(m_definition);
  if (m_definition && m_definition->axisDefinition()) m_axis.emplace(m_definition->axisDefinition(), configuration);
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

void Part::setAxisValue(Orvo::AxisValue value) {
  if (!m_axis) return;
  if (value != m_axis->value()) {
    m_axis->setValue(value);
    invalidateTransforms();
  }
}

void Part::invalidateTransforms() noexcept {
  // The invariant guarantees an invalid part has an invalid subtree.
  if (!m_transformValid) return;
  m_transformValid = false;
  for (auto const& child : m_children) child->invalidateTransforms();
}

// Flattened so that the compositions are inlined here: they are the whole
// cost of forward kinematics, and a call to each (through the shared
// library's symbol table) costs about as much as the arithmetic.
[[gnu::flatten]] void Part::calculateTransform() const {
  if (m_transformValid) return;
  if (!m_parent) {
    // The root: no parent, no placement, and no axis.
    m_transformFromBase = m_axis ? m_axis->transformation() : Orvo::Transform3D();
    m_transformValid = true;
    return;
  }
  // The transform is compose(P, compose(A, X)): the axis motion X, the
  // placement A at the parent's attach frame, the parent's chain P.
  // activeTransform3D(identity frame, F) is frameToWorld(F), and exactly so,
  // and composing with an identity (no axis, an attach frame at the identity
  // as most moving parts have, or the root's chain) only multiplies by one
  // and adds zeros. Those steps are skipped: the result is the same to the
  // last bit for finite values, and a chain of moving parts costs one
  // composition per part instead of two.
  Orvo::Frame const& attach = m_parent->m_definition->attachFrame();
  bool const placed = attach != Orvo::Frame(Orvo::IdentityTag{});
  bool const atRoot = !m_parent->m_parent;
  if (!m_axis && !placed) {
    m_transformFromBase = atRoot ? Orvo::Transform3D() : m_parent->transform3DFromBase();
  } else {
    Orvo::Transform3D local;
    if (m_axis)
      local = placed ? compose(Orvo::frameToWorld(attach), m_axis->transformation()) : m_axis->transformation();
    else
      local = Orvo::frameToWorld(attach);
    m_transformFromBase = atRoot ? local : composeWith(m_parent->transform3DFromBase(), local);
  }
  m_transformValid = true;
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
