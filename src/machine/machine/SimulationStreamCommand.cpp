#include "machine/machine/SimulationStreamCommand.h"
