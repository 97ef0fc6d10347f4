#include "machine/machine/MachineMotions.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "nc/BinaryPersistReader.h"
#include "nc/BinaryPersistWriter.h"
#include "nc/JsonPersistReader.h"
#include "nc/JsonPersistWriter.h"
#include "nc/PersistError.h"
#include "support/AssertRecorder.h"
#include "support/PersistSupport.h"
#include "util/utility/JsonUtils.h"

using machine::MachineMotion;
using machine::MachineMotions;
using mtkit_test::binaryFixture;
using mtkit_test::fixtureMotionA;
using mtkit_test::fixtureMotionB;
using mtkit_test::makeContext;
using mtkit_test::makeOrdering;
using mtkit_test::motionDatabase;
using mtkit_test::readTestData;

namespace {

MachineMotions fromJson(std::string const& text) {
  MachineMotions motions;
  persist::JsonPersistReader::read(text, motionDatabase(), motions);
  return motions;
}

MachineMotions fromBinary(std::string const& bytes) {
  MachineMotions motions;
  persist::BinaryPersistReader::read(bytes, motionDatabase(), motions);
  return motions;
}

std::string errorOf(std::function<void()> const& f) {
  try {
    f();
  } catch (persist::PersistError const& e) {
    return e.what();
  }
  return "no PersistError";
}

}  // namespace

// The collection

TEST(MachineMotions, InsertOfAMotionWithAContextAlreadyPresentKeepsOneMotionNowAtTheEnd) {
  MachineMotions motions;
  motions.insert(MachineMotion(makeContext(1, 2, 3, 0)));
  motions.insert(MachineMotion(makeContext(1, 2, 4, 0)));
  MachineMotion again(makeContext(1, 2, 3, 0));
  again.appendEntity(Orvo::AxisValues(std::vector<Orvo::AxisValue>{8.0}));
  motions.insert(std::move(again));
  ASSERT_EQ(motions.motionRange().size(), 2u);
  EXPECT_EQ(motions.motionRange()[0].context().toolpathId(), 4);
  EXPECT_EQ(motions.motionRange()[1].context().toolpathId(), 3);
  EXPECT_EQ(motions.motionRange()[1].numEntities(), 1);
}

TEST(MachineMotions, InvalidateOnMachineMotionsLeavesItsSizeUnchangedAndMakesAllIsValidFalse) {
  MachineMotions motions = mtkit_test::randomMotions(7, 5);
  ASSERT_EQ(motions.motionRange().size(), 5u);
  motions.invalidate();
  ASSERT_EQ(motions.motionRange().size(), 5u);
  for (MachineMotion const& motion : motions.motionRange()) EXPECT_FALSE(motion.isValid());
}

TEST(MachineMotions, EraseRemovesEveryMotionOfTheContextAndKeepsTheOrderOfTheOthers) {
  MachineMotions motions;
  motions.insert(MachineMotion(makeContext(1, 2, 3, 0)));
  motions.insert(MachineMotion(makeContext(1, 2, 4, 0)));
  motions.insert(MachineMotion(makeContext(1, 2, 5, 0)));
  motions.erase(makeContext(1, 2, 4, 0));
  ASSERT_EQ(motions.motionRange().size(), 2u);
  EXPECT_EQ(motions.motionRange()[0].context().toolpathId(), 3);
  EXPECT_EQ(motions.motionRange()[1].context().toolpathId(), 5);
  motions.erase(makeContext(1, 2, 9, 0));
  EXPECT_EQ(motions.motionRange().size(), 2u);
}

TEST(MachineMotions, FindGivesTheMotionOfTheContextOrNull) {
  MachineMotions const motions = mtkit_test::fixtureMotions();
  MachineMotion const* found = motions.find(makeContext(1, 2, 4, 0));
  ASSERT_NE(found, nullptr);
  EXPECT_FALSE(found->isValid());
  EXPECT_EQ(motions.find(makeContext(1, 2, 3, 54)), nullptr);  // the pattern differs
  EXPECT_NE(motions.find(makeContext(1, 2, 3, 54, {{7, 2}})), nullptr);
}

