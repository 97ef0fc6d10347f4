#include "machine/machine/PostMachineConfig/MachineConfiguration.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdlib>
#include <iterator>
#include <limits>
#include <optional>
#include <utility>
#include <vector>

#include "machine/machine/PostMachineConfig/MachineAxesValidator.h"
#include "machine/machine/PostMachineConfig/MachineConfigurationLoader.h"
#include "machine/machine/PostMachineConfig/ScriptingUtils.h"
#include "machine/machine/PostMachineConfig/SecurityWrapperBase.h"
#include "machine/machine/PostMachineConfig/UnitStringParser.h"
#include "machine/machine/ToolStationInterfaceName.h"
#include "nc/AxisInfo.h"
#include "nc/AxisName.h"
#include "nc/AxisValue.h"
#include "util/utility/Angle.h"
#include "util/utility/Basic.h"
#include "util/utility/DOM/Document.h"
#include "util/utility/DOM/Element.h"
#include "util/utility/Format.h"
#include "util/utility/Messages.h"
#include "util/utility/ParseException.h"
#include "util/utility/ScriptException.h"
#include "util/utility/Variant.h"

namespace {
constexpr char const* orvoAssertSourcePath = "machine\\machine\\PostMachineConfig\\MachineConfiguration";

[[noreturn]] __attribute__((cold)) void fail(wchar_t const* message) { throw Orvo::ScriptException(message); }

// A number with a unit, read by the shared parser, or the operation's own
// failure; a text of the right shape with an unknown unit is "Invalid unit.".
double readAs(com::vantora::post::UnitStringParser::Kind kind, std::wstring const& text, wchar_t const* failure) {
  using com::vantora::post::UnitStringParser;
  double value = 0;
  switch (UnitStringParser::parse(kind, std::wstring_view(text), value)) {
    case UnitStringParser::OK: return value;
    case UnitStringParser::INVALID_UNIT: fail(L"Invalid unit.");
    case UnitStringParser::INVALID_TEXT: break;
  }
  fail(failure);
}

}  // namespace

namespace com {
namespace vantora {
namespace post {

unsigned int const MachineConfiguration::DEFAULT_NUMBER_OF_TOOLS_MAX = 100;

namespace {

// The axes a configuration is reset to: no axis, and X, Y and Z as linear
// head axes along their unit vectors. Slots are assigned from these rather
// than from axes made on the spot, because making an axis takes the
// program-wide lock twice (on and off the consumer list), and resets run for
// every configuration made and every one read. Assignment keeps a slot's
// place on the list and takes the prototype's millimetre mode, which is what
// a new axis has.
struct InitialAxes {
  static Axis linearHeadAxis(Vector const& direction, int coordinate) {
    Axis axis(false, direction, Vector(), coordinate);
    axis.setActuator(0);
    return axis;
  }

