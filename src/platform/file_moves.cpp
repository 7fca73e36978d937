#include "platform/file_moves.h"

#include <thread>

namespace vordane::platform {
namespace {

// What the library makes of Windows' "sharing violation" (an input/output error) and "access denied". Missing
// rights look the same, so they are waited for too.
bool mayPass(const std::error_code& failure) {
  return failure == std::errc::io_error || failure == std::errc::permission_denied ||
         failure == std::errc::device_or_resource_busy || failure == std::errc::text_file_busy ||
         failure == std::errc::no_lock_available;
}

}  // namespace

void sleepFor(std::chrono::milliseconds time) {
  std::this_thread::sleep_for(time);
}

std::error_code tryPatiently(const std::function<std::error_code()>& attempt, const Pause& pause) {
  std::error_code failure = attempt();
  for (auto waited = movePause; mayPass(failure) && waited <= movePatience; waited += movePause) {
    pause(movePause);
    failure = attempt();
  }
  return failure;
}

std::error_code moveFile(const std::filesystem::path& from, const std::filesystem::path& to,
                         const Pause& pause) {
  return tryPatiently(
      [&] {
        std::error_code failure;
        std::filesystem::rename(from, to, failure);
        return failure;
      },
      pause);
}

std::error_code removeFile(const std::filesystem::path& path, const Pause& pause) {
  return tryPatiently(
      [&] {
        std::error_code failure;
        std::filesystem::remove(path, failure);
        return failure;
      },
      pause);
}

}  // namespace vordane::platform
