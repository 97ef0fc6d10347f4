#include "machine/machine/InteractSettingsDefinition.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <random>
#include <set>
#include <sstream>
#include <stdexcept>

#include "machine/machine/KinematicsDefinition.h"
#include "machine/machine/MachineDefinitionReader.h"
#include "machine/machine/MachineDefinitionWriter.h"
#include "machine/machine/TurretDefinition.h"
#include "support/AssertRecorder.h"
#include "support/RandomTree.h"
#include "support/TestMachines.h"
#include "util/utility/JsonUtils.h"

using machine::InteractPair;
using machine::InteractSetting;
using machine::InteractSettingsDefinition;
using machine::InteractSolid;
using machine::InteractSolidType;
using machine::PartType;
using mtkit_test::PartPtr;
using mtkit_test::linearPart;
using mtkit_test::staticPart;
using mtkit_test::with;

namespace {

using T = InteractSolidType;

InteractSetting const kNone;
InteractSetting const kCheck = InteractSetting().setCheckCollisions(true);

/// One expected pair, written out by hand.
struct Expected {
  char const* andId;
  T andType;
  char const* orId;
  T orType;
  bool check;
};

std::string describe(InteractPair const& p) { return p.debugDescription(); }

void expectPairs(InteractSettingsDefinition const& d, std::vector<Expected> const& expected) {
  ASSERT_EQ(d.numberOfPairs(), expected.size());
  for (std::size_t i = 0; i < expected.size(); ++i) {
    InteractPair const p = d.pair(i);
    Expected const& e = expected[i];
    SCOPED_TRACE(i);
    EXPECT_EQ(p.interactand(), InteractSolid(e.andType, e.andId)) << describe(p);
    EXPECT_EQ(p.interactor(), InteractSolid(e.orType, e.orId)) << describe(p);
    EXPECT_EQ(p.interactSetting(), e.check ? kCheck : kNone) << describe(p);
  }
}

Json::Value parse(std::string const& text) {
  Json::Value root;
  std::string errors;
  std::istringstream in(text);
  EXPECT_TRUE(Orvo::JsonUtils::parse(in, root, errors)) << errors;
  return root;
}

std::string failureOf(std::string const& body) {
  try {
    InteractSettingsDefinition("default", parse(body));
  } catch (std::runtime_error const& e) {
    return e.what();
  }
  return "no exception";
}

PartPtr headPart(char const* id) { return staticPart(id, PartType::HEAD); }
PartPtr tablePart(char const* id) { return staticPart(id, PartType::TABLE); }
PartPtr turretPart(char const* id) {
  auto turret = mtkit_test::rotaryPart(id, "T", {0, 0, 0}, {0, 0, 1});
  turret->setTurretDefinition(machine::TurretDefinition(4));
  return turret;
}

/// base x - head, base table: one head chain, one table chain.
machine::KinematicsDefinition headAndTable() {
  std::vector<PartPtr> base;
  base.push_back(with(linearPart("x", "X", {1, 0, 0}), headPart("head")));
  base.push_back(tablePart("table"));
  return mtkit_test::kinematicsOf(std::move(base));
}

}  // namespace

// --- The feature and its JSON ---

TEST(InteractSettingsDefinition, TypeIdAndDefaultFeatureId) {
  EXPECT_EQ(InteractSettingsDefinition::featureTypeIdStatic(), "interactions");
  InteractSettingsDefinition const d;
  EXPECT_EQ(d.featureTypeId(), "interactions");
  EXPECT_EQ(d.featureId(), "default");
  EXPECT_TRUE(d.isEmpty());
  EXPECT_EQ(d.numberOfPairs(), 0u);
}

TEST(InteractSettingsDefinition, TreeWithNoBasePartsGivesNoPairsAndWritesNull) {
  InteractSettingsDefinition d;
  d.add(InteractPair(InteractSolid(T::STOCK, "a"), InteractSolid(T::TOOL, "b"), kCheck));
  d.generatePairs(mtkit_test::kinematicsOf({}));
  EXPECT_TRUE(d.isEmpty());
  Json::Value const json = d.getPersistData();
  ASSERT_TRUE(json.isObject());
  EXPECT_EQ(json.getMemberNames(), std::vector<std::string>{"pairs"});
  EXPECT_TRUE(json["pairs"].isNull());
}

TEST(InteractSettingsDefinition, WritesSolidsInterractandFirstAndCutStockFirst) {
  InteractSettingsDefinition d;
  d.add(InteractPair(InteractSolid(T::STOCK, "table"), InteractSolid(T::TOOL, "head"),
                     InteractSetting().setCheckCollisions(true).setCutStock(true)));
  d.add(InteractPair(InteractSolid(T::MACHINE_PART, "x"), InteractSolid(T::FIXTURE, "table"), kNone));
  d.add(InteractPair(InteractSolid(T::MODEL, "table"), InteractSolid(T::TOOL_CUTTER, "head"), kCheck));
  d.add(InteractPair(InteractSolid(T::TURRET_ACTIVE_TOOL, "t"), InteractSolid(T::TOOL_NONCUTTER, "h"),
                     InteractSetting().setCutStock(true)));
  Json::Value const expected = parse(R"({"pairs": [
    {"setting": ["cut_stock", "check_collisions"],
     "solids": [{"id": "table", "type": "stock"}, {"id": "head", "type": "tool"}]},
    {"setting": null,
     "solids": [{"id": "x", "type": "machine_part"}, {"id": "table", "type": "fixture"}]},
    {"setting": ["check_collisions"],
     "solids": [{"id": "table", "type": "model"}, {"id": "head", "type": "tool_cutter"}]},
    {"setting": ["cut_stock"],
     "solids": [{"id": "t", "type": "turret_active_tool"}, {"id": "h", "type": "tool_noncutter"}]}]})");
  EXPECT_EQ(d.getPersistData(), expected) << d.getPersistData().toStyledString();
}

