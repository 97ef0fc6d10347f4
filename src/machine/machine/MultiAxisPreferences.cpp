#include "machine/machine/MultiAxisPreferences.h"

#include <map>
#include <stdexcept>

#include "machine/machine/PostMachineConfig/Vector.h"
#include "util/utility/JsonUtils.h"

namespace machine {

namespace {

using Orvo::JsonUtils;
using WordMap = std::map<std::string, int>;

// The word tables of the file format. Function-local statics, so each is
// built once, on first use, in a thread-safe way.

WordMap const& singularityMethods() {
  static WordMap const map{{"off", 0}, {"linear", 1}, {"rotary", 2}};
  return map;
}

WordMap const& feedModes() {
  static WordMap const map{{"inverse time", 0}, {"DPM", 1}, {"FPM", 2}};
  return map;
}

WordMap const& inverseTimeUnits() {
  static WordMap const map{{"seconds", 0}, {"minutes", 1}};
  return map;
}

WordMap const& dpmTypes() {
  static WordMap const map{{"standard", 0}, {"combination", 1}};
  return map;
}

WordMap const& rewindPreferences() {
  static WordMap const map{{"RewindAtLinear", 1}, {"RewindAtRapid", 2}};
  return map;
}

WordMap const& retractPreferences() {
  static WordMap const map{{"RetractAtApex", 1}, {"StayAtApex", 2}};
  return map;
}

WordMap const& rewindStrategies() {
  static WordMap const map{{"MinimizeRewinds", 0}, {"AxisPreference", 1}};
  return map;
}

int readWord(Json::Value const& value, WordMap const& map) {
  std::string const word = JsonUtils::parseStr(value);
  auto const it = map.find(word);
  // The wording is the one users of these files have always seen. Words are
  // matched exactly: "dpm" is not "DPM".
  if (it == map.end()) throw std::runtime_error(word + " is no supported");
  return it->second;
}

// A value without a word is written as null rather than refused, so that a
// record a script filled with any integer can still be saved.
Json::Value writeWord(int value, WordMap const& map) {
  for (auto const& entry : map)
    if (entry.second == value) return Json::Value(entry.first);
  return Json::Value();
}

// A body or an option of another kind than an object is refused in the
// words of the typed reads; null reads as an empty object.
Json::Value const* member(Json::Value const& object, char const* key) {
  return object.find(key, key + std::char_traits<char>::length(key));
}

void expectObject(Json::Value const& value) {
  if (!value.isNull() && !value.isObject()) throw std::runtime_error("Expected an object.");
}

bool readBool(Json::Value const& value) { return JsonUtils::parseBool(value) != 0; }

MultiAxisPreferences::Singularity readSingularity(Json::Value const& data) {
  expectObject(data);
  // The defaults of the file format, which differ from the record's own in
  // the last digit of the cone.
  MultiAxisPreferences::Singularity singularity;
  singularity.setAdjust(true);
  singularity.setCone(MultiAxisPreferences::READ_DEFAULT_CONE);
  singularity.setAngle(0.17453292519943295);
  singularity.setTolerance(0.04);
  singularity.setMethod(2);
  singularity.setLinearizationTolerance(0.04);
  if (data.isNull()) return singularity;
  if (auto const* v = member(data, "adjust")) singularity.setAdjust(readBool(*v));
  if (auto const* v = member(data, "cone")) singularity.setCone(JsonUtils::parseDbl(*v));
  if (auto const* v = member(data, "angle")) singularity.setAngle(JsonUtils::parseDbl(*v));
  if (auto const* v = member(data, "tolerance")) singularity.setTolerance(JsonUtils::parseDbl(*v));
  if (auto const* v = member(data, "method")) singularity.setMethod(readWord(*v, singularityMethods()));
  if (auto const* v = member(data, "linearization_tolerance"))
    singularity.setLinearizationTolerance(JsonUtils::parseDbl(*v));
  return singularity;
}

MultiAxisPreferences::Feedrate readFeedrate(Json::Value const& data) {
  using Feedrate = MultiAxisPreferences::Feedrate;
  expectObject(data);
  Feedrate feedrate;
  if (data.isNull()) return feedrate;
  if (auto const* v = member(data, "method"))
    feedrate.setFeedMode(static_cast<Feedrate::FeedMode>(readWord(*v, feedModes())));
  if (auto const* v = member(data, "max_feedrate")) feedrate.setMaximumFeedrate(JsonUtils::parseDbl(*v));
  if (auto const* v = member(data, "unit"))
    feedrate.setInverseTimeUnits(static_cast<Feedrate::InverseTimeUnits>(readWord(*v, inverseTimeUnits())));
  if (auto const* v = member(data, "type"))
    feedrate.setDPMType(static_cast<Feedrate::DPMType>(readWord(*v, dpmTypes())));
  if (auto const* v = member(data, "output_tolerance")) feedrate.setDPMOutputTolerance(JsonUtils::parseDbl(*v));
  if (auto const* v = member(data, "BPW_ratio")) feedrate.setDPMPulseWeight(JsonUtils::parseDbl(*v));
  return feedrate;
}

MultiAxisPreferences::RetractAndReconfigure readRetractAndReconfigure(Json::Value const& data) {
  expectObject(data);
  MultiAxisPreferences::RetractAndReconfigure retract;
  if (data.isNull()) return retract;
  if (auto const* v = member(data, "enabled")) retract.setReconfigure(readBool(*v));
  if (auto const* v = member(data, "rewind_preference")) retract.setRewindPreference(readWord(*v, rewindPreferences()));
  if (auto const* v = member(data, "retract_preference"))
    retract.setRetractPreference(readWord(*v, retractPreferences()));
  if (auto const* v = member(data, "rewind_strategy")) retract.setRewindStrategy(readWord(*v, rewindStrategies()));
  if (auto const* v = member(data, "stock_expansion")) {
    if (!JsonUtils::isThreeDoubles(*v)) throw std::runtime_error("Expected a 3D vector.");
    retract.setStockExpansion(com::vantora::Vector((*v)[0].asDouble(), (*v)[1].asDouble(), (*v)[2].asDouble()));
  }
  if (auto const* v = member(data, "safe_retract_distance")) retract.setSafeRetractDistance(JsonUtils::parseDbl(*v));
  if (auto const* v = member(data, "safe_retract_feedrate")) retract.setSafeRetractFeedrate(JsonUtils::parseDbl(*v));
  if (auto const* v = member(data, "safe_plunge_feedrate")) retract.setSafePlungeFeedrate(JsonUtils::parseDbl(*v));
  return retract;
}

Json::Value writeSingularity(MultiAxisPreferences::Singularity const& singularity) {
  Json::Value data(Json::objectValue);
  data["adjust"] = singularity.getAdjust();
  data["cone"] = singularity.getCone();
  data["angle"] = singularity.getAngle();
  data["tolerance"] = singularity.getTolerance();
  data["method"] = writeWord(singularity.getMethod(), singularityMethods());
  // Only a method that linearises has a tolerance for it.
  if (singularity.getMethod() != 0) data["linearization_tolerance"] = singularity.getLinearizationTolerance();
  return data;
}

Json::Value writeFeedrate(MultiAxisPreferences::Feedrate const& feedrate) {
  Json::Value data(Json::objectValue);
  data["method"] = writeWord(feedrate.getFeedMode(), feedModes());
  data["max_feedrate"] = feedrate.getMaximumFeedrate();
  // Inverse time has its unit; every other mode has the DPM settings.
  if (feedrate.getFeedMode() == 0) {
    data["unit"] = writeWord(feedrate.getInverseTimeUnits(), inverseTimeUnits());
  } else {
    data["type"] = writeWord(feedrate.getDPMType(), dpmTypes());
    data["output_tolerance"] = feedrate.getDPMOutputTolerance();
    data["BPW_ratio"] = feedrate.getDPMPulseWeight();
  }
  return data;
}

Json::Value writeRetractAndReconfigure(MultiAxisPreferences::RetractAndReconfigure const& retract) {
  Json::Value data(Json::objectValue);
  data["enabled"] = retract.getReconfigure();
  data["rewind_preference"] = writeWord(retract.getRewindPreference(), rewindPreferences());
  data["retract_preference"] = writeWord(retract.getRetractPreference(), retractPreferences());
  data["rewind_strategy"] = writeWord(retract.getRewindStrategy(), rewindStrategies());
  com::vantora::Vector const& expansion = retract.getStockExpansion();
  Json::Value vector(Json::arrayValue);
  vector.append(expansion.x);
  vector.append(expansion.y);
  vector.append(expansion.z);
  data["stock_expansion"] = vector;
  data["safe_retract_distance"] = retract.getSafeRetractDistance();
  data["safe_retract_feedrate"] = retract.getSafeRetractFeedrate();
  data["safe_plunge_feedrate"] = retract.getSafePlungeFeedrate();
  return data;
}

}  // namespace

MultiAxisPreferences::MultiAxisPreferences() = default;

MultiAxisPreferences::MultiAxisPreferences(std::string const& featureId, Json::Value const& data)
    : MachineFeatureDefinitionImpl(featureId) {
  expectObject(data);
  if (data.isNull()) return;
  if (auto const* v = member(data, "virtual_tool_tip")) m_useVirtualToolTip = readBool(*v);
  if (auto const* v = member(data, "use_tilted_workplane")) m_useTiltedWorkplane = readBool(*v);
  if (auto const* v = member(data, "singularity")) m_singularity = readSingularity(*v);
  if (auto const* v = member(data, "feedrate")) m_feedrateOptions = readFeedrate(*v);
  if (auto const* v = member(data, "retract_and_reconfigure")) m_retractAndReconfigure = readRetractAndReconfigure(*v);
}

MultiAxisPreferences::MultiAxisPreferences(CopyTag, MultiAxisPreferences const& other) : MultiAxisPreferences(other) {}

std::string MultiAxisPreferences::featureTypeIdStatic() { return "multiaxis"; }

Json::Value MultiAxisPreferences::getPersistData() const {
  Json::Value data(Json::objectValue);
  data["virtual_tool_tip"] = m_useVirtualToolTip;
  data["use_tilted_workplane"] = m_useTiltedWorkplane;
  if (m_singularity) data["singularity"] = writeSingularity(*m_singularity);
  if (m_feedrateOptions) data["feedrate"] = writeFeedrate(*m_feedrateOptions);
  if (m_retractAndReconfigure) data["retract_and_reconfigure"] = writeRetractAndReconfigure(*m_retractAndReconfigure);
  return data;
}

}  // namespace machine
