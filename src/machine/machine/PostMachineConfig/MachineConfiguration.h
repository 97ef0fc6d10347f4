#pragma once
// The machine as a post-processor script sees it: three linear axes X, Y, Z
// and up to three rotary axes U, V, W in fixed slots, the order in which the
// axes were added, the multi-axis behaviour settings and a large record of
// plain properties.
//
// A slot whose axis does not exist holds a disabled Axis; the enabled flag
// of that Axis is the only mark of existence. Lengths are held in
// millimetres and pass the unit factors of the UnitConsumer base on the way
// in and out; angles are radians and are never rescaled. Script-facing
// failures throw Orvo::ScriptException with fixed English sentences.
//
// A configuration belongs to one thread.

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "machine/machine/DisplayName.h"
#include "machine/machine/PostMachineConfig/Axis.h"
#include "machine/machine/PostMachineConfig/MultiAxisFeedrate.h"
#include "machine/machine/PostMachineConfig/MultiAxisRetractAndReconfigure.h"
#include "machine/machine/PostMachineConfig/MultiAxisSingularity.h"
#include "machine/machine/PostMachineConfig/UnitConsumer.h"
#include "machine/machine/PostMachineConfig/Vector.h"
#include "machine/machine/PostMachineConfig/VectorPair.h"
#include "nc/AxisOrdering.h"
#include "nc/AxisValues.h"
#include "util/utility/Event.h"
#include "util/utility/ScriptObject.h"

// Complete, not declared: a call with a MachineDefinition weighs the overload
// that takes std::optional<MachineSpecification>, which needs the type.
#include "machine/machine/MachineSpecification.h"

namespace machine {
enum class ControlType : int;
}  // namespace machine

namespace com {
namespace vantora {
namespace post {

class MachineConfigurationLoader;
class SecurityWrapperBase;

class MachineConfiguration : public Orvo::ScriptObject, public UnitConsumer {
public:
  /// The slots. AXIS_NONE marks an unused entry of the axis order.
  enum AxisId : int {
    AXIS_NONE = -1,
    AXIS_X = 0,
    AXIS_Y = 1,
    AXIS_Z = 2,
    AXIS_U = 3,
    AXIS_V = 4,
    AXIS_W = 5,
  };

  /// The values raised on the configuration event.
  enum MachineConfigurationEvents : int {
    /// setMultiAxisFeedrate ran.
    EVENT_MULTI_AXIS_FEEDRATE = 0,
    /// The tool length changed through setToolLength.
    EVENT_TOOL_LENGTH = 1,
  };

  /// The coolant modes. The members after COOLANT_OFF are the eight coolants
  /// a tool station can support, in the order of the machine model's coolant
  /// bits (flood is bit 0 there and mode 1 here), so that the coolant
  /// vector is indexed by mode and its entry 0 stands for "off".
  enum Coolant : int {
    COOLANT_OFF = 0,
    COOLANT_FLOOD = 1,
    COOLANT_MIST = 2,
    COOLANT_THROUGH_TOOL = 3,
    COOLANT_AIR = 4,
    COOLANT_AIR_THROUGH_TOOL = 5,
    COOLANT_SUCTION = 6,
    COOLANT_FLOOD_MIST = 7,
    COOLANT_FLOOD_THROUGH_TOOL = 8,
  };
  /// The size of the coolant vector that initialize gives: every mode,
  /// COOLANT_OFF included, all unsupported.
  static constexpr unsigned int NUMBER_OF_COOLANT_MODES = 9;

  /// The number of tools a configuration made from a machine definition is
  /// limited to when nothing else limits it.
  static unsigned int const DEFAULT_NUMBER_OF_TOOLS_MAX;

  using StringMap = std::map<std::wstring, std::wstring>;

  // Construction. Each constructor runs initialize, then addAxis for each
  // argument in turn; since initialize puts X, Y and Z in place, the
  // arguments are rotary axes.
  MachineConfiguration();
  explicit MachineConfiguration(Axis const& first);
  MachineConfiguration(Axis const& first, Axis const& second);
  MachineConfiguration(Axis const& first, Axis const& second, Axis const& third);
  MachineConfiguration(MachineConfiguration const& other);
  MachineConfiguration& operator=(MachineConfiguration const& other);
  MachineConfiguration& operator=(MachineConfiguration&& other);

  char const* getBaseClass() const noexcept override;
  ~MachineConfiguration() override;

  /// Every field back to its default, with X, Y and Z as linear head axes
  /// along their unit vectors, in that order. The event keeps its
  /// subscribers.
  void initialize();

  // Axes.

  /// Adds the axis to its slot: a linear axis by its coordinate to X, Y or
  /// Z, a rotational one to the first of U, V, W that is not enabled (and
  /// nowhere, quietly, when all three are). Fails before changing anything.
  void addAxis(Axis const& axis);
  /// The same, moving the axis into its slot.
  void addAxis(Axis&& axis);
  /// No axes: count 0, order empty, all six slots default (disabled) axes.
  void removeAllAxes();

  Axis& getAxisX() noexcept { return m_axisX; }
  Axis& getAxisY() noexcept { return m_axisY; }
  Axis& getAxisZ() noexcept { return m_axisZ; }
  Axis& getAxisU() noexcept { return m_axisU; }
  Axis& getAxisV() noexcept { return m_axisV; }
  Axis& getAxisW() noexcept { return m_axisW; }
  Axis const& getAxisX() const noexcept { return m_axisX; }
  Axis const& getAxisY() const noexcept { return m_axisY; }
  Axis const& getAxisZ() const noexcept { return m_axisZ; }
  Axis const& getAxisU() const noexcept { return m_axisU; }
  Axis const& getAxisV() const noexcept { return m_axisV; }
  Axis const& getAxisW() const noexcept { return m_axisW; }
  // Plain slot stores: the axis count and order are not touched.
  void setAxisX(Axis const& axis) { m_axisX = axis; }
  void setAxisY(Axis const& axis) { m_axisY = axis; }
  void setAxisZ(Axis const& axis) { m_axisZ = axis; }
  void setAxisU(Axis const& axis) { m_axisU = axis; }
  void setAxisV(Axis const& axis) { m_axisV = axis; }
  void setAxisW(Axis const& axis) { m_axisW = axis; }
  /// Slot stores that assert the axis is disabled or on its own coordinate.
  void setXAxis(Axis const& axis);
  void setYAxis(Axis const& axis);
  void setZAxis(Axis const& axis);

