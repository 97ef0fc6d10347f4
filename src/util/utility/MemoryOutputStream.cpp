#include "util/utility/MemoryOutputStream.h"

// Everything of MemoryOutputStream is inline; this unit keeps the one header,
// one source layout.
