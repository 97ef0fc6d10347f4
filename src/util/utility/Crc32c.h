#pragma once
// CRC-32C, the Castagnoli polynomial (reflected 0x82F63B78, initial value
// and final XOR 0xFFFFFFFF), as iSCSI, ext4 and the SSE 4.2 and ARMv8
// instructions compute it: a standard checksum that processors compute in
// hardware. Where the x86-64 instruction is there it is used; elsewhere
// eight table look-ups fold eight bytes at a time.

#include <cstddef>
#include <cstdint>

namespace Orvo {

class Crc32c {
public:
  /// The checksum of `size` bytes at `data`.
  static std::uint32_t of(void const* data, std::size_t size) noexcept { return Crc32c().add(data, size).value(); }

  /// The same with the tables alone, which add() uses where the processor
  /// has no CRC instruction; so each way can be checked on any machine.
  static std::uint32_t ofPortable(void const* data, std::size_t size) noexcept;

  /// Adds bytes to a running checksum.
  Crc32c& add(void const* data, std::size_t size) noexcept;
  std::uint32_t value() const noexcept { return ~m_state; }

private:
  std::uint32_t m_state = 0xFFFFFFFFu;
};

}  // namespace Orvo
