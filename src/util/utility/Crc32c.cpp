#include "util/utility/Crc32c.h"

#include <array>
#include <cstring>

#if defined(__x86_64__) && (defined(__GNUC__) || defined(__clang__))
#include <nmmintrin.h>
#define ORVO_CRC32C_X86 1
#endif

namespace Orvo {

namespace {

using Tables = std::array<std::array<std::uint32_t, 256>, 8>;

// Table k holds the checksum of a byte followed by k zero bytes, which lets
// eight bytes be folded in with eight independent look-ups.
constexpr Tables makeTables() {
  Tables t{};
  for (std::uint32_t i = 0; i < 256; ++i) {
    std::uint32_t c = i;
    for (int bit = 0; bit < 8; ++bit) c = (c & 1u) ? 0x82F63B78u ^ (c >> 1) : c >> 1;
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

std::uint32_t addTables(std::uint32_t c, unsigned char const* p, std::size_t size) noexcept {
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
  return c;
}

#ifdef ORVO_CRC32C_X86
__attribute__((target("sse4.2"))) std::uint32_t addHardware(std::uint32_t c, unsigned char const* p,
                                                             std::size_t size) noexcept {
  std::uint64_t c64 = c;
  while (size >= 8) {
    std::uint64_t word;
    std::memcpy(&word, p, 8);
    c64 = _mm_crc32_u64(c64, word);
    p += 8;
    size -= 8;
  }
  c = static_cast<std::uint32_t>(c64);
  while (size-- > 0) c = _mm_crc32_u8(c, *p++);
  return c;
}

bool const kHasHardware = __builtin_cpu_supports("sse4.2");
#endif

}  // namespace

std::uint32_t Crc32c::ofPortable(void const* data, std::size_t size) noexcept {
  return ~addTables(0xFFFFFFFFu, static_cast<unsigned char const*>(data), size);
}

Crc32c& Crc32c::add(void const* data, std::size_t size) noexcept {
  auto const* p = static_cast<unsigned char const*>(data);
#ifdef ORVO_CRC32C_X86
  if (kHasHardware) {
    m_state = addHardware(m_state, p, size);
    return *this;
  }
#endif
  m_state = addTables(m_state, p, size);
  return *this;
}

}  // namespace Orvo
