#include "platform/odbc/api.h"

#include "platform/odbc/errors.h"

namespace vordane::odbc {
namespace {

template <typename Function>
void load(const Lookup& lookup, const char* name, Function& function) {
  void* address = lookup ? lookup(name) : nullptr;
  if (address == nullptr) database::fail(number::connectionFailed, u"ODBC");
  function = reinterpret_cast<Function>(address);
}

}  // namespace

Api loadApi(const Lookup& lookup) {
  Api api;
  load(lookup, "SQLAllocHandle", api.allocHandle);
  load(lookup, "SQLFreeHandle", api.freeHandle);
  load(lookup, "SQLSetEnvAttr", api.setEnvAttr);
  load(lookup, "SQLSetConnectAttrW", api.setConnectAttr);
  load(lookup, "SQLGetConnectAttrW", api.getConnectAttr);
  load(lookup, "SQLDriverConnectW", api.driverConnect);
  load(lookup, "SQLDisconnect", api.disconnect);
  load(lookup, "SQLEndTran", api.endTran);
  load(lookup, "SQLPrepareW", api.prepare);
  load(lookup, "SQLExecDirectW", api.execDirect);
  load(lookup, "SQLExecute", api.execute);
  load(lookup, "SQLBindParameter", api.bindParameter);
  load(lookup, "SQLFetch", api.fetch);
  load(lookup, "SQLGetData", api.getData);
  load(lookup, "SQLRowCount", api.rowCount);
  load(lookup, "SQLNumResultCols", api.numResultCols);
  load(lookup, "SQLFreeStmt", api.freeStmt);
  load(lookup, "SQLGetDiagRecW", api.getDiagRec);
  return api;
}

}  // namespace vordane::odbc
