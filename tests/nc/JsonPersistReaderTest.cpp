#include "nc/JsonPersistReader.h"

#include <gtest/gtest.h>

#include <string>

#include "support/PersistSamples.h"

using mtkit_test::jsonReadError;
using mtkit_test::persistError;
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
            "persist JSON: the text is not a JSON document: the text holds no value (line 1, column 1)");
  EXPECT_EQ(jsonReadError<Sample>("{\"format\": \"mtkit persist\"} {}"),
            "persist JSON: the text is not a JSON document: more follows the document (line 1, column 29)");
  EXPECT_EQ(jsonReadError<Sample>("{\"format\": [1, 2}"),
            "persist JSON: the text is not a JSON document: expected ']' (line 1, column 17)");
  // What jsoncpp finds wrong it tells, with lines and columns of the text.
  EXPECT_EQ(jsonReadError<Sample>("{\n\"format\": tru\n}"),
            "persist JSON: the text is not a JSON document: * Line 2, Column 11\n  Syntax error: value, object or "
            "array expected.");
  EXPECT_EQ(persistError([] { persist::JsonPersistReader::parse("[1] 2"); }),
            "persist JSON: the text is not a JSON document: * Line 1, Column 5\n  Extra non-whitespace after JSON "
            "value.");
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
  // Above the signed 64-bit range: jsoncpp holds it unsigned and refuses
  // to read it as signed, which must not escape as a jsoncpp exception.
  EXPECT_EQ(jsonReadError<Sample>("{\"format\": \"mtkit persist\", \"formatVersion\": 18446744073709551615}"),
            "persist JSON: the document has format version 18446744073709551615, which is newer than this library "
            "reads (1)");
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
  EXPECT_EQ(jsonReadError<Sample>(withRootMember("@version", Json::Value(Json::UInt64{18446744073709551615u}))),
            "persist JSON: at root: the class Sample is stored at version 2147483647, which is newer than this library "
            "reads (up to 2)");
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

// Text of 64 KiB and more is scanned, and its parts are parsed as they are
// read; the same document reads the same, and fails the same, either way.

namespace {

/// A Sample whose list makes its text about 300 KB long.
Sample largeSample() {
  Sample s = mtkit_test::fullSample();
  s.list.clear();
  for (int i = 0; i < 20000; ++i) s.list.push_back(i * 0.125 - 7.0);
  return s;
}

/// The text of a large Sample with `from` replaced by `to` once.
std::string largeWith(std::string const& from, std::string const& to) {
  Sample s = largeSample();
  std::string text = persist::JsonPersistWriter::write(s);
  std::size_t const at = text.find(from);
  EXPECT_NE(at, std::string::npos) << from;
  if (at != std::string::npos) text.replace(at, from.size(), to);
  return text;
}

/// The errors of reading `text` as text and as a parsed document agree.
std::string sameErrorBothWays(std::string const& text) {
  std::string const fromText = jsonReadError<Sample>(text);
  Sample target;
  std::string const fromTree = persistError([&] {
    persist::JsonPersistReader::readDocument(persist::JsonPersistReader::parse(text), mtkit_test::sampleDatabase(),
                                             target);
  });
  EXPECT_EQ(fromText, fromTree);
  return fromText;
}

}  // namespace

TEST(JsonPersistReader, ALargeDocumentReadsAsItsTreeDoes) {
  Sample s = largeSample();
  std::string const text = persist::JsonPersistWriter::write(s);
  ASSERT_GT(text.size(), 200000u);
  Sample fromText;
  persist::JsonPersistReader::read(text, mtkit_test::sampleDatabase(), fromText);
  EXPECT_TRUE(fromText == largeSample());
  // In jsoncpp's own layout, keys sorted and numbers in 17 digits.
  Sample fromJsoncppLayout;
  persist::JsonPersistReader::read(persist::JsonPersistWriter::toText(persist::JsonPersistReader::parse(text)),
                                   mtkit_test::sampleDatabase(), fromJsoncppLayout);
  EXPECT_TRUE(fromJsoncppLayout == largeSample());
}

TEST(JsonPersistReader, ALargeDocumentFailsAsItsTreeDoes) {
  EXPECT_EQ(sameErrorBothWays(largeWith("\"m_number\": -123456", "\"m_number\": \"x\"")),
            "persist JSON: at root.m_number: expected a 32-bit integer, found the string \"x\"");
  EXPECT_EQ(sameErrorBothWays(largeWith("\"m_added\": 77", "\"m_added\": 77, \"m_extra\": 1")),
            "persist JSON: at root: unexpected key 'm_extra', which this layout does not have");
  // Text is counted as it is read: the missing element is the one named.
  std::string const oneShort = largeWith("\"m_size\": 20000", "\"m_size\": 20001");
  EXPECT_EQ(jsonReadError<Sample>(oneShort),
            "persist JSON: at root.m_list.m_array[20000]: expected an array of 20001 elements (its count), found 20000");
  Sample target;
  EXPECT_EQ(persistError([&] {
              persist::JsonPersistReader::readDocument(persist::JsonPersistReader::parse(oneShort),
                                                       mtkit_test::sampleDatabase(), target);
            }),
            "persist JSON: at root.m_list.m_array: expected an array of 20001 elements (its count), found 20000");
  EXPECT_EQ(sameErrorBothWays(largeWith("\"m_size\": 20000", "\"m_size\": 19999")),
            "persist JSON: at root.m_list.m_array: expected an array of 19999 elements (its count), found 20000");
  EXPECT_EQ(sameErrorBothWays(largeWith("\t\t\t\t0.0,", "\t\t\t\tfalse,")),
            "persist JSON: at root.m_list.m_array[56]: expected a number, found false");
  EXPECT_EQ(sameErrorBothWays(largeWith("\"@version\": 2", "\"@version\": 3")),
            "persist JSON: at root: the class Sample is stored at version 3, which is newer than this library reads "
            "(up to 2)");
}

