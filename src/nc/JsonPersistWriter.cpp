#include "nc/JsonPersistWriter.h"

#include <json/writer.h>

#include <charconv>
#include <cmath>
#include <cstring>
#include <memory>
#include <sstream>

#include "nc/JsonPersistReader.h"

namespace persist {

namespace {

/// An array of plain values stays on one line up to this length, as
/// jsoncpp's own writer does.
constexpr std::size_t kOneLineArray = 74;

template <class Integer>
void appendInteger(std::string& text, Integer v) {
  char digits[24];
  auto const result = std::to_chars(digits, digits + sizeof digits, v);
  text.append(digits, result.ptr);
}

}  // namespace

bool JsonPersistWriter::isValidUtf8(std::string_view text) noexcept {
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

JsonPersistWriter::JsonPersistWriter() : Persist(false) {
  m_text.reserve(1 << 16);
  m_text += '{';
  m_depth = 1;
  m_stack.push_back(Entry{false, true, false, false, false, false, 0, 0});
  std::string format = kFormat;
  int version = kFormatVersion;
  doValue("format", format);
  doValue("formatVersion", version);
}

JsonPersistWriter::~JsonPersistWriter() = default;

std::string JsonPersistWriter::text() const {
  checkAllClosed();
  std::string out = m_text;
  out += "\n}\n";
  return out;
}

std::string JsonPersistWriter::takeText() {
  checkAllClosed();
  m_text += "\n}\n";
  return std::move(m_text);
}

Json::Value JsonPersistWriter::document() const { return JsonPersistReader::parse(text()); }

std::string JsonPersistWriter::toText(Json::Value const& document) {
  Json::StreamWriterBuilder builder;
  builder["indentation"] = "\t";
  builder["commentStyle"] = "None";
  builder["precision"] = 17;
  builder["precisionType"] = "significant";
  builder["useSpecialFloats"] = true;
  builder["emitUTF8"] = true;
  std::unique_ptr<Json::StreamWriter> const writer(builder.newStreamWriter());
  std::ostringstream out;
  writer->write(document, &out);
  out << '\n';
  return out.str();
}

void JsonPersistWriter::newline(std::size_t depth) const {
  m_text += '\n';
  m_text.append(depth, '\t');
}

void JsonPersistWriter::breakArray(Entry& array) const {
  std::size_t const depth = m_depth;
  std::string elements = m_text.substr(array.open);
  m_text.resize(array.open);
  std::size_t const first = array.marksStart;
  for (std::size_t i = first; i < m_marks.size(); ++i) {
    // Each mark is where ", " (or " " before the first) precedes an element.
    std::size_t const begin = m_marks[i] - array.open + (i == first ? 1 : 2);
    std::size_t const end = i + 1 < m_marks.size() ? m_marks[i + 1] - array.open : elements.size();
    if (i > first) m_text += ',';
    newline(depth);
    m_text.append(elements, begin, end - begin);
  }
  m_marks.resize(first);
  array.oneLine = false;
}

void JsonPersistWriter::startMember(char const* key, bool plain) const {
  Entry& top = m_stack.back();
  if (top.isArray) {
    if (top.oneLine && plain) {
      m_marks.push_back(m_text.size());
      m_text += top.empty ? " " : ", ";
      top.empty = false;
      return;
    }
    if (top.oneLine) breakArray(top);
    if (!top.empty) m_text += ',';
    newline(m_depth);
    top.empty = false;
    return;
  }
  if (!top.empty) m_text += ',';
  top.empty = false;
  newline(m_depth);
  appendQuoted(key, std::strlen(key));
  m_text += ": ";
}

void JsonPersistWriter::openObject(char const* key) const {
  startMember(key, false);
  m_text += '{';
  ++m_depth;
  m_stack.push_back(Entry{false, true, false, false, false, false, 0, 0});
}

void JsonPersistWriter::closeObject() const {
  bool const empty = m_stack.back().empty;
  m_stack.pop_back();
  --m_depth;
  if (!empty) newline(m_depth);
  m_text += '}';
}

void JsonPersistWriter::appendQuoted(char const* text, std::size_t size) const {
  static char const kHex[] = "0123456789abcdef";
  m_text += '"';
  std::size_t run = 0;
  for (std::size_t i = 0; i < size; ++i) {
    auto const c = static_cast<unsigned char>(text[i]);
    if (c >= 0x20 && c != '"' && c != '\\') continue;
    m_text.append(text + run, i - run);
    run = i + 1;
    switch (c) {
      case '"': m_text += "\\\""; break;
      case '\\': m_text += "\\\\"; break;
      case '\b': m_text += "\\b"; break;
      case '\f': m_text += "\\f"; break;
      case '\n': m_text += "\\n"; break;
      case '\r': m_text += "\\r"; break;
      case '\t': m_text += "\\t"; break;
      default:
        m_text += "\\u00";
        m_text += kHex[c >> 4];
        m_text += kHex[c & 0xF];
    }
  }
  m_text.append(text + run, size - run);
  m_text += '"';
}

void JsonPersistWriter::appendNumber(double v) const {
  if (std::isnan(v)) {
    m_text += "NaN";
    return;
  }
  if (std::isinf(v)) {
    m_text += v < 0 ? "-Infinity" : "Infinity";
    return;
  }
  char digits[32];
  auto const result = std::to_chars(digits, digits + sizeof digits, v);
  m_text.append(digits, result.ptr);
  // A point keeps the number a real one for jsoncpp ("300.0", not "300").
  if (std::memchr(digits, '.', static_cast<std::size_t>(result.ptr - digits)) == nullptr &&
      std::memchr(digits, 'e', static_cast<std::size_t>(result.ptr - digits)) == nullptr)
    m_text += ".0";
}

void JsonPersistWriter::doBeginCompound(char const* typeName, char const* key) const {
  openObject(key);
  startMember("@type", true);
  appendQuoted(typeName, std::strlen(typeName));
}

void JsonPersistWriter::doEndCompound() const { closeObject(); }

int JsonPersistWriter::doBeginClass(PersistClass const& staticClass) const {
  Entry& top = m_stack.back();
  bool const own = !top.isObjectMember || top.hasClass;
  top.hasClass = true;
  if (own) {
    std::string const key = "@" + std::string(staticClass.name());
    openObject(key.c_str());
  }
  startMember("@version", true);
  appendInteger(m_text, staticClass.version());
  // The class scope shares the object it stands in; it only notes whether
  // it opened one.
  m_stack.back().ownObject = own;
  m_stack.push_back(m_stack.back());
  m_stack.back().isObjectMember = false;
  return staticClass.version();
}

void JsonPersistWriter::doEndClass() const {
  // Hand what the class scope wrote back to the object it shares.
  Entry const scope = m_stack.back();
  m_stack.pop_back();
  m_stack.back().empty = scope.empty;
  if (scope.ownObject) closeObject();
}

void JsonPersistWriter::doBeginArray(char const* key, std::uint64_t) const {
  startMember(key, false);
  m_text += '[';
  ++m_depth;
  m_stack.push_back(Entry{true, true, true, false, false, false, m_text.size(), m_marks.size()});
}

void JsonPersistWriter::doEndArray() const {
  Entry& array = m_stack.back();
  if (array.oneLine && !array.empty && m_text.size() - array.open + 2 > kOneLineArray) breakArray(array);
  bool const oneLine = array.oneLine;
  bool const empty = array.empty;
  m_marks.resize(array.marksStart);
  m_stack.pop_back();
  --m_depth;
  if (empty) {
    m_text += ']';
  } else if (oneLine) {
    m_text += " ]";
  } else {
    newline(m_depth);
    m_text += ']';
  }
}

void JsonPersistWriter::doBeginObjectMember(char const* key, PersistClass const& dynamicClass) const {
  openObject(key);
  m_stack.back().isObjectMember = true;
  startMember("@class", true);
  appendQuoted(dynamicClass.name(), std::strlen(dynamicClass.name()));
}

void JsonPersistWriter::doEndObjectMember() const { closeObject(); }

void JsonPersistWriter::doValue(char const* key, bool& v) const {
  startMember(key, true);
  m_text += v ? "true" : "false";
}

void JsonPersistWriter::doValue(char const* key, int& v) const {
  startMember(key, true);
  appendInteger(m_text, v);
}

void JsonPersistWriter::doValue(char const* key, std::uint64_t& v) const {
  startMember(key, true);
  appendInteger(m_text, v);
}

void JsonPersistWriter::doValue(char const* key, double& v) const {
  startMember(key, true);
  appendNumber(v);
}

void JsonPersistWriter::doValue(char const* key, std::string& v) const {
  // JSON text is UTF-8; anything else would come back changed or not at all.
  if (!isValidUtf8(v)) fail("the string is not valid UTF-8, which the JSON form cannot hold");
  startMember(key, true);
  appendQuoted(v.data(), v.size());
}

bool JsonPersistWriter::doPresence(char const* key, bool present) const {
  if (!present) {
    startMember(key, true);
    m_text += "null";
  }
  return present;
}

}  // namespace persist