  /// Fails with "Axis is invalid." for a value that is not a slot.
  Axis& getAxisById(AxisId id);
  Axis const& getAxisById(AxisId id) const;
  /// "X", "Y", "Z", "U", "V" or "W"; anything else fails with "Invalid axis."
  Axis& getAxisByName(std::wstring const& name);
  Axis const& getAxisByName(std::wstring const& name) const;
  /// The axis added as number `index` (from 0); fails with "Invalid axis
  /// index." at or above the count.
  Axis& getAxisByOrder(unsigned int index);
  Axis const& getAxisByOrder(unsigned int index) const;
  /// The first enabled slot of U, V, W on that coordinate; fails with
  /// "Coordinate is not bound to an axis."
  Axis& getAxisByCoordinate(int coordinate);
  Axis const& getAxisByCoordinate(int coordinate) const;
  /// The position of the slot in the axis order; -1 when it is not there.
  int getIndexOfAxisById(AxisId id) const noexcept;
  bool hasAxis(AxisId id) const noexcept { return getIndexOfAxisById(id) >= 0; }
  /// The axis count; when that is 0, 3 plus the enabled rotary slots.
  unsigned int getNumberOfAxes() const noexcept;

  /// Bit mask of the coordinates of the enabled rotary slots (bit 0 A,
  /// bit 1 B, bit 2 C); fails with "Invalid axis coordinate." for one
  /// beyond C.
  int getCoordinates() const;
  bool isMachineCoordinate(int coordinate) const noexcept;
  /// Every non-zero component of `rotation` is a machine coordinate.
  bool isMachineAxisRotation(Vector const& rotation) const noexcept;
  bool hasRotational() const noexcept;
  bool isMultiAxisConfiguration() const noexcept { return hasRotational(); }
  bool is3DConfiguration() const noexcept { return !hasRotational(); }
  /// Some enabled rotary slot holds a head axis.
  bool isHeadConfiguration() const noexcept;
  bool isTableConfiguration() const noexcept { return hasRotational() && !isHeadConfiguration(); }
  bool isTCPEnabledForAnyAxis() const noexcept;

  /// getValidityStatus() is 0.
  bool isSupported() const { return getValidityStatus() == 0; }
  /// The status of MachineAxesValidator for this configuration.
  int getValidityStatus() const;
  /// The text of a MachineAxesValidator status; "Unknown status." for a
  /// number without a text of its own.
  static std::wstring getStatusDescription(int status);

  // The rotary axes in the foundation's terms: the enabled slots U, V, W in
  // that order up to the first disabled one. All three assert a valid
  // configuration.
  Orvo::AxisOrdering axisOrdering() const;
  /// The component of `abc` at each axis's coordinate, in radians.
  Orvo::AxisValues abcToAxisValues(Vector const& abc) const;
  /// The inverse of abcToAxisValues; coordinates without an axis are 0.
  Vector axisValuesToAbc(Orvo::AxisValues const& values) const;

  // Texts.
  std::wstring const& getDescription() const noexcept { return m_description; }
  void setDescription(std::wstring value) { m_description = std::move(value); }
  std::wstring const& getModel() const noexcept { return m_model; }
  void setModel(std::wstring value) { m_model = std::move(value); }
  std::wstring const& getVendor() const noexcept { return m_vendor; }
  void setVendor(std::wstring value) { m_vendor = std::move(value); }
  std::wstring const& getVendorUrl() const noexcept { return m_vendorUrl; }
  void setVendorUrl(std::wstring value) { m_vendorUrl = std::move(value); }
  std::wstring const& getControl() const noexcept { return m_control; }
  void setControl(std::wstring value) { m_control = std::move(value); }
  std::wstring const& getPostProcessor() const noexcept { return m_postProcessor; }
  void setPostProcessor(std::wstring value) { m_postProcessor = std::move(value); }
  std::wstring const& getSetupSheet() const noexcept { return m_setupSheet; }
  void setSetupSheet(std::wstring value) { m_setupSheet = std::move(value); }
  std::wstring const& getMachineAssembly() const noexcept { return m_machineAssembly; }
  void setMachineAssembly(std::wstring value) { m_machineAssembly = std::move(value); }
  std::wstring const& getCollectChuck() const noexcept { return m_collectChuck; }
  void setCollectChuck(std::wstring value) { m_collectChuck = std::move(value); }
  /// The tool interface as normalised by the machine model (an all-ASCII
  /// name upper case); empty when there is none.
  std::wstring getToolInterface() const;
  /// An empty text removes the tool interface.
  void setToolInterface(std::wstring const& value);
  void setSpindleDescription(std::wstring value) { m_spindleDescription = std::move(value); }

  // Numbers without unit mapping.
  double getWeight() const noexcept { return m_weight; }
  void setWeight(double value) noexcept { m_weight = value; }
  double getWeightCapacity() const noexcept { return m_weightCapacity; }
  void setWeightCapacity(double value) noexcept { m_weightCapacity = value; }
  double getMaximumSpindlePower() const noexcept { return m_maximumSpindlePower; }
  void setMaximumSpindlePower(double value) noexcept { m_maximumSpindlePower = value; }
  double getMinimumSpindleSpeed() const noexcept { return m_minimumSpindleSpeed; }
  void setMinimumSpindleSpeed(double value) noexcept { m_minimumSpindleSpeed = value; }
  double getMaximumSpindleSpeed() const noexcept { return m_maximumSpindleSpeed; }
  void setMaximumSpindleSpeed(double value) noexcept { m_maximumSpindleSpeed = value; }
  double getSpindlePeakTorque() const noexcept { return m_spindlePeakTorque; }
  void setSpindlePeakTorque(double value) noexcept { m_spindlePeakTorque = value; }
  double getSpindlePeakTorqueSpeed() const noexcept { return m_spindlePeakTorqueSpeed; }
  void setSpindlePeakTorqueSpeed(double value) noexcept { m_spindlePeakTorqueSpeed = value; }
  double getMaximumToolWeight() const noexcept { return m_maximumToolWeight; }
  void setMaximumToolWeight(double value) noexcept { m_maximumToolWeight = value; }
  double getFeedrateRatio() const noexcept { return m_feedrateRatio; }
  void setFeedrateRatio(double value) noexcept { m_feedrateRatio = value; }
  double getToolChangeTime() const noexcept { return m_toolChangeTime; }
  void setToolChangeTime(double value) noexcept { m_toolChangeTime = value; }

