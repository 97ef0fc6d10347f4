#pragma once
// A source of bytes, read in pieces until it runs dry.

#include <cstddef>

namespace Orvo {

class InputStream {
public:
  virtual ~InputStream();
  /// Copies up to `size` bytes into `buffer` and returns how many; 0 means
  /// the end of the input.
  virtual std::size_t read(char* buffer, std::size_t size) = 0;

protected:
  InputStream() = default;
  InputStream(InputStream const&) = default;
  InputStream& operator=(InputStream const&) = default;
};

}  // namespace Orvo
