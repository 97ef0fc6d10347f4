#pragma once
// Conversions between UTF-8 narrow strings and wide strings.

#include <string>

namespace Orvo {

class Messages {
public:
  /// Decodes UTF-8; a malformed sequence becomes U+FFFD, never an exception.
  static std::wstring utf8ToWide(std::string const& utf8);
  /// Encodes as UTF-8; a lone surrogate or out-of-range value becomes U+FFFD.
  static std::string wideToUtf8(std::wstring const& wide);
};

}  // namespace Orvo
