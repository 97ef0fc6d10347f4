#include "nc/JsonPersistReader.h"

#include <gtest/gtest.h>

#include <string>

#include "support/PersistSamples.h"

using mtkit_test::jsonReadError;
using mtkit_test::Sample;

namespace {

/// A Sample's document with one member of the root replaced.
std::string withRootMember(char const* key, Json::Value const& value) {
  Sample s;
  Json::Value document = persist::JsonPersistWriter::writeDocument(s);
  document["root"][key] = value;
  return persist::JsonPersistWriter::toText(document);
}

std::string withoutRootMember(char const* key) {
  Sample s;
  Json::Value document = persist::JsonPersistWriter::writeDocument(s);
  document["root"].removeMember(key);
  return persist::JsonPersistWriter::toText(document);
}

}  // namespace

TEST(JsonPersistReader, TextThatIsNotOneJsonDocumentIsRefused) {
  EXPECT_EQ(jsonReadError<Sample>(""),
            "persist JSON: the text is not a JSON document: * Line 1, Column 1\n  Syntax error: value, object or array "
            "expected.\n* Line 1, Column 1\n  A valid JSON document must be either an array or an object value.");
  std::string const error = jsonReadError<Sample>("{\"format\": \"mtkit persist\"} {}");
  EXPECT_EQ(error.rfind("persist JSON: the text is not a JSON document: ", 0), 0u) << error;
}

TEST(JsonPersistReader, CommentsAndDuplicateKeysAreRefused) {
  EXPECT_NE(jsonReadError<Sample>("// note\n{}").find("the text is not a JSON document"), std::string::npos);
  std::string const duplicate = jsonReadError<Sample>("{\"format\": 1, \"format\": 2}");
  EXPECT_NE(duplicate.find("the text is not a JSON document"), std::string::npos) << duplicate;
  EXPECT_NE(duplicate.find("Duplicate key: 'format'"), std::string::npos) << duplicate;
}

TEST(JsonPersistReader, TheDocumentHeadIsChecked) {
  EXPECT_EQ(jsonReadError<Sample>("[]"), "persist JSON: expected a JSON object as the document, found an array of 0 elements");
  EXPECT_EQ(jsonReadError<Sample>("{}"), "persist JSON: expected the text \"mtkit persist\" under the key 'format', which is missing");
  EXPECT_EQ(jsonReadError<Sample>("{\"format\": \"other\", \"formatVersion\": 1}"),
            "persist JSON: expected the text \"mtkit persist\" under the key 'format', found the string \"other\"");
  EXPECT_EQ(jsonReadError<Sample>("{\"format\": \"mtkit persist\", \"formatVersion\": 2}"),
            "persist JSON: the document has format version 2, which is newer than this library reads (1)");
  EXPECT_EQ(jsonReadError<Sample>("{\"format\": \"mtkit persist\", \"formatVersion\": 0}"),
            "persist JSON: the document has format version 0, which does not exist");
  EXPECT_EQ(jsonReadError<Sample>("{\"format\": \"mtkit persist\", \"formatVersion\": \"1\"}"),
            "persist JSON: expected an integer under the key 'formatVersion', found the string \"1\"");
  EXPECT_EQ(jsonReadError<Sample>("{\"format\": \"mtkit persist\", \"formatVersion\": 1}"),
            "persist JSON: at root: expected an object of class Sample under the key 'root', which is missing");
}

TEST(JsonPersistReader, AKeyBesideTheRootIsRefused) {
  Sample s;
  Json::Value document = persist::JsonPersistWriter::writeDocument(s);
  document["comment"] = "hello";
  EXPECT_EQ(jsonReadError<Sample>(persist::JsonPersistWriter::toText(document)),
            "persist JSON: unexpected key 'comment', which this layout does not have");
}

TEST(JsonPersistReader, TheRootMustBeOfTheExpectedClass) {
  mtkit_test::Other other;
  EXPECT_EQ(jsonReadError<Sample>(persist::JsonPersistWriter::write(other)),
            "persist JSON: at root: expected an object of class Sample, found class Other");
  EXPECT_EQ(jsonReadError<Sample>("{\"format\": \"mtkit persist\", \"formatVersion\": 1, \"root\": 5}"),
            "persist JSON: at root: expected an object of class Sample, found the integer 5");
}

