#include "stored.h"

#include <sqlite3.h>

#include <algorithm>

#include "text/utf8.h"

namespace vordane::hostile {
std::vector<std::string> storedFaults(const std::u16string& database, std::u16string_view exchange) {
  std::vector<std::string> rows;
  sqlite3* file = nullptr;
  sqlite3_stmt* statement = nullptr;
  sqlite3_open_v2(text::toUtf8(database).c_str(), &file, SQLITE_OPEN_READWRITE, nullptr);
  sqlite3_busy_timeout(file, 5000);
  sqlite3_prepare_v2(file,
                     "SELECT Fault || ' ' || Alarm || ' ' || CPU || ' ' || f.[Date] || ' ' || Description "
                     "FROM FaultDisplay f JOIN PBXList p ON p.ID = f.ID WHERE PBXName = ?1",
                     -1, &statement, nullptr);
  const std::string name = text::toUtf8(exchange);
  sqlite3_bind_text(statement, 1, name.c_str(), -1, SQLITE_STATIC);
  while (sqlite3_step(statement) == SQLITE_ROW) {
    std::string row;
    for (const char* at = reinterpret_cast<const char*>(sqlite3_column_text(statement, 0)); *at != 0; ++at)
      row += *at == '\r' ? std::string("\\r") : *at == '\n' ? std::string("\\n") : std::string(1, *at);
    rows.push_back(row);
  }
  sqlite3_finalize(statement);
  sqlite3_close(file);
  std::sort(rows.begin(), rows.end());
  return rows;
}

const std::vector<std::string>& expectedCalls() {
  static const std::vector<std::string> calls{
      "oPBX.Login \"RIGHT\" object",
      "oPBX.Login = \"SIM-N\"",
      "ShowMessage \"Exchange server: SIM-N\"",
      "oPBX.SendRequest object",
      "oPBX.SendRequest = \"ACCEPTED-N\"",
      "ShowMessage \"Exchange server: ACCEPTED-N\"",
      "TurnOnFlow",
      "ShowMessage \"Request done\"",
      "ShowCode 0",
      "oPBX.LogOut \"RIGHT\" \"SIM-N\"",
      "TurnOffFlow",
      "ShowMessage \"The exchange has no new faults.\"",
      "oPBX.Login \"RIGHT\" object",
      "oPBX.Login = \"SIM-N\"",
      "ShowMessage \"Exchange server: SIM-N\"",
      "oPBX.SendRequest object",
      "oPBX.SendRequest = \"ACCEPTED-N\"",
      "ShowMessage \"Exchange server: ACCEPTED-N\"",
      "TurnOnFlow",
      "ShowMessage \"Request done\"",
      "ShowCode 0",
      "oPBX.LogOut \"RIGHT\" \"SIM-N\"",
      "TurnOffFlow",
  };
  return calls;
}

const std::vector<std::string>& expectedRows() {
  static const std::vector<std::string> rows{
      R"(01 MN MP    2006/11/27 10:20 Main processor restarted\r\nCause: standby processor took over\r\nData [0C ])",
      R"(11 MJ LP 12 2006/11/27 10:15 Clock source changed\r\nFree running\r\nData [02 00 00 00])",
      R"(48 MN LP 21 2006/11/01 06:57 Line test finished\r\nTest: insulation resistance\r\n [result: 1]\r\n [line state: 0]\r\n [attempts: 2]\r\nData [00 02 01 00 02 00 00 00 8F 1C 3B])",
  };
  return rows;
}

}  // namespace vordane::hostile