  // Lengths and feeds, unit-mapped.
  double getMaximumFeedrate() const noexcept { return mapToExternalXYZ(m_maximumFeedrate); }
  void setMaximumFeedrate(double value) noexcept { m_maximumFeedrate = mapToInternalXYZ(value); }
  double getMaximumCuttingFeedrate() const noexcept { return mapToExternalXYZ(m_maximumCuttingFeedrate); }
  void setMaximumCuttingFeedrate(double value) noexcept { m_maximumCuttingFeedrate = mapToInternalXYZ(value); }
  double getMaximumToolLength() const noexcept { return mapToExternalXYZ(m_maximumToolLength); }
  void setMaximumToolLength(double value) noexcept { m_maximumToolLength = mapToInternalXYZ(value); }
  double getMaximumToolDiameter() const noexcept { return mapToExternalXYZ(m_maximumToolDiameter); }
  void setMaximumToolDiameter(double value) noexcept { m_maximumToolDiameter = mapToInternalXYZ(value); }
  /// x, y and z of the dimensions.
  double getWidth() const noexcept { return mapToExternalXYZ(m_dimensions.x); }
  void setWidth(double value) noexcept { m_dimensions.x = mapToInternalXYZ(value); }
  double getDepth() const noexcept { return mapToExternalXYZ(m_dimensions.y); }
  void setDepth(double value) noexcept { m_dimensions.y = mapToInternalXYZ(value); }
  double getHeight() const noexcept { return mapToExternalXYZ(m_dimensions.z); }
  void setHeight(double value) noexcept { m_dimensions.z = mapToInternalXYZ(value); }
  Vector getDimensions() const { return mapToExternalXYZ(m_dimensions); }
  void setDimensions(Vector const& value) { m_dimensions = mapToInternalXYZ(value); }
  Vector getPartDimensions() const { return mapToExternalXYZ(m_partDimensions); }
  void setPartDimensions(Vector const& value) { m_partDimensions = mapToInternalXYZ(value); }
  /// x, y and z of the part dimensions.
  double getPartMaximumX() const noexcept { return mapToExternalXYZ(m_partDimensions.x); }
  void setPartMaximumX(double value) noexcept { m_partDimensions.x = mapToInternalXYZ(value); }
  double getPartMaximumY() const noexcept { return mapToExternalXYZ(m_partDimensions.y); }
  void setPartMaximumY(double value) noexcept { m_partDimensions.y = mapToInternalXYZ(value); }
  double getPartMaximumZ() const noexcept { return mapToExternalXYZ(m_partDimensions.z); }
  void setPartMaximumZ(double value) noexcept { m_partDimensions.z = mapToInternalXYZ(value); }
  Vector getHeadAttachPoint() const { return mapToExternalXYZ(m_headAttachPoint); }
  void setHeadAttachPoint(Vector const& value) { m_headAttachPoint = mapToInternalXYZ(value); }
  Vector getTableAttachPoint() const { return mapToExternalXYZ(m_tableAttachPoint); }
  void setTableAttachPoint(Vector const& value) { m_tableAttachPoint = mapToInternalXYZ(value); }
  Vector getWCS() const { return mapToExternalXYZ(m_wcs); }
  void setWCS(Vector const& value) { m_wcs = mapToInternalXYZ(value); }

  // Flags.
  bool getMilling() const noexcept { return m_milling; }
  void setMilling(bool value) noexcept { m_milling = value; }
  bool getTurning() const noexcept { return m_turning; }
  void setTurning(bool value) noexcept { m_turning = value; }
  bool getWire() const noexcept { return m_wire; }
  void setWire(bool value) noexcept { m_wire = value; }
  bool getJet() const noexcept { return m_jet; }
  void setJet(bool value) noexcept { m_jet = value; }
  bool getInspection() const noexcept { return m_inspection; }
  void setInspection(bool value) noexcept { m_inspection = value; }
  bool getAdditiveFFF() const noexcept { return m_additiveFFF; }
  void setAdditiveFFF(bool value) noexcept { m_additiveFFF = value; }
  bool getToolChanger() const noexcept { return m_toolChanger; }
  void setToolChanger(bool value) noexcept { m_toolChanger = value; }
  bool getToolPreload() const noexcept { return m_toolPreload; }
  void setToolPreload(bool value) noexcept { m_toolPreload = value; }
  bool getVirtualTooltip() const noexcept { return m_virtualTooltip; }
  void setVirtualTooltip(bool value) noexcept { m_virtualTooltip = value; }
  bool getRetractOnIndexing() const noexcept { return m_retractOnIndexing; }
  void setRetractOnIndexing(bool value) noexcept { m_retractOnIndexing = value; }
  bool getShortestAngularRotation() const noexcept { return m_shortestAngularRotation; }
  void setShortestAngularRotation(bool value) noexcept { m_shortestAngularRotation = value; }
  bool isTWPEnabled() const noexcept { return m_TWPEnabled; }
  void setTWPEnabled(bool value) noexcept { m_TWPEnabled = value; }
  bool isReceived() const noexcept { return m_received; }
  void setIsReceived(bool value) noexcept { m_received = value; }
  bool isSubSpindleZAxisReversed() const noexcept { return m_subSpindleZAxisReversed; }
  void setIsSubSpindleZAxisReversed(bool value) noexcept { m_subSpindleZAxisReversed = value; }

  // Counts.
  unsigned int getNumberOfTools() const noexcept { return m_numberOfTools; }
  void setNumberOfTools(unsigned int value) noexcept { m_numberOfTools = value; }
  unsigned int getNumberOfWorkOffsets() const noexcept { return m_numberOfWorkOffsets; }
  void setNumberOfWorkOffsets(unsigned int value) noexcept { m_numberOfWorkOffsets = value; }
  unsigned int getMaximumBlockProcessingSpeed() const noexcept { return m_maximumBlockProcessingSpeed; }
  void setMaximumBlockProcessingSpeed(unsigned int value) noexcept { m_maximumBlockProcessingSpeed = value; }

  // Controller actions and cycles, by name.
  StringMap& getActions() noexcept { return m_actions; }
  StringMap const& getActions() const noexcept { return m_actions; }
  void setActions(StringMap const& value) { m_actions = value; }
  StringMap& getCycles() noexcept { return m_cycles; }
  StringMap const& getCycles() const noexcept { return m_cycles; }
  void setCycles(StringMap const& value) { m_cycles = value; }

