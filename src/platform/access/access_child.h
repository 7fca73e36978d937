// Reads an Access file in a child process, so that a file that crashes, hangs or takes over the reader is a
// clear error and nothing worse.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "platform/access/access_file.h"
#include "platform/access/cage.h"

namespace vordane::access {

// As readAccessFile, which runs in the child; the visitor is called in this process. Throws AccessError also
// when the child crashes, does what it may not (cage.h), says what makes no sense, or gives no sign of life
// for `patienceMilliseconds`. What the visitor has heard by then is not the whole file.
void readAccessFileInChild(const std::string& path, Visitor& visitor, int patienceMilliseconds = 60000);

// The same for any work, which tests make hostile.
struct ChildWork {
  using Send = std::function<void(std::string_view bytes)>;  // of the stream that value_stream.h describes
  std::function<void()> open;                                // while files may be opened
  std::function<void(const Send& send)> read;                // when nothing else may be any more
};
struct Trust {
  int patienceMilliseconds = 60000;  // for one sign of life; ten times as long for all the waiting together
  std::uint64_t mostBytes = UINT64_MAX;  // that make sense for the file
  Limits limits;
};
void readInChild(const std::string& name, const ChildWork& work, Visitor& visitor, const Trust& trust);

}  // namespace vordane::access
