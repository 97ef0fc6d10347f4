#include "nc/AxisName.h"
