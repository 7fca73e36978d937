#include "store/store_form.h"
