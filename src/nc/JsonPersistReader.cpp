#include "nc/JsonPersistReader.h"

#include <json/reader.h>

#include <algorithm>
#include <climits>
#include <cstring>

#include "nc/JsonPersistWriter.h"
#include "nc/PersistError.h"

namespace persist {

namespace {

/// How deep arrays and objects may nest, in jsoncpp and in the scanner.
constexpr int kNestingLimit = 256;

std::unique_ptr<Json::CharReader> makeReader(bool anyRoot) {
  Json::CharReaderBuilder builder;
  Json::CharReaderBuilder::strictMode(&builder.settings_);
  builder["allowSpecialFloats"] = true;
  builder["stackLimit"] = kNestingLimit;
  builder["strictRoot"] = !anyRoot;
  return std::unique_ptr<Json::CharReader>(builder.newCharReader());
}

/// A short account of a parsed JSON value for messages.
std::string describeValue(Json::Value const& v) {
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

std::string trimmed(std::string text) {
  while (!text.empty() && (text.back() == '\n' || text.back() == ' ')) text.pop_back();
  return text;
}

}  // namespace

JsonPersistReader::JsonPersistReader(Json::Value const& document, PersistClassDatabase const& database)
    : Persist(true), m_database(database) {
  Node root;
  root.value = &document;
  if (!document.isObject()) failFound("a JSON object as the document", root);
  push(root, false);
  checkHead();
}

JsonPersistReader::JsonPersistReader(std::string_view text, PersistClassDatabase const& database,
                                     std::size_t parseWholeBelow)
    : Persist(true),
      m_database(database),
      m_textBegin(text.data()),
      m_textEnd(text.data() + text.size()),
      m_parseWholeBelow(parseWholeBelow) {
  Node root;
  root.begin = skipSpace(m_textBegin);
  if (root.begin == m_textEnd) failText(root.begin, "the text holds no value");
  if (*root.begin != '{') {
    root.end = scanValue(root.begin);
    failFound("a JSON object as the document", root);
  }
  root.end = scanValue(root.begin, m_parseWholeBelow);
  m_documentEnd = root.end;
  if (root.end) {
    char const* const rest = skipSpace(root.end);
    if (rest != m_textEnd) failText(rest, "more follows the document");
  }
  push(root, false);
  checkHead();
}

JsonPersistReader::~JsonPersistReader() = default;

void JsonPersistReader::checkHead() const {
  Json::Value const& format = member("format", "the text \"mtkit persist\"");
  if (!format.isString() || format.asString() != JsonPersistWriter::kFormat)
    fail("expected the text \"mtkit persist\" under the key 'format', found " + describeValue(format));
  Json::Value const& version = member("formatVersion", "the format version");
  if (version.type() != Json::intValue && version.type() != Json::uintValue)
    fail("expected an integer under the key 'formatVersion', found " + describeValue(version));
  // An unsigned integer above the 64-bit signed range is still a version,
  // only one far too new; jsoncpp would throw on reading it as signed.
  if (!version.isInt64())
    fail("the document has format version " + std::to_string(version.asLargestUInt()) +
         ", which is newer than this library reads (" + std::to_string(JsonPersistWriter::kFormatVersion) + ")");
  if (version.asLargestInt() < 1 || version.asLargestInt() > JsonPersistWriter::kFormatVersion)
    fail("the document has format version " + std::to_string(version.asLargestInt()) +
         (version.asLargestInt() < 1 ? ", which does not exist"
                                     : ", which is newer than this library reads (" +
                                           std::to_string(JsonPersistWriter::kFormatVersion) + ")"));
}

Json::Value JsonPersistReader::parse(std::string_view text) {
  std::unique_ptr<Json::CharReader> const reader = makeReader(false);
  Json::Value document;
  std::string errors;
  if (!reader->parse(text.data(), text.data() + text.size(), &document, &errors))
    throw PersistError("persist JSON: the text is not a JSON document: " + trimmed(errors), std::string(),
                       std::nullopt);
  return document;
}

void JsonPersistReader::finish() const {
  checkAllClosed();
  pop();
  if (m_textBegin) {
    char const* const rest = skipSpace(m_documentEnd);
    if (rest != m_textEnd) failText(rest, "more follows the document");
  }
}

// The text scanner

char const* JsonPersistReader::skipSpace(char const* p) const noexcept {
  while (p != m_textEnd && (*p == ' ' || *p == '\t' || *p == '\n' || *p == '\r')) ++p;
  return p;
}

void JsonPersistReader::failText(char const* at, std::string const& problem) const {
  long line = 1;
  long column = 1;
  for (char const* p = m_textBegin; p != at; ++p) {
    if (*p == '\n') {
      ++line;
      column = 1;
    } else {
      ++column;
    }
  }
  fail("the text is not a JSON document: " + problem + " (line " + std::to_string(line) + ", column " +
       std::to_string(column) + ")");
}

namespace {

/// The bytes the bracket matcher stops at; it runs past all others.
struct Stops {
  bool stop[256] = {};
  constexpr Stops() {
    for (unsigned char const c : {'"', '{', '[', '}', ']', ',', '/'}) stop[c] = true;
  }
};
constexpr Stops kStops;

}  // namespace

char const* JsonPersistReader::scanString(char const* p) const {
  char const* const start = p;
  char const* const end = m_textEnd;
  for (++p;; ++p) {
    while (p != end && *p != '"' && *p != '\\') ++p;
    if (p == end) break;
    if (*p == '"') return p + 1;
    if (++p == end) break;
  }
  failText(start, "a string is not closed");
}

char const* JsonPersistReader::scanValue(char const* p, std::size_t limit) const {
  char const* const end = m_textEnd;
  if (p == end) failText(p, "expected a value, found the end of the text");
  char const c = *p;
  if (c == '"') return scanString(p);
  if (c != '{' && c != '[') {
    // A scalar also ends at a NUL byte: jsoncpp takes one for the end of its
    // input, so a span running past it would read as the scalar before it.
    char const* const start = p;
    while (p != end && *p != ',' && *p != ']' && *p != '}' && *p != ' ' && *p != '\t' && *p != '\n' && *p != '\r' &&
           *p != '\0')
      ++p;
    if (p == start) failText(start, "expected a value");
    return p;
  }
  // Brackets are matched here; what stands between them is checked when it
  // is read, by jsoncpp or by this scanner.
  if (limit < 1) limit = 1;
  char const* const stop = static_cast<std::size_t>(end - p) > limit ? p + limit : end;
  std::string closers(1, c == '[' ? ']' : '}');
  for (++p;; ++p) {
    while (p != stop && !kStops.stop[static_cast<unsigned char>(*p)]) ++p;
    if (p == stop) break;
    switch (*p) {
      case '"':
        p = scanString(p) - 1;
        if (p >= stop) return nullptr;
        break;
      case '{':
      case '[':
        closers.push_back(*p == '{' ? '}' : ']');
        if (closers.size() > kNestingLimit) failText(p, "arrays and objects nest deeper than 256");
        break;
      case '}':
      case ']':
        if (*p != closers.back()) failText(p, std::string("expected '") + closers.back() + "'");
        closers.pop_back();
        if (closers.empty()) return p + 1;
        break;
      case ',':
        break;
      default:
        // jsoncpp would skip a comment inside an object; the form has none.
        failText(p, "a comment, which JSON does not allow");
    }
  }
  if (stop != end) return nullptr;
  failText(end, std::string("expected '") + closers.back() + "', found the end of the text");
}

std::uint64_t JsonPersistReader::countElements(char const* p) const {
  std::uint64_t count = 0;
  for (p = skipSpace(p); peek(p) != ']'; ++count) {
    p = skipSpace(scanValue(p));
    if (peek(p) == ',') {
      p = skipSpace(p + 1);
      if (peek(p) == ']') failText(p, "expected a value after ','");
    } else if (peek(p) != ']') {
      failText(p, "expected ',' or ']'");
    }
  }
  return count;
}

bool JsonPersistReader::listMember(std::size_t object) const {
  Entry& entry = m_stack[object];
  char const* p = entry.unlisted;
  if (!p) return false;
  if (m_members.size() > entry.membersBegin) {
    // Past the member listed last, whose end may not be known yet.
    Member& last = m_members.back();
    char const* const end = endOf(last.node);
    p = skipSpace(end);
    if (peek(p) == '}') {
      entry.unlisted = nullptr;
      return false;
    }
    if (peek(p) != ',') failText(p, "expected ',' or '}'");
    p = skipSpace(p + 1);
  } else {
    p = skipSpace(p);
    if (peek(p) == '}') {
      entry.unlisted = nullptr;
      return false;
    }
  }
  if (peek(p) != '"') failText(p, "expected a key");
  char const* const keyEnd = scanString(p);
  std::string_view name(p + 1, static_cast<std::size_t>(keyEnd - p - 2));
  if (name.find('\\') != std::string_view::npos) {
    Json::Value decoded;
    parseSpan(p, keyEnd, decoded);
    m_keys.push_back(decoded.asString());
    name = m_keys.back();
  }
  p = skipSpace(keyEnd);
  if (peek(p) != ':') failText(p, "expected ':'");
  Member member{name, Node(), false};
  member.node.begin = skipSpace(p + 1);
  member.node.from = object;
  member.node.member = m_members.size();
  // A short value's end is found now; a long one's when it has been read.
  member.node.end = scanValue(member.node.begin, m_parseWholeBelow);
  m_members.push_back(member);
  entry.unlisted = member.node.begin;
  return true;
}

char const* JsonPersistReader::endOf(Node& node) const {
  if (!node.end) {
    node.end = scanValue(node.begin);
    settle(node, node.end);
  }
  return node.end;
}

void JsonPersistReader::settle(Node const& node, char const* end) const {
  if (node.from == kNone || node.from >= m_stack.size()) return;
  Entry& from = m_stack[node.from];
  if (node.member != kNone) {
    if (node.member < m_members.size()) m_members[node.member].node.end = end;
    return;
  }
  // The element of an array: the cursor moves on to the next one.
  char const* p = skipSpace(end);
  if (peek(p) == ',') {
    p = skipSpace(p + 1);
    if (peek(p) == ']') failText(p, "expected a value after ','");
  } else if (peek(p) != ']') {
    failText(p, "expected ',' or ']'");
  }
  from.cursor = p;
}

void JsonPersistReader::parseSpan(char const* begin, char const* end, Json::Value& into) const {
  bool const container = *begin == '{' || *begin == '[';
  std::unique_ptr<Json::CharReader>& reader = container ? m_reader : m_anyRootReader;
  if (!reader) reader = makeReader(!container);
  std::string errors;
  if (reader->parse(begin, end, &into, &errors)) return;
  // jsoncpp counts lines and columns from the start of the span.
  long line = 1;
  long column = 1;
  for (char const* p = m_textBegin; p != begin; ++p) {
    if (*p == '\n') {
      ++line;
      column = 1;
    } else {
      ++column;
    }
  }
  std::string rebased;
  std::size_t at = 0;
  for (std::size_t found; (found = errors.find("* Line ", at)) != std::string::npos;) {
    rebased.append(errors, at, found - at);
    std::size_t const comma = errors.find(", Column ", found);
    std::size_t const end = comma == std::string::npos ? comma : errors.find_first_not_of("0123456789", comma + 9);
    if (end == std::string::npos) break;
    long const l = std::stol(errors.substr(found + 7, comma - found - 7));
    long const c = std::stol(errors.substr(comma + 9, end - comma - 9));
    rebased += "* Line " + std::to_string(line + l - 1) + ", Column " + std::to_string(l == 1 ? column + c - 1 : c);
    at = end;
  }
  rebased.append(errors, at, std::string::npos);
  fail("the text is not a JSON document: " + trimmed(rebased));
}

// The stack

void JsonPersistReader::push(Node node, bool isObjectMember) const {
  Entry entry;
  entry.isObjectMember = isObjectMember;
  if (!node.value && node.end) {
    // Short enough to be parsed whole, and read from the tree.
    entry.owned = std::make_unique<Json::Value>();
    parseSpan(node.begin, node.end, *entry.owned);
    Node parsed;
    parsed.value = entry.owned.get();
    node = parsed;
  }
  entry.node = node;
  entry.membersBegin = m_members.size();
  if (node.value) {
    Json::Value const& value = *node.value;
    if (value.isObject()) {
      for (auto it = value.begin(), end = value.end(); it != end; ++it) {
        char const* nameEnd = nullptr;
        char const* const name = it.memberName(&nameEnd);
        Member member{std::string_view(name, static_cast<std::size_t>(nameEnd - name)), Node(), false};
        member.node.value = &*it;
        m_members.push_back(member);
      }
    } else if (value.isArray()) {
      entry.next = value.begin();
      entry.count = value.size();
    }
  } else if (*node.begin == '{') {
    entry.unlisted = node.begin + 1;
  } else {
    entry.cursor = skipSpace(node.begin + 1);
  }
  m_stack.push_back(std::move(entry));
}

void JsonPersistReader::pop() const {
  Entry& top = m_stack.back();
  if (top.shared) {
    m_stack.pop_back();
    return;
  }
  std::size_t const self = m_stack.size() - 1;
  while (listMember(self)) {
  }
  if (!top.node.value) {
    // An object in text: jsoncpp refuses duplicate keys, and so does this.
    std::vector<std::string_view> names;
    for (std::size_t i = top.membersBegin; i < m_members.size(); ++i) names.push_back(m_members[i].name);
    std::sort(names.begin(), names.end());
    auto const duplicate = std::adjacent_find(names.begin(), names.end());
    if (duplicate != names.end()) failText(top.node.begin, "duplicate key '" + std::string(*duplicate) + "'");
  }
  for (std::size_t i = top.membersBegin; i < m_members.size(); ++i)
    if (!m_members[i].read)
      fail("unexpected key '" + std::string(m_members[i].name) + "', which this layout does not have");
  if (top.node.value) {
    m_members.resize(top.membersBegin);
    m_stack.pop_back();
    return;
  }
  // The object's end follows its last member.
  char const* const close = m_members.size() > top.membersBegin ? skipSpace(endOf(m_members.back().node))
                                                                  : skipSpace(top.node.begin + 1);
  m_members.resize(top.membersBegin);
  Node const node = top.node;
  m_documentEnd = close + 1;
  m_stack.pop_back();
  settle(node, close + 1);
}

JsonPersistReader::Node JsonPersistReader::findMember(std::size_t object, char const* key) const {
  Entry const& entry = m_stack[object];
  std::size_t const owner = entry.shared ? entry.owner : object;
  std::size_t const begin = m_stack[owner].membersBegin;
  std::string_view const wanted(key);
  for (std::size_t i = begin;; ++i) {
    if (i == m_members.size() && !listMember(owner)) return Node();
    Member& m = m_members[i];
    if (m.name == wanted) {
      m.read = true;
      return m.node;
    }
  }
}

JsonPersistReader::Node JsonPersistReader::findSlot(char const* key) const {
  Entry& top = m_stack.back();
  Node element;
  if (top.node.value && top.node.value->isArray()) {
    if (top.next == top.node.value->end()) return element;
    element.value = &*top.next;
    ++top.next;
    ++top.seen;
    return element;
  }
  if (!top.node.value && *top.node.begin == '[') {
    if (peek(top.cursor) == ']') {
      if (top.seen < top.count)
        fail("expected an array of " + std::to_string(top.count) + " elements (its count), found " +
             std::to_string(top.seen));
      return element;
    }
    element.begin = top.cursor;
    element.from = m_stack.size() - 1;
    ++top.seen;
    // A short element's end is found now and the cursor moves on; a long
    // one's when it has been read.
    element.end = scanValue(element.begin, m_parseWholeBelow);
    if (element.end) settle(element, element.end);
    return element;
  }
  return findMember(m_stack.size() - 1, key);
}

JsonPersistReader::Node JsonPersistReader::slotNode(char const* key, std::string_view what) const {
  Node const found = findSlot(key);
  if (!found) {
    Entry const& top = m_stack.back();
    if (isArray(top.node)) fail("expected " + std::string(what) + ", but the array has ended");
    fail("expected " + std::string(what) + " under the key '" + key + "', which is missing");
  }
  return found;
}

Json::Value const& JsonPersistReader::valueOf(Node const& node) const {
  if (node.value) return *node.value;
  Node copy = node;
  parseSpan(copy.begin, endOf(copy), m_scratch);
  return m_scratch;
}

bool JsonPersistReader::isNull(Node const& node) const {
  if (node.value) return node.value->isNull();
  if (m_textEnd - node.begin < 4 || std::memcmp(node.begin, "null", 4) != 0) return false;
  Node copy = node;
  return endOf(copy) == node.begin + 4;
}

Json::Value const& JsonPersistReader::member(char const* key, char const* what) const {
  Node const found = findMember(m_stack.size() - 1, key);
  if (!found) fail(std::string("expected ") + what + " under the key '" + key + "', which is missing");
  return valueOf(found);
}

std::string JsonPersistReader::describe(Node const& node) const {
  if (node.value) return describeValue(*node.value);
  if (*node.begin == '{') return "an object";
  if (*node.begin == '[') return "an array of " + std::to_string(countElements(node.begin + 1)) + " elements";
  return describeValue(valueOf(node));
}

void JsonPersistReader::failFound(char const* expected, Node const& found) const {
  fail(std::string("expected ") + expected + ", found " + describe(found));
}

// The visitor

void JsonPersistReader::doBeginCompound(char const* typeName, char const* key) const {
  Node const compound = slotNode(key, "an object");
  if (!isObject(compound)) failFound("an object", compound);
  push(compound, false);
  Json::Value const& type = member("@type", "the type name");
  if (!type.isString() || std::strcmp(type.asCString(), typeName) != 0)
    fail("expected the type " + std::string(typeName) + " under the key '@type', found " + describeValue(type));
}

void JsonPersistReader::doEndCompound() const { pop(); }

int JsonPersistReader::doBeginClass(PersistClass const& staticClass) const {
  Entry& top = m_stack.back();
  bool const shared = top.isObjectMember && !top.hasClass;
  top.hasClass = true;
  if (shared) {
    // The class's members stand beside "@class" in the same object.
    Entry scope;
    scope.node = top.node;
    scope.shared = true;
    scope.owner = m_stack.size() - 1;
    scope.membersBegin = top.membersBegin;
    m_stack.push_back(std::move(scope));
  } else {
    std::string const key = "@" + std::string(staticClass.name());
    Node const own = findMember(m_stack.size() - 1, key.c_str());
    if (!own) fail("expected an object under the key '" + key + "', which is missing");
    if (!isObject(own)) failFound("an object", own);
    push(own, false);
  }
  Json::Value const& version = member("@version", "the class version");
  if (version.type() != Json::intValue && version.type() != Json::uintValue)
    fail("expected an integer class version under the key '@version', found " + describeValue(version));
  // Above the 64-bit signed range reads as the largest version, as any
  // version beyond int does.
  if (!version.isInt64()) return INT_MAX;
  Json::LargestInt const stored = version.asLargestInt();
  if (stored < INT_MIN || stored > INT_MAX) return stored < 0 ? 0 : INT_MAX;
  return static_cast<int>(stored);
}

void JsonPersistReader::doEndClass() const { pop(); }

void JsonPersistReader::doBeginArray(char const* key, std::uint64_t count) const {
  Node const array = slotNode(key, "an array");
  if (!isArray(array)) failFound("an array", array);
  push(array, false);
  Entry& entry = m_stack.back();
  std::uint64_t stored;
  if (entry.node.value) {
    stored = entry.node.value->size();
  } else {
    // A long array in text is counted as it is read; here only a count that
    // the rest of the text cannot hold is caught, before anything is
    // allocated for it.
    entry.count = count;
    if (count <= static_cast<std::uint64_t>(m_textEnd - entry.cursor)) return;
    stored = countElements(entry.cursor);
  }
  if (stored != count)
    fail("expected an array of " + std::to_string(count) + " elements (its count), found " + std::to_string(stored));
}

void JsonPersistReader::doEndArray() const {
  Entry& array = m_stack.back();
  if (array.node.value) {
    m_stack.pop_back();
    return;
  }
  if (peek(array.cursor) != ']')
    fail("expected an array of " + std::to_string(array.count) + " elements (its count), found " +
         std::to_string(array.seen + countElements(array.cursor)));
  Node const node = array.node;
  char const* const end = array.cursor + 1;
  m_stack.pop_back();
  settle(node, end);
}

void JsonPersistReader::doBeginObjectMember(char const* key, PersistClass const& dynamicClass) const {
  Node const found = findSlot(key);
  if (!found || !isObject(found)) {
    std::string const expected = std::string("an object of class ") + dynamicClass.name();
    if (found) failFound(expected.c_str(), found);
    slotNode(key, expected);
  }
  push(found, true);
  Json::Value const& name = member("@class", "the class name");
  if (!name.isString()) fail("expected a class name under the key '@class', found " + describeValue(name));
  if (std::strcmp(name.asCString(), dynamicClass.name()) != 0 &&
      m_database.find(std::string_view(name.asCString())) != &dynamicClass)
    fail("expected an object of class " + std::string(dynamicClass.name()) + ", found class " + name.asString());
}

PersistClass const& JsonPersistReader::doBeginAnyObjectMember(char const* key) const {
  Node const object = slotNode(key, "an object or null");
  if (!isObject(object)) failFound("an object or null", object);
  push(object, true);
  Json::Value const& name = member("@class", "the class name");
  if (!name.isString()) fail("expected a class name under the key '@class', found " + describeValue(name));
  PersistClass const* const found = m_database.find(name.asString());
  if (!found) fail("the class " + name.asString() + " is not in the class database");
  if (!found->canCreate()) fail("the class " + name.asString() + " cannot be created behind a pointer");
  return *found;
}

void JsonPersistReader::doEndObjectMember() const { pop(); }

void JsonPersistReader::doValue(char const* key, bool& v) const {
  Json::Value const& stored = slot(key, "a boolean");
  if (!stored.isBool()) fail("expected a boolean, found " + describeValue(stored));
  v = stored.asBool();
}

void JsonPersistReader::doValue(char const* key, int& v) const {
  Json::Value const& stored = slot(key, "an integer");
  bool const integral = stored.type() == Json::intValue || stored.type() == Json::uintValue;
  if (!integral || !stored.isInt()) fail("expected a 32-bit integer, found " + describeValue(stored));
  v = stored.asInt();
}

void JsonPersistReader::doValue(char const* key, std::uint64_t& v) const {
  Json::Value const& stored = slot(key, "an unsigned integer");
  bool const integral = stored.type() == Json::intValue || stored.type() == Json::uintValue;
  if (!integral || !stored.isUInt64()) fail("expected an unsigned 64-bit integer, found " + describeValue(stored));
  v = stored.asUInt64();
}

void JsonPersistReader::doValue(char const* key, double& v) const {
  Json::Value const& stored = slot(key, "a number");
  if (!stored.isDouble()) fail("expected a number, found " + describeValue(stored));
  v = stored.asDouble();
}

void JsonPersistReader::doValue(char const* key, std::string& v) const {
  Json::Value const& stored = slot(key, "a string");
  if (!stored.isString()) fail("expected a string, found " + describeValue(stored));
  char const* begin = nullptr;
  char const* end = nullptr;
  stored.getString(&begin, &end);
  // jsoncpp passes bytes through as they stand; JSON text is UTF-8.
  if (!JsonPersistWriter::isValidUtf8(std::string_view(begin, static_cast<std::size_t>(end - begin))))
    fail("expected a string, found one that is not valid UTF-8");
  v.assign(begin, end);
}

bool JsonPersistReader::doPresence(char const* key, bool) const {
  Entry& top = m_stack.back();
  if (isArray(top.node)) {
    // Looks at the next element without taking it, unless it is null.
    Node element;
    if (top.node.value) {
      if (top.next == top.node.value->end()) fail("expected a value or null, but the array has ended");
      element.value = &*top.next;
      if (!element.value->isNull()) return true;
      ++top.next;
      ++top.seen;
      return false;
    }
    if (peek(top.cursor) == ']') fail("expected a value or null, but the array has ended");
    element.begin = top.cursor;
    if (!isNull(element)) return true;
    ++top.seen;
    element.from = m_stack.size() - 1;
    settle(element, element.begin + 4);
    return false;
  }
  Node const found = findMember(m_stack.size() - 1, key);
  if (!found) fail(std::string("expected a value or null under the key '") + key + "', which is missing");
  // The value that follows looks the key up again.
  return !isNull(found);
}

}  // namespace persist
