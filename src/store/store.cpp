#include "store/fault_store.h"