  Axis none;
  Axis x = linearHeadAxis(Vector(1, 0, 0), 0);
  Axis y = linearHeadAxis(Vector(0, 1, 0), 1);
  Axis z = linearHeadAxis(Vector(0, 0, 1), 2);
};

InitialAxes const& initialAxes() {
  static InitialAxes const axes;
  return axes;
}

// Made while the library loads (the consumer list is ready then), so that
// they are on the list before any count of consumers is taken.
[[maybe_unused]] InitialAxes const& g_initialAxesAtLoad = initialAxes();

}  // namespace

MachineConfiguration::MachineConfiguration() : MachineConfiguration(Unfilled{}) { initialize(); }

MachineConfiguration::MachineConfiguration(WithoutAxes) : MachineConfiguration(Unfilled{}) {
  // The six slots are made as default axes, which is what removeAllAxes
  // leaves in them.
  initializeFields();
  m_axisCount = 0;
  for (auto& id : m_axisOrder) id = AXIS_NONE;
}

// A new configuration lists itself, its six axes and their ranges under one
// taking of the program-wide lock, and takes them off under one, instead of
// seven times each.
MachineConfiguration::MachineConfiguration(Unfilled)
    : UnitConsumer(ListedByOwner{}),
      m_axisX(ListedByOwner{}),
      m_axisY(ListedByOwner{}),
      m_axisZ(ListedByOwner{}),
      m_axisU(ListedByOwner{}),
      m_axisV(ListedByOwner{}),
      m_axisW(ListedByOwner{}) {
  enlistTogether({this, &m_axisX, &m_axisX.m_range, &m_axisY, &m_axisY.m_range, &m_axisZ, &m_axisZ.m_range,
                  &m_axisU, &m_axisU.m_range, &m_axisV, &m_axisV.m_range, &m_axisW, &m_axisW.m_range});
}

MachineConfiguration::MachineConfiguration(Axis const& first) : MachineConfiguration() { addAxis(first); }

MachineConfiguration::MachineConfiguration(Axis const& first, Axis const& second) : MachineConfiguration() {
  addAxis(first);
  addAxis(second);
}

MachineConfiguration::MachineConfiguration(Axis const& first, Axis const& second, Axis const& third)
    : MachineConfiguration() {
  addAxis(first);
  addAxis(second);
  addAxis(third);
}

MachineConfiguration::MachineConfiguration(MachineConfiguration const& other) = default;
MachineConfiguration& MachineConfiguration::operator=(MachineConfiguration const& other) = default;
MachineConfiguration& MachineConfiguration::operator=(MachineConfiguration&& other) = default;

MachineConfiguration::~MachineConfiguration() {
  delistTogether({this, &m_axisX, &m_axisX.m_range, &m_axisY, &m_axisY.m_range, &m_axisZ, &m_axisZ.m_range,
                  &m_axisU, &m_axisU.m_range, &m_axisV, &m_axisV.m_range, &m_axisW, &m_axisW.m_range});
}

char const* MachineConfiguration::getBaseClass() const noexcept { return "ScriptObject"; }

void MachineConfiguration::initialize() {
  initializeFields();
  removeAllAxes();
  InitialAxes const& initial = initialAxes();
  m_axisX = initial.x;
  m_axisY = initial.y;
  m_axisZ = initial.z;
  m_axisOrder[0] = AXIS_X;
  m_axisOrder[1] = AXIS_Y;
  m_axisOrder[2] = AXIS_Z;
  m_axisCount = 3;
}

void MachineConfiguration::initializeFields() {
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
}

// Reading the XML form

std::shared_ptr<MachineConfigurationLoader> MachineConfiguration::s_machineLoader;
std::shared_ptr<SecurityWrapperBase> MachineConfiguration::s_security;

// Without a security wrapper the host has no safe mode, and file access is
// allowed. Without a loader the host forgot to install one: that is a
// programming error, asserted, and then a script failure rather than a
// crash.
MachineConfiguration* MachineConfiguration::createFromPath(std::wstring const& path) {
  if (s_security && !s_security->isAllowed()) {
    throw Orvo::ScriptException(
        Orvo::Variant::getSubstitution(L"The following function is disabled in safe mode - '%1'.",
                                       {Orvo::Variant(L"MachineConfiguration::createFromPath()")}));
  }
  ORVO_ASSERT(s_machineLoader != nullptr);
  if (!s_machineLoader) fail(L"No machine configuration loader is installed.");
  std::unique_ptr<MachineConfiguration> configuration = s_machineLoader->load(path, 0);
  // A host's loader may answer null; a script gets a failure, not a null
  // configuration.
  if (!configuration) fail(L"Failed to load machine configuration.");
  return configuration.release();
}

MachineConfiguration* MachineConfiguration::createFromXML(std::wstring const& text) {
  Orvo::DOM::Document document;
  if (!document.create()) fail(L"Failed to create DOM document.");
  try {
    document.loadFromText(text);
  } catch (Orvo::ParseException const& e) {
    // The parser's own words, which end with the line and column.
    throw Orvo::ScriptException(Orvo::Messages::utf8ToWide(e.what()));
  }
  // Without a path `inherit` has no effect and no loader is asked, so the
  // base loader reads whatever loader the host installed.
  MachineConfigurationLoader reader;
  return reader.read(document.getRoot(), std::nullopt, 0).release();
}

void MachineConfiguration::setMachineLoader(std::shared_ptr<MachineConfigurationLoader> impl) {
  EXPECTS(impl.get() != nullptr);
  s_machineLoader = std::move(impl);
}

void MachineConfiguration::setSecurityWrapper(std::shared_ptr<SecurityWrapperBase> impl) {
  EXPECTS(impl.get() != nullptr);
  s_security = std::move(impl);
}

// Orientation solving and positions

namespace {

constexpr double kOrientPi = 3.141592653589793;
constexpr double kOrientTwoPi = 2 * kOrientPi;

// Directions closer to the spindle axis than 0.005 degrees count as the
// spindle axis itself: all rotary values 0.
double const kNearSameCosine = std::cos(8.726646259971648e-05);
// The least cosine between a solution's direction and the one asked for.
constexpr double kAcceptCosine = 0.9999999;
// The most resolution steps of a W sweep: each one is a two-axis solve.
constexpr double kMaximumWSteps = 1002;

double clampUnit(double value) noexcept { return std::min(1.0, std::max(-1.0, value)); }

Vector rotated(Axis const& axis, double angle, Vector const& v) {
  return MachineConfiguration::rotateAbout(axis.getEffectiveAxis(), angle, v);
}

}  // namespace

Vector MachineConfiguration::rotateAbout(Vector const& axis, double angle, Vector const& v) noexcept {
  // The elements of Matrix(axis, angle), applied to v without building it.
  double const x = axis.x, y = axis.y, z = axis.z;
  double const c = std::cos(angle), s = std::sin(angle);
  double const t = 1 - c;
  return Vector((x * x * t + c) * v.x + (x * y * t - z * s) * v.y + (x * z * t + y * s) * v.z,
                (x * y * t + z * s) * v.x + (y * y * t + c) * v.y + (y * z * t - x * s) * v.z,
                (x * z * t - y * s) * v.x + (y * z * t + x * s) * v.y + (z * z * t + c) * v.z);
}

double MachineConfiguration::angleAbout(Vector const& axis, Vector const& from, Vector const& to) noexcept {
  Vector const p = Vector::diff(from, Vector::product(axis, Vector::dot(from, axis)));
  Vector const q = Vector::diff(to, Vector::product(axis, Vector::dot(to, axis)));
  return -std::atan2(Vector::dot(Vector::cross(axis, p), q), Vector::dot(p, q));
}

Range const& MachineConfiguration::defaultRotaryRange() {
  static Range const range(-kOrientPi, kOrientPi, Range::ROTATIONAL);
  return range;
}

Vector MachineConfiguration::getUVW(Vector const& abc) const {
  return Vector(m_axisU.getCoordinateOfVector(abc), m_axisV.getCoordinateOfVector(abc),
                m_axisW.getCoordinateOfVector(abc));
}

Vector MachineConfiguration::makeABC(Vector const& uvw) const {
  Vector abc;
  if (m_axisU.isEnabled()) abc.setCoordinate(static_cast<unsigned int>(m_axisU.getCoordinate()), uvw.x);
  if (m_axisV.isEnabled()) abc.setCoordinate(static_cast<unsigned int>(m_axisV.getCoordinate()), uvw.y);
  if (m_axisW.isEnabled()) abc.setCoordinate(static_cast<unsigned int>(m_axisW.getCoordinate()), uvw.z);
  return abc;
}

Vector MachineConfiguration::getDirectionUVW(Vector const& uvw) const {
  Vector v = m_spindleAxisNormalized;
  if (m_axisU.isEnabled()) v = rotated(m_axisU, uvw.x, v);
  if (m_axisV.isEnabled()) v = rotated(m_axisV, uvw.y, v);
  if (m_axisW.isEnabled()) v = rotated(m_axisW, uvw.z, v);
  return v;
}

Vector MachineConfiguration::getDirection(Vector const& abc) const { return getDirectionUVW(getUVW(abc)); }

VectorPair MachineConfiguration::getABCByDirectionBoth(Vector const& direction) const {
  Vector::validate(direction);
  Vector const t = direction.getNormalized();
  Vector const& s = m_spindleAxisNormalized;

  VectorPair uvw;
  unsigned int const count = getNumberOfAxes();
  if (count <= 3) {
    ORVO_ASSERT(!hasRotational());
    // No rotary axis: both solutions are zero, and only the spindle axis
    // itself passes the check below.
  } else if (count == 4) {
    uvw = solveFourAxes(t, s);
  } else if (count == 5) {
    uvw = solveFiveAxes(t, s);
  } else if (count == 6) {
    uvw = solveSixAxes(t, s);
  } else {
    fail(L"Invalid machine configuration.");
  }

  if (Vector::dot(getDirectionUVW(uvw.first), t) < kAcceptCosine ||
      Vector::dot(getDirectionUVW(uvw.second), t) < kAcceptCosine) {
    fail(L"Direction is not supported for machine configuration.");
  }
  return VectorPair(mapToExternalABC(makeABC(uvw.first)), mapToExternalABC(makeABC(uvw.second)));
}

VectorPair MachineConfiguration::solveFourAxes(Vector const& t, Vector const& s) const {
  if (!m_axisU.isEnabled() || m_axisV.isEnabled() || m_axisW.isEnabled()) fail(L"Invalid machine configuration.");
  if (!m_axisU.isRotational()) fail(L"Unsupported machine configuration.");
  // The tool is taken to be perpendicular to the axis; a direction off that
  // circle is turned down by the final check.
  double angle = std::acos(clampUnit(Vector::dot(t, s)));
  Range const& range = m_axisU.getRange();
  if (!range.isNonRange()) angle = reduceToRange(angle, kOrientTwoPi, range);
  if (!(Vector::dot(rotated(m_axisU, angle, s), t) >= Vector::dot(rotated(m_axisU, -angle, s), t))) angle = -angle;
  Vector const solution(angle, 0, 0);
  return VectorPair(solution, solution);
}

VectorPair MachineConfiguration::solveFiveAxes(Vector const& t, Vector const& s) const {
  if (!m_axisU.isEnabled() || !m_axisV.isEnabled() || m_axisW.isEnabled()) fail(L"Invalid machine configuration.");
  if (!m_axisU.isRotational() || !m_axisV.isRotational()) fail(L"Unsupported machine configuration.");
  if (Vector::dot(t, s) >= kNearSameCosine) return VectorPair();

  Vector const& a1 = m_axisU.getEffectiveAxis();
  Vector const& a2 = m_axisV.getEffectiveAxis();
  // s turned about a1 by u has the component c1s c12 + A cos(u) - B sin(u)
  // along a2, which the turn about a2 keeps: so u follows from t's component
  // along a2, and v closes the remaining angle.
  double const c12 = Vector::dot(a1, a2);
  double const c1s = Vector::dot(a1, s);
  double const A = Vector::dot(a2, s) - c1s * c12;
  double const B = Vector::dot(s, Vector::cross(a1, a2));
  double const r = std::sqrt(A * A + B * B);
  double const phi = std::atan2(B, A);
  if (!(r > 0)) fail(L"Direction is not supported for machine configuration.");
  double const q = std::acos(clampUnit((Vector::dot(t, a2) - c1s * c12) / r));

  Range const& rangeU = m_axisU.getRange().isNonRange() ? defaultRotaryRange() : m_axisU.getRange();
  Range const& rangeV = m_axisV.getRange().isNonRange() ? defaultRotaryRange() : m_axisV.getRange();
  double u1 = reduceToRange(q - phi, kOrientTwoPi, rangeU);
  double u2 = reduceToRange(-phi - q, kOrientTwoPi, rangeU);
  if (std::fabs(u2) < std::fabs(u1)) std::swap(u1, u2);

  auto const solve = [&](double u) {
    Vector const w = rotateAbout(a1, u, s);
    double const v = reduceToRange(angleAbout(a2, t, w), kOrientTwoPi, rangeV);
    return Vector(u, v, 0);
  };
  return VectorPair(solve(u1), solve(u2));
}

bool MachineConfiguration::solveTwoAxes(Vector const& t, Vector const& s, Vector const& a1, Vector const& a2,
                                        double w, Vector& first, Vector& second) {
  if (Vector::dot(t, s) >= kNearSameCosine) {
    first = second = Vector(0, 0, w);
    return true;
  }
  double const c12 = Vector::dot(a1, a2);
  double const c1s = Vector::dot(a1, s);
  double const A = Vector::dot(a2, s) - c1s * c12;
  double const B = Vector::dot(s, Vector::cross(a1, a2));
  double const r = std::sqrt(A * A + B * B);
  double const phi = std::atan2(B, A);
  if (!(r > 0)) return false;
  double const q = std::acos(clampUnit((Vector::dot(t, a2) - c1s * c12) / r));
  double u1 = q - phi;
  double u2 = -phi - q;
  if (u2 < -kOrientPi) u2 += kOrientTwoPi;
  if (std::fabs(u2) < std::fabs(u1)) std::swap(u1, u2);

  auto const solve = [&](double u) {
    Vector const turned = rotateAbout(a1, u, s);
    double const v = Vector::dot(turned, t) < kNearSameCosine ? angleAbout(a2, t, turned) : 0.0;
    return Vector(u, v, w);
  };
  first = solve(u1);
  second = solve(u2);
  return true;
}

VectorPair MachineConfiguration::solveSixAxes(Vector const& t, Vector const& s) const {
  if (!m_axisU.isEnabled() || !m_axisV.isEnabled() || !m_axisW.isEnabled()) fail(L"Invalid machine configuration.");
  if (!m_axisU.isRotational()) fail(L"Unsupported machine configuration - U axis must be rotational.");
  if (!m_axisV.isRotational()) fail(L"Unsupported machine configuration - V axis must be rotational.");
  if (!m_axisW.isRotational()) fail(L"Unsupported machine configuration - W axis must be rotational.");
  Vector const& a1 = m_axisU.getEffectiveAxis();
  Vector const& a2 = m_axisV.getEffectiveAxis();
  Vector const& a3 = m_axisW.getEffectiveAxis();
  Range const& range = m_axisW.getRange();

  // W is redundant: it is held at one value and U and V are solved about
  // their axes as W turns them.
  bool fixed = true;
  double w = 0;
  if (m_axisW.isAggregate()) {
    w = range.getMinimum();
  } else if (m_axisW.getResolution() <= 0) {
    // Without a range this fails with "Range has not been initialized.".
    double const minimum = range.getMinimum();
    double const maximum = range.getMaximum();
    w = std::fabs(maximum) < std::fabs(minimum) ? maximum : minimum;
  } else {
    fixed = false;
  }
  if (!fixed) {
    if (range.getSpan() / m_axisW.getResolution() > kMaximumWSteps) {
      fail(L"Unsupported machine configuration - resolution to fine for W axis.");
    }
    return sweepW(t, s, a1, a2, a3);
  }
  VectorPair result;
  // Two axes that cannot be told apart have no solution here, as on five
  // axes.
  if (!solveTwoAxes(t, s, rotateAbout(a3, w, a1), rotateAbout(a3, w, a2), w, result.first, result.second)) {
    fail(L"Direction is not supported for machine configuration.");
  }
  return result;
}

std::vector<long> MachineConfiguration::getWSweepSteps(double minimum, double maximum, double resolution,
                                                      int preference) {
  long const lo = static_cast<long>(std::ceil(minimum / resolution));
  long const hi = static_cast<long>(std::floor(maximum / resolution));
  std::size_t const n = static_cast<std::size_t>(std::labs(hi - lo) + 1);
  long start = 0;
  long reach = 0;
  if (minimum <= 0 && 0 <= maximum) {
    start = 0;
    reach = std::max(-lo, hi);
  } else {
    start = hi < 0 ? hi : lo;
    reach = std::labs(hi - lo);
  }

  // The preferred sign and 0 fill the list from the front, the other sign
  // from just behind where the preferred ones end.
  long positives = 0;
  long negatives = 0;
  for (long i = lo; i <= hi; ++i) {
    if (i > 0) ++positives;
    if (i < 0) ++negatives;
  }
  // A place that no candidate fills stays empty. That happens when the whole
  // range lies on the side against the preference: the front places are then
  // never filled and the last candidate would fall past the end, which the
  // assertion reports and which is dropped rather than written.
  std::vector<std::optional<long>> windices(n);
  std::size_t prefIndex = 0;
  std::size_t nonPrefIndex =
      static_cast<std::size_t>(preference > 0 ? positives + 1 : preference < 0 ? negatives + 1 : 0);
  auto const add = [&](long i) {
    bool const preferred = preference == 0 || i == 0 || (preference > 0) == (i > 0);
    if (preferred) {
      if (prefIndex < windices.size()) windices[prefIndex] = i;
      ++prefIndex;
    } else {
      ORVO_ASSERT(nonPrefIndex < windices.size());
      if (nonPrefIndex < windices.size()) windices[nonPrefIndex] = i;
      ++nonPrefIndex;
    }
  };
  add(start);
  for (long k = 1; k <= reach; ++k) {
    if (lo <= start + k && start + k <= hi) add(start + k);
    if (lo <= start - k && start - k <= hi) add(start - k);
  }
  std::vector<long> steps;
  steps.reserve(n);
  for (std::optional<long> const& index : windices)
    if (index) steps.push_back(*index);
  return steps;
}

VectorPair MachineConfiguration::sweepW(Vector const& t, Vector const& s, Vector const& a1, Vector const& a2,
                                        Vector const& a3) const {
  double const resolution = m_axisW.getResolution();
  Range const& range = m_axisW.getRange();
  std::vector<long> const steps =
      getWSweepSteps(range.getMinimum(), range.getMaximum(), resolution, m_axisW.getPreference());

  // Every candidate is tried; only a strictly better one replaces the kept
  // pair, so ties go to the front of the list.
  VectorPair best;
  double bestCosine = -std::numeric_limits<double>::infinity();
  for (long step : steps) {
    double const w = resolution * static_cast<double>(step);
    Vector p, q;
    if (!solveTwoAxes(t, s, rotateAbout(a3, w, a1), rotateAbout(a3, w, a2), w, p, q)) continue;
    double const cp = clampUnit(Vector::dot(getDirectionUVW(p), t));
    if (cp > bestCosine) {
      bestCosine = cp;
      best = VectorPair(p, q);
    }
    double const cq = clampUnit(Vector::dot(getDirectionUVW(q), t));
    if (cq > bestCosine) {
      bestCosine = cq;
      best = VectorPair(p, q);
    }
  }
  return best;
}

VectorPair MachineConfiguration::getABCByDirectionBothWithoutExceptions(Vector const& direction) const {
  // Only script failures are expected here; a zero pair tells the caller
  // that there was none to give. Anything else is not the solver's to hide.
  try {
    return getABCByDirectionBoth(direction);
  } catch (Orvo::ScriptException const&) {
    return VectorPair();
  }
}

Vector MachineConfiguration::getABCByDirection(Vector const& direction) const {
  return getABCByDirectionBoth(direction).first;
}

Vector MachineConfiguration::getABCByDirection2(Vector const& direction) const {
  return getABCByDirectionBoth(direction).second;
}

Vector MachineConfiguration::getABC(Matrix const& orientation) const {
  return getABCByDirection(orientation.getForward());
}

Vector MachineConfiguration::getOtherABCByDirection(Vector const& abc) const {
  Vector::validate(abc);
  if (getNumberOfAxes() <= 4) return abc;
  VectorPair const both = getABCByDirectionBoth(getDirection(abc));
  double const e1 = Vector::diff(both.first, abc).getAbsolute().getMaximum();
  double const e2 = Vector::diff(both.second, abc).getAbsolute().getMaximum();
  return e2 <= e1 ? both.first : both.second;
}

Vector MachineConfiguration::getSpindleAxisABC(Vector const& abc) const {
  if (!isHeadConfiguration()) return m_spindleAxisNormalized;
  Vector v = m_spindleAxis;
  for (Axis const* axis : {&m_axisU, &m_axisV, &m_axisW}) {
    if (axis->isEnabled() && axis->isHead()) {
      v = Matrix::getAxisRotation(axis->getEffectiveAxis(), axis->getCoordinateOfVector(abc)).multiplyVector(v);
    }
  }
  return v.getNormalized();
}

Vector MachineConfiguration::getHeadABC(Vector const& abc) const {
  Vector result;
  for (Axis const* axis : {&m_axisU, &m_axisV, &m_axisW}) {
    if (axis->isEnabled() && axis->isHead()) {
      auto const coordinate = static_cast<unsigned int>(axis->getCoordinate());
      result.setCoordinate(coordinate, abc.getCoordinate(coordinate));
    }
  }
  return result;
}

Vector MachineConfiguration::getTableABC(Vector const& abc) const {
  Vector result;
  for (Axis const* axis : {&m_axisU, &m_axisV, &m_axisW}) {
    if (axis->isEnabled() && axis->isTable()) {
      auto const coordinate = static_cast<unsigned int>(axis->getCoordinate());
      result.setCoordinate(coordinate, abc.getCoordinate(coordinate));
    }
  }
  return result;
}

Matrix MachineConfiguration::getOrientation(Vector const& abc) const {
  Vector::validate(abc);
  Vector const uvw = getUVW(abc);
  Matrix m;
  if (m_axisU.isEnabled()) m = Matrix::getAxisRotation(m_axisU.getEffectiveAxis(), uvw.x);
  if (m_axisV.isEnabled()) m = Matrix::getAxisRotation(m_axisV.getEffectiveAxis(), uvw.y).multiplyMatrix(m);
  if (m_axisW.isEnabled()) m = Matrix::getAxisRotation(m_axisW.getEffectiveAxis(), uvw.z).multiplyMatrix(m);
  return m;
}

Matrix MachineConfiguration::getOrientationABC(Vector const& abc) const {
  Vector::validate(abc);
  Vector const uvw = getUVW(abc);
  Vector const& s = m_spindleAxisNormalized;
  Vector const z(0, 0, 1);
  Matrix m;
  // A spindle along -Z passes this test too and starts from the identity.
  if (1 - std::fabs(Vector::dot(s, z)) > 1e-7) {
    // The rotation needs a unit axis; cross(Z, s) is as long as the sine.
    m = Matrix::getAxisRotation(Vector::cross(z, s).getNormalized(), Vector::getAngle(z, s));
  }
  if (m_axisU.isEnabled()) m = Matrix::getAxisRotation(m_axisU.getEffectiveAxis(), uvw.x).multiplyMatrix(m);
  if (m_axisV.isEnabled()) m = Matrix::getAxisRotation(m_axisV.getEffectiveAxis(), uvw.y).multiplyMatrix(m);
  if (m_axisW.isEnabled()) m = Matrix::getAxisRotation(m_axisW.getEffectiveAxis(), uvw.z).multiplyMatrix(m);
  return m;
}

Matrix MachineConfiguration::getRemainingOrientation(Vector const& abc, Matrix const& orientation) const {
  return getOrientation(abc).getTransposed().multiplyMatrix(orientation);
}

Matrix MachineConfiguration::getRemainingOrientationABC(Vector const& abc, Matrix const& orientation) const {
  return getOrientationABC(abc).getTransposed().multiplyMatrix(orientation);
}

Matrix MachineConfiguration::getHeadOrientation(Vector const& abc) const { return getOrientation(getHeadABC(abc)); }

Matrix MachineConfiguration::getTableOrientation(Vector const& abc) const {
  return getOrientation(getTableABC(abc));
}

Vector MachineConfiguration::getPosition(Vector const& position, Vector const& abc) const {
  Vector::validate(position);
  Vector::validate(abc);
  return getOptimizedPosition(position, abc, TCP_REVERSE, OPTIMIZE_BOTH, false);
}

Vector MachineConfiguration::getOptimizedPosition(Vector const& position, Vector const& abc, int tcpType,
                                                  int optimizeType, bool force) const {
  return mapToExternalXYZ(
      getOptimizedPositionInternal(mapToInternalXYZ(position), abc, tcpType, optimizeType, force, false));
}

Vector MachineConfiguration::getOptimizedPositionInternal(Vector const& position, Vector const& abc, int tcpType,
                                                          int optimizeType, bool force,
                                                          bool ignoreVirtualTooltip) const {
  bool reverse = false;
  switch (tcpType) {
    case TCP_REVERSE: reverse = true; break;
    case TCP_FORWARD_IF_NOT_OPTIMIZED:
      if (isOptimized()) return position;
      break;
    case TCP_REVERSE_IF_OPTIMIZED:
      if (!isOptimized()) return position;
      reverse = true;
      break;
    default: break;
  }
  if (reverse) {
    Vector const heads = getOptimizedHeads(position, abc, true, optimizeType, force, ignoreVirtualTooltip);
    return getOptimizedTables(heads, abc, true, optimizeType, false, force);
  }
  Vector const tables = getOptimizedTables(position, abc, false, optimizeType, false, force);
  return getOptimizedHeads(tables, abc, false, optimizeType, force, ignoreVirtualTooltip);
}

Vector MachineConfiguration::getOptimizedDirection(Vector const& direction, Vector const& abc, bool reverse,
                                                   bool force) const {
  return getOptimizedTables(direction, abc, reverse, OPTIMIZE_TABLES, true, force);
}

bool MachineConfiguration::compensates(Axis const& axis, bool table, bool force) const noexcept {
  // An axis with TCP on is followed by the control itself.
  return axis.isEnabled() && axis.isTable() == table && (!axis.isTCPEnabled() || force);
}

Vector MachineConfiguration::getOptimizedTables(Vector const& position, Vector const& abc, bool reverse,
                                                int optimizeType, bool directionOnly, bool force) const {
  if (optimizeType == OPTIMIZE_HEADS) return position;
  Axis const* const forward[] = {&m_axisW, &m_axisV, &m_axisU};
  Axis const* const backward[] = {&m_axisU, &m_axisV, &m_axisW};
  Vector value = position;
  for (Axis const* axis : reverse ? backward : forward) {
    if (!compensates(*axis, true, force)) continue;
    // A rotational axis's offset is held as given: it is the internal value.
    Vector const offset = axis->getOffset();
    if (!directionOnly) value.subtract(offset);
    Matrix m = Matrix::getAxisRotation(axis->getEffectiveAxis(), axis->getCoordinateOfVector(abc));
    if (reverse) m.transpose();
    value = m.multiplyTransposedVector(value);
    if (!directionOnly) value.add(offset);
  }
  return value;
}

Vector MachineConfiguration::getOptimizedHeads(Vector const& position, Vector const& abc, bool reverse,
                                               int optimizeType, bool force, bool ignoreVirtualTooltip) const {
  if (optimizeType == OPTIMIZE_TABLES) return position;
  Vector acc;
  double length = mapToInternalXYZ(getToolLength());
  for (Axis const* axis : {&m_axisU, &m_axisV, &m_axisW}) {
    if (!compensates(*axis, false, force)) continue;
    Vector offset = axis->getOffset();
    Vector tool = Vector::product(m_spindleAxis, length);
    if (reverse) {
      // Only the offsets change sign in reverse; the rotations stay.
      offset.negate();
      tool.negate();
    }
    acc.add(offset);
    acc.add(tool);
    acc = Matrix::getAxisRotation(axis->getEffectiveAxis(), axis->getCoordinateOfVector(abc)).multiplyVector(acc);
    if (m_virtualTooltip && !ignoreVirtualTooltip) {
      acc.subtract(offset);
      acc.subtract(tool);
    }
    length = 0;  // The tool hangs from the first such axis only.
  }
  return Vector::sum(position, acc);
}

// Axes.

void MachineConfiguration::addAxis(Axis const& axis) {
  AxisId const id = placeAxis(axis);
  if (id != AXIS_NONE) slot(id) = axis;
}

void MachineConfiguration::addAxis(Axis&& axis) {
  AxisId const id = placeAxis(axis);
  if (id != AXIS_NONE) slot(id) = std::move(axis);
}

MachineConfiguration::AxisId MachineConfiguration::placeAxis(Axis const& axis) {
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
      return AXIS_NONE;  // No room for a fourth rotary axis; that is not a failure.
    }
  } else {
    fail(L"Invalid axis.");
  }
  m_axisOrder[m_axisCount] = id;
  ++m_axisCount;
  return id;
}

void MachineConfiguration::removeAllAxes() {
  m_axisCount = 0;
  for (auto& id : m_axisOrder) id = AXIS_NONE;
  Axis const& none = initialAxes().none;
  m_axisX = none;
  m_axisY = none;
  m_axisZ = none;
  m_axisU = none;
  m_axisV = none;
  m_axisW = none;
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
  return readAs(UnitStringParser::SPATIAL, text, L"Invalid spatial.");
}

double MachineConfiguration::getAsAngular(std::wstring const& text) {
  return readAs(UnitStringParser::ANGULAR, text, L"Invalid angle.");
}

double MachineConfiguration::getAsSpatialFeedrate(std::wstring const& text) {
  return readAs(UnitStringParser::SPATIAL_FEEDRATE, text, L"Invalid feedrate.");
}

double MachineConfiguration::getAsAngularFeedrate(std::wstring const& text) {
  return readAs(UnitStringParser::ANGULAR_FEEDRATE, text, L"Invalid angular speed.");
}

double MachineConfiguration::getAsPower(std::wstring const& text) {
  return readAs(UnitStringParser::POWER, text, L"Invalid power.");
}

double MachineConfiguration::getAsTime(std::wstring const& text) {
  return readAs(UnitStringParser::TIME, text, L"Invalid time.");
}

double MachineConfiguration::getAsWeight(std::wstring const& text) {
  return readAs(UnitStringParser::WEIGHT, text, L"Invalid weight.");
}

double MachineConfiguration::getAsSpindleSpeed(std::wstring const& text) {
  return readAs(UnitStringParser::SPINDLE_SPEED, text, L"Invalid spindle speed.");
}

// Writing the XML form

namespace {

using Orvo::DOM::Element;

// The numbers of the XML form. Without units every number is bare and in
// the unit the reader takes a bare number in: millimetres, kilograms,
// millimetres per minute, seconds, revolutions per minute, watts, and
// degrees (per minute) for angles, since a bare angle reads as degrees. The
// inch flag only matters with units: a bare number is never in inches.
// Values come from the internal fields (millimetres, radians), whatever the
// unit mode of the configuration, so that the text does not depend on it.
class XmlNumberText {
 public:
  XmlNumberText(bool units, bool inch) noexcept : m_units(units), m_inch(units && inch) {}