TEST(InteractSettingsDefinition, ReadsWhatItWrites) {
  std::string const body = R"({"pairs": [
    {"setting": ["check_collisions", "cut_stock"],
     "solids": [{"id": "table", "type": "stock"}, {"id": "head", "type": "tool"}]},
    {"solids": [{"id": "turret", "type": "turret_inactive_tool"}, {"id": "bed", "type": "machine_part"}]}]})";
  InteractSettingsDefinition const d("second", parse(body));
  EXPECT_EQ(d.featureId(), "second");
  ASSERT_EQ(d.numberOfPairs(), 2u);
  EXPECT_EQ(d.pair(0).interactand(), InteractSolid(T::STOCK, "table"));
  EXPECT_EQ(d.pair(0).interactor(), InteractSolid(T::TOOL, "head"));
  EXPECT_TRUE(d.pair(0).interactSetting().checkCollisions());
  EXPECT_TRUE(d.pair(0).interactSetting().cutStock());
  // A pair without "setting" is ignored.
  EXPECT_EQ(d.pair(1).interactand(), InteractSolid(T::TURRET_INACTIVE_TOOL, "turret"));
  EXPECT_EQ(d.pair(1).interactor(), InteractSolid(T::MACHINE_PART, "bed"));
  EXPECT_TRUE(d.pair(1).interactSetting().ignore());
}

TEST(InteractSettingsDefinition, MissingOrNullPairsMeanNoPairs) {
  EXPECT_TRUE(InteractSettingsDefinition("default", parse("{}")).isEmpty());
  EXPECT_TRUE(InteractSettingsDefinition("default", parse(R"({"pairs": null})")).isEmpty());
  EXPECT_TRUE(InteractSettingsDefinition("default", parse(R"({"pairs": []})")).isEmpty());
  // Not an object at all: nothing to read either.
  EXPECT_TRUE(InteractSettingsDefinition("default", parse("[1, 2]")).isEmpty());
}

TEST(InteractSettingsDefinition, PairObjectWithOneOrThreeSolidsFails) {
  std::string const message = "Must have exactly two solids in an InteractPair.";
  EXPECT_EQ(failureOf(R"({"pairs": [{"solids": [{"id": "a", "type": "tool"}]}]})"), message);
  EXPECT_EQ(failureOf(R"({"pairs": [{"solids": [{"id": "a", "type": "tool"}, {"id": "b", "type": "stock"},
                                               {"id": "c", "type": "fixture"}]}]})"),
            message);
  EXPECT_EQ(failureOf(R"({"pairs": [{"setting": ["check_collisions"]}]})"), message);
  // Through the machine file reader the read fails as a whole, with that text.
  std::istringstream file(
      R"({"interactions": {"default": {"pairs": [{"solids": [{"id": "a", "type": "tool"}]}]}}})");
  auto result = machine::MachineDefinitionReader().read(file);
  ASSERT_TRUE(result.isError());
  EXPECT_EQ(result.getReadErrorMessage(),
            "Error reading Machine Definition data from machine file:\n\n" + message);
}

TEST(InteractSettingsDefinition, UnknownTypeWordFailsIsNoSupported) {
  EXPECT_EQ(failureOf(R"({"pairs": [{"solids": [{"id": "a", "type": "spindle"}, {"id": "b", "type": "tool"}]}]})"),
            "spindle is no supported");
}

TEST(InteractSettingsDefinition, UnknownWordInSettingIsIgnored) {
  InteractSettingsDefinition const d("default", parse(R"({"pairs": [
    {"setting": ["check", "CUT_STOCK", 1, null, "check_collisions", "collide"],
     "solids": [{"id": "a", "type": "tool"}, {"id": "b", "type": "stock"}]},
    {"setting": ["cut stock"],
     "solids": [{"id": "a", "type": "tool"}, {"id": "c", "type": "stock"}]}]})"));
  ASSERT_EQ(d.numberOfPairs(), 2u);
  EXPECT_EQ(d.pair(0).interactSetting(), kCheck);
  EXPECT_TRUE(d.pair(1).interactSetting().ignore());
}

TEST(InteractSettingsDefinition, TwoEntriesForTheSameSolidsKeepFirstPositionAndLastSetting) {
  InteractSettingsDefinition const d("default", parse(R"({"pairs": [
    {"setting": ["cut_stock"], "solids": [{"id": "a", "type": "tool"}, {"id": "b", "type": "stock"}]},
    {"setting": null, "solids": [{"id": "x", "type": "machine_part"}, {"id": "b", "type": "stock"}]},
    {"setting": ["check_collisions"], "solids": [{"id": "b", "type": "stock"}, {"id": "a", "type": "tool"}]}]})"));
  ASSERT_EQ(d.numberOfPairs(), 2u);
  EXPECT_EQ(d.pair(0).interactand(), InteractSolid(T::TOOL, "a"));
  EXPECT_EQ(d.pair(0).interactor(), InteractSolid(T::STOCK, "b"));
  EXPECT_EQ(d.pair(0).interactSetting(), kCheck);
  EXPECT_EQ(d.pair(1).interactand(), InteractSolid(T::MACHINE_PART, "x"));
}

