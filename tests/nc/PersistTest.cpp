#include "nc/Persist.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "support/AssertRecorder.h"
#include "support/PersistSamples.h"

using mtkit_test::Derived;
using mtkit_test::Holder;
using mtkit_test::Other;
using mtkit_test::Sample;
using mtkit_test::throughBinary;
using mtkit_test::throughJson;

TEST(Persist, EveryKindOfMemberRoundTripsInBothEncodings) {
  Sample original = mtkit_test::fullSample();
  Sample const json = throughJson(original);
  Sample const binary = throughBinary(original);
  EXPECT_TRUE(json == mtkit_test::fullSample());
  EXPECT_TRUE(binary == mtkit_test::fullSample());
  EXPECT_EQ(json.child->text, "child");
  EXPECT_EQ(binary.big, 18446744073709551615ull);
}

TEST(Persist, DoublesComeBackBitForBitNaNAndInfinitiesIncluded) {
  std::vector<double> const numbers = {0.0,
                                       -0.0,
                                       0.1,
                                       1.0 / 3.0,
                                       -1e-310,
                                       std::numeric_limits<double>::max(),
                                       std::numeric_limits<double>::lowest(),
                                       std::numeric_limits<double>::denorm_min(),
                                       std::numeric_limits<double>::infinity(),
                                       -std::numeric_limits<double>::infinity(),
                                       std::numeric_limits<double>::quiet_NaN()};
  Sample s;
  s.list = numbers;
  for (Sample const& read : {throughJson(s), throughBinary(s)}) {
    ASSERT_EQ(read.list.size(), numbers.size());
    for (std::size_t i = 0; i < numbers.size(); ++i) {
      if (std::isnan(numbers[i])) {
        EXPECT_TRUE(std::isnan(read.list[i]));
      } else {
        EXPECT_EQ(read.list[i], numbers[i]) << i;
        EXPECT_EQ(std::signbit(read.list[i]), std::signbit(numbers[i])) << i;
      }
    }
  }
}

TEST(Persist, StringsKeepEveryByteAndTheBinaryFormEvenMalformedUtf8) {
  Sample s;
  s.text = std::string("nul\0inside", 10) + "\xe2\x82\xac";
  EXPECT_EQ(throughJson(s).text, s.text);
  EXPECT_EQ(throughBinary(s).text, s.text);
  s.text = "\xff\xfe";
  EXPECT_EQ(throughBinary(s).text, s.text);
}

TEST(Persist, AnAbsentOptionalAndANullPointerAreNull) {
  Sample s;
  s.maybe.reset();
  s.child.reset();
  Sample const json = throughJson(s);
  Sample const binary = throughBinary(s);
  EXPECT_FALSE(json.maybe);
  EXPECT_FALSE(json.child);
  EXPECT_FALSE(binary.maybe);
  EXPECT_FALSE(binary.child);
  Json::Value const document = persist::JsonPersistWriter::writeDocument(s);
  EXPECT_TRUE(document["root"]["m_maybe"].isNull());
  EXPECT_TRUE(document["root"]["m_child"].isNull());
  EXPECT_TRUE(document["root"].isMember("m_child"));
}

TEST(Persist, AnOwnedPointerIsCreatedAsItsStoredClass) {
  Holder holder;
  auto derived = std::make_unique<Derived>();
  derived->own = 9;
  derived->number = 4;
  holder.held = std::move(derived);
  for (Holder const& read : {throughJson(holder), throughBinary(holder)}) {
    auto const* const d = dynamic_cast<Derived const*>(read.held.get());
    ASSERT_NE(d, nullptr);
    EXPECT_EQ(d->own, 9);
    EXPECT_EQ(d->number, 4);
  }
}

TEST(Persist, AFurtherClassScopeInOneObjectIsAnObjectOfItsOwn) {
  Holder holder;
  holder.held = std::make_unique<Derived>();
  Json::Value const document = persist::JsonPersistWriter::writeDocument(holder);
  Json::Value const& held = document["root"]["m_held"];
  EXPECT_EQ(held["@class"].asString(), "Derived");
  EXPECT_EQ(held["@version"].asInt(), 1);
  EXPECT_TRUE(held.isMember("m_own"));
  EXPECT_EQ(held["@Sample"]["@version"].asInt(), 2);
  EXPECT_TRUE(held["@Sample"].isMember("m_number"));
  EXPECT_FALSE(held.isMember("m_number"));
}

