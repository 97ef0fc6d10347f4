#pragma once
// One axis of the machine as a post-processor script describes it: linear
// or rotational, on the head or on the table, with its direction, pivot,
// limits, resolution, feeds and the rules that bring a rotary value into its
// range. Not the runtime machine::Axis.
//
// Lengths are held in millimetres and angles in radians. The setters and
// getters of positions, resolution and feeds map through the XYZ factors for
// a linear axis and the ABC ones (no change) for a rotational axis, so a
// rotary offset, resolution or feed is never rescaled.
//
// An axis is enabled when its checks pass (getValidityStatus() is 0). A
// disabled axis, such as one made by default or one whose coordinate is -1,
// is how a machine configuration says that an axis does not exist.

#include <string>
#include <utility>

#include "machine/machine/PostMachineConfig/Matrix.h"
#include "machine/machine/PostMachineConfig/Range.h"
#include "machine/machine/PostMachineConfig/UnitConsumer.h"
#include "machine/machine/PostMachineConfig/Vector.h"
#include "nc/MachinePartId.h"
#include "util/utility/ScriptObject.h"

namespace machine {
class AxisConfiguration;
class AxisDefinition;
}  // namespace machine

namespace com {
namespace vantora {
namespace post {

class Axis : public Orvo::ScriptObject, public UnitConsumer {
  // A configuration lists its six axes and their ranges with itself.
  friend class MachineConfiguration;

public:
  /// Values of the actuator.
  enum : unsigned int { LINEAR = 0, ROTATIONAL = 1 };

  /// Disabled: rotational, zero vector, coordinate -1, no range.
  Axis();
  /// A rotational axis. The vector is normalised, the offset taken in the
  /// script's unit.
  Axis(bool table, Vector const& axis, Vector const& offset, int coordinate);
  Axis(bool table, Vector const& axis, Vector const& offset, int coordinate, Range const& range);
  // An axis lists itself and its range as consumers under one lock, and
  // takes both off under one, so that passing axes by value stays cheap.
  Axis(Axis const& other);
  /// A disabled axis as Axis() makes it, left off the consumer list with its
  /// range, for an owner that lists them together with itself (see
  /// UnitConsumer and MachineConfiguration's axes).
  explicit Axis(ListedByOwner tag) noexcept;
  Axis& operator=(Axis const&) = default;
  /// Takes the other's texts instead of copying them; both stay listed.
  Axis& operator=(Axis&&) = default;

  char const* getBaseClass() const noexcept override;
  ~Axis() override;

  /// An axis for a moving part of a machine definition, with its controller
  /// settings if there are any. Degrees of the definition become radians.
  static Axis createFromAxisDefinition(machine::AxisDefinition const& definition,
                                       machine::AxisConfiguration const* configuration, bool table,
                                       Orvo::MachinePartId const& id);

  // Kind.
  unsigned int getActuator() const noexcept { return m_actuator; }
  /// Throws "Invalid axis actuator." above 1.
  void setActuator(unsigned int actuator);
  bool isLinear() const noexcept { return m_actuator == LINEAR; }
  bool isRotational() const noexcept { return m_actuator == ROTATIONAL; }
  bool isTable() const noexcept { return m_table; }
  bool isHead() const noexcept { return !m_table; }
  void setTable(bool table);
  int getControlType() const noexcept { return m_controlType; }
  /// Stores the value, then throws "Axis.setControlType() Control type is
  /// invalid" if it is above 5: the value stays stored after the failure.
  void setControlType(int controlType);
  /// Controlled by hand (control type 5).
  bool isManual() const noexcept { return m_controlType == 5; }

  // Direction and place.
  Vector const& getAxis() const noexcept { return m_axis; }
  /// Stored as given; only the constructors normalise.
  void setAxis(Vector const& axis);
  /// The axis, as is for a table axis and negated for a head axis: the
  /// rotation of a head axis acts on the tool, that of a table axis on the
  /// part, and this puts both in one frame.
  Vector const& getEffectiveAxis() const noexcept { return m_effectiveAxis; }
  Vector getOffset() const noexcept;
  void setOffset(Vector const& offset);
  /// -1 for an axis that is not enabled.
  int getCoordinate() const noexcept { return m_enabled ? m_coordinate : -1; }
  /// The stored coordinate, enabled or not.
  int getCoordinate2() const noexcept { return m_coordinate; }
  void setCoordinate(int coordinate);
  /// The component of `v` at the axis's coordinate; 0 when not enabled.
  double getCoordinateOfVector(Vector const& v) const;

  // Names.
  std::wstring const& getName() const noexcept { return m_name; }
  void setName(std::wstring name) { m_name = std::move(name); }
  /// The name, or getNameFallbackOnly() when it is empty.
  std::wstring getNameFallback() const;
  /// "X", "Y", "Z" for a linear axis and "A", "B", "C" for a rotational one,
  /// by the coordinate that getCoordinate() reports, so a disabled
  /// rotational axis (coordinate -1) answers "Z". A disabled linear axis has
  /// no letter and answers an empty text.
  std::wstring getNameFallbackOnly() const;
  std::string getNameFallbackUTF8() const;
  std::string getNameFallbackOnlyUTF8() const;
  Orvo::MachinePartId const& getMachinePartId() const noexcept { return m_machinePartId; }
  void setMachinePartId(Orvo::MachinePartId const& id) { m_machinePartId = id; }

