#include "pbx/cListRequest.h"