  // Home and tool change positions, forwarded to the axes X, Y and Z, which
  // map them with their own unit factors.
  double getHomePositionX() const { return m_axisX.getHomePosition(); }
  double getHomePositionY() const { return m_axisY.getHomePosition(); }
  double getHomePositionZ() const { return m_axisZ.getHomePosition(); }
  void setHomePositionX(double value) { m_axisX.setHomePosition(value); }
  void setHomePositionY(double value) { m_axisY.setHomePosition(value); }
  void setHomePositionZ(double value) { m_axisZ.setHomePosition(value); }
  bool hasHomePositionX() const { return m_axisX.hasHomePosition(); }
  bool hasHomePositionY() const { return m_axisY.hasHomePosition(); }
  bool hasHomePositionZ() const { return m_axisZ.hasHomePosition(); }
  /// The home position of Z under another name.
  double getRetractPlane() const { return getHomePositionZ(); }
  void setRetractPlane(double value) { setHomePositionZ(value); }
  double getToolChangePositionX() const { return m_axisX.getToolChangePosition(); }
  double getToolChangePositionY() const { return m_axisY.getToolChangePosition(); }
  double getToolChangePositionZ() const { return m_axisZ.getToolChangePosition(); }
  void setToolChangePositionX(double value) { m_axisX.setToolChangePosition(value); }
  void setToolChangePositionY(double value) { m_axisY.setToolChangePosition(value); }
  void setToolChangePositionZ(double value) { m_axisZ.setToolChangePosition(value); }
  bool hasToolChangePositionX() const { return m_axisX.hasToolChangePosition(); }
  bool hasToolChangePositionY() const { return m_axisY.hasToolChangePosition(); }
  bool hasToolChangePositionZ() const { return m_axisZ.hasToolChangePosition(); }

  // Center and park positions (additive machines), in the units given. A
  // read before any set fails with "Center position is not available." or
  // "Park position is not available."; any set makes the position present,
  // its other components 0 until set.
  double getCenterPositionX() const;
  double getCenterPositionY() const;
  double getCenterPositionZ() const;
  void setCenterPositionX(double value) noexcept;
  void setCenterPositionY(double value) noexcept;
  void setCenterPositionZ(double value) noexcept;
  bool hasCenterPosition() const noexcept { return m_hasCenterPosition; }
  double getParkPositionX() const;
  double getParkPositionY() const;
  double getParkPositionZ() const;
  void setParkPositionX(double value) noexcept;
  void setParkPositionY(double value) noexcept;
  void setParkPositionZ(double value) noexcept;
  bool hasParkPosition() const noexcept { return m_hasParkPosition; }

  /// The spindle axis as it was given.
  Vector const& getSpindleAxis() const noexcept { return m_spindleAxis; }
  /// Keeps the vector as given and a normalised copy for the solvers.
  void setSpindleAxis(Vector const& axis);

  // Tool length.
  double getToolLength() const noexcept { return mapToExternalXYZ(m_toolLength); }
  /// Stores the length and raises EVENT_TOOL_LENGTH.
  void setToolLength(double length);
  /// Stores the length and tells no one.
  void setToolLengthWithoutEvent(double length) noexcept { m_toolLength = mapToInternalXYZ(length); }
  /// The event for subscribers; raised with a MachineConfigurationEvents value.
  Orvo::Events::Event& getMachineConfigurationEvents() noexcept { return m_machineConfigurationEvents; }

  // Coolants.
  std::vector<bool>& getCoolants() noexcept { return m_coolants; }
  std::vector<bool> const& getCoolants() const noexcept { return m_coolants; }
  void setCoolants(std::vector<bool> const& value) { m_coolants = value; }
  /// Asserts a coolant other than COOLANT_OFF; false for a mode beyond the
  /// vector.
  bool getCoolant(Coolant coolant) const;
  /// Asserts a coolant other than COOLANT_OFF; a mode beyond the vector is
  /// not stored.
  void setCoolant(Coolant coolant, bool supported);
  /// Fail with "Invalid coolant mode." for a mode beyond the vector.
  bool isCoolantSupported(unsigned int mode) const;
  void setCoolantSupported(unsigned int mode, bool supported);

  // Multi-axis feed.
  MultiAxisFeedrate const& getMultiAxisFeedrate() const noexcept { return m_multiAxisFeedrate; }
  /// Sets the feed mode and maximum; mode 0 also takes the inverse time
  /// units from `type`, mode 1 the DPM type, tolerance and pulse weight.
  /// Then raises EVENT_MULTI_AXIS_FEEDRATE. Nothing is unit-mapped: the
  /// maximum and tolerance are in the mode's own terms.
  void setMultiAxisFeedrate(int mode, double maximum, int type, double outputTolerance, double bpwRatio);
  int getMultiAxisFeedrateMode() const noexcept { return m_multiAxisFeedrate.getFeedMode(); }
  double getMultiAxisFeedrateMaximum() const noexcept { return m_multiAxisFeedrate.getMaximumFeedrate(); }
  /// Mode 0 only; otherwise fails with "Feed mode is not InverseTime."
  int getMultiAxisFeedrateInverseTimeUnits() const;
  /// Mode 1 only; otherwise fails with "Feed mode is not DPM."
  int getMultiAxisFeedrateDPMType() const;
  /// Mode 1 only; otherwise fails with "Feed mode does not have an output
  /// tolerance."
  double getMultiAxisFeedrateOutputTolerance() const;
  /// Mode 1 only; otherwise fails with "Feed mode does not have a pulse
  /// weight ratio."
  double getMultiAxisFeedrateBpwRatio() const;

  // Rewinds. One flag answers to all of these names.
  void enableMachineRewinds() noexcept { m_multiAxisRetractAndReconfigure.setReconfigure(true); }
  void disableMachineRewinds() noexcept { m_multiAxisRetractAndReconfigure.setReconfigure(false); }
  bool performRewinds() const noexcept { return m_multiAxisRetractAndReconfigure.getReconfigure(); }
  bool getReconfigure() const noexcept { return m_multiAxisRetractAndReconfigure.getReconfigure(); }
  void setReconfigure(bool value) noexcept { m_multiAxisRetractAndReconfigure.setReconfigure(value); }
  MultiAxisRetractAndReconfigure const& getMultiAxisRetractAndReconfigure() const noexcept {
    return m_multiAxisRetractAndReconfigure;
  }
  /// Both must be 1 or 2 (MultiAxisRetractAndReconfigure's REWIND_AT_LINEAR,
  /// REWIND_AT_RAPID and REWIND_RETRACT_AT_APEX, REWIND_STAY_AT_APEX);
  /// checked before anything is stored, the rewind preference first.
  void setMachineRewindPreference(int rewind, int retract);
  int getMachineRewindPreference() const noexcept { return m_multiAxisRetractAndReconfigure.getRewindPreference(); }
  int getMachineRetractPreference() const noexcept { return m_multiAxisRetractAndReconfigure.getRetractPreference(); }
  // These fail with "Machine rewinds are not enabled." while the flag is off.
  // The distance and the stock expansion are lengths and unit-mapped; the
  // feeds are stored as given.
  int getRewindStrategy() const;
  Vector getRewindStockExpansion() const;
  double getSafeRetractDistance() const;
  double getSafeRetractFeedrate() const;
  double getSafePlungeFeedrate() const;
  // These work whatever the flag.
  void setRewindStrategy(int strategy) noexcept { m_multiAxisRetractAndReconfigure.setRewindStrategy(strategy); }
  void setRewindStockExpansion(Vector const& expansion);
  void setSafeRetractDistance(double distance) noexcept;
  void setSafeRetractFeedrate(double feedrate) noexcept;
  void setSafePlungeFeedrate(double feedrate) noexcept;

