#pragma once
// A sink of bytes that keeps them in memory.

#include <cstddef>
#include <string>

namespace Orvo {

class MemoryOutputStream {
public:
  MemoryOutputStream() = default;

  void write(char const* data, std::size_t size) { m_buffer.append(data, size); }
  char const* data() const noexcept { return m_buffer.data(); }
  std::size_t size() const noexcept { return m_buffer.size(); }
  std::string const& str() const noexcept { return m_buffer; }
  void clear() noexcept { m_buffer.clear(); }

private:
  std::string m_buffer;
};

}  // namespace Orvo
