#include "util/utility/JsonUtils.h"

#include <json/reader.h>

#include <cmath>
#include <istream>
#include <memory>
#include <stdexcept>

namespace Orvo {

namespace {
// Default settings, with the nesting limit spelled out: a hostile file must
// fail with the parser's error, not exhaust the stack.
Json::CharReaderBuilder readerBuilder() {
  Json::CharReaderBuilder builder;
  builder["stackLimit"] = JsonUtils::kNestingLimit;
  return builder;
}
}  // namespace

bool JsonUtils::parse(std::istream& in, Json::Value& root, std::string& errors) {
  return Json::parseFromStream(readerBuilder(), in, &root, &errors);
}

bool JsonUtils::parse(char const* begin, char const* end, Json::Value& root, std::string& errors) {
  std::unique_ptr<Json::CharReader> const reader(readerBuilder().newCharReader());
  return reader->parse(begin, end, &root, &errors);
}

bool JsonUtils::areEqual(Json::Value const& a, Json::Value const& b, double tolerance) {
  bool const aNumber = a.isNumeric() && !a.isBool();
  bool const bNumber = b.isNumeric() && !b.isBool();
  if (aNumber || bNumber) {
    if (!(aNumber && bNumber)) return false;
    if (a.isIntegral() && b.isIntegral()) {
      if (a.isUInt64() && b.isUInt64()) {
        auto const x = a.asUInt64(), y = b.asUInt64();
        return static_cast<double>(x > y ? x - y : y - x) <= tolerance;
      }
      if (a.isInt64() && b.isInt64()) {
        auto const x = a.asInt64(), y = b.asInt64();
        return std::fabs(static_cast<double>(x) - static_cast<double>(y)) <= tolerance;
      }
    }
    double const x = a.asDouble(), y = b.asDouble();
    if (x == y) return true;  // also equal infinities
    return std::fabs(x - y) <= tolerance;
  }
  if (a.type() != b.type()) return false;
  switch (a.type()) {
    case Json::nullValue: return true;
    case Json::booleanValue: return a.asBool() == b.asBool();
    case Json::stringValue: return a.asString() == b.asString();
    case Json::arrayValue: {
      if (a.size() != b.size()) return false;
      for (Json::ArrayIndex i = 0; i < a.size(); ++i)
        if (!areEqual(a[i], b[i], tolerance)) return false;
      return true;
    }
    case Json::objectValue: {
      if (a.size() != b.size()) return false;
      for (auto it = a.begin(); it != a.end(); ++it) {
        // name() returns by value: keep it, or the two pointers come from different temporaries.
        std::string const name = it.name();
        Json::Value const* other = b.find(name.data(), name.data() + name.size());
        if (!other || !areEqual(*it, *other, tolerance)) return false;
      }
      return true;
    }
    default: return false;
  }
}

bool JsonUtils::isThreeDoubles(Json::Value const& value) {
  if (!value.isArray() || value.size() != 3) return false;
  for (Json::ArrayIndex i = 0; i < 3; ++i)
    if (!value[i].isNumeric() || value[i].isBool()) return false;
  return true;
}

bool JsonUtils::getThreeDoubles(Json::Value const& value, double (&out)[3]) {
  if (!value.isArray() || value.size() != 3) return false;
  // An array's elements sit in a map from index to value: walking it once
  // is cheaper than three lookups for the check and three for the numbers.
  double numbers[3];
  std::size_t i = 0;
  for (auto it = value.begin(); it != value.end(); ++it, ++i) {
    if (!it->isNumeric() || it->isBool()) return false;
    numbers[i] = it->asDouble();
  }
  for (i = 0; i < 3; ++i) out[i] = numbers[i];
  return true;
}

int JsonUtils::parseInt(Json::Value const& value) {
  if (value.isBool() || !value.isInt()) throw std::runtime_error("Expected an integer.");
  return value.asInt();
}

double JsonUtils::parseDbl(Json::Value const& value) {
  if (value.isBool() || !value.isNumeric()) throw std::runtime_error("Expected a number.");
  return value.asDouble();
}

int JsonUtils::parseBool(Json::Value const& value) {
  if (value.isBool()) return value.asBool() ? 1 : 0;
  if (value.isInt()) return value.asInt();
  throw std::runtime_error("Expected a boolean.");
}

std::string JsonUtils::parseStr(Json::Value const& value) {
  if (!value.isString()) throw std::runtime_error("Expected a string.");
  return value.asString();
}

Variant JsonUtils::parseVariant(Json::Value const& value) {
  switch (value.type()) {
    case Json::nullValue: return Variant();
    case Json::booleanValue: return Variant(value.asBool());
    case Json::intValue: return Variant(static_cast<long long>(value.asInt64()));
    case Json::uintValue:
      if (value.isInt64()) return Variant(static_cast<long long>(value.asInt64()));
      return Variant(value.asDouble());
    case Json::realValue: return Variant(value.asDouble());
    case Json::stringValue: return Variant(value.asString());
    default: throw std::runtime_error("Expected a scalar value.");
  }
}

Json::Value JsonUtils::variantToJson(Variant const& value) {
  switch (value.type()) {
    case Variant::Type::EMPTY: return Json::Value();
    case Variant::Type::BOOL: return Json::Value(value.asBool());
    case Variant::Type::INT: return Json::Value(static_cast<Json::Int64>(value.asInt()));
    case Variant::Type::DOUBLE: return Json::Value(value.asDouble());
    case Variant::Type::STRING: return Json::Value(value.getAsUtf8());
  }
  return Json::Value();
}

}  // namespace Orvo