  // Singularities.
  /// Stores adjust, then method, then the rest (tolerances unit-mapped); a
  /// method above 2 then fails with "Invalid multi-axis singularity method."
  /// with the values kept.
  void setSingularity(bool adjust, int method, double cone, double angle, double tolerance,
                      double linearizationTolerance);
  MultiAxisSingularity const& getSingularity() const noexcept { return m_singularity; }
  bool getSingularityAdjust() const noexcept { return m_singularity.getAdjust(); }
  // These fail with "Adjust at singularities is not enabled." while adjust
  // is off.
  int getSingularityMethod() const;
  double getSingularityCone() const;
  double getSingularityAngle() const;
  double getSingularityTolerance() const;
  /// Also fails with "Singularity linearize method is off." for method 0.
  double getSingularityLinearizationTolerance() const;

  // Tool centre point per rotary axis.
  /// Saves the TCP flags of U, V and W and marks them saved, then: 0 TCP on
  /// for all three, 1 off for all three, 2 off for table axes and on for
  /// head axes, 3 off for head axes and on for table axes; any other value
  /// changes no flag (the mark stays set). A slot that holds a linear axis
  /// has no TCP flag and is left alone.
  void setTCPPerAxis(int mode);
  /// Asserts a saved state, brings the saved flags back and clears the mark.
  void resetTCPPerAxis();

  // Extruders (additive machines). Extruder numbers count from 1.
  unsigned int getNumberExtruders() const noexcept { return m_numberExtruders; }
  /// Also resizes the offset list to the number.
  void setNumberExtruders(unsigned int number);
  /// Fail with "Invalid extruder number." for 0 or a number beyond the list.
  double getExtruderOffsetX(unsigned int number) const;
  double getExtruderOffsetY(unsigned int number) const;
  double getExtruderOffsetZ(unsigned int number) const;
  /// Assert a number from 1; the list grows to hold it (the number of
  /// extruders stays as it is). Number 0 stores nothing.
  void setExtruderOffsetX(unsigned int number, double value);
  void setExtruderOffsetY(unsigned int number, double value);
  void setExtruderOffsetZ(unsigned int number, double value);

  // The XML form
  //
  // A configuration read from, or written as, an XML document whose root is
  // `machine`. Readers fail with Orvo::ScriptException in the reader's words;
  // no partly read configuration reaches the caller.

  /// Reads the file through the installed loader, after asking the
  /// installed security wrapper. The caller owns the result.
  static MachineConfiguration* createFromPath(std::wstring const& path);
  /// Reads a document given as text; `inherit` has no effect, there being
  /// no file to take its folder from. The caller owns the result.
  static MachineConfiguration* createFromXML(std::wstring const& text);
  /// Installs the loader createFromPath and inheritance use (not null).
  static void setMachineLoader(std::shared_ptr<MachineConfigurationLoader> impl);
  /// Installs the gate createFromPath asks first (not null).
  static void setSecurityWrapper(std::shared_ptr<SecurityWrapperBase> impl);
  /// The configuration as an XML document, numbers without units.
  std::wstring getXML() const;
  /// The same, with units on every number when `units` is true: inches
  /// and pounds when `inch` is true, millimetres and kilograms otherwise.
  std::wstring getXMLImpl(bool units, bool inch) const;

  // Numbers with units, as scripts and the XML form write them: a number
  // directly followed by an optional unit word, with spaces around the
  // whole but not inside it. The result is in millimetres, radians, kg,
  // seconds, W, per minute. Each fails with its own text ("Invalid
  // spatial.", ...) when the text is not such a number or something follows
  // it, and with "Invalid unit." for a unit word it does not know.

  /// Length in mm; a bare number is millimetres.
  static double getAsSpatial(std::wstring const& text);
  /// Angle in radians; a bare number is degrees. "grad" counts 0.9, not a
  /// conversion to radians: 100grad reads as 90.
  static double getAsAngular(std::wstring const& text);
  /// Feed in mm per minute; the unit is length "/" time ("mm/s"); a bare
  /// number is mm per minute.
  static double getAsSpatialFeedrate(std::wstring const& text);
  /// Angular speed in radians per minute; the unit is "rpm" or angle "/"
  /// time ("deg/s"); a bare number is degrees per minute.
  static double getAsAngularFeedrate(std::wstring const& text);
  /// Power in W.
  static double getAsPower(std::wstring const& text);
  /// Time in seconds.
  static double getAsTime(std::wstring const& text);
  /// Weight in kg.
  static double getAsWeight(std::wstring const& text);
  /// Spindle speed in revolutions per minute: a number with an optional
  /// "rpm", which counts 1. Fails with "Invalid spindle speed."
  static double getAsSpindleSpeed(std::wstring const& text);

  // Made from a machine definition
  //
  // The translation of a machine definition, or of the kinematics and
  // controller settings in it, into the scripted model. The head chain's
  // axes are added from the tool towards the base, the table chain's from
  // the base towards the table, so that U turns the tool direction first.

