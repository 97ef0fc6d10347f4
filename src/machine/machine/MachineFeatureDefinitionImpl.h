#pragma once
// The class template between MachineFeatureDefinition and each concrete
// feature class T, which names its type and knows how to copy it:
//   class MyFeature : public MachineFeatureDefinitionImpl<MyFeature, MachineFeatureDefinition>
// T provides a static featureTypeIdStatic() and a constructor (CopyTag, T const&).
//
// A template, so it lives in its header alone.

#include <memory>
#include <string>

#include "machine/machine/CopyTag.h"
#include "machine/machine/MachineFeatureDefinition.h"

namespace machine {

template <typename T, typename Base = MachineFeatureDefinition>
class MachineFeatureDefinitionImpl : public Base {
public:
  MachineFeatureDefinitionImpl() = default;
  explicit MachineFeatureDefinitionImpl(std::string const& featureId) : Base(featureId) {}
  MachineFeatureDefinitionImpl(MachineFeatureDefinitionImpl const& other) = default;
  MachineFeatureDefinitionImpl& operator=(MachineFeatureDefinitionImpl const& other) = default;

  std::string featureTypeId() const override { return T::featureTypeIdStatic(); }

  /// A deep copy with its own type; hides the base's clone() on purpose.
  std::unique_ptr<T> clone() const { return std::unique_ptr<T>(static_cast<T*>(doClone().release())); }

private:
  std::unique_ptr<MachineFeatureDefinition> doClone() const override {
    return std::make_unique<T>(CopyTag{}, static_cast<T const&>(*this));
  }
};

}  // namespace machine