TEST(InteractSettingsDefinition, SolidIdMustBeAString) {
  EXPECT_NE(failureOf(R"({"pairs": [{"solids": [{"id": 7, "type": "tool"}, {"id": "b", "type": "stock"}]}]})"),
            "no exception");
}

TEST(InteractSettingsDefinition, MachineFileReaderBuildsTheFeature) {
  std::istringstream file(R"({"interactions": {"default": {"pairs": null}, "other": {"pairs": [
      {"setting": ["check_collisions"], "solids": [{"id": "a", "type": "tool"}, {"id": "b", "type": "stock"}]}]}}})");
  auto result = machine::MachineDefinitionReader().read(file);
  ASSERT_FALSE(result.isError());
  auto const definition = result.getMachineDefinition();
  auto const* first = dynamic_cast<InteractSettingsDefinition const*>(definition->getFeature("interactions", "default"));
  auto const* second = dynamic_cast<InteractSettingsDefinition const*>(definition->getFeature("interactions", "other"));
  ASSERT_NE(first, nullptr);
  ASSERT_NE(second, nullptr);
  EXPECT_TRUE(first->isEmpty());
  EXPECT_EQ(second->numberOfPairs(), 1u);
}

TEST(InteractSettingsDefinition, CloneAndCopyTagKeepPairsAndId) {
  InteractSettingsDefinition d("mine", Json::Value());
  d.add(InteractPair(InteractSolid(T::STOCK, "t"), InteractSolid(T::TOOL, "h"), kCheck));
  auto const copy = d.clone();
  EXPECT_EQ(copy->featureId(), "mine");
  ASSERT_EQ(copy->numberOfPairs(), 1u);
  EXPECT_EQ(copy->pair(0), d.pair(0));
  EXPECT_TRUE(copy->equals(d, 0.0));
  // The copy has its own lookup: adding the reversed pair changes only it.
  copy->add(InteractPair(InteractSolid(T::TOOL, "h"), InteractSolid(T::STOCK, "t"), kNone));
  EXPECT_EQ(copy->numberOfPairs(), 1u);
  EXPECT_TRUE(copy->pair(0).interactSetting().ignore());
  EXPECT_EQ(d.pair(0).interactSetting(), kCheck);
  EXPECT_FALSE(copy->equals(d, 0.0));
}

// --- Editing ---

TEST(InteractSettingsDefinition, AddOfReversedSolidsChangesSettingAndKeepsOrder) {
  InteractSettingsDefinition d;
  InteractSolid const stock(T::STOCK, "table");
  InteractSolid const tool(T::TOOL, "head");
  d.add(InteractPair(stock, tool, kNone));
  d.add(InteractPair(InteractSolid(T::MACHINE_PART, "x"), tool, kNone));
  d.add(InteractPair(tool, stock, InteractSetting().setCutStock(true)));
  ASSERT_EQ(d.numberOfPairs(), 2u);
  EXPECT_EQ(d.pair(0).interactand(), stock);
  EXPECT_EQ(d.pair(0).interactor(), tool);
  EXPECT_TRUE(d.pair(0).interactSetting().cutStock());
  EXPECT_FALSE(d.pair(0).interactSetting().checkCollisions());
}

TEST(InteractSettingsDefinition, AddOfAVectorAddsInOrderAndLastSettingWins) {
  InteractSettingsDefinition d;
  InteractSolid const a(T::MACHINE_PART, "a"), b(T::MACHINE_PART, "b"), c(T::MACHINE_PART, "c");
  d.add(std::vector<InteractPair>{InteractPair(a, b, kCheck), InteractPair(b, c, kNone), InteractPair(b, a, kNone)});
  ASSERT_EQ(d.numberOfPairs(), 2u);
  EXPECT_EQ(d.pair(0), InteractPair(a, b, kNone));
  EXPECT_EQ(d.pair(1), InteractPair(b, c, kNone));
}

TEST(InteractSettingsDefinition, PairBeyondTheEndBreaksItsContract) {
  mtkit_test::AssertRecorder asserts;
  InteractSettingsDefinition const d;
  EXPECT_THROW(d.pair(0), std::out_of_range);
  auto const texts = asserts.takeTexts();
  ASSERT_EQ(texts.size(), 1u);
  EXPECT_EQ(texts[0], "EXPECTS:index < m_pairs.size()");
}

