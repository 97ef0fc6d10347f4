#include "util/utility/InputStream.h"

namespace Orvo {

InputStream::~InputStream() = default;

}  // namespace Orvo
