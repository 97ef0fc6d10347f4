#pragma once
// Reads a machine file into a MachineDefinition. The built-in feature types
// are read by their own classes; a feature of any other type is kept unread.

#include <json/value.h>

#include <functional>
#include <iosfwd>
#include <map>
#include <memory>
#include <string>

#include "machine/machine/MachineDefinitionReaderResult.h"
#include "machine/machine/MachineFeatureDefinition.h"
#include "util/utility/InputStream.h"

namespace machine {

class MachineDefinitionReader {
public:
  using FeatureFactory =
      std::function<std::unique_ptr<MachineFeatureDefinition>(std::string const& featureId, Json::Value const& data)>;

  MachineDefinitionReader();
  MachineDefinitionReader(MachineDefinitionReader const& other);
  MachineDefinitionReader& operator=(MachineDefinitionReader const& other);
  ~MachineDefinitionReader();

  /// Never throws: every failure is a failed result.
  MachineDefinitionReaderResult read(std::istream& in) const;
  /// As read(std::istream&), from the whole of `in`.
  MachineDefinitionReaderResult read(Orvo::InputStream& in) const;

private:
  template <typename T>
  void addFeatureType();

  MachineDefinitionReaderResult parseJson(Json::Value const& root) const;

  std::map<std::string, FeatureFactory> m_featureFactories;
};

}  // namespace machine
