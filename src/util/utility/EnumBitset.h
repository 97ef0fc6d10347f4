#pragma once
// A fixed-size bit set indexed by an enumeration, with the text keys the
// machine files use for its bits.
//
// An enumeration opts in by specialising EnumTraits:
//   template <> struct EnumTraits<MyEnum> {
//     static constexpr std::size_t bitCount = 8;
//     static std::map<std::string, MyEnum> const& keyMap();
//   };

#include <bitset>
#include <cstddef>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

#include "util/utility/Basic.h"

namespace Orvo {

template <typename T>
struct EnumTraits;

template <typename T>
class EnumBitset {
public:
  static constexpr std::size_t kSize = EnumTraits<T>::bitCount;
  static constexpr char const orvoAssertSourcePath[] = "util\\utility/EnumBitset";

  EnumBitset() = default;

  static constexpr std::size_t size() noexcept { return kSize; }

  /// Sets or clears one bit. An enumerator at or beyond size() throws
  /// std::out_of_range.
  EnumBitset& set(T flag, bool value = true) {
    std::size_t const f = static_cast<std::size_t>(flag);
    EXPECTS(f < size());
    m_bits.set(f, value);
    return *this;
  }
  EnumBitset& reset(T flag) { return set(flag, false); }

  /// Tests one bit; an enumerator at or beyond size() throws std::out_of_range.
  bool test(T flag) const {
    std::size_t const f = static_cast<std::size_t>(flag);
    EXPECTS(f < size());
    return m_bits.test(f);
  }

  std::size_t count() const noexcept { return m_bits.count(); }
  bool any() const noexcept { return m_bits.any(); }
  bool none() const noexcept { return m_bits.none(); }
  std::bitset<kSize> const& bits() const noexcept { return m_bits; }

  /// Builds a set from text keys. A key missing from the key map throws
  /// std::runtime_error with the key followed by " is not supported".
  static EnumBitset fromKeys(std::vector<std::string> const& keys) {
    EXPECTS(EnumTraits<T>::keyMap().size() <= size());
    auto const& map = EnumTraits<T>::keyMap();
    EnumBitset result;
    for (auto const& key : keys) {
      auto const it = map.find(key);
      if (it == map.end()) throw std::runtime_error(key + " is not supported");
      result.set(it->second);
    }
    return result;
  }

  /// The keys of the set bits, in the key map's (sorted) order.
  std::vector<std::string> toKeys() const {
    EXPECTS(EnumTraits<T>::keyMap().size() <= size());
    std::vector<std::string> keys;
    for (auto const& entry : EnumTraits<T>::keyMap())
      if (test(entry.second)) keys.push_back(entry.first);
    return keys;
  }

  friend bool operator==(EnumBitset const& a, EnumBitset const& b) noexcept { return a.m_bits == b.m_bits; }
  friend bool operator!=(EnumBitset const& a, EnumBitset const& b) noexcept { return !(a == b); }

private:
  std::bitset<kSize> m_bits;
};

}  // namespace Orvo
