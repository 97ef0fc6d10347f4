#include "nc/ToolGeometry.h"