  /// The kinematics with a default (empty) controller configuration, whose
  /// head and table are then those of the tree, and a live tool, as a
  /// Machine is made from them. Empty when the head or table is not found.
  static std::unique_ptr<MachineConfiguration> createFromMachineDefinition(
      machine::KinematicsDefinition const& kinematics);
  /// The kinematics with these controller settings and a live tool.
  static std::unique_ptr<MachineConfiguration> createFromMachineDefinition(
      machine::KinematicsDefinition const& kinematics, machine::ControllerConfiguration const& controller);
  /// The definition with the MachineSpecification made from its default
  /// kinematics and controller features, if it has kinematics.
  static std::unique_ptr<MachineConfiguration> createFromMachineDefinition(machine::MachineDefinition const& definition,
                                                                           bool liveTool);
  /// The definition's texts, capabilities and features over the
  /// configuration made from the kinematics and controller pair, or over a
  /// default configuration when there is none. Empty when that pair's head
  /// or table is not found. Throws std::invalid_argument "invalid stoi argument" or
  /// std::out_of_range "stoi argument out of range" for an extruder whose
  /// name holds no usable number.
  static std::unique_ptr<MachineConfiguration> createFromMachineDefinition(
      machine::MachineDefinition const& definition, std::optional<machine::MachineSpecification> const& specification);
  /// The axes, spindle, tool station and controller limits of a kinematics
  /// and controller pair; the number of tools is left at 4294967295 unless a
  /// turret counts its stations. Empty when the controller's head or table
  /// part is unset or not in the kinematics.
  static std::unique_ptr<MachineConfiguration> createFromMachineSpecification(
      machine::MachineSpecification const& specification);

  // Orientation solving and positions
  //
  // The rotary slots are chained: U acts first on the tool direction, then
  // V, then W. The solver works in UVW triples (x, y, z for the slots U, V,
  // W); scripts see ABC triples, where each axis's coordinate places its
  // value. Head and table axes differ only by the sign of their effective
  // axis, so one chain serves both. Angles are radians; failures throw
  // Orvo::ScriptException.
  //
  // On six axes W is held at one value (its range minimum or the end nearer
  // zero, or each resolution step in turn) while U and V are solved in
  // closed form about the axes turned by W. That is exact only when W is
  // parallel to the spindle axis: otherwise W also turns the spindle, which
  // the two-axis solve does not see, and a direction can fail the final
  // check ("Direction is not supported for machine configuration.") that
  // every solution passes.

  /// The values of getOptimizedPosition's `tcpType`: which way a position is
  /// compensated for the rotary axes. Any value other than 1, 2, 3 works as
  /// TCP_FORWARD.
  enum TcpType : int {
    /// From the part to the machine.
    TCP_FORWARD = 0,
    /// From the machine to the part.
    TCP_REVERSE = 1,
    /// Forward unless some rotary axis has TCP disabled; then unchanged.
    TCP_FORWARD_IF_NOT_OPTIMIZED = 2,
    /// Reverse if some rotary axis has TCP disabled; otherwise unchanged.
    TCP_REVERSE_IF_OPTIMIZED = 3,
  };
  /// The values of `optimizeType`: which axis kinds take part. Any value
  /// other than 2 and 3 lets both act.
  enum OptimizeType : int {
    OPTIMIZE_BOTH = 1,
    OPTIMIZE_TABLES = 2,
    OPTIMIZE_HEADS = 3,
  };

  /// The two ABC solutions that point the tool along `direction`, the one
  /// with the smaller absolute value on U first. Fails with "Direction is
  /// not supported for machine configuration." when a solution misses the
  /// direction by more than an acceptance cosine of 0.9999999, and with
  /// "Invalid machine configuration." or "Unsupported machine
  /// configuration." (on six axes with the slot named) for slots that do not
  /// fit the axis count.
  VectorPair getABCByDirectionBoth(Vector const& direction) const;
  /// getABCByDirectionBoth, with a pair of zero vectors for any script
  /// failure.
  VectorPair getABCByDirectionBothWithoutExceptions(Vector const& direction) const;
  /// The first solution: the one nearest zero on U.
  Vector getABCByDirection(Vector const& direction) const;
  /// The second solution.
  Vector getABCByDirection2(Vector const& direction) const;
  /// getABCByDirection of the orientation's forward column.
  Vector getABC(Matrix const& orientation) const;
  /// The solution for the direction of `abc` that is farther from `abc`:
  /// the other one. With up to four axes, `abc` itself.
  Vector getOtherABCByDirection(Vector const& abc) const;
  /// The tool direction that the rotary values `abc` give.
  Vector getDirection(Vector const& abc) const;
  /// The tool direction that the UVW triple gives.
  Vector getDirectionUVW(Vector const& uvw) const;
  /// The spindle axis turned by the head axes only, normalised; on a
  /// machine without head axes, the normalised spindle axis.
  Vector getSpindleAxisABC(Vector const& abc) const;
  /// `abc` with only the values of enabled head axes kept.
  Vector getHeadABC(Vector const& abc) const;
  /// `abc` with only the values of enabled table axes kept.
  Vector getTableABC(Vector const& abc) const;

  /// The resolution steps (w = step times resolution) that a W sweep over
  /// the range tries, in the order it tries them: outward from 0 (or from
  /// the range end nearer 0), the positive side first, and the side of a
  /// non-zero `preference` wholly before the other. Public so that the order
  /// can be checked on its own.
  static std::vector<long> getWSweepSteps(double minimum, double maximum, double resolution, int preference);

  /// `v` turned by `angle` about the unit vector `axis` (active).
  static Vector rotateAbout(Vector const& axis, double angle, Vector const& v) noexcept;
  /// The angle about the unit vector `axis` that takes `to` to `from`
  /// (negated, as the solver uses it), between the parts of both
  /// perpendicular to the axis.
  static double angleAbout(Vector const& axis, Vector const& from, Vector const& to) noexcept;

  /// The rotation of the rotary chain: R(W) R(V) R(U), each about its
  /// effective axis. Fails with "Invalid vector coordinates.".
  Matrix getOrientation(Vector const& abc) const;
  /// As getOrientation, starting from the rotation that takes Z to the
  /// spindle axis, so that Z goes to the tool direction of `abc`.
  Matrix getOrientationABC(Vector const& abc) const;
  /// Transposed getOrientation(abc) times `orientation`.
  Matrix getRemainingOrientation(Vector const& abc, Matrix const& orientation) const;
  /// Transposed getOrientationABC(abc) times `orientation`.
  Matrix getRemainingOrientationABC(Vector const& abc, Matrix const& orientation) const;
  Matrix getHeadOrientation(Vector const& abc) const;
  Matrix getTableOrientation(Vector const& abc) const;

