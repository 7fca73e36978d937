#include "platform/sqlite/errors.h"

#include <sqlite3.h>

#include <algorithm>
#include <iterator>
#include <new>

namespace vordane::sqlite {
namespace {

struct Sentence {
  int number;
  std::u16string_view text;
};

constexpr Sentence sentences[] = {
    {number::invalidOperation, u"Invalid operation."},
    {number::noUpdateBegun, u"Update without AddNew or Edit."},
    {number::noCurrentRecord, u"No current record."},
    {number::duplicateKey, u"The row would duplicate a key."},
    {number::fileNotFound, u"Could not find file"},
    {number::diskFull, u"Not enough space on disk."},
    {number::readOnly, u"The database is read-only."},
    {number::outOfMemory, u"Out of memory."},
    {number::diskError, u"Disk or network error."},
    {number::damaged, u"The database file is damaged."},
    {number::noPermission, u"No permission to open file"},
    {number::unknownName, u"Unknown column"},
    {number::syntax, u"Syntax error in statement."},
    {number::unknownTable, u"Unknown table"},
    {number::recordGone, u"The record has been deleted."},
    {number::alreadyExists, u"The database exists already:"},
    {number::locked, u"The database is locked by another process."},
    {number::unknownItem, u"Item not found in this collection:"},
    {number::columnCount, u"The two halves of the union have different numbers of columns."},
    {number::needsValue, u"A column needs a value."},
    {number::notADatabase, u"Not a database of a known format."},
    {number::closed, u"The database has been closed."},
    {number::badValue, u"The value does not fit the column"},
};

std::u16string sentenceOf(int number) {
  const auto* found = std::find_if(std::begin(sentences), std::end(sentences),
                                   [number](const Sentence& sentence) { return sentence.number == number; });
  return found == std::end(sentences) ? u"Database error." : std::u16string(found->text);
}

}  // namespace

void fail(int number, std::u16string_view about) {
  std::u16string text = sentenceOf(number);
  if (!about.empty()) text.append(u" '").append(about).append(u"'.");
  throw database::DatabaseError(number, std::move(text));
}

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
