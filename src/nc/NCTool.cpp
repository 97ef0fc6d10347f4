#include "nc/NCTool.h"
