#pragma once
// Numbers to and from text in the one form files use, whatever the process
// locale: a dot for the decimal point, no grouping.

#include <string>
#include <string_view>

namespace Orvo {

class Format {
public:
  /// The shortest text that reads back as the same double ("0.1", "1000",
  /// "1e-07"); "nan", "inf" and "-inf" for the non-finite values.
  static std::wstring getAsPosixWString(double value);
  /// A decimal unsigned number, nothing else: no sign, no spaces, no
  /// fraction, at most 4294967295. Anything else throws ParseException.
  static unsigned int parseUnsigned(std::wstring const& text);
  /// A decimal number as files write it ("12", "-0.5", "1e3"), the whole
  /// text and nothing else; otherwise ParseException.
  static double parseDouble(std::wstring const& text);
  /// The same two on UTF-8 text, as a reader gets it from a document: the
  /// same numbers, the same values, the same refusals.
  static unsigned int parseUnsigned(std::string_view utf8);
  static double parseDouble(std::string_view utf8);
};

}  // namespace Orvo
