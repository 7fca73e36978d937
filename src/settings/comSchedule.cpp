#include "settings/comSchedule.h"
