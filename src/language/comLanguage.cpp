#include "language/comLanguage.h"