  static std::wstring plain(double value) { return Orvo::Format::getAsPosixWString(value); }
  static std::wstring plain(unsigned int value) { return std::to_wstring(value); }

  std::wstring length(double millimetres) const {
    if (!m_units) return plain(millimetres);
    return m_inch ? plain(millimetres / kMillimetresPerInch) + L"in" : plain(millimetres) + L"mm";
  }
  std::wstring weight(double kilograms) const {
    if (!m_units) return plain(kilograms);
    return m_inch ? plain(kilograms / kKilogramsPerPound) + L"lb" : plain(kilograms) + L"kg";
  }
  std::wstring feed(double millimetresPerMinute) const {
    if (!m_units) return plain(millimetresPerMinute);
    return m_inch ? plain(millimetresPerMinute / kMillimetresPerInch) + L"in/min"
                  : plain(millimetresPerMinute) + L"mm/min";
  }
  std::wstring angle(double radians) const { return withUnit(radians / kRadiansPerDegree, L"deg"); }
  std::wstring angularFeed(double radiansPerMinute) const {
    return withUnit(radiansPerMinute / kRadiansPerDegree, L"deg/min");
  }
  std::wstring time(double seconds) const { return withUnit(seconds, L"s"); }
  std::wstring spindleSpeed(double rpm) const { return withUnit(rpm, L"rpm"); }
  // Horsepower in inch mode; otherwise the largest metric unit from its
  // threshold up. The megawatt starts at ten of them, not one.
  std::wstring power(double watts) const {
    if (!m_units) return plain(watts);
    if (m_inch) return plain(watts / kWattsPerHorsepower) + L"hp";
    if (watts >= 10000000) return plain(watts / 1000000) + L"MW";
    if (watts >= 10000) return plain(watts / 1000) + L"kW";
    return plain(watts) + L"W";
  }

