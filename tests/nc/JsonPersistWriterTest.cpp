#include "nc/JsonPersistWriter.h"

#include <gtest/gtest.h>

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

TEST(JsonPersistWriter, TextIsTabIndentedWithSortedKeysAndSpecialFloatsByName) {
  mtkit_test::Other other;
  EXPECT_EQ(persist::JsonPersistWriter::write(other),
            "{\n"
            "\t\"format\" : \"mtkit persist\",\n"
            "\t\"formatVersion\" : 1,\n"
            "\t\"root\" : \n"
            "\t{\n"
            "\t\t\"@class\" : \"Other\",\n"
            "\t\t\"@version\" : 1\n"
            "\t}\n"
            "}\n");
  Sample s;
  s.list = {std::numeric_limits<double>::quiet_NaN(), -std::numeric_limits<double>::infinity(), 0.1};
  std::string const text = persist::JsonPersistWriter::write(s);
  EXPECT_NE(text.find("[ NaN, -Infinity, 0.10000000000000001 ]"), std::string::npos) << text;
}

TEST(JsonPersistWriter, NonAsciiTextIsWrittenAsUtf8) {
  Sample s;
  s.text = "\xc3\x84";
  EXPECT_NE(persist::JsonPersistWriter::write(s).find("\"m_text\" : \"\xc3\x84\""), std::string::npos);
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
