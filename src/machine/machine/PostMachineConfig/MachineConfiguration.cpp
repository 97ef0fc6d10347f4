#include "machine/machine/PostMachineConfig/MachineConfiguration.h"

#include <cstddef>
#include <utility>

#include "machine/machine/PostMachineConfig/MachineAxesValidator.h"
#include "machine/machine/ToolStationInterfaceName.h"
#include "nc/AxisInfo.h"
#include "nc/AxisName.h"
#include "nc/AxisValue.h"
#include "util/utility/Angle.h"
#include "util/utility/Basic.h"
#include "util/utility/Messages.h"
#include "util/utility/ScriptException.h"
#include "util/utility/WideStringParser.h"

namespace {
constexpr char const* orvoAssertSourcePath = "machine\\machine\\PostMachineConfig\\MachineConfiguration";

[[noreturn]] __attribute__((cold)) void fail(wchar_t const* message) { throw Orvo::ScriptException(message); }

// Numbers with units.

struct UnitFactor {
  wchar_t const* unit;
  double factor;
};

// Lengths in millimetres.
constexpr UnitFactor kLengthUnits[] = {
    {L"nm", 1e-6}, {L"um", 0.001}, {L"mm", 1}, {L"cm", 10}, {L"m", 1000}, {L"in", 25.4}, {L"yd", 914.4},
    {L"mil", 0.0254}, {L"thou", 0.0254}, {L"ft", 304.79999999999995},
};
// Angles in radians. "grad" is 0.9 as it stands, not a grad in radians:
// 100grad reads as 90. The value is kept as it is on purpose.
constexpr UnitFactor kAngleUnits[] = {
    {L"rad", 1}, {L"deg", 0.017453292519943295}, {L"grad", 0.9},
};
// The divisor of a speed, in minutes, so that a speed comes out per minute.
constexpr UnitFactor kTimeDivisorUnits[] = {
    {L"s", 0.016666666666666666}, {L"min", 1}, {L"h", 60},
};
constexpr UnitFactor kPowerUnits[] = {
    {L"MW", 1000000}, {L"kW", 1000}, {L"W", 1}, {L"hp", 746},
};
constexpr UnitFactor kTimeUnits[] = {
    {L"s", 1}, {L"min", 60}, {L"h", 3600},
};
constexpr UnitFactor kWeightUnits[] = {
    {L"kg", 1}, {L"g", 0.001}, {L"mg", 1e-6}, {L"t", 1000}, {L"oz", 0.028349523125}, {L"lb", 0.45359237},
};
constexpr UnitFactor kSpindleSpeedUnits[] = {
    {L"rpm", 1},
};
constexpr double kDegree = 0.017453292519943295;
constexpr double kRevolution = 6.283185307179586;  // 2 pi

template <std::size_t N>
bool findFactor(UnitFactor const (&table)[N], std::wstring const& unit, double& factor) noexcept {
  for (auto const& entry : table) {
    if (unit == entry.unit) {
      factor = entry.factor;
      return true;
    }
  }
  return false;
}

template <std::size_t N>
double simpleFactor(UnitFactor const (&table)[N], std::wstring const& unit) {
  double factor = 0;
  if (!findFactor(table, unit, factor)) fail(L"Invalid unit.");
  return factor;
}

/// The factors of the two sides of a unit of the form first "/" time
/// divisor; the value is multiplied by the first and divided by the second.
template <std::size_t N>
void compoundFactors(UnitFactor const (&first)[N], std::wstring const& unit, double& multiplier, double& divisor) {
  auto const slash = unit.find(L'/');
  if (slash == std::wstring::npos || !findFactor(first, unit.substr(0, slash), multiplier) ||
      !findFactor(kTimeDivisorUnits, unit.substr(slash + 1), divisor)) {
    fail(L"Invalid unit.");
  }
}

/// Reads a number followed directly by an optional unit word, with spaces
/// around the whole. Only a unit that touches the number is one: "10mm" has
/// the unit "mm", while "10 mm" is a number with something left after it.
/// Without a number, or with anything left, fails with `failure`: a text
/// that is not a number at all is the same script error as one with a stray
/// word behind it.
bool readNumberAndUnit(std::wstring const& text, wchar_t const* failure, double& value, std::wstring& unit) {
  Orvo::WideStringParser parser(text);
  parser.skipSpaces();
  if (!parser.readNumber(value)) fail(failure);
  bool const hasUnit = !parser.isAtEnd() && !parser.isAtSpace();
  if (hasUnit) unit = parser.readWord();
  parser.skipSpaces();
  if (!parser.isAtEnd()) fail(failure);
  return hasUnit;
}

}  // namespace