  /// getOptimizedPosition(position, abc, TCP_REVERSE, OPTIMIZE_BOTH, false)
  /// after validating both.
  Vector getPosition(Vector const& position, Vector const& abc) const;
  /// The position compensated for the rotary axes that the control does not
  /// follow (TCP disabled, or all with `force`), in the script's unit.
  Vector getOptimizedPosition(Vector const& position, Vector const& abc, int tcpType, int optimizeType,
                              bool force) const;
  /// getOptimizedPosition in internal units. Forward is tables then heads,
  /// reverse heads then tables.
  Vector getOptimizedPositionInternal(Vector const& position, Vector const& abc, int tcpType, int optimizeType,
                                      bool force, bool ignoreVirtualTooltip) const;
  /// A direction through the table axes only.
  Vector getOptimizedDirection(Vector const& direction, Vector const& abc, bool reverse, bool force) const;
  /// Adds the head axes' pivot offsets and the tool length (at the first
  /// head axis only), each turned by its axis and the ones after it. With
  /// `reverse` the offsets change sign, the rotations do not.
  Vector getOptimizedHeads(Vector const& position, Vector const& abc, bool reverse, int optimizeType, bool force,
                           bool ignoreVirtualTooltip) const;
  /// Turns the position about each table axis's pivot, W, V, U forward and
  /// U, V, W with the inverse rotations in reverse; `directionOnly` leaves
  /// the pivots out.
  Vector getOptimizedTables(Vector const& position, Vector const& abc, bool reverse, int optimizeType,
                            bool directionOnly, bool force) const;

private:
  // Made from a machine definition.
  /// The enabled axes of the parts from `part` towards the base whose
  /// control is used in post calculations, in that order.
  static std::vector<Axis> gatherAllPostAxesFromChain(machine::PartDefinition const& part,
                                                      machine::ControllerConfiguration const& controller, bool table);
  /// The spindle axis (the Z axis of the part's attach frame), speeds, power,
  /// torque and description of a part that has a spindle.
  static void setSpindleSettingsFromPartDefinition(machine::PartDefinition const& part,
                                                   MachineConfiguration& configuration);
  /// Driven and manual axes are; secondary, ancillary, link and subordinate
  /// ones are not.
  static bool isAxisUsedInPostCalc(machine::ControlType controlType) noexcept;

  /// (U, V, W) at their coordinates in `abc`; 0 for a disabled slot.
  Vector getUVW(Vector const& abc) const;
  /// The ABC triple of a UVW triple: each enabled rotary slot's value at its
  /// coordinate, 0 elsewhere.
  Vector makeABC(Vector const& uvw) const;
  /// The solvers of the axis counts, in UVW; `t` and `s` are the normalised
  /// direction and spindle axis.
  VectorPair solveFourAxes(Vector const& t, Vector const& s) const;
  VectorPair solveFiveAxes(Vector const& t, Vector const& s) const;
  VectorPair solveSixAxes(Vector const& t, Vector const& s) const;
  /// The W resolution steps tried in turn, best result kept.
  VectorPair sweepW(Vector const& t, Vector const& s, Vector const& a1, Vector const& a2, Vector const& a3) const;
  /// U and V about `a1`, `a2` (already turned by W) with W held at `w`; no
  /// range applied. False where the two axes cannot be told apart.
  static bool solveTwoAxes(Vector const& t, Vector const& s, Vector const& a1, Vector const& a2, double w,
                           Vector& first, Vector& second);
  /// The stand-in range of an axis without one: -pi to pi, rotational.
  static Range const& defaultRotaryRange();
  /// The slots that take part in position compensation.
  bool compensates(Axis const& axis, bool table, bool force) const noexcept;

public:
  // Preference and remapping
  //
  // A tool direction has two rotary solutions, each with representatives a
  // whole turn apart; these decide which one a script gets. Angles are
  // radians, triples are in ABC order (x A, y B, z C). None of them changes
  // the configuration: work on axes happens on copies.

  /// The `type` argument of getABCByPreference: how the controlling axis
  /// chooses between the solutions.
  enum PreferenceType : int {
    /// The axes' own preference, then closeness.
    PREFER_PREFERENCE = 0,
    /// The smallest move from the current position.
    PREFER_CLOSEST = 1,
    /// A position at or above 0.
    PREFER_POSITIVE = 2,
    /// A position at or below 0.
    PREFER_NEGATIVE = 3,
    /// A position at or above the current one.
    PREFER_INCREASING = 4,
    /// A position at or below the current one.
    PREFER_DECREASING = 5,
  };
  /// The `controllingAxis` argument of getABCByPreference: one coordinate, or
  /// all three together.
  enum ControllingAxis : int {
    CONTROLLING_AXIS_A = 0,
    CONTROLLING_AXIS_B = 1,
    CONTROLLING_AXIS_C = 2,
    CONTROLLING_AXIS_ABC = 3,
  };
  /// The bits of the `options` argument of getABCByPreference.
  enum PreferenceOption : int {
    /// Axes whose reset behaviour has bit 0 set count from 0, not from
    /// their current position.
    PREFERENCE_RESET_AXES = 1,
    /// With the tool along the last rotary axis, that axis takes up the
    /// turn that remains of the orientation.
    PREFERENCE_ADJUST_LAST_AXIS = 2,
  };

  /// Each enabled rotary axis's value through Axis::remapToRange; fails with
  /// "Rotation is not possible for axis." for a value no turn brings into
  /// its range.
  Vector remapABC(Vector const& abc) const;
  /// Each enabled rotary axis's value moved by whole turns to the
  /// representative nearest the reference's; 0 where no axis is.
  Vector remapToABC(Vector const& abc, Vector const& reference) const;
  /// Of the two solutions for the direction of `abc`, each taken nearest to
  /// `current`, the one with the smaller rotary travel from it (the sum of
  /// the absolute moves of the axes); the first on a tie.
  Vector getClosestABC(Vector const& current, Vector const& abc) const;
  /// The solution for the direction of `abc` that honours the axes'
  /// preferences, on a machine of two perpendicular rotary axes U and V
  /// with some preference set; `abc` itself everywhere else.
  Vector getPreferredABC(Vector const& abc) const;
  /// The general chooser: the solution for the orientation's forward
  /// direction that suits `type` on `controllingAxis`, from `current`, with
  /// the PreferenceOption bits of `options`. Fails with "The controlling
  /// axis is not enabled.", "Orientation is not supported: %1, %2, %3" (the
  /// first solution in degrees, to three decimals, truncated), "Specifying
  /// ABC as the controlling axis only supports PREFER_PREFERENCE or
  /// PREFER_CLOSEST." or "Valid controlling axes are A, B, C, ABC (0-3).",
  /// besides the failures of the solver.
  Vector getABCByPreference(Matrix const& orientation, Vector const& current, int controllingAxis, int type,
                            int options) const;
  /// At a pole the last rotary axis (V) is free: with the tool along it,
  /// V keeps its value from `previousABC` rather than jump, as long as the
  /// tool stays where `abc` puts it. `currentDirection` is a unit vector.
  Vector preserveRotaryAtZero(Vector const& currentDirection, Vector const& previousABC, Vector const& abc) const;

