#include "nc/BinaryPersistReader.h"

#include <cstdio>
#include <cstring>

#include "nc/BinaryPersistWriter.h"
#include "util/utility/Crc32c.h"

namespace persist {

namespace {

using W = BinaryPersistWriter;

std::uint64_t little(unsigned char const* p, std::size_t size) noexcept {
  std::uint64_t v = 0;
  for (std::size_t i = 0; i < size; ++i) v |= static_cast<std::uint64_t>(p[i]) << (8 * i);
  return v;
}

std::string hex(std::uint64_t v, int digits) {
  char text[24];
  std::snprintf(text, sizeof text, "0x%0*llx", digits, static_cast<unsigned long long>(v));
  return text;
}

/// What an item of that tag is, for messages.
std::string describeTag(std::uint8_t tag) {
  char const* what = nullptr;
  switch (tag) {
    case W::TAG_NULL: what = "null"; break;
    case W::TAG_FALSE: what = "false"; break;
    case W::TAG_TRUE: what = "true"; break;
    case W::TAG_INT32: what = "an integer"; break;
    case W::TAG_UINT64: what = "an unsigned 64-bit integer"; break;
    case W::TAG_DOUBLE: what = "a double"; break;
    case W::TAG_STRING: what = "a string"; break;
    case W::TAG_BEGIN_OBJECT: what = "the start of an object"; break;
    case W::TAG_END_OBJECT: what = "the end of an object"; break;
    case W::TAG_BEGIN_CLASS: what = "the start of a class"; break;
    case W::TAG_END_CLASS: what = "the end of a class"; break;
    case W::TAG_BEGIN_COMPOUND: what = "the start of a compound"; break;
    case W::TAG_END_COMPOUND: what = "the end of a compound"; break;
    case W::TAG_BEGIN_ARRAY: what = "the start of an array"; break;
    case W::TAG_END_ARRAY: what = "the end of an array"; break;
    default: return "the unknown tag " + hex(tag, 2);
  }
  return std::string(what) + " (tag " + hex(tag, 2) + ")";
}

}  // namespace

BinaryPersistReader::BinaryPersistReader(std::string_view bytes, PersistClassDatabase const& database)
    : Persist(true),
      m_begin(reinterpret_cast<unsigned char const*>(bytes.data())),
      m_end(m_begin + bytes.size()),
      m_cursor(m_begin),
      m_itemStart(m_begin),
      m_database(database) {
  std::size_t const size = bytes.size();
  if (size < 4 || std::memcmp(m_begin, W::kMagic, 4) != 0)
    fail("not a binary persist stream: it does not begin with \"MTKP\"");
  if (size < W::kHeaderSize)
    fail("the stream is truncated: it has " + std::to_string(size) + " bytes, fewer than its " +
         std::to_string(W::kHeaderSize) + "-byte header");
  auto const version = little(m_begin + 4, 2);
  m_itemStart = m_begin + 4;
  if (version == 0 || version > W::kFormatVersion)
    fail("the stream has format version " + std::to_string(version) +
         (version == 0 ? ", which does not exist"
                       : ", which is newer than this library reads (" + std::to_string(W::kFormatVersion) + ")"));
  auto const flags = little(m_begin + 6, 2);
  m_itemStart = m_begin + 6;
  if (flags != 0) fail("the header has flags " + hex(flags, 4) + ", which this library does not know");
  std::uint64_t const announced = little(m_begin + 8, 8);
  std::uint64_t const present = size - W::kHeaderSize;
  m_itemStart = m_begin + 8;
  if (announced > present)
    fail("the stream is truncated: the header announces " + std::to_string(announced) + " bytes of content, " +
         std::to_string(present) + " are present");
  if (announced < present)
    fail("the header announces " + std::to_string(announced) + " bytes of content, but " +
         std::to_string(present - announced) + " more bytes follow them");
  auto const stored = static_cast<std::uint32_t>(little(m_begin + 16, 4));
  auto const computed = Orvo::Crc32c::of(m_begin + W::kHeaderSize, present);
  m_itemStart = m_begin + 16;
  if (stored != computed)
    fail("the content does not match its checksum (stored " + hex(stored, 8) + ", computed " + hex(computed, 8) +
         "): the stream is corrupted");
  m_cursor = m_itemStart = m_begin + W::kHeaderSize;
}

BinaryPersistReader::~BinaryPersistReader() = default;

void BinaryPersistReader::finish() const {
  checkAllClosed();
  m_itemStart = m_cursor;
  if (m_cursor != m_end)
    fail(std::to_string(m_end - m_cursor) + " bytes follow the root object, where the stream should end");
}

void BinaryPersistReader::need(std::size_t size, char const* what) const {
  if (static_cast<std::size_t>(m_end - m_cursor) < size)
    fail(std::string("the stream ends within ") + what + ": it needs " + std::to_string(size) + " more bytes, " +
         std::to_string(m_end - m_cursor) + " are left");
}

std::uint64_t BinaryPersistReader::loadLittle(std::size_t size) const noexcept {
  std::uint64_t const v = little(m_cursor, size);
  m_cursor += size;
  return v;
}

void BinaryPersistReader::failFound(char const* what, std::uint8_t tag) const {
  fail(std::string("expected ") + what + ", found " + describeTag(tag));
}

void BinaryPersistReader::expectTag(std::uint8_t tag, char const* what) const {
  m_itemStart = m_cursor;
  if (m_cursor == m_end) fail(std::string("expected ") + what + ", found the end of the stream");
  std::uint8_t const found = *m_cursor;
  if (found != tag) failFound(what, found);
  ++m_cursor;
}

BinaryPersistReader::Name& BinaryPersistReader::readName(char const* what) const {
  need(2, what);
  std::uint64_t const index = loadLittle(2);
  if (index < m_names.size()) return m_names[index];
  if (index > m_names.size())
    fail(std::string("expected ") + what + ", found a reference to name " + std::to_string(index) + ", but only " +
         std::to_string(m_names.size()) + " names are defined");
  need(2, what);
  std::uint64_t const length = loadLittle(2);
  need(length, what);
  m_names.push_back(Name{std::string_view(reinterpret_cast<char const*>(m_cursor), length), nullptr, nullptr});
  m_cursor += length;
  return m_names.back();
}

void BinaryPersistReader::expectName(char const* expected, char const* what) const {
  Name& name = readName(what);
  if (name.matched == expected) return;
  if (name.text != expected)
    fail(std::string("expected ") + what + " " + expected + ", found " + std::string(name.text));
  name.matched = expected;
}

void BinaryPersistReader::doBeginCompound(char const* typeName, char const*) const {
  expectTag(W::TAG_BEGIN_COMPOUND, "the start of a compound");
  expectName(typeName, "the compound type");
}

void BinaryPersistReader::doEndCompound() const { expectTag(W::TAG_END_COMPOUND, "the end of a compound"); }

int BinaryPersistReader::doBeginClass(PersistClass const& staticClass) const {
  expectTag(W::TAG_BEGIN_CLASS, "the start of a class");
  Name& name = readName("a class name");
  if (name.matched != staticClass.name()) {
    if (name.text != staticClass.name() && m_database.find(name.text) != &staticClass)
      fail("expected the class " + std::string(staticClass.name()) + ", found the class " + std::string(name.text));
    name.matched = staticClass.name();
  }
  need(4, "a class version");
  return static_cast<int>(static_cast<std::uint32_t>(loadLittle(4)));
}

void BinaryPersistReader::doEndClass() const { expectTag(W::TAG_END_CLASS, "the end of a class"); }

void BinaryPersistReader::doBeginArray(char const*, std::uint64_t count) const {
  expectTag(W::TAG_BEGIN_ARRAY, "the start of an array");
  need(8, "an array count");
  std::uint64_t const stored = loadLittle(8);
  if (stored != count)
    fail("expected an array of " + std::to_string(count) + " elements (its count), found " + std::to_string(stored));
  // Every element takes at least a byte: a count beyond the rest of the
  // stream is corrupt, and is caught before anything is allocated for it.
  if (count > static_cast<std::uint64_t>(m_end - m_cursor))
    fail("the array claims " + std::to_string(count) + " elements, but only " + std::to_string(m_end - m_cursor) +
         " bytes are left");
}

void BinaryPersistReader::doEndArray() const { expectTag(W::TAG_END_ARRAY, "the end of an array"); }

void BinaryPersistReader::doBeginObjectMember(char const*, PersistClass const& dynamicClass) const {
  expectTag(W::TAG_BEGIN_OBJECT, "the start of an object");
  Name& name = readName("a class name");
  if (name.matched == dynamicClass.name()) return;
  if (name.text != dynamicClass.name() && m_database.find(name.text) != &dynamicClass)
    fail("expected an object of class " + std::string(dynamicClass.name()) + ", found class " +
         std::string(name.text));
  name.matched = dynamicClass.name();
}

PersistClass const& BinaryPersistReader::doBeginAnyObjectMember(char const*) const {
  expectTag(W::TAG_BEGIN_OBJECT, "the start of an object or null");
  Name& name = readName("a class name");
  if (!name.resolved) {
    PersistClass const* const found = m_database.find(name.text);
    if (!found) fail("the class " + std::string(name.text) + " is not in the class database");
    if (!found->canCreate()) fail("the class " + std::string(name.text) + " cannot be created behind a pointer");
    name.resolved = found;
  }
  return *name.resolved;
}

void BinaryPersistReader::doEndObjectMember() const { expectTag(W::TAG_END_OBJECT, "the end of an object"); }

void BinaryPersistReader::doValue(char const*, bool& v) const {
  m_itemStart = m_cursor;
  if (m_cursor == m_end) fail("expected a boolean, found the end of the stream");
  std::uint8_t const tag = *m_cursor;
  if (tag != W::TAG_FALSE && tag != W::TAG_TRUE) failFound("a boolean", tag);
  ++m_cursor;
  v = tag == W::TAG_TRUE;
}

void BinaryPersistReader::doValue(char const*, int& v) const {
  expectTag(W::TAG_INT32, "an integer");
  need(4, "an integer");
  v = static_cast<int>(static_cast<std::uint32_t>(loadLittle(4)));
}

void BinaryPersistReader::doValue(char const*, std::uint64_t& v) const {
  expectTag(W::TAG_UINT64, "an unsigned 64-bit integer");
  need(8, "an unsigned 64-bit integer");
  v = loadLittle(8);
}

void BinaryPersistReader::doValue(char const*, double& v) const {
  expectTag(W::TAG_DOUBLE, "a double");
  need(8, "a double");
  std::uint64_t const bits = loadLittle(8);
  std::memcpy(&v, &bits, 8);
}

void BinaryPersistReader::doValue(char const*, std::string& v) const {
  expectTag(W::TAG_STRING, "a string");
  need(4, "a string length");
  std::uint64_t const length = loadLittle(4);
  need(length, "a string");
  v.assign(reinterpret_cast<char const*>(m_cursor), length);
  m_cursor += length;
}

bool BinaryPersistReader::doPresence(char const*, bool) const {
  m_itemStart = m_cursor;
  if (m_cursor == m_end) fail("expected a value or null, found the end of the stream");
  if (*m_cursor != W::TAG_NULL) return true;
  ++m_cursor;
  return false;
}

}  // namespace persist
