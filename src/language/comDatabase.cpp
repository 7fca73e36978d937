#include "language/comDatabase.h"
