#pragma once
// Writes persistent objects in the JSON form: readable, and diffable line by
// line. The document is
//
//   { "format": "mtkit persist", "formatVersion": 1, "root": <object> }
//
// and the visitor's operations map onto it as follows:
//   - an object member is a JSON object under its key, with its dynamic
//     class under "@class";
//   - the first class scope of an object member adds its version there as
//     "@version" and puts its members beside it; any further class scope in
//     the same object (a base class listed apart) is an object of its own
//     under "@" and the class name, with its own "@version";
//   - a compound is a JSON object with its type name under "@type";
//   - an array is a JSON array, whose elements carry no keys;
//   - values are JSON booleans, integers, numbers and strings, and null for
//     an absent optional value or a null pointer. A double is written in the
//     shortest form that reads back to the same bits, always with a point or
//     an exponent; NaN and the infinities as NaN, Infinity and -Infinity,
//     which jsoncpp reads with its special floats allowed. Every NaN is
//     written as NaN, whatever its sign and payload; the binary form keeps
//     those bits.
//
// The text lists members in the order the classes list them, one to a line
// and indented with tabs; an array of plain values that fits stands on one
// line. It is written straight from the objects rather than through a
// jsoncpp tree: a tree of 100,000 machine motions takes gigabytes and costs
// twice the writing itself to build. What it parses into with jsoncpp is
// exactly the tree that writeDocument() gives, and the reader is jsoncpp's.

#include <json/value.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "nc/Persist.h"

namespace persist {

class JsonPersistWriter final : public Persist {
public:
  /// The texts of the document head.
  static constexpr char const* kFormat = "mtkit persist";
  static constexpr int kFormatVersion = 1;

  JsonPersistWriter();
  ~JsonPersistWriter() override;

  /// The document's text, ending with a newline; fails unless every scope
  /// has ended.
  std::string text() const;
  /// The same, handing the writer's buffer over rather than copying it; the
  /// writer is spent.
  std::string takeText();
  /// The document as a jsoncpp tree, for embedding in other JSON.
  Json::Value document() const;

  /// `root` as a whole document under "root". Writing may fill in what a
  /// member layout defaults on the way (a null pointer that the layout
  /// replaces by a default object, say), hence the non-const reference.
  template <class T>
  static std::string write(T& root) {
    JsonPersistWriter writer;
    serialize(writer, "root", root);
    return writer.takeText();
  }
  template <class T>
  static Json::Value writeDocument(T& root) {
    JsonPersistWriter writer;
    serialize(writer, "root", root);
    return writer.document();
  }
  /// Whether `text` is strict UTF-8: no overlong forms, no surrogates,
  /// nothing above U+10FFFF. The JSON form holds only such text.
  static bool isValidUtf8(std::string_view text) noexcept;

  /// A jsoncpp tree as text, in jsoncpp's own layout (keys sorted), which
  /// the reader takes as well.
  static std::string toText(Json::Value const& document);

private:
  struct Entry {
    bool isArray;
    /// Nothing written inside yet.
    bool empty;
    /// An array that has held only plain values so far, on one line.
    bool oneLine;
    bool isObjectMember;
    bool hasClass;
    /// A class scope that opened an object of its own.
    bool ownObject;
    /// Where the array's text starts, after "[".
    std::size_t open;
    /// Where its elements' marks start in m_marks.
    std::size_t marksStart;
  };

  /// Starts the next member: its key in an object, its place in an array.
  /// `plain` tells a plain value from an object or array.
  void startMember(char const* key, bool plain) const;
  void openObject(char const* key) const;
  void closeObject() const;
  /// Turns a one-line array into one element a line.
  void breakArray(Entry& array) const;
  void newline(std::size_t depth) const;
  void appendQuoted(char const* text, std::size_t size) const;
  void appendNumber(double v) const;

  char const* doFormName() const noexcept override { return "JSON"; }
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

  mutable std::string m_text;
  mutable std::vector<Entry> m_stack;
  /// Where each element of the open one-line arrays starts.
  mutable std::vector<std::size_t> m_marks;
  /// The number of open JSON objects and arrays, for indentation.
  mutable std::size_t m_depth = 0;
};

}  // namespace persist
