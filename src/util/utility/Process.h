#pragma once
// What belongs to the whole program rather than to one object.

#include "util/utility/Mutex.h"

namespace Orvo {

class Process {
public:
  Process() = delete;

  /// The program-wide lock. It guards state shared by all threads, which in
  /// this library is the list of unit consumers, and is held only briefly.
  static Mutex mutex;
};

}  // namespace Orvo
