#include "machine/machine/InteractSettingsDefinition.h"

#include <algorithm>
#include <functional>
#include <stdexcept>
#include <utility>

#include "machine/machine/KinematicsDefinition.h"
#include "machine/machine/PartDefinition.h"
#include "util/utility/Basic.h"
#include "util/utility/JsonUtils.h"

namespace {
constexpr char const* orvoAssertSourcePath = "machine\\machine\\InteractSettingsDefinition";

// jsoncpp answers a member lookup on an array or a scalar with its own logic
// error; a value that isn't an object is looked into only through this.
Json::Value const* member(Json::Value const& value, char const* key) {
  if (!value.isObject()) return nullptr;
  return value.find(key, key + std::char_traits<char>::length(key));
}

Json::Value const& memberOrNull(Json::Value const& value, char const* key) {
  static Json::Value const null;
  Json::Value const* found = member(value, key);
  return found ? *found : null;
}

Json::Value solidToJson(machine::InteractSolid const& solid) {
  Json::Value json(Json::objectValue);
  json["id"] = solid.partDefinitionID().id();
  json["type"] = machine::interactSolidTypeWord(solid.type());
  return json;
}

}  // namespace

namespace machine {

InteractSettingsDefinition::InteractSettingsDefinition() = default;

InteractSettingsDefinition::InteractSettingsDefinition(std::string const& featureId, Json::Value const& data)
    : MachineFeatureDefinitionImpl(featureId) {
  // Only an array holds pairs. A missing or null "pairs" means none, and so,
  // leniently, does any other kind of value: nothing but a bad pair fails.
  Json::Value const& pairs = memberOrNull(data, "pairs");
  if (!pairs.isArray()) return;
  for (Json::Value const& pairJson : pairs) {
    InteractSetting setting;
    Json::Value const& settingJson = memberOrNull(pairJson, "setting");
    if (settingJson.isArray())
      for (Json::Value const& word : settingJson) {
        // Elements that are neither word, strings or not, are ignored.
        if (word == Json::Value("cut_stock")) setting.setCutStock(true);
        if (word == Json::Value("check_collisions")) setting.setCheckCollisions(true);
      }
    std::vector<InteractSolid> solids;
    Json::Value const& solidsJson = memberOrNull(pairJson, "solids");
    if (solidsJson.isArray())
      for (Json::Value const& solidJson : solidsJson) {
        InteractSolidType const type =
            interactSolidTypeFromWord(Orvo::JsonUtils::parseStr(memberOrNull(solidJson, "type")));
        Orvo::MachinePartId const id(Orvo::JsonUtils::parseStr(memberOrNull(solidJson, "id")));
        solids.emplace_back(type, id);
      }
    if (solids.size() != 2) throw std::runtime_error("Must have exactly two solids in an InteractPair.");
    add(InteractPair(solids[0], solids[1], setting));
  }
}

InteractSettingsDefinition::InteractSettingsDefinition(CopyTag, InteractSettingsDefinition const& other)
    : InteractSettingsDefinition(other) {}

InteractSettingsDefinition::InteractSettingsDefinition(InteractSettingsDefinition const& other) = default;
InteractSettingsDefinition& InteractSettingsDefinition::operator=(InteractSettingsDefinition const& other) = default;
InteractSettingsDefinition::~InteractSettingsDefinition() = default;

std::string InteractSettingsDefinition::featureTypeIdStatic() { return "interactions"; }

Json::Value InteractSettingsDefinition::getPersistData() const {
  Json::Value data(Json::objectValue);
  Json::Value pairs;  // null when there are no pairs
  for (InteractPair const& pair : m_pairs) {
    Json::Value pairJson(Json::objectValue);
    Json::Value& solids = pairJson["solids"] = Json::Value(Json::arrayValue);
    solids.append(solidToJson(pair.interactand()));
    solids.append(solidToJson(pair.interactor()));
    Json::Value setting;  // null when neither flag is set
    if (pair.interactSetting().cutStock()) setting.append("cut_stock");
    if (pair.interactSetting().checkCollisions()) setting.append("check_collisions");
    pairJson["setting"] = setting;
    pairs.append(pairJson);
  }
  data["pairs"] = pairs;
  return data;
}

std::uint32_t InteractSettingsDefinition::partIndex(Orvo::MachinePartId const& partId) {
  return m_partIndex.emplace(partId.id(), static_cast<std::uint32_t>(m_partIndex.size())).first->second;
}

InteractSettingsDefinition::PairKey InteractSettingsDefinition::keyOf(InteractSolidType typeA, std::uint32_t partA,
                                                                     InteractSolidType typeB, std::uint32_t partB) {
  // Four bits hold the type; a machine has far fewer than 2^28 parts.
  PairKey const a = (PairKey{partA} << 4) | static_cast<PairKey>(typeA);
  PairKey const b = (PairKey{partB} << 4) | static_cast<PairKey>(typeB);
  return a < b ? (a << 32) | b : (b << 32) | a;
}

void InteractSettingsDefinition::add(PairKey key, InteractSolid const& a, InteractSolid const& b,
                                     InteractSetting const& setting) {
  auto const inserted = m_index.emplace(key, m_pairs.size());
  if (inserted.second)
    m_pairs.emplace_back(a, b, setting);
  else
    m_pairs[inserted.first->second].setInteractSetting(setting);
}

void InteractSettingsDefinition::add(InteractPair const& pair) {
  InteractSolid const& a = pair.interactand();
  InteractSolid const& b = pair.interactor();
  add(keyOf(a.type(), partIndex(a.partDefinitionID()), b.type(), partIndex(b.partDefinitionID())), a, b,
      pair.interactSetting());
}

void InteractSettingsDefinition::add(std::vector<InteractPair> const& pairs) {
  for (InteractPair const& pair : pairs) add(pair);
}

InteractPair* InteractSettingsDefinition::find(InteractSolid const& a, InteractSolid const& b) {
  auto const partA = m_partIndex.find(a.partDefinitionID().id());
  auto const partB = m_partIndex.find(b.partDefinitionID().id());
  if (partA == m_partIndex.end() || partB == m_partIndex.end()) return nullptr;
  auto const it = m_index.find(keyOf(a.type(), partA->second, b.type(), partB->second));
  return it == m_index.end() ? nullptr : &m_pairs[it->second];
}

void InteractSettingsDefinition::clear() {
  m_pairs.clear();
  m_index.clear();
  m_partIndex.clear();
}

InteractSettingsDefinition::PartSolids const& InteractSettingsDefinition::solidsOf(PartDefinition const* part) {
  auto found = m_generationSolids.find(part);
  if (found == m_generationSolids.end())
    found = m_generationSolids.emplace(part, PartSolids{createSolids(part), part ? partIndex(part->id()) : 0u}).first;
  return found->second;
}

std::vector<InteractPair const*> InteractSettingsDefinition::findBySolid(InteractSolid const& solid) const {
  std::vector<InteractPair const*> found;
  for (InteractPair const& pair : m_pairs)
    if (pair.interactand() == solid || pair.interactor() == solid) found.push_back(&pair);
  return found;
}

std::vector<InteractPair*> InteractSettingsDefinition::findBySolid(InteractSolid const& solid) {
  std::vector<InteractPair*> found;
  for (InteractPair& pair : m_pairs)
    if (pair.interactand() == solid || pair.interactor() == solid) found.push_back(&pair);
  return found;
}

std::vector<InteractPair const*> InteractSettingsDefinition::findById(Orvo::MachinePartId const& partId) const {
  std::vector<InteractPair const*> found;
  for (InteractPair const& pair : m_pairs)
    if (pair.interactand().partDefinitionID() == partId || pair.interactor().partDefinitionID() == partId)
      found.push_back(&pair);
  return found;
}

std::vector<InteractPair*> InteractSettingsDefinition::findById(Orvo::MachinePartId const& partId) {
  std::vector<InteractPair*> found;
  for (InteractPair& pair : m_pairs)
    if (pair.interactand().partDefinitionID() == partId || pair.interactor().partDefinitionID() == partId)
      found.push_back(&pair);
  return found;
}

InteractPair InteractSettingsDefinition::pair(std::size_t index) const {
  EXPECTS(index < m_pairs.size());
  return m_pairs.at(index);
}

std::vector<InteractSolid> InteractSettingsDefinition::createSolids(PartDefinition const* part) {
  if (!part) return {};
  Orvo::MachinePartId const& id = part->id();
  if (part->type() == PartType::TABLE)
    return {InteractSolid(InteractSolidType::MACHINE_PART, id), InteractSolid(InteractSolidType::STOCK, id),
            InteractSolid(InteractSolidType::FIXTURE, id)};
  if (part->type() == PartType::HEAD)
    return {InteractSolid(InteractSolidType::MACHINE_PART, id), InteractSolid(InteractSolidType::TOOL, id)};
  if (part->isTurretPart())
    return {InteractSolid(InteractSolidType::MACHINE_PART, id),
            InteractSolid(InteractSolidType::TURRET_ACTIVE_TOOL, id),
            InteractSolid(InteractSolidType::TURRET_INACTIVE_TOOL, id)};
  return {InteractSolid(InteractSolidType::MACHINE_PART, id)};
}

void InteractSettingsDefinition::buildPartAgainstPart(PartDefinition const* partA, PartDefinition const* partB,
                                                      InteractSetting setting) {
  PartSolids const& solidsA = solidsOf(partA);
  PartSolids const& solidsB = solidsOf(partB);
  for (InteractSolid const& a : solidsA.solids)
    for (InteractSolid const& b : solidsB.solids)
      add(keyOf(a.type(), solidsA.partIndex, b.type(), solidsB.partIndex), a, b, setting);
}

void InteractSettingsDefinition::buildPartAgainstChain(PartDefinition const* part, PartDefinition const* partChain,
                                                       InteractSetting setting) {
  EXPECTS(part && partChain);
  if (!part || !partChain) return;
  if (part != partChain) buildPartAgainstPart(part, partChain, setting);
  // A turret ends a chain: the tools below it are its own business.
  if (!partChain->isTurretPart())
    for (PartDefinition const& child : partChain->children()) buildPartAgainstChain(part, &child, setting);
}

void InteractSettingsDefinition::buildChainAgainstChain(PartDefinition const* part, PartDefinition const* partChain,
                                                        InteractSetting setting) {
  EXPECTS(part && partChain);
  if (!part || !partChain) return;
  if (part != partChain) buildPartAgainstPart(part, partChain, setting);
  if (!partChain->isTurretPart())
    for (PartDefinition const& child : partChain->children()) buildPartAgainstChain(part, &child, setting);
  if (!part->isTurretPart())
    for (PartDefinition const& child : part->children()) buildChainAgainstChain(&child, partChain, setting);
}

void InteractSettingsDefinition::buildTableItemsAgainstTableAxes(PartDefinition const* table,
                                                                 PartDefinition const* axes, InteractSetting setting) {
  if (!axes) return;
  // The axis a table sits on directly is meant to touch it.
  if (table && table->parent() == axes) return;
  if (table && table != axes) buildPartAgainstPart(table, axes, setting);
  for (PartDefinition const& child : axes->children()) buildTableItemsAgainstTableAxes(table, &child, setting);
}

void InteractSettingsDefinition::generateDefaultPairs(KinematicsDefinition const& kinematics) {
  clear();
  generatePairs(kinematics);
}

void InteractSettingsDefinition::generatePairs(KinematicsDefinition const& kinematics) {
  InteractSetting check;
  check.setCheckCollisions(true);
  InteractSetting const none;

  std::vector<InteractPair> const saved = std::move(m_pairs);
  clear();

  std::vector<PartDefinition const*> tables, tableChains, heads, headChains, statics;
  for (PartDefinition const& base : kinematics.baseParts()) {
    if (PartDefinition const* table = base.findByType(PartType::TABLE)) {
      tables.push_back(table);
      tableChains.push_back(&base);
    } else if (PartDefinition const* head = base.findByType(PartType::HEAD)) {
      // Heads on a turret are reached through the turret.
      PartDefinition const* parent = head->parent();
      PartDefinition const* entry = parent && parent->isTurretPart() ? parent : head;
      if (std::find(heads.begin(), heads.end(), entry) == heads.end()) heads.push_back(entry);
      headChains.push_back(&base);
    } else if (base.type() == PartType::STATIC) {
      statics.push_back(&base);
    }
  }

  for (PartDefinition const* hc : headChains)
    for (PartDefinition const* tc : tableChains) buildChainAgainstChain(hc, tc, check);
  for (PartDefinition const* a : tableChains)
    for (PartDefinition const* b : tableChains) buildChainAgainstChain(a, b, a == b ? none : check);
  for (PartDefinition const* a : headChains)
    for (PartDefinition const* b : headChains) buildChainAgainstChain(a, b, a == b ? none : check);

  for (PartDefinition const* s : statics) {
    // The axes of a head chain ignore the statics, all but the last, which
    // carries the head; a chain of one part ignores them altogether.
    for (PartDefinition const* hc : headChains) {
      std::vector<PartDefinition const*> moving;
      std::function<void(PartDefinition const*)> gather = [&](PartDefinition const* p) {
        if (p->type() != PartType::TABLE && p->type() != PartType::HEAD) moving.push_back(p);
        for (PartDefinition const& child : p->children()) gather(&child);
      };
      gather(hc);
      for (std::size_t i = 0; i < moving.size(); ++i)
        buildPartAgainstChain(moving[i], s, i + 1 == moving.size() && i != 0 ? check : none);
    }
    for (PartDefinition const* tc : tableChains) buildChainAgainstChain(tc, s, none);
    for (PartDefinition const* t : tables) buildChainAgainstChain(t, s, check);
    for (PartDefinition const* h : heads) buildChainAgainstChain(h, s, check);
  }

  for (PartDefinition const* t : tables)
    for (PartDefinition const* tc : tableChains) buildTableItemsAgainstTableAxes(t, tc, check);

  for (InteractPair const& pair : saved)
    if (InteractPair* kept = find(pair.interactand(), pair.interactor()))
      kept->setInteractSetting(pair.interactSetting());
  // The tree may change or go once generation is over.
  m_generationSolids.clear();
}

}  // namespace machine
