#pragma once
// One extruder of a machine that builds up material: the "additive_extruder"
// feature. Its JSON holds only what differs from a default extruder.

#include <json/value.h>

#include <string>

#include "machine/machine/CopyTag.h"
#include "machine/machine/MachineFeatureDefinitionImpl.h"
#include "util/utility/math/Vector3D.h"

namespace machine {

class AdditiveExtruderDefinition
    : public MachineFeatureDefinitionImpl<AdditiveExtruderDefinition, MachineFeatureDefinition> {
public:
  /// No name, every number 0, the fan off, no offset.
  AdditiveExtruderDefinition();
  /// Reads an "additive_extruder" body; every key is optional. Throws
  /// std::runtime_error on a value of the wrong kind, "Expected a 3D vector."
  /// for an offset that isn't three numbers.
  AdditiveExtruderDefinition(std::string const& featureId, Json::Value const& data);
  AdditiveExtruderDefinition(CopyTag, AdditiveExtruderDefinition const& other);

  static std::string featureTypeIdStatic();

  /// The keys whose fields differ from a default extruder's; JSON null when
  /// none does.
  Json::Value getPersistData() const override;

  std::string const& name() const noexcept { return m_name; }
  void setName(std::string const& value) { m_name = value; }
  double diameter() const noexcept { return m_diameter; }
  void setDiameter(double value) noexcept { m_diameter = value; }
  double filamentDiameter() const noexcept { return m_filamentDiameter; }
  void setFilamentDiameter(double value) noexcept { m_filamentDiameter = value; }
  bool fanEnabled() const noexcept { return m_fanEnabled; }
  void setFanEnabled(bool value) noexcept { m_fanEnabled = value; }
  double maxVolPerSec() const noexcept { return m_maxVolPerSec; }
  void setMaxVolPerSec(double value) noexcept { m_maxVolPerSec = value; }
  double maxTemp() const noexcept { return m_maxTemp; }
  void setMaxTemp(double value) noexcept { m_maxTemp = value; }
  Orvo::Vector3D const& offset() const noexcept { return m_offset; }
  void setOffset(Orvo::Vector3D const& value) noexcept { m_offset = value; }

private:
  std::string m_name;
  double m_diameter = 0.0;
  double m_filamentDiameter = 0.0;
  bool m_fanEnabled = false;
  double m_maxVolPerSec = 0.0;
  double m_maxTemp = 0.0;
  Orvo::Vector3D m_offset{0.0, 0.0, 0.0};
};

}  // namespace machine