TEST(MachineMotions, ClearRemovesAll) {
  MachineMotions motions = mtkit_test::fixtureMotions();
  motions.clear();
  EXPECT_TRUE(motions.motionRange().empty());
}

TEST(MachineMotions, EqualityIsPairwiseInOrder) {
  MachineMotions a;
  a.insert(fixtureMotionA());
  a.insert(fixtureMotionB());
  MachineMotions b;
  b.insert(fixtureMotionB());
  b.insert(fixtureMotionA());
  EXPECT_TRUE(a == mtkit_test::fixtureMotions());
  EXPECT_TRUE(a != b);
  MachineMotions shorter;
  shorter.insert(fixtureMotionA());
  EXPECT_TRUE(a != shorter);
}

TEST(MachineMotions, CopyIsDeep) {
  MachineMotions original = mtkit_test::fixtureMotions();
  MachineMotions const copy(MachineMotions::Copy{}, original);
  EXPECT_TRUE(copy == original);
  original.invalidate();
  EXPECT_TRUE(copy.motionRange()[0].isValid());
}

// The persistent layout

TEST(MachineMotions, ClassRecordIsVersion1002AndCreatesMotions) {
  EXPECT_STREQ(MachineMotions::iceStaticClass.name(), "MachineMotions");
  EXPECT_EQ(MachineMotions::iceStaticClass.version(), 1002);
  auto const made = MachineMotions::iceStaticClass.create();
  EXPECT_NE(dynamic_cast<MachineMotions*>(made.get()), nullptr);
}

TEST(MachineMotions, ARoundTripOfMachineMotionsThroughTheCurrentFormatComparesEqual) {
  for (std::uint32_t const seed : {1u, 2u, 3u, 4u, 5u}) {
    MachineMotions original = mtkit_test::randomMotions(seed, 40);
    MachineMotions const expected(MachineMotions::Copy{}, original);
    EXPECT_TRUE(fromJson(persist::JsonPersistWriter::write(original)) == expected) << "JSON, seed " << seed;
    EXPECT_TRUE(fromBinary(persist::BinaryPersistWriter::write(original)) == expected) << "binary, seed " << seed;
  }
  MachineMotions empty;
  EXPECT_TRUE(fromJson(persist::JsonPersistWriter::write(empty)) == MachineMotions());
  EXPECT_TRUE(fromBinary(persist::BinaryPersistWriter::write(empty)) == MachineMotions());
}

TEST(MachineMotions, TheWritersProduceTheHandWrittenCurrentFormat) {
  MachineMotions motions = mtkit_test::fixtureMotions();
  Json::Value const expected = persist::JsonPersistReader::parse(readTestData("motions_version3.json"));
  EXPECT_TRUE(Orvo::JsonUtils::areEqual(persist::JsonPersistWriter::writeDocument(motions), expected, 0.0));
  EXPECT_EQ(persist::BinaryPersistWriter::write(motions), binaryFixture("motions_version3.hex"));
  EXPECT_TRUE(fromJson(readTestData("motions_version3.json")) == mtkit_test::fixtureMotions());
  EXPECT_TRUE(fromBinary(binaryFixture("motions_version3.hex")) == mtkit_test::fixtureMotions());
}

TEST(MachineMotions, TheWriterPutsDefaultObjectsUnderTheOldKeysAndTheDataUnderTheVersionedOnes) {
  MachineMotions motions = mtkit_test::fixtureMotions();
  Json::Value const document = persist::JsonPersistWriter::writeDocument(motions);
  Json::Value const& root = document["root"];
  EXPECT_EQ(root["m_container"]["m_size"].asUInt64(), 0u);
  EXPECT_EQ(root["m_container"]["m_array"].size(), 0u);
  EXPECT_EQ(root["motionVersion"].asInt(), 3);
  EXPECT_EQ(root["m_container_size"].asUInt64(), 2u);
  Json::Value const& motion = root["m_container_versioned"][0];
  EXPECT_EQ(motion["@type"].asString(), "MachineMotion");
  EXPECT_TRUE(motion["motion"]["m_context"]["m_machineId"].isNull());
  EXPECT_EQ(motion["motion"]["m_axisOrdering"]["m_entries"]["m_size"].asUInt64(), 0u);
  EXPECT_EQ(motion["motion"]["m_context_versioned"]["m_machineId"].asInt(), 1);
  EXPECT_EQ(motion["motion"]["m_axisOrdering_versioned"]["m_entries"]["m_size"].asUInt64(), 5u);
}

