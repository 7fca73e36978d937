#include "lasting_file.h"

#include <system_error>

#include "platform/file_moves.h"

namespace vordane::tools {
namespace {

namespace fs = std::filesystem;

bool writeThrough(const fs::path& path, const char* mode, std::string_view bytes) {
  const LastingFile file = openLasting(path, mode);
  if (!file) return false;
  if (std::fwrite(bytes.data(), 1, bytes.size(), file.get()) != bytes.size()) return false;
  return std::fflush(file.get()) == 0 && reachesDisk(file.get());
}

}  // namespace

bool appendLasting(const fs::path& path, std::string_view bytes) {
  std::error_code failure;
  const std::uintmax_t before = fs::exists(path, failure) ? fs::file_size(path, failure) : 0;
  if (failure) return false;
  if (writeThrough(path, "ab", bytes)) return true;
  if (fs::exists(path, failure)) fs::resize_file(path, before, failure);
  return false;
}

bool replaceLasting(const fs::path& path, std::string_view bytes) {
  fs::path pending = path;
  pending += ".part";
  if (writeThrough(pending, "wb", bytes) && !platform::moveFile(pending, path)) return true;
  std::error_code ignored;
  fs::remove(pending, ignored);
  return false;
}

}  // namespace vordane::tools