  // Positions, resolution and feeds, in the script's unit.
  double getHomePosition() const noexcept { return toExternal(m_homePosition); }
  void setHomePosition(double position) noexcept;
  bool hasHomePosition() const noexcept { return m_hasHomePosition; }
  double getDisplacement() const noexcept { return toExternal(m_displacement); }
  void setDisplacement(double displacement) noexcept { m_displacement = toInternal(displacement); }
  double getToolChangePosition() const noexcept { return toExternal(m_toolChangePosition); }
  void setToolChangePosition(double position) noexcept;
  bool hasToolChangePosition() const noexcept { return m_hasToolChangePosition; }
  double getResolution() const noexcept { return toExternal(m_resolution); }
  void setResolution(double resolution);
  double getMaximumFeed() const noexcept { return toExternal(m_maximumFeed); }
  void setMaximumFeed(double feed);
  double getRapidFeed() const noexcept { return toExternal(m_rapidFeed); }
  void setRapidFeed(double feed);

  // Range and behaviour.
  Range const& getRange() const noexcept { return m_range; }
  void setRange(Range const& range);
  /// -1, 0 or +1.
  int getPreference() const noexcept;
  /// Takes -1, 0 or +1; anything else throws "Invalid angle preference.".
  void setPreference(int preference);
  /// When the axis is reset, 0 to 3.
  int getReset() const noexcept { return m_reset; }
  /// Throws "Invalid reset behavior." outside 0 to 3.
  void setReset(int reset);
  /// Throws "Actuator must be rotational." on a linear axis.
  void setCyclic(bool cyclic);
  /// An enabled rotational axis without a range always is; with one, as set.
  bool isCyclic() const noexcept;
  /// Throws "Actuator must be rotational." on a linear axis.
  void setTCPEnabled(bool enabled);
  /// Never for a linear axis.
  bool isTCPEnabled() const noexcept { return isRotational() && m_tcpEnabled; }
  bool isEnabled() const noexcept { return m_enabled; }
  /// A real range that is a single point.
  bool isAggregate() const noexcept { return m_aggregate; }

  /// 0 when the axis is usable, else the first check that fails.
  int getValidityStatus() const;
  static std::wstring getStatusDescription(int status);

  /// The rotation by `angle` about the effective axis; the identity for a
  /// linear axis.
  Matrix getAxisRotation(double angle) const;

  // Range and resolution of a value in the script's unit.
  /// Always for a non-range, otherwise Range::isWithin.
  bool isSupported(double value) const;
  /// The value limited to the range, in the script's unit.
  double clamp(double value) const;
  /// The value rounded to the resolution, halves away from zero. The result
  /// is internal (millimetres for a linear axis), unlike clamp's.
  double clampToResolution(double value) const;
  /// The internal value minus its rounding to the resolution; 0 without one.
  double getResolutionError(double value) const;

  // Rotary values; these throw on an axis that is not enabled or not
  // rotational.
  /// The smallest form of the angle that the range allows.
  double reduce(double value) const;
  /// Brings the value into the range by whole turns, then applies the
  /// preference where the range allows. Throws "Rotation is not possible for
  /// axis." when no turn fits.
  double remapToRange(double value) const;
  /// As remapToRange, with the turn nearest `origin`.
  double remapToRange2(double value, double origin) const;
  /// The turn nearest `origin` if the range allows it, else the value.
  double remapToRange3(double value, double origin) const;
  /// remapToRange that gives the value unchanged where it would throw.
  double remapToRangeNoException(double value) const noexcept;

private:
  double toInternal(double value) const noexcept {
    return isLinear() ? mapToInternalXYZ(value) : mapToInternalABC(value);
  }
  double toExternal(double value) const noexcept {
    return isLinear() ? mapToExternalXYZ(value) : mapToExternalABC(value);
  }
  void updateEffectiveAxis() noexcept;
  void updateAggregate() noexcept;
  void updateValidity();
  bool hasRealRange() const noexcept { return !m_range.isNonRange(); }
  /// remapToRange's steps 2 to 5; false where remapToRange throws "Rotation
  /// is not possible for axis.".
  bool remap(double& value) const;

  bool m_enabled = false;
  unsigned int m_actuator = ROTATIONAL;
  bool m_table = false;
  Vector m_axis;
  Vector m_offset;
  double m_homePosition = 0.0;
  bool m_hasHomePosition = false;
  double m_displacement = 0.0;
  int m_coordinate = -1;
  bool m_cyclic = false;
  bool m_tcpEnabled = true;
  Range m_range;
  int m_preference = 0;  // 0 none, 1 positive, 2 negative
  double m_resolution = 0.0;
  double m_maximumFeed = 0.0;
  double m_rapidFeed = 0.0;
  std::wstring m_name;
  int m_reset = 0;
  int m_controlType = 0;
  Orvo::MachinePartId m_machinePartId;
  double m_toolChangePosition = 0.0;
  bool m_hasToolChangePosition = false;
  Vector m_effectiveAxis;
  bool m_aggregate = false;
};

}  // namespace post
}  // namespace vantora
}  // namespace com
