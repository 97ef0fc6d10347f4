#include "util/utility/DOM/Document.h"

#include <cstring>
#include <new>
#include <sstream>

#include <pugixml.hpp>

#include "util/utility/Messages.h"
#include "util/utility/ParseException.h"

namespace Orvo::DOM {

struct Document::Impl {
  pugi::xml_document document;
};

namespace {

// Line and column (from 1; the column counts characters, not bytes) of a
// byte offset in UTF-8 text.
std::pair<std::size_t, std::size_t> lineAndColumn(std::string_view text, std::size_t offset) {
  if (offset > text.size()) offset = text.size();
  std::size_t line = 1;
  std::size_t column = 1;
  for (std::size_t i = 0; i < offset; ++i) {
    unsigned char const c = static_cast<unsigned char>(text[i]);
    if (c == '\n') {
      ++line;
      column = 1;
    } else if ((c & 0xC0) != 0x80) {
      ++column;
    }
  }
  return {line, column};
}

// The deepest element below the root, walked without recursion: the nesting
// limit is there because a document is not to be trusted.
pugi::xml_node firstTooDeep(pugi::xml_node const& root, std::size_t limit) {
  std::size_t depth = 1;
  pugi::xml_node n = root;
  while (n) {
    if (depth > limit && n.type() == pugi::node_element) return n;
    if (pugi::xml_node const child = n.first_child()) {
      n = child;
      ++depth;
      continue;
    }
    while (n && !n.next_sibling()) {
      n = n.parent();
      --depth;
    }
    if (n) n = n.next_sibling();
  }
  return pugi::xml_node();
}

// Whether the text could hold elements nested deeper than `limit`. Every
// element of the parsed tree comes from a '<' of its own in the text (no
// entity of a document type is expanded), so a text with no more '<' than
// the limit cannot, and the walk over the tree is not needed.
bool mayNestDeeperThan(std::string_view text, std::size_t limit) noexcept {
  std::size_t count = 0;
  char const* at = text.data();
  char const* const end = at + text.size();
  while (at < end) {
    void const* const found = std::memchr(at, '<', static_cast<std::size_t>(end - at));
    if (!found) break;
    if (++count > limit) return true;
    at = static_cast<char const*>(found) + 1;
  }
  return false;
}

}  // namespace

Document::Document() noexcept = default;
Document::~Document() = default;

bool Document::create() {
  if (m_impl) {
    m_impl->document.reset();
    return true;
  }
  m_impl.reset(new (std::nothrow) Impl());
  return m_impl != nullptr;
}

void Document::loadFromText(std::wstring const& text) { loadFromUtf8(Messages::wideToUtf8(text)); }

void Document::loadFromUtf8(std::string_view bytes) {
  if (!m_impl && !create()) throw std::bad_alloc();
  static constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
  if (bytes.substr(0, kByteOrderMark.size()) == kByteOrderMark) bytes.remove_prefix(kByteOrderMark.size());

  pugi::xml_document& document = m_impl->document;
  // The defaults: elements, attributes, text, CDATA, the predefined entities
  // and character references, end-of-line normalisation. A document type
  // declaration is skipped, never processed.
  pugi::xml_parse_result const result =
      document.load_buffer(bytes.data(), bytes.size(), pugi::parse_default, pugi::encoding_utf8);
  if (!result) {
    document.reset();
    auto const [line, column] = lineAndColumn(bytes, static_cast<std::size_t>(result.offset));
    throw ParseException(std::string("Malformed XML: ") + result.description(), line, column);
  }
  if (!mayNestDeeperThan(bytes, kNestingLimit)) return;
  if (pugi::xml_node const deep = firstTooDeep(document.document_element(), kNestingLimit)) {
    auto const [line, column] = lineAndColumn(bytes, static_cast<std::size_t>(deep.offset_debug()));
    document.reset();
    throw ParseException("Malformed XML: elements nested deeper than " + std::to_string(kNestingLimit) + " levels",
                         line, column);
  }
}

Element Document::getRoot() const noexcept {
  if (!m_impl) return Element();
  return Element(m_impl->document.document_element().internal_object());
}

Element Document::createRoot(std::wstring const& name) {
  if (!m_impl && !create()) throw std::bad_alloc();
  m_impl->document.reset();
  return Element(m_impl->document.append_child(Messages::wideToUtf8(name).c_str()).internal_object());
}

std::string Document::getXMLUtf8() const {
  if (!m_impl) return std::string();
  std::ostringstream out;
  m_impl->document.save(out, "  ", pugi::format_default, pugi::encoding_utf8);
  return out.str();
}

std::wstring Document::getXML() const { return Messages::utf8ToWide(getXMLUtf8()); }

}  // namespace Orvo::DOM
