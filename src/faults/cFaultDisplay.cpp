#include "faults/cFaultDisplay.h"
