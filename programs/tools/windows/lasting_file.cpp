#include "lasting_file.h"

#include <io.h>
#include <windows.h>

#include <string>

namespace vordane::tools {
namespace {

class HeldFile : public SoleUse {
 public:
  explicit HeldFile(HANDLE handle) : handle_(handle) {}
  HeldFile(const HeldFile&) = delete;
  HeldFile& operator=(const HeldFile&) = delete;
  ~HeldFile() override { CloseHandle(handle_); }

 private:
  HANDLE handle_;
};

}  // namespace

LastingFile openLasting(const std::filesystem::path& path, const char* mode) {
  const std::wstring wide(mode, mode + std::char_traits<char>::length(mode));
  return LastingFile(_wfopen(path.c_str(), wide.c_str()));
}

bool reachesDisk(std::FILE* file) {
  return _commit(_fileno(file)) == 0;
}

std::unique_ptr<SoleUse> takeSoleUse(const std::filesystem::path& path) {
  const HANDLE handle = CreateFileW(path.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_ALWAYS,
                                    FILE_ATTRIBUTE_NORMAL, nullptr);
  return handle == INVALID_HANDLE_VALUE ? nullptr : std::make_unique<HeldFile>(handle);
}

}  // namespace vordane::tools