TEST(MachineMotions, AnOldFileWithItemsInMArrayLoadsThemAndEachMotionTakesItsContextAndOrderingFromTheOldKeys) {
  MachineMotions const expected = mtkit_test::fixtureMotions();
  MachineMotions const json = fromJson(readTestData("motions_old_m_array.json"));
  MachineMotions const binary = fromBinary(binaryFixture("motions_old_m_array.hex"));
  for (MachineMotions const* read : {&json, &binary}) {
    ASSERT_EQ(read->motionRange().size(), 2u);
    EXPECT_EQ(read->motionRange()[0].context(), makeContext(1, 2, 3, 54, {{7, 2}}));
    EXPECT_EQ(read->motionRange()[0].axisOrdering(0).size(), 5);
    EXPECT_EQ(read->motionRange()[0].axisOrdering(0).machinePartId(4).id(), "c_rotary");
    EXPECT_EQ(read->motionRange()[1].context(), makeContext(1, 2, 4, 0));
    EXPECT_EQ(read->motionRange()[1].axisOrdering(0).size(), 3);
    EXPECT_TRUE(*read == expected);
  }
}

TEST(MachineMotions, AFileWithMotionVersion1HasNoMContextVersionedAndOneWith2NoMAxisOrderingVersioned) {
  std::string const json1 = readTestData("motions_version1.json");
  std::string const json2 = readTestData("motions_version2.json");
  EXPECT_EQ(json1.find("m_context_versioned"), std::string::npos);
  EXPECT_EQ(json1.find("m_axisOrdering_versioned"), std::string::npos);
  EXPECT_NE(json2.find("m_context_versioned"), std::string::npos);
  EXPECT_EQ(json2.find("m_axisOrdering_versioned"), std::string::npos);
  MachineMotions const expected = mtkit_test::fixtureMotions();
  // Version 1 takes the context and the ordering from the old keys, version 2
  // the context from its versioned key (its old key holds a default) and the
  // ordering from the old key.
  EXPECT_TRUE(fromJson(json1) == expected);
  EXPECT_TRUE(fromJson(json2) == expected);
  EXPECT_TRUE(fromBinary(binaryFixture("motions_version1.hex")) == expected);
  EXPECT_TRUE(fromBinary(binaryFixture("motions_version2.hex")) == expected);
}

TEST(MachineMotions, AMotionVersionOutsideTheKnownOnesIsRefused) {
  Json::Value document = persist::JsonPersistReader::parse(readTestData("motions_version3.json"));
  document["root"]["motionVersion"] = 4;
  MachineMotions target;
  EXPECT_EQ(errorOf([&] { persist::JsonPersistReader::readDocument(document, motionDatabase(), target); }),
            "persist JSON: at root.motionVersion: expected an integer from 1 to 3, found 4");
  document["root"]["motionVersion"] = 0;
  EXPECT_EQ(errorOf([&] { persist::JsonPersistReader::readDocument(document, motionDatabase(), target); }),
            "persist JSON: at root.motionVersion: expected an integer from 1 to 3, found 0");
}

TEST(MachineMotions, AClassStoredAtANewerVersionIsRefused) {
  Json::Value document = persist::JsonPersistReader::parse(readTestData("motions_version3.json"));
  document["root"]["m_container_versioned"][1]["motion"]["@version"] = 4;
  MachineMotions target;
  EXPECT_EQ(errorOf([&] { persist::JsonPersistReader::readDocument(document, motionDatabase(), target); }),
            "persist JSON: at root.m_container_versioned[1].motion: the class MachineMotion is stored at version "
            "4, which is newer than this library reads (up to 3)");
}

