#pragma once
// An XML document in memory, read from text or built element by element and
// written back as text. Reading refuses what a hostile file could use against
// its reader: there is no document type processing (so no external entities
// and no entity expansion beyond the five predefined ones and character
// references), no network or file access of any kind, and elements nested
// deeper than kNestingLimit are refused. A malformed text throws
// Orvo::ParseException whose message gives the line and column.

#include <memory>
#include <string>
#include <string_view>

#include "util/utility/DOM/Element.h"

namespace Orvo::DOM {

class Document {
public:
  /// Deeper nesting than any real configuration needs, shallow enough that
  /// recursive walks over a document stay far from the stack's end.
  static constexpr std::size_t kNestingLimit = 256;

  Document() noexcept;
  ~Document();
  Document(Document const&) = delete;
  Document& operator=(Document const&) = delete;

  /// Makes the empty document; false when it cannot be made (no memory).
  /// Every other operation needs a created document.
  bool create();
  bool isCreated() const noexcept { return m_impl != nullptr; }

  /// Replaces the content by the document in `text`. Throws ParseException
  /// on malformed XML, a text without a root element, or nesting beyond
  /// kNestingLimit; the document is then empty.
  void loadFromText(std::wstring const& text);
  /// The same from UTF-8 bytes (a leading byte order mark is skipped).
  void loadFromUtf8(std::string_view bytes);

  /// The root element, or a null element for an empty document.
  Element getRoot() const noexcept;
  /// Makes the root element of an empty document; an existing root is
  /// replaced.
  Element createRoot(std::wstring const& name);

  /// The document as indented text, with an XML declaration.
  std::wstring getXML() const;
  /// The same in UTF-8.
  std::string getXMLUtf8() const;

private:
  struct Impl;
  std::unique_ptr<Impl> m_impl;
};

}  // namespace Orvo::DOM
