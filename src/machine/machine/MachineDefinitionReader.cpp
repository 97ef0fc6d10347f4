#include "machine/machine/MachineDefinitionReader.h"

#include <exception>
#include <istream>
#include <utility>
#include <vector>

#include "machine/machine/AdditiveExtruderDefinition.h"
#include "machine/machine/AdditiveLimitsDefinition.h"
#include "machine/machine/AdditivePlatformDefinition.h"
#include "machine/machine/ControllerConfiguration.h"
#include "machine/machine/InteractSettingsDefinition.h"
#include "machine/machine/KinematicsDefinition.h"
#include "machine/machine/MachiningTimeInformation.h"
#include "machine/machine/MultiAxisPreferences.h"
#include "machine/machine/PostProcessingProperties.h"
#include "machine/machine/PostSettings.h"
#include "machine/machine/ToolingCapabilities.h"
#include "machine/machine/UnknownMachineFeatureDefinition.h"
#include "util/utility/IOTransfer.h"
#include "util/utility/JsonUtils.h"
#include "util/utility/LocaleRegistry.h"
#include "util/utility/MemoryOutputStream.h"

namespace machine {

namespace {

std::string syntaxErrorHeading() {
  static wchar_t const text[] = L"The file reader encountered a syntax error:\n\n";
  return Orvo::LocaleRegistry::get().registerMessage(text, text).utf8();
}

}  // namespace

template <typename T>
void MachineDefinitionReader::addFeatureType() {
  m_featureFactories.insert({T::featureTypeIdStatic(), [](std::string const& featureId, Json::Value const& data) {
                               return std::unique_ptr<MachineFeatureDefinition>(std::make_unique<T>(featureId, data));
                             }});
}

MachineDefinitionReader::MachineDefinitionReader() {
  // The built-in types, every type the library knows, in their order of
  // registration. Any other type is read as an unknown feature, which keeps
  // it and writes it back unchanged.
  addFeatureType<AdditiveExtruderDefinition>();
  addFeatureType<AdditiveLimitsDefinition>();
  addFeatureType<AdditivePlatformDefinition>();
  addFeatureType<KinematicsDefinition>();
  addFeatureType<InteractSettingsDefinition>();
  addFeatureType<ControllerConfiguration>();
  addFeatureType<MachiningTimeInformation>();
  addFeatureType<MultiAxisPreferences>();
  addFeatureType<PostProcessingProperties>();
  addFeatureType<PostSettings>();
  addFeatureType<ToolingCapabilities>();
}

MachineDefinitionReader::MachineDefinitionReader(MachineDefinitionReader const& other) = default;
MachineDefinitionReader& MachineDefinitionReader::operator=(MachineDefinitionReader const& other) = default;
MachineDefinitionReader::~MachineDefinitionReader() = default;

MachineDefinitionReaderResult MachineDefinitionReader::read(std::istream& in) const {
  try {
    Json::Value root;
    std::string errors;
    if (!Orvo::JsonUtils::parse(in, root, errors)) return MachineDefinitionReaderResult(syntaxErrorHeading() + errors);
    return parseJson(root);
  } catch (std::exception const& e) {
    return MachineDefinitionReaderResult(std::string(e.what()));
  }
}

MachineDefinitionReaderResult MachineDefinitionReader::read(Orvo::InputStream& in) const {
  try {
    Orvo::MemoryOutputStream buffer;
    Orvo::IOTransfer::transfer(in, buffer);
    Json::Value root;
    std::string errors;
    if (!Orvo::JsonUtils::parse(buffer.data(), buffer.data() + buffer.size(), root, errors))
      return MachineDefinitionReaderResult(syntaxErrorHeading() + errors);
    return parseJson(root);
  } catch (std::exception const& e) {
    return MachineDefinitionReaderResult(std::string(e.what()));
  }
}

MachineDefinitionReaderResult MachineDefinitionReader::parseJson(Json::Value const& root) const {
  try {
    MachineGeneralDefinition general;
    MachineDefinition::FeatureVector features;
    MachineDefinition::DefaultMap defaults;
    if (root.isObject()) {
      // Members come sorted by key, so a feature sorting before "general"
      // is read before the revision check.
      for (auto member = root.begin(); member != root.end(); ++member) {
        std::string const key = member.name();
        if (key == "general") {
          general.loadPersistData(*member);
        } else if (key == "defaults") {
          if (!member->isObject()) continue;
          for (auto entry = member->begin(); entry != member->end(); ++entry)
            if (entry->isString()) defaults[entry.name()] = entry->asString();
        } else {
          if (!member->isObject()) continue;
          auto const factory = m_featureFactories.find(key);
          for (auto body = member->begin(); body != member->end(); ++body) {
            std::string const featureId = body.name();
            // Appended as they come, not through putFeature, so that the order
            // in memory follows the file.
            if (factory != m_featureFactories.end())
              features.push_back(factory->second(featureId, *body));
            else
              features.push_back(std::make_unique<UnknownMachineFeatureDefinition>(key, featureId, *body));
          }
        }
      }
    }
    return MachineDefinitionReaderResult(
        std::make_unique<MachineDefinition>(general, std::move(features), std::move(defaults)));
  } catch (std::exception const& e) {
    return MachineDefinitionReaderResult(std::string(e.what()));
  }
}

}  // namespace machine
