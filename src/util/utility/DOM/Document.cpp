#include "util/utility/DOM/Document.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <sstream>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

#include <pugixml.hpp>

#include "util/utility/Messages.h"
#include "util/utility/ParseException.h"

namespace Orvo::DOM {

struct Document::Impl {
  // The UTF-8 of a text loaded with loadFromText, parsed in place: the
  // document's names and values point into it, so it goes last.
  std::string text;
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
  std::size_t i = 0;
#if defined(__SSE2__)
  // Sixteen bytes at a time: each byte lane counts the '<' it sees, for at
  // most 255 steps before it could overflow; then the lanes are summed and
  // the limit checked, so a huge text stops early.
  __m128i const less = _mm_set1_epi8('<');
  while (text.size() - i >= 16) {
    std::size_t const steps = std::min<std::size_t>((text.size() - i) / 16, 255);
    __m128i lanes = _mm_setzero_si128();
    for (std::size_t step = 0; step < steps; ++step, i += 16) {
      __m128i const bytes = _mm_loadu_si128(reinterpret_cast<__m128i const*>(text.data() + i));
      lanes = _mm_sub_epi8(lanes, _mm_cmpeq_epi8(bytes, less));
    }
    __m128i const sums = _mm_sad_epu8(lanes, _mm_setzero_si128());
    count += static_cast<std::size_t>(_mm_cvtsi128_si32(sums)) + static_cast<std::size_t>(_mm_extract_epi16(sums, 4));
    if (count > limit) return true;
  }
#endif
  for (; i < text.size(); ++i) count += text[i] == '<' ? 1 : 0;
  return count > limit;
}

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

std::string_view withoutByteOrderMark(std::string_view bytes) noexcept {
  if (bytes.substr(0, kByteOrderMark.size()) == kByteOrderMark) bytes.remove_prefix(kByteOrderMark.size());
  return bytes;
}

// The defaults: elements, attributes, text, CDATA, the predefined entities
// and character references, end-of-line normalisation. A document type
// declaration is skipped, never processed.
constexpr unsigned int kParseOptions = pugi::parse_default;

// Throws for a failed parse, or for elements nested deeper than the limit;
// `bytes` is the text as it was before any parse in place.
void check(pugi::xml_document& document, pugi::xml_parse_result const& result, std::string_view bytes) {
  if (!result) {
    document.reset();
    auto const [line, column] = lineAndColumn(bytes, static_cast<std::size_t>(result.offset));
    throw ParseException(std::string("Malformed XML: ") + result.description(), line, column);
  }
  if (pugi::xml_node const deep = firstTooDeep(document.document_element(), Document::kNestingLimit)) {
    auto const [line, column] = lineAndColumn(bytes, static_cast<std::size_t>(deep.offset_debug()));
    document.reset();
    throw ParseException(
        "Malformed XML: elements nested deeper than " + std::to_string(Document::kNestingLimit) + " levels", line,
        column);
  }
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

void Document::loadFromText(std::wstring const& text) {
  if (!m_impl && !create()) throw std::bad_alloc();
  pugi::xml_document& document = m_impl->document;
  // The document may point into the buffer about to be rewritten.
  document.reset();
  std::string& buffer = m_impl->text;
  buffer.clear();
  Messages::appendWideAsUtf8(text, buffer);
  auto const start = static_cast<std::size_t>(withoutByteOrderMark(buffer).data() - buffer.data());
  // The checks read the text before the parse rewrites it in place (that
  // saves the parser a copy of its own).
  bool const mayNestDeep = mayNestDeeperThan(std::string_view(buffer).substr(start), kNestingLimit);
  pugi::xml_parse_result const result =
      document.load_buffer_inplace(buffer.data() + start, buffer.size() - start, kParseOptions, pugi::encoding_utf8);
  if (!result || mayNestDeep) {
    // Failures are reported against the text as it was.
    std::string const original = Messages::wideToUtf8(text);
    check(document, result, withoutByteOrderMark(original));
  }
}

void Document::loadFromUtf8(std::string_view bytes) {
  if (!m_impl && !create()) throw std::bad_alloc();
  bytes = withoutByteOrderMark(bytes);
  pugi::xml_parse_result const result =
      m_impl->document.load_buffer(bytes.data(), bytes.size(), kParseOptions, pugi::encoding_utf8);
  if (!result || mayNestDeeperThan(bytes, kNestingLimit)) check(m_impl->document, result, bytes);
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
