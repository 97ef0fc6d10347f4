#pragma once
// CRC-32 as zlib, PNG and Ethernet compute it (reflected polynomial
// 0xEDB88320, initial value and final XOR 0xFFFFFFFF), so that a stored
// checksum can be checked with any standard tool. Eight bytes at a time.

#include <cstddef>
#include <cstdint>

namespace Orvo {

class Crc32 {
public:
  /// The checksum of `size` bytes at `data`.
  static std::uint32_t of(void const* data, std::size_t size) noexcept { return Crc32().add(data, size).value(); }

  /// Adds bytes to a running checksum.
  Crc32& add(void const* data, std::size_t size) noexcept;
  std::uint32_t value() const noexcept { return ~m_state; }

private:
  std::uint32_t m_state = 0xFFFFFFFFu;
};

}  // namespace Orvo
