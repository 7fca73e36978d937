// Files whose bytes stay written, also when the machine stops a moment later.
#pragma once

#include <cstdio>
#include <filesystem>
#include <memory>
#include <string_view>

namespace vordane::tools {

// Behind what the file holds, which is made if it is not there. False when that failed; what had been written
// of it is taken back.
bool appendLasting(const std::filesystem::path& path, std::string_view bytes);

// In place of what the file holds: all of it, or what stood there stays. False when that failed.
bool replaceLasting(const std::filesystem::path& path, std::string_view bytes);

// That no other process does the same with a file at the same time. However the process ends, it is over
// then.
class SoleUse {
 public:
  virtual ~SoleUse() = default;
};
// `path` is a file that is there for nothing else. Null while another process has it, or when it can't be
// made.
std::unique_ptr<SoleUse> takeSoleUse(const std::filesystem::path& path);

// What each system does by itself. Null when it can't be opened; other programs may go on reading it.
struct CloseLasting {
  void operator()(std::FILE* file) const { std::fclose(file); }
};
using LastingFile = std::unique_ptr<std::FILE, CloseLasting>;
LastingFile openLasting(const std::filesystem::path& path, const char* mode);
bool reachesDisk(std::FILE* file);  // what was flushed; waits for it

}  // namespace vordane::tools
