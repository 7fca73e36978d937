// What the process that reads a foreign file may still do. A damaged or hostile file can take over the
// library underneath; it then finds nothing open but the file and the pipe, no way to anything else, and an
// end.
#pragma once

#include <cstdint>

namespace vordane::access {

// The sanitizers' own code reserves more addresses than any machine has memory and calls the system as it
// likes: under them the child has neither that limit, nor the one on open files, nor the lock.
#if defined(__SANITIZE_ADDRESS__)
inline constexpr bool sanitized = true;
#elif defined(__has_feature)
inline constexpr bool sanitized = __has_feature(address_sanitizer);
#else
inline constexpr bool sanitized = false;
#endif

struct Limits {
  std::uint64_t memory = std::uint64_t{3} * 1024 * 1024 * 1024;  // bytes of addresses
  int processorSeconds = 600;
};

// The only files that the child keeps from its parent: 0, 1 and 2 lead nowhere, this one is the pipe.
inline constexpr int pipeEnd = 3;

// For the child alone, before the file is opened: closes what it has inherited but `pipe`, which becomes
// pipeEnd, and limits memory, processor time, open files and written ones. False when that can't be had.
bool limitChild(int pipe, const Limits& limits);

// For the child alone, once the file is open: from here on it may read, write to the pipe, ask for memory
// that is not run, and end; any other call of the system ends it. False where the system has no such filters.
bool lockChild();

}  // namespace vordane::access
