#include <string>

#include "platform/windows/com/owned.h"
#include "platform/windows/services/services.h"

namespace vordane::windows {
namespace {

std::wstring toWide(std::u16string_view text) {
  return {text.begin(), text.end()};
}

DWORD attributesOf(std::u16string_view path) {
  return path.empty() ? INVALID_FILE_ATTRIBUTES : GetFileAttributesW(toWide(path).c_str());
}

}  // namespace

bool SystemFiles::exists(std::u16string_view path) {
  const DWORD attributes = attributesOf(path);
  return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0;
}

bool SystemFiles::directoryExists(std::u16string_view path) {
  const DWORD attributes = attributesOf(path);
  return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

bool SystemFiles::append(std::u16string_view path, std::string_view bytes) {
  const com::File file(CreateFileW(toWide(path).c_str(), FILE_APPEND_DATA, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                   nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
  if (!file) return false;
  DWORD written = 0;
  return WriteFile(file.get(), bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr) != FALSE &&
         written == bytes.size();
}

std::optional<std::int64_t> SystemFiles::length(std::u16string_view path) {
  WIN32_FILE_ATTRIBUTE_DATA data;
  if (path.empty() || !GetFileAttributesExW(toWide(path).c_str(), GetFileExInfoStandard, &data)) return {};
  if ((data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0) return {};
  return (static_cast<std::int64_t>(data.nFileSizeHigh) << 32) | data.nFileSizeLow;
}

}  // namespace vordane::windows
