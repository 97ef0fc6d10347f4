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

bool InteractSettingsDefinition::SolidPairKey::operator==(SolidPairKey const& other) const noexcept {
  return firstType == other.firstType && secondType == other.secondType && firstId == other.firstId &&
         secondId == other.secondId;
}

std::size_t InteractSettingsDefinition::SolidPairKeyHash::operator()(SolidPairKey const& key) const noexcept {
  std::hash<std::string> const text;
  std::size_t h = text(key.firstId);
  h = h * 31 + static_cast<std::size_t>(key.firstType);
  h ^= text(key.secondId) + 0x9e3779b97f4a7c15ull + (h << 6) + (h >> 2);
  return h * 31 + static_cast<std::size_t>(key.secondType);
}

InteractSettingsDefinition::SolidPairKey InteractSettingsDefinition::keyOf(InteractSolid const& a,
                                                                           InteractSolid const& b) {
  auto const before = [](InteractSolid const& x, InteractSolid const& y) {
    if (x.type() != y.type()) return x.type() < y.type();
    return x.partDefinitionID() < y.partDefinitionID();
  };
  InteractSolid const& first = before(b, a) ? b : a;
  InteractSolid const& second = before(b, a) ? a : b;
  return SolidPairKey{first.type(), first.partDefinitionID().id(), second.type(), second.partDefinitionID().id()};
}

void InteractSettingsDefinition::add(InteractPair const& pair) {
  auto const inserted = m_index.emplace(keyOf(pair.interactand(), pair.interactor()), m_pairs.size());
  if (inserted.second)
    m_pairs.push_back(pair);
  else
    m_pairs[inserted.first->second].setInteractSetting(pair.interactSetting());
}

void InteractSettingsDefinition::add(std::vector<InteractPair> const& pairs) {
  for (InteractPair const& pair : pairs) add(pair);
}

InteractPair* InteractSettingsDefinition::find(InteractSolid const& a, InteractSolid const& b) {
  auto const it = m_index.find(keyOf(a, b));
  return it == m_index.end() ? nullptr : &m_pairs[it->second];
}

void InteractSettingsDefinition::clear() {
  m_pairs.clear();
  m_index.clear();
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
  std::vector<InteractSolid> const solidsA = createSolids(partA);
  std::vector<InteractSolid> const solidsB = createSolids(partB);
  for (InteractSolid const& a : solidsA)
    for (InteractSolid const& b : solidsB) add(InteractPair(a, b, setting));
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
}

}  // namespace machine
