#pragma once
// Reads the JSON documents of JsonPersistWriter, strictly: the text must be
// one JSON document without comments or duplicate keys, every member must
// have the kind the layout expects, every object must hold no key that the
// layout does not read, and every array as many elements as its count. A
// document of a newer format version or a class stored at a newer version
// than this library knows is refused. Failures throw PersistError with the
// member path, such as "root.m_container_versioned[1].motion.m_isValid".

#include <json/value.h>

#include <deque>
#include <string>
#include <string_view>
#include <vector>

#include "nc/Persist.h"
#include "nc/PersistClassDatabase.h"

namespace persist {

class JsonPersistReader final : public Persist {
public:
  /// Checks the document head; `database` resolves the classes behind owned
  /// pointers and must outlive the reader, as must `document`.
  JsonPersistReader(Json::Value const& document, PersistClassDatabase const& database);
  ~JsonPersistReader() override;

  /// Fails unless every scope has ended and the document holds nothing more.
  void finish() const;

  /// Parses JSON text strictly (NaN and the infinities allowed); a text that
  /// is not one JSON document throws PersistError with jsoncpp's account.
  static Json::Value parse(std::string_view text);

  /// Reads the document's root into `target`, through a fresh T: on failure
  /// `target` is left as it was.
  template <class T>
  static void readDocument(Json::Value const& document, PersistClassDatabase const& database, T& target) {
    JsonPersistReader reader(document, database);
    T object;
    serialize(reader, "root", object);
    reader.finish();
    target = std::move(object);
  }
  template <class T>
  static void read(std::string_view text, PersistClassDatabase const& database, T& target) {
    Json::Value const document = parse(text);
    readDocument(document, database, target);
  }

private:
  struct Entry {
    Json::Value const* value;
    bool isObjectMember;
    bool hasClass;
    /// A class scope that shares its object member's JSON object.
    bool shared;
    Json::ArrayIndex consumed;
    Json::ArrayIndex next;
    std::size_t keysStart;
  };

  /// The member under `key` of the innermost object, or the next element of
  /// the innermost array; fails, naming `what`, when it is missing.
  Json::Value const& slot(char const* key, std::string_view what) const;
  /// The same, or null when it is missing.
  Json::Value const* findSlot(char const* key) const;
  Json::Value const& member(Json::Value const& object, char const* key, char const* what) const;
  void push(Json::Value const& value, bool isObjectMember, bool shared) const;
  /// Pops the innermost entry, failing if its object holds a key the layout
  /// did not read.
  void pop() const;
  [[noreturn]] void failFound(char const* expected, Json::Value const& found) const;
  PersistClass const* resolve(std::string const& name) const;

  char const* doFormName() const noexcept override { return "JSON"; }
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

  Json::Value const& m_document;
  PersistClassDatabase const& m_database;
  mutable std::vector<Entry> m_stack;
  /// The keys read from the objects on the stack, for naming one that was not.
  mutable std::vector<std::string_view> m_keys;
  /// Keys made up at run time ("@" and a class name), kept for m_keys.
  mutable std::deque<std::string> m_madeKeys;
};

}  // namespace persist
