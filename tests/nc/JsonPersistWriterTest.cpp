#include "nc/JsonPersistWriter.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>

#include "support/PersistSamples.h"

using mtkit_test::Sample;

TEST(JsonPersistWriter, TheDocumentHasItsHeadAndTheRoot) {
  Sample s;
  Json::Value const document = persist::JsonPersistWriter::writeDocument(s);
  EXPECT_EQ(document.size(), 3u);
  EXPECT_EQ(document["format"].asString(), "mtkit persist");
  EXPECT_EQ(document["formatVersion"].asInt(), 1);
  EXPECT_EQ(document["root"]["@class"].asString(), "Sample");
  EXPECT_EQ(document["root"]["@version"].asInt(), 2);
}

TEST(JsonPersistWriter, MembersMapOntoJsonAsTheFormSays) {
  Sample s = mtkit_test::fullSample();
  Json::Value const root = persist::JsonPersistWriter::writeDocument(s)["root"];
  EXPECT_TRUE(root["m_flag"].isBool());
  EXPECT_EQ(root["m_number"].asInt(), -123456);
  EXPECT_EQ(root["m_big"].asUInt64(), 18446744073709551615ull);
  EXPECT_EQ(root["m_real"].asDouble(), 0.1);
  EXPECT_EQ(root["m_maybe"].asInt(), 42);
  EXPECT_EQ(root["m_list"]["@type"].asString(), "std::vector");
  EXPECT_EQ(root["m_list"]["m_size"].asUInt64(), 3u);
  EXPECT_EQ(root["m_list"]["m_array"].size(), 3u);
  EXPECT_EQ(root["m_list"]["m_array"][1].asDouble(), -2.25);
  EXPECT_EQ(root["m_child"]["@class"].asString(), "Sample");
  EXPECT_EQ(root["m_child"]["m_text"].asString(), "child");
  EXPECT_EQ(root["m_added"].asInt(), 77);
}

TEST(JsonPersistWriter, TextListsMembersInLayoutOrderOneToALineIndentedWithTabs) {
  mtkit_test::Other other;
  EXPECT_EQ(persist::JsonPersistWriter::write(other),
            "{\n"
            "\t\"format\": \"mtkit persist\",\n"
            "\t\"formatVersion\": 1,\n"
            "\t\"root\": {\n"
            "\t\t\"@class\": \"Other\",\n"
            "\t\t\"@version\": 1\n"
            "\t}\n"
            "}\n");
  Sample s;
  s.list = {std::numeric_limits<double>::quiet_NaN(), -std::numeric_limits<double>::infinity(), 0.1};
  EXPECT_EQ(persist::JsonPersistWriter::write(s),
            "{\n"
            "\t\"format\": \"mtkit persist\",\n"
            "\t\"formatVersion\": 1,\n"
            "\t\"root\": {\n"
            "\t\t\"@class\": \"Sample\",\n"
            "\t\t\"@version\": 2,\n"
            "\t\t\"m_flag\": false,\n"
            "\t\t\"m_number\": 0,\n"
            "\t\t\"m_big\": 0,\n"
            "\t\t\"m_real\": 0.0,\n"
            "\t\t\"m_text\": \"\",\n"
            "\t\t\"m_maybe\": null,\n"
            "\t\t\"m_list\": {\n"
            "\t\t\t\"@type\": \"std::vector\",\n"
            "\t\t\t\"m_size\": 3,\n"
            "\t\t\t\"m_array\": [ NaN, -Infinity, 0.1 ]\n"
            "\t\t},\n"
            "\t\t\"m_child\": null,\n"
            "\t\t\"m_added\": -1\n"
            "\t}\n"
            "}\n");
}

TEST(JsonPersistWriter, DoublesTakeTheirShortestExactFormWithAPoint) {
  Sample s;
  s.list = {300.0, -0.0, 1e300, 5e-324, 0.30000000000000004};
  std::string const text = persist::JsonPersistWriter::write(s);
  EXPECT_NE(text.find("[ 300.0, -0.0, 1e+300, 5e-324, 0.30000000000000004 ]"), std::string::npos) << text;
  // Whichever is shorter, digits or an exponent: the double nearest to
  // 1.2345678901234568e20 is exactly 123456789012345683968, one character
  // shorter than "1.2345678901234568e+20".
  s.list = {1.2345678901234568e20};
  EXPECT_NE(persist::JsonPersistWriter::write(s).find("[ 123456789012345683968.0 ]"), std::string::npos);
}

TEST(JsonPersistWriter, AnArrayThatDoesNotFitOnALineHasOneElementALine) {
  Sample s;
  s.list = {1.5, 2.5, 3.5, 4.5, 5.5, 6.5, 7.5, 8.5, 9.5, 10.5, 11.5, 12.5, 13.5, 14.5};
  std::string const text = persist::JsonPersistWriter::write(s);
  EXPECT_NE(text.find("\"m_array\": [\n\t\t\t\t1.5,\n\t\t\t\t2.5,\n"), std::string::npos) << text;
  EXPECT_NE(text.find("\t\t\t\t14.5\n\t\t\t]\n"), std::string::npos) << text;
  // Thirteen fit: "[ " and " ]" and twelve ", " around 13 three-digit and
  // four-digit numbers make 72 characters.
  s.list.pop_back();
  EXPECT_NE(persist::JsonPersistWriter::write(s).find(
                "[ 1.5, 2.5, 3.5, 4.5, 5.5, 6.5, 7.5, 8.5, 9.5, 10.5, 11.5, 12.5, 13.5 ]"),
            std::string::npos);
}

TEST(JsonPersistWriter, StringsAreEscapedAsJsonWantsAndOtherwiseWrittenAsUtf8) {
  Sample s;
  s.text = std::string("\xc3\x84 \"q\" \\ \t\n\x01", 12) + std::string(1, '\0');
  std::string const text = persist::JsonPersistWriter::write(s);
  EXPECT_NE(text.find("\"m_text\": \"\xc3\x84 \\\"q\\\" \\\\ \\t\\n\\u0001\\u0000\""), std::string::npos) << text;
  EXPECT_EQ(mtkit_test::throughJson(s).text, s.text);
}

TEST(JsonPersistWriter, AStringThatIsNotUtf8IsRefused) {
  for (char const* bad : {"\xff", "\xc3", "\xc0\x80", "\xed\xa0\x80", "\xf4\x90\x80\x80"}) {
    Sample s;
    s.text = bad;
    EXPECT_EQ(mtkit_test::persistError([&] { persist::JsonPersistWriter::write(s); }),
              "persist JSON: at root.m_text: the string is not valid UTF-8, which the JSON form cannot hold")
        << bad;
  }
}
