#include "machine/machine/TurretDefinition.h"