TEST(InteractSettingsDefinition, FindBySolidAndFindByIdGivePointersValidUntilTheListChanges) {
  InteractSettingsDefinition d;
  InteractSolid const stock(T::STOCK, "table"), fixture(T::FIXTURE, "table"), tool(T::TOOL, "head"),
      x(T::MACHINE_PART, "x");
  d.add(InteractPair(stock, tool, kCheck));
  d.add(InteractPair(x, fixture, kNone));
  d.add(InteractPair(x, tool, kNone));
  d.add(InteractPair(fixture, tool, kCheck));

  InteractSettingsDefinition const& view = d;
  auto const byTool = view.findBySolid(tool);
  ASSERT_EQ(byTool.size(), 3u);
  EXPECT_EQ(*byTool[0], InteractPair(stock, tool, kCheck));
  EXPECT_EQ(*byTool[1], InteractPair(x, tool, kNone));
  EXPECT_EQ(*byTool[2], InteractPair(fixture, tool, kCheck));
  EXPECT_TRUE(view.findBySolid(InteractSolid(T::MODEL, "table")).empty());

  auto const byTable = view.findById("table");
  ASSERT_EQ(byTable.size(), 3u);
  EXPECT_EQ(*byTable[0], InteractPair(stock, tool, kCheck));
  EXPECT_EQ(*byTable[1], InteractPair(x, fixture, kNone));
  EXPECT_EQ(*byTable[2], InteractPair(fixture, tool, kCheck));
  EXPECT_TRUE(view.findById("nothing").empty());

  // They point into the list itself: an edit through one shows in the list.
  auto const editable = d.findById("x");
  ASSERT_EQ(editable.size(), 2u);
  editable[1]->setInteractSetting(InteractSetting().setCutStock(true));
  EXPECT_TRUE(d.pair(2).interactSetting().cutStock());
  EXPECT_EQ(d.findBySolid(x)[0], editable[0]);

  // After the list has changed, only a new search is to be trusted.
  for (int i = 0; i < 100; ++i)
    d.add(InteractPair(InteractSolid(T::MACHINE_PART, "p" + std::to_string(i)), x, kNone));
  auto const again = d.findById("x");
  ASSERT_EQ(again.size(), 102u);
  EXPECT_EQ(*again[1], InteractPair(x, tool, InteractSetting().setCutStock(true)));
}

// --- Solids of a part ---

TEST(InteractSettingsDefinition, CreateSolidsByPartType) {
  auto const types = [](machine::PartDefinition const& part) {
    std::vector<T> result;
    for (InteractSolid const& s : InteractSettingsDefinition::createSolids(&part)) {
      EXPECT_EQ(s.partDefinitionID(), part.id());
      result.push_back(s.type());
    }
    return result;
  };
  EXPECT_EQ(types(*tablePart("t")), (std::vector<T>{T::MACHINE_PART, T::STOCK, T::FIXTURE}));
  EXPECT_EQ(types(*headPart("h")), (std::vector<T>{T::MACHINE_PART, T::TOOL}));
  EXPECT_EQ(types(*turretPart("r")),
            (std::vector<T>{T::MACHINE_PART, T::TURRET_ACTIVE_TOOL, T::TURRET_INACTIVE_TOOL}));
  EXPECT_EQ(types(*staticPart("s")), (std::vector<T>{T::MACHINE_PART}));
  EXPECT_EQ(types(*linearPart("l", "L", {1, 0, 0})), (std::vector<T>{T::MACHINE_PART}));
  EXPECT_EQ(types(*mtkit_test::rotaryPart("r", "R", {0, 0, 0}, {0, 0, 1})), (std::vector<T>{T::MACHINE_PART}));
  EXPECT_TRUE(InteractSettingsDefinition::createSolids(nullptr).empty());
}

// --- Generation ---

TEST(InteractSettingsDefinition, OneHeadChainAndOneTableChainCheckHeadAgainstTable) {
  InteractSettingsDefinition d;
  d.generateDefaultPairs(headAndTable());
  // Step by step: x's chain against the table chain with check (x, then the
  // head below it), then x's chain against itself with none.
  expectPairs(d, {
                     {"x", T::MACHINE_PART, "table", T::MACHINE_PART, true},
                     {"x", T::MACHINE_PART, "table", T::STOCK, true},
                     {"x", T::MACHINE_PART, "table", T::FIXTURE, true},
                     {"head", T::MACHINE_PART, "table", T::MACHINE_PART, true},
                     {"head", T::MACHINE_PART, "table", T::STOCK, true},
                     {"head", T::MACHINE_PART, "table", T::FIXTURE, true},
                     {"head", T::TOOL, "table", T::MACHINE_PART, true},
                     {"head", T::TOOL, "table", T::STOCK, true},
                     {"head", T::TOOL, "table", T::FIXTURE, true},
                     {"x", T::MACHINE_PART, "head", T::MACHINE_PART, false},
                     {"x", T::MACHINE_PART, "head", T::TOOL, false},
                 });
}

TEST(InteractSettingsDefinition, PartAgainstItselfNeverFormsAPair) {
  std::vector<PartPtr> base;
  base.push_back(with(linearPart("x", "X", {1, 0, 0}), headPart("head")));
  base.push_back(with(linearPart("y", "Y", {0, 1, 0}), headPart("head2")));
  base.push_back(tablePart("table"));
  base.push_back(with(linearPart("w", "W", {0, 1, 0}), tablePart("table2")));
  base.push_back(with(staticPart("frame"), staticPart("guard")));
  InteractSettingsDefinition d;
  d.generateDefaultPairs(mtkit_test::kinematicsOf(std::move(base)));
  ASSERT_FALSE(d.isEmpty());
  for (std::size_t i = 0; i < d.numberOfPairs(); ++i)
    EXPECT_NE(d.pair(i).interactand().partDefinitionID(), d.pair(i).interactor().partDefinitionID())
        << d.pair(i).debugDescription();
}