  /// Every enabled rotary axis that is not cyclic supports its value.
  bool isABCSupported(Vector const& abc) const;
  /// Every enabled linear axis supports its component of `xyz`, taken in
  /// the configuration's unit.
  bool isXYZSupported(Vector const& xyz) const;
  /// X, Y and Z support x, y and z, enabled or not.
  bool isSupportedPosition(Vector const& xyz) const;
  /// The tool can point along `direction` with the rotary axes in range:
  /// the spindle axis always; otherwise the first solution brought into the
  /// ranges, or failing that the other one. Passes on the solver's failure
  /// for a direction it cannot reach.
  bool isDirectionSupported(Vector const& direction) const;

  /// Each enabled rotary axis with a range limits its value to it; every
  /// other component is 0, an axis without a range included.
  Vector clamp(Vector const& abc) const;
  /// Each enabled rotary axis rounds its value to its resolution (halves
  /// away from zero), or keeps it without one; every other component is 0.
  Vector clampToResolution(Vector const& abc) const;
  /// The effective axis of an enabled axis, the zero vector otherwise.
  /// Asserts a rotational axis.
  Vector getRotationAxis(Axis const& axis) const;

private:
  friend struct MachineConfigurationPreferenceTestAccess;

  /// The score of a solution: +1 for each enabled rotary axis (only the
  /// controlling one unless that is CONTROLLING_AXIS_ABC) whose value keeps
  /// its preference and range, -1 for each that does not.
  int getPreferenceWeight(Vector abc, int controllingAxis) const;
  /// One axis value, moved by whole turns to suit `type` from `current`,
  /// then into the axis's range where it fits.
  static double remapToClosest(double current, double value, Axis axis, int type);
  /// The cost of moving from `current` to `value` for `type`: the absolute
  /// move, or 0 or infinity for the directional types. Moves below 1e-5
  /// count as 0.
  static double getAxisDelta(double current, double value, int type);

private:
  friend class MachineAxesValidator;
  // The reader makes its configurations without axes.
  friend class MachineConfigurationLoader;

  /// A configuration as initialize() and then removeAllAxes() leave it,
  /// made without first making X, Y and Z.
  struct WithoutAxes {};
  explicit MachineConfiguration(WithoutAxes);
  /// Listed as a consumer with its axes, nothing else set yet: what the
  /// other constructors start from.
  struct Unfilled {};
  explicit MachineConfiguration(Unfilled);
  /// initialize()'s fields other than the axes.
  void initializeFields();

  Axis& slot(AxisId id) noexcept;
  Axis const& slot(AxisId id) const noexcept;
  /// The checks of addAxis: the slot the axis goes to, counted in the
  /// order, or AXIS_NONE when there is no room for a rotary axis.
  AxisId placeAxis(Axis const& axis);
  /// The number of enabled slots U, V, W up to the first disabled one.
  int orderedRotaryCount() const noexcept;
  /// Some enabled rotary slot has TCP disabled.
  bool isOptimized() const noexcept;
  void disableTCPIfHeadAxis(Axis& axis);
  void disableTCPIfTableAxis(Axis& axis);
  void checkRewindsEnabled() const;
  void checkSingularityAdjust() const;
  Vector& extruderOffsetForWriting(unsigned int number);
  Vector const& extruderOffset(unsigned int number) const;

  // The fields, in order. Their defaults are those initialize gives, which
  // every constructor but the copy runs.
  Vector m_wcs;
  Vector m_spindleAxis;
  Vector m_spindleAxisNormalized;
  std::wstring m_spindleDescription;
  double m_maximumSpindlePower;
  double m_spindlePeakTorque;
  double m_spindlePeakTorqueSpeed;
  double m_minimumSpindleSpeed;
  double m_maximumSpindleSpeed;
  std::wstring m_collectChuck;
  double m_toolLength;
  Vector m_dimensions;
  double m_weight;
  Vector m_partDimensions;
  double m_weightCapacity;
  bool m_milling;
  bool m_turning;
  bool m_wire;
  bool m_jet;
  bool m_additiveFFF;
  bool m_inspection;
  bool m_toolChanger;
  bool m_toolPreload;
  unsigned int m_numberOfTools;
  double m_maximumToolLength;
  double m_maximumToolDiameter;
  double m_maximumToolWeight;
  std::optional<machine::DisplayName> m_toolInterface;
  double m_maximumFeedrate;
  double m_maximumCuttingFeedrate;
  unsigned int m_maximumBlockProcessingSpeed;
  double m_feedrateRatio;
  double m_toolChangeTime;
  std::vector<bool> m_coolants;
  unsigned int m_numberOfWorkOffsets;
  MultiAxisFeedrate m_multiAxisFeedrate;
  MultiAxisRetractAndReconfigure m_multiAxisRetractAndReconfigure;
  MultiAxisSingularity m_singularity;
  unsigned int m_axisCount;
  AxisId m_axisOrder[6];
  Axis m_axisX;
  Axis m_axisY;
  Axis m_axisZ;
  Axis m_axisU;
  Axis m_axisV;
  Axis m_axisW;
  bool m_axisTCPIsSet;
  bool m_savedTCPU;
  bool m_savedTCPV;
  bool m_savedTCPW;
  bool m_virtualTooltip;
  Vector m_centerPosition;
  bool m_hasCenterPosition;
  Vector m_parkPosition;
  bool m_hasParkPosition;
  unsigned int m_numberExtruders;
  std::vector<Vector> m_extruderOffsets;
  std::wstring m_description;
  std::wstring m_model;
  std::wstring m_vendor;
  std::wstring m_vendorUrl;
  std::wstring m_control;
  std::wstring m_postProcessor;
  std::wstring m_setupSheet;
  StringMap m_actions;
  StringMap m_cycles;
  std::wstring m_machineAssembly;
  bool m_retractOnIndexing;
  bool m_shortestAngularRotation;
  Orvo::Events::Event m_machineConfigurationEvents;
  bool m_received;
  Vector m_headAttachPoint;
  Vector m_tableAttachPoint;
  bool m_subSpindleZAxisReversed;
  bool m_TWPEnabled;

  // The loader and the gate of the XML form: set once at start-up.
  static std::shared_ptr<MachineConfigurationLoader> s_machineLoader;
  static std::shared_ptr<SecurityWrapperBase> s_security;
};

}  // namespace post
}  // namespace vantora
}  // namespace com
