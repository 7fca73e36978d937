// Giving a finished file its name while other programs (a scanner, an indexer, a backup) may hold it for a
// moment.
#pragma once

#include <chrono>
#include <filesystem>
#include <functional>
#include <system_error>

namespace vordane::platform {

using Pause = std::function<void(std::chrono::milliseconds)>;
void sleepFor(std::chrono::milliseconds time);  // serves no messages

inline constexpr std::chrono::milliseconds movePause{50};
inline constexpr std::chrono::milliseconds movePatience{2000};

// Moves `from` to the name `to`, over what stands there. As long as the system refuses as it does while
// another program holds one of the two, it is tried again after each movePause, for movePatience altogether.
// Returns how the last try failed, nothing after a success; a failed move has changed nothing.
std::error_code moveFile(const std::filesystem::path& from, const std::filesystem::path& to,
                         const Pause& pause = sleepFor);

// The same for deleting a file; one that is not there is no failure.
std::error_code removeFile(const std::filesystem::path& path, const Pause& pause = sleepFor);

// The rule alone, for any step: `attempt` returns how it failed.
std::error_code tryPatiently(const std::function<std::error_code()>& attempt, const Pause& pause);

}  // namespace vordane::platform