  std::wstring lengths(Vector const& millimetres) const {
    return Orvo::Variant::getSubstitution(L"%1 %2 %3",
                                          {length(millimetres.x), length(millimetres.y), length(millimetres.z)});
  }
  // A direction has no unit: it is normalised on reading, so its numbers go
  // bare, which a length reads as millimetres.
  static std::wstring direction(Vector const& v) {
    return Orvo::Variant::getSubstitution(L"%1 %2 %3", {plain(v.x), plain(v.y), plain(v.z)});
  }
  // The limits of an axis, internal: angles for a rotational axis, lengths
  // otherwise.
  std::wstring range(Range const& range, bool rotational) const {
    if (range.isNonRange()) return L"unbound";
    double const minimum = range.getInternalMinimum();
    double const maximum = range.getInternalMaximum();
    return Orvo::Variant::getSubstitution(
        L"%1 %2", {rotational ? angle(minimum) : length(minimum), rotational ? angle(maximum) : length(maximum)});
  }

 private:
  // The factors of the unit words the reader knows.
  static constexpr double kMillimetresPerInch = 25.4;
  static constexpr double kKilogramsPerPound = 0.45359237;
  static constexpr double kRadiansPerDegree = 0.017453292519943295;
  static constexpr double kWattsPerHorsepower = 746;

  std::wstring withUnit(double value, wchar_t const* unit) const {
    return m_units ? plain(value) + unit : plain(value);
  }