TEST(InteractSettingsDefinition, HeadOnATurretPutsTheTurretIntoHeadsInPlaceOfTheHead) {
  // x - turret - (head1, head2, tail), and a static guard. The moving parts
  // of the chain are x, turret and tail: tail is last and checks, turret
  // ignores the guard there and gets its check back only as a head.
  auto turret = turretPart("turret");
  turret->addChild(headPart("head1"));
  turret->addChild(headPart("head2"));
  turret->addChild(staticPart("tail"));
  std::vector<PartPtr> base;
  base.push_back(with(linearPart("x", "X", {1, 0, 0}), std::move(turret)));
  base.push_back(staticPart("guard"));
  InteractSettingsDefinition d;
  d.generateDefaultPairs(mtkit_test::kinematicsOf(std::move(base)));
  expectPairs(d, {
                     {"x", T::MACHINE_PART, "turret", T::MACHINE_PART, false},
                     {"x", T::MACHINE_PART, "turret", T::TURRET_ACTIVE_TOOL, false},
                     {"x", T::MACHINE_PART, "turret", T::TURRET_INACTIVE_TOOL, false},
                     {"x", T::MACHINE_PART, "guard", T::MACHINE_PART, false},
                     {"turret", T::MACHINE_PART, "guard", T::MACHINE_PART, true},
                     {"turret", T::TURRET_ACTIVE_TOOL, "guard", T::MACHINE_PART, true},
                     {"turret", T::TURRET_INACTIVE_TOOL, "guard", T::MACHINE_PART, true},
                     {"tail", T::MACHINE_PART, "guard", T::MACHINE_PART, true},
                 });
  EXPECT_TRUE(d.findById("head1").empty());
  EXPECT_TRUE(d.findById("head2").empty());
}

TEST(InteractSettingsDefinition, HeadChainWithOneMovingPartAgainstAStaticGivesNone) {
  std::vector<PartPtr> base;
  base.push_back(with(linearPart("x", "X", {1, 0, 0}), headPart("head")));
  base.push_back(staticPart("guard"));
  InteractSettingsDefinition d;
  d.generateDefaultPairs(mtkit_test::kinematicsOf(std::move(base)));
  expectPairs(d, {
                     {"x", T::MACHINE_PART, "head", T::MACHINE_PART, false},
                     {"x", T::MACHINE_PART, "head", T::TOOL, false},
                     {"x", T::MACHINE_PART, "guard", T::MACHINE_PART, false},
                     {"head", T::MACHINE_PART, "guard", T::MACHINE_PART, true},
                     {"head", T::TOOL, "guard", T::MACHINE_PART, true},
                 });
}

TEST(InteractSettingsDefinition, HeadChainWithTwoMovingPartsAgainstAStaticChecksOnlyTheSecond) {
  std::vector<PartPtr> base;
  base.push_back(with(linearPart("x", "X", {1, 0, 0}), with(linearPart("y", "Y", {0, 1, 0}), headPart("head"))));
  base.push_back(staticPart("guard"));
  InteractSettingsDefinition d;
  d.generateDefaultPairs(mtkit_test::kinematicsOf(std::move(base)));
  expectPairs(d, {
                     {"x", T::MACHINE_PART, "y", T::MACHINE_PART, false},
                     {"x", T::MACHINE_PART, "head", T::MACHINE_PART, false},
                     {"x", T::MACHINE_PART, "head", T::TOOL, false},
                     {"y", T::MACHINE_PART, "head", T::MACHINE_PART, false},
                     {"y", T::MACHINE_PART, "head", T::TOOL, false},
                     {"x", T::MACHINE_PART, "guard", T::MACHINE_PART, false},
                     {"y", T::MACHINE_PART, "guard", T::MACHINE_PART, true},
                     {"head", T::MACHINE_PART, "guard", T::MACHINE_PART, true},
                     {"head", T::TOOL, "guard", T::MACHINE_PART, true},
                 });
}

TEST(InteractSettingsDefinition, TablePlacedDirectlyOnAnAxisGetsNoPairWithThatAxisFromStep7) {
  // bed - y - x - table: the table checks against bed and y, not x.
  std::vector<PartPtr> base;
  base.push_back(with(staticPart("bed"),
                      with(linearPart("y", "Y", {0, 1, 0}), with(linearPart("x", "X", {1, 0, 0}), tablePart("table")))));
  InteractSettingsDefinition d;
  d.generateDefaultPairs(mtkit_test::kinematicsOf(std::move(base)));
  expectPairs(d, {
                     {"bed", T::MACHINE_PART, "y", T::MACHINE_PART, false},
                     {"bed", T::MACHINE_PART, "x", T::MACHINE_PART, false},
                     {"bed", T::MACHINE_PART, "table", T::MACHINE_PART, true},
                     {"bed", T::MACHINE_PART, "table", T::STOCK, true},
                     {"bed", T::MACHINE_PART, "table", T::FIXTURE, true},
                     {"y", T::MACHINE_PART, "x", T::MACHINE_PART, false},
                     {"y", T::MACHINE_PART, "table", T::MACHINE_PART, true},
                     {"y", T::MACHINE_PART, "table", T::STOCK, true},
                     {"y", T::MACHINE_PART, "table", T::FIXTURE, true},
                     {"x", T::MACHINE_PART, "table", T::MACHINE_PART, false},
                     {"x", T::MACHINE_PART, "table", T::STOCK, false},
                     {"x", T::MACHINE_PART, "table", T::FIXTURE, false},
                 });
}

