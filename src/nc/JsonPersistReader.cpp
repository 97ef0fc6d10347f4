#include "nc/JsonPersistReader.h"

#include <json/reader.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstring>
#include <memory>

#include "nc/JsonPersistWriter.h"
#include "nc/PersistError.h"

namespace persist {

namespace {

/// A short account of a JSON value for messages.
std::string describe(Json::Value const& v) {
  switch (v.type()) {
    case Json::nullValue: return "null";
    case Json::booleanValue: return v.asBool() ? "true" : "false";
    case Json::intValue: return "the integer " + std::to_string(v.asLargestInt());
    case Json::uintValue: return "the integer " + std::to_string(v.asLargestUInt());
    case Json::realValue: {
      std::string text = Json::Value(v.asDouble()).toStyledString();
      while (!text.empty() && (text.back() == '\n' || text.back() == ' ')) text.pop_back();
      return "the number " + text;
    }
    case Json::stringValue: {
      std::string const s = v.asString();
      return s.size() <= 40 ? "the string \"" + s + "\"" : "a string of " + std::to_string(s.size()) + " bytes";
    }
    case Json::arrayValue: return "an array of " + std::to_string(v.size()) + " elements";
    case Json::objectValue: return "an object";
  }
  return "an unknown value";
}

}  // namespace

JsonPersistReader::JsonPersistReader(Json::Value const& document, PersistClassDatabase const& database)
    : Persist(true), m_document(document), m_database(database) {
  if (!document.isObject()) failFound("a JSON object as the document", document);
  push(document, false, false);
  Json::Value const& format = member(document, "format", "the text \"mtkit persist\"");
  if (!format.isString() || format.asString() != JsonPersistWriter::kFormat)
    fail("expected the text \"mtkit persist\" under the key 'format', found " + describe(format));
  Json::Value const& version = member(document, "formatVersion", "the format version");
  if (version.type() != Json::intValue && version.type() != Json::uintValue)
    fail("expected an integer under the key 'formatVersion', found " + describe(version));
  if (version.asLargestInt() < 1 || version.asLargestInt() > JsonPersistWriter::kFormatVersion)
    fail("the document has format version " + std::to_string(version.asLargestInt()) +
         (version.asLargestInt() < 1 ? ", which does not exist"
                                     : ", which is newer than this library reads (" +
                                           std::to_string(JsonPersistWriter::kFormatVersion) + ")"));
}

JsonPersistReader::~JsonPersistReader() = default;

Json::Value JsonPersistReader::parse(std::string_view text) {
  Json::CharReaderBuilder builder;
  Json::CharReaderBuilder::strictMode(&builder.settings_);
  builder["allowSpecialFloats"] = true;
  builder["stackLimit"] = 256;
  std::unique_ptr<Json::CharReader> const reader(builder.newCharReader());
  Json::Value document;
  std::string errors;
  if (!reader->parse(text.data(), text.data() + text.size(), &document, &errors)) {
    while (!errors.empty() && (errors.back() == '\n' || errors.back() == ' ')) errors.pop_back();
    throw PersistError("persist JSON: the text is not a JSON document: " + errors, std::string(), std::nullopt);
  }
  return document;
}

void JsonPersistReader::finish() const {
  checkAllClosed();
  pop();
}

void JsonPersistReader::push(Json::Value const& value, bool isObjectMember, bool shared) const {
  m_stack.push_back(Entry{&value, isObjectMember, false, shared, 0, 0, m_keys.size()});
}

void JsonPersistReader::pop() const {
  Entry const& top = m_stack.back();
  if (!top.shared && top.value->isObject() && top.consumed != top.value->size()) {
    // Name the first key the layout did not read.
    std::string unexpected;
    for (auto it = top.value->begin(); it != top.value->end(); ++it) {
      char const* end = nullptr;
      char const* const name = it.memberName(&end);
      std::string_view const view(name, static_cast<std::size_t>(end - name));
      if (std::find(m_keys.begin() + static_cast<std::ptrdiff_t>(top.keysStart), m_keys.end(), view) ==
          m_keys.end()) {
        unexpected = std::string(view);
        break;
      }
    }
    fail("unexpected key '" + unexpected + "', which this layout does not have");
  }
  if (!top.shared) m_keys.resize(top.keysStart);
  m_stack.pop_back();
}

Json::Value const& JsonPersistReader::member(Json::Value const& object, char const* key, char const* what) const {
  std::size_t const length = std::strlen(key);
  Json::Value const* const found = object.find(key, key + length);
  if (!found) fail(std::string("expected ") + what + " under the key '" + key + "', which is missing");
  Entry& top = m_stack.back();
  ++top.consumed;
  m_keys.emplace_back(key, length);
  return *found;
}

Json::Value const* JsonPersistReader::findSlot(char const* key) const {
  Entry& top = m_stack.back();
  if (top.value->isArray()) {
    if (top.next >= top.value->size()) return nullptr;
    return &(*top.value)[top.next++];
  }
  std::size_t const length = std::strlen(key);
  Json::Value const* const found = top.value->find(key, key + length);
  if (!found) return nullptr;
  ++top.consumed;
  m_keys.emplace_back(key, length);
  return found;
}

Json::Value const& JsonPersistReader::slot(char const* key, std::string_view what) const {
  Json::Value const* const found = findSlot(key);
  if (!found) {
    if (m_stack.back().value->isArray()) fail("expected " + std::string(what) + ", but the array has ended");
    fail("expected " + std::string(what) + " under the key '" + key + "', which is missing");
  }
  return *found;
}

void JsonPersistReader::failFound(char const* expected, Json::Value const& found) const {
  fail(std::string("expected ") + expected + ", found " + describe(found));
}

PersistClass const* JsonPersistReader::resolve(std::string const& name) const { return m_database.find(name); }

void JsonPersistReader::doBeginCompound(char const* typeName, char const* key) const {
  Json::Value const& compound = slot(key, "an object");
  if (!compound.isObject()) failFound("an object", compound);
  push(compound, false, false);
  Json::Value const& type = member(compound, "@type", "the type name");
  if (!type.isString() || std::strcmp(type.asCString(), typeName) != 0)
    fail("expected the type " + std::string(typeName) + " under the key '@type', found " + describe(type));
}

void JsonPersistReader::doEndCompound() const { pop(); }

int JsonPersistReader::doBeginClass(PersistClass const& staticClass) const {
  Entry& top = m_stack.back();
  Json::Value const* scope = top.value;
  bool const shared = top.isObjectMember && !top.hasClass;
  top.hasClass = true;
  if (!shared) {
    m_madeKeys.push_back("@" + std::string(staticClass.name()));
    Json::Value const& own = member(*top.value, m_madeKeys.back().c_str(), "an object");
    if (!own.isObject()) failFound("an object", own);
    scope = &own;
  }
  push(*scope, false, shared);
  Json::Value const& version = member(*scope, "@version", "the class version");
  if (version.type() != Json::intValue && version.type() != Json::uintValue)
    failFound("an integer class version under the key '@version'", version);
  Json::LargestInt const stored = version.asLargestInt();
  if (stored < INT_MIN || stored > INT_MAX) return stored < 0 ? 0 : INT_MAX;
  return static_cast<int>(stored);
}

void JsonPersistReader::doEndClass() const {
  if (m_stack.back().shared) {
    // The members were counted in the object member's entry.
    Json::ArrayIndex const consumed = m_stack.back().consumed;
    m_stack.pop_back();
    m_stack.back().consumed += consumed;
    return;
  }
  pop();
}

void JsonPersistReader::doBeginArray(char const* key, std::uint64_t count) const {
  Json::Value const& array = slot(key, "an array");
  if (!array.isArray()) failFound("an array", array);
  if (array.size() != count)
    fail("expected an array of " + std::to_string(count) + " elements (its count), found " +
         std::to_string(array.size()));
  push(array, false, false);
}

void JsonPersistReader::doEndArray() const { m_stack.pop_back(); }

void JsonPersistReader::doBeginObjectMember(char const* key, PersistClass const& dynamicClass) const {
  Json::Value const* const found = findSlot(key);
  if (!found || !found->isObject()) {
    std::string const expected = std::string("an object of class ") + dynamicClass.name();
    if (found) failFound(expected.c_str(), *found);
    slot(key, expected);
  }
  Json::Value const& object = *found;
  push(object, true, false);
  Json::Value const& name = member(object, "@class", "the class name");
  if (!name.isString()) failFound("a class name under the key '@class'", name);
  if (std::strcmp(name.asCString(), dynamicClass.name()) != 0 && resolve(name.asString()) != &dynamicClass)
    fail("expected an object of class " + std::string(dynamicClass.name()) + ", found class " + name.asString());
}

PersistClass const& JsonPersistReader::doBeginAnyObjectMember(char const* key) const {
  Json::Value const& object = slot(key, "an object or null");
  if (!object.isObject()) failFound("an object or null", object);
  push(object, true, false);
  Json::Value const& name = member(object, "@class", "the class name");
  if (!name.isString()) failFound("a class name under the key '@class'", name);
  PersistClass const* const found = resolve(name.asString());
  if (!found) fail("the class " + name.asString() + " is not in the class database");
  if (!found->canCreate()) fail("the class " + name.asString() + " cannot be created behind a pointer");
  return *found;
}

void JsonPersistReader::doEndObjectMember() const { pop(); }

void JsonPersistReader::doValue(char const* key, bool& v) const {
  Json::Value const& stored = slot(key, "a boolean");
  if (!stored.isBool()) failFound("a boolean", stored);
  v = stored.asBool();
}

void JsonPersistReader::doValue(char const* key, int& v) const {
  Json::Value const& stored = slot(key, "an integer");
  bool const integral = stored.type() == Json::intValue || stored.type() == Json::uintValue;
  if (!integral || !stored.isInt()) failFound("a 32-bit integer", stored);
  v = stored.asInt();
}

void JsonPersistReader::doValue(char const* key, std::uint64_t& v) const {
  Json::Value const& stored = slot(key, "an unsigned integer");
  bool const integral = stored.type() == Json::intValue || stored.type() == Json::uintValue;
  if (!integral || !stored.isUInt64()) failFound("an unsigned 64-bit integer", stored);
  v = stored.asUInt64();
}

void JsonPersistReader::doValue(char const* key, double& v) const {
  Json::Value const& stored = slot(key, "a number");
  if (!stored.isDouble()) failFound("a number", stored);
  v = stored.asDouble();
}

void JsonPersistReader::doValue(char const* key, std::string& v) const {
  Json::Value const& stored = slot(key, "a string");
  if (!stored.isString()) failFound("a string", stored);
  char const* begin = nullptr;
  char const* end = nullptr;
  stored.getString(&begin, &end);
  v.assign(begin, end);
}

bool JsonPersistReader::doPresence(char const* key, bool) const {
  Entry& top = m_stack.back();
  if (top.value->isArray()) {
    if (top.next >= top.value->size()) fail("expected a value or null, but the array has ended");
    if (!(*top.value)[top.next].isNull()) return true;
    ++top.next;
    return false;
  }
  std::size_t const length = std::strlen(key);
  Json::Value const* const found = top.value->find(key, key + length);
  if (!found) fail(std::string("expected a value or null under the key '") + key + "', which is missing");
  if (!found->isNull()) return true;
  ++top.consumed;
  m_keys.emplace_back(key, length);
  return false;
}

}  // namespace persist
