#include "machine/machine/Machine.h"

#include <algorithm>

#include "machine/machine/MachineSolver.h"
#include "machine/machine/ThreeLinearPlusIkSolver.h"
#include "machine/machine/TwoLinearPlusSolver.h"
#include "util/utility/Basic.h"

namespace {
constexpr char const* orvoAssertSourcePath = "machine\\machine\\Machine";

void collectParts(machine::Part const& part, std::vector<machine::Part const*>& out) {
  for (auto const& child : part.children()) {
    out.push_back(child.get());
    collectParts(*child, out);
  }
}

void collectPartsNonConst(machine::Part& part, std::vector<machine::Part*>& out) {
  for (machine::Part& child : part.nonConstChildren()) {
    out.push_back(&child);
    collectPartsNonConst(child, out);
  }
}

}  // namespace

namespace machine {

Machine::Machine(KinematicsDefinition const& kinematics)
    : Machine(MachineSpecification(kinematics, nullptr, true)) {}

Machine::Machine(KinematicsDefinition const& kinematics, ControllerConfiguration const& configuration)
    : Machine(MachineSpecification(kinematics, &configuration, true)) {}

Machine::Machine(MachineSpecification const& specification)
    : Machine(BuildTag{}, *specification.kinematicsDefinition(), *specification.controllerConfiguration()) {}

Machine::Machine(BuildTag, KinematicsDefinition const& kinematics, ControllerConfiguration const& configuration)
    : m_kinematicsDefinition(CopyTag{}, kinematics),
      m_controllerConfiguration(CopyTag{}, configuration),
      m_rootDefinition(Orvo::MachinePartId(""), PartType::ROOT),
      m_rootPart(&m_rootDefinition, nullptr) {
  addDescendantsToPart(m_rootPart, m_kinematicsDefinition.baseParts());
  setHeadTableParts();
}

Machine::Machine(CopyTag, Machine const& other)
    : Machine(BuildTag{}, other.m_kinematicsDefinition, other.m_controllerConfiguration) {
  setAxisOrdering(other.axisOrdering());
  std::vector<Part*> const thisParts = allPartsNonConst();
  std::vector<Part const*> const otherParts = other.allParts();
  std::size_t const numParts = thisParts.size();
  ORVO_ASSERT(otherParts.size() == numParts);
  for (std::size_t i = 0; i < numParts && i < otherParts.size(); ++i) {
    Part* const thisPart = thisParts[i];
    Part const* const otherPart = otherParts[i];
    ORVO_ASSERT(thisPart->definition()->identifier() == otherPart->definition()->identifier());
    if (!thisPart->axis()) continue;
    std::optional<Axis> const& otherAxis = otherPart->axis();
    ORVO_ASSERT(otherAxis);
    if (otherAxis) thisPart->setAxisValue(otherAxis->value());
  }
}

Machine::~Machine() = default;

void Machine::doOnAxisOrderingChanged() {}

void Machine::addDescendantsToPart(Part& part, PartDefinition::ConstChildRange const& definitions) {
  for (PartDefinition const& definition : definitions) {
    auto child =
        std::make_unique<Part>(&definition, m_controllerConfiguration.axisConfiguration(definition.identifier()));
    addDescendantsToPart(*child, definition.children());
    part.addChild(std::move(child));
  }
}

void Machine::setHeadTableParts() {
  // value() on purpose: an id that names no part throws std::bad_optional_access.
  if (auto const headId = m_controllerConfiguration.headInfoPartId()) {
    PartDefinition const* const named = m_kinematicsDefinition.find(*headId).value();
    // The id may name a part above the head, such as a turret: the first
    // head below it, depth first, is taken.
    if (PartDefinition const* const head = named->findByType(PartType::HEAD))
      m_headPart = m_rootPart.findNonConst(head->identifier()).value();
  }
  if (auto const tableId = m_controllerConfiguration.tablePartId())
    m_tablePart = m_rootPart.findNonConst(*tableId).value();
}

std::vector<Part const*> Machine::allParts() const {
  std::vector<Part const*> parts;
  collectParts(m_rootPart, parts);
  return parts;
}

std::vector<Part*> Machine::allPartsNonConst() {
  std::vector<Part*> parts;
  collectPartsNonConst(m_rootPart, parts);
  return parts;
}

std::vector<Part const*> Machine::staticParts() const {
  std::vector<Part const*> parts;
  for (Part const* part : allParts())
    if (part->definition()->type() == PartType::STATIC) parts.push_back(part);
  return parts;
}

std::vector<Axis const*> Machine::nonTcpAxes() const {
  std::vector<Axis const*> axes;
  for (Part const* part : allParts()) {
    if (!part->axis() || part->axis()->isTcpAxis()) continue;
    Axis const* const axis = &*part->axis();
    ENSURES(axis->axisType() == AxisType::ROTARY);
    axes.push_back(axis);
  }
  return axes;
}

int Machine::axisSortPriority(std::optional<Axis> const& axis) {
  if (!axis) return 13;
  bool const linear = axis->axisType() == machine::AxisType::LINEAR;
  if (!linear) ORVO_ASSERT(axis->axisType() == machine::AxisType::ROTARY);
  switch (axis->controlType()) {
    case ControlType::DRIVEN: return linear ? 0 : 3;
    case ControlType::SECONDARY: return linear ? 1 : 4;
    case ControlType::MANUAL: return linear ? 2 : 5;
    case ControlType::ANCILLARY: return linear ? 6 : 7;
    case ControlType::SUBORDINATE: return linear ? 8 : 9;
    case ControlType::LINK: return linear ? 10 : 11;
  }
  ORVO_CHECK_IMPL("Unhandled axis type", false);
  return 12;
}

Orvo::AxisOrdering Machine::fullOrdering() const {
  std::vector<Part const*> parts = allParts();
  std::vector<std::pair<int, Part const*>> keyed;
  keyed.reserve(parts.size());
  for (Part const* part : parts) keyed.emplace_back(axisSortPriority(part->axis()), part);
  std::stable_sort(keyed.begin(), keyed.end(), [](auto const& a, auto const& b) {
    if (a.first != b.first) return a.first < b.first;
    return a.second->definition()->id() < b.second->definition()->id();
  });
  Orvo::AxisOrdering ordering;
  for (auto const& entry : keyed) {
    auto const info = entry.second->axisInfo();
    if (!info) break;
    ordering.append(*info);
  }
  return ordering;
}

void Machine::setAxisOrdering(Orvo::AxisOrdering const& ordering) {
  m_orderedParts.clear();
  m_axisOrdering = Orvo::AxisOrdering();
  std::vector<Part*> parts;
  parts.reserve(static_cast<std::size_t>(ordering.size()));
  for (int i = 0; i < ordering.size(); ++i) {
    auto const found = m_rootPart.findNonConst(ordering.machinePartId(i));
    if (!found) return;
    parts.push_back(*found);
  }
  m_orderedParts = std::move(parts);
  m_axisOrdering = ordering;
  doOnAxisOrderingChanged();
}

Part const* Machine::orderedPart(int index) const {
  ORVO_ASSERT(0 <= index && index < numOrderedParts());
  // Past the assertion a bad index gives null rather than a wild read.
  if (index < 0 || index >= numOrderedParts()) return nullptr;
  return m_orderedParts[static_cast<std::size_t>(index)];
}

Part const* Machine::orderedPartByName(Orvo::AxisName const& name) const {
  for (Part const* part : m_orderedParts) {
    if (!part->axis()) continue;
    auto const axisName = part->axis()->name();
    if (axisName && *axisName == name) return part;
  }
  return nullptr;
}

Orvo::AxisValues Machine::axisValues() const {
  Orvo::AxisValues values(numOrderedParts());
  readAxisValues(values);
  return values;
}

void Machine::readAxisValues(Orvo::AxisValues& values) const {
  if (values.size() != numOrderedParts()) values = Orvo::AxisValues(numOrderedParts());
  for (int i = 0; i < numOrderedParts(); ++i) {
    std::optional<Axis> const& optionalAxis = m_orderedParts[static_cast<std::size_t>(i)]->axis();
    ORVO_ASSERT(optionalAxis && "An ordered part must be an axis.");
    values.setValue(i, optionalAxis ? optionalAxis->value() : Orvo::AxisValue());
  }
}

bool Machine::orderedPartsWithoutAxesStandAt(Orvo::AxisValues const& values, int first) const {
  for (int i = first; i < numOrderedParts(); ++i) {
    std::optional<Axis> const& optionalAxis = m_orderedParts[static_cast<std::size_t>(i)]->axis();
    ORVO_ASSERT(optionalAxis && "An ordered part must be an axis.");
    if ((optionalAxis ? optionalAxis->value() : Orvo::AxisValue()) != values[i]) return false;
  }
  return true;
}

bool Machine::moveTo(Orvo::AxisValues const& values) {
  if (values.size() != numOrderedParts()) return false;
  std::vector<Orvo::AxisValue> const& raw = values.values();
  for (std::size_t i = 0; i < m_orderedParts.size(); ++i) m_orderedParts[i]->setAxisValue(raw[i]);
  return true;
}

void Machine::moveAxis(Part const* part, Orvo::AxisValue value) {
  // The check reads as written, but compares through the optional so that a
  // part of another machine, whose identifier this one lacks, is a failed
  // check rather than a dereference of nothing.
  ORVO_CHECK_IMPL("part == *find(part->definition()->identifier())",
                  find(part->definition()->identifier()) == part);
  // A part of this machine is found by walking up to the root, which spares
  // a search by identifier (string compares all through the tree) on every
  // move. Its parts are not const objects, so the cast is sound. A foreign
  // part, past the failed assertion, moves this machine's part of the same
  // identifier, never the other machine.
  Part const* top = part;
  while (top->m_parent) top = top->m_parent;
  if (top == &m_rootPart)
    const_cast<Part*>(part)->setAxisValue(value);
  else if (auto const target = m_rootPart.findNonConst(part->definition()->identifier()))
    (*target)->setAxisValue(value);
}

void Machine::moveToHome() {
  for (Part* part : allPartsNonConst())
    if (part->axis()) part->setAxisValue(part->axis()->home());
}

Orvo::Frame Machine::headAttachFrame() const {
  ORVO_ASSERT(m_headPart && "This machine has no head.");
  if (!m_headPart) return Orvo::Frame(Orvo::IdentityTag{});
  return m_headPart->frameInBase(m_headPart->definition()->attachFrame());
}

Orvo::Frame Machine::tableAttachFrame() const {
  ORVO_ASSERT(m_tablePart && "This machine has no table.");
  if (!m_tablePart) return Orvo::Frame(Orvo::IdentityTag{});
  return m_tablePart->frameInBase(m_tablePart->definition()->attachFrame());
}

Orvo::Frame Machine::headAttachFrameAsModelled() const {
  ORVO_ASSERT(m_headPart && "This machine has no head.");
  if (!m_headPart) return Orvo::Frame(Orvo::IdentityTag{});
  return m_headPart->definition()->attachFrame().transformedBy(m_headPart->transform3DFromBaseAsModelled());
}

Orvo::Frame Machine::tableAttachFrameAsModelled() const {
  ORVO_ASSERT(m_tablePart && "This machine has no table.");
  if (!m_tablePart) return Orvo::Frame(Orvo::IdentityTag{});
  return m_tablePart->definition()->attachFrame().transformedBy(m_tablePart->transform3DFromBaseAsModelled());
}

NcCodeKinematicInterpolationMode Machine::interpolationMode() const {
  bool anyTcp = false;
  bool anyNonTcp = false;
  for (Part const* part : allParts()) {
    if (!part->axis() || part->axis()->axisType() != AxisType::ROTARY) continue;
    (part->axis()->isTcpAxis() ? anyTcp : anyNonTcp) = true;
  }
  if (!anyTcp) return NcCodeKinematicInterpolationMode::SYNCHRONIZED;
  if (!anyNonTcp) return NcCodeKinematicInterpolationMode::TCP_ONLY;
  return NcCodeKinematicInterpolationMode::MIXED;
}

std::unique_ptr<MachineSolver> Machine::makeMachineSolver() const {
  int primaryLinear = 0;
  auto const count = [&primaryLinear](Part const& part) {
    if (axisSortPriority(part.axis()) < 3) ++primaryLinear;
  };
  Part::visitChainToBase(m_headPart, count);
  Part::visitChainToBase(m_tablePart, count);
  if (primaryLinear == 2) return std::make_unique<TwoLinearPlusSolver>(*this);
  if (primaryLinear >= 3) return std::make_unique<ThreeLinearPlusIkSolver>(*this);
  return nullptr;
}

}  // namespace machine
