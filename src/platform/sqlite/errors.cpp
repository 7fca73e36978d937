#include "platform/sqlite/errors.h"

#include <sqlite3.h>

namespace vordane::sqlite {

int numberOf(int resultCode) {
  switch (resultCode & 0xFF) {
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
    case SQLITE_PROTOCOL:  // others changed the log again and again while this one tried to read it
      return number::locked;
    case SQLITE_READONLY:
      return number::readOnly;
    case SQLITE_FULL:
      return number::diskFull;
    case SQLITE_CORRUPT:
    case SQLITE_FORMAT:
      return number::damaged;
    case SQLITE_NOTADB:
      return number::notADatabase;
    case SQLITE_CANTOPEN:
    case SQLITE_PERM:
      return number::noPermission;
    case SQLITE_CONSTRAINT:
      return resultCode == SQLITE_CONSTRAINT_NOTNULL ? number::needsValue : number::duplicateKey;
    case SQLITE_TOOBIG:
    case SQLITE_MISMATCH:
      return number::badValue;
    case SQLITE_NOMEM:
      return number::outOfMemory;
    case SQLITE_IOERR:
      // The log's index could not be made longer: for lack of room.
      if (resultCode == SQLITE_IOERR_SHMSIZE) return number::diskFull;
      return resultCode == SQLITE_IOERR_NOMEM ? number::outOfMemory : number::diskError;
    default:
      return number::invalidOperation;
  }
}

void failWith(int resultCode) {
  fail(numberOf(resultCode));
}

}  // namespace vordane::sqlite