TEST(Persist, AWriterPassesEveryGate) {
  Sample s;
  s.added = 3;
  Json::Value const document = persist::JsonPersistWriter::writeDocument(s);
  EXPECT_EQ(document["root"]["@version"].asInt(), 2);
  EXPECT_EQ(document["root"]["m_added"].asInt(), 3);
}

TEST(Persist, AGateAboveTheStoredVersionCutsOffTheRestOfTheClass) {
  Sample s;
  s.number = 8;
  s.added = 3;
  Json::Value document = persist::JsonPersistWriter::writeDocument(s);
  document["root"]["@version"] = 1;
  document["root"].removeMember("m_added");
  Sample read;
  read.added = 12345;  // kept: a failed gate leaves plain values as they are
  persist::JsonPersistReader reader(document, mtkit_test::sampleDatabase());
  persist::serialize(reader, "root", read);
  reader.finish();
  EXPECT_EQ(read.number, 8);
  EXPECT_EQ(read.added, 12345);
  // Through the typed entry point, into a fresh object: the default.
  Sample fresh;
  persist::JsonPersistReader::readDocument(document, mtkit_test::sampleDatabase(), fresh);
  EXPECT_EQ(fresh.added, -1);
}

TEST(Persist, AnOldStreamThatHoldsAMemberBeyondItsVersionIsRefused) {
  Sample s;
  Json::Value document = persist::JsonPersistWriter::writeDocument(s);
  document["root"]["@version"] = 1;
  EXPECT_EQ(mtkit_test::jsonReadError<Sample>(persist::JsonPersistWriter::toText(document)),
            "persist JSON: at root: unexpected key 'm_added', which this layout does not have");
}

TEST(Persist, APassedGateCostsNothingInTheStream) {
  // Sample has one gate; its bytes are exactly its items, worked out here:
  // the object and class begin with the name, the values, the gate nothing.
  Sample s;
  std::string const bytes = persist::BinaryPersistWriter::write(s);
  std::string content;
  auto add = [&content](std::initializer_list<int> b) {
    for (int const c : b) content.push_back(static_cast<char>(c));
  };
  add({0x10, 0, 0, 6, 0, 'S', 'a', 'm', 'p', 'l', 'e'});   // object "Sample", name 0
  add({0x12, 0, 0, 2, 0, 0, 0});                          // class, name 0, version 2
  add({0x01});                                            // m_flag false
  add({0x03, 0, 0, 0, 0});                                // m_number 0
  add({0x04, 0, 0, 0, 0, 0, 0, 0, 0});                    // m_big 0
  add({0x05, 0, 0, 0, 0, 0, 0, 0, 0});                    // m_real 0.0
  add({0x06, 0, 0, 0, 0});                                // m_text ""
  add({0x00});                                            // m_maybe null
  add({0x14, 1, 0, 11, 0, 's', 't', 'd', ':', ':', 'v', 'e', 'c', 't', 'o', 'r'});  // compound, name 1
  add({0x04, 0, 0, 0, 0, 0, 0, 0, 0});                    // m_size 0
  add({0x16, 0, 0, 0, 0, 0, 0, 0, 0});                    // array of 0
  add({0x17, 0x15});                                      // end array, end compound
  add({0x00});                                            // m_child null
  add({0x03, 0xff, 0xff, 0xff, 0xff});                    // m_added -1
  add({0x13, 0x11});                                      // end class, end object
  ASSERT_EQ(bytes.size(), 20 + content.size());
  EXPECT_EQ(bytes.substr(20), content);
}

