#pragma once
// Helpers the JSON readers share: parsing a document, typed reads that fail
// by exception, a tolerant tree comparison, and the mapping between JSON
// scalars and Variant.
//
// The typed reads are strict: parseInt takes only an integral number that
// fits an int (1 and 1.0 pass, 1.5, true and "1" throw), parseDbl only a
// number, parseStr only a string, and parseBool a boolean or an integral
// number (0 is false, any other true). A failed read throws
// std::runtime_error.

#include <json/value.h>

#include <iosfwd>
#include <string>

#include "util/utility/Variant.h"

namespace Orvo {

class JsonUtils {
public:
  /// How deeply arrays and objects may nest in a document that parse()
  /// reads; deeper nesting throws Json::Exception rather than exhausting the
  /// stack. jsoncpp's own default, so the settings stay the default ones.
  static constexpr int kNestingLimit = 1000;

  /// Parses a whole document with jsoncpp's default settings into `root`.
  /// False, with the parser's error text in `errors`, for text that is not
  /// JSON. jsoncpp's own exceptions (Json::Exception, a std::exception) pass
  /// through to the caller.
  static bool parse(std::istream& in, Json::Value& root, std::string& errors);
  /// The same for the bytes from `begin` to `end`.
  static bool parse(char const* begin, char const* end, Json::Value& root, std::string& errors);

  /// Compares two trees; numbers within `tolerance` of each other count as
  /// equal, integers and doubles alike. An object member absent on one side
  /// makes the trees unequal, and so does a difference in kind.
  static bool areEqual(Json::Value const& a, Json::Value const& b, double tolerance);

  /// An array of exactly three numbers.
  static bool isThreeDoubles(Json::Value const& value);
  /// The three numbers of a value that isThreeDoubles accepts, read in one
  /// walk over the array; false, and `out` untouched, for any other value.
  static bool getThreeDoubles(Json::Value const& value, double (&out)[3]);

  static int parseInt(Json::Value const& value);
  static double parseDbl(Json::Value const& value);
  /// 0 or 1 for a boolean, the number for an integral number.
  static int parseBool(Json::Value const& value);
  static std::string parseStr(Json::Value const& value);

  /// null -> empty, boolean -> BOOL, integer -> INT, other numbers -> DOUBLE,
  /// string -> STRING. Arrays and objects throw std::runtime_error.
  static Variant parseVariant(Json::Value const& value);
  /// The inverse of parseVariant.
  static Json::Value variantToJson(Variant const& value);
};

}  // namespace Orvo
