#pragma once
// An EnumBitset in JSON: a word, an array of words, or null for no bits.
// Templates, so they live in this header alone.

#include <json/value.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "util/utility/EnumBitset.h"

namespace Orvo {

class EnumBitsetJson {
public:
  /// Null, an empty array or an empty object leave every bit clear; a string
  /// sets the bit it names (an empty string none); an array sets the bit of
  /// each element's asString. Anything else throws std::runtime_error
  /// "Expected string or array node."; an unknown word throws
  /// std::runtime_error with the word followed by " is not supported".
  template <typename T>
  static EnumBitset<T> load(Json::Value const& value) {
    std::vector<std::string> words;
    if (value.empty()) return EnumBitset<T>();
    if (value.isString()) {
      if (!value.asString().empty()) words.push_back(value.asString());
    } else if (value.isArray()) {
      // Each word is checked as it comes, so the first bad element is the one reported.
      for (Json::ArrayIndex i = 0; i < value.size(); ++i) {
        words.push_back(value[i].asString());
        if (EnumTraits<T>::keyMap().count(words.back()) == 0) throw std::runtime_error(words.back() + " is not supported");
      }
    } else {
      throw std::runtime_error("Expected string or array node.");
    }
    return EnumBitset<T>::fromKeys(words);
  }

  /// Null when no bit is set, else an array of the set words in the key
  /// map's (sorted) order.
  template <typename T>
  static Json::Value save(EnumBitset<T> const& bits) {
    Json::Value result;
    for (auto const& word : bits.toKeys()) result.append(word);
    return result;
  }
};

}  // namespace Orvo
