#include "util/utility/FileInputStream.h"

#include <cerrno>
#include <cstring>

#include "util/utility/Messages.h"

namespace Orvo {

FileInputStream::FileInputStream(std::wstring const& path) {
  m_file = std::fopen(Messages::wideToUtf8(path).c_str(), "rb");
  if (m_file == nullptr) m_error = std::strerror(errno);
}

FileInputStream::~FileInputStream() {
  if (m_file != nullptr) std::fclose(m_file);
}

std::size_t FileInputStream::read(char* buffer, std::size_t size) {
  if (m_file == nullptr || size == 0) return 0;
  std::size_t const got = std::fread(buffer, 1, size, m_file);
  if (got < size && std::ferror(m_file) && m_error.empty()) m_error = std::strerror(errno);
  return got;
}

std::string FileInputStream::readAll() {
  std::string out;
  char buffer[65536];
  for (std::size_t got; (got = read(buffer, sizeof buffer)) > 0;) out.append(buffer, got);
  return out;
}

}  // namespace Orvo
