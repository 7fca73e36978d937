#include "platform/sqlite/agreements.h"

#include "platform/sqlite/own_table.h"

namespace vordane::sqlite {
namespace {

// A person waits for the list that this stands beside.
constexpr int agreementWait = 1000;

constexpr OwnTable agreementTable{
    u"VordaneAgreements",
    u"CREATE TABLE VordaneAgreements (Subject TEXT PRIMARY KEY, Name TEXT NOT NULL, Mark TEXT NOT NULL) "
    u"WITHOUT ROWID"};

}  // namespace

std::optional<database::Agreement> keptAgreement(Opened& opened, std::u16string_view subject) {
  const Connection::Patience patience(opened.connection, agreementWait);
  if (!isThere(opened, agreementTable)) return {};
  Statement& row =
      opened.prepared(opened.keptAgreement, "SELECT Name, Mark FROM VordaneAgreements WHERE Subject = ?");
  const Running running(row);
  row.bindText(1, subject);
  if (!row.step()) return {};
  return database::Agreement{row.text(0), row.text(1)};
}

void keepAgreement(Opened& opened, std::u16string_view subject, const database::Agreement& own) {
  Connection& connection = opened.connection;
  const Connection::Patience patience(connection, agreementWait);
  connection.tables().follow();
  WriteScope write(connection);
  if (!isThere(opened, agreementTable)) makeWhereMissing(connection, agreementTable);
  Statement row(connection, "INSERT OR REPLACE INTO VordaneAgreements VALUES (?, ?, ?)");
  row.bindText(1, subject);
  row.bindText(2, own.name);
  row.bindText(3, own.mark);
  row.run();
  write.done();
}

}  // namespace vordane::sqlite
