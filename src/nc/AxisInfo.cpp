#include "nc/AxisInfo.h"
