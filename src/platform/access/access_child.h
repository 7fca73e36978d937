// Reads an Access file in a child process, so that a file that crashes or hangs the reader is a clear error
// and nothing worse.
#pragma once

#include <string>

#include "platform/access/access_file.h"

namespace vordane::access {

// As readAccessFile, which runs in the child; the visitor is called in this process. Throws AccessError also
// when the child crashes, or gives no sign of life for `patienceMilliseconds`. What the visitor has heard by
// then is not the whole file.
void readAccessFileInChild(const std::string& path, Visitor& visitor, int patienceMilliseconds = 60000);

}  // namespace vordane::access
