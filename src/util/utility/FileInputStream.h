#pragma once
// The bytes of a file, read in pieces. A file that cannot be opened gives an
// empty stream; `isOpen` and `error` say why.

#include <cstdio>
#include <string>

#include "util/utility/InputStream.h"

namespace Orvo {

class FileInputStream : public InputStream {
public:
  explicit FileInputStream(std::wstring const& path);
  ~FileInputStream() override;
  FileInputStream(FileInputStream const&) = delete;
  FileInputStream& operator=(FileInputStream const&) = delete;

  bool isOpen() const noexcept { return m_file != nullptr; }
  /// The operating system's reason when the file could not be opened or
  /// read; empty otherwise.
  std::string const& error() const noexcept { return m_error; }

  std::size_t read(char* buffer, std::size_t size) override;
  /// Everything from the current position to the end.
  std::string readAll();

private:
  std::FILE* m_file = nullptr;
  std::string m_error;
};

}  // namespace Orvo
