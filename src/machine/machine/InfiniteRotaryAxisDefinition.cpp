#include "machine/machine/InfiniteRotaryAxisDefinition.h"
