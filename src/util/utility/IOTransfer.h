#pragma once
// Copies all bytes of an input to an output.

#include <cstddef>

#include "util/utility/InputStream.h"
#include "util/utility/MemoryOutputStream.h"

namespace Orvo {

class IOTransfer {
public:
  /// Reads `in` to its end into `out`; returns the number of bytes copied.
  static std::size_t transfer(InputStream& in, MemoryOutputStream& out);
};

}  // namespace Orvo
