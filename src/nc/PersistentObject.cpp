#include "nc/PersistentObject.h"

// Every member of the interface is inline or pure: the destructor of the
// small persistent values is called far too often to go through the library.
