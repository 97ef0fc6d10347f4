#include "nc/ToolpathEntityIndex.h"
