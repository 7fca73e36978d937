#include "platform/moving.h"

#include <thread>

namespace vordane::platform {

std::error_code renamePatiently(const std::filesystem::path& from, const std::filesystem::path& to,
                                std::chrono::milliseconds patience) {
  namespace fs = std::filesystem;
  const auto end = std::chrono::steady_clock::now() + patience;
  for (;;) {
    std::error_code failure, ignored;
    fs::rename(from, to, failure);
    if (!failure) return {};
    const bool hopeless = !fs::is_regular_file(from, ignored) || fs::is_directory(to, ignored) ||
                          !fs::is_directory(fs::absolute(to, ignored).parent_path(), ignored);
    if (hopeless || std::chrono::steady_clock::now() >= end) return failure;
    std::this_thread::sleep_for(patience / 40);
  }
}

}  // namespace vordane::platform
