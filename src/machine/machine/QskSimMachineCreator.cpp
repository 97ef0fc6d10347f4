#include "machine/machine/QskSimMachineCreator.h"

#include <memory>

#include "machine/machine/Axis.h"
#include "machine/machine/Machine.h"
#include "machine/machine/Part.h"
#include "machine/machine/RotaryAxisDefinition.h"
#include "util/utility/Basic.h"

namespace {
constexpr char const* orvoAssertSourcePath = "machine\\machine\\QskSimMachineCreator";

bool sameIdentifier(machine::PartDefinition const* definition, machine::Part const* part) {
  return part && part->definition() && definition->id() == part->definition()->id();
}
}  // namespace

namespace machine {

void QskSimMachineCreator::convert(Machine const& machine, QskSimMachineAdaptor& adaptor) {
  m_headPart = machine.headPart();
  m_tablePart = machine.tablePart();
  for (auto const& part : machine.baseParts()) convertPart(std::nullopt, *part, adaptor);
  adaptor.finishMachine(m_homes, m_minimums, m_maximums);
  m_headPart = nullptr;
  m_tablePart = nullptr;
  m_homes.clear();
  m_minimums.clear();
  m_maximums.clear();
}

void QskSimMachineCreator::convertPart(std::optional<std::string> const& parentName, Part const& part,
                                       QskSimMachineAdaptor& adaptor) {
  PartDefinition const* definition = part.definition();
  std::string const name = definition->id().id();
  std::unique_ptr<QskSimComponentAdaptor> component = adaptor.createComponent(parentName, name);
  // A host that makes no component for a part still gets its children.
  if (component) {
    switch (definition->type()) {
      case PartType::HEAD:
        component->setHeadAttachFrame(definition->attachFrame(), sameIdentifier(definition, m_headPart));
        break;
      case PartType::TABLE:
        component->setTableAttachFrame(definition->attachFrame(), sameIdentifier(definition, m_tablePart));
        break;
      default:
        if (part.axis()) addAxisTo(*part.axis(), *component);
        break;
    }
  }
  for (auto const& child : part.children()) convertPart(name, *child, adaptor);
  component.reset();
}

void QskSimMachineCreator::addAxisTo(Axis const& axis, QskSimComponentAdaptor& component) {
  Orvo::Vector3D const direction = axis.definition()->direction();
  std::optional<Orvo::AxisName> const axisName = axis.name();
  std::string const name = axisName ? axisName->name() : std::string();
  AxisType const type = axis.axisType();
  if (type == AxisType::LINEAR) {
    component.addLinearAxis(name, direction, 0);
  } else if (type == AxisType::ROTARY) {
    auto const* rotary = dynamic_cast<RotaryAxisDefinition const*>(axis.definition());
    component.addRotaryAxis(name, direction, rotary ? rotary->point() : Orvo::Point3D(), 0);
    component.setAnglePreference(axis.anglePreference());
  } else {
    ORVO_CHECK_IMPL("AxisType must be LINEAR or ROTARY", false);
  }
  // The simulation library gets no limits for a linear axis, finite or not.
  Orvo::AxisValueRange const range = axis.range();
  if (!range.isInfinite() && type != AxisType::LINEAR) {
    m_minimums[name] = range.min().value();
    m_maximums[name] = range.max().value();
  } else {
    m_minimums[name] = std::nullopt;
    m_maximums[name] = std::nullopt;
  }
  m_homes[name] = axis.home().value();
}

}  // namespace machine