TEST(Persist, GatesStandInAClassScopeInAscendingOrderNoneAboveTheClassVersion) {
  mtkit_test::AssertRecorder asserts;
  persist::JsonPersistWriter writer;
  Other other;
  writer.beginObjectMember("root", Other::iceStaticClass);
  writer.beginClass(Other::iceStaticClass);
  EXPECT_TRUE(writer.versionGate(1));
  EXPECT_TRUE(asserts.takeTexts().empty());
  writer.versionGate(2);
  EXPECT_EQ(asserts.takeTexts(), std::vector<std::string>{"EXPECTS:version <= scope.persistClass->version()"});
  writer.versionGate(1);
  EXPECT_EQ(asserts.takeTexts(), std::vector<std::string>{"EXPECTS:version >= scope.lastGate"});
  writer.beginCompound("c", "m_c");
  writer.versionGate(1);
  EXPECT_EQ(asserts.takeTexts(),
            std::vector<std::string>{"EXPECTS:inClass && \"A version gate stands directly in a class scope.\""});
  writer.endCompound();
  writer.endClass();
  writer.endObjectMember();
  EXPECT_NO_THROW(writer.document());
}

TEST(Persist, APointerToTheWrongClassIsRefused) {
  Json::Value document = persist::JsonPersistWriter::writeDocument(*std::make_unique<Holder>());
  Json::Value other(Json::objectValue);
  other["@class"] = "Other";
  other["@version"] = 1;
  document["root"]["m_held"] = other;
  EXPECT_EQ(mtkit_test::jsonReadError<Holder>(persist::JsonPersistWriter::toText(document)),
            "persist JSON: at root.m_held: expected an object of class Sample, found class Other");
  document["root"]["m_held"]["@class"] = "Unknown";
  EXPECT_EQ(mtkit_test::jsonReadError<Holder>(persist::JsonPersistWriter::toText(document)),
            "persist JSON: at root.m_held: the class Unknown is not in the class database");
}

TEST(Persist, ANameTheDatabaseGivesAClassReadsAsThatClass) {
  persist::PersistClassDatabase database;
  database.add("Sample", Sample::iceStaticClass);
  database.add("OldSample", Sample::iceStaticClass);
  Holder holder;
  holder.held = std::make_unique<Sample>();
  holder.held->number = 6;
  Json::Value document = persist::JsonPersistWriter::writeDocument(holder);
  document["root"]["m_held"]["@class"] = "OldSample";
  Holder read;
  persist::JsonPersistReader::readDocument(document, database, read);
  ASSERT_TRUE(read.held);
  EXPECT_EQ(read.held->number, 6);
  // In place as well.
  Sample s;
  document = persist::JsonPersistWriter::writeDocument(s);
  document["root"]["@class"] = "OldSample";
  EXPECT_NO_THROW(persist::JsonPersistReader::readDocument(document, database, s));
}

TEST(Persist, AnArrayVisitedWithAnotherNumberOfElementsThanItsCountIsAnError) {
  persist::JsonPersistWriter writer;
  writer.beginObjectMember("root", Other::iceStaticClass);
  writer.beginClass(Other::iceStaticClass);
  writer.beginArray("m_a", 2);
  double d = 1.0;
  writer.value("item", d);
  EXPECT_EQ(mtkit_test::persistError([&] { writer.endArray(); }),
            "persist JSON: at root.m_a: the array holds 2 elements, but 1 were visited");
  persist::JsonPersistWriter second;
  second.beginObjectMember("root", Other::iceStaticClass);
  second.beginClass(Other::iceStaticClass);
  second.beginArray("m_a", 1);
  second.value("item", d);
  EXPECT_EQ(mtkit_test::persistError([&] { second.value("item", d); }),
            "persist JSON: at root.m_a: the array holds 1 elements; one more was visited");
}

TEST(Persist, AScopeLeftOpenOrClosedByTheWrongEndIsAnError) {
  persist::JsonPersistWriter writer;
  writer.beginObjectMember("root", Other::iceStaticClass);
  EXPECT_EQ(mtkit_test::persistError([&] { writer.document(); }),
            "persist JSON: at root: a scope that was begun has not ended");
  EXPECT_EQ(mtkit_test::persistError([&] { writer.endClass(); }),
            "persist JSON: at root: endClass() does not close the innermost open scope");
}

TEST(Persist, BoundedIntegersAreCheckedOnWritingAndOnReading) {
  persist::JsonPersistWriter writer;
  writer.beginObjectMember("root", Other::iceStaticClass);
  writer.beginClass(Other::iceStaticClass);
  int v = 5;
  EXPECT_EQ(mtkit_test::persistError([&] { writer.value("m_v", v, 1, 3, "Level"); }),
            "persist JSON: at root.m_v: cannot write 5: expected an integer of the enumeration Level from 1 to 3");
}
