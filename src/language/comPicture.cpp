#include "language/comPicture.h"
