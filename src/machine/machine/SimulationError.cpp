#include "machine/machine/SimulationError.h"
