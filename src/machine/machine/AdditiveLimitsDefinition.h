#pragma once
// The limits of a machine that builds up material, and its home and park
// positions: the "limits" feature. Its JSON holds only what differs from the
// defaults.

#include <json/value.h>

#include <string>

#include "machine/machine/CopyTag.h"
#include "machine/machine/MachineFeatureDefinitionImpl.h"
#include "util/utility/math/Point3D.h"

namespace machine {

class AdditiveLimitsDefinition : public MachineFeatureDefinitionImpl<AdditiveLimitsDefinition, MachineFeatureDefinition> {
public:
  /// Every limit 0 but the accelerations, 3000 in XY and 200 in Z; both
  /// positions at the origin.
  AdditiveLimitsDefinition();
  /// Reads a "limits" body; every key is optional. Throws std::runtime_error
  /// on a value of the wrong kind, "Expected a 3D vector." for a position
  /// that isn't three numbers.
  AdditiveLimitsDefinition(std::string const& featureId, Json::Value const& data);
  AdditiveLimitsDefinition(CopyTag, AdditiveLimitsDefinition const& other);

  static std::string featureTypeIdStatic();

  /// The keys whose fields differ from the defaults; JSON null when none does.
  Json::Value getPersistData() const override;

  double bedTempMax() const noexcept { return m_bedTempMax; }
  void setBedTempMax(double value) noexcept { m_bedTempMax = value; }
  double speedXYMax() const noexcept { return m_speedXYMax; }
  void setSpeedXYMax(double value) noexcept { m_speedXYMax = value; }
  double speedZMax() const noexcept { return m_speedZMax; }
  void setSpeedZMax(double value) noexcept { m_speedZMax = value; }
  double accelerationXYMax() const noexcept { return m_accelerationXYMax; }
  void setAccelerationXYMax(double value) noexcept { m_accelerationXYMax = value; }
  double accelerationZMax() const noexcept { return m_accelerationZMax; }
  void setAccelerationZMax(double value) noexcept { m_accelerationZMax = value; }
  Orvo::Point3D const& homePosition() const noexcept { return m_homePosition; }
  void setHomePosition(Orvo::Point3D const& value) noexcept { m_homePosition = value; }
  Orvo::Point3D const& parkPosition() const noexcept { return m_parkPosition; }
  void setParkPosition(Orvo::Point3D const& value) noexcept { m_parkPosition = value; }

private:
  double m_bedTempMax = 0.0;
  double m_speedXYMax = 0.0;
  double m_speedZMax = 0.0;
  double m_accelerationXYMax = 3000.0;
  double m_accelerationZMax = 200.0;
  Orvo::Point3D m_homePosition{0.0, 0.0, 0.0};
  Orvo::Point3D m_parkPosition{0.0, 0.0, 0.0};
};

}  // namespace machine
