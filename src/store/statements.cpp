#include "store/statements.h"

#include "text/numbers.h"

namespace vordane::store {

std::u16string findExchange(std::u16string_view name) {
  std::u16string statement = u"Select * FROM PBXList WHERE PBXName = \"";
  return statement.append(name).append(u"\"");
}

std::u16string selectExchange(std::u16string_view name, std::int16_t id) {
  std::u16string statement = u"SELECT * FROM PBXList WHERE PBXName = '";
  return statement.append(name).append(u"' AND ID = ").append(text::decimal(id));
}

std::u16string findFault(std::int16_t id, const FaultColumns& columns) {
  std::u16string statement;
  statement.reserve(160 + columns.description.size());
  return statement.append(u"Select * FROM FaultDisplay WHERE ID = ")
      .append(text::decimal(id))
      .append(u" AND Fault = '")
      .append(columns.fault)
      .append(u"' AND CPU = '")
      .append(columns.cpu)
      .append(u"' AND Alarm = '")
      .append(columns.alarm)
      .append(u"' AND Date = '")
      .append(columns.date)
      .append(u"' AND Description = \"")
      .append(columns.description)
      .append(u"\"");
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
