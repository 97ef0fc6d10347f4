#include "nc/MachinePartId.h"
