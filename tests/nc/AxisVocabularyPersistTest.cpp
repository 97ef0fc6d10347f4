// The persisted forms of the axis vocabulary.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "nc/AxisOrdering.h"
#include "nc/AxisValue.h"
#include "nc/AxisValues.h"
#include "nc/MotionContext.h"
#include "support/AssertRecorder.h"
#include "support/PersistSupport.h"
#include "support/PersistSamples.h"

using mtkit_test::makeContext;
using mtkit_test::makeOrdering;
using mtkit_test::motionDatabase;

namespace {

template <class T>
T throughBoth(T& object) {
  T json;
  persist::JsonPersistReader::read(persist::JsonPersistWriter::write(object), motionDatabase(), json);
  T binary;
  persist::BinaryPersistReader::read(persist::BinaryPersistWriter::write(object), motionDatabase(), binary);
  EXPECT_TRUE(json == binary);
  return json;
}

}  // namespace

TEST(AxisValue, PersistsItsNumberAsMValue) {
  Orvo::AxisValue value(-12.75);
  EXPECT_STREQ(Orvo::AxisValue::iceStaticClass.name(), "AxisValue");
  Json::Value const root = persist::JsonPersistWriter::writeDocument(value)["root"];
  EXPECT_EQ(root["@class"].asString(), "AxisValue");
  EXPECT_EQ(root["m_value"].asDouble(), -12.75);
  EXPECT_EQ(throughBoth(value), Orvo::AxisValue(-12.75));
}

TEST(AxisValues, PersistTheirNumbersAsAVectorOfDoubles) {
  Orvo::AxisValues values(std::vector<Orvo::AxisValue>{1.0, -2.5, 1e-9});
  Json::Value const root = persist::JsonPersistWriter::writeDocument(values)["root"];
  EXPECT_EQ(root["m_values"]["@type"].asString(), "std::vector");
  EXPECT_EQ(root["m_values"]["m_size"].asUInt64(), 3u);
  EXPECT_EQ(root["m_values"]["m_array"][1].asDouble(), -2.5);
  EXPECT_EQ(throughBoth(values), values);
  Orvo::AxisValues empty;
  EXPECT_EQ(throughBoth(empty), Orvo::AxisValues());
}

TEST(AxisValues, MovesStayMoves) {
  EXPECT_TRUE(std::is_nothrow_move_constructible<Orvo::AxisValues>::value);
  EXPECT_TRUE(std::is_nothrow_move_assignable<Orvo::AxisValues>::value);
  EXPECT_TRUE(std::is_nothrow_move_constructible<Orvo::MotionContext>::value);
}

TEST(AxisOrdering, PersistsItsEntriesAsAxisInfoCompounds) {
  Orvo::AxisOrdering ordering = makeOrdering({{"x_slide", "X"}, {"", ""}, {"c", "C"}});
  Json::Value const root = persist::JsonPersistWriter::writeDocument(ordering)["root"];
  EXPECT_EQ(root["m_entries"]["m_array"][0]["@type"].asString(), "AxisInfo");
  EXPECT_EQ(root["m_entries"]["m_array"][0]["m_partId"].asString(), "x_slide");
  EXPECT_EQ(root["m_entries"]["m_array"][2]["m_axisName"].asString(), "C");
  EXPECT_EQ(throughBoth(ordering), ordering);
}

TEST(AxisOrdering, SerializeVersionedMembersWritesAnObjectMemberAndAssertsItsVersion) {
  mtkit_test::AssertRecorder asserts;
  Orvo::AxisOrdering ordering = makeOrdering({{"x", "X"}});
  persist::JsonPersistWriter writer;
  ordering.serializeVersionedMembers(writer, "m_axisOrdering", 1);
  EXPECT_TRUE(asserts.takeTexts().empty());
  Json::Value const document = writer.document();
  EXPECT_EQ(document["m_axisOrdering"]["@class"].asString(), "AxisOrdering");
  EXPECT_EQ(document["m_axisOrdering"]["@version"].asInt(), 1);
  persist::JsonPersistWriter other;
  ordering.serializeVersionedMembers(other, "a", 0);
  ordering.serializeVersionedMembers(other, "b", 2);
  EXPECT_EQ(asserts.takeTexts(),
            (std::vector<std::string>{"EXPECTS:version > 0", "EXPECTS:version <= iceStaticClass.version()"}));
}

TEST(MotionContext, PersistsItsIdentifiersOffsetAndPatterns) {
  Orvo::MotionContext context = makeContext(1, 2, 3, 54, {{7, 2}, {8, 0}});
  Json::Value const root = persist::JsonPersistWriter::writeDocument(context)["root"];
  EXPECT_EQ(root["m_machineId"].asInt(), 1);
  EXPECT_EQ(root["m_toolpathId"].asInt(), 3);
  EXPECT_EQ(root["m_workOffset"].asInt(), 54);
  EXPECT_EQ(root["m_patterns"]["m_array"][0]["@type"].asString(), "MotionContext::PatternLevel");
  EXPECT_EQ(root["m_patterns"]["m_array"][0]["patternId"].asInt(), 7);
  EXPECT_EQ(root["m_patterns"]["m_array"][0]["instance"].asInt(), 2);
  EXPECT_EQ(throughBoth(context), context);
  Orvo::MotionContext unset;
  Json::Value const none = persist::JsonPersistWriter::writeDocument(unset)["root"];
  EXPECT_TRUE(none["m_machineId"].isNull());
  EXPECT_EQ(throughBoth(unset), Orvo::MotionContext());
}

TEST(MotionContext, SerializeVersionedMembersAssertsItsVersion) {
  mtkit_test::AssertRecorder asserts;
  Orvo::MotionContext context;
  persist::JsonPersistWriter writer;
  context.serializeVersionedMembers(writer, "a", 2);
  EXPECT_EQ(asserts.takeTexts(), std::vector<std::string>{"EXPECTS:version <= iceStaticClass.version()"});
}
