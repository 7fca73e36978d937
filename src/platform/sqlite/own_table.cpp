#include "platform/sqlite/own_table.h"

#include "platform/sqlite/errors.h"
#include "text/utf8.h"

namespace vordane::sqlite {

bool isThere(Opened& opened, const OwnTable& own) {
  Statement& found =
      opened.prepared(opened.ownTable, "SELECT sql FROM sqlite_schema WHERE lower(name) = lower(?)");
  const Running running(found);
  found.bindText(1, own.name);
  if (!found.step()) return false;
  if (found.text(0) != own.sql) fail(number::alreadyExists, own.name);
  return true;
}

void makeWhereMissing(Connection& connection, const OwnTable& own) {
  Statement taken(connection, "SELECT 1 FROM sqlite_schema WHERE lower(name) = lower(?)");
  taken.bindText(1, own.name);
  const bool there = taken.step();
  taken.reset();
  if (!there) connection.runMaintenance(text::toUtf8(own.sql).c_str());
}

}  // namespace vordane::sqlite
