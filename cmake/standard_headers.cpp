// Carries the precompiled headers of the libraries; CMake needs a source for them.
#include <string>
