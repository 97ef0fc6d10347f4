#include "machine/machine/MachineSpecification.h"

#include <climits>
#include <stdexcept>
#include <string>

#include "machine/machine/MachineUtils.h"
#include "util/utility/Basic.h"

namespace {
constexpr char const* orvoAssertSourcePath = "machine\\machine\\MachineSpecification";

// The number the digits at the end of `text` spell, 0 when there are none.
// std::stoi is used on purpose, so that what it accepts and rejects is what
// users of machine files have always seen; its failures are re-thrown with
// fixed texts, because the library's what() differs between standard
// libraries (GCC says just "stoi") and the texts are part of the contract.
int trailingNumber(std::string const& text) {
  std::size_t start = text.size();
  while (start > 0 && text[start - 1] >= '0' && text[start - 1] <= '9') --start;
  if (start == text.size()) return 0;
  try {
    return std::stoi(text.substr(start));
  } catch (std::invalid_argument const&) {
    // Not reachable with digits only; kept so that both texts stay fixed.
    throw std::invalid_argument("invalid stoi argument");
  } catch (std::out_of_range const&) {
    throw std::out_of_range("stoi argument out of range");
  }
}

}  // namespace

namespace machine {

MachineSpecification::MachineSpecification(KinematicsDefinition const& kinematics,
                                           ControllerConfiguration const* configuration, bool liveTool)
    : m_kinematicsDefinition(kinematics.clone()), m_liveTool(liveTool) {
  if (configuration) {
    m_controllerConfiguration = configuration->clone();
    MachineUtils::setKinematicsChainForControllerConfiguration(*m_kinematicsDefinition, *m_controllerConfiguration);
  } else {
    m_controllerConfiguration = MachineUtils::makeDefaultControllerConfiguration(*m_kinematicsDefinition);
  }
}

MachineSpecification::MachineSpecification(MachineSpecification const&& other)
    : m_kinematicsDefinition(other.m_kinematicsDefinition ? other.m_kinematicsDefinition->clone() : nullptr),
      m_controllerConfiguration(other.m_controllerConfiguration ? other.m_controllerConfiguration->clone() : nullptr),
      m_liveTool(other.m_liveTool) {}

MachineSpecification& MachineSpecification::operator=(MachineSpecification const&& other) {
  if (this != &other) {
    m_kinematicsDefinition = other.m_kinematicsDefinition ? other.m_kinematicsDefinition->clone() : nullptr;
    m_controllerConfiguration = other.m_controllerConfiguration ? other.m_controllerConfiguration->clone() : nullptr;
    m_liveTool = other.m_liveTool;
  }
  return *this;
}

MachineSpecification::~MachineSpecification() = default;

std::optional<MachineSpecification> MachineSpecification::makeDefaultForDefinition(MachineDefinition const& definition,
                                                                                   bool liveTool) {
  auto const* const kinematics = dynamic_cast<KinematicsDefinition const*>(
      definition.getDefaultFeature(KinematicsDefinition::featureTypeIdStatic()));
  if (!kinematics) return std::nullopt;
  auto const* const configuration = dynamic_cast<ControllerConfiguration const*>(
      definition.getDefaultFeature(ControllerConfiguration::featureTypeIdStatic()));
  return MachineSpecification(*kinematics, configuration, liveTool);
}

KinematicsDefinition const* MachineSpecification::kinematicsDefinition() const {
  EXPECTS(m_kinematicsDefinition);
  return m_kinematicsDefinition.get();
}

ControllerConfiguration const* MachineSpecification::controllerConfiguration() const {
  EXPECTS(m_controllerConfiguration);
  return m_controllerConfiguration.get();
}

PartDefinition const* MachineSpecification::toolFramePart() const {
  KinematicsDefinition const* const kinematics = kinematicsDefinition();
  ControllerConfiguration const* const configuration = controllerConfiguration();
  // value() on purpose: an unset or unknown head id throws std::bad_optional_access.
  PartDefinition const* const part = kinematics->find(configuration->headInfoPartId().value()).value();
  if (part->type() == PartType::HEAD) return part;
  if (!part->turretDefinition()) return nullptr;
  // INT_MAX is the "none yet" mark, so a head numbered INT_MAX is never
  // chosen; on a tie the first head in child order stays.
  int lowest = INT_MAX;
  PartDefinition const* chosen = nullptr;
  for (PartDefinition const& child : part->children()) {
    if (child.type() != PartType::HEAD) continue;
    int const number = trailingNumber(child.identifier().id());
    if (number < lowest) {
      lowest = number;
      chosen = &child;
    }
  }
  return chosen;
}

}  // namespace machine
