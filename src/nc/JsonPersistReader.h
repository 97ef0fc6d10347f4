#pragma once
// Reads the JSON form of JsonPersistWriter, strictly: the text must be one
// JSON document without comments or duplicate keys, every member must have
// the kind the layout expects, every object must hold no key that the
// layout does not read, and every array as many elements as its count. A
// document of a newer format version or a class stored at a newer version
// than this library knows is refused. Failures throw PersistError with the
// member path, such as "root.m_container_versioned[1].motion.m_isValid".
//
// Text is parsed by jsoncpp piece by piece, as the layout reaches it: a value
// whose text is short (under 64 KiB, such as one machine motion) is parsed
// whole; a longer object or array is only scanned for where its members or
// elements begin and end, and each of those is parsed when it is read. So a
// large document never stands in memory as one jsoncpp tree (100,000
// motions would take gigabytes), and each small tree is read while it is
// still in the cache. A document already parsed is read as it is.

#include <json/value.h>

#include <cstdint>
#include <deque>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "nc/Persist.h"
#include "nc/PersistClassDatabase.h"

namespace Json {
class CharReader;
}

namespace persist {

class JsonPersistReader final : public Persist {
public:
  /// Reads a parsed document. `document` and `database` must outlive the
  /// reader; `database` resolves the classes behind owned pointers.
  JsonPersistReader(Json::Value const& document, PersistClassDatabase const& database);
  /// A value whose text is shorter than this is parsed whole.
  static constexpr std::size_t kParseWholeBelow = 64 * 1024;

  /// Reads JSON text, which must outlive the reader. `parseWholeBelow` is
  /// for tests, which read short texts the way long ones are read.
  JsonPersistReader(std::string_view text, PersistClassDatabase const& database,
                    std::size_t parseWholeBelow = kParseWholeBelow);
  ~JsonPersistReader() override;

  /// Fails unless every scope has ended and the document holds nothing more.
  void finish() const;

  /// Parses JSON text strictly (NaN and the infinities allowed); a text that
  /// is not one JSON document throws PersistError with jsoncpp's account.
  static Json::Value parse(std::string_view text);

  /// Reads the root into `target`, through a fresh T: on failure `target`
  /// is left as it was.
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
    JsonPersistReader reader(text, database);
    T object;
    serialize(reader, "root", object);
    reader.finish();
    target = std::move(object);
  }

private:
  static constexpr std::size_t kNone = static_cast<std::size_t>(-1);

  /// A value of the document: parsed, or the span of its text, parsed only
  /// when it is read. The end of a long value in text is found when it has
  /// been read, and handed back to where it came from: the member of an
  /// object, or the element of an array, of the entry `from`.
  struct Node {
    Json::Value const* value = nullptr;
    char const* begin = nullptr;
    /// Null while not known.
    char const* end = nullptr;
    std::size_t from = kNone;
    std::size_t member = kNone;
    explicit operator bool() const noexcept { return value || begin; }
  };
  /// A member of an object on the stack; looked up by a linear search,
  /// which for the handful of keys of a class beats a search of jsoncpp's
  /// map, and tells which keys were never read.
  struct Member {
    std::string_view name;
    Node node;
    bool read;
  };
  struct Entry {
    Node node;
    bool isObjectMember = false;
    bool hasClass = false;
    /// A class scope that reads the members of its object member, the
    /// entry `owner`.
    bool shared = false;
    std::size_t owner = kNone;
    /// The object's members in m_members, from here to the end of the list
    /// (an entry's members are the last while it is the innermost object).
    std::size_t membersBegin = 0;
    /// An object in text: where the next member that is not listed yet
    /// begins; null once all are listed.
    char const* unlisted = nullptr;
    /// The next element of a parsed array (jsoncpp keeps arrays in a map,
    /// where stepping is cheaper than looking each index up), or where the
    /// next element of an array in text begins.
    Json::Value::const_iterator next;
    char const* cursor = nullptr;
    std::uint64_t seen = 0;
    std::uint64_t count = 0;
    /// The tree parsed for this node, which it owns.
    std::unique_ptr<Json::Value> owned;
  };

  /// The member `key` of the innermost object, or the next element of the
  /// innermost array; empty when there is none.
  Node findSlot(char const* key) const;
  Node findMember(std::size_t object, char const* key) const;
  /// Lists the next member of an object in text; false when there is none.
  bool listMember(std::size_t object) const;
  /// The same, failing, naming `what`, when it is missing.
  Node slotNode(char const* key, std::string_view what) const;
  /// A plain value: the node parsed, if it was not yet.
  Json::Value const& valueOf(Node const& node) const;
  Json::Value const& slot(char const* key, std::string_view what) const { return valueOf(slotNode(key, what)); }
  Json::Value const& member(char const* key, char const* what) const;
  bool isObject(Node const& node) const { return node.value ? node.value->isObject() : *node.begin == '{'; }
  bool isArray(Node const& node) const { return node.value ? node.value->isArray() : *node.begin == '['; }
  bool isNull(Node const& node) const;
  /// The end of a node in text, scanning for it if it is not known, and
  /// handing it back to where the node came from.
  char const* endOf(Node& node) const;
  void settle(Node const& node, char const* end) const;
  /// Makes `node`, an object or array, the innermost entry.
  void push(Node node, bool isObjectMember) const;
  /// Pops the innermost entry, failing if its object holds a key the layout
  /// did not read.
  void pop() const;
  [[noreturn]] void failFound(char const* expected, Node const& found) const;
  std::string describe(Node const& node) const;
  /// The elements of an array in text, counted for a message.
  std::uint64_t countElements(char const* from) const;

  // The text scanner.
  /// Where the value that starts at `p` ends; with `limit`, null when it is
  /// longer than that.
  char const* scanValue(char const* p, std::size_t limit = static_cast<std::size_t>(-1)) const;
  char const* scanString(char const* p) const;
  char const* skipSpace(char const* p) const noexcept;
  /// The character at `p`, or a NUL at the end of the text, which no
  /// structural character matches.
  char peek(char const* p) const noexcept { return p == m_textEnd ? '\0' : *p; }
  /// Parses a span with jsoncpp into `into`.
  void parseSpan(char const* begin, char const* end, Json::Value& into) const;
  [[noreturn]] void failText(char const* at, std::string const& problem) const;

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

  void checkHead() const;

  PersistClassDatabase const& m_database;
  char const* const m_textBegin = nullptr;
  char const* const m_textEnd = nullptr;
  std::size_t const m_parseWholeBelow = kParseWholeBelow;
  /// jsoncpp's readers, made when first needed: for arrays and objects, and
  /// for any value.
  mutable std::unique_ptr<Json::CharReader> m_reader;
  mutable std::unique_ptr<Json::CharReader> m_anyRootReader;
  mutable std::vector<Entry> m_stack;
  mutable std::vector<Member> m_members;
  /// Keys of objects in text that had escapes, decoded.
  mutable std::deque<std::string> m_keys;
  /// A plain value parsed from text, while it is read.
  mutable Json::Value m_scratch;
  /// Where the document's text ends, once known.
  mutable char const* m_documentEnd = nullptr;
};

}  // namespace persist
