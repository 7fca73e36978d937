#include <algorithm>
#include <string>

#include "platform/file_place.h"
#include "platform/windows/com/owned.h"
#include "platform/windows/services/services.h"
#include "text/text.h"

namespace vordane::windows {
namespace {

// Keeps other add-ins from appending meanwhile: not every file system moves to the end and writes in one
// step. The place is far behind the end, so readers are never held up; it is given back with the handle too.
class AppendLock {
 public:
  explicit AppendLock(HANDLE file) : file_(file) {
    LockFileEx(file_, LOCKFILE_EXCLUSIVE_LOCK, 0, 1, 0, &place_);
  }
  ~AppendLock() { UnlockFileEx(file_, 0, 1, 0, &place_); }
  AppendLock(const AppendLock&) = delete;
  AppendLock& operator=(const AppendLock&) = delete;

 private:
  static OVERLAPPED farBehind() {
    OVERLAPPED place{};
    place.OffsetHigh = 0x7FFFFFFF;
    return place;
  }
  HANDLE file_;
  OVERLAPPED place_ = farBehind();
};

// Takes the last `bytes` away again, unless somebody has written behind them.
void takeBack(const std::wstring& path, std::int64_t end, DWORD bytes) {
  const com::File file(CreateFileW(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                   OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
  LARGE_INTEGER size, wanted;
  wanted.QuadPart = end - bytes;
  if (file && GetFileSizeEx(file.get(), &size) && size.QuadPart == end &&
      SetFilePointerEx(file.get(), wanted, nullptr, FILE_BEGIN))
    SetEndOfFile(file.get());
}

// A whole path; the path as it is where the system can't tell.
std::u16string wholePath(std::u16string_view path) {
  const std::wstring given = com::toWide(path);
  std::wstring whole(GetFullPathNameW(given.c_str(), 0, nullptr, nullptr), L'\0');
  whole.resize(GetFullPathNameW(given.c_str(), static_cast<DWORD>(whole.size()), whole.data(), nullptr));
  return whole.empty() ? std::u16string(path) : std::u16string(whole.begin(), whole.end());
}

DWORD attributesOf(std::u16string_view path) {
  return path.empty() ? INVALID_FILE_ATTRIBUTES : GetFileAttributesW(com::toWide(path).c_str());
}

}  // namespace

// The system's own * finds more: short names, and names without their last dot.
std::vector<std::u16string> SystemFiles::between(std::u16string_view before, std::u16string_view behind) {
  const std::u16string begin = text::toLower(before.substr(before.rfind(u'\\') + 1));
  const std::u16string end = text::toLower(behind);
  std::vector<std::u16string> names;
  WIN32_FIND_DATAW found{};
  const std::wstring pattern = com::toWide(before) + L"*" + com::toWide(behind);
  const HANDLE search = FindFirstFileW(pattern.c_str(), &found);
  if (search == INVALID_HANDLE_VALUE) return names;
  do {
    const std::u16string name(com::fromWide(found.cFileName));
    const std::u16string lower = text::toLower(name);
    if ((found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0 &&
        lower.size() >= begin.size() + end.size() && lower.starts_with(begin) && lower.ends_with(end))
      names.push_back(name);
  } while (FindNextFileW(search, &found));
  FindClose(search);
  std::sort(names.begin(), names.end());
  return names;
}

bool SystemFiles::exists(std::u16string_view path) {
  const DWORD attributes = attributesOf(path);
  return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0;
}

bool SystemFiles::directoryExists(std::u16string_view path) {
  const DWORD attributes = attributesOf(path);
  return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

// A disk that fills up in the middle of a line takes none of it: the next line begins at a line's begin.
bool SystemFiles::append(std::u16string_view path, std::string_view bytes) {
  // Reading is asked for since only then may the file be locked.
  const com::File file(CreateFileW(com::toWide(path).c_str(), FILE_APPEND_DATA | FILE_READ_DATA,
                                   FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_ALWAYS,
                                   FILE_ATTRIBUTE_NORMAL, nullptr));
  if (!file) return false;
  const AppendLock lock(file.get());
  DWORD written = 0;
  const bool done =
      WriteFile(file.get(), bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr) != FALSE;
  if (done && written == bytes.size()) return true;
  if (written > 0) takeBack(com::toWide(path), length(path).value_or(0), written);
  return false;
}

std::optional<std::int64_t> SystemFiles::length(std::u16string_view path) {
  WIN32_FILE_ATTRIBUTE_DATA data;
  if (path.empty() || !GetFileAttributesExW(com::toWide(path).c_str(), GetFileExInfoStandard, &data))
    return {};
  if ((data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0) return {};
  return (static_cast<std::int64_t>(data.nFileSizeHigh) << 32) | data.nFileSizeLow;
}

bool isHeldByOthers(std::u16string_view path) {
  const com::File file(CreateFileW(com::toWide(path).c_str(), GENERIC_READ,
                                   FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                   OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
  if (!file) return GetLastError() == ERROR_SHARING_VIOLATION;
  char first = 0;
  DWORD read = 0;
  return !ReadFile(file.get(), &first, 1, &read, nullptr) && GetLastError() == ERROR_LOCK_VIOLATION;
}

bool isOnNetworkDrive(std::u16string_view path) {
  return platform::liesOnNetwork(wholePath(path), [](char16_t letter) {
    const wchar_t root[] = {static_cast<wchar_t>(letter), L':', L'\\', L'\0'};
    return GetDriveTypeW(root) == DRIVE_REMOTE;
  });
}

}  // namespace vordane::windows
