#pragma once
// Conversions between UTF-8 narrow strings and wide strings.

#include <string>
#include <string_view>

namespace Orvo {

class Messages {
public:
  /// Decodes UTF-8; a malformed sequence becomes U+FFFD, never an exception.
  static std::wstring utf8ToWide(std::string const& utf8);
  /// Appends `utf8` to `out` decoded as utf8ToWide decodes it, so that a
  /// caller can keep reusing the storage of `out`.
  static void appendUtf8AsWide(std::string_view utf8, std::wstring& out);
  /// utf8ToWide under the name the script-facing classes use.
  static std::wstring fromUTF8ToWideUnicode(std::string const& utf8) { return utf8ToWide(utf8); }
  /// Encodes as UTF-8; a lone surrogate or out-of-range value becomes U+FFFD.
  static std::string wideToUtf8(std::wstring const& wide);
  /// Appends `wide` to `out` encoded as wideToUtf8 encodes it, so that a
  /// caller can keep reusing the storage of `out`.
  static void appendWideAsUtf8(std::wstring const& wide, std::string& out);
  /// True when `bytes` is well-formed UTF-8, which is when utf8ToWide
  /// replaces nothing: no stray or missing continuation byte, no overlong
  /// form, no surrogate and nothing beyond U+10FFFF.
  static bool isValidUtf8(std::string_view bytes) noexcept;
};

}  // namespace Orvo
