#include "nc/TaggedFrame.h"
