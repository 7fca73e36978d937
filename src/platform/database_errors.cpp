#include "platform/database_errors.h"

#include <algorithm>
#include <iterator>

namespace vordane::database {
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
    {number::callFailed, u"The database server refused a step:"},
    {number::connectionFailed, u"No connection to the database server:"},
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
  throw DatabaseError(number, std::move(text));
}

}  // namespace vordane::database