TEST(InteractSettingsDefinition, TwoTableChainsCheckEachOtherButNotThemselves) {
  // Step 4 with two table chains: against each other check, within each none.
  std::vector<PartPtr> base;
  base.push_back(with(linearPart("u", "U", {1, 0, 0}), tablePart("t1")));
  base.push_back(tablePart("t2"));
  InteractSettingsDefinition d;
  d.generateDefaultPairs(mtkit_test::kinematicsOf(std::move(base)));
  // Step 4: (u-chain, u-chain) none: u-t1; (u-chain, t2) check: u-t2, t1-t2;
  // (t2, u-chain) check again; (t2, t2) nothing. Step 7: t1 sits on u
  // directly; t1 against t2 check; t2 against u and t1 check.
  std::vector<Expected> expected;
  T const tableSolids[] = {T::MACHINE_PART, T::STOCK, T::FIXTURE};
  for (T b : tableSolids) expected.push_back({"u", T::MACHINE_PART, "t1", b, false});
  for (T b : tableSolids) expected.push_back({"u", T::MACHINE_PART, "t2", b, true});
  for (T a : tableSolids)
    for (T b : tableSolids) expected.push_back({"t1", a, "t2", b, true});
  expectPairs(d, expected);
}

TEST(InteractSettingsDefinition, CutStockSetByAUserSurvivesGeneratePairsButNotGenerateDefaultPairs) {
  machine::KinematicsDefinition const kinematics = headAndTable();
  InteractSettingsDefinition d;
  d.generateDefaultPairs(kinematics);
  // Given the other way round, on a pair generated as head tool - table stock.
  InteractSetting const cut = InteractSetting().setCheckCollisions(true).setCutStock(true);
  d.add(InteractPair(InteractSolid(T::STOCK, "table"), InteractSolid(T::TOOL, "head"), cut));
  // A pair of solids that generation never makes is dropped.
  d.add(InteractPair(InteractSolid(T::MODEL, "table"), InteractSolid(T::TOOL, "head"), cut));
  // A generated pair switched off stays off.
  d.add(InteractPair(InteractSolid(T::MACHINE_PART, "x"), InteractSolid(T::MACHINE_PART, "table"), kNone));
  ASSERT_EQ(d.numberOfPairs(), 12u);

  d.generatePairs(kinematics);
  ASSERT_EQ(d.numberOfPairs(), 11u);
  EXPECT_EQ(d.pair(7).interactand(), InteractSolid(T::TOOL, "head"));
  EXPECT_EQ(d.pair(7).interactor(), InteractSolid(T::STOCK, "table"));
  EXPECT_EQ(d.pair(7).interactSetting(), cut);
  EXPECT_TRUE(d.pair(0).interactSetting().ignore());
  EXPECT_TRUE(d.findBySolid(InteractSolid(T::MODEL, "table")).empty());
  std::size_t cutting = 0;
  for (std::size_t i = 0; i < d.numberOfPairs(); ++i) cutting += d.pair(i).interactSetting().cutStock() ? 1 : 0;
  EXPECT_EQ(cutting, 1u);

  d.generateDefaultPairs(kinematics);
  ASSERT_EQ(d.numberOfPairs(), 11u);
  EXPECT_EQ(d.pair(7).interactSetting(), kCheck);
  EXPECT_EQ(d.pair(0).interactSetting(), kCheck);
}

TEST(InteractSettingsDefinition, GenerationNeverSetsCutStockAndNeverRepeatsSolids) {
  // Random trees of up to a few hundred parts: every pair once, none cutting.
  mtkit_test::RandomTree random(4511u);
  for (int round = 0; round < 6; ++round) {
    SCOPED_TRACE(round);
    auto const kinematics = random.make(round == 5 ? 300 : 10 + static_cast<int>(random.index(60)));
    InteractSettingsDefinition d;
    d.generateDefaultPairs(*kinematics);
    std::set<std::pair<std::string, std::string>> seen;
    for (std::size_t i = 0; i < d.numberOfPairs(); ++i) {
      InteractPair const p = d.pair(i);
      EXPECT_FALSE(p.interactSetting().cutStock());
      std::string a = p.interactand().debugDescription(), b = p.interactor().debugDescription();
      if (b < a) std::swap(a, b);
      EXPECT_TRUE(seen.insert({a, b}).second) << p.debugDescription();
    }
  }
}

// --- The example machines, with their pairs worked out by hand ---

