// Carries the precompiled headers of all test programs; CMake needs a source for them.
#include <gtest/gtest.h>
