#include "nc/NCContext.h"