TEST(JsonPersistReader, ALargeDocumentWithBrokenTextIsRefusedWithItsPlace) {
  // The list's numbers stand one to a line from line 17 on.
  EXPECT_EQ(jsonReadError<Sample>(largeWith("\t\t\t\t-6.875,", "\t\t\t\t-6.875,,")),
            "persist JSON: at root.m_list.m_array[2]: the text is not a JSON document: expected a value (line 18, "
            "column 12)");
  EXPECT_EQ(jsonReadError<Sample>(largeWith("\t\t\t\t2492.875\n", "\t\t\t\t2492.875,\n")),
            "persist JSON: at root.m_list.m_array[19999]: the text is not a JSON document: expected a value after ',' "
            "(line 20017, column 4)");
  EXPECT_EQ(jsonReadError<Sample>(largeWith("\"m_added\": 77", "\"m_added\": 77, \"m_added\": 78")),
            "persist JSON: at root: the text is not a JSON document: duplicate key 'm_added' (line 4, column 10)");
  EXPECT_EQ(jsonReadError<Sample>(largeWith("\"m_flag\": true", "\"m_flag\": tru")),
            "persist JSON: at root.m_flag: the text is not a JSON document: * Line 7, Column 13\n  Syntax error: "
            "value, object or array expected.\n* Line 7, Column 14\n  Extra non-whitespace after JSON value.");
  EXPECT_EQ(jsonReadError<Sample>(largeWith("\"m_child\": {", "\"m_child\": {\n// note\n")),
            "persist JSON: at root.m_child: the text is not a JSON document: a comment, which JSON does not allow "
            "(line 20020, column 1)");
}

TEST(JsonPersistReader, AStringThatIsNotUtf8IsRefused) {
  Sample s;
  s.text = "placeholder";
  std::string text = persist::JsonPersistWriter::write(s);
  text.replace(text.find("placeholder"), 11, "\xff\xfe");
  EXPECT_EQ(jsonReadError<Sample>(text), "persist JSON: at root.m_text: expected a string, found one that is not valid UTF-8");
}

TEST(JsonPersistReader, TextThatEndsWhereTheScannerLooksForMoreIsRefused) {
  // Found by the fuzzer: a root that is an array of junk, whose elements,
  // counted for the message, run to the end of the text.
  EXPECT_EQ(jsonReadError<Sample>("[;\",\"]\""),
            "persist JSON: the text is not a JSON document: expected ',' or ']' (line 1, column 8)");
  EXPECT_EQ(jsonReadError<Sample>("{\"format\": \"mtkit persist\","),
            "persist JSON: the text is not a JSON document: expected '}', found the end of the text (line 1, column "
            "28)");
}

TEST(JsonPersistReader, ShortTextScannedAsLongTextIsReadTheSame) {
  // Every value scanned for its members or elements rather than parsed whole.
  for (std::size_t const below : {std::size_t(1), std::size_t(40), std::size_t(300)}) {
    Sample s = mtkit_test::fullSample();
    std::string const text = persist::JsonPersistWriter::write(s);
    persist::JsonPersistReader reader(text, mtkit_test::sampleDatabase(), below);
    Sample read;
    persist::serialize(reader, "root", read);
    reader.finish();
    EXPECT_TRUE(read == mtkit_test::fullSample()) << below;
  }
  std::string const broken = "{\"format\": \"mtkit persist\", \"formatVersion\": 1, \"root\": {\"@class\": 5}}";
  Sample target;
  EXPECT_EQ(persistError([&] {
              persist::JsonPersistReader reader(broken, mtkit_test::sampleDatabase(), 1);
              persist::serialize(reader, "root", target);
            }),
            "persist JSON: at root: expected a class name under the key '@class', found the integer 5");
  EXPECT_EQ(persistError([&] { persist::JsonPersistReader reader("{\"format\": nul}", mtkit_test::sampleDatabase(), 1); }),
            "persist JSON: the text is not a JSON document: * Line 1, Column 12\n  Syntax error: value, object or "
            "array expected.\n* Line 1, Column 13\n  Extra non-whitespace after JSON value.");
}

TEST(JsonPersistReader, ANulByteAfterANumberIsRefusedBothWays) {
  // Found by the fuzzer: jsoncpp takes a NUL byte for the end of its input,
  // so a number scanned alone ("1" and NULs up to the next comma) read as 1
  // while the whole document, parsed at once, was refused.
  std::string const text = std::string("{\"format\": \"mtkit persist\", \"formatVersion\": 1") +
                           std::string(3, '\0') + ", \"root\": {}}";
  EXPECT_NE(jsonReadError<Sample>(text), "");
  EXPECT_EQ(persistError([&] {
              persist::JsonPersistReader reader(text, mtkit_test::sampleDatabase(), 1);
              Sample scanned;
              persist::serialize(reader, "root", scanned);
            }),
            "persist JSON: at root: the text is not a JSON document: expected ',' or '}' (line 1, column 47)");
}
