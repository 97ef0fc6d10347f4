#pragma once
// The motion of a part: the abstract base of linear and rotary axes.
//
// Everything is told relative to the value as modelled: at that value the
// part stands as drawn in the file and its transformation is the identity.

#include <memory>
#include <optional>

#include "machine/machine/AxisType.h"
#include "machine/machine/ControlType.h"
#include "nc/AxisName.h"
#include "nc/AxisValue.h"
#include "nc/AxisValueRange.h"
#include "util/utility/math/Transform3D.h"
#include "util/utility/math/Vector3D.h"

namespace machine {

class AxisDefinition {
public:
  AxisDefinition(ControlType defaultControl, Orvo::AxisValue const& valueAsModelled,
                 Orvo::AxisValue const& defaultHome, std::optional<Orvo::AxisName> const& name,
                 std::optional<Orvo::AxisValue> const& stepSize);

  // Virtual operations, in slot order.
  /// The motion of the part at `value`, relative to the value as modelled.
  virtual Orvo::Transform3D transformation(Orvo::AxisValue value) const = 0;
  virtual AxisType axisType() const = 0;
  virtual void setDirection(Orvo::Vector3D const& direction) = 0;
  virtual Orvo::Vector3D direction() const = 0;
  virtual std::optional<Orvo::AxisValue> physicalMin() const = 0;
  virtual std::optional<Orvo::AxisValue> physicalMax() const = 0;
  virtual bool hasPhysicalLimits() const;
  virtual Orvo::AxisValueRange physicalRange() const;
  virtual ~AxisDefinition();

  std::unique_ptr<AxisDefinition> clone() const { return doClone(); }

  ControlType defaultControl() const noexcept { return m_defaultControl; }
  Orvo::AxisValue defaultHome() const noexcept { return m_defaultHome; }
  std::optional<Orvo::AxisValue> defaultToolChangePosition() const noexcept { return m_defaultToolChangePosition; }
  std::optional<Orvo::AxisName> name() const { return m_name; }
  std::optional<Orvo::AxisValue> stepSize() const noexcept { return m_stepSize; }
  Orvo::AxisValue valueAsModelled() const noexcept { return m_valueAsModelled; }

  void setDefaultControl(ControlType control) noexcept { m_defaultControl = control; }
  void setDefaultHome(Orvo::AxisValue const& home) noexcept { m_defaultHome = home; }
  void setDefaultToolChangePosition(std::optional<Orvo::AxisValue> const& position) noexcept {
    m_defaultToolChangePosition = position;
  }
  void setName(std::optional<Orvo::AxisName> const& name) { m_name = name; }
  /// A zero step may be set here though it cannot be constructed.
  void setStepSize(std::optional<Orvo::AxisValue> const& stepSize);
  void setValueAsModelled(Orvo::AxisValue const& value) noexcept { m_valueAsModelled = value; }

protected:
  AxisDefinition(AxisDefinition const&) = default;
  AxisDefinition& operator=(AxisDefinition const&) = default;
  virtual std::unique_ptr<AxisDefinition> doClone() const = 0;

private:
  ControlType m_defaultControl;
  Orvo::AxisValue m_valueAsModelled;
  Orvo::AxisValue m_defaultHome;
  std::optional<Orvo::AxisValue> m_defaultToolChangePosition;
  std::optional<Orvo::AxisName> m_name;
  std::optional<Orvo::AxisValue> m_stepSize;
};

}  // namespace machine
