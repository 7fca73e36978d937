#include "work/counting.h"

#include <sqlite3.h>

#include <algorithm>
#include <cstdlib>
#include <new>

namespace vordane::work {

Work counted;

}  // namespace vordane::work

namespace {

using vordane::work::counted;

// Each block carries its size, so that what is held at once is known.
constexpr std::size_t head = alignof(std::max_align_t);

void* take(std::size_t size) {
  auto* const block = static_cast<char*>(std::malloc(size + head));
  if (block == nullptr) throw std::bad_alloc();
  *reinterpret_cast<std::size_t*>(block) = size;
  ++counted.allocations;
  counted.bytes += size;
  counted.mostBytes = std::max(counted.mostBytes, counted.bytes);
  return block + head;
}

void give(void* memory) noexcept {
  if (memory == nullptr) return;
  char* const block = static_cast<char*>(memory) - head;
  counted.bytes -= *reinterpret_cast<std::size_t*>(block);
  std::free(block);
}

// What the engine takes is counted between it and its allocator, before it is used for the first time.
class EngineMemory {
 public:
  EngineMemory() {
    sqlite3_config(SQLITE_CONFIG_GETMALLOC, &plain_);
    sqlite3_mem_methods counting = plain_;
    counting.xMalloc = [](int size) { return taken(plain_.xMalloc(size)); };
    counting.xFree = [](void* memory) {
      given(memory);
      plain_.xFree(memory);
    };
    counting.xRealloc = [](void* memory, int size) {
      given(memory);
      void* const moved = plain_.xRealloc(memory, size);
      taken(moved == nullptr ? memory : moved);
      return moved;
    };
    sqlite3_config(SQLITE_CONFIG_MALLOC, &counting);
  }

 private:
  static void* taken(void* memory) {
    if (memory != nullptr) counted.engineBytes += static_cast<std::size_t>(plain_.xSize(memory));
    counted.mostEngineBytes = std::max(counted.mostEngineBytes, counted.engineBytes);
    return memory;
  }
  static void given(void* memory) {
    if (memory != nullptr) counted.engineBytes -= static_cast<std::size_t>(plain_.xSize(memory));
  }

  static inline sqlite3_mem_methods plain_;
};
const EngineMemory engineMemory;

}  // namespace

void* operator new(std::size_t size) {
  return take(size);
}
void operator delete(void* memory) noexcept {
  give(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
  give(memory);
}

// The linker leads every call of these two through here.
extern "C" {
int __real_sqlite3_prepare_v3(sqlite3*, const char*, int, unsigned, sqlite3_stmt**, const char**);
int __real_sqlite3_step(sqlite3_stmt*);
int __wrap_sqlite3_prepare_v3(sqlite3* handle, const char* sql, int size, unsigned flags,
                              sqlite3_stmt** statement, const char** tail) {
  ++counted.prepared;
  return __real_sqlite3_prepare_v3(handle, sql, size, flags, statement, tail);
}
int __wrap_sqlite3_step(sqlite3_stmt* statement) {
  const int result = __real_sqlite3_step(statement);
  if (result == SQLITE_ROW) ++counted.rows;
  return result;
}
}
