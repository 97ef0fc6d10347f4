#include "util/utility/Crc32.h"

#include <array>

namespace Orvo {

namespace {

using Tables = std::array<std::array<std::uint32_t, 256>, 8>;

// Table k holds the checksum of a byte followed by k zero bytes, which lets
// eight bytes be folded in with eight independent look-ups.
constexpr Tables makeTables() {
  Tables t{};
  for (std::uint32_t i = 0; i < 256; ++i) {
    std::uint32_t c = i;
    for (int bit = 0; bit < 8; ++bit) c = (c & 1u) ? 0xEDB88320u ^ (c >> 1) : c >> 1;
    t[0][i] = c;
  }
  for (std::size_t k = 1; k < 8; ++k)
    for (std::size_t i = 0; i < 256; ++i) t[k][i] = (t[k - 1][i] >> 8) ^ t[0][t[k - 1][i] & 0xFFu];
  return t;
}

constexpr Tables kTables = makeTables();

inline std::uint32_t loadLittle32(unsigned char const* p) noexcept {
  return static_cast<std::uint32_t>(p[0]) | static_cast<std::uint32_t>(p[1]) << 8 |
         static_cast<std::uint32_t>(p[2]) << 16 | static_cast<std::uint32_t>(p[3]) << 24;
}

}  // namespace

Crc32& Crc32::add(void const* data, std::size_t size) noexcept {
  auto const* p = static_cast<unsigned char const*>(data);
  std::uint32_t c = m_state;
  while (size >= 8) {
    std::uint32_t const lo = loadLittle32(p) ^ c;
    std::uint32_t const hi = loadLittle32(p + 4);
    c = kTables[7][lo & 0xFFu] ^ kTables[6][(lo >> 8) & 0xFFu] ^ kTables[5][(lo >> 16) & 0xFFu] ^
        kTables[4][lo >> 24] ^ kTables[3][hi & 0xFFu] ^ kTables[2][(hi >> 8) & 0xFFu] ^
        kTables[1][(hi >> 16) & 0xFFu] ^ kTables[0][hi >> 24];
    p += 8;
    size -= 8;
  }
  while (size-- > 0) c = kTables[0][(c ^ *p++) & 0xFFu] ^ (c >> 8);
  m_state = c;
  return *this;
}

}  // namespace Orvo