  bool m_units;
  bool m_inch;
};

// The reader takes exactly these two words for a bool.
wchar_t const* yesNo(bool value) noexcept { return value ? L"yes" : L"no"; }

// A text element, left out when the text is empty, as reading an absent
// element leaves the empty default in place.
void appendTextElement(Element& parent, wchar_t const* name, std::wstring const& text) {
  if (!text.empty()) parent.appendElement(name).setTextContent(text);
}

// Child elements x, y and z of bare numbers: the additive positions are
// plain numbers on reading, with no unit and no unit mapping.
void appendXYZ(Element& parent, Vector const& v) {
  parent.appendElement(L"x").setTextContent(XmlNumberText::plain(v.x));
  parent.appendElement(L"y").setTextContent(XmlNumberText::plain(v.y));
  parent.appendElement(L"z").setTextContent(XmlNumberText::plain(v.z));
}

// The coolant names in the order of the coolant vector, whose entry 0 is
// COOLANT_OFF and has no name.
constexpr wchar_t const* kCoolantNames[] = {
    L"FLOOD", L"MIST", L"THROUGH_TOOL", L"AIR", L"AIR_THROUGH_TOOL", L"SUCTION", L"FLOOD_MIST", L"FLOOD_THROUGH_TOOL",
};

// An internal length of an axis from its getter, which maps a linear axis's
// value with the axis's own factor and leaves a rotational one alone.
double internalOf(Axis const& axis, double external) noexcept {
  return axis.isLinear() ? axis.mapToInternalXYZ(external) : external;
}

void appendAxis(Element& root, XmlNumberText const& n, wchar_t const* id, bool linearSlot, Axis const& axis) {
  bool const rotational = axis.isRotational();
  Element e = root.appendElement(L"axis");
  e.setAttribute(L"id", id);
  // Written even when empty: an absent name reads as "unspecified", an
  // empty one as itself, with the empty (default) part id.
  e.setAttribute(L"name", axis.getName());
  e.setAttribute(L"actuator", rotational ? L"rotational" : L"linear");
  Vector const offset = rotational ? axis.getOffset() : axis.mapToInternalXYZ(axis.getOffset());
  if (offset.x != 0 || offset.y != 0 || offset.z != 0) e.setAttribute(L"offset", n.lengths(offset));
  // A length on reading for either actuator.
  e.setAttribute(L"displacement", n.length(internalOf(axis, axis.getDisplacement())));
  // An enabled axis is on coordinate 0, 1 or 2; anything else only stands in
  // a slot set by hand and is written as the number it is.
  int const coordinate = axis.getCoordinate2();
  static constexpr wchar_t const* kCoordinates[] = {L"X", L"Y", L"Z"};
  e.setAttribute(L"coordinate", coordinate >= 0 && coordinate <= 2 ? std::wstring(kCoordinates[coordinate])
                                                                   : std::to_wstring(coordinate));
  // The reader starts X, Y and Z from their own unit vectors, so a linear
  // one that keeps it exactly needs no `axis`.
  Vector const& direction = axis.getAxis();
  bool const ownUnitVector = linearSlot && axis.isLinear() && direction.x == (id[0] == L'X' ? 1 : 0) &&
                             direction.y == (id[0] == L'Y' ? 1 : 0) && direction.z == (id[0] == L'Z' ? 1 : 0);
  if (!ownUnitVector) e.setAttribute(L"axis", XmlNumberText::direction(direction));
  e.setAttribute(L"link", axis.isTable() ? L"table" : L"head");
  double const resolution = internalOf(axis, axis.getResolution());
  e.setAttribute(L"resolution", rotational ? n.angle(resolution) : n.length(resolution));
  // Only a home position that was set: reading one sets its presence flag.
  if (axis.hasHomePosition()) {
    double const home = internalOf(axis, axis.getHomePosition());
    e.setAttribute(L"homePosition", rotational ? n.angle(home) : n.length(home));
  }
  if (axis.getPreference() != 0) e.setAttribute(L"preference", axis.getPreference() > 0 ? L"positive" : L"negative");
  double const maximumFeed = internalOf(axis, axis.getMaximumFeed());
  if (maximumFeed > 0) e.setAttribute(L"maximumFeed", rotational ? n.angularFeed(maximumFeed) : n.feed(maximumFeed));
  double const rapidFeed = internalOf(axis, axis.getRapidFeed());
  if (rapidFeed > 0) e.setAttribute(L"rapidFeed", rotational ? n.angularFeed(rapidFeed) : n.feed(rapidFeed));
  bool const realRange = !axis.getRange().isNonRange();
  if (realRange && axis.isCyclic()) e.setAttribute(L"cyclic", L"yes");
  // A linear axis has no TCP flag to give, and setting one on it fails.
  if (rotational) e.setAttribute(L"tcp", yesNo(axis.isTCPEnabled()));
  if (realRange) e.setAttribute(L"range", n.range(axis.getRange(), rotational));
  static constexpr wchar_t const* kResets[] = {L"previous", L"operation", L"rewind", L"both"};
  int const reset = axis.getReset();
  if (reset >= 1 && reset <= 3) e.setAttribute(L"reset", kResets[reset]);
}

}  // namespace

std::wstring MachineConfiguration::getXML() const { return getXMLImpl(false, false); }

std::wstring MachineConfiguration::getXMLImpl(bool units, bool inch) const {
  Orvo::DOM::Document document;
  if (!document.create()) fail(L"Failed to create DOM document.");
  XmlNumberText const n(units, inch);

  // Every element the reader knows is written with all of its attributes,
  // defaults included, so that the text says everything on its own; the
  // exceptions are values whose reading would change more than the value
  // (presence flags, "unset" markers the reader refuses) and the fields the
  // format never carries back (inspection, minimum spindle speed, the root
  // home position).
  Element root = document.createRoot(L"machine");
  root.setAttribute(L"version", L"1.0");

  appendTextElement(root, L"vendor", m_vendor);
  appendTextElement(root, L"vendorUrl", m_vendorUrl);
  appendTextElement(root, L"model", m_model);
  appendTextElement(root, L"description", m_description);
  appendTextElement(root, L"control", m_control);

  Element machining = root.appendElement(L"machining");
  machining.setAttribute(L"milling", yesNo(m_milling));
  machining.setAttribute(L"turning", yesNo(m_turning));
  machining.setAttribute(L"wire", yesNo(m_wire));
  machining.setAttribute(L"jet", yesNo(m_jet));

  Element dimensions = root.appendElement(L"dimensions");
  dimensions.setAttribute(L"width", n.length(m_dimensions.x));
  dimensions.setAttribute(L"depth", n.length(m_dimensions.y));
  dimensions.setAttribute(L"height", n.length(m_dimensions.z));
  dimensions.setAttribute(L"weight", n.weight(m_weight));

  Element capacities = root.appendElement(L"capacities");
  capacities.setAttribute(L"width", n.length(m_partDimensions.x));
  capacities.setAttribute(L"depth", n.length(m_partDimensions.y));
  capacities.setAttribute(L"height", n.length(m_partDimensions.z));
  capacities.setAttribute(L"weight", n.weight(m_weightCapacity));

  Element tooling = root.appendElement(L"tooling");
  tooling.setAttribute(L"toolChanger", yesNo(m_toolChanger));
  tooling.setAttribute(L"toolPreload", yesNo(m_toolPreload));
  tooling.setAttribute(L"numberOfTools", XmlNumberText::plain(m_numberOfTools));
  tooling.setAttribute(L"maximumToolLength", n.length(m_maximumToolLength));
  tooling.setAttribute(L"maximumToolDiameter", n.length(m_maximumToolDiameter));
  tooling.setAttribute(L"maximumToolWeight", n.weight(m_maximumToolWeight));

  Element machiningTime = root.appendElement(L"machiningTime");
  machiningTime.setAttribute(L"ratio", XmlNumberText::plain(m_feedrateRatio));
  machiningTime.setAttribute(L"toolChangeTime", n.time(m_toolChangeTime));

  std::wstring coolants;
  for (std::size_t mode = 1; mode < m_coolants.size() && mode <= std::size(kCoolantNames); ++mode) {
    if (!m_coolants[mode]) continue;
    if (!coolants.empty()) coolants += L' ';
    coolants += kCoolantNames[mode - 1];
  }
  root.appendElement(L"coolant").setAttribute(L"options", coolants);

  Element capabilities = root.appendElement(L"capabilities");
  capabilities.setAttribute(L"maximumFeedrate", n.feed(m_maximumFeedrate));
  capabilities.setAttribute(L"maximumCuttingFeedrate", n.feed(m_maximumCuttingFeedrate));
  capabilities.setAttribute(L"maximumBlockProcessingSpeed", XmlNumberText::plain(m_maximumBlockProcessingSpeed));
  capabilities.setAttribute(L"workOffsets", XmlNumberText::plain(m_numberOfWorkOffsets));

  // The spindle axis as it was given; the reader normalises it again.
  Element spindle = root.appendElement(L"spindle");
  spindle.setAttribute(L"axis", XmlNumberText::direction(m_spindleAxis));
  spindle.setAttribute(L"maximumPower", n.power(m_maximumSpindlePower));
  spindle.setAttribute(L"maximumSpeed", n.spindleSpeed(m_maximumSpindleSpeed));
  spindle.setAttribute(L"collectChuck", m_collectChuck);
  appendTextElement(spindle, L"description", m_spindleDescription);

  Element post = root.appendElement(L"post");
  appendTextElement(post, L"postProcessor", m_postProcessor);
  appendTextElement(post, L"setupSheet", m_setupSheet);

  Element simulation = root.appendElement(L"simulation");
  simulation.setAttribute(L"wcs", n.lengths(m_wcs));
  simulation.setAttribute(L"retractOnIndexing", yesNo(m_retractOnIndexing));
  simulation.setAttribute(L"shortestAngularRotation", yesNo(m_shortestAngularRotation));
  appendTextElement(simulation, L"machineAssembly", m_machineAssembly);

  Element multiAxis = root.appendElement(L"multiAxis");
  multiAxis.setAttribute(L"virtualToolTip", yesNo(m_virtualTooltip));
  MultiAxisFeedrate const& feed = m_multiAxisFeedrate;
  int const feedMode = feed.getFeedMode();
  static constexpr wchar_t const* kFeedMethods[] = {L"inverse", L"dpm", L"fpm"};
  if (feedMode >= 0 && feedMode <= 2) multiAxis.setAttribute(L"feedrateMethod", kFeedMethods[feedMode]);
  // A negative maximum, tolerance or ratio is the record's "unset" (its
  // default is -1), which the reader refuses; left out, it stays unset.
  if (feed.getMaximumFeedrate() >= 0) multiAxis.setAttribute(L"maximumFeedrate", n.feed(feed.getMaximumFeedrate()));
  // The type has words only for the mode it belongs to; feed per minute
  // has none.
  if (feedMode == MultiAxisFeedrate::FEED_INVERSE_TIME &&
      (feed.getInverseTimeUnits() == 0 || feed.getInverseTimeUnits() == 1))
    multiAxis.setAttribute(L"feedrateType", feed.getInverseTimeUnits() == 0 ? L"seconds" : L"minutes");
  if (feedMode == MultiAxisFeedrate::FEED_DPM && (feed.getDPMType() == 0 || feed.getDPMType() == 1))
    multiAxis.setAttribute(L"feedrateType", feed.getDPMType() == 0 ? L"standard" : L"combination");
  if (feed.getDPMOutputTolerance() >= 0)
    multiAxis.setAttribute(L"outputTolerance", n.length(feed.getDPMOutputTolerance()));
  if (feed.getDPMPulseWeight() >= 0)
    multiAxis.setAttribute(L"bpwRatio", XmlNumberText::plain(feed.getDPMPulseWeight()));
  MultiAxisRetractAndReconfigure const& retract = m_multiAxisRetractAndReconfigure;
  multiAxis.setAttribute(L"reconfigure", yesNo(retract.getReconfigure()));
  multiAxis.setAttribute(L"stockExpansion", n.lengths(retract.getStockExpansion()));
  multiAxis.setAttribute(L"safeRetractDistance", n.length(retract.getSafeRetractDistance()));
  multiAxis.setAttribute(L"safeRetractFeedrate", n.feed(retract.getSafeRetractFeedrate()));
  multiAxis.setAttribute(L"safePlungeFeedrate", n.feed(retract.getSafePlungeFeedrate()));
  multiAxis.setAttribute(L"adjust", yesNo(m_singularity.getAdjust()));
  static constexpr wchar_t const* kSingularityMethods[] = {L"off", L"linearize linear", L"linearize rotary"};
  int const method = m_singularity.getMethod();
  if (method >= 0 && method <= 2) multiAxis.setAttribute(L"method", kSingularityMethods[method]);
  multiAxis.setAttribute(L"cone", n.angle(m_singularity.getCone()));
  multiAxis.setAttribute(L"angle", n.angle(m_singularity.getAngle()));
  multiAxis.setAttribute(L"tolerance", n.length(m_singularity.getTolerance()));
  multiAxis.setAttribute(L"linearizationTolerance", n.length(m_singularity.getLinearizationTolerance()));

  // The id names the slot.
  static constexpr wchar_t const* kSlotIds[] = {L"X", L"Y", L"Z", L"U", L"V", L"W"};
  for (unsigned int i = 0; i < m_axisCount && i < 6; ++i) {
    AxisId const id = m_axisOrder[i];
    if (id < AXIS_X || id > AXIS_W) continue;
    appendAxis(root, n, kSlotIds[id], id <= AXIS_Z, slot(id));
  }

  if (m_additiveFFF) {
    Element additive = root.appendElement(L"additive");
    // Reading a center makes it present, so only one that is.
    if (m_hasCenterPosition) {
      additive.setAttribute(L"centerx", XmlNumberText::plain(m_centerPosition.x));
      additive.setAttribute(L"centery", XmlNumberText::plain(m_centerPosition.y));
      additive.setAttribute(L"centerz", XmlNumberText::plain(m_centerPosition.z));
    }
    Element fff = additive.appendElement(L"fff_settings");
    fff.setAttribute(L"max_extruders", XmlNumberText::plain(m_numberExtruders));
    Element offsets = fff.appendElement(L"extruder_offsets");
    for (Vector const& offset : m_extruderOffsets) {
      Element item = offsets.appendElement(L"item");
      appendXYZ(item, offset);
    }
    // The home position of X, Y and Z, which reading sets on all three and
    // marks present: written when all three have one.
    if (m_axisX.hasHomePosition() && m_axisY.hasHomePosition() && m_axisZ.hasHomePosition()) {
      Element home = fff.appendElement(L"home_position");
      appendXYZ(home, Vector(internalOf(m_axisX, getHomePositionX()), internalOf(m_axisY, getHomePositionY()),
                             internalOf(m_axisZ, getHomePositionZ())));
    }
    if (m_hasParkPosition) {
      Element park = fff.appendElement(L"park_position");
      park.setAttribute(L"type", L"float");
      appendXYZ(park, m_parkPosition);
    }
  }

  return document.getXML();
}

// Preference and remapping

namespace {
constexpr double kPrefPi = 3.141592653589793;
constexpr double kPrefTwoPi = 2 * kPrefPi;
constexpr double kInfinity = std::numeric_limits<double>::infinity();

// The rotary slots in chain order.
template <typename Config>
auto rotarySlots(Config& c) {
  return std::array<decltype(&c.getAxisU()), 3>{&c.getAxisU(), &c.getAxisV(), &c.getAxisW()};
}

// Sets the component of `v` at an enabled axis's coordinate.
void setAtCoordinate(Vector& v, Axis const& axis, double value) {
  v.setCoordinate(static_cast<unsigned int>(axis.getCoordinate()), value);
}
}  // namespace

Vector MachineConfiguration::remapABC(Vector const& abc) const {
  Vector::validate(abc);
  Vector result = abc;
  for (Axis const* axis : rotarySlots(*this)) {
    if (axis->isEnabled()) setAtCoordinate(result, *axis, axis->remapToRange(axis->getCoordinateOfVector(result)));
  }
  return result;
}

Vector MachineConfiguration::remapToABC(Vector const& abc, Vector const& reference) const {
  Vector::validate(abc);
  Vector::validate(reference);
  // A value exactly half a turn from the reference stays where the two
  // moves leave it.
  Vector result;
  for (Axis const* axis : rotarySlots(*this)) {
    if (!axis->isEnabled()) continue;
    double const r = axis->getCoordinateOfVector(reference);
    setAtCoordinate(result, *axis, atOrBelow(atOrAbove(axis->getCoordinateOfVector(abc), r - kPrefPi), r + kPrefPi));
  }
  return result;
}

int MachineConfiguration::getPreferenceWeight(Vector abc, int controllingAxis) const {
  int weight = 0;
  for (Axis const* axis : rotarySlots(*this)) {
    if (!axis->isEnabled()) continue;
    if (controllingAxis != CONTROLLING_AXIS_ABC && axis->getCoordinate() != controllingAxis) continue;
    double const x = axis->getCoordinateOfVector(abc);
    if (x * axis->getPreference() < -0.0001 || !axis->isSupported(x)) {
      --weight;
    } else {
      ++weight;
    }
  }
  return weight;
}

double MachineConfiguration::getAxisDelta(double current, double value, int type) {
  double d = value - current;
  if (std::fabs(d) < 1e-5) d = 0;  // a dead band: a hair's breadth back is no move
  switch (type) {
    case PREFER_POSITIVE: return value >= 0 ? 0 : kInfinity;
    case PREFER_NEGATIVE: return value <= 0 ? 0 : kInfinity;
    case PREFER_INCREASING: return d >= 0 ? 0 : kInfinity;
    case PREFER_DECREASING: return d <= 0 ? 0 : kInfinity;
    default: return std::fabs(d);
  }
}

double MachineConfiguration::remapToClosest(double current, double value, Axis axis, int type) {
  int const preference = axis.getPreference();
  if (type == PREFER_PREFERENCE) {
    if (preference == 0) return axis.remapToRangeNoException(value);
    type = preference > 0 ? PREFER_POSITIVE : PREFER_NEGATIVE;
  }
  double const origin = (type == PREFER_POSITIVE || type == PREFER_NEGATIVE) ? 0 : current;

  // The representative of `value` nearest `current`.
  double x = std::fmod(value, kPrefTwoPi) + (std::trunc(current / kPrefTwoPi) - (current < 0 ? 1 : 0)) * kPrefTwoPi;
  if (x - current > kPrefPi) x -= kPrefTwoPi;
  if (x - current < -kPrefPi) x += kPrefTwoPi;

  // Then whole turns towards the side the type asks for. A value that a turn
  // no longer moves (not finite, or too large) is left where it is rather
  // than turned for ever.
  for (;;) {
    double next = x;
    if ((type == PREFER_POSITIVE || type == PREFER_INCREASING) && x < origin) {
      next = x + kPrefTwoPi;
    } else if ((type == PREFER_NEGATIVE || type == PREFER_DECREASING) && x > origin) {
      next = x - kPrefTwoPi;
    }
    if (next == x || !std::isfinite(next)) break;
    x = next;
  }

  axis.setPreference(0);
  return axis.remapToRangeNoException(x);
}

bool MachineConfiguration::isABCSupported(Vector const& abc) const {
  for (Axis const* axis : rotarySlots(*this)) {
    if (axis->isEnabled() && !axis->isCyclic() && !axis->isSupported(axis->getCoordinateOfVector(abc))) return false;
  }
  return true;
}

bool MachineConfiguration::isXYZSupported(Vector const& xyz) const {
  Vector const internal = mapToInternalXYZ(xyz);
  for (Axis const* axis : {&m_axisX, &m_axisY, &m_axisZ}) {
    if (axis->isEnabled() && !axis->isSupported(axis->getCoordinateOfVector(internal))) return false;
  }
  return true;
}

bool MachineConfiguration::isSupportedPosition(Vector const& xyz) const {
  return m_axisX.isSupported(xyz.x) && m_axisY.isSupported(xyz.y) && m_axisZ.isSupported(xyz.z);
}

Vector MachineConfiguration::clamp(Vector const& abc) const {
  Vector result;
  for (Axis const* axis : rotarySlots(*this)) {
    if (axis->isEnabled() && !axis->getRange().isNonRange())
      setAtCoordinate(result, *axis, axis->clamp(axis->getCoordinateOfVector(abc)));
  }
  return result;
}

Vector MachineConfiguration::clampToResolution(Vector const& abc) const {
  Vector result;
  for (Axis const* axis : rotarySlots(*this)) {
    if (!axis->isEnabled()) continue;
    double const value = axis->getCoordinateOfVector(abc);
    double const resolution = axis->getResolution();
    setAtCoordinate(result, *axis, resolution <= 0 ? value : std::round(value / resolution) * resolution);
  }
  return result;
}

Vector MachineConfiguration::getRotationAxis(Axis const& axis) const {
  ORVO_ASSERT(axis.isRotational());
  return axis.isEnabled() ? axis.getEffectiveAxis() : Vector();
}

bool MachineConfiguration::isDirectionSupported(Vector const& direction) const {
  Vector::validate(direction);
  if (Vector::dot(direction.getNormalized(), m_spindleAxisNormalized) >= 0.9999999) return true;
  if (getNumberOfAxes() <= 3) return false;
  Vector abc = getABCByDirection(direction);
  try {
    abc = remapABC(abc);
  } catch (Orvo::ScriptException const&) {
    // The other solution is brought into the ranges where it can be; a value
    // no turn brings in stays as it is, so that the range test below answers
    // rather than the remap failing a second time.
    abc = getOtherABCByDirection(abc);
    for (Axis const* axis : rotarySlots(*this)) {
      if (axis->isEnabled())
        setAtCoordinate(abc, *axis, axis->remapToRangeNoException(axis->getCoordinateOfVector(abc)));
    }
  }
  return isABCSupported(abc);
}

Vector MachineConfiguration::getClosestABC(Vector const& current, Vector const& abc) const {
  VectorPair const both = getABCByDirectionBoth(getDirection(abc));
  Vector const p = remapToABC(both.first, current);
  Vector const q = remapToABC(both.second, current);
  // The distance is the rotary travel: the sum of the absolute moves.
  auto const travel = [&](Vector const& x) {
    Vector const move = Vector::diff(x, current).getAbsolute();
    return move.x + move.y + move.z;
  };
  return travel(q) < travel(p) ? q : p;
}

Vector MachineConfiguration::getPreferredABC(Vector const& abc) const {
  Vector::validate(abc);
  Axis const& u = m_axisU;
  Axis const& v = m_axisV;
  if (!u.isEnabled() || !v.isEnabled() || m_axisW.isEnabled()) return abc;
  if (u.getPreference() == 0 && v.getPreference() == 0) return abc;
  if (std::fabs(Vector::dot(u.getEffectiveAxis(), v.getEffectiveAxis())) > 1e-9) return abc;

  double const uValue = u.getCoordinateOfVector(abc);
  double const vValue = v.getCoordinateOfVector(abc);
  Vector const other = getOtherABCByDirection(abc);
  double const ou = u.getCoordinateOfVector(other);
  double const ov = v.getCoordinateOfVector(other);
  auto const fix = [&](double x) {
    switch (v.getPreference()) {
      case -1: return atOrBelow(x, 0);
      case 1: return atOrAbove(x, 0);
      default: return v.reduce(x);
    }
  };

  switch (u.getPreference()) {
    case -1: return (uValue > 0 && ou <= 0) ? makeABC(Vector(ou, fix(ov), 0)) : abc;
    case 1: return (uValue < 0 && ou >= 0) ? makeABC(Vector(ou, fix(ov), 0)) : abc;
    default: break;
  }
  ORVO_ASSERT(getAxisU().getPreference() == 0);
  switch (v.getPreference()) {
    case -1: return (vValue > 0 && ov <= 0) ? other : abc;
    case 1: return (vValue < 0 && ov >= 0) ? other : abc;
    default:
      // Not reached behind the guard above, which needs a preference; kept
      // for a guard that may one day let it through.
      return (vValue < -kPrefPi || vValue > kPrefPi) ? makeABC(Vector(uValue, v.reduce(vValue), 0)) : abc;
  }
}

Vector MachineConfiguration::getABCByPreference(Matrix const& orientation, Vector const& current,
                                                int controllingAxis, int type, int options) const {
  Axis axes[3] = {m_axisU, m_axisV, m_axisW};
  Vector cur = current;
  if (controllingAxis != CONTROLLING_AXIS_ABC && !isMachineCoordinate(controllingAxis))
    fail(L"The controlling axis is not enabled.");

  if (options & PREFERENCE_RESET_AXES) {
    for (Axis const& axis : axes) {
      if (axis.isEnabled() && (axis.getReset() & 1)) setAtCoordinate(cur, axis, 0);
    }
  }

  VectorPair const both = getABCByDirectionBoth(orientation.getForward());
  Axis const last = m_axisV.isEnabled() ? m_axisV : m_axisU.isEnabled() ? m_axisU : Axis();

  auto const fit = [&](Vector x) {
    if (last.isEnabled() && (options & PREFERENCE_ADJUST_LAST_AXIS)) {
      Vector::validate(x);
      Matrix remaining = getOrientationABC(x).getTransposed().multiplyMatrix(orientation);
      remaining.clamp(1e-7);
      if (!remaining.isIdentity()) {
        Vector const& e = last.getAxis();
        Vector const direction = getDirection(x);
        // With the tool along the last axis, what remains of the orientation
        // is a turn about that axis, and the axis takes it up.
        Vector const right = remaining.getRight();
        if (Vector::isSameDirection(direction, e)) {
          setAtCoordinate(x, last, std::atan2(right.y, right.x));
        } else if (Vector::isSameDirection(direction, e.getNegated())) {
          setAtCoordinate(x, last, -std::atan2(right.y, right.x));
        }
      }
    }
    x = remapToABC(x, cur);
    for (Axis& axis : axes) {
      if (!axis.isEnabled()) continue;
      double const value = axis.getCoordinateOfVector(x);
      if (type == PREFER_PREFERENCE &&
          (controllingAxis == CONTROLLING_AXIS_ABC || axis.getCoordinate() == controllingAxis)) {
        setAtCoordinate(x, axis, remapToClosest(axis.getCoordinateOfVector(cur), value, axis, PREFER_PREFERENCE));
      } else {
        int const preference = axis.getPreference();
        axis.setPreference(0);
        setAtCoordinate(x, axis, axis.remapToRangeNoException(value));
        axis.setPreference(preference);
      }
    }
    return x;
  };
  Vector p = fit(both.first);
  Vector q = fit(both.second);

  bool const pSupported = isABCSupported(p);
  bool const qSupported = isABCSupported(q);
  if (!pSupported && !qSupported) {
    // Degrees to three decimals, truncated towards zero.
    auto const degrees = [](double radians) { return std::trunc(radians * 57.29577951308232 * 1000) / 1000; };
    throw Orvo::ScriptException(Orvo::Variant::getSubstitution(
        L"Orientation is not supported: %1, %2, %3",
        {Orvo::Variant(degrees(p.x)), Orvo::Variant(degrees(p.y)), Orvo::Variant(degrees(p.z))}));
  }
  if (!pSupported) p = q;
  if (!qSupported) q = p;

  if (type == PREFER_PREFERENCE) {
    int const wp = getPreferenceWeight(p, controllingAxis);
    int const wq = getPreferenceWeight(q, controllingAxis);
    if (wq < wp) return p;
    if (wq > wp) return q;
  }

  double costP = 0;
  double costQ = 0;
  if (controllingAxis == CONTROLLING_AXIS_ABC) {
    if (type != PREFER_PREFERENCE && type != PREFER_CLOSEST)
      fail(L"Specifying ABC as the controlling axis only supports PREFER_PREFERENCE or PREFER_CLOSEST.");
    costP = Vector::diff(p, cur).getLength();
    costQ = Vector::diff(q, cur).getLength();
  } else if (controllingAxis > 2) {
    fail(L"Valid controlling axes are A, B, C, ABC (0-3).");
  } else {
    Axis const axis = getAxisByCoordinate(controllingAxis);
    double const c = axis.getCoordinateOfVector(cur);
    auto const cost = [&](Vector& x) {
      double value = axis.getCoordinateOfVector(x);
      double result = getAxisDelta(c, value, type);
      if (std::isinf(result)) {
        value = remapToClosest(c, value, axis, type);
        setAtCoordinate(x, axis, value);
        result = axis.isSupported(value) ? getAxisDelta(c, value, type) : kInfinity;
      }
      return result;
    };
    costP = cost(p);
    costQ = cost(q);
    if (std::fabs(costP - costQ) < 0.001) {
      costP = Vector::diff(p, cur).getLength();
      costQ = Vector::diff(q, cur).getLength();
    }
  }
  // Ties go to the first solution, the one with the smaller first axis.
  return costQ < costP ? q : p;
}

Vector MachineConfiguration::preserveRotaryAtZero(Vector const& currentDirection, Vector const& previousABC,
                                                  Vector const& abc) const {
  ORVO_CHECK_IMPL("currentDirection.isNonZero()", currentDirection.isNonZero(0));
  Vector result = abc;
  if (std::fabs(Vector::dot(getRotationAxis(m_axisV), currentDirection)) > 0.99999999) {
    setAtCoordinate(result, m_axisV, m_axisV.getCoordinateOfVector(previousABC));
    if (Vector::dot(getDirection(result), currentDirection) < 0.9999999) result = abc;
  }
  return result;
}

}  // namespace post
}  // namespace vantora
}  // namespace com

