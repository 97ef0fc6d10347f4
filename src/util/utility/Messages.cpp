#include "util/utility/Messages.h"

#include <cstddef>
#if defined(__SSE2__)
#include <emmintrin.h>
#endif
#include <type_traits>

namespace Orvo {

namespace {
constexpr char32_t kReplacement = 0xFFFD;

void appendUtf8(std::string& out, char32_t cp) {
  if (cp > 0x10FFFF || (cp >= 0xD800 && cp <= 0xDFFF)) cp = kReplacement;
  if (cp < 0x80) {
    out.push_back(static_cast<char>(cp));
  } else if (cp < 0x800) {
    out.push_back(static_cast<char>(0xC0 | (cp >> 6)));
    out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
  } else if (cp < 0x10000) {
    out.push_back(static_cast<char>(0xE0 | (cp >> 12)));
    out.push_back(static_cast<char>(0x80 | ((cp >> 6) & 0x3F)));
    out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
  } else {
    out.push_back(static_cast<char>(0xF0 | (cp >> 18)));
    out.push_back(static_cast<char>(0x80 | ((cp >> 12) & 0x3F)));
    out.push_back(static_cast<char>(0x80 | ((cp >> 6) & 0x3F)));
    out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
  }
}

void appendWide(std::wstring& out, char32_t cp) {
  if constexpr (sizeof(wchar_t) >= 4) {
    out.push_back(static_cast<wchar_t>(cp));
  } else {
    if (cp >= 0x10000) {
      cp -= 0x10000;
      out.push_back(static_cast<wchar_t>(0xD800 + (cp >> 10)));
      out.push_back(static_cast<wchar_t>(0xDC00 + (cp & 0x3FF)));
    } else {
      out.push_back(static_cast<wchar_t>(cp));
    }
  }
}

/// One code point decoded at `i`.
struct Decoded {
  char32_t codePoint;
  /// The bytes it took; 0 for a malformed sequence.
  std::size_t length;
};

Decoded decodeAt(std::string_view bytes, std::size_t i) noexcept {
  unsigned char const b0 = static_cast<unsigned char>(bytes[i]);
  if (b0 < 0x80) return {b0, 1};
  std::size_t length = 0;
  char32_t cp = 0;
  char32_t minimum = 0;
  if ((b0 & 0xE0) == 0xC0) { length = 2; cp = b0 & 0x1F; minimum = 0x80; }
  else if ((b0 & 0xF0) == 0xE0) { length = 3; cp = b0 & 0x0F; minimum = 0x800; }
  else if ((b0 & 0xF8) == 0xF0) { length = 4; cp = b0 & 0x07; minimum = 0x10000; }
  else return {kReplacement, 0};
  if (i + length > bytes.size()) return {kReplacement, 0};
  for (std::size_t k = 1; k < length; ++k) {
    unsigned char const b = static_cast<unsigned char>(bytes[i + k]);
    if ((b & 0xC0) != 0x80) return {kReplacement, 0};
    cp = (cp << 6) | (b & 0x3F);
  }
  if (cp < minimum || cp > 0x10FFFF || (cp >= 0xD800 && cp <= 0xDFFF)) return {kReplacement, 0};
  return {cp, length};
}
}  // namespace

std::wstring Messages::utf8ToWide(std::string const& utf8) {
  std::wstring out;
  appendUtf8AsWide(utf8, out);
  return out;
}

void Messages::appendUtf8AsWide(std::string_view utf8, std::wstring& out) {
  // A run of ASCII, the common case, is widened without decoding, straight
  // into the string: append from a range of chars would build a temporary
  // wide string first, a second allocation for every text.
  std::size_t i = 0;
  while (i < utf8.size() && static_cast<unsigned char>(utf8[i]) < 0x80) ++i;
  std::size_t const start = out.size();
  // No text decodes to more characters than it has bytes.
  out.reserve(start + utf8.size());
  out.resize(start + i);
  wchar_t* const target = out.data() + start;
  for (std::size_t k = 0; k < i; ++k) target[k] = static_cast<wchar_t>(static_cast<unsigned char>(utf8[k]));
  if (i == utf8.size()) return;
  while (i < utf8.size()) {
    Decoded const decoded = decodeAt(utf8, i);
    appendWide(out, decoded.codePoint);
    // A malformed sequence is replaced byte by byte, so that what follows a
    // broken lead byte is still read.
    i += decoded.length > 0 ? decoded.length : 1;
  }
}

bool Messages::isValidUtf8(std::string_view bytes) noexcept {
  std::size_t i = 0;
  while (i < bytes.size()) {
    std::size_t const length = decodeAt(bytes, i).length;
    if (length == 0) return false;
    i += length;
  }
  return true;
}

std::string Messages::wideToUtf8(std::wstring const& wide) {
  std::string out;
  out.reserve(wide.size());
  appendWideAsUtf8(wide, out);
  return out;
}

void Messages::appendWideAsUtf8(std::wstring const& wide, std::string& out) {
  // Runs of ASCII, the common case (a whole configuration document, say),
  // are copied without encoding: with SSE2, where wide characters are 32
  // bits, 16 characters are tested and narrowed at a time. The rest, from
  // the first other character on, go one by one.
  using Unit = std::make_unsigned_t<wchar_t>;
  wchar_t const* const source = wide.data();
  std::size_t const size = wide.size();
  std::size_t const start = out.size();
  out.resize(start + size);
  char* const target = out.data() + start;
  std::size_t ascii = 0;
#if defined(__SSE2__)
  if constexpr (sizeof(wchar_t) == 4) {
    __m128i const high = _mm_set1_epi32(~0x7F);
    while (ascii + 16 <= size) {
      __m128i const a = _mm_loadu_si128(reinterpret_cast<__m128i const*>(source + ascii));
      __m128i const b = _mm_loadu_si128(reinterpret_cast<__m128i const*>(source + ascii + 4));
      __m128i const c = _mm_loadu_si128(reinterpret_cast<__m128i const*>(source + ascii + 8));
      __m128i const d = _mm_loadu_si128(reinterpret_cast<__m128i const*>(source + ascii + 12));
      __m128i const any = _mm_and_si128(_mm_or_si128(_mm_or_si128(a, b), _mm_or_si128(c, d)), high);
      if (_mm_movemask_epi8(_mm_cmpeq_epi32(any, _mm_setzero_si128())) != 0xFFFF) break;
      // Every value is below 0x80, so the saturating packs keep it as it is.
      __m128i const bytes = _mm_packus_epi16(_mm_packs_epi32(a, b), _mm_packs_epi32(c, d));
      _mm_storeu_si128(reinterpret_cast<__m128i*>(target + ascii), bytes);
      ascii += 16;
    }
  }
#endif
  while (ascii < size && static_cast<Unit>(source[ascii]) < 0x80) {
    target[ascii] = static_cast<char>(source[ascii]);
    ++ascii;
  }
  out.resize(start + ascii);
  for (std::size_t i = ascii; i < wide.size(); ++i) {
    char32_t cp = static_cast<char32_t>(wide[i]);
    if constexpr (sizeof(wchar_t) < 4) {
      if (cp >= 0xD800 && cp <= 0xDBFF && i + 1 < wide.size()) {
        char32_t const lo = static_cast<char32_t>(wide[i + 1]);
        if (lo >= 0xDC00 && lo <= 0xDFFF) {
          cp = 0x10000 + ((cp - 0xD800) << 10) + (lo - 0xDC00);
          ++i;
        }
      }
    }
    appendUtf8(out, cp);
  }
}

}  // namespace Orvo
