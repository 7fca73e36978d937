// The folder that a trace is written into.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace vordane::trace {

struct StoredFile {
  std::string name;
  std::uint64_t bytes = 0;
};

// Used by one thread, the one that writes. No member throws anything but bad_alloc.
class Folder {
 public:
  virtual ~Folder() = default;
  virtual std::vector<StoredFile> files() = 0;  // in any order; none where the folder can't be read
  // Appends the bytes, making folder and file where they are missing. False when not all of them could be
  // written: then the file is as it was before.
  virtual bool append(const std::string& name, std::string_view bytes) = 0;
  virtual bool remove(const std::string& name) = 0;  // false when it is still there
  virtual std::uint64_t room() = 0;                  // bytes that the disk still has; 0 where nobody knows
};

// Of the disk. The path may name folders that do not exist yet.
std::unique_ptr<Folder> diskFolder(std::u16string_view path);

}  // namespace vordane::trace