// Made from a machine definition

#include <stdexcept>

#include "machine/machine/AdditiveLimitsDefinition.h"
#include "machine/machine/AdditivePlatformDefinition.h"
#include "machine/machine/AxisDefinition.h"
#include "machine/machine/ControlType.h"
#include "machine/machine/ControllerConfiguration.h"
#include "machine/machine/KinematicsDefinition.h"
#include "machine/machine/MachineCapability.h"
#include "machine/machine/MachineCoolant.h"
#include "machine/machine/MachineDefinition.h"
#include "machine/machine/MachineSpecification.h"
#include "machine/machine/MachineUtils.h"
#include "machine/machine/MachiningTimeInformation.h"
#include "machine/machine/MultiAxisPreferences.h"
#include "machine/machine/PartDefinition.h"
#include "machine/machine/ToolingCapabilities.h"

namespace {

// Where a definition holds several features of one type, the bridge takes
// the default one of the type (MachineDefinition::getDefaultFeature): the
// one "defaults" names, or the first of the type when none is named. That
// is the feature a machine is built from, so kinematics, controller and the
// other features of one configuration agree.
template <typename T>
T const* defaultFeature(machine::MachineDefinition const& definition) {
  return dynamic_cast<T const*>(definition.getDefaultFeature(T::featureTypeIdStatic()));
}

// Extruders are the HEAD parts of the kinematic tree whose identifier
// contains "extruder", in the tree's depth-first order, as the conventional
// part identifiers of MachineUtils ("primary_spindle", "turret") name what a
// part is. An extruder's number is the run of decimal digits at the end of
// its identifier ("extruder2", "extruder_12"), as turret heads are numbered;
// extruders count from 1.
constexpr char const* kExtruderId = "extruder";

bool isExtruderPart(machine::PartDefinition const& part) {
  return part.type() == machine::PartType::HEAD && part.identifier().id().find(kExtruderId) != std::string::npos;
}

// std::stoi is used on purpose, so that what it accepts is what the files
// have always accepted; its failures are re-thrown with fixed texts, as the
// library's what() differs between standard libraries. An identifier
// without trailing digits has no number: "invalid stoi argument".
int extruderNumber(std::string const& name) {
  std::size_t start = name.size();
  while (start > 0 && name[start - 1] >= '0' && name[start - 1] <= '9') --start;
  try {
    return std::stoi(name.substr(start));
  } catch (std::invalid_argument const&) {
    throw std::invalid_argument("invalid stoi argument");
  } catch (std::out_of_range const&) {
    throw std::out_of_range("stoi argument out of range");
  }
}

// The place of an extruder's offset in a list of `count`. A number of 0, or
// one beyond the number of extruders, has no place: it is refused with the
// same out-of-range text as a number too large to read, rather than
// growing the list past the extruder count or dropping the offset unseen.
unsigned int getExtruderIndex(int number, std::size_t count) {
  if (number < 1 || static_cast<std::size_t>(number) > count) throw std::out_of_range("stoi argument out of range");
  return static_cast<unsigned int>(number - 1);
}

com::vantora::Vector toVector(Orvo::Point3D const& p) { return com::vantora::Vector(p.x, p.y, p.z); }
com::vantora::Vector toVector(Orvo::Vector3D const& v) { return com::vantora::Vector(v.x, v.y, v.z); }

}  // namespace

