#include "nc/BinaryPersistWriter.h"

#include <algorithm>
#include <cstring>

#include "util/utility/Crc32c.h"

namespace persist {

namespace {

void storeLittle(unsigned char* p, std::uint64_t v, std::size_t size) noexcept {
  for (std::size_t i = 0; i < size; ++i) p[i] = static_cast<unsigned char>(v >> (8 * i));
}

}  // namespace

BinaryPersistWriter::BinaryPersistWriter() : Persist(false) {
  // The header's room; it is filled in once the content is known.
  grow(kHeaderSize);
}

BinaryPersistWriter::~BinaryPersistWriter() = default;

void BinaryPersistWriter::nextChunk(std::size_t size) const {
  constexpr std::size_t kFirst = 1 << 16;
  // At most 1 MiB, so that a chunk is still in the cache when it is
  // checksummed and copied.
  constexpr std::size_t kLargest = 1 << 20;
  if (!m_chunks.empty()) m_chunks.back().size = static_cast<std::size_t>(m_cursor - m_chunks.back().data.get());
  std::size_t capacity = m_chunks.empty() ? kFirst : std::min(kLargest, 2 * static_cast<std::size_t>(m_limit - m_chunks.back().data.get()));
  capacity = std::max(capacity, size);
  // Left uninitialised: every byte is written before it is read.
  m_chunks.push_back(Chunk{std::unique_ptr<unsigned char[]>(new unsigned char[capacity]), 0});
  m_cursor = m_chunks.back().data.get();
  m_limit = m_cursor + capacity;
}

std::string BinaryPersistWriter::assemble() const {
  checkAllClosed();
  m_chunks.back().size = static_cast<std::size_t>(m_cursor - m_chunks.back().data.get());
  std::size_t total = 0;
  for (Chunk const& chunk : m_chunks) total += chunk.size;
  std::string out;
  out.reserve(total);
  // Each chunk is checksummed just before it is copied, while it is in the
  // cache.
  Orvo::Crc32c crc;
  for (std::size_t i = 0; i < m_chunks.size(); ++i) {
    std::size_t const skip = i == 0 ? kHeaderSize : 0;
    crc.add(m_chunks[i].data.get() + skip, m_chunks[i].size - skip);
    out.append(reinterpret_cast<char const*>(m_chunks[i].data.get()), m_chunks[i].size);
  }
  auto* const p = reinterpret_cast<unsigned char*>(&out[0]);
  std::memcpy(p, kMagic, 4);
  storeLittle(p + 4, kFormatVersion, 2);
  storeLittle(p + 6, 0, 2);
  storeLittle(p + 8, total - kHeaderSize, 8);
  storeLittle(p + 16, crc.value(), 4);
  return out;
}

std::string BinaryPersistWriter::bytes() const { return assemble(); }

std::string BinaryPersistWriter::takeBytes() {
  std::string out = assemble();
  m_chunks.clear();
  m_cursor = m_limit = nullptr;
  return out;
}

void BinaryPersistWriter::putName(char const* name) const {
  for (auto const& cached : m_nameCache) {
    if (cached.first == name) {
      storeLittle(grow(2), cached.second, 2);
      return;
    }
  }
  // The same text may sit at another address (a literal of another unit).
  for (std::size_t i = 0; i < m_names.size(); ++i) {
    if (m_names[i] == name) {
      m_nameCache.emplace_back(name, static_cast<std::uint16_t>(i));
      storeLittle(grow(2), i, 2);
      return;
    }
  }
  std::size_t const length = std::strlen(name);
  if (m_names.size() >= 0xFFFF) fail("more than 65535 distinct class and type names");
  if (length > 0xFFFF) fail("a class or type name longer than 65535 bytes");
  std::uint16_t const index = static_cast<std::uint16_t>(m_names.size());
  m_names.emplace_back(name, length);
  m_nameCache.emplace_back(name, index);
  unsigned char* const p = grow(4 + length);
  storeLittle(p, index, 2);
  storeLittle(p + 2, length, 2);
  std::memcpy(p + 4, name, length);
}

void BinaryPersistWriter::doBeginCompound(char const* typeName, char const*) const {
  putTag(TAG_BEGIN_COMPOUND);
  putName(typeName);
}

void BinaryPersistWriter::doEndCompound() const { putTag(TAG_END_COMPOUND); }

int BinaryPersistWriter::doBeginClass(PersistClass const& staticClass) const {
  putTag(TAG_BEGIN_CLASS);
  putName(staticClass.name());
  storeLittle(grow(4), static_cast<std::uint32_t>(staticClass.version()), 4);
  return staticClass.version();
}

void BinaryPersistWriter::doEndClass() const { putTag(TAG_END_CLASS); }

void BinaryPersistWriter::doBeginArray(char const*, std::uint64_t count) const {
  unsigned char* const p = grow(9);
  p[0] = TAG_BEGIN_ARRAY;
  storeLittle(p + 1, count, 8);
}

void BinaryPersistWriter::doEndArray() const { putTag(TAG_END_ARRAY); }

void BinaryPersistWriter::doBeginObjectMember(char const*, PersistClass const& dynamicClass) const {
  putTag(TAG_BEGIN_OBJECT);
  putName(dynamicClass.name());
}

void BinaryPersistWriter::doEndObjectMember() const { putTag(TAG_END_OBJECT); }

void BinaryPersistWriter::doValue(char const*, bool& v) const { putTag(v ? TAG_TRUE : TAG_FALSE); }

void BinaryPersistWriter::doValue(char const*, int& v) const {
  unsigned char* const p = grow(5);
  p[0] = TAG_INT32;
  storeLittle(p + 1, static_cast<std::uint32_t>(v), 4);
}

void BinaryPersistWriter::doValue(char const*, std::uint64_t& v) const {
  unsigned char* const p = grow(9);
  p[0] = TAG_UINT64;
  storeLittle(p + 1, v, 8);
}

void BinaryPersistWriter::doValue(char const*, double& v) const {
  std::uint64_t bits;
  std::memcpy(&bits, &v, 8);
  unsigned char* const p = grow(9);
  p[0] = TAG_DOUBLE;
  storeLittle(p + 1, bits, 8);
}

void BinaryPersistWriter::doValue(char const*, std::string& v) const {
  if (v.size() > 0xFFFFFFFFu) fail("a string longer than 4294967295 bytes");
  unsigned char* const p = grow(5 + v.size());
  p[0] = TAG_STRING;
  storeLittle(p + 1, v.size(), 4);
  if (!v.empty()) std::memcpy(p + 5, v.data(), v.size());
}

bool BinaryPersistWriter::doPresence(char const*, bool present) const {
  if (!present) putTag(TAG_NULL);
  return present;
}

}  // namespace persist
