#include "lasting_file.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace vordane::tools {
namespace {

class LockedFile : public SoleUse {
 public:
  explicit LockedFile(int descriptor) : descriptor_(descriptor) {}
  LockedFile(const LockedFile&) = delete;
  LockedFile& operator=(const LockedFile&) = delete;
  ~LockedFile() override { close(descriptor_); }

 private:
  int descriptor_;
};

}  // namespace

LastingFile openLasting(const std::filesystem::path& path, const char* mode) {
  return LastingFile(std::fopen(path.c_str(), mode));
}

bool reachesDisk(std::FILE* file) {
  return fsync(fileno(file)) == 0;
}

std::unique_ptr<SoleUse> takeSoleUse(const std::filesystem::path& path) {
  const int descriptor = open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666);
  if (descriptor < 0) return nullptr;
  auto use = std::make_unique<LockedFile>(descriptor);
  if (flock(descriptor, LOCK_EX | LOCK_NB) != 0) return nullptr;
  return use;
}

}  // namespace vordane::tools