TEST(MachineMotions, AFailedReadLeavesTheTargetUnchanged) {
  MachineMotions target = mtkit_test::fixtureMotions();
  std::string json = readTestData("motions_version3.json");
  json.replace(json.find("\"m_isValid\": true"), 17, "\"m_isValid\": \"yes\"");
  EXPECT_EQ(errorOf([&] { persist::JsonPersistReader::read(json, motionDatabase(), target); }),
            "persist JSON: at root.m_container_versioned[0].motion.m_isValid: expected a boolean, found the string "
            "\"yes\"");
  EXPECT_TRUE(target == mtkit_test::fixtureMotions());

  std::string const bytes = binaryFixture("motions_version3.hex");
  EXPECT_THROW(persist::BinaryPersistReader::read(bytes.substr(0, bytes.size() - 1), motionDatabase(), target),
               persist::PersistError);
  EXPECT_TRUE(target == mtkit_test::fixtureMotions());
}

TEST(MachineMotions, TheBinaryReaderRefusesEveryTruncationOfAValidFile) {
  MachineMotions motions = mtkit_test::randomMotions(11, 6);
  std::string const bytes = persist::BinaryPersistWriter::write(motions);
  for (std::size_t size = 0; size < bytes.size(); ++size) {
    MachineMotions target;
    EXPECT_THROW(persist::BinaryPersistReader::read(std::string_view(bytes.data(), size), motionDatabase(), target),
                 persist::PersistError)
        << "truncated to " << size << " bytes";
  }
}

TEST(MachineMotions, SerializeVersionedMembersAssertsItsVersion) {
  mtkit_test::AssertRecorder asserts;
  for (int const version : {0, 4}) {
    MachineMotion motion = fixtureMotionA();
    persist::JsonPersistWriter writer;
    motion.serializeVersionedMembers(writer, "motion", version);
    EXPECT_NO_THROW(writer.document());
  }
  EXPECT_EQ(asserts.takeTexts(),
            (std::vector<std::string>{"EXPECTS:version > 0", "EXPECTS:version <= currentVersion()"}));
}

TEST(MachineMotions, ReadingAnOlderVersionFillsOnlyAMissingContextButAlwaysReplacesTheOrdering) {
  Json::Value const versioned = persist::JsonPersistReader::parse(readTestData("motions_version1.json"));
  Json::Value document(Json::objectValue);
  document["format"] = "mtkit persist";
  document["formatVersion"] = 1;
  document["motion"] = versioned["root"]["m_container_versioned"][0]["motion"];

  // A motion that already holds a context and an ordering: at version 1 the
  // context stays (it only fills a gap), while the ordering is replaced by
  // the one under the old key.
  MachineMotion motion(makeContext(9, 9, 9, 9));
  motion.setAxisOrdering(makeOrdering({{"q", "Q"}}));
  persist::JsonPersistReader reader(document, motionDatabase());
  motion.serializeVersionedMembers(reader, "motion", 1);
  reader.finish();
  EXPECT_EQ(motion.context(), makeContext(9, 9, 9, 9));
  EXPECT_EQ(motion.axisOrdering(0), fixtureMotionA().axisOrdering(0));
  EXPECT_EQ(motion.axisValues(0), fixtureMotionA().axisValues(0));
}

TEST(MachineMotions, EveryFixtureReadsTheSameWithEveryValueScannedAsLongTextIs) {
  for (char const* name :
       {"motions_old_m_array.json", "motions_version1.json", "motions_version2.json", "motions_version3.json"}) {
    std::string const text = readTestData(name);
    persist::JsonPersistReader reader(text, motionDatabase(), 1);
    MachineMotions read;
    persist::serialize(reader, "root", read);
    reader.finish();
    EXPECT_TRUE(read == mtkit_test::fixtureMotions()) << name;
  }
}
