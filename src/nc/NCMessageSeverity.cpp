#include "nc/NCMessageSeverity.h"
