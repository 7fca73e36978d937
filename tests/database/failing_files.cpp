#include "database/failing_files.h"

#include <sqlite3.h>

namespace vordane::sqlite::failing {
namespace {

long callsLeft = -1, allocationsLeft = -1;
bool lastingFailure = false, failed = false, starved = false;

bool fails() {
  if (failed && lastingFailure) return true;
  if (callsLeft < 0) return false;
  if (callsLeft-- > 0) return false;
  failed = true;
  return true;
}

// A file of the real layer behind the failing one.
struct File {
  sqlite3_file base;
  sqlite3_file* real;
};
sqlite3_file* realOf(sqlite3_file* file) {
  return reinterpret_cast<File*>(file)->real;
}
sqlite3_vfs* realLayer = nullptr;
sqlite3_io_methods methods;
sqlite3_vfs layer;

template <auto member, class... Arguments>
auto pass(sqlite3_file* file, Arguments... arguments) {
  return (realOf(file)->pMethods->*member)(realOf(file), arguments...);
}

template <auto member, int error, class... Arguments>
int passOrFail(sqlite3_file* file, Arguments... arguments) {
  return fails() ? error : (realOf(file)->pMethods->*member)(realOf(file), arguments...);
}

int open(sqlite3_vfs*, const char* name, sqlite3_file* file, int flags, int* outFlags) {
  auto* self = reinterpret_cast<File*>(file);
  self->real = reinterpret_cast<sqlite3_file*>(self + 1);
  const int result = realLayer->xOpen(realLayer, name, self->real, flags, outFlags);
  self->base.pMethods = self->real->pMethods ? &methods : nullptr;
  return result;
}

int remove(sqlite3_vfs*, const char* name, int sync) {
  return fails() ? SQLITE_IOERR_DELETE : realLayer->xDelete(realLayer, name, sync);
}

void installLayer() {
  using Methods = sqlite3_io_methods;
  methods.iVersion = 2;
  methods.xClose = pass<&Methods::xClose>;
  methods.xRead = pass<&Methods::xRead, void*, int, sqlite3_int64>;
  methods.xWrite = passOrFail<&Methods::xWrite, SQLITE_FULL, const void*, int, sqlite3_int64>;
  methods.xTruncate = passOrFail<&Methods::xTruncate, SQLITE_IOERR_TRUNCATE, sqlite3_int64>;
  methods.xSync = passOrFail<&Methods::xSync, SQLITE_IOERR_FSYNC, int>;
  methods.xFileSize = pass<&Methods::xFileSize, sqlite3_int64*>;
  methods.xLock = pass<&Methods::xLock, int>;
  methods.xUnlock = pass<&Methods::xUnlock, int>;
  methods.xCheckReservedLock = pass<&Methods::xCheckReservedLock, int*>;
  methods.xFileControl = pass<&Methods::xFileControl, int, void*>;
  methods.xSectorSize = pass<&Methods::xSectorSize>;
  methods.xDeviceCharacteristics = pass<&Methods::xDeviceCharacteristics>;
  methods.xShmMap = pass<&Methods::xShmMap, int, int, int, void volatile**>;
  methods.xShmLock = pass<&Methods::xShmLock, int, int, int>;
  methods.xShmBarrier = pass<&Methods::xShmBarrier>;
  methods.xShmUnmap = pass<&Methods::xShmUnmap, int>;
  realLayer = sqlite3_vfs_find(nullptr);
  layer = *realLayer;
  layer.szOsFile = static_cast<int>(sizeof(File)) + realLayer->szOsFile;
  layer.zName = fileLayer;
  layer.pNext = nullptr;
  layer.xOpen = open;
  layer.xDelete = remove;
  sqlite3_vfs_register(&layer, 0);
}

sqlite3_mem_methods allocator;

bool starves() {
  if (allocationsLeft < 0) return false;
  if (allocationsLeft-- > 0) return false;
  return starved = true;
}

void* allocate(int size) {
  return starves() ? nullptr : allocator.xMalloc(size);
}
void* reallocate(void* memory, int size) {
  return starves() ? nullptr : allocator.xRealloc(memory, size);
}

}  // namespace

void install() {
  sqlite3_config(SQLITE_CONFIG_GETMALLOC, &allocator);
  sqlite3_mem_methods wrapped = allocator;
  wrapped.xMalloc = allocate;
  wrapped.xRealloc = reallocate;
  sqlite3_config(SQLITE_CONFIG_MALLOC, &wrapped);
  sqlite3_initialize();
  installLayer();
}

void failFileAfter(long calls, bool lasting) {
  callsLeft = calls;
  lastingFailure = lasting;
  failed = false;
}
void failAllocationAfter(long calls) {
  allocationsLeft = calls;
  starved = false;
}
bool fileFailed() {
  return failed;
}
bool allocationFailed() {
  return starved;
}

}  // namespace vordane::sqlite::failing