namespace {

/// A part of an example tree in depth-first order, with its solids.
struct HandPart {
  char const* id;
  std::vector<T> solids;
};

std::vector<T> const kPartOnly{T::MACHINE_PART};
std::vector<T> const kTable{T::MACHINE_PART, T::STOCK, T::FIXTURE};
std::vector<T> const kHead{T::MACHINE_PART, T::TOOL};
std::vector<T> const kTurret{T::MACHINE_PART, T::TURRET_ACTIVE_TOOL, T::TURRET_INACTIVE_TOOL};

/// Each example has one base part that holds the table, so it is a single
/// table chain: every two parts of it pair up ignored, in depth-first order
/// (turret tools left out), and then the table checks against the parts in
/// `checked`; `appended` are pairs step 7 adds beyond the chain's own.
std::vector<Expected> singleTableChain(std::vector<HandPart> const& parts, char const* table,
                                       std::set<std::string> const& checked,
                                       std::vector<Expected> const& appended = {}) {
  std::vector<Expected> expected;
  for (std::size_t i = 0; i < parts.size(); ++i)
    for (std::size_t j = i + 1; j < parts.size(); ++j) {
      std::string const other = std::string(parts[i].id) == table ? parts[j].id : parts[i].id;
      bool const check = (std::string(parts[i].id) == table || std::string(parts[j].id) == table) && checked.count(other);
      for (T a : parts[i].solids)
        for (T b : parts[j].solids) expected.push_back({parts[i].id, a, parts[j].id, b, check});
    }
  expected.insert(expected.end(), appended.begin(), appended.end());
  return expected;
}

std::filesystem::path exampleMachine(char const* name) {
  return std::filesystem::path(MTKIT_EXAMPLES_DIR) / "machines" / name;
}

std::unique_ptr<machine::MachineDefinition> readExample(char const* name) {
  std::ifstream in(exampleMachine(name), std::ios::binary);
  auto result = machine::MachineDefinitionReader().read(in);
  if (result.isError()) {
    ADD_FAILURE() << result.getReadErrorMessage();
    return nullptr;
  }
  return result.getMachineDefinition();
}

/// Generated pairs of the example's kinematics, and the pairs its file
/// carries, are both `expected`.
void expectExample(char const* name, std::vector<Expected> const& expected) {
  SCOPED_TRACE(name);
  auto const m = readExample(name);
  ASSERT_NE(m, nullptr);
  auto const* kinematics = dynamic_cast<machine::KinematicsDefinition const*>(m->getDefaultFeature("kinematics"));
  ASSERT_NE(kinematics, nullptr);
  InteractSettingsDefinition generated;
  generated.generateDefaultPairs(*kinematics);
  expectPairs(generated, expected);
  auto const* stored = dynamic_cast<InteractSettingsDefinition const*>(m->getDefaultFeature("interactions"));
  ASSERT_NE(stored, nullptr);
  expectPairs(*stored, expected);
  // The feature writes back exactly the body the file holds.
  std::ifstream in(exampleMachine(name), std::ios::binary);
  std::ostringstream text;
  text << in.rdbuf();
  EXPECT_EQ(stored->getPersistData(), parse(text.str())["interactions"]["default"]);
}

}  // namespace

TEST(InteractSettingsDefinition, ExampleVmc3AxisPairs) {
  auto const expected =
      singleTableChain({{"bed", kPartOnly},
                        {"y_axis", kPartOnly},
                        {"x_axis", kPartOnly},
                        {"table", kTable},
                        {"column", kPartOnly},
                        {"z_axis", kPartOnly},
                        {"spindle_head", kHead}},
                       "table", {"bed", "y_axis", "column", "z_axis", "spindle_head"});
  // Ten solids, less the pairs inside the table (3) and the head (1).
  ASSERT_EQ(expected.size(), 41u);
  // A few entries written out in full.
  EXPECT_STREQ(expected[0].andId, "bed");
  EXPECT_STREQ(expected[0].orId, "y_axis");
  EXPECT_FALSE(expected[0].check);
  expectExample("vmc_3axis.json", expected);
  auto const m = readExample("vmc_3axis.json");
  auto const* stored = dynamic_cast<InteractSettingsDefinition const*>(m->getDefaultFeature("interactions"));
  ASSERT_NE(stored, nullptr);
  EXPECT_EQ(stored->pair(40), InteractPair(InteractSolid(T::MACHINE_PART, "z_axis"),
                                           InteractSolid(T::TOOL, "spindle_head"), kNone));
  auto const tool = stored->findBySolid(InteractSolid(T::TOOL, "spindle_head"));
  std::vector<InteractPair> const toolPairs{
      InteractPair(InteractSolid(T::MACHINE_PART, "bed"), InteractSolid(T::TOOL, "spindle_head"), kNone),
      InteractPair(InteractSolid(T::MACHINE_PART, "y_axis"), InteractSolid(T::TOOL, "spindle_head"), kNone),
      InteractPair(InteractSolid(T::MACHINE_PART, "x_axis"), InteractSolid(T::TOOL, "spindle_head"), kNone),
      InteractPair(InteractSolid(T::MACHINE_PART, "table"), InteractSolid(T::TOOL, "spindle_head"), kCheck),
      InteractPair(InteractSolid(T::STOCK, "table"), InteractSolid(T::TOOL, "spindle_head"), kCheck),
      InteractPair(InteractSolid(T::FIXTURE, "table"), InteractSolid(T::TOOL, "spindle_head"), kCheck),
      InteractPair(InteractSolid(T::MACHINE_PART, "column"), InteractSolid(T::TOOL, "spindle_head"), kNone),
      InteractPair(InteractSolid(T::MACHINE_PART, "z_axis"), InteractSolid(T::TOOL, "spindle_head"), kNone),
  };
  ASSERT_EQ(tool.size(), toolPairs.size());
  for (std::size_t i = 0; i < tool.size(); ++i) {
    EXPECT_EQ(*tool[i], toolPairs[i]) << i;
    EXPECT_EQ(tool[i]->interactand(), toolPairs[i].interactand()) << i;
  }
}

TEST(InteractSettingsDefinition, ExampleTrunnion5AxisPairs) {
  expectExample("trunnion_5axis.json",
                singleTableChain({{"base", kPartOnly},
                                  {"y_axis", kPartOnly},
                                  {"x_axis", kPartOnly},
                                  {"a_axis", kPartOnly},
                                  {"c_axis", kPartOnly},
                                  {"rotary_table", kTable},
                                  {"column", kPartOnly},
                                  {"z_axis", kPartOnly},
                                  {"spindle_head", kHead}},
                                 "rotary_table",
                                 {"base", "y_axis", "x_axis", "a_axis", "column", "z_axis", "spindle_head"}));
}

