#include "util/utility/JsonUtils.h"

#include <gtest/gtest.h>
#include <json/reader.h>

#include <sstream>
#include <stdexcept>

using Orvo::JsonUtils;

namespace {
Json::Value parse(std::string const& text) {
  Json::Value v;
  std::istringstream in(text);
  Json::CharReaderBuilder b;
  std::string errs;
  EXPECT_TRUE(Json::parseFromStream(b, in, &v, &errs)) << errs;
  return v;
}
}  // namespace

TEST(JsonUtils, AreEqualWithinNumericTolerance) {
  EXPECT_TRUE(JsonUtils::areEqual(parse(R"({"a":[1,2.0000001],"b":"x"})"), parse(R"({"b":"x","a":[1,2]})"), 1e-6));
  EXPECT_FALSE(JsonUtils::areEqual(parse(R"({"a":[1,2.001]})"), parse(R"({"a":[1,2]})"), 1e-6));
}

TEST(JsonUtils, AreEqualRefusesMissingKeysAndKindChanges) {
  EXPECT_FALSE(JsonUtils::areEqual(parse(R"({"a":1})"), parse(R"({"a":1,"b":null})"), 1e-6));
  EXPECT_FALSE(JsonUtils::areEqual(parse(R"({"a":"1"})"), parse(R"({"a":1})"), 1e-6));
  EXPECT_FALSE(JsonUtils::areEqual(parse(R"([true])"), parse(R"([1])"), 1e-6));
}

TEST(JsonUtils, IsThreeDoubles) {
  EXPECT_TRUE(JsonUtils::isThreeDoubles(parse("[0, 1.5, -2]")));
  EXPECT_FALSE(JsonUtils::isThreeDoubles(parse("[0, 1]")));
  EXPECT_FALSE(JsonUtils::isThreeDoubles(parse("[0, 1, \"2\"]")));
  EXPECT_FALSE(JsonUtils::isThreeDoubles(parse("[0, 1, true]")));
  EXPECT_FALSE(JsonUtils::isThreeDoubles(parse("{}")));
}

TEST(JsonUtils, TypedReadsAreStrict) {
  EXPECT_EQ(JsonUtils::parseInt(parse("[7]")[0]), 7);
  EXPECT_EQ(JsonUtils::parseInt(parse("[7.0]")[0]), 7);
  EXPECT_THROW(JsonUtils::parseInt(parse("[7.5]")[0]), std::runtime_error);
  EXPECT_THROW(JsonUtils::parseInt(parse("[true]")[0]), std::runtime_error);
  EXPECT_THROW(JsonUtils::parseInt(parse("[\"7\"]")[0]), std::runtime_error);
  EXPECT_EQ(JsonUtils::parseDbl(parse("[2.5]")[0]), 2.5);
  EXPECT_THROW(JsonUtils::parseDbl(parse("[null]")[0]), std::runtime_error);
  EXPECT_EQ(JsonUtils::parseBool(parse("[true]")[0]), 1);
  EXPECT_EQ(JsonUtils::parseBool(parse("[0]")[0]), 0);
  EXPECT_NE(JsonUtils::parseBool(parse("[3]")[0]), 0);
  EXPECT_THROW(JsonUtils::parseBool(parse("[\"yes\"]")[0]), std::runtime_error);
  EXPECT_EQ(JsonUtils::parseStr(parse("[\"a\"]")[0]), "a");
  EXPECT_THROW(JsonUtils::parseStr(parse("[1]")[0]), std::runtime_error);
}

TEST(JsonUtils, VariantMappingRoundTrips) {
  Json::Value const v = parse(R"([null, true, 3, 2.5, "t\u00e9xt"])");
  for (Json::ArrayIndex i = 0; i < v.size(); ++i) {
    Orvo::Variant const var = JsonUtils::parseVariant(v[i]);
    EXPECT_TRUE(JsonUtils::areEqual(JsonUtils::variantToJson(var), v[i], 0.0)) << i;
    EXPECT_EQ(JsonUtils::variantToJson(var).type(), v[i].type()) << i;
  }
  EXPECT_EQ(JsonUtils::parseVariant(v[2]).type(), Orvo::Variant::Type::INT);
  EXPECT_EQ(JsonUtils::parseVariant(v[3]).type(), Orvo::Variant::Type::DOUBLE);
  EXPECT_THROW(JsonUtils::parseVariant(parse("[[1]]")[0]), std::runtime_error);
}

TEST(JsonUtils, ParseVariantOfAnArrayOrAnObjectThrowsExpectedAScalarValue) {
  for (char const* text : {"[[1]]", "[{\"a\": 1}]", "[[]]"}) {
    try {
      JsonUtils::parseVariant(parse(text)[0]);
      ADD_FAILURE() << text << " did not throw";
    } catch (std::runtime_error const& e) {
      EXPECT_STREQ(e.what(), "Expected a scalar value.") << text;
    }
  }
}

TEST(JsonUtils, ParseReadsADocumentFromAStreamAndFromARange) {
  std::istringstream in(R"({"a": [1, 2.5], "b": "x"})");
  Json::Value root;
  std::string errors;
  ASSERT_TRUE(JsonUtils::parse(in, root, errors)) << errors;
  EXPECT_EQ(root["a"][1].asDouble(), 2.5);
  EXPECT_EQ(root["b"].asString(), "x");
  EXPECT_EQ(errors, "");
  std::string const text = R"([true, null])";
  Json::Value array;
  ASSERT_TRUE(JsonUtils::parse(text.data(), text.data() + text.size(), array, errors)) << errors;
  ASSERT_EQ(array.size(), 2u);
  EXPECT_TRUE(array[0].asBool());
  EXPECT_TRUE(array[1].isNull());
}

TEST(JsonUtils, ParseOfTextThatIsNotJsonIsFalseWithTheParsersError) {
  std::istringstream in("{\"a\": }");
  Json::Value root;
  std::string errors;
  EXPECT_FALSE(JsonUtils::parse(in, root, errors));
  // jsoncpp names the place: "* Line 1, Column 7".
  EXPECT_NE(errors.find("Line 1, Column 7"), std::string::npos) << errors;
  std::string const text = "[1,";
  EXPECT_FALSE(JsonUtils::parse(text.data(), text.data() + text.size(), root, errors));
  EXPECT_NE(errors.find("Line 1"), std::string::npos) << errors;
}

TEST(JsonUtils, ParseOfADocumentNestedBeyond1000LevelsFailsInsteadOfExhaustingTheStack) {
  // 1000 levels are the limit; 1001 are one too many. jsoncpp reports that
  // by its own exception or as a parse error, depending on where it notices.
  auto const nested = [](int depth) { return std::string(static_cast<std::size_t>(depth), '[') +
                                             std::string(static_cast<std::size_t>(depth), ']'); };
  auto const parses = [](std::string const& text) {
    Json::Value root;
    std::string errors;
    try {
      return JsonUtils::parse(text.data(), text.data() + text.size(), root, errors);
    } catch (std::exception const&) {
      return false;
    }
  };
  EXPECT_TRUE(parses(nested(999)));
  EXPECT_FALSE(parses(nested(1001)));
  EXPECT_FALSE(parses(nested(100000)));
}