namespace com {
namespace vantora {
namespace post {

std::unique_ptr<MachineConfiguration> MachineConfiguration::createFromMachineDefinition(
    machine::KinematicsDefinition const& kinematics) {
  // An empty controller configuration, which MachineSpecification completes
  // with the head and table of the tree; a live tool, as a Machine made from
  // kinematics alone has.
  machine::ControllerConfiguration const controller;
  return createFromMachineSpecification(machine::MachineSpecification(kinematics, &controller, true));
}

std::unique_ptr<MachineConfiguration> MachineConfiguration::createFromMachineDefinition(
    machine::KinematicsDefinition const& kinematics, machine::ControllerConfiguration const& controller) {
  return createFromMachineSpecification(machine::MachineSpecification(kinematics, &controller, true));
}

std::unique_ptr<MachineConfiguration> MachineConfiguration::createFromMachineDefinition(
    machine::MachineDefinition const& definition, bool liveTool) {
  return createFromMachineDefinition(definition,
                                     machine::MachineSpecification::makeDefaultForDefinition(definition, liveTool));
}

std::unique_ptr<MachineConfiguration> MachineConfiguration::createFromMachineDefinition(
    machine::MachineDefinition const& definition, std::optional<machine::MachineSpecification> const& specification) {
  // 1. The configuration made from the kinematics and controller pair, or a
  // default one. A pair whose head or table is missing gives nothing to add to.
  std::unique_ptr<MachineConfiguration> configuration =
      specification ? createFromMachineSpecification(*specification) : std::make_unique<MachineConfiguration>();
  if (!configuration) return configuration;
  MachineConfiguration& c = *configuration;

  // 2. Texts.
  c.setVendor(Orvo::Messages::fromUTF8ToWideUnicode(definition.vendor()));
  c.setModel(Orvo::Messages::fromUTF8ToWideUnicode(definition.model()));
  c.setDescription(Orvo::Messages::fromUTF8ToWideUnicode(definition.description()));

  // 3. Capabilities by bit; the wire flag has no bit and stays as it is.
  auto const& capabilities = definition.capabilities();
  c.setMilling(capabilities.test(machine::MachineCapability::MILLING));       // bit 0
  c.setTurning(capabilities.test(machine::MachineCapability::TURNING));       // bit 1
  c.setJet(capabilities.test(machine::MachineCapability::CUTTING));           // bit 2
  c.setInspection(capabilities.test(machine::MachineCapability::INSPECTION)); // bit 3
  c.setAdditiveFFF(capabilities.test(machine::MachineCapability::ADDITIVE));  // bit 4

  // 4. Machining time.
  if (auto const* machining = defaultFeature<machine::MachiningTimeInformation>(definition)) {
    c.setFeedrateRatio(machining->feedrateRatio());
    c.setToolChangeTime(machining->toolChangeTime());
  }

  // 5. Tooling; without it the tool count is limited to 100.
  if (auto const* tooling = defaultFeature<machine::ToolingCapabilities>(definition)) {
    c.setToolChanger(tooling->hasToolChanger());
    c.setToolPreload(tooling->supportsToolPreload());
    c.setNumberOfTools(std::min<unsigned int>(tooling->numberOfTools(), c.getNumberOfTools()));
  } else {
    c.setNumberOfTools(std::min(DEFAULT_NUMBER_OF_TOOLS_MAX, c.getNumberOfTools()));
  }

  // 6. Multi-axis preferences; an option the feature does not hold leaves
  // the configuration's own.
  if (auto const* multiAxis = defaultFeature<machine::MultiAxisPreferences>(definition)) {
    c.setVirtualTooltip(multiAxis->useVirtualToolTip());
    c.setTWPEnabled(multiAxis->useTiltedWorkplane());
    if (auto const singularity = multiAxis->singularity()) c.m_singularity = *singularity;
    if (auto const feedrate = multiAxis->feedrateOptions()) c.m_multiAxisFeedrate = *feedrate;
    if (auto const retract = multiAxis->retractAndReconfigure()) c.m_multiAxisRetractAndReconfigure = *retract;
  }

  // 7. Platform: its size, and its origin as the center position.
  if (auto const* platform = defaultFeature<machine::AdditivePlatformDefinition>(definition)) {
    if (auto const dimensions = platform->dimensions()) {
      c.setDimensions(toVector(dimensions->size));
      c.setCenterPositionX(dimensions->origin.x);
      c.setCenterPositionY(dimensions->origin.y);
      c.setCenterPositionZ(dimensions->origin.z);
    }
  }

  // 8. Limits: home of X, Y, Z and the park position.
  if (auto const* limits = defaultFeature<machine::AdditiveLimitsDefinition>(definition)) {
    Orvo::Point3D const& home = limits->homePosition();
    c.setHomePositionX(home.x);
    c.setHomePositionY(home.y);
    c.setHomePositionZ(home.z);
    Orvo::Point3D const& park = limits->parkPosition();
    c.setParkPositionX(park.x);
    c.setParkPositionY(park.y);
    c.setParkPositionZ(park.z);
  }

  // 9. Extruders, from the tree the configuration was made from, or else
  // from the definition's default kinematics.
  machine::KinematicsDefinition const* kinematics =
      specification ? specification->kinematicsDefinition() : defaultFeature<machine::KinematicsDefinition>(definition);
  if (kinematics) {
    std::vector<machine::PartDefinition const*> extruders;
    for (machine::PartDefinition const& part : kinematics->allParts())
      if (isExtruderPart(part)) extruders.push_back(&part);
    c.setNumberExtruders(static_cast<unsigned int>(extruders.size()));
    for (machine::PartDefinition const* part : extruders) {
      unsigned int const index = getExtruderIndex(extruderNumber(part->identifier().id()), extruders.size());
      // The frame's origin is in millimetres already, the internal unit.
      c.m_extruderOffsets[index] = toVector(part->attachFrame().origin());
    }
  }
  return configuration;
}

std::unique_ptr<MachineConfiguration> MachineConfiguration::createFromMachineSpecification(
    machine::MachineSpecification const& specification) {
  // 1. The tool and table parts the controller names.
  machine::KinematicsDefinition const& kinematics = *specification.kinematicsDefinition();
  machine::ControllerConfiguration const& controller = *specification.controllerConfiguration();
  std::optional<Orvo::MachinePartId> const toolId = controller.headInfoPartId();
  std::optional<Orvo::MachinePartId> const tableId = controller.tablePartId();
  if (!toolId || !tableId) return nullptr;
  std::optional<machine::PartDefinition const*> const toolFound = kinematics.find(*toolId);
  std::optional<machine::PartDefinition const*> const tableFound = kinematics.find(*tableId);
  if (!toolFound || !*toolFound || !tableFound || !*tableFound) return nullptr;
  machine::PartDefinition const& toolPart = **toolFound;
  machine::PartDefinition const& tablePart = **tableFound;

  // 2.
  auto configuration = std::make_unique<MachineConfiguration>();
  MachineConfiguration& c = *configuration;
  c.removeAllAxes();

  // 3. The spindle turns the tool or the part.
  machine::PartDefinition const& spindlePart = specification.liveTool() ? toolPart : tablePart;
  if (spindlePart.spindleDefinition()) setSpindleSettingsFromPartDefinition(spindlePart, c);

  // 4.
  if (machine::PartDefinition const* frame = specification.toolFramePart())
    c.setHeadAttachPoint(toVector(frame->attachFrame().origin()));
  c.setTableAttachPoint(toVector(tablePart.attachFrame().origin()));

  // 5. The tool station; the configuration's coolant i + 1 is the station's
  // coolant bit i, mode 0 being "off".
  if (auto const& station = toolPart.toolStationDefinition()) {
    if (auto const length = station->maxToolLength()) c.m_maximumToolLength = length->get();
    if (auto const diameter = station->maxToolDiameter()) c.m_maximumToolDiameter = diameter->get();
    if (auto const toolInterface = station->toolInterface())
      c.setToolInterface(Orvo::Messages::fromUTF8ToWideUnicode(toolInterface->name()));
    for (int i = 0; i < 8; ++i)
      c.setCoolantSupported(static_cast<unsigned int>(i + 1),
                            station->supportsCoolant(static_cast<machine::MachineCoolant>(i)));
  }

  // 6. No limit on tools but a turret's stations; createFromMachineDefinition
  // limits it further.
  c.setNumberOfTools(4294967295u);
  if (auto const& turret = toolPart.turretDefinition()) c.setNumberOfTools(turret->indexCount());

  // 7.
  c.setIsSubSpindleZAxisReversed(false);
  if (machine::MachineUtils::isSecondarySpindlePart(&tablePart)) {
    if (machine::AxisConfiguration const* axis = controller.axisConfiguration(tablePart.identifier()))
      c.setIsSubSpindleZAxisReversed(axis->isReversed());
  }

  // 8. Head axes from the tool outwards; table axes reversed, from the base
  // in, since a table chain is walked towards the base.
  for (Axis const& axis : gatherAllPostAxesFromChain(toolPart, controller, false)) c.addAxis(axis);
  std::vector<Axis> const tableAxes = gatherAllPostAxesFromChain(tablePart, controller, true);
  for (auto axis = tableAxes.rbegin(); axis != tableAxes.rend(); ++axis) c.addAxis(*axis);

  // 9. Controller limits and name.
  if (auto const speed = controller.maximumBlockProcessingSpeed()) c.setMaximumBlockProcessingSpeed(*speed);
  if (auto const speed = controller.maxNormalSpeed()) {
    c.setMaximumFeedrate(speed->get());
    c.setMaximumCuttingFeedrate(speed->get());
  }
  c.setControl(Orvo::Messages::fromUTF8ToWideUnicode(controller.name()));

  // 10.
  c.setIsReceived(true);
  return configuration;
}

std::vector<Axis> MachineConfiguration::gatherAllPostAxesFromChain(machine::PartDefinition const& part,
                                                                   machine::ControllerConfiguration const& controller,
                                                                   bool table) {
  std::vector<Axis> axes;
  part.visitChainToBase([&](machine::PartDefinition const& link) {
    machine::AxisDefinition const* const definition = link.axisDefinition();
    if (!definition || !isAxisUsedInPostCalc(definition->defaultControl())) return;
    Axis axis = Axis::createFromAxisDefinition(*definition, controller.axisConfiguration(link.identifier()), table,
                                               link.identifier());
    if (axis.isEnabled()) axes.push_back(axis);
  });
  return axes;
}

void MachineConfiguration::setSpindleSettingsFromPartDefinition(machine::PartDefinition const& part,
                                                                MachineConfiguration& configuration) {
  EXPECTS(part.spindleDefinition());
  if (!part.spindleDefinition()) return;
  machine::SpindleDefinition const& spindle = *part.spindleDefinition();
  configuration.setSpindleAxis(toVector(part.attachFrame().zAxis()));
  if (auto const speed = spindle.maxSpeed()) configuration.setMaximumSpindleSpeed(*speed);
  if (auto const speed = spindle.minSpeed()) configuration.setMinimumSpindleSpeed(*speed);
  if (auto const power = spindle.power()) configuration.setMaximumSpindlePower(*power);
  if (auto const torque = spindle.peakTorque()) configuration.setSpindlePeakTorque(*torque);
  if (auto const speed = spindle.peakTorqueSpeed()) configuration.setSpindlePeakTorqueSpeed(*speed);
  configuration.setSpindleDescription(Orvo::Messages::fromUTF8ToWideUnicode(spindle.description()));
}

bool MachineConfiguration::isAxisUsedInPostCalc(machine::ControlType controlType) noexcept {
  return controlType == machine::ControlType::DRIVEN || controlType == machine::ControlType::MANUAL;
}

}  // namespace post
}  // namespace vantora
}  // namespace com