TEST(JsonPersistReader, AMissingMemberIsNamed) {
  EXPECT_EQ(jsonReadError<Sample>(withoutRootMember("m_real")),
            "persist JSON: at root.m_real: expected a number under the key 'm_real', which is missing");
  EXPECT_EQ(jsonReadError<Sample>(withoutRootMember("m_maybe")),
            "persist JSON: at root.m_maybe: expected a value or null under the key 'm_maybe', which is missing");
}

TEST(JsonPersistReader, EveryValueMustHaveItsKind) {
  EXPECT_EQ(jsonReadError<Sample>(withRootMember("m_flag", 1)),
            "persist JSON: at root.m_flag: expected a boolean, found the integer 1");
  EXPECT_EQ(jsonReadError<Sample>(withRootMember("m_number", 1.0)),
            "persist JSON: at root.m_number: expected a 32-bit integer, found the number 1.0");
  EXPECT_EQ(jsonReadError<Sample>(withRootMember("m_number", Json::Int64(1) << 31)),
            "persist JSON: at root.m_number: expected a 32-bit integer, found the integer 2147483648");
  EXPECT_EQ(jsonReadError<Sample>(withRootMember("m_big", -1)),
            "persist JSON: at root.m_big: expected an unsigned 64-bit integer, found the integer -1");
  EXPECT_EQ(jsonReadError<Sample>(withRootMember("m_real", "0.5")),
            "persist JSON: at root.m_real: expected a number, found the string \"0.5\"");
  EXPECT_EQ(jsonReadError<Sample>(withRootMember("m_text", Json::Value(Json::nullValue))),
            "persist JSON: at root.m_text: expected a string, found null");
  EXPECT_EQ(jsonReadError<Sample>(withRootMember("m_maybe", true)),
            "persist JSON: at root.m_maybe: expected a 32-bit integer, found true");
  EXPECT_EQ(jsonReadError<Sample>(withRootMember("m_child", Json::Value(Json::arrayValue))),
            "persist JSON: at root.m_child: expected an object or null, found an array of 0 elements");
}

TEST(JsonPersistReader, CompoundsAndArraysAreChecked) {
  Json::Value list(Json::objectValue);
  list["@type"] = "std::list";
  list["m_size"] = 0;
  list["m_array"] = Json::Value(Json::arrayValue);
  EXPECT_EQ(jsonReadError<Sample>(withRootMember("m_list", list)),
            "persist JSON: at root.m_list: expected the type std::vector under the key '@type', found the string "
            "\"std::list\"");
  list["@type"] = "std::vector";
  list["m_size"] = 2;
  list["m_array"].append(1.0);
  EXPECT_EQ(jsonReadError<Sample>(withRootMember("m_list", list)),
            "persist JSON: at root.m_list.m_array: expected an array of 2 elements (its count), found 1");
  list["m_size"] = 1;
  list["m_array"][0] = "one";
  EXPECT_EQ(jsonReadError<Sample>(withRootMember("m_list", list)),
            "persist JSON: at root.m_list.m_array[0]: expected a number, found the string \"one\"");
  list["m_array"][0] = 1.0;
  list["extra"] = 1;
  EXPECT_EQ(jsonReadError<Sample>(withRootMember("m_list", list)),
            "persist JSON: at root.m_list: unexpected key 'extra', which this layout does not have");
}

TEST(JsonPersistReader, TheClassVersionIsChecked) {
  EXPECT_EQ(jsonReadError<Sample>(withRootMember("@version", 3)),
            "persist JSON: at root: the class Sample is stored at version 3, which is newer than this library reads "
            "(up to 2)");
  EXPECT_EQ(jsonReadError<Sample>(withRootMember("@version", 0)),
            "persist JSON: at root: the class Sample is stored at version 0; versions count from 1");
  EXPECT_EQ(jsonReadError<Sample>(withRootMember("@version", "2")),
            "persist JSON: at root: expected an integer class version under the key '@version', found the string "
            "\"2\"");
}

TEST(JsonPersistReader, AFinishedReaderHasReadTheWholeDocument) {
  Sample s;
  Json::Value const document = persist::JsonPersistWriter::writeDocument(s);
  persist::JsonPersistReader reader(document, mtkit_test::sampleDatabase());
  Sample read;
  persist::serialize(reader, "root", read);
  EXPECT_NO_THROW(reader.finish());
}
