#pragma once
// Writes persistent objects in the compact binary form. All numbers are
// little-endian.
//
// Header, 20 bytes:
//   0  "MTKP"                      four bytes
//   4  format version, u16         1
//   6  flags, u16                  0; readers refuse any other
//   8  content length, u64         bytes after the header
//   16 CRC-32C of the content, u32 (Castagnoli, as iSCSI computes it)
// Content: the root object member, as a sequence of items, each a one-byte
// tag and what follows it:
//   0x00 null (absent optional, null pointer)   0x01 false   0x02 true
//   0x03 i32                    0x04 u64                    0x05 f64 (IEEE 754)
//   0x06 string: u32 length, then the bytes
//   0x10 begin object member: class name    0x11 end object member
//   0x12 begin class: class name, i32 version   0x13 end class
//   0x14 begin compound: type name          0x15 end compound
//   0x16 begin array: u64 count             0x17 end array
// A name is a u16 index into the names met so far; the index one past the
// last known name defines the next one, followed by a u16 length and the
// bytes. Keys are not stored: the member layout fixes their order, and the
// tags let a reader check every item's kind.

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "nc/Persist.h"

namespace persist {

class BinaryPersistWriter final : public Persist {
public:
  static constexpr char kMagic[4] = {'M', 'T', 'K', 'P'};
  static constexpr std::uint16_t kFormatVersion = 1;
  static constexpr std::size_t kHeaderSize = 20;

  enum Tag : std::uint8_t {
    TAG_NULL = 0x00,
    TAG_FALSE = 0x01,
    TAG_TRUE = 0x02,
    TAG_INT32 = 0x03,
    TAG_UINT64 = 0x04,
    TAG_DOUBLE = 0x05,
    TAG_STRING = 0x06,
    TAG_BEGIN_OBJECT = 0x10,
    TAG_END_OBJECT = 0x11,
    TAG_BEGIN_CLASS = 0x12,
    TAG_END_CLASS = 0x13,
    TAG_BEGIN_COMPOUND = 0x14,
    TAG_END_COMPOUND = 0x15,
    TAG_BEGIN_ARRAY = 0x16,
    TAG_END_ARRAY = 0x17,
  };

  BinaryPersistWriter();
  ~BinaryPersistWriter() override;

  /// Header and content; fails unless every scope has ended.
  std::string bytes() const;
  /// The same, handing the writer's buffer over rather than copying it; the
  /// writer is spent.
  std::string takeBytes();

  /// `root` as a whole stream. Writing may fill in what a member layout
  /// defaults on the way, hence the non-const reference.
  template <class T>
  static std::string write(T& root) {
    BinaryPersistWriter writer;
    serialize(writer, "root", root);
    return writer.takeBytes();
  }

private:
  /// Room for `size` more bytes at the end of the content.
  unsigned char* grow(std::size_t size) const {
    if (static_cast<std::size_t>(m_limit - m_cursor) < size) nextChunk(size);
    unsigned char* const p = m_cursor;
    m_cursor += size;
    return p;
  }
  /// Starts a chunk with room for at least `size` bytes.
  void nextChunk(std::size_t size) const;
  /// Header and content in one string.
  std::string assemble() const;
  void putTag(Tag tag) const { *grow(1) = tag; }
  void putName(char const* name) const;

  char const* doFormName() const noexcept override { return "binary"; }
  void doBeginCompound(char const* typeName, char const* key) const override;
  void doEndCompound() const override;
  int doBeginClass(PersistClass const& staticClass) const override;
  void doEndClass() const override;
  void doBeginArray(char const* key, std::uint64_t count) const override;
  void doEndArray() const override;
  void doBeginObjectMember(char const* key, PersistClass const& dynamicClass) const override;
  void doEndObjectMember() const override;
  void doValue(char const* key, bool& v) const override;
  void doValue(char const* key, int& v) const override;
  void doValue(char const* key, std::uint64_t& v) const override;
  void doValue(char const* key, double& v) const override;
  void doValue(char const* key, std::string& v) const override;
  bool doPresence(char const* key, bool present) const override;

  /// The stream is written into chunks, which are joined once at the end:
  /// growing one buffer would copy and touch its bytes several times over.
  struct Chunk {
    std::unique_ptr<unsigned char[]> data;
    std::size_t size;
  };
  mutable std::vector<Chunk> m_chunks;
  mutable unsigned char* m_cursor = nullptr;
  mutable unsigned char* m_limit = nullptr;
  /// Names by index, and the texts last seen for each index.
  mutable std::vector<std::string> m_names;
  mutable std::vector<std::pair<char const*, std::uint16_t>> m_nameCache;
};

}  // namespace persist