TEST(InteractSettingsDefinition, ExampleHeadHead5AxisPairsAreAllIgnored) {
  // The table sits directly on the base part, which is the table chain
  // itself, so step 7 returns at once and nothing is checked.
  expectExample("headhead_5axis.json", singleTableChain({{"bed", kPartOnly},
                                                         {"table", kTable},
                                                         {"gantry", kPartOnly},
                                                         {"x_axis", kPartOnly},
                                                         {"y_axis", kPartOnly},
                                                         {"z_axis", kPartOnly},
                                                         {"c_axis", kPartOnly},
                                                         {"b_axis", kPartOnly},
                                                         {"fork_head", kHead}},
                                                        "table", {}));
}

TEST(InteractSettingsDefinition, ExampleHeadTable5AxisPairs) {
  expectExample("headtable_5axis.json",
                singleTableChain({{"bed", kPartOnly},
                                  {"x_axis", kPartOnly},
                                  {"c_axis", kPartOnly},
                                  {"rotary_table", kTable},
                                  {"column", kPartOnly},
                                  {"y_axis", kPartOnly},
                                  {"z_axis", kPartOnly},
                                  {"b_axis", kPartOnly},
                                  {"b_head", kHead}},
                                 "rotary_table", {"bed", "x_axis", "column", "y_axis", "z_axis", "b_axis", "b_head"}));
}

TEST(InteractSettingsDefinition, ExampleMillTurnTurretPairs) {
  // Only the first table found (the primary spindle) is a table of step 7.
  // The turret ends the chain, but step 7 walks on below it, so the primary
  // spindle gains checked pairs with the four turret heads at the end.
  std::vector<Expected> appended;
  for (char const* head : {"turret_head_1", "turret_head_2", "turret_head_3", "turret_head_4"})
    for (T a : kTable)
      for (T b : kHead) appended.push_back({"primary_spindle", a, head, b, true});
  expectExample("millturn_turret.json",
                singleTableChain({{"bed", kPartOnly},
                                  {"c1_axis", kPartOnly},
                                  {"primary_spindle", kTable},
                                  {"w_axis", kPartOnly},
                                  {"c2_axis", kPartOnly},
                                  {"secondary_spindle", kTable},
                                  {"x2_axis", kPartOnly},
                                  {"z2_axis", kPartOnly},
                                  {"turret", kTurret},
                                  {"x1_axis", kPartOnly},
                                  {"y1_axis", kPartOnly},
                                  {"z1_axis", kPartOnly},
                                  {"b_axis", kPartOnly},
                                  {"milling_head", kHead}},
                                 "primary_spindle",
                                 {"bed", "w_axis", "c2_axis", "secondary_spindle", "x2_axis", "z2_axis", "turret",
                                  "x1_axis", "y1_axis", "z1_axis", "b_axis", "milling_head"},
                                 appended));
}

// --- Round trips ---

TEST(InteractSettingsDefinition, RandomFeaturesRoundTripThroughTheMachineFile) {
  std::mt19937 engine(14u);
  for (int round = 0; round < 25; ++round) {
    SCOPED_TRACE(round);
    InteractSettingsDefinition d("id" + std::to_string(round), Json::Value());
    int const count = static_cast<int>(engine() % 40);
    std::vector<InteractPair> added;
    for (int i = 0; i < count; ++i) {
      auto const solid = [&] {
        return InteractSolid(static_cast<T>(engine() % 9), "part \"" + std::to_string(engine() % 12) + "\" \xc3\xa9");
      };
      InteractSetting setting;
      setting.setCheckCollisions(engine() % 2 == 0).setCutStock(engine() % 3 == 0);
      d.add(InteractPair(solid(), solid(), setting));
    }
    machine::MachineDefinition m;
    m.putFeature(d.clone());
    std::ostringstream out;
    ASSERT_FALSE(machine::MachineDefinitionWriter::write(out, m).isError());
    std::istringstream in(out.str());
    auto result = machine::MachineDefinitionReader().read(in);
    ASSERT_FALSE(result.isError()) << result.getReadErrorMessage();
    auto const back = result.getMachineDefinition();
    auto const* read = dynamic_cast<InteractSettingsDefinition const*>(back->getFeature("interactions", d.featureId()));
    ASSERT_NE(read, nullptr);
    ASSERT_EQ(read->numberOfPairs(), d.numberOfPairs());
    for (std::size_t i = 0; i < d.numberOfPairs(); ++i) {
      EXPECT_EQ(read->pair(i), d.pair(i));
      EXPECT_EQ(read->pair(i).interactand(), d.pair(i).interactand());
    }
    EXPECT_EQ(read->getPersistData(), d.getPersistData());
  }
}

TEST(InteractSettingsDefinition, GeneratedPairsOfRandomTreesRoundTrip) {
  mtkit_test::RandomTree random(20260514u);
  for (int round = 0; round < 10; ++round) {
    SCOPED_TRACE(round);
    auto const kinematics = random.make(1 + static_cast<int>(random.index(30)));
    InteractSettingsDefinition d;
    d.generateDefaultPairs(*kinematics);
    InteractSettingsDefinition const back("default", parse(d.getPersistData().toStyledString()));
    EXPECT_TRUE(back.equals(d, 0.0));
    ASSERT_EQ(back.numberOfPairs(), d.numberOfPairs());
    for (std::size_t i = 0; i < d.numberOfPairs(); ++i) EXPECT_EQ(back.pair(i), d.pair(i));
  }
}
