#include "nc/AxisValues.h"
