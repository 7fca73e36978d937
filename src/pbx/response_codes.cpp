#include "pbx/response_codes.h"
