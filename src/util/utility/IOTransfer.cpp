#include "util/utility/IOTransfer.h"

#include <vector>

namespace Orvo {

std::size_t IOTransfer::transfer(InputStream& in, MemoryOutputStream& out) {
  std::vector<char> buffer(64 * 1024);
  std::size_t total = 0;
  for (;;) {
    std::size_t const n = in.read(buffer.data(), buffer.size());
    if (n == 0) break;
    out.write(buffer.data(), n);
    total += n;
  }
  return total;
}

}  // namespace Orvo
