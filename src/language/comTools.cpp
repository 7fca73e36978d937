#include "language/comTools.h"
