#include "settings/comRegQuil32.h"
