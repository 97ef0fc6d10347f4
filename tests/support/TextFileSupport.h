#pragma once
// Temporary files for the text stream tests: unique names, whole-file reads
// and writes, and printf's "%.17g" as the reference for the numbers.

#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace mtkit_test {

/// A path in the temporary directory, unique to this process and `name`,
/// ending in `extension` (readers that go by it get the name they expect),
/// removed when the object goes.
class TempFile {
public:
  explicit TempFile(std::string const& name, std::string const& extension = ".txt")
      : m_path(std::filesystem::temp_directory_path() /
               ("mtkit_" + name + "_" + std::to_string(::getpid()) + extension)) {
    std::filesystem::remove(m_path);
  }
  ~TempFile() {
    std::error_code ignored;
    std::filesystem::remove(m_path, ignored);
  }
  TempFile(TempFile const&) = delete;
  TempFile& operator=(TempFile const&) = delete;

  std::filesystem::path const& path() const noexcept { return m_path; }

  std::string read() const {
    std::ifstream in(m_path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
  }
  void write(std::string const& bytes) const {
    std::ofstream out(m_path, std::ios::binary | std::ios::trunc);
    out << bytes;
  }
  void append(std::string const& bytes) const {
    std::ofstream out(m_path, std::ios::binary | std::ios::app);
    out << bytes;
  }

private:
  std::filesystem::path m_path;
};

/// printf's "%.17g" of `value` in the current C locale.
inline std::string printfG17(double value) {
  char buffer[64];
  std::snprintf(buffer, sizeof buffer, "%.17g", value);
  return buffer;
}

}  // namespace mtkit_test
