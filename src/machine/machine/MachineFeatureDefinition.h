#pragma once
// The base of every feature of a machine definition: the kinematics, the
// controller settings, the post settings and so on. A feature belongs to a
// type named by a string and has an id within that type.

#include <json/value.h>

#include <memory>
#include <string>

namespace machine {

class MachineFeatureDefinition {
public:
  /// The id a feature gets when none is given.
  static std::string const defaultId;

  MachineFeatureDefinition();
  explicit MachineFeatureDefinition(std::string const& featureId);
  MachineFeatureDefinition(MachineFeatureDefinition const& other);
  MachineFeatureDefinition& operator=(MachineFeatureDefinition const& other);

  // Virtual operations, in slot order.
  virtual std::string featureTypeId() const = 0;
  virtual Json::Value getPersistData() const = 0;
  virtual ~MachineFeatureDefinition();

  std::string const& featureId() const noexcept { return m_featureId; }
  void setFeatureId(std::string const& featureId) { m_featureId = featureId; }

  /// A deep copy of the feature, whatever its class.
  std::unique_ptr<MachineFeatureDefinition> clone() const { return doClone(); }

  /// Compares the persisted forms only, numbers within `tolerance`: two
  /// features are equal when their JSON is, whatever their classes.
  bool equals(MachineFeatureDefinition const& other, double tolerance) const;

private:
  virtual std::unique_ptr<MachineFeatureDefinition> doClone() const = 0;

  std::string m_featureId;
};

}  // namespace machine