namespace com {
namespace vantora {
namespace post {

unsigned int const MachineConfiguration::DEFAULT_NUMBER_OF_TOOLS_MAX = 100;

MachineConfiguration::MachineConfiguration() { initialize(); }

MachineConfiguration::MachineConfiguration(Axis const& first) {
  initialize();
  addAxis(first);
}

MachineConfiguration::MachineConfiguration(Axis const& first, Axis const& second) {
  initialize();
  addAxis(first);
  addAxis(second);
}

MachineConfiguration::MachineConfiguration(Axis const& first, Axis const& second, Axis const& third) {
  initialize();
  addAxis(first);
  addAxis(second);
  addAxis(third);
}

MachineConfiguration::MachineConfiguration(MachineConfiguration const& other) = default;
MachineConfiguration& MachineConfiguration::operator=(MachineConfiguration const& other) = default;
MachineConfiguration& MachineConfiguration::operator=(MachineConfiguration&& other) = default;
MachineConfiguration::~MachineConfiguration() = default;

char const* MachineConfiguration::getBaseClass() const noexcept { return "ScriptObject"; }

void MachineConfiguration::initialize() {
  m_wcs = Vector();
  m_spindleAxis = Vector(0, 0, 1);
  m_spindleAxisNormalized = Vector(0, 0, 1);
  m_spindleDescription.clear();
  m_maximumSpindlePower = 0;
  m_spindlePeakTorque = 0;
  m_spindlePeakTorqueSpeed = 0;
  m_minimumSpindleSpeed = 0;
  m_maximumSpindleSpeed = 0;
  m_collectChuck.clear();
  m_toolLength = 0;
  m_dimensions = Vector();
  m_weight = 0;
  m_partDimensions = Vector();
  m_weightCapacity = 0;
  m_milling = true;
  m_turning = false;
  m_wire = false;
  m_jet = false;
  m_additiveFFF = false;
  m_inspection = false;
  m_toolChanger = true;
  m_toolPreload = true;
  m_numberOfTools = DEFAULT_NUMBER_OF_TOOLS_MAX;
  m_maximumToolLength = 0;
  m_maximumToolDiameter = 0;
  m_maximumToolWeight = 0;
  m_toolInterface.reset();
  m_maximumFeedrate = 0;
  m_maximumCuttingFeedrate = 0;
  m_maximumBlockProcessingSpeed = 0;
  m_feedrateRatio = 1;
  m_toolChangeTime = 15;
  m_coolants.assign(NUMBER_OF_COOLANT_MODES, false);
  m_numberOfWorkOffsets = 100;
  m_multiAxisFeedrate = MultiAxisFeedrate();
  m_multiAxisRetractAndReconfigure = MultiAxisRetractAndReconfigure();
  m_singularity = MultiAxisSingularity();
  m_axisTCPIsSet = false;
  m_savedTCPU = false;
  m_savedTCPV = false;
  m_savedTCPW = false;
  m_virtualTooltip = false;
  m_centerPosition = Vector();
  m_hasCenterPosition = false;
  m_parkPosition = Vector();
  m_hasParkPosition = false;
  m_numberExtruders = 0;
  m_extruderOffsets.clear();
  m_description.clear();
  m_model.clear();
  m_vendor.clear();
  m_vendorUrl.clear();
  m_control.clear();
  m_postProcessor.clear();
  m_setupSheet.clear();
  m_actions.clear();
  m_cycles.clear();
  m_machineAssembly.clear();
  m_retractOnIndexing = true;
  m_shortestAngularRotation = true;
  // m_machineConfigurationEvents keeps its subscribers.
  m_received = false;
  m_headAttachPoint = Vector();
  m_tableAttachPoint = Vector();
  m_subSpindleZAxisReversed = false;
  m_TWPEnabled = false;

  removeAllAxes();
  Vector const origin;
  m_axisX = Axis(false, Vector(1, 0, 0), origin, 0);
  m_axisY = Axis(false, Vector(0, 1, 0), origin, 1);
  m_axisZ = Axis(false, Vector(0, 0, 1), origin, 2);
  m_axisX.setActuator(0);
  m_axisY.setActuator(0);
  m_axisZ.setActuator(0);
  m_axisOrder[0] = AXIS_X;
  m_axisOrder[1] = AXIS_Y;
  m_axisOrder[2] = AXIS_Z;
  m_axisCount = 3;
}

// Axes.

void MachineConfiguration::addAxis(Axis const& axis) {
  if (!axis.isEnabled()) {
    throw Orvo::ScriptException(L"Cannot add invalid axis: " + Axis::getStatusDescription(axis.getValidityStatus()));
  }
  if (m_axisCount > 5) fail(L"Too many axes.");
  AxisId id = AXIS_NONE;
  if (axis.isLinear()) {
    switch (axis.getCoordinate()) {
      case 0:
        if (hasAxis(AXIS_X)) fail(L"X-axis already added.");
        id = AXIS_X;
        break;
      case 1:
        if (hasAxis(AXIS_Y)) fail(L"Y-axis already added.");
        id = AXIS_Y;
        break;
      case 2:
        if (hasAxis(AXIS_Z)) fail(L"Z-axis already added.");
        id = AXIS_Z;
        break;
      default: fail(L"Invalid coordinate.");
    }
  } else if (axis.isRotational()) {
    if (!m_axisU.isEnabled()) {
      id = AXIS_U;
    } else if (!m_axisV.isEnabled()) {
      id = AXIS_V;
    } else if (!m_axisW.isEnabled()) {
      id = AXIS_W;
    } else {
      return;  // No room for a fourth rotary axis; that is not a failure.
    }
  } else {
    fail(L"Invalid axis.");
  }
  m_axisOrder[m_axisCount] = id;
  ++m_axisCount;
  slot(id) = axis;
}

void MachineConfiguration::removeAllAxes() {
  m_axisCount = 0;
  for (auto& id : m_axisOrder) id = AXIS_NONE;
  m_axisX = Axis();
  m_axisY = Axis();
  m_axisZ = Axis();
  m_axisU = Axis();
  m_axisV = Axis();
  m_axisW = Axis();
}

void MachineConfiguration::setXAxis(Axis const& axis) {
  ORVO_ASSERT(!axis.isEnabled() || axis.getCoordinate() == 0);
  m_axisX = axis;
}

void MachineConfiguration::setYAxis(Axis const& axis) {
  ORVO_ASSERT(!axis.isEnabled() || axis.getCoordinate() == 1);
  m_axisY = axis;
}

void MachineConfiguration::setZAxis(Axis const& axis) {
  ORVO_ASSERT(!axis.isEnabled() || axis.getCoordinate() == 2);
  m_axisZ = axis;
}

Axis& MachineConfiguration::slot(AxisId id) noexcept {
  return const_cast<Axis&>(static_cast<MachineConfiguration const*>(this)->slot(id));
}

Axis const& MachineConfiguration::slot(AxisId id) const noexcept {
  switch (id) {
    case AXIS_X: return m_axisX;
    case AXIS_Y: return m_axisY;
    case AXIS_Z: return m_axisZ;
    case AXIS_U: return m_axisU;
    case AXIS_V: return m_axisV;
    case AXIS_W: break;
    case AXIS_NONE: break;
  }
  return m_axisW;
}

Axis& MachineConfiguration::getAxisById(AxisId id) {
  return const_cast<Axis&>(static_cast<MachineConfiguration const*>(this)->getAxisById(id));
}

Axis const& MachineConfiguration::getAxisById(AxisId id) const {
  if (id < AXIS_X || id > AXIS_W) fail(L"Axis is invalid.");
  return slot(id);
}

Axis& MachineConfiguration::getAxisByName(std::wstring const& name) {
  return const_cast<Axis&>(static_cast<MachineConfiguration const*>(this)->getAxisByName(name));
}

Axis const& MachineConfiguration::getAxisByName(std::wstring const& name) const {
  if (name == L"X") return m_axisX;
  if (name == L"Y") return m_axisY;
  if (name == L"Z") return m_axisZ;
  if (name == L"U") return m_axisU;
  if (name == L"V") return m_axisV;
  if (name == L"W") return m_axisW;
  fail(L"Invalid axis.");
}

Axis& MachineConfiguration::getAxisByOrder(unsigned int index) {
  return const_cast<Axis&>(static_cast<MachineConfiguration const*>(this)->getAxisByOrder(index));
}

Axis const& MachineConfiguration::getAxisByOrder(unsigned int index) const {
  if (index >= m_axisCount) fail(L"Invalid axis index.");
  return slot(m_axisOrder[index]);
}

Axis& MachineConfiguration::getAxisByCoordinate(int coordinate) {
  return const_cast<Axis&>(static_cast<MachineConfiguration const*>(this)->getAxisByCoordinate(coordinate));
}

Axis const& MachineConfiguration::getAxisByCoordinate(int coordinate) const {
  for (Axis const* axis : {&m_axisU, &m_axisV, &m_axisW}) {
    if (axis->isEnabled() && axis->getCoordinate() == coordinate) return *axis;
  }
  fail(L"Coordinate is not bound to an axis.");
}

int MachineConfiguration::getIndexOfAxisById(AxisId id) const noexcept {
  for (unsigned int i = 0; i < m_axisCount && i < 6; ++i) {
    if (m_axisOrder[i] == id) return static_cast<int>(i);
  }
  return -1;
}

unsigned int MachineConfiguration::getNumberOfAxes() const noexcept {
  if (m_axisCount != 0) return m_axisCount;
  unsigned int count = 3;
  for (Axis const* axis : {&m_axisU, &m_axisV, &m_axisW}) {
    if (axis->isEnabled()) ++count;
  }
  return count;
}

int MachineConfiguration::getCoordinates() const {
  int mask = 0;
  for (Axis const* axis : {&m_axisU, &m_axisV, &m_axisW}) {
    if (!axis->isEnabled()) continue;
    auto const coordinate = static_cast<unsigned int>(axis->getCoordinate());
    if (coordinate > 2) fail(L"Invalid axis coordinate.");
    mask |= 1 << coordinate;
  }
  return mask;
}

bool MachineConfiguration::isMachineCoordinate(int coordinate) const noexcept {
  for (Axis const* axis : {&m_axisU, &m_axisV, &m_axisW}) {
    if (axis->isEnabled() && axis->getCoordinate() == coordinate) return true;
  }
  return false;
}

bool MachineConfiguration::isMachineAxisRotation(Vector const& rotation) const noexcept {
  double const components[3] = {rotation.x, rotation.y, rotation.z};
  for (int i = 0; i < 3; ++i) {
    if (components[i] != 0 && !isMachineCoordinate(i)) return false;
  }
  return true;
}

bool MachineConfiguration::hasRotational() const noexcept {
  for (Axis const* axis : {&m_axisU, &m_axisV, &m_axisW}) {
    if (axis->isEnabled() && axis->isRotational()) return true;
  }
  return false;
}

bool MachineConfiguration::isHeadConfiguration() const noexcept {
  for (Axis const* axis : {&m_axisU, &m_axisV, &m_axisW}) {
    if (axis->isEnabled() && axis->isHead()) return true;
  }
  return false;
}

bool MachineConfiguration::isOptimized() const noexcept {
  for (Axis const* axis : {&m_axisU, &m_axisV, &m_axisW}) {
    if (axis->isEnabled() && !axis->isTCPEnabled()) return true;
  }
  return false;
}

bool MachineConfiguration::isTCPEnabledForAnyAxis() const noexcept {
  for (Axis const* axis : {&m_axisU, &m_axisV, &m_axisW}) {
    if (axis->isEnabled() && axis->isTCPEnabled()) return true;
  }
  return false;
}

int MachineConfiguration::getValidityStatus() const { return MachineAxesValidator(*this).validate(); }

std::wstring MachineConfiguration::getStatusDescription(int status) {
  switch (status) {
    case MachineAxesValidator::STATUS_OK: return std::wstring();
    case MachineAxesValidator::STATUS_INVALID_X_AXIS: return L"Invalid X axis.";
    case MachineAxesValidator::STATUS_INVALID_Y_AXIS: return L"Invalid Y axis.";
    case MachineAxesValidator::STATUS_INVALID_Z_AXIS: return L"Invalid Z axis.";
    case MachineAxesValidator::STATUS_INVALID_XYZ_AXES: return L"Invalid XYZ axes.";
    case MachineAxesValidator::STATUS_INVALID_U_AXIS: return L"Invalid U axis.";
    case MachineAxesValidator::STATUS_INVALID_V_AXIS: return L"Invalid V axis.";
    case MachineAxesValidator::STATUS_INVALID_W_AXIS: return L"Invalid W axis.";
    case MachineAxesValidator::STATUS_INVALID_SPINDLE_AXIS: return L"Invalid spindle axis.";
    case MachineAxesValidator::STATUS_INVALID_AXIS_ACTUATOR: return L"Invalid axis actuator.";
    case MachineAxesValidator::STATUS_V_WITHOUT_U: return L"V axis defined without U axis.";
    case MachineAxesValidator::STATUS_W_WITHOUT_V: return L"W axis defined without V axis.";
    case MachineAxesValidator::STATUS_INVALID_COORDINATE: return L"Invalid coordinate.";
    case MachineAxesValidator::STATUS_COORDINATE_USED_TWICE: return L"Coordinate used by more than 1 axis.";
    case MachineAxesValidator::STATUS_INVALID_AXIS: return L"Invalid axis.";
    case MachineAxesValidator::STATUS_INVALID_RANGE: return L"Invalid range for axis.";
    case MachineAxesValidator::STATUS_AXES_ALIGNED: return L"Axes are aligned.";
    case MachineAxesValidator::STATUS_FOURTH_AXIS_ALIGNED_WITH_TOOL_AXIS: return L"4th axis is aligned with tool axis.";
    case MachineAxesValidator::STATUS_TOO_FEW_AXES: return L"Too few axes defined.";
    case MachineAxesValidator::STATUS_TOO_MANY_AXES: return L"Too many axes defined.";
    default: break;
  }
  // 18, 21 and 22 have no text of their own and land here too.
  return L"Unknown status.";
}

int MachineConfiguration::orderedRotaryCount() const noexcept {
  int count = 0;
  for (Axis const* axis : {&m_axisU, &m_axisV, &m_axisW}) {
    if (!axis->isEnabled()) break;
    ++count;
  }
  return count;
}

Orvo::AxisOrdering MachineConfiguration::axisOrdering() const {
  ORVO_ASSERT(getValidityStatus() == MachineAxesValidator::STATUS_OK);
  Orvo::AxisOrdering ordering;
  for (Axis const* axis : {&m_axisU, &m_axisV, &m_axisW}) {
    if (!axis->isEnabled()) break;
    ordering.append(Orvo::AxisInfo(axis->getMachinePartId(), Orvo::AxisName(axis->getNameFallbackUTF8())));
  }
  return ordering;
}

Orvo::AxisValues MachineConfiguration::abcToAxisValues(Vector const& abc) const {
  ORVO_ASSERT(getValidityStatus() == MachineAxesValidator::STATUS_OK);
  double const components[3] = {abc.x, abc.y, abc.z};
  std::vector<Orvo::AxisValue> values;
  for (Axis const* axis : {&m_axisU, &m_axisV, &m_axisW}) {
    if (!axis->isEnabled()) break;
    auto const index = static_cast<unsigned int>(axis->getCoordinate());
    ORVO_ASSERT(index <= 2 && "Invalid Index");
    values.emplace_back(Orvo::Radian(index <= 2 ? components[index] : 0.0));
  }
  return Orvo::AxisValues(std::move(values));
}

Vector MachineConfiguration::axisValuesToAbc(Orvo::AxisValues const& values) const {
  ORVO_ASSERT(getValidityStatus() == MachineAxesValidator::STATUS_OK);
  // The text names the ordering; the count is taken without its own check,
  // so that an invalid configuration reports once.
  ORVO_CHECK_IMPL("values.size() == axisOrdering().size()", values.size() == orderedRotaryCount());
  double components[3] = {0, 0, 0};
  int i = 0;
  for (Axis const* axis : {&m_axisU, &m_axisV, &m_axisW}) {
    if (!axis->isEnabled() || i >= values.size()) break;
    auto const index = static_cast<unsigned int>(axis->getCoordinate());
    if (index <= 2) components[index] = values[i].radians().get();
    ++i;
  }
  return Vector(components[0], components[1], components[2]);
}

// Plain properties.

std::wstring MachineConfiguration::getToolInterface() const {
  if (!m_toolInterface) return std::wstring();
  return Orvo::Messages::utf8ToWide(m_toolInterface->name());
}

void MachineConfiguration::setToolInterface(std::wstring const& value) {
  if (value.empty()) {
    m_toolInterface.reset();
    return;
  }
  machine::ToolStationInterfaceName const name(Orvo::Messages::wideToUtf8(value));
  m_toolInterface = machine::DisplayName(name.name());
}

double MachineConfiguration::getCenterPositionX() const {
  if (!m_hasCenterPosition) fail(L"Center position is not available.");
  return m_centerPosition.x;
}

double MachineConfiguration::getCenterPositionY() const {
  if (!m_hasCenterPosition) fail(L"Center position is not available.");
  return m_centerPosition.y;
}

double MachineConfiguration::getCenterPositionZ() const {
  if (!m_hasCenterPosition) fail(L"Center position is not available.");
  return m_centerPosition.z;
}

void MachineConfiguration::setCenterPositionX(double value) noexcept {
  m_centerPosition.x = value;
  m_hasCenterPosition = true;
}

void MachineConfiguration::setCenterPositionY(double value) noexcept {
  m_centerPosition.y = value;
  m_hasCenterPosition = true;
}

void MachineConfiguration::setCenterPositionZ(double value) noexcept {
  m_centerPosition.z = value;
  m_hasCenterPosition = true;
}

double MachineConfiguration::getParkPositionX() const {
  if (!m_hasParkPosition) fail(L"Park position is not available.");
  return m_parkPosition.x;
}

double MachineConfiguration::getParkPositionY() const {
  if (!m_hasParkPosition) fail(L"Park position is not available.");
  return m_parkPosition.y;
}

double MachineConfiguration::getParkPositionZ() const {
  if (!m_hasParkPosition) fail(L"Park position is not available.");
  return m_parkPosition.z;
}

void MachineConfiguration::setParkPositionX(double value) noexcept {
  m_parkPosition.x = value;
  m_hasParkPosition = true;
}

void MachineConfiguration::setParkPositionY(double value) noexcept {
  m_parkPosition.y = value;
  m_hasParkPosition = true;
}

void MachineConfiguration::setParkPositionZ(double value) noexcept {
  m_parkPosition.z = value;
  m_hasParkPosition = true;
}

void MachineConfiguration::setSpindleAxis(Vector const& axis) {
  m_spindleAxis = axis;
  m_spindleAxisNormalized = axis.getNormalized();
}

void MachineConfiguration::setToolLength(double length) {
  m_toolLength = mapToInternalXYZ(length);
  m_machineConfigurationEvents.raise(EVENT_TOOL_LENGTH);
}

// Coolants.

bool MachineConfiguration::getCoolant(Coolant coolant) const {
  ORVO_ASSERT(coolant != COOLANT_OFF);
  auto const mode = static_cast<unsigned int>(coolant);
  return mode < m_coolants.size() && m_coolants[mode];
}

void MachineConfiguration::setCoolant(Coolant coolant, bool supported) {
  ORVO_ASSERT(coolant != COOLANT_OFF);
  auto const mode = static_cast<unsigned int>(coolant);
  if (mode < m_coolants.size()) m_coolants[mode] = supported;
}

bool MachineConfiguration::isCoolantSupported(unsigned int mode) const {
  if (mode >= m_coolants.size()) fail(L"Invalid coolant mode.");
  return m_coolants[mode];
}

void MachineConfiguration::setCoolantSupported(unsigned int mode, bool supported) {
  if (mode >= m_coolants.size()) fail(L"Invalid coolant mode.");
  m_coolants[mode] = supported;
}

// Multi-axis feed.

void MachineConfiguration::setMultiAxisFeedrate(int mode, double maximum, int type, double outputTolerance,
                                                double bpwRatio) {
  m_multiAxisFeedrate.setFeedMode(static_cast<MultiAxisFeedrate::FeedMode>(mode));
  m_multiAxisFeedrate.setMaximumFeedrate(maximum);
  if (mode == MultiAxisFeedrate::FEED_INVERSE_TIME) {
    m_multiAxisFeedrate.setInverseTimeUnits(static_cast<MultiAxisFeedrate::InverseTimeUnits>(type));
  } else if (mode == MultiAxisFeedrate::FEED_DPM) {
    m_multiAxisFeedrate.setDPMType(static_cast<MultiAxisFeedrate::DPMType>(type));
    m_multiAxisFeedrate.setDPMOutputTolerance(outputTolerance);
    m_multiAxisFeedrate.setDPMPulseWeight(bpwRatio);
  }
  // The tool length setter is not the only one to raise the configuration
  // event: this setter announces itself with value 0. Of the two accounts
  // of who raises the event, this setter's own, the more specific, holds.
  m_machineConfigurationEvents.raise(EVENT_MULTI_AXIS_FEEDRATE);
}

int MachineConfiguration::getMultiAxisFeedrateInverseTimeUnits() const {
  if (m_multiAxisFeedrate.getFeedMode() != MultiAxisFeedrate::FEED_INVERSE_TIME) {
    fail(L"Feed mode is not InverseTime.");
  }
  return m_multiAxisFeedrate.getInverseTimeUnits();
}

int MachineConfiguration::getMultiAxisFeedrateDPMType() const {
  if (m_multiAxisFeedrate.getFeedMode() != MultiAxisFeedrate::FEED_DPM) fail(L"Feed mode is not DPM.");
  return m_multiAxisFeedrate.getDPMType();
}

double MachineConfiguration::getMultiAxisFeedrateOutputTolerance() const {
  if (m_multiAxisFeedrate.getFeedMode() != MultiAxisFeedrate::FEED_DPM) {
    fail(L"Feed mode does not have an output tolerance.");
  }
  return m_multiAxisFeedrate.getDPMOutputTolerance();
}

double MachineConfiguration::getMultiAxisFeedrateBpwRatio() const {
  if (m_multiAxisFeedrate.getFeedMode() != MultiAxisFeedrate::FEED_DPM) {
    fail(L"Feed mode does not have a pulse weight ratio.");
  }
  return m_multiAxisFeedrate.getDPMPulseWeight();
}

// Rewinds.

void MachineConfiguration::setMachineRewindPreference(int rewind, int retract) {
  if (rewind != MultiAxisRetractAndReconfigure::REWIND_AT_LINEAR &&
      rewind != MultiAxisRetractAndReconfigure::REWIND_AT_RAPID) {
    fail(L"Rewind preference must be REWIND_AT_LINEAR or REWIND_AT_RAPID");
  }
  if (retract != MultiAxisRetractAndReconfigure::REWIND_RETRACT_AT_APEX &&
      retract != MultiAxisRetractAndReconfigure::REWIND_STAY_AT_APEX) {
    fail(L"Retract preference must be REWIND_RETRACT_AT_APEX or REWIND_STAY_AT_APEX.");
  }
  m_multiAxisRetractAndReconfigure.setRewindPreference(rewind);
  m_multiAxisRetractAndReconfigure.setRetractPreference(retract);
}

void MachineConfiguration::checkRewindsEnabled() const {
  if (!m_multiAxisRetractAndReconfigure.getReconfigure()) fail(L"Machine rewinds are not enabled.");
}

int MachineConfiguration::getRewindStrategy() const {
  checkRewindsEnabled();
  return m_multiAxisRetractAndReconfigure.getRewindStrategy();
}

Vector MachineConfiguration::getRewindStockExpansion() const {
  checkRewindsEnabled();
  return mapToExternalXYZ(m_multiAxisRetractAndReconfigure.getStockExpansion());
}

double MachineConfiguration::getSafeRetractDistance() const {
  checkRewindsEnabled();
  return mapToExternalXYZ(m_multiAxisRetractAndReconfigure.getSafeRetractDistance());
}

double MachineConfiguration::getSafeRetractFeedrate() const {
  checkRewindsEnabled();
  return m_multiAxisRetractAndReconfigure.getSafeRetractFeedrate();
}

double MachineConfiguration::getSafePlungeFeedrate() const {
  checkRewindsEnabled();
  return m_multiAxisRetractAndReconfigure.getSafePlungeFeedrate();
}

void MachineConfiguration::setRewindStockExpansion(Vector const& expansion) {
  m_multiAxisRetractAndReconfigure.setStockExpansion(mapToInternalXYZ(expansion));
}

void MachineConfiguration::setSafeRetractDistance(double distance) noexcept {
  m_multiAxisRetractAndReconfigure.setSafeRetractDistance(mapToInternalXYZ(distance));
}

void MachineConfiguration::setSafeRetractFeedrate(double feedrate) noexcept {
  m_multiAxisRetractAndReconfigure.setSafeRetractFeedrate(feedrate);
}

void MachineConfiguration::setSafePlungeFeedrate(double feedrate) noexcept {
  m_multiAxisRetractAndReconfigure.setSafePlungeFeedrate(feedrate);
}

// Singularities.

void MachineConfiguration::setSingularity(bool adjust, int method, double cone, double angle, double tolerance,
                                          double linearizationTolerance) {
  m_singularity.setAdjust(adjust);
  m_singularity.setMethod(method);
  m_singularity.setCone(cone);
  m_singularity.setAngle(angle);
  m_singularity.setTolerance(mapToInternalXYZ(tolerance));
  m_singularity.setLinearizationTolerance(mapToInternalXYZ(linearizationTolerance));
  // Checked only now: a bad method is reported with every value already
  // stored, and stays stored.
  if (method > MultiAxisSingularity::METHOD_LINEARIZE_ROTARY) fail(L"Invalid multi-axis singularity method.");
}

void MachineConfiguration::checkSingularityAdjust() const {
  if (!m_singularity.getAdjust()) fail(L"Adjust at singularities is not enabled.");
}

int MachineConfiguration::getSingularityMethod() const {
  checkSingularityAdjust();
  return m_singularity.getMethod();
}

double MachineConfiguration::getSingularityCone() const {
  checkSingularityAdjust();
  return m_singularity.getCone();
}

double MachineConfiguration::getSingularityAngle() const {
  checkSingularityAdjust();
  return m_singularity.getAngle();
}

double MachineConfiguration::getSingularityTolerance() const {
  checkSingularityAdjust();
  return mapToExternalXYZ(m_singularity.getTolerance());
}

double MachineConfiguration::getSingularityLinearizationTolerance() const {
  checkSingularityAdjust();
  if (m_singularity.getMethod() == MultiAxisSingularity::METHOD_OFF) fail(L"Singularity linearize method is off.");
  return mapToExternalXYZ(m_singularity.getLinearizationTolerance());
}

// Tool centre point per rotary axis.

void MachineConfiguration::disableTCPIfHeadAxis(Axis& axis) { axis.setTCPEnabled(!axis.isHead()); }

void MachineConfiguration::disableTCPIfTableAxis(Axis& axis) { axis.setTCPEnabled(!axis.isTable()); }

void MachineConfiguration::setTCPPerAxis(int mode) {
  m_savedTCPU = m_axisU.isTCPEnabled();
  m_savedTCPV = m_axisV.isTCPEnabled();
  m_savedTCPW = m_axisW.isTCPEnabled();
  m_axisTCPIsSet = true;
  for (Axis* axis : {&m_axisU, &m_axisV, &m_axisW}) {
    if (!axis->isRotational()) continue;
    switch (mode) {
      case 0: axis->setTCPEnabled(true); break;
      case 1: axis->setTCPEnabled(false); break;
      case 2: disableTCPIfTableAxis(*axis); break;
      case 3: disableTCPIfHeadAxis(*axis); break;
      default: break;
    }
  }
}

void MachineConfiguration::resetTCPPerAxis() {
  ORVO_ASSERT(m_axisTCPIsSet);
  if (m_axisU.isRotational()) m_axisU.setTCPEnabled(m_savedTCPU);
  if (m_axisV.isRotational()) m_axisV.setTCPEnabled(m_savedTCPV);
  if (m_axisW.isRotational()) m_axisW.setTCPEnabled(m_savedTCPW);
  m_axisTCPIsSet = false;
}

// Extruders.

void MachineConfiguration::setNumberExtruders(unsigned int number) {
  m_numberExtruders = number;
  m_extruderOffsets.resize(number);
}

Vector const& MachineConfiguration::extruderOffset(unsigned int number) const {
  if (number == 0 || number > m_extruderOffsets.size()) fail(L"Invalid extruder number.");
  return m_extruderOffsets[number - 1];
}

Vector& MachineConfiguration::extruderOffsetForWriting(unsigned int number) {
  if (m_extruderOffsets.size() < number) m_extruderOffsets.resize(number);
  return m_extruderOffsets[number - 1];
}

double MachineConfiguration::getExtruderOffsetX(unsigned int number) const { return extruderOffset(number).x; }
double MachineConfiguration::getExtruderOffsetY(unsigned int number) const { return extruderOffset(number).y; }
double MachineConfiguration::getExtruderOffsetZ(unsigned int number) const { return extruderOffset(number).z; }

// Number 0 has no entry to write to: after the assertion it stores nothing.
void MachineConfiguration::setExtruderOffsetX(unsigned int extruderNumber, double value) {
  ORVO_ASSERT(extruderNumber >= 1);
  if (extruderNumber >= 1) extruderOffsetForWriting(extruderNumber).x = value;
}

void MachineConfiguration::setExtruderOffsetY(unsigned int extruderNumber, double value) {
  ORVO_ASSERT(extruderNumber >= 1);
  if (extruderNumber >= 1) extruderOffsetForWriting(extruderNumber).y = value;
}

void MachineConfiguration::setExtruderOffsetZ(unsigned int extruderNumber, double value) {
  ORVO_ASSERT(extruderNumber >= 1);
  if (extruderNumber >= 1) extruderOffsetForWriting(extruderNumber).z = value;
}

// Numbers with units. The unit is checked only once the whole text has been
// read, so a stray word after the number is reported as the operation's own
// failure even when the unit is unknown too.

double MachineConfiguration::getAsSpatial(std::wstring const& text) {
  double value = 0;
  std::wstring unit;
  if (!readNumberAndUnit(text, L"Invalid spatial.", value, unit)) return value;
  return value * simpleFactor(kLengthUnits, unit);
}

double MachineConfiguration::getAsAngular(std::wstring const& text) {
  double value = 0;
  std::wstring unit;
  if (!readNumberAndUnit(text, L"Invalid angle.", value, unit)) return value * kDegree;
  return value * simpleFactor(kAngleUnits, unit);
}

double MachineConfiguration::getAsSpatialFeedrate(std::wstring const& text) {
  double value = 0;
  std::wstring unit;
  if (!readNumberAndUnit(text, L"Invalid feedrate.", value, unit)) return value;
  double multiplier = 0;
  double divisor = 0;
  compoundFactors(kLengthUnits, unit, multiplier, divisor);
  return value * multiplier / divisor;
}

double MachineConfiguration::getAsAngularFeedrate(std::wstring const& text) {
  double value = 0;
  std::wstring unit;
  if (!readNumberAndUnit(text, L"Invalid angular speed.", value, unit)) return value * kDegree;
  if (unit == L"rpm") return value * kRevolution;
  double multiplier = 0;
  double divisor = 0;
  compoundFactors(kAngleUnits, unit, multiplier, divisor);
  return value * multiplier / divisor;
}

double MachineConfiguration::getAsPower(std::wstring const& text) {
  double value = 0;
  std::wstring unit;
  if (!readNumberAndUnit(text, L"Invalid power.", value, unit)) return value;
  return value * simpleFactor(kPowerUnits, unit);
}

double MachineConfiguration::getAsTime(std::wstring const& text) {
  double value = 0;
  std::wstring unit;
  if (!readNumberAndUnit(text, L"Invalid time.", value, unit)) return value;
  return value * simpleFactor(kTimeUnits, unit);
}

double MachineConfiguration::getAsWeight(std::wstring const& text) {
  double value = 0;
  std::wstring unit;
  if (!readNumberAndUnit(text, L"Invalid weight.", value, unit)) return value;
  return value * simpleFactor(kWeightUnits, unit);
}

double MachineConfiguration::getAsSpindleSpeed(std::wstring const& text) {
  double value = 0;
  std::wstring unit;
  if (!readNumberAndUnit(text, L"Invalid spindle speed.", value, unit)) return value;
  return value * simpleFactor(kSpindleSpeedUnits, unit);
}

}  // namespace post
}  // namespace vantora
}  // namespace com
