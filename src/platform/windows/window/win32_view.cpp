#include "platform/view.h"
