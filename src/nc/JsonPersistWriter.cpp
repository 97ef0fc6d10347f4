#include "nc/JsonPersistWriter.h"

#include <json/writer.h>

#include <memory>
#include <sstream>

namespace persist {

namespace {

/// Strict UTF-8: no overlong forms, no surrogates, nothing above U+10FFFF.
bool isValidUtf8(std::string const& text) noexcept {
  auto const* p = reinterpret_cast<unsigned char const*>(text.data());
  std::size_t const size = text.size();
  std::size_t i = 0;
  while (i < size) {
    unsigned char const b = p[i];
    if (b < 0x80) {
      ++i;
      continue;
    }
    std::size_t n;
    std::uint32_t cp;
    if ((b & 0xE0) == 0xC0) {
      n = 1;
      cp = b & 0x1Fu;
    } else if ((b & 0xF0) == 0xE0) {
      n = 2;
      cp = b & 0x0Fu;
    } else if ((b & 0xF8) == 0xF0) {
      n = 3;
      cp = b & 0x07u;
    } else {
      return false;
    }
    if (size - i <= n) return false;
    for (std::size_t k = 1; k <= n; ++k) {
      if ((p[i + k] & 0xC0) != 0x80) return false;
      cp = (cp << 6) | (p[i + k] & 0x3Fu);
    }
    static constexpr std::uint32_t kMinimum[] = {0, 0x80, 0x800, 0x10000};
    if (cp < kMinimum[n] || cp > 0x10FFFF || (cp >= 0xD800 && cp <= 0xDFFF)) return false;
    i += n + 1;
  }
  return true;
}

std::unique_ptr<Json::StreamWriter> makeWriter() {
  Json::StreamWriterBuilder builder;
  builder["indentation"] = "\t";
  builder["commentStyle"] = "None";
  builder["precision"] = 17;
  builder["precisionType"] = "significant";
  builder["useSpecialFloats"] = true;
  builder["emitUTF8"] = true;
  builder["enableYAMLCompatibility"] = false;
  builder["dropNullPlaceholders"] = false;
  return std::unique_ptr<Json::StreamWriter>(builder.newStreamWriter());
}

}  // namespace

JsonPersistWriter::JsonPersistWriter() : Persist(false), m_document(Json::objectValue) {
  m_document["format"] = kFormat;
  m_document["formatVersion"] = kFormatVersion;
  m_stack.push_back(Entry{&m_document, false, false});
}

JsonPersistWriter::~JsonPersistWriter() = default;

Json::Value const& JsonPersistWriter::document() const {
  checkAllClosed();
  return m_document;
}

std::string JsonPersistWriter::text() const { return toText(document()); }

std::string JsonPersistWriter::toText(Json::Value const& document) {
  std::ostringstream out;
  makeWriter()->write(document, &out);
  out << '\n';
  return out.str();
}

Json::Value& JsonPersistWriter::slot(char const* key) const {
  Json::Value& container = *m_stack.back().value;
  if (container.isArray()) return container.append(Json::Value());
  Json::ArrayIndex const before = container.size();
  Json::Value& member = container[key];
  if (container.size() == before) fail("the key is written twice");
  return member;
}

void JsonPersistWriter::doBeginCompound(char const* typeName, char const* key) const {
  Json::Value& compound = slot(key);
  compound = Json::Value(Json::objectValue);
  compound["@type"] = typeName;
  m_stack.push_back(Entry{&compound, false, false});
}

void JsonPersistWriter::doEndCompound() const { m_stack.pop_back(); }

int JsonPersistWriter::doBeginClass(PersistClass const& staticClass) const {
  Entry& top = m_stack.back();
  Json::Value* scope = top.value;
  if (!top.isObjectMember || top.hasClass) {
    Json::Value& own = (*scope)["@" + std::string(staticClass.name())];
    if (!own.isNull()) fail("the class " + std::string(staticClass.name()) + " is listed twice in one object");
    own = Json::Value(Json::objectValue);
    scope = &own;
  }
  top.hasClass = true;
  (*scope)["@version"] = staticClass.version();
  m_stack.push_back(Entry{scope, false, true});
  return staticClass.version();
}

void JsonPersistWriter::doEndClass() const { m_stack.pop_back(); }

void JsonPersistWriter::doBeginArray(char const* key, std::uint64_t) const {
  Json::Value& array = slot(key);
  array = Json::Value(Json::arrayValue);
  m_stack.push_back(Entry{&array, false, false});
}

void JsonPersistWriter::doEndArray() const { m_stack.pop_back(); }

void JsonPersistWriter::doBeginObjectMember(char const* key, PersistClass const& dynamicClass) const {
  Json::Value& object = slot(key);
  object = Json::Value(Json::objectValue);
  object["@class"] = dynamicClass.name();
  m_stack.push_back(Entry{&object, true, false});
}

void JsonPersistWriter::doEndObjectMember() const { m_stack.pop_back(); }

void JsonPersistWriter::doValue(char const* key, bool& v) const { slot(key) = v; }

void JsonPersistWriter::doValue(char const* key, int& v) const { slot(key) = v; }

void JsonPersistWriter::doValue(char const* key, std::uint64_t& v) const {
  slot(key) = static_cast<Json::UInt64>(v);
}

void JsonPersistWriter::doValue(char const* key, double& v) const { slot(key) = v; }

void JsonPersistWriter::doValue(char const* key, std::string& v) const {
  // JSON text is UTF-8; anything else would come back changed or not at all.
  if (!isValidUtf8(v)) fail("the string is not valid UTF-8, which the JSON form cannot hold");
  slot(key) = v;
}

bool JsonPersistWriter::doPresence(char const* key, bool present) const {
  if (!present) slot(key) = Json::Value();
  return present;
}

}  // namespace persist
