#pragma once
// Reads the binary form of BinaryPersistWriter, strictly: the header must
// name the format at a version this library reads, announce exactly the
// bytes that follow and carry their checksum; every item must have the tag
// the layout expects, every array the count it expects, and nothing may
// follow the root. Failures throw PersistError with the byte offset of the
// item and the member path; no read goes past the end of the bytes.

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "nc/Persist.h"
#include "nc/PersistClassDatabase.h"

namespace persist {

class BinaryPersistReader final : public Persist {
public:
  /// Checks the header and the checksum. `bytes` and `database` must outlive
  /// the reader.
  BinaryPersistReader(std::string_view bytes, PersistClassDatabase const& database);
  ~BinaryPersistReader() override;

  /// Fails unless every scope has ended and the content is used up.
  void finish() const;

  /// Reads the stream's root into `target`, through a fresh T: on failure
  /// `target` is left as it was.
  template <class T>
  static void read(std::string_view bytes, PersistClassDatabase const& database, T& target) {
    BinaryPersistReader reader(bytes, database);
    T object;
    serialize(reader, "root", object);
    reader.finish();
    target = std::move(object);
  }

private:
  struct Name {
    std::string_view text;
    /// The expected text it was last found equal to, and the class the
    /// database gives it, so that later uses compare a pointer.
    char const* matched;
    PersistClass const* resolved;
  };

  void need(std::size_t size, char const* what) const;
  /// Reads the tag of the next item, which must be `tag`.
  void expectTag(std::uint8_t tag, char const* what) const;
  [[noreturn]] void failFound(char const* what, std::uint8_t tag) const;
  std::uint64_t loadLittle(std::size_t size) const noexcept;
  Name& readName(char const* what) const;
  /// Reads a name, which must be `expected`.
  void expectName(char const* expected, char const* what) const;

  char const* doFormName() const noexcept override { return "binary"; }
  std::optional<std::uint64_t> doByteOffset() const noexcept override {
    return static_cast<std::uint64_t>(m_itemStart - m_begin);
  }
  void doBeginCompound(char const* typeName, char const* key) const override;
  void doEndCompound() const override;
  int doBeginClass(PersistClass const& staticClass) const override;
  void doEndClass() const override;
  void doBeginArray(char const* key, std::uint64_t count) const override;
  void doEndArray() const override;
  void doBeginObjectMember(char const* key, PersistClass const& dynamicClass) const override;
  PersistClass const& doBeginAnyObjectMember(char const* key) const override;
  void doEndObjectMember() const override;
  void doValue(char const* key, bool& v) const override;
  void doValue(char const* key, int& v) const override;
  void doValue(char const* key, std::uint64_t& v) const override;
  void doValue(char const* key, double& v) const override;
  void doValue(char const* key, std::string& v) const override;
  bool doPresence(char const* key, bool present) const override;

  unsigned char const* const m_begin;
  unsigned char const* const m_end;
  mutable unsigned char const* m_cursor;
  /// Where the item being read starts, for messages.
  mutable unsigned char const* m_itemStart;
  PersistClassDatabase const& m_database;
  mutable std::vector<Name> m_names;
};

}  // namespace persist
