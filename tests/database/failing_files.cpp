#include "database/failing_files.h"

#include <sqlite3.h>

#include <cstdlib>
#include <new>

namespace vordane::sqlite::failing {
namespace {

long readingsBegun = 0;
long callsLeft = -1, allocationsLeft = -1, ownAllocationsLeft = -1;
bool lastingFailure = false, readingFails = false, failed = false, starved = false;

bool fails() {
  if (failed && lastingFailure) return true;
  if (callsLeft < 0) return false;
  if (callsLeft-- > 0) return false;
  failed = true;
  return true;
}

bool failsReading() {
  return readingFails && fails();
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

// A sync that succeeds need not reach the disk here: no test switches the machine off.
int sync(sqlite3_file*, int) {
  return fails() ? SQLITE_IOERR_FSYNC : SQLITE_OK;
}

template <auto member, int error, class... Arguments>
int passOrFail(sqlite3_file* file, Arguments... arguments) {
  return fails() ? error : (realOf(file)->pMethods->*member)(realOf(file), arguments...);
}

int open(sqlite3_vfs*, const char* name, sqlite3_file* file, int flags, int* outFlags) {
  auto* self = reinterpret_cast<File*>(file);
  self->base.pMethods = nullptr;
  if (failsReading()) return SQLITE_CANTOPEN;
  self->real = reinterpret_cast<sqlite3_file*>(self + 1);
  const int result = realLayer->xOpen(realLayer, name, self->real, flags, outFlags);
  self->base.pMethods = self->real->pMethods ? &methods : nullptr;
  return result;
}

int exists(sqlite3_vfs*, const char* name, int flags, int* result) {
  return failsReading() ? SQLITE_IOERR_ACCESS : realLayer->xAccess(realLayer, name, flags, result);
}

int remove(sqlite3_vfs*, const char* name, int sync) {
  return fails() ? SQLITE_IOERR_DELETE : realLayer->xDelete(realLayer, name, sync);
}

template <auto member, int error, class... Arguments>
int passOrFailReading(sqlite3_file* file, Arguments... arguments) {
  return failsReading() ? error : (realOf(file)->pMethods->*member)(realOf(file), arguments...);
}

int lock(sqlite3_file* file, int level) {
  if (failsReading()) return SQLITE_IOERR_LOCK;
  if (level == SQLITE_LOCK_SHARED) ++readingsBegun;
  return realOf(file)->pMethods->xLock(realOf(file), level);
}

// Letting a lock go never fails on any system.
int lockShared(sqlite3_file* file, int first, int count, int flags) {
  if ((flags & SQLITE_SHM_LOCK) != 0 && failsReading()) return SQLITE_IOERR_SHMLOCK;
  if (flags == (SQLITE_SHM_LOCK | SQLITE_SHM_SHARED)) ++readingsBegun;
  return realOf(file)->pMethods->xShmLock(realOf(file), first, count, flags);
}

void installLayer() {
  using Methods = sqlite3_io_methods;
  methods.iVersion = 2;
  methods.xClose = pass<&Methods::xClose>;
  methods.xRead = passOrFailReading<&Methods::xRead, SQLITE_IOERR_READ, void*, int, sqlite3_int64>;
  methods.xWrite = passOrFail<&Methods::xWrite, SQLITE_FULL, const void*, int, sqlite3_int64>;
  methods.xTruncate = passOrFail<&Methods::xTruncate, SQLITE_IOERR_TRUNCATE, sqlite3_int64>;
  methods.xSync = sync;
  methods.xFileSize = passOrFailReading<&Methods::xFileSize, SQLITE_IOERR_FSTAT, sqlite3_int64*>;
  methods.xLock = lock;
  methods.xUnlock = pass<&Methods::xUnlock, int>;
  methods.xCheckReservedLock =
      passOrFailReading<&Methods::xCheckReservedLock, SQLITE_IOERR_CHECKRESERVEDLOCK, int*>;
  methods.xFileControl = pass<&Methods::xFileControl, int, void*>;
  methods.xSectorSize = pass<&Methods::xSectorSize>;
  methods.xDeviceCharacteristics = pass<&Methods::xDeviceCharacteristics>;
  methods.xShmMap = passOrFailReading<&Methods::xShmMap, SQLITE_IOERR_SHMMAP, int, int, int, void volatile**>;
  methods.xShmLock = lockShared;
  methods.xShmBarrier = pass<&Methods::xShmBarrier>;
  methods.xShmUnmap = pass<&Methods::xShmUnmap, int>;
  realLayer = sqlite3_vfs_find(nullptr);
  layer = *realLayer;
  layer.szOsFile = static_cast<int>(sizeof(File)) + realLayer->szOsFile;
  layer.zName = fileLayer;
  layer.pNext = nullptr;
  layer.xOpen = open;
  layer.xDelete = remove;
  layer.xAccess = exists;
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

long readings() {
  return readingsBegun;
}

// What `new` asks for; true when it gets nothing.
bool starvesOwn() {
  if (ownAllocationsLeft < 0) return false;
  if (ownAllocationsLeft-- > 0) return false;
  return starved = true;
}

void install() {
  sqlite3_config(SQLITE_CONFIG_GETMALLOC, &allocator);
  sqlite3_mem_methods wrapped = allocator;
  wrapped.xMalloc = allocate;
  wrapped.xRealloc = reallocate;
  sqlite3_config(SQLITE_CONFIG_MALLOC, &wrapped);
  sqlite3_initialize();
  installLayer();
}

void failFileAfter(long calls, bool lasting, bool alsoReading) {
  callsLeft = calls;
  readingFails = alsoReading;
  lastingFailure = lasting;
  failed = false;
}
void failOwnAllocationAfter(long calls) {
  ownAllocationsLeft = calls;
  starved = false;
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

void* operator new(std::size_t size) {
  void* memory = vordane::sqlite::failing::starvesOwn() ? nullptr : std::malloc(size == 0 ? 1 : size);
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}
void operator delete(void* memory) noexcept {
  std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
  std::free(memory);
}
