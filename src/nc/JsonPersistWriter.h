#pragma once
// Writes persistent objects as a JSON document built on jsoncpp: readable,
// and diffable line by line. The document is
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
//     an absent optional value or a null pointer. Doubles keep all 17
//     significant digits; NaN and the infinities are written as NaN,
//     Infinity and -Infinity, which the reader accepts.
// jsoncpp writes the keys of an object in sorted order, so the "@" keys
// come first.

#include <json/value.h>

#include <string>
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

  /// The document; fails unless every scope has ended.
  Json::Value const& document() const;
  /// The document as text, indented with tabs, ending with a newline.
  std::string text() const;

  /// `root` as a whole document under "root". Writing may fill in what a
  /// member layout defaults on the way (a null pointer that the layout
  /// replaces by a default object, say), hence the non-const reference.
  template <class T>
  static Json::Value writeDocument(T& root) {
    JsonPersistWriter writer;
    serialize(writer, "root", root);
    return writer.document();
  }
  template <class T>
  static std::string write(T& root) {
    JsonPersistWriter writer;
    serialize(writer, "root", root);
    return writer.text();
  }
  /// The text of a document, as text() writes it.
  static std::string toText(Json::Value const& document);

private:
  struct Entry {
    Json::Value* value;
    bool isObjectMember;
    bool hasClass;
  };

  /// The place of the next member: a new key of the innermost object, or a
  /// new element of the innermost array.
  Json::Value& slot(char const* key) const;

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

  mutable Json::Value m_document;
  mutable std::vector<Entry> m_stack;
};

}  // namespace persist
