#include "store/statements.h"

#include "text/numbers.h"

namespace vordane::store {

using namespace std::string_view_literals;

std::u16string findExchange(std::u16string_view name) {
  std::u16string statement = u"Select * FROM PBXList WHERE PBXName = \"";
  return statement.append(name).append(u"\"");
}

std::u16string selectExchange(std::u16string_view name, std::int16_t id) {
  std::u16string statement = u"SELECT * FROM PBXList WHERE PBXName = '";
  return statement.append(name).append(u"' AND ID = ").append(text::decimal(id));
}

// Built once for each fault received.
std::u16string findFault(std::int16_t id, const FaultColumns& columns) {
  std::u16string statement;
  statement.reserve(160 + columns.description.size());
  return statement.append(u"Select * FROM FaultDisplay WHERE ID = "sv)
      .append(text::decimal(id))
      .append(u" AND Fault = '"sv)
      .append(columns.fault)
      .append(u"' AND CPU = '"sv)
      .append(columns.cpu)
      .append(u"' AND Alarm = '"sv)
      .append(columns.alarm)
      .append(u"' AND Date = '"sv)
      .append(columns.date)
      .append(u"' AND Description = \""sv)
      .append(columns.description)
      .append(u"\""sv);
}

std::u16string faultsOfExchange(std::int16_t id, SortKey key) {
  std::u16string statement = u"SELECT * FROM FaultDisplay WHERE ID = ";
  return statement.append(text::decimal(id)).append(sortClauses.at(static_cast<std::size_t>(key)));
}

std::u16string deleteExchange(std::int16_t id) {
  return u"DELETE FROM PBXList WHERE ID = " + text::decimal(id);
}

std::u16string deleteFaults(std::int16_t id) {
  return u"DELETE FROM FaultDisplay WHERE ID = " + text::decimal(id);
}

}  // namespace vordane::store
